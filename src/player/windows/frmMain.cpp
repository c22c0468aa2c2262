#include "player/windows/frmMain.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPalette>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QTextToSpeech>
#include <QVBoxLayout>
#include <algorithm>
#include <charconv>

#include "interpreter/Variables.h"
#include "player/Player.h"
#include "player/windows/RichOutputPane.h"
#include "player/windows/WindowText.h"
#include "player/windows/frmGWLLog.h"
#include "player/windows/frmOptions.h"
#include "player/windows/frmStringVariables.h"

namespace tarve {

namespace {

// The player's own keys in the settings store, beside the options of the options window.
constexpr const char* kOptionsSection = "Options";
constexpr const char* kZoomKey = "PaneZoom";
constexpr const char* kReadAloudKey = "ReadAloud";

// The direction buttons by index, with the exit letter that enables each ('\0': always on).
struct DirectionButton {
  const char* caption;
  const char* name;  // what a screen reader says
  char letter;
  int row;
  int column;
};
constexpr std::array<DirectionButton, 10> kDirectionButtons = {{
    {"N", "Go north", 'n', 0, 1},
    {"S", "Go south", 's', 2, 1},
    {"W", "Go west", 'w', 1, 0},
    {"E", "Go east", 'e', 1, 2},
    {"Out", "Go out", 'o', 1, 1},
    {"Help", "Help", '\0', 3, 0},
    {"NE", "Go northeast", 'a', 0, 2},
    {"NW", "Go northwest", 'b', 0, 0},
    {"SE", "Go southeast", 'c', 2, 2},
    {"SW", "Go southwest", 'd', 2, 0},
}};

// The action buttons by index, as the player reads them; the underlined letters are the Alt
// keys that press them.
constexpr std::array<const char*, 4> kActionCaptions = {"Go t&o", "&Look at", "S&peak to", "T&ake"};

constexpr int kThingTypeRole = Qt::UserRole + 1;

// The variables viewers by their store, in the order of the menu.
constexpr std::array<VariableStore, 3> kStores = {VariableStore::kString, VariableStore::kNumeric,
                                                  VariableStore::kCollectable};
std::size_t ViewerIndex(VariableStore store) {
  switch (store) {
    case VariableStore::kNumeric:
      return 1;
    case VariableStore::kCollectable:
      return 2;
    case VariableStore::kString:
      break;
  }
  return 0;
}

QColor ColourOfSetting(const std::string& hex, const QColor& fallback) {
  // RRGGBB, as the options keep it.
  const QColor colour(QStringLiteral("#") + QString::fromStdString(hex));
  return hex.size() == 6 && colour.isValid() ? colour : fallback;
}

QString WithoutMnemonic(const char* caption) { return QString::fromUtf8(caption).remove(u'&'); }

bool IsModifierOnly(int key) {
  switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
    case Qt::Key_unknown:
      return true;
    default:
      return false;
  }
}

}  // namespace

