// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace ambrel::camera {

// What a photo's first bytes say it is.
enum class PhotoFormat { Unknown, Jpeg, Cr2, Cr3, Heif };

// As many bytes as these functions look at; fewer are taken for what they are.
constexpr std::size_t kHeadBytes = 32;
constexpr std::size_t kTailBytes = 4096;

PhotoFormat formatOf(std::span<const unsigned char> head);

// The name with the extension that belongs to the content, in the letter case of the one it had. A name whose
// extension fits, or whose content is not known, stays as it is.
std::string nameForFormat(std::string_view name, PhotoFormat format);

// Whether a JPEG's last bytes hold its end marker. Some bodies pad their files with zeros behind it.
bool endsLikeJpeg(std::span<const unsigned char> tail);

// Raw and finished files of one exposure differ in this.
bool isRawName(std::string_view name);

// Films, sound and the card's bookkeeping: announced like photos, but none.
bool isPhotoName(std::string_view name);

// A file name that is safe in any folder and on a line: no separators, control characters, leading dots or
// bytes beyond ASCII, and never empty.
std::string safeName(std::string_view name);

}  // namespace ambrel::camera
