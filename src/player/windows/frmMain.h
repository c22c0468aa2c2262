// frmMain: the window in which a game is played. The output pane, the command box with its
// keys, the things-here list with its action buttons, the direction buttons, the location label,
// the items and collectables panes, the status text and the menus; the log window and the
// variables viewers hang off it. The window only shows what the application says and hands it
// what the player does.
#pragma once

#include <QMainWindow>
#include <QStringList>
#include <QTimer>
#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "game/Host.h"

class QAction;
class QLabel;
class QLineEdit;
class QListWidget;
class QMenu;
class QPlainTextEdit;
class QPushButton;
class QTextToSpeech;

namespace tarve {

enum class VariableStore;
class Player;
class RichOutputPane;
class frmGWLLog;
class frmStringVariables;

class frmMain : public QMainWindow {
  Q_OBJECT

 public:
  // The command box remembers this many of the session's commands for Up and Down.
  static constexpr int kMaxHistory = 500;
  // How long the location label stays lit after the player enters another room.
  static constexpr int kHighlightMilliseconds = 700;

  explicit frmMain(QWidget* parent = nullptr);
  ~frmMain() override;

  // The application the window shows. The zoom and the reading-aloud option are read from its
  // settings store.
  void Attach(Player& player);
  // The application is going: the window no longer reaches it.
  void Detach();

  // What the game window shows.
  void SetCaption(const std::string& caption);
  void SetLocation(const std::string& location);
  void SetStatusText(const std::string& text);
  void SetDirections(const std::string& letters);
  void SetThingsHere(const std::vector<GameWindow::ListedThing>& things);
  void SetItems(const std::string& display_text);
  void SetCollectables(const std::vector<std::string>& lines);
  // Menus used during play, the buttons and the command box; off while a script waits.
  void EnableGameControls(bool on);
  void ShowDebugMenu(bool shown);
  // Enables and disables every control as the game's state asks (a game opened or over, a wait
  // begun or ended).
  void UpdateControls();
  // The game has been won or lost: only loading, restarting and leaving remain.
  void GameOver();
  void ClearCommandBox();
  void FocusCommandBox();
  void AppendLogMessage(std::string_view message);
  void SetViewerRow(int store, int rows, int row, const std::string& name,
                    const std::string& value);
  // A game has been opened: the label colours of the settings apply, and open viewers show the
  // new game's tables.
  void GameOpened();
  // The player left the game: nothing in the window plays any more.
  void GameClosed();
  bool game_shown() const { return game_shown_; }

  // The controls, by the names the player's windows have always used.
  RichOutputPane* txtOutput() const { return txt_output_; }
  QLineEdit* txtCommand() const { return txt_command_; }
  QPushButton* butExecute() const { return but_execute_; }
  QListWidget* lstObjects() const { return lst_objects_; }
  QPushButton* butDo(int index) const { return but_do_.at(static_cast<std::size_t>(index)); }
  QPushButton* butDir(int index) const { return but_dir_.at(static_cast<std::size_t>(index)); }
  QLabel* lblLocation() const { return lbl_location_; }
  QPlainTextEdit* txtItems() const { return txt_items_; }
  QListWidget* lstCollectables() const { return lst_collectables_; }
  QLabel* lblStatus() const { return lbl_status_; }
  QTimer* Timer1() { return &timer1_; }
  QAction* mnuLoad() const { return mnu_load_; }
  QAction* mnuSave() const { return mnu_save_; }
  QAction* mnuSaveAs() const { return mnu_save_as_; }
  QAction* mnuRestart() const { return mnu_restart_; }
  QAction* mnuDifferentGame() const { return mnu_different_game_; }
  QAction* mnuGameInfo() const { return mnu_game_info_; }
  QAction* mnuUndo() const { return mnu_undo_; }
  QAction* mnuOptions() const { return mnu_options_; }
  QAction* mnuViewLog() const { return mnu_view_log_; }
  QAction* mnuViewVariables(VariableStore store) const;
  QAction* mnuReadAloud() const { return mnu_read_aloud_; }
  QMenu* mnuDebug() const { return mnu_debug_; }
  frmGWLLog* LogWindow() const { return log_window_; }
  frmStringVariables* VariablesWindow(VariableStore store) const;

  // Reading new text aloud: false when no speech engine is installed.
  bool SpeechAvailable() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildMenus();
  QWidget* BuildSidePanel();
  void Execute();
  void RecallHistory(int step);
  void ShowActionButtons();
  void PressActionButton(int index);
  void ApplyLabelColours(bool highlighted);
  void ShowViewer(VariableStore store);
  void RefreshViewer(VariableStore store);
  void SetZoom(int steps);
  void SetReadAloud(bool on);
  void SpeakAdded(const QString& text);
  bool EndKeyWait(QObject* watched, QEvent* event);

  Player* player_ = nullptr;
  // A game shows in the window: from the moment its text has been read (its start scripts may
  // already wait for the player) until the player leaves it.
  bool game_shown_ = false;
  bool game_over_ = false;
  bool controls_enabled_ = true;
  std::array<bool, 10> exits_{};

  RichOutputPane* txt_output_;
  QLineEdit* txt_command_;
  QPushButton* but_execute_;
  QListWidget* lst_objects_;
  std::array<QPushButton*, 4> but_do_{};
  std::array<QPushButton*, 10> but_dir_{};
  QLabel* lbl_location_;
  QPlainTextEdit* txt_items_;
  QListWidget* lst_collectables_;
  QLabel* lbl_status_;
  QTimer timer1_;

  QAction* mnu_load_ = nullptr;
  QAction* mnu_save_ = nullptr;
  QAction* mnu_save_as_ = nullptr;
  QAction* mnu_restart_ = nullptr;
  QAction* mnu_different_game_ = nullptr;
  QAction* mnu_game_info_ = nullptr;
  QAction* mnu_undo_ = nullptr;
  QAction* mnu_options_ = nullptr;
  QAction* mnu_view_log_ = nullptr;
  std::array<QAction*, 3> mnu_view_variables_{};
  QAction* mnu_zoom_in_ = nullptr;
  QAction* mnu_zoom_out_ = nullptr;
  QAction* mnu_zoom_reset_ = nullptr;
  QAction* mnu_read_aloud_ = nullptr;
  QMenu* mnu_debug_ = nullptr;

  frmGWLLog* log_window_;
  std::array<frmStringVariables*, 3> viewers_{};

  // The session's commands, oldest first, and where Up and Down have got to: history_.size()
  // is the box as the player left it (`draft_`).
  QStringList history_;
  qsizetype history_position_ = 0;
  QString draft_;

  QString location_;
  QTextToSpeech* speech_ = nullptr;
};

}  // namespace tarve
