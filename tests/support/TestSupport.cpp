#include "support/TestSupport.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>

#include "script/GameReader.h"

namespace tarve::test {

int RecordingHost::ShowMessage(const std::string& text, const std::string& title, int style) {
  messages.push_back("[" + title + "] " + text);
  int answer = 0;
  if (!answers.empty()) {
    answer = answers.front();
    answers.pop_front();
  }
  if (answer != 0) return answer;
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

TestGame::TestGame(const TempDir& dir) {
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