frmMain::frmMain(QWidget* parent)
    : QMainWindow(parent),
      txt_output_(new RichOutputPane),
      txt_command_(new QLineEdit),
      but_execute_(new QPushButton(tr("Execute"))),
      lst_objects_(new QListWidget),
      lbl_location_(new QLabel),
      txt_items_(new QPlainTextEdit),
      lst_collectables_(new QListWidget),
      lbl_status_(new QLabel),
      log_window_(new frmGWLLog(this)) {
  setObjectName(QStringLiteral("frmMain"));
  setWindowTitle(QStringLiteral("Tarve"));

  lbl_location_->setObjectName(QStringLiteral("lblLocation"));
  lbl_location_->setAccessibleName(tr("Location"));
  lbl_location_->setAutoFillBackground(true);
  lbl_location_->setContentsMargins(6, 4, 6, 4);
  lbl_location_->setTextFormat(Qt::PlainText);
  QFont location_font = lbl_location_->font();
  location_font.setBold(true);
  location_font.setPointSizeF(location_font.pointSizeF() * 1.2);
  lbl_location_->setFont(location_font);
  ApplyLabelColours(false);

  txt_command_->setObjectName(QStringLiteral("txtCommand"));
  txt_command_->setAccessibleName(tr("Command"));
  txt_command_->installEventFilter(this);
  but_execute_->setObjectName(QStringLiteral("butExecute"));
  but_execute_->setAccessibleName(tr("Execute the command"));
  but_execute_->setAutoDefault(false);
  connect(txt_command_, &QLineEdit::returnPressed, this, &frmMain::Execute);
  connect(but_execute_, &QPushButton::clicked, this, &frmMain::Execute);
  auto* command_label = new QLabel(tr("Co&mmand:"));
  command_label->setBuddy(txt_command_);

  auto* command_row = new QHBoxLayout;
  command_row->addWidget(command_label);
  command_row->addWidget(txt_command_, 1);
  command_row->addWidget(but_execute_);

  txt_output_->installEventFilter(this);
  txt_output_->viewport()->installEventFilter(this);
  connect(txt_output_, &RichOutputPane::zoomChanged, this, &frmMain::SetZoom);
  connect(txt_output_, &RichOutputPane::textAdded, this, &frmMain::SpeakAdded);

  auto* splitter = new QSplitter(Qt::Horizontal);
  splitter->addWidget(txt_output_);
  splitter->addWidget(BuildSidePanel());
  splitter->setStretchFactor(0, 1);
  splitter->setStretchFactor(1, 0);
  splitter->setChildrenCollapsible(false);

  auto* central = new QWidget;
  auto* layout = new QVBoxLayout(central);
  layout->setContentsMargins(6, 6, 6, 6);
  layout->addWidget(lbl_location_);
  layout->addWidget(splitter, 1);
  layout->addLayout(command_row);
  setCentralWidget(central);

  lbl_status_->setObjectName(QStringLiteral("lblStatus"));
  lbl_status_->setAccessibleName(tr("Status"));
  lbl_status_->setTextFormat(Qt::PlainText);
  statusBar()->addWidget(lbl_status_, 1);

  BuildMenus();

  // Timer1 lights the location label up for a moment when the player enters another room, so
  // that a move catches the eye even when the text scrolls past; it then turns itself off.
  timer1_.setObjectName(QStringLiteral("Timer1"));
  timer1_.setSingleShot(true);
  timer1_.setInterval(kHighlightMilliseconds);
  connect(&timer1_, &QTimer::timeout, this, [this] { ApplyLabelColours(false); });

  connect(log_window_, &frmGWLLog::visibilityChanged, this, [this](bool visible) {
    mnu_view_log_->setChecked(visible);
    if (player_ == nullptr) return;
    if (!visible && player_->log_window_visible()) player_->LogWindowClosed();
  });

  setTabOrder(txt_command_, but_execute_);
  setTabOrder(but_execute_, lst_objects_);
  QWidget* previous = lst_objects_;
  for (QPushButton* button : but_do_) {
    setTabOrder(previous, button);
    previous = button;
  }
  for (QPushButton* button : but_dir_) {
    setTabOrder(previous, button);
    previous = button;
  }
  setTabOrder(previous, txt_items_);
  setTabOrder(txt_items_, lst_collectables_);
  setTabOrder(lst_collectables_, txt_output_);

  // The window opens at a comfortable size for the screen it is on, never larger than it.
  const QRect screen = this->screen()->availableGeometry();
  resize(std::min(960, screen.width() * 9 / 10), std::min(680, screen.height() * 9 / 10));
  UpdateControls();
}

frmMain::~frmMain() {
  if (qApp != nullptr) qApp->removeEventFilter(this);
}

