// SPDX-License-Identifier: Apache-2.0
#include "ui/Accessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include "ui/AmbrelDropZone.h"
#include "ui/PhotoView.h"

namespace ambrel::ui {
namespace {

QAccessibleInterface* describe(const QString&, QObject* object) {
  if (auto* zone = qobject_cast<AmbrelDropZone*>(object)) {
    return new QAccessibleWidget(zone, QAccessible::Button);
  }
  if (auto* photo = qobject_cast<PhotoView*>(object)) {
    return new QAccessibleWidget(photo, QAccessible::Graphic);
  }
  return nullptr;
}

}  // namespace

void describeOwnControls() {
  QAccessible::installFactory(&describe);
}

}  // namespace ambrel::ui
