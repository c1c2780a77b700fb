// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace ambrel::ui {

// Begins to find out, on a thread of its own, which fonts there are. Called before the application object is
// made, which does not need them yet, it leaves them ready for the first text.
void findFontsAhead();

// Paints the usual letters in the main window's fonts out of sight, so that the window finds them ready. What
// is missing among them only costs its time later. `scale`: pixels per point where the window will stand.
void shapeLettersAhead(double scale);

}  // namespace ambrel::ui
