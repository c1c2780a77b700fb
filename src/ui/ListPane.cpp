// SPDX-License-Identifier: Apache-2.0
#include "ui/ListPane.h"

#include <QHeaderView>

#include "ui/Appearance.h"
#include "ui/NameTableDelegate.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

constexpr int kMarkerWidth = 44;
constexpr int kCountWidth = 58;

int columnIndex(NameColumn column) {
  return static_cast<int>(column);
}

}  // namespace

ListPane::ListPane(NameList& list, QWidget* parent)
    : Surface(parent),
      _list(list),
      _searchField(new QLineEdit(list.searchText(), this)),
      _clearSearchButton(new AmbrelButton(this)),
      _exportButton(new AmbrelButton(this)),
      _model(new NameTableModel(list, this)),
      _table(new AmbrelTableView(this)),
      _emptyDropButton(new AmbrelDropZone(this)) {
  styleCardView();
  setMinimumWidth(layout::kLeftPaneMinimum);
  buildSearchRow();
  buildTable();
  _exportButton->styleButton(QStringLiteral("Export"), Palette().grayColor(), !_list.grid().isEmpty());
  _exportButton->setToolTip(QStringLiteral("Export the whole list (names and notes) to a CSV file"));
  connect(_exportButton, &AmbrelButton::clicked, this, &ListPane::exportRequested);
  _emptyDropButton->setBorderColor(Palette().softBorderColor());
  _emptyDropButton->setTextColor(Palette::secondaryLabelColor());
  _emptyDropButton->onClick = [this] { Q_EMIT importRequested(); };
  updateEmptyState();
}

void ListPane::buildSearchRow() {
  styleTextFieldBox(_searchField);
  _searchField->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  _searchField->setPlaceholderText(QStringLiteral("Search by name..."));
  _searchField->setAccessibleName(QStringLiteral("Search by name"));
  connect(_searchField, &QLineEdit::textEdited, this, [this](const QString& text) { _list.setSearchText(text); });
  connect(&_list, &NameList::searchTextChanged, this, [this] {
    if (_searchField->text() != _list.searchText()) _searchField->setText(_list.searchText());
  });
  _clearSearchButton->styleButton(QStringLiteral("×"), Palette().blueColor(), true);
  _clearSearchButton->setTitlePixelSize(17);
  _clearSearchButton->setAccessibleName(QStringLiteral("Clear the search box"));
  _clearSearchButton->setToolTip(QStringLiteral("Clear the search box"));
  connect(_clearSearchButton, &AmbrelButton::clicked, this, [this] { _list.clearSearch(); });
}

void ListPane::buildTable() {
  _table->setModel(_model);
  _table->setItemDelegate(new NameTableDelegate(_table));
  _table->setAmbrelSelectionColor(Palette().brandColor());
  _table->setEditTriggers(QAbstractItemView::NoEditTriggers);
  QHeaderView* header = _table->horizontalHeader();
  header->setSectionsClickable(false);
  header->setMinimumSectionSize(30);
  header->setSectionResizeMode(columnIndex(NameColumn::Marker), QHeaderView::Fixed);
  header->setSectionResizeMode(columnIndex(NameColumn::Name), QHeaderView::Stretch);
  header->setSectionResizeMode(columnIndex(NameColumn::Count), QHeaderView::Fixed);
  header->resizeSection(columnIndex(NameColumn::Marker), kMarkerWidth);
  header->resizeSection(columnIndex(NameColumn::Count), kCountWidth);

  connect(_table, &AmbrelTableView::selectionChangedByOperator, this,
          [this] { _list.tableViewSelectionDidChange(_table->selectedDisplayRows()); });
  connect(&_list, &NameList::tableSelectionChanged, this, &ListPane::showSelection);
  connect(&_list, &NameList::reloaded, this, &ListPane::updateEmptyState);
  connect(&_list, &NameList::pathLabelsStale, _model, &NameTableModel::refreshHeader);
  connect(&_list, &NameList::controlsStale, _model, &NameTableModel::refreshHeader);
}

void ListPane::updateControls(const ControlStates& states) {
  _exportButton->styleButton(QStringLiteral("Export"), Palette().grayColor(), states.exportEnabled);
  _model->refreshHeader();
}

void ListPane::updateEmptyState() {
  const bool empty = _list.grid().isEmpty();
  _emptyDropButton->setVisible(empty);
  _table->setVisible(!empty);
}

void ListPane::showSelection(bool scroll) {
  _table->selectDisplayRows(_list.tableSelection(), scroll);
}

void ListPane::resizeEvent(QResizeEvent*) {
  const layout::LeftPane places = layout::leftPane(size());
  _searchField->setGeometry(places.searchField.united(places.addSearchButton));
  _clearSearchButton->setGeometry(places.clearSearchButton);
  _exportButton->setGeometry(places.exportButton);
  _table->setGeometry(places.table);
  _emptyDropButton->setGeometry(places.table);
}

}  // namespace ambrel::ui