QWidget* frmMain::BuildSidePanel() {
  auto* panel = new QWidget;
  auto* layout = new QVBoxLayout(panel);
  layout->setContentsMargins(6, 0, 0, 0);

  lst_objects_->setObjectName(QStringLiteral("lstObjects"));
  lst_objects_->setAccessibleName(tr("Things here"));
  auto* objects_label = new QLabel(tr("T&hings here:"));
  objects_label->setBuddy(lst_objects_);
  connect(lst_objects_, &QListWidget::currentItemChanged, this, &frmMain::ShowActionButtons);
  layout->addWidget(objects_label);
  layout->addWidget(lst_objects_, 2);

  auto* actions = new QGridLayout;
  for (std::size_t i = 0; i < but_do_.size(); ++i) {
    auto* button = new QPushButton(tr(kActionCaptions[i]));
    button->setObjectName(QStringLiteral("butDo%1").arg(i));
    button->setAccessibleName(WithoutMnemonic(kActionCaptions[i]));
    button->setAutoDefault(false);
    // The buttons keep their place while hidden, so that choosing an entry does not move the
    // controls under the pointer.
    QSizePolicy policy = button->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    button->setSizePolicy(policy);
    button->hide();
    const int index = static_cast<int>(i);
    connect(button, &QPushButton::clicked, this, [this, index] { PressActionButton(index); });
    actions->addWidget(button, index / 2, index % 2);
    but_do_[i] = button;
  }
  layout->addLayout(actions);

  auto* directions = new QGridLayout;
  directions->setSpacing(2);
  for (std::size_t i = 0; i < but_dir_.size(); ++i) {
    const DirectionButton& look = kDirectionButtons[i];
    auto* button = new QPushButton(tr(look.caption));
    button->setObjectName(QStringLiteral("butDir%1").arg(i));
    button->setAccessibleName(tr(look.name));
    button->setToolTip(tr(look.name));
    button->setAutoDefault(false);
    const int index = static_cast<int>(i);
    connect(button, &QPushButton::clicked, this, [this, index] {
      if (player_ != nullptr) player_->PressDirectionButton(index);
      UpdateControls();
    });
    // Help takes the whole row under the compass.
    directions->addWidget(button, look.row, look.column, 1, look.letter == '\0' ? 3 : 1);
    but_dir_[i] = button;
  }
  auto* directions_label = new QLabel(tr("Directions:"));
  layout->addWidget(directions_label);
  layout->addLayout(directions);

  txt_items_->setObjectName(QStringLiteral("txtItems"));
  txt_items_->setAccessibleName(tr("Items"));
  txt_items_->setReadOnly(true);
  txt_items_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  auto* items_label = new QLabel(tr("&Items:"));
  items_label->setBuddy(txt_items_);
  layout->addWidget(items_label);
  layout->addWidget(txt_items_, 1);

  lst_collectables_->setObjectName(QStringLiteral("lstCollectables"));
  lst_collectables_->setAccessibleName(tr("Collectables"));
  auto* collectables_label = new QLabel(tr("Colle&ctables:"));
  collectables_label->setBuddy(lst_collectables_);
  layout->addWidget(collectables_label);
  layout->addWidget(lst_collectables_, 1);

  const QFontMetrics metrics(font());
  panel->setMinimumWidth(metrics.averageCharWidth() * 28);
  panel->setMaximumWidth(metrics.averageCharWidth() * 48);
  return panel;
}

