#include "terminal/LineEditor.h"

#include <histedit.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>

namespace tarve {

LineEditor::LineEditor()
    : el_(el_init("tarve-cli", stdin, stdout, stderr)), history_(history_init()) {
  HistEvent event;
  history(history_, &event, H_SETSIZE, 1000);
  history(history_, &event, H_SETUNIQUE, 1);
  el_set(el_, EL_CLIENTDATA, this);
  el_set(el_, EL_PROMPT, &LineEditor::Prompt);
  el_set(el_, EL_EDITOR, "emacs");
  // The editor restores the terminal on signals and follows a resized window.
  el_set(el_, EL_SIGNAL, 1);
  el_set(el_, EL_HIST, history, history_);
  // Keys that terminals send but the editor leaves unbound.
  const char* const bindings[][2] = {
      {"^R", "em-inc-search-prev"},      {"\\e[H", "ed-move-to-beg"},  {"\\e[F", "ed-move-to-end"},
      {"\\eOH", "ed-move-to-beg"},       {"\\eOF", "ed-move-to-end"},  {"\\e[1~", "ed-move-to-beg"},
      {"\\e[4~", "ed-move-to-end"},      {"\\e[7~", "ed-move-to-beg"}, {"\\e[8~", "ed-move-to-end"},
      {"\\e[3~", "ed-delete-next-char"}, {"\\e[1;5D", "ed-prev-word"}, {"\\e[1;5C", "em-next-word"},
      {"\\e[1;3D", "ed-prev-word"},      {"\\e[1;3C", "em-next-word"},
  };
  for (const auto& binding : bindings) el_set(el_, EL_BIND, binding[0], binding[1], nullptr);
  // The player's own settings (~/.editrc) come last, so they can change any of these.
  el_source(el_, nullptr);
}

LineEditor::~LineEditor() {
  el_end(el_);
  history_end(history_);
}

char* LineEditor::Prompt(editline* el) {
  void* self = nullptr;
  el_get(el, EL_CLIENTDATA, &self);
  return static_cast<LineEditor*>(self)->prompt_.data();
}

std::optional<std::string> LineEditor::Read(const std::string& prompt) {
  prompt_ = prompt;
  int count = 0;
  const char* line = el_gets(el_, &count);
  if (line == nullptr || count <= 0) return std::nullopt;
  std::string result(line, static_cast<std::size_t>(count));
  while (!result.empty() && (result.back() == '\n' || result.back() == '\r')) result.pop_back();
  return result;
}

void LineEditor::Remember(const std::string& line) {
  if (line.empty()) return;
  HistEvent event;
  history(history_, &event, H_ENTER, line.c_str());
  if (!history_file_.empty()) history(history_, &event, H_SAVE, history_file_.c_str());
}

void LineEditor::UseHistoryFile(const std::string& path) {
  if (path == history_file_) return;
  HistEvent event;
  history(history_, &event, H_CLEAR);
  history_file_ = path;
  if (path.empty()) return;
  std::error_code error;
  std::filesystem::create_directories(std::filesystem::path(path).parent_path(), error);
  history(history_, &event, H_LOAD, path.c_str());
}

std::string HistoryFileFor(const std::string& data_folder, const std::string& game_file) {
  if (data_folder.empty() || game_file.empty()) return {};
  std::error_code error;
  std::filesystem::path full = std::filesystem::weakly_canonical(game_file, error);
  if (error) full = game_file;
  // FNV-1a: two games of the same name in different folders keep their own histories.
  std::uint32_t hash = 2166136261u;
  for (const char c : full.string()) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
  }
  char suffix[16];
  std::snprintf(suffix, sizeof suffix, "-%08x", hash);
  return data_folder + "/history/" + full.filename().string() + suffix;
}

}  // namespace tarve
