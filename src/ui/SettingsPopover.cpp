// SPDX-License-Identifier: Apache-2.0
#include "ui/SettingsPopover.h"

#include <QApplication>
#include <QDir>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainterPath>
#include <algorithm>

#include "ui/Appearance.h"
#include "ui/PixelGrid.h"

namespace ambrel::ui {
namespace {

constexpr int kArrowHeight = 9;
constexpr int kArrowHalfWidth = 10;
// Room for the shadow, which lies on the panes below: the bubble paints it itself.
constexpr int kShadowRoom = 14;
constexpr double kCornerRadius = 12;
constexpr Shadow kShadow{0.22, 11, {0, 3}};

constexpr std::array kSectionTitles{"SETTINGS", "TARGET FOLDER", "BACKUP FOLDER", "DESTINATION", "TAGS"};

struct Destination {
  const char* title;
  const char* toolTip;
};
constexpr std::array<Destination, 3> kDestinations{{
    {"Both", "Save to the camera card AND the computer"},
    {"Disk", "Save to the computer only"},
    {"Card", "Save to the camera card only"},
}};

}  // namespace

SettingsPopover::SettingsPopover(const CaptureSettings& settings, Tags& tags, QWidget* parent)
    : Surface(parent),
      _settings(settings),
      _tags(tags),
      _folderButton(new AmbrelButton(this)),
      _settingsFolderPathLabel(makePathLabel(QStringLiteral("No folder chosen"))),
      _backupButton(new AmbrelButton(this)),
      _settingsBackupPathLabel(makePathLabel(QStringLiteral("No backup folder"))),
      _suffixManageButton(new AmbrelButton(this)),
      _resetButton(new AmbrelButton(this)) {
  setFill(Qt::transparent);
  setFocusPolicy(Qt::ClickFocus);
  // A press on a label of the bubble is not a press outside.
  setAttribute(Qt::WA_NoMousePropagation);
  for (std::size_t i = 0; i < kSectionTitles.size(); ++i) {
    const bool heading = i == 0;
    _settingsSectionLabels[i] =
        new TextLabel(QLatin1String(kSectionTitles[i]), systemFont(heading ? 13 : 10, QFont::Bold),
                      heading ? Palette().primaryTextColor() : Palette::tertiaryLabelColor(), this);
  }
  buildFolderSection();
  buildBackupSection();
  buildDestinationSection();
  buildTagSection();
  connect(_resetButton, &AmbrelButton::clicked, this, &SettingsPopover::resetRequested);
  hide();
}

void SettingsPopover::buildFolderSection() {
  _folderButton->setToolTip(QStringLiteral("Choose the folder where captured images are saved"));
  connect(_folderButton, &AmbrelButton::clicked, this, &SettingsPopover::selectFolderRequested);
  connect(&_settings, &CaptureSettings::targetDirChanged, this, &SettingsPopover::refreshSettingsPaths);
  refreshSettingsPaths();
}

void SettingsPopover::buildBackupSection() {
  _backupButton->setToolTip(
      QStringLiteral("Optional: also copy every saved photo to a second folder or a mounted network drive"));
  connect(_backupButton, &AmbrelButton::clicked, this, &SettingsPopover::popUpBackupMenu);
  _backupButton->styleButton(QStringLiteral("Backup: Off"), Palette().grayColor(), true);
}

void SettingsPopover::showBackup(const QString& folder, const BackupButtonLook& button,
                                 const BackupPopUp& popUp) {
  _backupFolder = folder;
  _backupPopUp = popUp;
  _backupButton->styleButton(button.title, backupColor(button.color, Palette()), true);
  _backupButton->setToolTip(button.toolTip);
  refreshSettingsPaths();
}

void SettingsPopover::popUpBackupMenu() {
  _backupMenu = new QMenu(QStringLiteral("Backup"), this);
  _backupMenu->setAttribute(Qt::WA_DeleteOnClose);
  // A folder's name may hold what marks a key elsewhere.
  const auto verbatim = [](QString title) { return title.replace(QLatin1Char('&'), QLatin1String("&&")); };
  connect(_backupMenu->addAction(verbatim(_backupPopUp.chooseTitle)), &QAction::triggered, this,
          &SettingsPopover::chooseBackupFolderRequested);
  if (!_backupPopUp.toggleTitle.isEmpty())
    connect(_backupMenu->addAction(verbatim(_backupPopUp.toggleTitle)), &QAction::triggered, this,
            &SettingsPopover::toggleBackupRequested);
  _backupMenu->popup(_backupButton->mapToGlobal(QPoint(0, _backupButton->height() + 4)));
}

void SettingsPopover::buildDestinationSection() {
  for (std::size_t i = 0; i < kDestinations.size(); ++i) {
    auto* button = new AmbrelButton(this);
    button->setToolTip(QLatin1String(kDestinations[i].toolTip));
    connect(button, &AmbrelButton::clicked, this,
            [this, i] { Q_EMIT destinationSelected(static_cast<int>(i)); });
    _destButtons[i] = button;
  }
}

void SettingsPopover::buildTagSection() {
  _settingsSectionLabels[4]->setToolTip(
      QStringLiteral("Optional tags you define, added to the folder name for a capture round. Click a tag to "
                     "toggle it; Edit to add or rename tags."));
  _suffixManageButton->setToolTip(QStringLiteral("Add, rename, or remove tag buttons (up to 5)"));
  connect(_suffixManageButton, &AmbrelButton::clicked, this, [this] { _tags.manageSuffixes(); });
  connect(&_tags, &Tags::toggled, this, &SettingsPopover::restyleSuffixButtons);
  connect(&_tags, &Tags::listReplaced, this, &SettingsPopover::rebuildSuffixButtons);
  rebuildSuffixButtons();
}

TextLabel* SettingsPopover::makePathLabel(const QString& text) {
  auto* label = new TextLabel(text, systemFont(12), Palette::secondaryLabelColor(), this);
  label->setElideMode(Qt::ElideMiddle);
  return label;
}

void SettingsPopover::toggleSettingsPopover(QWidget* anchor) {
  if (isVisible()) {
    hide();
    return;
  }
  _anchor = anchor;
  refreshSettingsPaths();
  follow();
  show();
  raise();
  setFocus();
  qApp->installEventFilter(this);
}

void SettingsPopover::follow() {
  if (!_anchor) return;
  resize(layout::kSettingsSize + QSize(2 * kShadowRoom, kArrowHeight + kShadowRoom));
  const QPoint below = _anchor->mapTo(parentWidget(), QPoint(_anchor->width() / 2, _anchor->height()));
  // No further to the right than the card that the anchor stands on.
  const QWidget* card = _anchor->parentWidget();
  const int rightEdge = card->mapTo(parentWidget(), QPoint(card->width(), 0)).x();
  const int rightmost = std::min(rightEdge + kShadowRoom, parentWidget()->width()) - width();
  move(std::clamp(below.x() - width() / 2, 0, std::max(0, rightmost)), below.y() + 2);
  layoutSettingsContent();
}

QRect SettingsPopover::body() {
  return {QPoint(kShadowRoom, kArrowHeight), layout::kSettingsSize};
}

void SettingsPopover::layoutSettingsContent() {
  const layout::Settings places =
      layout::settings(layout::kSettingsSize, static_cast<int>(_suffixButtons.size()));
  const auto place = [](QWidget* widget, const QRect& rect) {
    if (widget) widget->setGeometry(rect.translated(body().topLeft()));
  };
  for (std::size_t i = 0; i < _settingsSectionLabels.size(); ++i)
    place(_settingsSectionLabels[i], places.sectionLabels[i]);
  place(_folderButton, places.folderButton);
  place(_settingsFolderPathLabel, places.folderPathLabel);
  place(_backupButton, places.backupButton);
  place(_settingsBackupPathLabel, places.backupPathLabel);
  for (std::size_t i = 0; i < _destButtons.size(); ++i)
    place(_destButtons[i], places.destButtons[i]);
  for (std::size_t i = 0; i < _suffixButtons.size(); ++i)
    place(_suffixButtons[i], places.suffixButtons[i]);
  place(_suffixManageButton, places.suffixManageButton);
  place(_resetButton, places.resetButton);
}

void SettingsPopover::updateControls(const ControlStates& states) {
  _states = states;
  const Palette palette;
  _folderButton->styleButton(QStringLiteral("Change…"), palette.blueColor(), states.setupUnlocked);
  _suffixManageButton->styleButton(QStringLiteral("Edit…"), palette.grayColor(), states.setupUnlocked);
  _resetButton->styleButton(QStringLiteral("↻ Reset workflow"), palette.grayColor(), states.setupUnlocked);
  restyleDestinationButtons();
  restyleSuffixButtons();
}

void SettingsPopover::refreshSettingsPaths() {
  const auto show = [](TextLabel* label, const QString& path, const QString& none) {
    label->setText(path.isEmpty() ? none : abbreviatedPath(path, QDir::homePath()));
    label->setToolTip(path);
  };
  show(_settingsFolderPathLabel, _settings.targetDir(), QStringLiteral("No folder chosen"));
  show(_settingsBackupPathLabel, _backupFolder, QStringLiteral("No backup folder"));
}

void SettingsPopover::rebuildSuffixButtons() {
  for (AmbrelButton* button : _suffixButtons) {
    button->hide();
    button->deleteLater();
  }
  _suffixButtons.clear();
  for (std::size_t i = 0; i < std::min(_tags.suffixes().size(), Tags::kMaxTags); ++i) {
    auto* button = new AmbrelButton(this);
    button->setCheckable(true);
    connect(button, &AmbrelButton::clicked, this,
            [this, i](bool on) { _tags.suffixToggled(static_cast<int>(i), on); });
    button->show();
    _suffixButtons.push_back(button);
  }
  restyleSuffixButtons();
  layoutSettingsContent();
}

void SettingsPopover::restyleSuffixButtons() {
  const Palette palette;
  for (std::size_t i = 0; i < std::min(_suffixButtons.size(), _tags.suffixes().size()); ++i) {
    const Tag& tag = _tags.suffixes()[i];
    AmbrelButton* button = _suffixButtons[i];
    button->setChecked(tag.on);
    button->styleButton(tag.label, tag.on ? palette.greenColor() : palette.grayColor(),
                        _states.setupUnlocked);
    button->setToolTip(QStringLiteral("Appends \"%1\" to the folder name when on").arg(tag.suffix));
  }
}

void SettingsPopover::restyleDestinationButtons() {
  const Palette palette;
  for (std::size_t i = 0; i < _destButtons.size(); ++i) {
    const bool chosen = _states.saveModeIndex == static_cast<int>(i);
    _destButtons[i]->styleButton(QLatin1String(kDestinations[i].title),
                                 chosen ? palette.brandColor() : palette.grayColor(), _states.setupUnlocked);
  }
}

void SettingsPopover::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Palette palette;
  QPainterPath bubble;
  const double line = hairline(painter);
  const QRectF outline = onWholePixels(painter, body()).adjusted(line / 2, line / 2, -line / 2, -line / 2);
  bubble.addRoundedRect(outline, kCornerRadius, kCornerRadius);
  if (_anchor) {
    const double tip = _anchor->mapTo(parentWidget(), QPoint(_anchor->width() / 2, 0)).x() - x();
    QPolygonF arrow;
    arrow << QPointF(tip - kArrowHalfWidth, outline.top()) << QPointF(tip, 1)
          << QPointF(tip + kArrowHalfWidth, outline.top()) << QPointF(tip, outline.top() + 4);
    QPainterPath arrowPath;
    arrowPath.addPolygon(arrow);
    arrowPath.closeSubpath();
    bubble = bubble.united(arrowPath);
  }
  paintShadowAround(painter, body(), kCornerRadius, kShadow);
  painter.setPen(QPen(palette.softBorderColor().darker(112), line));
  painter.setBrush(palette.cardBackgroundColor());
  painter.drawPath(bubble);
  painter.end();
  Surface::paintEvent(event);
}

void SettingsPopover::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    hide();
  } else {
    Surface::keyPressEvent(event);
  }
}

void SettingsPopover::mousePressEvent(QMouseEvent* event) {
  // Beside the bubble, in its shadow.
  if (!body().contains(event->position().toPoint())) hide();
}

bool SettingsPopover::isOwn(const QObject* object) const {
  const auto* widget = qobject_cast<const QWidget*>(object);
  return widget == this || (widget && isAncestorOf(widget));
}

bool SettingsPopover::eventFilter(QObject* watched, QEvent* event) {
  if (!isVisible()) {
    qApp->removeEventFilter(this);
    return false;
  }
  const auto* widget = qobject_cast<QWidget*>(watched);
  const bool pressedOutside = event->type() == QEvent::MouseButtonPress && widget &&
                              widget->window() == window() && widget != _anchor && !isOwn(widget);
  if (pressedOutside) hide();
  return false;
}

QString abbreviatedPath(const QString& path, const QString& home) {
  if (path == home) return QStringLiteral("~");
  return path.startsWith(home + QLatin1Char('/')) ? QLatin1Char('~') + path.mid(home.size()) : path;
}

}  // namespace ambrel::ui