void frmMain::BuildMenus() {
  QMenu* tarve = menuBar()->addMenu(tr("&Tarve"));
  tarve->setObjectName(QStringLiteral("mnuTarve"));
  mnu_restart_ = tarve->addAction(tr("&Restart this game"), this, [this] {
    if (player_ != nullptr) player_->MenuRestart();
    UpdateControls();
  });
  mnu_different_game_ = tarve->addAction(tr("E&xit this game"), this, [this] {
    if (player_ != nullptr) player_->MenuDifferentGame();
  });
  tarve->addSeparator();
  mnu_options_ = tarve->addAction(tr("&Options..."), this, [this] {
    if (player_ == nullptr) return;
    frmOptions options(player_->game().settings, player_->settings_store(), this);
    options.exec();
    // The label's colours are among the options; the game reads the others where it uses them.
    ApplyLabelColours(false);
  });

  QMenu* game = menuBar()->addMenu(tr("&Game"));
  game->setObjectName(QStringLiteral("mnuSaveLoad"));
  mnu_undo_ = game->addAction(tr("&Undo"), QKeySequence::Undo, this, [this] {
    if (player_ == nullptr) return;
    player_->Undo();
    UpdateControls();
  });
  game->addSeparator();
  mnu_load_ = game->addAction(tr("&Load game..."), QKeySequence::Open, this, [this] {
    if (player_ != nullptr) player_->MenuLoad();
    UpdateControls();
  });
  mnu_save_ = game->addAction(tr("&Save game"), QKeySequence::Save, this, [this] {
    if (player_ != nullptr) player_->MenuSave();
  });
  mnu_save_as_ = game->addAction(tr("Save game &as..."), QKeySequence::SaveAs, this, [this] {
    if (player_ != nullptr) player_->MenuSaveAs();
  });
  game->addSeparator();
  mnu_game_info_ = game->addAction(tr("Game &info"), this, [this] {
    if (player_ != nullptr) player_->MenuGameInfo();
    UpdateControls();
  });

  QMenu* view = menuBar()->addMenu(tr("&View"));
  view->setObjectName(QStringLiteral("mnuView"));
  mnu_view_log_ = view->addAction(tr("Script &log"), this, [this] {
    if (player_ == nullptr) return;
    player_->MenuViewLog();
    if (player_->log_window_visible()) {
      log_window_->SetText(player_->log_text());
      log_window_->show();
      log_window_->raise();
    } else {
      log_window_->hide();
    }
    mnu_view_log_->setChecked(player_->log_window_visible());
  });
  mnu_view_log_->setCheckable(true);
  view->addSeparator();
  mnu_zoom_in_ =
      view->addAction(tr("Zoom &in"), this, [this] { SetZoom(txt_output_->zoom() + 1); });
  // Ctrl and "=" too: on many keyboards "+" is Shift and "=".
  mnu_zoom_in_->setShortcuts(
      {QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)});
  mnu_zoom_out_ =
      view->addAction(tr("Zoom &out"), this, [this] { SetZoom(txt_output_->zoom() - 1); });
  mnu_zoom_out_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Minus));
  mnu_zoom_reset_ = view->addAction(tr("&Normal size"), this, [this] { SetZoom(0); });
  mnu_zoom_reset_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_0));
  view->addSeparator();
  mnu_read_aloud_ = view->addAction(tr("&Read new text aloud"));
  mnu_read_aloud_->setCheckable(true);
  connect(mnu_read_aloud_, &QAction::toggled, this, &frmMain::SetReadAloud);
  if (!SpeechAvailable()) {
    mnu_read_aloud_->setText(tr("&Read new text aloud (no speech engine installed)"));
    mnu_read_aloud_->setEnabled(false);
  }

  mnu_debug_ = menuBar()->addMenu(tr("&Debug"));
  mnu_debug_->setObjectName(QStringLiteral("mnuDebug"));
  const std::array<QString, 3> viewer_captions = {tr("&String variables"), tr("&Numeric variables"),
                                                  tr("&Collectables")};
  for (std::size_t i = 0; i < kStores.size(); ++i) {
    const VariableStore store = kStores[i];
    QAction* action =
        mnu_debug_->addAction(viewer_captions[i], this, [this, store] { ShowViewer(store); });
    mnu_view_variables_[i] = action;
  }
}

void frmMain::Attach(Player& player) {
  player_ = &player;
  // Any key anywhere in the window ends a key wait, whichever control has the focus.
  qApp->installEventFilter(this);

  SettingsStore& store = player.settings_store();
  const std::string zoom = store.Read(kOptionsSection, kZoomKey).value_or("0");
  int steps = 0;
  std::from_chars(zoom.data(), zoom.data() + zoom.size(), steps);
  txt_output_->SetZoom(steps);
  const bool read_aloud = store.Read(kOptionsSection, kReadAloudKey).value_or("No") == "Yes";
  if (read_aloud && SpeechAvailable()) mnu_read_aloud_->setChecked(true);
  UpdateControls();
}

void frmMain::Detach() {
  qApp->removeEventFilter(this);
  player_ = nullptr;
}

void frmMain::SetCaption(const std::string& caption) {
  setWindowTitle(QString::fromStdString(caption));
}

void frmMain::SetLocation(const std::string& location) {
  const QString shown = QString::fromStdString(location);
  const bool moved = !location_.isEmpty() && shown != location_;
  location_ = shown;
  lbl_location_->setText(shown);
  lbl_location_->setAccessibleDescription(shown.trimmed());
  if (moved) {
    ApplyLabelColours(true);
    timer1_.start();
  }
}

void frmMain::SetStatusText(const std::string& text) {
  lbl_status_->setText(QString::fromStdString(text));
}

void frmMain::SetDirections(const std::string& letters) {
  for (std::size_t i = 0; i < kDirectionButtons.size(); ++i) {
    const char letter = kDirectionButtons[i].letter;
    exits_[i] = letter == '\0' || letters.find(letter) != std::string::npos;
  }
  UpdateControls();
}

void frmMain::SetThingsHere(const std::vector<GameWindow::ListedThing>& things) {
  lst_objects_->clear();
  for (const GameWindow::ListedThing& thing : things) {
    auto* item = new QListWidgetItem(QString::fromStdString(thing.name), lst_objects_);
    item->setData(kThingTypeRole, static_cast<int>(thing.type));
  }
  // A list that has the focus makes its first entry current; nothing is chosen until the player
  // chooses it.
  lst_objects_->setCurrentItem(nullptr);
  ShowActionButtons();
}

