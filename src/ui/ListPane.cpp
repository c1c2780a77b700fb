// SPDX-License-Identifier: Apache-2.0
#include "ui/ListPane.h"

#include <QHeaderView>

#include "ui/Appearance.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

constexpr int kGlyphTitleSize = 17;
constexpr int kNoteSymbolSize = 17;
constexpr int kNoteIndicatorSize = 15;

int columnIndex(NameColumn column) {
  return static_cast<int>(column);
}

}  // namespace

ListPane::ListPane(NameList& list, ListEditing& editing, QWidget* parent)
    : Surface(parent),
      _list(list),
      _editing(editing),
      _searchField(new QLineEdit(list.searchText(), this)),
      _addSearchButton(new AmbrelButton(this)),
      _clearSearchButton(new AmbrelButton(this)),
      _filterButton(new AmbrelButton(this)),
      _exportButton(new AmbrelButton(this)),
      _table(new NameTable(list, editing, this)),
      _emptyDropButton(new AmbrelDropZone(this)),
      _noteIconView(new SymbolView(Symbol::Pencil, kNoteSymbolSize, Palette().brandColor(), this)),
      _noteField(new NoteField(list, this)),
      _noteIndicator(new AmbrelButton(this)) {
  styleCardView();
  setMinimumWidth(layout::kLeftPaneMinimum);
  buildSearchRow();
  buildFilterRow();
  buildTable();
  connectTable();
  buildNoteRow();
  updateEmptyState();
}

void ListPane::buildSearchRow() {
  styleTextFieldBox(_searchField);
  _searchField->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  _searchField->setObjectName(QStringLiteral("searchField"));
  _searchField->setPlaceholderText(QStringLiteral("Search by name..."));
  _searchField->setAccessibleName(QStringLiteral("Search by name"));
  connect(_searchField, &QLineEdit::textEdited, this,
          [this](const QString& text) { _list.setSearchText(text); });
  connect(&_list, &NameList::searchTextChanged, this, [this] {
    if (_searchField->text() != _list.searchText()) _searchField->setText(_list.searchText());
  });
  _addSearchButton->styleButton(QStringLiteral("+"), Palette().greenColor(), true);
  _addSearchButton->setTitlePixelSize(kGlyphTitleSize);
  _addSearchButton->setAccessibleName(QStringLiteral("Add the search text as a new name"));
  _addSearchButton->setToolTip(QStringLiteral("Add the search text as a new name"));
  connect(_addSearchButton, &AmbrelButton::clicked, this, [this] { _editing.addSearchAsCSVRow(); });
  _clearSearchButton->styleButton(QStringLiteral("×"), Palette().blueColor(), true);
  _clearSearchButton->setTitlePixelSize(kGlyphTitleSize);
  _clearSearchButton->setAccessibleName(QStringLiteral("Clear the search box"));
  _clearSearchButton->setToolTip(QStringLiteral("Clear the search box"));
  connect(_clearSearchButton, &AmbrelButton::clicked, this, [this] { _list.clearSearch(); });
}

void ListPane::buildFilterRow() {
  _filterButton->setToolTip(
      QStringLiteral("Click to cycle: All names → only names With Photos → only Remaining (not shot yet)"));
  connect(_filterButton, &AmbrelButton::clicked, this, [this] { _list.cycleCaptureFilter(); });
  connect(&_list, &NameList::captureFilterChanged, this, &ListPane::updateFilterButton);
  updateFilterButton();

  _exportButton->styleButton(QStringLiteral("Export"), Palette().grayColor(), !_list.grid().isEmpty());
  _exportButton->setToolTip(QStringLiteral("Export the whole list (names and notes) to a CSV file"));
  connect(_exportButton, &AmbrelButton::clicked, this, &ListPane::exportRequested);
}

void ListPane::buildTable() {
  _emptyDropButton->setBorderColor(Palette().softBorderColor());
  _emptyDropButton->setTextColor(Palette::secondaryLabelColor());
  _emptyDropButton->onClick = [this] { Q_EMIT importRequested(); };
  _emptyDropButton->onDropPaths = [this](const QStringList& paths) {
    _editing.importDroppedCSVPaths(paths);
    return true;
  };
}

