// What the engine needs of the world around it, split by role: the output pane, the dialogs and
// small windows, the game window's state, and the platform's services. The desktop program, the
// terminal player and the tests each implement the roles they show; the platform services are
// written once for both front ends.
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarve {

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

// The output pane. Text is inserted at the end and takes the styles set before it; a line break
// arrives as "\r\n" inside the text.
class OutputPane {
 public:
  virtual ~OutputPane() = default;
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
};

// Message boxes, the input box, the selection of `choose`, file dialogs, and the program's small
// windows that come and go around a game: the splash, the progress window and the launcher.
class Dialogs {
 public:
  virtual ~Dialogs() = default;
  // A message box; `style` is a MessageStyle, possibly plus kExclamation. Returns a
  // MessageAnswer.
  virtual int ShowMessage(const std::string& text, const std::string& title, int style) = 0;
  // An input box; nothing when the player cancels it.
  virtual std::optional<std::string> InputBox(const std::string& title, const std::string& prompt) {
    (void)title;
    (void)prompt;
    return std::nullopt;
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
  // Progress window shown while a game loads.
  virtual void ShowProgress(const std::string& caption, int percent) {
    (void)caption;
    (void)percent;
  }
  virtual void CloseProgress() {}
  // The splash window of a start without a file, shown and painted at once; closed when the
  // launcher has shown.
  virtual void ShowSplash() {}
  virtual void CloseSplash() {}
  // The list of installed games to start one from; start-up does not wait for it.
  virtual void ShowLauncher() {}
};

// The game window's state and its event loop.
class GameWindow {
 public:
  virtual ~GameWindow() = default;
  virtual void SetCaption(const std::string&) {}
  virtual void SetLocation(const std::string&) {}
  virtual void SetStatusText(const std::string&) {}
  // The game was saved to `path` (a window that showed no file dialog may say where it went).
  virtual void GameSaved(const std::string& path) { (void)path; }
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
  // The game is closed (the player confirmed leaving it): `end_program` when the program ends
  // with it, otherwise the launcher comes back.
  virtual void CloseGame(bool end_program) { (void)end_program; }
  // Every message of the script log, as it is logged (the log window, the terminal's --log).
  virtual void ScriptLogAppended(std::string_view message) { (void)message; }
  // A row of a variables viewer changed: `rows` rows in all (row 0 is the heading).
  virtual void VariableViewerRow(int store, int rows, int row, const std::string& name,
                                 const std::string& value) {
    (void)store;
    (void)rows;
    (void)row;
    (void)name;
    (void)value;
  }
  // Waiting: keep handling the player's input (typed lines, key presses, buttons) until `done`
  // holds or no more input can come. The engine ends its wait when this returns, whether or not
  // `done` holds, so a window that cannot wait never hangs a game.
  virtual void ProcessEventsUntil(const std::function<bool()>& done) { (void)done; }
};

// What the platform offers a game beyond the windows: sound, music, pictures, documents, pauses
// and the clock. (A game's file copies stay in the engine, where the rules about which files a
// game may touch are checked on the very paths that are copied.)
class PlatformServices {
 public:
  virtual ~PlatformServices() = default;
  virtual void PlayWave(const std::string& path, bool sync) {
    (void)path;
    (void)sync;
  }
  // "Play" with the file (the device is closed and reopened first), or "Stop".
  virtual void PlayMidi(const std::string& path) { (void)path; }
  virtual void StopMidi() {}
  // Stops the sound and the music (a new game starts).
  virtual void StopSounds() { StopMidi(); }
  virtual void ShowPicture(const std::string& path) { (void)path; }
  enum class OpenResult { kOpened, kNotFound, kNoAssociation, kOutOfMemory };
  virtual OpenResult OpenDocument(const std::string& path, bool minimised) {
    (void)path;
    (void)minimised;
    return OpenResult::kNoAssociation;
  }
  virtual void Sleep(int milliseconds) { (void)milliseconds; }
  // A number from the clock that differs from run to run, to seed the random numbers.
  virtual std::uint32_t ClockSeed();
};

// The four roles the engine reaches through. A front end that plays every role in one object
// hands that object for all four.
struct Host {
  Host(OutputPane& pane_in, Dialogs& dialogs_in, GameWindow& window_in,
       PlatformServices& platform_in)
      : pane(pane_in), dialogs(dialogs_in), window(window_in), platform(platform_in) {}
  template <typename All>
  requires std::derived_from<All, OutputPane> && std::derived_from<All, Dialogs> &&
      std::derived_from<All, GameWindow> && std::derived_from<All, PlatformServices>
      Host(All& all) : Host(all, all, all, all) {}  // NOLINT: one object, every role

  OutputPane& pane;
  Dialogs& dialogs;
  GameWindow& window;
  PlatformServices& platform;
};

}  // namespace tarve
