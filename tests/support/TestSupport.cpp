#include "support/TestSupport.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/Numbers.h"
#include "script/GameReader.h"

namespace tarve::test {

void RecordingHost::InsertText(std::string_view text) {
  output.append(text);
  styled.append(text);
}

void RecordingHost::SetColour(Rgb colour) {
  styled += "{colour:" + std::to_string(colour.r) + "," + std::to_string(colour.g) + "," +
            std::to_string(colour.b) + "}";
}

void RecordingHost::SetFontSize(float size) { styled += "{size:" + FormatSingle(size) + "}"; }

void RecordingHost::SetAlignment(Alignment alignment) {
  switch (alignment) {
    case Alignment::kLeft:
      styled += "{align:left}";
      break;
    case Alignment::kCentre:
      styled += "{align:centre}";
      break;
    case Alignment::kRight:
      styled += "{align:right}";
      break;
  }
}

void RecordingHost::ClearOutput() {
  output.clear();
  styled += "{clear}";
}

void RecordingHost::ShowProgress(const std::string& caption_text, int percent) {
  progress.push_back(caption_text + " " + std::to_string(percent));
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
    // Enter ends a pending key wait; otherwise the line goes to the command box.
    player->SubmitCommand(line);
  }
}

std::optional<std::string> RecordingHost::ChooseSavedGameFile(bool) {
  if (file_dialog_answers.empty()) return std::nullopt;
  std::optional<std::string> answer = file_dialog_answers.front();
  file_dialog_answers.pop_front();
  return answer;
}

int RecordingHost::ShowMessage(const std::string& text, const std::string& title, int style) {
  messages.push_back("[" + title + "] " + text);
  windows.push_back("box " + title);
  message_styles.push_back(style);
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
