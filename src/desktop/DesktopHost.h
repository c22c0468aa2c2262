// The desktop program's host: the output pane, the dialogs and the game window's state of the
// engine, shown in the game window frmMain and the program's small windows. Waits keep the
// window alive in a nested event loop; the launcher lists the installed games.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "game/Host.h"

class QString;
class QWidget;

namespace tarve {

class Player;
class frmMain;
class frmNewGame;
class frmProgress;
class frmSplash;

class DesktopHost : public OutputPane, public Dialogs, public GameWindow {
 public:
  // The Load and Save As dialogs.
  static constexpr const char* kSavedGameFilter = "Tarve saved game (*.tsg);;All files (*)";

  DesktopHost();
  ~DesktopHost() override;
  DesktopHost(const DesktopHost&) = delete;
  DesktopHost& operator=(const DesktopHost&) = delete;

  // The application whose game the window shows.
  void Attach(Player& player);
  // Before the application goes: the windows no longer reach it.
  void Detach();
  frmMain& window() { return *main_; }
  // The launcher, once it has shown; nothing before.
  frmNewGame* launcher() const { return launcher_.get(); }
  // The program is to end: the player left the game named on the command line, or closed the
  // launcher without choosing a game.
  bool ending() const { return ending_; }

  void InsertText(std::string_view text) override;
  void SetBold(bool on) override;
  void SetItalic(bool on) override;
  void SetUnderline(bool on) override;
  void SetColour(Rgb colour) override;
  void SetFontName(const std::string& name) override;
  void SetFontSize(float size) override;
  void SetAlignment(Alignment alignment) override;
  void ClearOutput() override;
  void Repaint() override;

  int ShowMessage(const std::string& text, const std::string& title, int style) override;
  std::optional<std::string> InputBox(const std::string& title, const std::string& prompt) override;
  int ShowSelection(const std::string& prompt, const std::vector<std::string>& answers) override;
  std::optional<std::string> ChooseSavedGameFile(bool save) override;
  void ShowProgress(const std::string& caption, int percent) override;
  void CloseProgress() override;
  void ShowSplash() override;
  void CloseSplash() override;
  void ShowLauncher() override;

  void SetCaption(const std::string& caption) override;
  void SetLocation(const std::string& location) override;
  void SetStatusText(const std::string& text) override;
  void SetDirections(const std::string& letters) override;
  void SetThingsHere(const std::vector<ListedThing>& things) override;
  void SetItems(const std::string& display_text) override;
  void SetCollectables(const std::vector<std::string>& lines) override;
  void EnableGameControls(bool on) override;
  void ShowDebugMenu(bool shown) override;
  void GameOver() override;
  void ClearCommandBox() override;
  void FocusCommandBox() override;
  void SetBusy(bool on) override;
  void CloseGame(bool end_program) override;
  void ScriptLogAppended(std::string_view message) override;
  void VariableViewerRow(int store, int rows, int row, const std::string& name,
                         const std::string& value) override;
  void ProcessEventsUntil(const std::function<bool()>& done) override;

 private:
  // Dialogs belong to the game window while it shows, else they stand on their own.
  QWidget* DialogParent() const;
  void EndProgram();

  Player* player_ = nullptr;
  std::unique_ptr<frmMain> main_;
  std::unique_ptr<frmNewGame> launcher_;  // made when it first shows
  std::unique_ptr<frmProgress> progress_;
  std::unique_ptr<frmSplash> splash_;
  bool busy_ = false;
  bool ending_ = false;
};

}  // namespace tarve
