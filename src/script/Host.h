// The one interface through which the engine reaches the outside world: the output pane, message
// boxes and dialogs, waiting for the player, the main window's state and platform services. The
// desktop window, the terminal player and the tests each implement it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarve {

struct Game;

// Message box styles and answers, with the numbers games and players have always used.
enum MessageStyle : int {
  kOkOnly = 0,
  kOkCancel = 1,
  kYesNo = 4,
  kExclamation = 48,  // added to a style: the box shows a warning icon
};
enum MessageAnswer : int { kAnswerOk = 1, kAnswerCancel = 2, kAnswerYes = 6, kAnswerNo = 7 };

struct Rgb {
  uint8_t r = 0, g = 0, b = 0;
  bool operator==(const Rgb&) const = default;
};

enum class Alignment { kLeft, kCentre, kRight };

class Host {
 public:
  virtual ~Host() = default;

  // The output pane. Text is inserted at the end and takes the styles set before it; a line
  // break arrives as "\r\n" inside the text.
  virtual void InsertText(std::string_view text) = 0;
  virtual void SetBold(bool) {}
  virtual void SetItalic(bool) {}
  virtual void SetUnderline(bool) {}
  virtual void SetColour(Rgb) {}
  virtual void SetFontName(const std::string&) {}
  virtual void SetFontSize(float) {}
  virtual void SetAlignment(Alignment) {}
  virtual void ClearOutput() {}
  virtual void Repaint() {}

  // A message box; `style` is a MessageStyle, possibly plus kExclamation. Returns a
  // MessageAnswer.
  virtual int ShowMessage(const std::string& text, const std::string& title, int style) = 0;
  // An input box; nothing when the player cancels it.
  virtual std::optional<std::string> InputBox(const std::string& title, const std::string& prompt) {
    (void)title;
    (void)prompt;
    return std::nullopt;
  }

  // Every message of the script log, as it is logged (the log window, the terminal's --log).
  virtual void ScriptLogAppended(std::string_view message) { (void)message; }

  // Progress window shown while a game loads.
  virtual void ShowProgress(const std::string& caption, int percent) {
    (void)caption;
    (void)percent;
  }
  virtual void CloseProgress() {}

  // Waiting: keep handling the player's input (typed lines reach SubmitCommand, key presses
  // KeyPressed) until `done` holds or no more input can come. The engine ends its wait when this
  // returns, whether or not `done` holds, so a host that cannot wait never hangs a game.
  virtual void ProcessEventsUntil(Game& game, const std::function<bool()>& done) {
    (void)game;
    (void)done;
  }
  // The selection dialog of `choose`: the index (from 0) of the confirmed answer, or -1 when
  // the dialog was closed without one.
  virtual int ShowSelection(const std::string& prompt, const std::vector<std::string>& answers) {
    (void)prompt;
    return answers.empty() ? -1 : 0;
  }
  // A file dialog for saved games; nothing when cancelled. `save` asks for a file to write.
  virtual std::optional<std::string> ChooseSavedGameFile(bool save) {
    (void)save;
    return std::nullopt;
  }

  // The game window's state.
  virtual void SetCaption(const std::string&) {}
  virtual void SetLocation(const std::string&) {}
  virtual void SetStatusText(const std::string&) {}
  // One letter per exit: n s e w, a (ne) b (nw) c (se) d (sw), o (out).
  virtual void SetDirections(const std::string& letters) { (void)letters; }
  enum class ThingType { kCharacter, kObject, kPlace };
  struct ListedThing {
    ThingType type;
    std::string name;
  };
  virtual void SetThingsHere(const std::vector<ListedThing>&) {}
  virtual void SetItems(const std::string& display_text) { (void)display_text; }
  virtual void SetCollectables(const std::vector<std::string>& lines) { (void)lines; }
  // Menus, buttons and command box: disabled while a script waits for a key or a line.
  virtual void EnableGameControls(bool) {}
  virtual void ShowDebugMenu(bool) {}
  virtual void GameOver() {}
  virtual void ClearCommandBox() {}
  virtual void FocusCommandBox() {}
  virtual void SetBusy(bool) {}
  // The player confirmed "quit": the game is closed; `end_program` when it was started from
  // the command line.
  virtual void CloseGame(bool end_program) { (void)end_program; }
  // A row of a variables viewer changed: `rows` rows in all (row 0 is the heading).
  virtual void VariableViewerRow(int store, int rows, int row, const std::string& name,
                                 const std::string& value) {
    (void)store;
    (void)rows;
    (void)row;
    (void)name;
    (void)value;
  }

  // Platform services.
  virtual void PlayWave(const std::string& path, bool sync) {
    (void)path;
    (void)sync;
  }
  // "Stop", or "Play" with the file (the device is closed and reopened first).
  virtual void PlayMidi(const std::string& path) { (void)path; }
  virtual void StopMidi() {}
  virtual void ShowPicture(const std::string& path) { (void)path; }
  enum class OpenResult { kOpened, kNotFound, kNoAssociation, kOutOfMemory };
  virtual OpenResult OpenDocument(const std::string& path, bool minimised) {
    (void)path;
    (void)minimised;
    return OpenResult::kNoAssociation;
  }
  virtual void Sleep(int milliseconds) { (void)milliseconds; }
};

}  // namespace tarve
