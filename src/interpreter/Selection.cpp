// A selection block holds an `info <prompt>` tag and `choice <text> script` lines. The dialog
// shows at most eight answers; answers past the eighth are read but never offered.
#include "interpreter/Selection.h"

#include <algorithm>
#include <vector>

#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"
#include "interpreter/ExecuteScript.h"
#include "output/Output.h"
#include "script/CommonCode.h"

namespace tarve {

namespace {

constexpr std::size_t kMaxShownAnswers = 8;

struct Answer {
  std::string text;
  std::string script;
};

std::vector<Answer> ReadAnswers(Game& game, BlockRange block) {
  std::vector<Answer> answers;
  for (int i = block.start + 1; i < block.end && i <= game.text.LineCount(); ++i) {
    const std::string line = game.text.Line(i);
    if (!BeginsWith(line, "choice ")) continue;
    Answer answer;
    answer.text = RetrieveParameter(game, line, true);
    if (const std::size_t close = line.find('>'); close != std::string::npos) {
      answer.script = Trim(std::string_view(line).substr(close + 1));
    }
    answers.push_back(std::move(answer));
  }
  return answers;
}

}  // namespace

std::string ShowSelection(Game& game, std::string_view name) {
  const BlockRange block = FindBlockByName(game, "selection", name);
  std::string prompt;
  std::vector<Answer> answers;
  if (block.Found()) {
    prompt = FindTagInBlock(game, block, "info");
    answers = ReadAnswers(game, block);
  }
  PrintText(game, "- |i" + prompt + "|xi");
  // With nothing to choose from there is no dialog to show: it could only be confirmed with
  // no answer picked.
  if (answers.empty()) {
    LogScriptError(game, "Warning: Selection '" + std::string(name) + "' has no choices.");
    return std::string();
  }
  std::vector<std::string> shown;
  const std::size_t count = std::min(answers.size(), kMaxShownAnswers);
  for (std::size_t i = 0; i < count; ++i) shown.push_back(answers[i].text);
  const int picked = game.host.dialogs.ShowSelection(prompt, shown);
  // Closing the dialog without confirming picks nothing: no echo, no script.
  if (picked < 0 || static_cast<std::size_t>(picked) >= count) return std::string();
  PrintText(game, "- " + shown[static_cast<std::size_t>(picked)] + "|n");
  return answers[static_cast<std::size_t>(picked)].script;
}

void ExecuteChoose(Game& game, std::string_view name) {
  const std::string script = ShowSelection(game, name);
  if (!script.empty()) ExecuteScript(game, script);
}

}  // namespace tarve
