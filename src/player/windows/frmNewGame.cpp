#include "player/windows/frmNewGame.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <algorithm>
#include <initializer_list>

#include "game/Game.h"
#include "game/Host.h"
#include "player/windows/Controls.h"
#include "player/windows/MessageBoxes.h"
#include "player/windows/WindowPlacement.h"
#include "player/windows/frmEditInstalledList.h"

namespace tarve {

namespace {

// The property that holds a control's help text.
constexpr const char* kHelpProperty = "tarveHelp";

// The room a game button leaves around its name, in average characters.
constexpr int kButtonPadding = 2;
// The window's width, in average characters: room for a game's name without a long one pushing
// the window wider than the screen.
constexpr int kWindowColumns = 72;

}  // namespace

frmNewGame::frmNewGame(Game& game, SettingsStore& store, FileChooser choose_file, QWidget* parent)
    : QWidget(parent, Qt::Window),
      game_(game),
      store_(store),
      list_(store),
      choose_file_(choose_file ? std::move(choose_file) : FileChooser(ChooseFileWithDialog)),
      frame_installed_games_(new QGroupBox(tr("Installed Games"), this)),
      frame_other_games_(new QGroupBox(tr("Other Games"), this)),
      scrl_game_pos_(new QScrollBar(Qt::Vertical, frame_installed_games_)),
      but_browse_(Named(new QPushButton(tr("&Browse..."), frame_other_games_), "butBrowse")),
      lbl_game_file_caption_(new QLabel(tr("Game file:"), frame_other_games_)),
      lbl_game_file_(new QLabel(frame_other_games_)),
      but_add_(Named(new QPushButton(tr("&Add to Installed Games"), frame_other_games_), "butAdd")),
      but_play_(Named(new QPushButton(tr("&Play"), frame_other_games_), "butPlay")),
      but_load_saved_game_(Named(new QPushButton(tr("&Load Saved Game..."), frame_other_games_),
                                 "butLoadSavedGame")),
      but_edit_list_(Named(new QPushButton(tr("&Edit List..."), this), "butEditList")),
      but_options_(Named(new QPushButton(tr("&Options..."), this), "butOptions")),
      but_exit_(Named(new QPushButton(tr("E&xit"), this), "butExit")),
      lbl_help_(new QLabel(QString::fromLatin1(kDefaultHelp), this)) {
  setObjectName(QStringLiteral("frmNewGame"));
  setWindowTitle(QStringLiteral("Welcome to Tarve ") + QString::fromLatin1(kPlayerVersion));
  setAccessibleName(windowTitle());
  frame_installed_games_->setObjectName(QStringLiteral("frameInstalledGames"));
  frame_other_games_->setObjectName(QStringLiteral("frameOtherGames"));
  scrl_game_pos_->setObjectName(QStringLiteral("scrlGamePos"));
  scrl_game_pos_->setAccessibleName(tr("Installed games"));
  lbl_game_file_caption_->setObjectName(QStringLiteral("lblGameFileCaption"));
  lbl_game_file_->setObjectName(QStringLiteral("lblGameFile"));
  lbl_help_->setObjectName(QStringLiteral("lblHelp"));

  // The installed games: a column of buttons beside the scroll bar that moves the list through
  // them, so a list of any length costs no more than one window of buttons.
  auto* games_column = new QVBoxLayout;
  for (int slot = 0; slot < kVisibleGames; ++slot) {
    auto* button = new QPushButton(frame_installed_games_);
    button->setObjectName(QStringLiteral("butInstalledGame%1").arg(slot + 1));
    // A long name is cut short on its button rather than widening the window.
    button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    connect(button, &QPushButton::clicked, this, [this, slot] { PlayInstalledGame(slot); });
    SetHelp(button, "Click the name of the game you want to play");
    games_column->addWidget(button);
    but_installed_game_[static_cast<std::size_t>(slot)] = button;
  }
  games_column->addStretch(1);
  scrl_game_pos_->setSingleStep(1);
  scrl_game_pos_->setPageStep(kVisibleGames);
  connect(scrl_game_pos_, &QScrollBar::valueChanged, this, [this] { FillGameButtons(); });
  SetHelp(scrl_game_pos_, "Scroll to see the complete list of installed games");
  auto* installed_layout = new QHBoxLayout(frame_installed_games_);
  installed_layout->addLayout(games_column, 1);
  installed_layout->addWidget(scrl_game_pos_);

  // A game from anywhere on disk, and saved games.
  lbl_game_file_->setFrameShape(QFrame::StyledPanel);
  lbl_game_file_->setFrameShadow(QFrame::Sunken);
  lbl_game_file_->setTextFormat(Qt::PlainText);
  lbl_game_file_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  lbl_game_file_caption_->setBuddy(but_browse_);
  auto* file_row = new QHBoxLayout;
  file_row->addWidget(but_browse_);
  file_row->addWidget(lbl_game_file_caption_);
  file_row->addWidget(lbl_game_file_, 1);
  auto* play_row = new QHBoxLayout;
  play_row->addWidget(but_add_);
  play_row->addWidget(but_play_);
  play_row->addStretch(1);
  play_row->addWidget(but_load_saved_game_);
  auto* other_layout = new QVBoxLayout(frame_other_games_);
  other_layout->addLayout(file_row);
  other_layout->addLayout(play_row);
  but_add_->setEnabled(false);
  but_play_->setEnabled(false);

  auto* bottom_row = new QHBoxLayout;
  bottom_row->addWidget(but_edit_list_);
  bottom_row->addWidget(but_options_);
  bottom_row->addStretch(1);
  bottom_row->addWidget(but_exit_);

  lbl_help_->setFrameShape(QFrame::StyledPanel);
  lbl_help_->setFrameShadow(QFrame::Sunken);
  lbl_help_->setWordWrap(true);
  // Two lines always, so the window does not jump as the help changes.
  lbl_help_->setMinimumHeight(2 * fontMetrics().lineSpacing() + 2 * lbl_help_->frameWidth() + 4);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(frame_installed_games_, 1);
  layout->addWidget(frame_other_games_);
  layout->addLayout(bottom_row);
  layout->addWidget(lbl_help_);
  setMinimumWidth(kWindowColumns * fontMetrics().averageCharWidth());

  SetHelp(but_browse_, "Click here to load a game from disk");
  SetHelp(but_add_, "Click here to add this game to the list of 'Installed Games' above");
  SetHelp(but_play_, "Click here to play this game!");
  SetHelp(but_load_saved_game_,
          "Click here to start a game you've previously played from where you last saved it");
  SetHelp(but_edit_list_, "Click this button to change the list of 'Installed Games' above");
  SetHelp(but_options_, "Click here to set your preferences");
  SetHelp(but_exit_, "Click here to exit Tarve");
  // Over the window's background, its frames and its labels the help line goes back to saying
  // what it is for.
  for (QWidget* plain :
       std::initializer_list<QWidget*>{frame_installed_games_, frame_other_games_,
                                       lbl_game_file_caption_, lbl_game_file_, lbl_help_}) {
    plain->installEventFilter(this);
  }

  connect(but_browse_, &QPushButton::clicked, this, &frmNewGame::Browse);
  connect(but_add_, &QPushButton::clicked, this, &frmNewGame::Add);
  connect(but_play_, &QPushButton::clicked, this,
          [this] { emit playGame(QString::fromStdString(browsed_file_)); });
  connect(but_load_saved_game_, &QPushButton::clicked, this, &frmNewGame::LoadSavedGame);
  connect(but_edit_list_, &QPushButton::clicked, this, &frmNewGame::EditList);
  connect(but_options_, &QPushButton::clicked, this, [this] { emit optionsRequested(); });
  connect(but_exit_, &QPushButton::clicked, this, [this] { emit exitRequested(); });

  ShowGameButtons();
  // The program's first window opens in the middle of the screen, as the splash before it did.
  adjustSize();
  CentreOnScreen(*this);
}

void frmNewGame::SetHelp(QWidget* control, const char* help) {
  control->setProperty(kHelpProperty, QString::fromLatin1(help));
  control->setAccessibleDescription(QString::fromLatin1(help));
  control->installEventFilter(this);
}

void frmNewGame::ShowHelp(const QString& text) {
  if (lbl_help_->text() != text) lbl_help_->setText(text);
}

void frmNewGame::DisplayInstalledGames() {
  list_.Reload();
  ShowGameButtons();
}

void frmNewGame::ShowGameButtons() {
  const int hidden = std::max(0, list_.size() - kVisibleGames);
  const QSignalBlocker quiet(scrl_game_pos_);
  scrl_game_pos_->setRange(0, hidden);
  scrl_game_pos_->setEnabled(hidden > 0);
  FillGameButtons();
}

void frmNewGame::FillGameButtons() {
  const int first = scrl_game_pos_->value();
  for (int slot = 0; slot < kVisibleGames; ++slot) {
    QPushButton* button = but_installed_game_[static_cast<std::size_t>(slot)];
    const int index = first + slot;
    if (index >= list_.size()) {
      button->setVisible(false);
      continue;
    }
    const InstalledGame& installed = list_.games()[static_cast<std::size_t>(index)];
    const QString name = QString::fromStdString(installed.name);
    const int room =
        button->width() - 2 * kButtonPadding * button->fontMetrics().averageCharWidth();
    const QString shown =
        room > 0 ? button->fontMetrics().elidedText(name, Qt::ElideRight, room) : name;
    // A name is shown as written: an "&" in it is no keyboard shortcut.
    button->setText(QString(shown).replace(QLatin1Char('&'), QStringLiteral("&&")));
    button->setAccessibleName(name);
    button->setToolTip(QString::fromStdString(installed.file));
    button->setVisible(true);
  }
}

void frmNewGame::ShowGameFile() {
  // A long path loses its middle, so that both its folder and its file name still show.
  const QString path = QString::fromStdString(browsed_file_);
  const int room = lbl_game_file_->contentsRect().width() - 2 * lbl_game_file_->margin() -
                   lbl_game_file_->fontMetrics().averageCharWidth();
  lbl_game_file_->setText(
      room > 0 ? lbl_game_file_->fontMetrics().elidedText(path, Qt::ElideMiddle, room) : path);
  lbl_game_file_->setAccessibleName(tr("Game file") + QStringLiteral(": ") + path);
}

void frmNewGame::PlayInstalledGame(int slot) {
  const int index = scrl_game_pos_->value() + slot;
  if (index < 0 || index >= list_.size()) return;
  emit playGame(QString::fromStdString(list_.games()[static_cast<std::size_t>(index)].file));
}

void frmNewGame::Browse() {
  std::optional<std::string> path =
      choose_file_(this, tr("Open Game"), DialogFilter(kGameFileFilter));
  if (!path) return;
  browsed_file_ = *path;
  lbl_game_file_->setToolTip(QString::fromStdString(browsed_file_));
  ShowGameFile();
  but_add_->setEnabled(true);
  but_play_->setEnabled(true);
  if (game_.settings.auto_install) Add();
}

void frmNewGame::Add() {
  if (browsed_file_.empty()) return;
  const InstalledGamesList::AddResult result = list_.Add(game_, browsed_file_);
  if (!result.added) {
    ShowMessage(this, result.error, "Error", kOkOnly, game_.settings.special_msg_box);
    return;
  }
  ShowGameButtons();
  // The new game is the last one: bring it into view.
  scrl_game_pos_->setValue(scrl_game_pos_->maximum());
}

void frmNewGame::LoadSavedGame() {
  const std::optional<std::string> path =
      choose_file_(this, tr("Load Saved Game"), DialogFilter(kSavedGameFileFilter));
  if (path) emit loadSavedGame(QString::fromStdString(*path));
}

void frmNewGame::EditList() {
  frmEditInstalledList editor(store_, choose_file_, this);
  editor.exec();
  DisplayInstalledGames();
}

void frmNewGame::MoveGameFocus(int slot, int step) {
  const int target = slot + step;
  if (target >= 0 && target < kVisibleGames &&
      but_installed_game_[static_cast<std::size_t>(target)]->isVisible()) {
    but_installed_game_[static_cast<std::size_t>(target)]->setFocus(Qt::OtherFocusReason);
    return;
  }
  // At the edge of the window the list moves under the focus instead.
  scrl_game_pos_->setValue(scrl_game_pos_->value() + step);
}

bool frmNewGame::eventFilter(QObject* watched, QEvent* event) {
  const QVariant help = watched->property(kHelpProperty);
  switch (event->type()) {
    case QEvent::Enter:
      // The scroll bar explains itself when it takes the focus; under the pointer it is part of
      // the frame around it.
      if (help.isValid() && watched != scrl_game_pos_) {
        ShowHelp(help.toString());
      } else {
        ShowHelp(QString::fromLatin1(kDefaultHelp));
      }
      break;
    case QEvent::Leave:
      if (help.isValid()) ShowHelp(QString::fromLatin1(kDefaultHelp));
      break;
    case QEvent::Resize:
      // The path was cut to the label's old width.
      if (watched == lbl_game_file_) ShowGameFile();
      break;
    case QEvent::FocusIn:
      if (watched == scrl_game_pos_) ShowHelp(help.toString());
      break;
    case QEvent::Wheel:
      // The wheel scrolls the games from anywhere over them.
      if (watched != scrl_game_pos_ &&
          (watched == frame_installed_games_ ||
           qobject_cast<QWidget*>(watched)->parentWidget() == frame_installed_games_)) {
        QCoreApplication::sendEvent(scrl_game_pos_, event);
        return true;
      }
      break;
    case QEvent::KeyPress: {
      const auto* key = static_cast<QKeyEvent*>(event);
      const auto* it = std::find(but_installed_game_.begin(), but_installed_game_.end(), watched);
      if (it == but_installed_game_.end() || key->modifiers() != Qt::NoModifier) break;
      const int slot = static_cast<int>(it - but_installed_game_.begin());
      switch (key->key()) {
        case Qt::Key_Up:
          MoveGameFocus(slot, -1);
          return true;
        case Qt::Key_Down:
          MoveGameFocus(slot, 1);
          return true;
        case Qt::Key_PageUp:
          scrl_game_pos_->triggerAction(QAbstractSlider::SliderPageStepSub);
          return true;
        case Qt::Key_PageDown:
          scrl_game_pos_->triggerAction(QAbstractSlider::SliderPageStepAdd);
          return true;
        default:
          break;
      }
      break;
    }
    default:
      break;
  }
  return QWidget::eventFilter(watched, event);
}

void frmNewGame::enterEvent(QEnterEvent* event) {
  QWidget::enterEvent(event);
  ShowHelp(QString::fromLatin1(kDefaultHelp));
}

void frmNewGame::closeEvent(QCloseEvent* event) {
  // Closing the launcher is leaving the program, as Exit is.
  event->accept();
  emit exitRequested();
}

void frmNewGame::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  // The names were cut to the buttons' old width.
  FillGameButtons();
}

}  // namespace tarve
