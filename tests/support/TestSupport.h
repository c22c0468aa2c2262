// Shared helpers of the unit tests: a host that records what the player showed, and temporary
// folders with game files written into them.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "game/Game.h"
#include "game/Host.h"
#include "player/Player.h"

namespace tarve::test {

// Keeps everything the engine asked of its host, and answers message boxes (OK or Yes), input
// boxes, selections and waits.
class RecordingHost : public OutputPane,
                      public Dialogs,
                      public GameWindow,
                      public PlatformServices {
 public:
  // The player whose command box the scripted input reaches during waits.
  Player* player = nullptr;

  void InsertText(std::string_view text) override {
    output += text;
    styled += text;
  }
  void SetBold(bool on) override { styled += on ? "{b}" : "{/b}"; }
  void SetItalic(bool on) override { styled += on ? "{i}" : "{/i}"; }
  void SetUnderline(bool on) override { styled += on ? "{u}" : "{/u}"; }
  void SetColour(Rgb c) override {
    styled += "{colour:" + std::to_string(c.r) + "," + std::to_string(c.g) + "," +
              std::to_string(c.b) + "}";
  }
  void SetFontName(const std::string& name) override { styled += "{font:" + name + "}"; }
  void SetFontSize(float size) override;
  void SetAlignment(Alignment alignment) override;
  void ClearOutput() override {
    output.clear();
    styled += "{clear}";
  }
  void Repaint() override { ++repaints; }
  int ShowMessage(const std::string& text, const std::string& title, int style) override;
  std::optional<std::string> InputBox(const std::string&, const std::string&) override {
    return std::nullopt;
  }
  void ScriptLogAppended(std::string_view message) override { log.emplace_back(message); }
  void ShowProgress(const std::string& text, int percent) override {
    progress.push_back(text + " " + std::to_string(percent));
  }
  void CloseProgress() override { progress.push_back("closed"); }
  void ShowSplash() override { windows.push_back("splash"); }
  void CloseSplash() override { windows.push_back("splash closed"); }
  void ShowLauncher() override { windows.push_back("launcher"); }
  // Replays `input` the way the terminal does: a line ends a key wait, otherwise it goes to the
  // command box; when the script runs out, every wait ends.
  void ProcessEventsUntil(const std::function<bool()>& done) override;
  int ShowSelection(const std::string&, const std::vector<std::string>& answers) override {
    return answers.empty() ? -1 : 0;
  }
  std::optional<std::string> ChooseSavedGameFile(bool) override {
    if (file_dialog_answers.empty()) return std::nullopt;
    std::optional<std::string> answer = file_dialog_answers.front();
    file_dialog_answers.pop_front();
    return answer;
  }

  void SetCaption(const std::string& text) override { caption = text; }
  void SetLocation(const std::string& text) override { location = text; }
  void SetStatusText(const std::string&) override {}
  void SetDirections(const std::string& letters) override { directions = letters; }
  void SetThingsHere(const std::vector<ListedThing>& things) override { things_here = things; }
  void SetItems(const std::string& text) override { items = text; }
  void SetCollectables(const std::vector<std::string>& lines) override { collectables = lines; }
  void EnableGameControls(bool on) override { controls += on ? "+" : "-"; }
  void ShowDebugMenu(bool shown) override { debug_menu_shown = shown; }
  void GameOver() override {}
  void ClearCommandBox() override { controls += "c"; }
  void FocusCommandBox() override { controls += "f"; }
  void SetBusy(bool on) override { controls += on ? "B" : "b"; }
  void CloseGame(bool) override {}

  // The pane as it reads now (a clear empties it).
  std::string output;
  // Every pane operation since the start, with style changes as markers: "{b}" "{/b}" "{i}"
  // "{/i}" "{u}" "{/u}" "{colour:255,0,0}" "{font:NAME}" "{size:12}" "{align:centre}" and
  // "{clear}" between the inserted texts.
  std::string styled;
  int repaints = 0;
  std::vector<std::string> messages;  // "[TITLE] TEXT" for each message box
  std::vector<int> message_styles;    // the style of each message box
  // The program's windows as they came and went, message boxes among them by their titles:
  // "splash", "splash closed", "launcher", "box TITLE".
  std::vector<std::string> windows;
  std::vector<std::string> log;

  // Input lines for ProcessEventsUntil, and the pane's text at the start of each wait.
  std::deque<std::string> input;
  std::vector<std::string> waits;
  // Selections are answered with their first answer, input boxes cancelled, saved-game file
  // dialogs answered in turn (cancelled when none is left).
  std::deque<std::optional<std::string>> file_dialog_answers;

  // The game window's state as the engine last set it.
  std::string caption;
  std::string location;
  std::string directions;
  std::vector<ListedThing> things_here;
  std::string items;
  std::vector<std::string> collectables;
  bool debug_menu_shown = true;
  // A letter a call: "+" "-" controls enabled or disabled, "c" "f" command box cleared or focused,
  // "B" "b" busy or not.
  std::string controls;
  std::vector<std::string> progress;  // "CAPTION PERCENT" for each step, "closed" when closed

  // Platform services, one entry per request: "wave PATH sync" or "wave PATH async",
  // "midi PATH", "midi stop", "picture PATH", "open PATH" or "open PATH minimised", "sleep MS".
  void PlayWave(const std::string& path, bool sync) override {
    services.push_back("wave " + path + (sync ? " sync" : " async"));
  }
  void PlayMidi(const std::string& path) override { services.push_back("midi " + path); }
  void StopMidi() override { services.push_back("midi stop"); }
  void ShowPicture(const std::string& path) override { services.push_back("picture " + path); }
  OpenResult OpenDocument(const std::string& path, bool minimised) override {
    services.push_back("open " + path + (minimised ? " minimised" : ""));
    return open_result;
  }
  void Sleep(int milliseconds) override {
    services.push_back("sleep " + std::to_string(milliseconds));
  }
  std::vector<std::string> services;
  OpenResult open_result = OpenResult::kOpened;  // what OpenDocument answers
  // Variables viewer rows as "STORE ROWS ROW NAME=VALUE".
  void VariableViewerRow(int store, int rows, int row, const std::string& name,
                         const std::string& value) override {
    viewer_rows.push_back(std::to_string(store) + " " + std::to_string(rows) + " " +
                          std::to_string(row) + " " + name + "=" + value);
  }
  std::vector<std::string> viewer_rows;
};

// A temporary folder, removed with everything in it when the object goes.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::string& path() const { return path_; }
  // Writes `content` (bytes as given) to `name` inside the folder and returns the full path.
  std::string Write(const std::string& name, std::string_view content) const;

 private:
  std::string path_;
};

// The bytes of the file at `path`; empty when it cannot be read.
std::string ReadFile(const std::string& path);

// A game ready to read files from `dir`: game path and program folder set.
struct TestGame {
  explicit TestGame(const TempDir& dir);
  RecordingHost host;
  Player player{host};
  Game& game = player.game();
};

// Reads `source` (written as game.gwl into a fresh folder) and returns the reader's verdict.
bool ReadSource(TestGame& t, const TempDir& dir, std::string_view source);

// The game's lines, without the placeholder at index 0.
std::vector<std::string> LinesOf(const Game& game);

}  // namespace tarve::test