void ListPane::connectTable() {
  connect(_table->horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int section) {
    if (section == columnIndex(NameColumn::Name)) _list.cycleSortMode();
  });
  connect(_table, &NameTable::tableClicked, this, &ListPane::clickInTable);
  connect(_table, &NameTable::rowCommandChosen, this, &ListPane::startRowCommand);
  connect(_table, &AmbrelTableView::selectionChangedByOperator, this, [this] {
    _list.tableViewSelectionDidChange(_table->selectedDisplayRows(), _table->currentIndex().row());
    _noteField->syncNoteFieldToSelection();
  });
  connect(&_list, &NameList::tableSelectionChanged, this, &ListPane::showSelection);
  connect(&_list, &NameList::reloaded, this, &ListPane::updateEmptyState);
}

void ListPane::buildNoteRow() {
  _noteIndicator->setBorderless(true);
  _noteIndicator->styleButton(QStringLiteral("📝"), {}, true);
  _noteIndicator->setTitlePixelSize(kNoteIndicatorSize);
  _noteIndicator->setAccessibleName(QStringLiteral("Edit the note"));
  connect(_noteIndicator, &AmbrelButton::clicked, this, [this] {
    if (_noteField->isEnabled()) _noteField->setFocus();
  });
  connect(_noteField, &NoteField::indicatorStale, this, &ListPane::refreshNoteIndicator);
  connect(_noteField, &NoteField::noteEdited, _table->names(), &NameTableModel::refreshModelRow);
  refreshNoteIndicator();
}

void ListPane::updateControls(const ControlStates& states) {
  _exportButton->styleButton(QStringLiteral("Export"), Palette().grayColor(), states.exportEnabled);
}

void ListPane::updateFilterButton() {
  const CaptureFilter filter = _list.captureFilter();
  const Palette palette;
  _filterButton->styleButton(captureFilterTitle(filter),
                             filter == CaptureFilter::All ? palette.grayColor() : palette.blueColor(), true);
}

void ListPane::updateEmptyState() {
  const bool empty = _list.grid().isEmpty();
  _emptyDropButton->setVisible(empty);
  _table->setVisible(!empty);
  _noteField->syncNoteFieldToSelection();
}

void ListPane::showSelection(bool scroll) {
  _table->selectDisplayRows(_list.tableSelection(), scroll);
  _noteField->syncNoteFieldToSelection();
}

void ListPane::clickInTable(qint64 displayRow, int column) {
  if (column == columnIndex(NameColumn::Marker)) _list.toggleMarker(_list.modelRowForDisplayRow(displayRow));
  Q_EMIT tableClicked();
}

void ListPane::startRowCommand(RowCommand command, qint64 modelRow) {
  switch (command) {
    case RowCommand::InsertAbove:
      return _editing.ctxInsertAbove(modelRow);
    case RowCommand::InsertBelow:
      return _editing.ctxInsertBelow(modelRow);
    case RowCommand::RenameFolderAndImages:
      return renameFolderRequested(modelRow);
    case RowCommand::EditNote:
      return _editing.ctxEditNote(modelRow);
    case RowCommand::OpenFolder:
      return openFolderRequested(modelRow);
    case RowCommand::ToggleMarker:
      return _list.toggleMarker(modelRow);
    case RowCommand::DeleteRow:
      return _editing.ctxDeleteRow(modelRow);
  }
}

void ListPane::refreshNoteIndicator() {
  const QString note = _noteField->indicatedNote();
  _noteIndicator->setVisible(!note.isEmpty());
  _noteIndicator->setToolTip(note);
}

void ListPane::resizeEvent(QResizeEvent*) {
  const layout::LeftPane places = layout::leftPane(size());
  _searchField->setGeometry(places.searchField);
  _addSearchButton->setGeometry(places.addSearchButton);
  _clearSearchButton->setGeometry(places.clearSearchButton);
  _filterButton->setGeometry(places.filterButton);
  _exportButton->setGeometry(places.exportButton);
  _table->setGeometry(places.table);
  _emptyDropButton->setGeometry(places.table);
  _noteIconView->setGeometry(places.noteIconView);
  _noteField->setGeometry(places.noteField);
  _noteIndicator->setGeometry(places.noteIndicator);
}

}  // namespace ambrel::ui
