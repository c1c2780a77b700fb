// SPDX-License-Identifier: Apache-2.0
#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QTest>

#include "ListFixture.h"
#include "ui/NameTableDelegate.h"
#include "ui/NameTableModel.h"
#include "ui/Palette.h"

namespace ambrel::ui {
namespace {

class NameTableDelegateTest : public ListFixture {
 protected:
  QModelIndex cell(int row, NameColumn column) const { return _model.index(row, static_cast<int>(column)); }
  // The cell on a black ground, `width` points wide.
  QImage painted(const QModelIndex& index, QStyle::State state = {}, int width = 200) {
    QImage picture(width, 36, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    QStyleOptionViewItem option;
    option.rect = picture.rect();
    option.state = state;
    _delegate.paint(&painter, option, index);
    return picture;
  }
  static int pixelsOf(const QImage& picture, const QColor& color) {
    int count = 0;
    for (int y = 0; y < picture.height(); ++y)
      for (int x = 0; x < picture.width(); ++x)
        count += picture.pixelColor(x, y).name() == color.name() ? 1 : 0;
    return count;
  }

  NameTableModel _model{_list};
  NameTableDelegate _delegate;
};

TEST_F(NameTableDelegateTest, PaintsNamesInTheirColourAndSelectedOnesInWhite) {
  fill({{"MMMM", "", "4"}});
  const QModelIndex name = cell(0, NameColumn::Name);
  EXPECT_GT(pixelsOf(painted(name), Palette().greenColor()), 20);
  EXPECT_GT(pixelsOf(painted(name, QStyle::State_Selected), Qt::white), 20);
}

TEST_F(NameTableDelegateTest, PaintsNothingIntoAnEmptyCell) {
  fill({{"Anna"}});
  const QImage count = painted(cell(0, NameColumn::Count));
  EXPECT_EQ(pixelsOf(count, Qt::black), count.width() * count.height());
}

TEST_F(NameTableDelegateTest, KeepsALongNameInsideItsCell) {
  fill({{std::string(500, 'M')}});
  const QImage picture = painted(cell(0, NameColumn::Name), QStyle::State_Selected, 100);
  EXPECT_EQ(pixelsOf(picture.copy(95, 0, 5, 36), Qt::black), 5 * 36);
}

TEST_F(NameTableDelegateTest, PutsTheNameIntoTheEditorUntilSomebodyTypes) {
  fill({{"Anna"}});
  QWidget parent;
  auto* editor = qobject_cast<QLineEdit*>(_delegate.createEditor(&parent, {}, cell(0, NameColumn::Name)));
  ASSERT_TRUE(editor);
  _delegate.setEditorData(editor, cell(0, NameColumn::Name));
  EXPECT_EQ(editor->text(), QStringLiteral("Anna"));
  QTest::keyClicks(editor, QStringLiteral("b"));
  _delegate.setEditorData(editor, cell(0, NameColumn::Name));
  EXPECT_EQ(editor->text(), QStringLiteral("Annab"));
}

TEST_F(NameTableDelegateTest, PlacesTheEditorInsideTheRowsPill) {
  QLineEdit editor;
  QStyleOptionViewItem option;
  option.rect = QRect(50, 100, 300, 36);
  _delegate.updateEditorGeometry(&editor, option, {});
  EXPECT_TRUE(QRect(50, 100, 300, 36).contains(editor.geometry()));
}

}  // namespace
}  // namespace ambrel::ui