void frmMain::SetItems(const std::string& display_text) {
  QString shown = ToDisplayText(display_text);
  // The pane's own label is the heading; the text's first line would only repeat it.
  const QString heading = QStringLiteral("Items:\n");
  if (shown.startsWith(heading)) shown.remove(0, heading.size());
  txt_items_->setPlainText(shown);
}

void frmMain::SetCollectables(const std::vector<std::string>& lines) {
  // Only the lines that changed are rewritten: a score that changes every turn must not rebuild
  // the list (and lose a screen reader's place in it).
  while (lst_collectables_->count() > static_cast<int>(lines.size())) {
    delete lst_collectables_->takeItem(lst_collectables_->count() - 1);
  }
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const QString shown = QString::fromStdString(lines[i]);
    const int row = static_cast<int>(i);
    if (row < lst_collectables_->count()) {
      if (lst_collectables_->item(row)->text() != shown)
        lst_collectables_->item(row)->setText(shown);
    } else {
      lst_collectables_->addItem(shown);
    }
  }
}

void frmMain::EnableGameControls(bool on) {
  controls_enabled_ = on;
  UpdateControls();
}

void frmMain::ShowDebugMenu(bool shown) { mnu_debug_->menuAction()->setVisible(shown); }

void frmMain::UpdateControls() {
  const bool open = player_ != nullptr && game_shown_;
  const bool over = game_over_ || (player_ != nullptr && player_->game_over());
  const bool key_wait = player_ != nullptr && player_->waiting_for_key();
  const bool line_wait = player_ != nullptr && player_->waiting_for_line();
  // A turn is taken only while nothing waits; `enter` waits for a line typed into the box, so
  // the box alone stays open then.
  const bool play = open && !over && controls_enabled_ && !key_wait && !line_wait;
  const bool typing = open && !over && !key_wait && (play || line_wait);

  const bool command_had_focus = txt_command_->hasFocus();
  txt_command_->setEnabled(typing);
  but_execute_->setEnabled(play);
  lst_objects_->setEnabled(play);
  for (QPushButton* button : but_do_) button->setEnabled(play);
  for (std::size_t i = 0; i < but_dir_.size(); ++i) but_dir_[i]->setEnabled(play && exits_[i]);

  // Loading, restarting and leaving stay open once the game is over; nothing that plays on does.
  const bool menus = open && controls_enabled_ && !key_wait && !line_wait;
  mnu_load_->setEnabled(menus || (over && !key_wait && !line_wait));
  mnu_save_->setEnabled(menus && !over);
  mnu_save_as_->setEnabled(menus && !over);
  mnu_game_info_->setEnabled(menus && !over);
  mnu_restart_->setEnabled(menus);
  mnu_options_->setEnabled(menus || (over && !key_wait && !line_wait));
  mnu_different_game_->setEnabled(menus);
  mnu_undo_->setEnabled(menus && !over && player_->CanUndo());

  // While a key wait is pending the keys must reach the window: the pane, which stays enabled,
  // takes the focus from the disabled command box.
  if (key_wait && isVisible()) {
    txt_output_->setFocus();
  } else if (line_wait && (command_had_focus || isActiveWindow())) {
    txt_command_->setFocus();
  }
}

void frmMain::ClearCommandBox() {
  txt_command_->clear();
  history_position_ = history_.size();
  draft_.clear();
}

void frmMain::FocusCommandBox() {
  if (txt_command_->isEnabled()) txt_command_->setFocus();
}

void frmMain::AppendLogMessage(std::string_view message) {
  // A hidden log window is filled from the run's log when it is shown.
  if (log_window_->isVisible()) log_window_->AppendMessage(std::string(message));
}

void frmMain::SetViewerRow(int store, int rows, int row, const std::string& name,
                           const std::string& value) {
  const VariableStore which = static_cast<VariableStore>(store);
  frmStringVariables* viewer = VariablesWindow(which);
  // A hidden viewer is filled from the game's tables when it is shown; a game changes its
  // variables far more often than anyone looks at them.
  if (viewer == nullptr || !viewer->isVisible()) return;
  viewer->SetRowCount(rows);
  viewer->SetRow(row, name, value);
}

