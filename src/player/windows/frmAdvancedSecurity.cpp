#include "player/windows/frmAdvancedSecurity.h"

#include <QHBoxLayout>
#include <QInputDialog>
#include <QKeyEvent>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "player/windows/Controls.h"

namespace tarve {

namespace {

constexpr int kListRows = 8;
constexpr int kListColumns = 16;

}  // namespace

frmAdvancedSecurity::frmAdvancedSecurity(std::vector<std::string> entries, QWidget* parent)
    : QDialog(parent),
      list_(std::move(entries)),
      lst_file_types_(new QListWidget(this)),
      but_add_(Named(new QPushButton(tr("&Add..."), this), "butAdd")),
      but_remove_(Named(new QPushButton(tr("&Remove"), this), "butRemove")),
      but_ok_(Named(new QPushButton(tr("OK"), this), "butOK")),
      but_cancel_(Named(new QPushButton(tr("Cancel"), this), "butCancel")) {
  setObjectName(QStringLiteral("frmAdvancedSecurity"));
  setWindowTitle(tr("Custom File Types"));
  setAccessibleName(windowTitle());
  lst_file_types_->setObjectName(QStringLiteral("lstFileTypes"));
  lst_file_types_->setAccessibleName(tr("File types"));
  lst_file_types_->setSelectionMode(QAbstractItemView::SingleSelection);
  lst_file_types_->setMinimumSize(kListColumns * fontMetrics().averageCharWidth(),
                                  kListRows * fontMetrics().lineSpacing());
  lst_file_types_->installEventFilter(this);
  but_ok_->setDefault(true);

  auto* buttons = new QVBoxLayout;
  buttons->addWidget(but_add_);
  buttons->addWidget(but_remove_);
  buttons->addStretch(1);
  buttons->addWidget(but_ok_);
  buttons->addWidget(but_cancel_);
  auto* layout = new QHBoxLayout(this);
  layout->addWidget(lst_file_types_, 1);
  layout->addLayout(buttons);

  connect(but_add_, &QPushButton::clicked, this, &frmAdvancedSecurity::Add);
  connect(but_remove_, &QPushButton::clicked, this, &frmAdvancedSecurity::Remove);
  connect(but_ok_, &QPushButton::clicked, this, &QDialog::accept);
  connect(but_cancel_, &QPushButton::clicked, this, &QDialog::reject);
  connect(lst_file_types_, &QListWidget::currentRowChanged, this,
          [this](int row) { but_remove_->setEnabled(row >= 0); });

  ShowList(list_.entries().empty() ? -1 : 0);
}

std::optional<std::vector<std::string>> frmAdvancedSecurity::Run() {
  if (exec() != QDialog::Accepted) return std::nullopt;
  return list_.entries();
}

void frmAdvancedSecurity::ShowList(int selected) {
  const QSignalBlocker quiet(lst_file_types_);
  lst_file_types_->clear();
  for (const std::string& entry : list_.entries()) {
    lst_file_types_->addItem(QString::fromStdString(entry));
  }
  const int count = static_cast<int>(list_.entries().size());
  lst_file_types_->setCurrentRow(selected >= 0 && selected < count ? selected : -1);
  but_remove_->setEnabled(lst_file_types_->currentRow() >= 0);
}

void frmAdvancedSecurity::Add() {
  QInputDialog box(this);
  box.setWindowTitle(QStringLiteral("Add file type"));
  box.setLabelText(QStringLiteral("Please enter a file extension:"));
  if (box.exec() != QDialog::Accepted) return;
  const std::string typed = box.textValue().toStdString();
  list_.Add(typed);
  // A type already on the list is chosen rather than added twice.
  const std::string entry = CustomSecurityList::EntryFor(typed);
  const auto& entries = list_.entries();
  const auto found = std::find(entries.begin(), entries.end(), entry);
  ShowList(found == entries.end() ? lst_file_types_->currentRow()
                                  : static_cast<int>(found - entries.begin()));
}

void frmAdvancedSecurity::Remove() {
  const int row = lst_file_types_->currentRow();
  if (!list_.Remove(row)) return;
  ShowList(std::min(row, static_cast<int>(list_.entries().size()) - 1));
}

bool frmAdvancedSecurity::eventFilter(QObject* watched, QEvent* event) {
  if (watched == lst_file_types_ && event->type() == QEvent::KeyPress &&
      static_cast<QKeyEvent*>(event)->key() == Qt::Key_Delete) {
    Remove();
    return true;
  }
  return QDialog::eventFilter(watched, event);
}

}  // namespace tarve
