#include "player/windows/frmEditInstalledList.h"

#include <QHBoxLayout>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "player/windows/Controls.h"

namespace tarve {

namespace {

// The list shows this many names at once, in average characters wide.
constexpr int kListRows = 12;
constexpr int kListColumns = 40;

QPushButton* MakeButton(const QString& caption, const char* name, QWidget* parent) {
  auto* button = Named(new QPushButton(caption, parent), name);
  // Enter belongs to the list (it renames the chosen game); no button takes it.
  button->setAutoDefault(false);
  return button;
}

}  // namespace

frmEditInstalledList::frmEditInstalledList(SettingsStore& store, FileChooser choose_file,
                                           QWidget* parent)
    : QDialog(parent),
      list_(store),
      choose_file_(choose_file ? std::move(choose_file) : FileChooser(ChooseFileWithDialog)),
      lst_games_(new QListWidget(this)),
      lbl_game_file_(new QLabel(this)),
      but_edit_name_(MakeButton(tr("Edit &Name..."), "butEditName", this)),
      but_change_file_(MakeButton(tr("Change &File..."), "butChangeFile", this)),
      but_move_(MakeButton(tr("&Move Up"), "butMove", this)),
      but_remove_(MakeButton(tr("&Remove"), "butRemove", this)),
      but_close_(MakeButton(tr("&Close"), "butClose", this)) {
  setObjectName(QStringLiteral("frmEditInstalledList"));
  setWindowTitle(tr("Edit Installed Games"));
  setAccessibleName(windowTitle());
  lst_games_->setObjectName(QStringLiteral("lstGames"));
  lst_games_->setAccessibleName(tr("Installed games"));
  lbl_game_file_->setObjectName(QStringLiteral("lblGameFile"));
  lbl_game_file_->setTextFormat(Qt::PlainText);
  lbl_game_file_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  lbl_game_file_->setMinimumHeight(fontMetrics().lineSpacing());
  lst_games_->setSelectionMode(QAbstractItemView::SingleSelection);
  lst_games_->setMinimumSize(kListColumns * fontMetrics().averageCharWidth(),
                             kListRows * fontMetrics().lineSpacing());
  lst_games_->installEventFilter(this);

  auto* buttons = new QVBoxLayout;
  buttons->addWidget(but_edit_name_);
  buttons->addWidget(but_change_file_);
  buttons->addWidget(but_move_);
  buttons->addWidget(but_remove_);
  buttons->addStretch(1);
  buttons->addWidget(but_close_);
  auto* list_column = new QVBoxLayout;
  list_column->addWidget(lst_games_, 1);
  list_column->addWidget(lbl_game_file_);
  auto* layout = new QHBoxLayout(this);
  layout->addLayout(list_column, 1);
  layout->addLayout(buttons);

  connect(but_edit_name_, &QPushButton::clicked, this, &frmEditInstalledList::EditName);
  connect(but_change_file_, &QPushButton::clicked, this, &frmEditInstalledList::ChangeFile);
  connect(but_move_, &QPushButton::clicked, this, [this] { Move(true); });
  connect(but_remove_, &QPushButton::clicked, this, &frmEditInstalledList::Remove);
  connect(but_close_, &QPushButton::clicked, this, &QDialog::accept);
  connect(lst_games_, &QListWidget::currentRowChanged, this,
          &frmEditInstalledList::SelectionChanged);
  connect(lst_games_, &QListWidget::itemActivated, this, &frmEditInstalledList::EditName);

  ShowList(list_.size() > 0 ? 0 : -1);
}

int frmEditInstalledList::Selected() const {
  const int row = lst_games_->currentRow();
  return row >= 0 && row < list_.size() ? row : -1;
}

void frmEditInstalledList::ShowList(int selected) {
  const QSignalBlocker quiet(lst_games_);
  lst_games_->clear();
  for (const InstalledGame& game : list_.games()) {
    auto* item = new QListWidgetItem(QString::fromStdString(game.name), lst_games_);
    item->setToolTip(QString::fromStdString(game.file));
  }
  lst_games_->setCurrentRow(selected >= 0 && selected < list_.size() ? selected : -1);
  SelectionChanged();
}

void frmEditInstalledList::SelectionChanged() {
  const int row = Selected();
  const bool chosen = row >= 0;
  but_edit_name_->setEnabled(chosen);
  but_change_file_->setEnabled(chosen);
  but_move_->setEnabled(chosen && list_.size() > 1);
  but_remove_->setEnabled(chosen);
  lbl_game_file_->setText(
      chosen ? QString::fromStdString(list_.games()[static_cast<std::size_t>(row)].file)
             : QString());
}

void frmEditInstalledList::EditName() {
  const int row = Selected();
  if (row < 0) return;
  QInputDialog box(this);
  box.setWindowTitle(QStringLiteral("Edit Name"));
  box.setLabelText(QStringLiteral("Enter new name for this game:"));
  box.setTextValue(QString::fromStdString(list_.games()[static_cast<std::size_t>(row)].name));
  if (box.exec() != QDialog::Accepted) return;
  if (list_.Rename(row, box.textValue().toStdString())) ShowList(row);
}

void frmEditInstalledList::ChangeFile() {
  const int row = Selected();
  if (row < 0) return;
  const std::optional<std::string> path =
      choose_file_(this, tr("Change File"), DialogFilter(kGameFileFilter));
  if (path && list_.ChangeFile(row, *path)) ShowList(row);
}

void frmEditInstalledList::Move(bool up) {
  const int row = Selected();
  if (row < 0) return;
  ShowList(up ? list_.MoveUp(row) : list_.MoveDown(row));
}

void frmEditInstalledList::Remove() {
  const int row = Selected();
  if (row < 0 || !list_.Remove(row)) return;
  // The entry that took the removed one's place is chosen, so Remove can be pressed again.
  ShowList(std::min(row, list_.size() - 1));
}

bool frmEditInstalledList::eventFilter(QObject* watched, QEvent* event) {
  if (watched == lst_games_ && event->type() == QEvent::KeyPress) {
    const auto* key = static_cast<QKeyEvent*>(event);
    const bool control = key->modifiers() == Qt::ControlModifier;
    if (key->key() == Qt::Key_Delete && key->modifiers() == Qt::NoModifier) {
      Remove();
      return true;
    }
    if (key->key() == Qt::Key_F2 && key->modifiers() == Qt::NoModifier) {
      EditName();
      return true;
    }
    if (control && (key->key() == Qt::Key_Up || key->key() == Qt::Key_Down)) {
      Move(key->key() == Qt::Key_Up);
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

void frmEditInstalledList::done(int result) {
  // Close, Escape and the window's own close button all keep the list as it stands.
  list_.WriteBack();
  QDialog::done(result);
}

}  // namespace tarve
