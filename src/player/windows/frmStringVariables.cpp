#include "player/windows/frmStringVariables.h"

#include <QHeaderView>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace tarve {

namespace {

// Rows the window shows when it first opens.
constexpr int kInitialRows = 15;

struct StoreLook {
  const char* caption;
  const char* name_heading;
  const char* value_heading;
};

StoreLook LookOf(frmStringVariables::Store store) {
  switch (store) {
    case frmStringVariables::Store::kNumericVariables:
      return {"Numeric variables", "Name", "Contents"};
    case frmStringVariables::Store::kCollectables:
      return {"Collectables", "Collectable", "Amount"};
    case frmStringVariables::Store::kStringVariables:
      break;
  }
  return {"String variables", "Name", "Contents"};
}

QString CellText(const std::string& text) {
  QString shown = QString::fromStdString(text);
  if (shown.size() > frmStringVariables::kMaxCellCharacters) {
    shown.truncate(frmStringVariables::kMaxCellCharacters);
    shown += QStringLiteral("...");
  }
  return shown;
}

}  // namespace

frmStringVariables::frmStringVariables(Store store, QWidget* parent)
    : frmStringVariables(LookOf(store).caption, LookOf(store).name_heading,
                         LookOf(store).value_heading, parent) {}

frmStringVariables::frmStringVariables(const std::string& caption, const std::string& name_heading,
                                       const std::string& value_heading, QWidget* parent)
    : QWidget(parent, Qt::Window), grd_variables_(new QTableWidget(0, 2, this)) {
  setObjectName(QStringLiteral("frmStringVariables"));
  grd_variables_->setObjectName(QStringLiteral("grdVariables"));
  setWindowTitle(QString::fromStdString(caption));
  setAccessibleName(windowTitle());
  grd_variables_->setAccessibleName(windowTitle());

  grd_variables_->setHorizontalHeaderLabels(
      {QString::fromStdString(name_heading), QString::fromStdString(value_heading)});
  grd_variables_->verticalHeader()->hide();
  grd_variables_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  grd_variables_->setSelectionBehavior(QAbstractItemView::SelectRows);
  grd_variables_->setSelectionMode(QAbstractItemView::SingleSelection);
  grd_variables_->setWordWrap(false);
  grd_variables_->setAlternatingRowColors(true);
  // Tab leaves the grid instead of walking its cells; the arrows walk them.
  grd_variables_->setTabKeyNavigation(false);

  const int name_width = kNameColumnTwips / kTwipsPerPixel;
  const int value_width = (kValueColumnTwips + kTwipsPerPixel / 2) / kTwipsPerPixel;
  grd_variables_->setColumnWidth(0, name_width);
  grd_variables_->setColumnWidth(1, value_width);
  // The contents column takes whatever width the window gives the grid.
  grd_variables_->horizontalHeader()->setStretchLastSection(true);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(grd_variables_);

  // The columns open at their own widths; once a scroll bar is needed it takes its room from
  // the contents column.
  const int frame = 2 * grd_variables_->frameWidth();
  resize(name_width + value_width + frame,
         grd_variables_->horizontalHeader()->sizeHint().height() +
             kInitialRows * grd_variables_->verticalHeader()->defaultSectionSize() + frame);
}

void frmStringVariables::SetContents(const std::vector<std::pair<std::string, std::string>>& rows) {
  // One repaint for the whole grid rather than one per cell.
  grd_variables_->setUpdatesEnabled(false);
  grd_variables_->setRowCount(static_cast<int>(rows.size()));
  for (int row = 0; row < static_cast<int>(rows.size()); ++row) {
    SetCell(row, 0, CellText(rows[static_cast<std::size_t>(row)].first));
    SetCell(row, 1, CellText(rows[static_cast<std::size_t>(row)].second));
  }
  grd_variables_->setUpdatesEnabled(true);
}

void frmStringVariables::SetRow(int row, const std::string& name, const std::string& value) {
  if (row < 0) return;
  if (row >= grd_variables_->rowCount()) grd_variables_->setRowCount(row + 1);
  SetCell(row, 0, CellText(name));
  SetCell(row, 1, CellText(value));
}

void frmStringVariables::SetRowCount(int rows) { grd_variables_->setRowCount(std::max(rows, 0)); }

int frmStringVariables::RowCount() const { return grd_variables_->rowCount(); }

void frmStringVariables::SetCell(int row, int column, const QString& text) {
  QTableWidgetItem* item = grd_variables_->item(row, column);
  if (item == nullptr) {
    grd_variables_->setItem(row, column, new QTableWidgetItem(text));
  } else if (item->text() != text) {
    item->setText(text);
  }
}

}  // namespace tarve