void frmMain::GameOpened() {
  game_shown_ = true;
  game_over_ = false;
  // Nothing of the previous game stays; the new game fills the panes as it goes.
  txt_items_->clear();
  lst_collectables_->clear();
  lbl_status_->clear();
  ApplyLabelColours(false);
  location_.clear();
  for (VariableStore store : kStores) RefreshViewer(store);
  UpdateControls();
}

void frmMain::GameOver() {
  game_over_ = true;
  UpdateControls();
}

void frmMain::GameClosed() {
  game_shown_ = false;
  UpdateControls();
}

QAction* frmMain::mnuViewVariables(VariableStore store) const {
  return mnu_view_variables_[ViewerIndex(store)];
}

frmStringVariables* frmMain::VariablesWindow(VariableStore store) const {
  return viewers_[ViewerIndex(store)];
}

bool frmMain::SpeechAvailable() const { return !QTextToSpeech::availableEngines().isEmpty(); }

void frmMain::Execute() {
  if (player_ == nullptr) return;
  if (player_->waiting_for_key()) {
    // The key wait ends; what the box holds is not run.
    player_->SubmitCommand("");
    return;
  }
  const QString text = txt_command_->text();
  if (text.isEmpty()) return;
  if (history_.isEmpty() || history_.back() != text) {
    history_.append(text);
    if (history_.size() > kMaxHistory) history_.removeFirst();
  }
  history_position_ = history_.size();
  draft_.clear();
  player_->SubmitCommand(text.toStdString());
  UpdateControls();
}

void frmMain::RecallHistory(int step) {
  if (history_.isEmpty()) return;
  if (history_position_ == history_.size()) draft_ = txt_command_->text();
  const qsizetype next = std::clamp<qsizetype>(history_position_ + step, 0, history_.size());
  if (next == history_position_) return;
  history_position_ = next;
  txt_command_->setText(next == history_.size() ? draft_ : history_[next]);
  txt_command_->end(false);
}

void frmMain::ShowActionButtons() {
  QListWidgetItem* chosen = lst_objects_->currentItem();
  std::array<bool, 4> shown{};
  if (chosen != nullptr) {
    shown = Player::ActionButtonsFor(
        static_cast<GameWindow::ThingType>(chosen->data(kThingTypeRole).toInt()));
  }
  for (std::size_t i = 0; i < but_do_.size(); ++i) {
    but_do_[i]->setVisible(shown[i]);
    // A screen reader says what the button will do to what: "Look at Marta".
    const QString action = WithoutMnemonic(kActionCaptions[i]);
    but_do_[i]->setAccessibleName(chosen == nullptr ? action : action + u' ' + chosen->text());
  }
}

void frmMain::PressActionButton(int index) {
  QListWidgetItem* chosen = lst_objects_->currentItem();
  if (player_ == nullptr || chosen == nullptr) return;
  player_->PressActionButton(index, chosen->text().toStdString());
  UpdateControls();
}

void frmMain::ApplyLabelColours(bool highlighted) {
  Settings defaults;
  const Settings& settings = player_ != nullptr ? player_->game().settings : defaults;
  const QColor foreground = ColourOfSetting(settings.label_foreground_colour, Qt::white);
  QColor background = ColourOfSetting(settings.label_background_colour, QColor(0x60, 0x00, 0x70));
  if (highlighted) {
    // A dark label lights up, a light one darkens: either way the change shows.
    background = background.lightness() < 128 ? background.lighter(170) : background.darker(130);
  }
  QPalette colours = lbl_location_->palette();
  colours.setColor(QPalette::Window, background);
  colours.setColor(QPalette::WindowText, foreground);
  lbl_location_->setPalette(colours);
}

void frmMain::ShowViewer(VariableStore store) {
  const std::size_t index = ViewerIndex(store);
  if (viewers_[index] == nullptr) {
    const std::vector<ViewerRow> rows =
        player_ != nullptr ? player_->ViewerRows(store) : std::vector<ViewerRow>{};
    const std::string name_heading = rows.empty() ? "Name" : rows[0].name;
    const std::string value_heading = rows.empty() ? "Contents" : rows[0].value;
    viewers_[index] =
        new frmStringVariables(Player::ViewerCaption(store), name_heading, value_heading, this);
    viewers_[index]->setWindowFlag(Qt::Window);
  }
  viewers_[index]->show();
  RefreshViewer(store);
  viewers_[index]->raise();
}

