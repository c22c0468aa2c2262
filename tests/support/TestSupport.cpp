#include "support/TestSupport.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/Numbers.h"
#include "script/GameReader.h"

namespace tarve::test {

void RecordingHost::SetFontSize(float size) { styled += "{size:" + FormatSingle(size) + "}"; }

void RecordingHost::SetAlignment(Alignment alignment) {
  const char* const names[] = {"left", "centre", "right"};
  styled += std::string("{align:") + names[static_cast<int>(alignment)] + "}";
}

void RecordingHost::ProcessEventsUntil(const std::function<bool()>& done) {
  waits.push_back(output);
  while (!done() && player != nullptr) {
    if (input.empty()) {
      player->EndOfInput();
      return;
    }
    const std::string line = input.front();
    input.pop_front();
    player->SubmitCommand(line);
  }
}

int RecordingHost::ShowMessage(const std::string& text, const std::string& title, int style) {
  messages.push_back("[" + title + "] " + text);
  windows.push_back("box " + title);
  message_styles.push_back(style);
  return (style & 7) == kYesNo ? kAnswerYes : kAnswerOk;
}

TempDir::TempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "tarve-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) != nullptr) path_ = pattern;
}

TempDir::~TempDir() {
  std::error_code ec;
  if (!path_.empty()) std::filesystem::remove_all(path_, ec);
}

std::string TempDir::Write(const std::string& name, std::string_view content) const {
  const std::filesystem::path file = std::filesystem::path(path_) / name;
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << content;
  return file.string();
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

TestGame::TestGame(const TempDir& dir) {
  host.player = &player;
  game.game_path = dir.path() + "/";
  game.program_folder = dir.path() + "/program";
}

bool ReadSource(TestGame& t, const TempDir& dir, std::string_view source) {
  const std::string path = dir.Write("game.gwl", source);
  return ReadGameFile(t.game, path);
}

std::vector<std::string> LinesOf(const Game& game) {
  return {game.text.lines.begin() + 1, game.text.lines.end()};
}

}  // namespace tarve::test
