// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QRect>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

namespace ambrel {

// The extra controls inside a question. Rectangles are in points, measured from the bottom-left corner of the
// accessory area.
struct Accessory {
  struct Label {
    QRect rect;
    QString text;
    bool heading = false;  // small bold caption in the secondary text colour
  };
  struct TextField {
    QRect rect;
    QString text;
    QString placeholder = {};
  };
  struct CheckBox {
    QRect rect;
    QString title;
    bool checked = false;
  };

  QSize size;
  std::vector<Label> labels = {};
  std::vector<TextField> textFields = {};
  std::vector<CheckBox> checkBoxes = {};
  bool focusFirstField = false;
};

struct Question {
  QString title;
  QString message;
  QStringList buttons;  // the first is the default; a dismissed question answers with the last
  std::optional<Accessory> accessory = std::nullopt;
};

struct Answer {
  int button = 0;  // index into Question::buttons
  QStringList texts = {};
  std::vector<bool> checks = {};
};

struct PathRequest {
  enum class Kind { OpenFile, OpenFolder, SaveFile };
  Kind kind = Kind::OpenFile;
  QString message = {};
  QString button = {};          // title of the confirming button; empty: the platform's own
  QString startFolder = {};     // empty: the platform's choice
  QString proposedName = {};    // SaveFile only
  QStringList extensions = {};  // lower case, without dot; empty: any file
};

// The person at the machine, asked and told things. Every call returns at once; answers come later through
// the callback, on the main thread, and never from a nested event loop: photos are filed while a question is
// open.
class Operator {
 public:
  virtual ~Operator() = default;

  // One "OK" button. An empty title reads "Ambrel Photo Tether".
  virtual void showAlert(const QString& title, const QString& message,
                         std::function<void()> dismissed = {}) = 0;
  virtual void ask(const Question& question, std::function<void(const Answer&)> answered) = 0;
  // Answers with an absolute path, or an empty one when cancelled.
  virtual void choosePath(const PathRequest& request, std::function<void(const QString& path)> chosen) = 0;
  virtual void beep() = 0;
};

}  // namespace ambrel