void frmMain::RefreshViewer(VariableStore store) {
  frmStringVariables* viewer = VariablesWindow(store);
  if (viewer == nullptr || !viewer->isVisible() || player_ == nullptr) return;
  const std::vector<ViewerRow> rows = player_->ViewerRows(store);
  viewer->SetRowCount(static_cast<int>(rows.size()));
  for (std::size_t i = 1; i < rows.size(); ++i) {
    viewer->SetRow(static_cast<int>(i), rows[i].name, rows[i].value);
  }
}

void frmMain::SetZoom(int steps) {
  txt_output_->SetZoom(steps);
  if (player_ == nullptr) return;
  SettingsStore& store = player_->settings_store();
  const std::string kept = std::to_string(txt_output_->zoom());
  if (store.Read(kOptionsSection, kZoomKey).value_or("0") == kept) return;
  store.Write(kOptionsSection, kZoomKey, kept);
  store.Flush();
}

void frmMain::SetReadAloud(bool on) {
  if (on && speech_ == nullptr) {
    speech_ = new QTextToSpeech(this);
    if (speech_->state() == QTextToSpeech::Error) {
      // An engine that is installed but does not start (no speech service running).
      mnu_read_aloud_->setChecked(false);
      mnu_read_aloud_->setText(tr("&Read new text aloud (the speech engine does not work)"));
      mnu_read_aloud_->setEnabled(false);
      return;
    }
  }
  if (!on && speech_ != nullptr) speech_->stop();
  if (player_ == nullptr) return;
  SettingsStore& store = player_->settings_store();
  store.Write(kOptionsSection, kReadAloudKey, on ? "Yes" : "No");
  store.Flush();
}

void frmMain::SpeakAdded(const QString& text) {
  if (speech_ == nullptr || !mnu_read_aloud_->isChecked()) return;
  const QString spoken = text.trimmed();
  if (!spoken.isEmpty()) speech_->say(spoken);
}

void frmMain::closeEvent(QCloseEvent* event) {
  // Without a game there is nothing to leave; with one, the player is asked first (a game whose
  // start scripts are still running counts: they may be waiting for the player).
  if (player_ == nullptr || !game_shown_ || player_->RequestClose()) {
    event->accept();
  } else {
    event->ignore();
  }
}

bool frmMain::EndKeyWait(QObject* watched, QEvent* event) {
  // Every event of the program passes here: the window's own come first, and only they may
  // reach the application.
  auto* widget = qobject_cast<QWidget*>(watched);
  if (widget == nullptr || widget->window() != this) return false;
  if (player_ == nullptr || !player_->waiting_for_key()) return false;
  switch (event->type()) {
    case QEvent::ShortcutOverride:
      // Claimed, so that a key that is also a shortcut arrives as a key press and ends the wait.
      if (!IsModifierOnly(static_cast<QKeyEvent*>(event)->key())) {
        event->accept();
        return true;
      }
      return false;
    case QEvent::KeyPress:
      if (IsModifierOnly(static_cast<QKeyEvent*>(event)->key())) return false;
      player_->KeyPressed();
      return true;
    case QEvent::MouseButtonPress:
      // A click in the text goes on as a key would, so the mouse alone can play.
      if (watched != txt_output_->viewport()) return false;
      player_->KeyPressed();
      return true;
    default:
      return false;
  }
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
  if (EndKeyWait(watched, event)) return true;
  // While a turn can be taken back, Ctrl+Z in the command box takes it back rather than undoing
  // the typing: the box gives the key up to the window's Undo entry.
  if (watched == txt_command_ && event->type() == QEvent::ShortcutOverride &&
      static_cast<QKeyEvent*>(event)->matches(QKeySequence::Undo) && mnu_undo_->isEnabled()) {
    event->ignore();
    return true;
  }
  if (watched == txt_command_ && event->type() == QEvent::KeyPress) {
    auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
      case Qt::Key_F11:
        txt_command_->setText(QString::fromStdString(
            player_ != nullptr ? player_->CommandBoxText(CommandBoxKey::kF11) : std::string()));
        return true;
      case Qt::Key_F12:
        txt_command_->setText(QString::fromStdString(
            player_ != nullptr ? player_->CommandBoxText(CommandBoxKey::kF12) : std::string()));
        txt_command_->end(false);
        return true;
      case Qt::Key_Up:
        RecallHistory(-1);
        return true;
      case Qt::Key_Down:
        RecallHistory(+1);
        return true;
      default:
        break;
    }
  }
  return QMainWindow::eventFilter(watched, event);
}

}  // namespace tarve
