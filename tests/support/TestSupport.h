// Shared helpers of the unit tests: a host that records what the player showed, and temporary
// folders with game files written into them.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "script/Game.h"
#include "script/Host.h"

namespace tarve::test {

// Keeps everything the engine asked of its host, and answers message boxes from a script.
class RecordingHost : public Host {
 public:
  void InsertText(std::string_view text) override { output.append(text); }
  void ClearOutput() override { output.clear(); }
  int ShowMessage(const std::string& text, const std::string& title, int style) override;
  void ScriptLogAppended(std::string_view message) override { log.emplace_back(message); }

  std::string output;
  std::vector<std::string> messages;  // "[TITLE] TEXT" for each message box
  std::vector<std::string> log;
  std::deque<int> answers;  // given to message boxes in turn; OK/Yes when empty
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

// A game ready to read files from `dir`: game path and program folder set.
struct TestGame {
  explicit TestGame(const TempDir& dir);
  RecordingHost host;
  Game game{host};
};

// Reads `source` (written as game.gwl into a fresh folder) and returns the reader's verdict.
bool ReadSource(TestGame& t, const TempDir& dir, std::string_view source);

// The game's lines, without the placeholder at index 0.
std::vector<std::string> LinesOf(const Game& game);

}  // namespace tarve::test
