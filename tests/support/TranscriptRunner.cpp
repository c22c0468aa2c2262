// Runs one transcript test: plays a game through tarve-cli with the transcript's input lines and
// compares what the player printed (and, when asked, its script log) with the transcript. The
// format is described in tests/README.md.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Expected {
  std::string text;
  int source_line;
};

// A file the run must leave in its home folder, with its expected lines.
struct ExpectedFile {
  std::string name;
  std::vector<Expected> lines;
};

// One value of the settings file written before the run.
struct SettingValue {
  std::string section, key, value;
};

struct Transcript {
  std::string game;
  bool no_game = false;  // tarve-cli starts without a file
  std::vector<std::string> args;
  int status = 0;
  std::string input;
  std::vector<Expected> output;
  bool check_log = false;
  bool text_only = false;  // the transcript shows something only the text form has
  std::vector<Expected> log;
  std::vector<SettingValue> settings;
  std::vector<ExpectedFile> files;
};

std::vector<std::string> SplitWords(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> words;
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

bool Parse(const fs::path& path, Transcript& t, std::string& error) {
  std::ifstream in(path);
  if (!in) {
    error = "cannot read " + path.string();
    return false;
  }
  bool header = true;
  bool in_log = false;
  bool in_file = false;
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (header) {
      if (line.rfind("#", 0) == 0) continue;
      if (line.rfind("@", 0) == 0 && line != "@log") {
        const std::size_t blank = line.find(' ');
        const std::string key = line.substr(0, blank);
        const std::string value = blank == std::string::npos ? "" : line.substr(blank + 1);
        if (key == "@game") {
          // "{generated}" names the folder of the games the build generates (stress games).
          const char* generated = std::getenv("TARVE_GENERATED_GAMES");
          t.game = value.starts_with("{generated}") && generated != nullptr
                       ? generated + value.substr(11)
                       : value;
        } else if (key == "@args")
          t.args = SplitWords(value);
        else if (key == "@status")
          t.status = std::atoi(value.c_str());
        else if (key == "@begin")
          header = false;
        else if (key == "@text-only")
          t.text_only = true;
        else if (key == "@no-game")
          t.no_game = true;
        else if (key == "@settings") {
          // @settings SECTION KEY VALUE: the value is the rest of the line, blanks included.
          std::istringstream fields(value);
          SettingValue setting;
          fields >> setting.section >> setting.key;
          std::getline(fields >> std::ws, setting.value);
          if (setting.key.empty()) {
            error = path.string() + ":" + std::to_string(number) + ": @settings needs a key";
            return false;
          }
          t.settings.push_back(setting);
        } else {
          error = path.string() + ":" + std::to_string(number) + ": unknown directive " + key;
          return false;
        }
        continue;
      }
      header = false;
    }
    if (line == "@log") {
      in_log = true;
      in_file = false;
      t.check_log = true;
      continue;
    }
    if (line.rfind("@file ", 0) == 0) {
      in_file = true;
      in_log = false;
      t.files.push_back({line.substr(6), {}});
      continue;
    }
    if (in_file) {
      t.files.back().lines.push_back({line, number});
    } else if (in_log) {
      t.log.push_back({line, number});
    } else if (line.rfind("> ", 0) == 0 || line == ">") {
      t.input += line.substr(line.size() > 1 ? 2 : 1) + "\n";
      t.output.push_back({line, number});
    } else if (line.rfind("<<", 0) == 0) {
      t.input += line.substr(line.size() > 2 ? 3 : 2) + "\n";
    } else if (line.rfind("=", 0) == 0) {
      t.output.push_back({line.substr(1), number});
    } else {
      t.output.push_back({line, number});
    }
  }
  if (t.game.empty() != t.no_game) {
    error = path.string() + ": needs either a @game line or @no-game";
    return false;
  }
  return true;
}

// "{*}" in an expected line stands for any text.
bool Matches(const std::string& expected, const std::string& actual) {
  const std::string star = "{*}";
  std::size_t at = expected.find(star);
  if (at == std::string::npos) return expected == actual;
  std::vector<std::string> pieces;
  std::size_t from = 0;
  for (; at != std::string::npos; at = expected.find(star, from)) {
    pieces.push_back(expected.substr(from, at - from));
    from = at + star.size();
  }
  pieces.push_back(expected.substr(from));
  if (actual.compare(0, pieces.front().size(), pieces.front()) != 0) return false;
  std::size_t pos = pieces.front().size();
  for (std::size_t i = 1; i + 1 < pieces.size(); ++i) {
    pos = actual.find(pieces[i], pos);
    if (pos == std::string::npos) return false;
    pos += pieces[i].size();
  }
  const std::string& last = pieces.back();
  return actual.size() >= pos + last.size() &&
         actual.compare(actual.size() - last.size(), last.size(), last) == 0;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::string line;
  std::istringstream in(text);
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

bool Compare(const fs::path& transcript, const char* what, const std::vector<Expected>& expected,
             const std::vector<std::string>& actual) {
  const std::size_t n = std::max(expected.size(), actual.size());
  for (std::size_t i = 0; i < n; ++i) {
    const bool have_expected = i < expected.size();
    const bool have_actual = i < actual.size();
    if (have_expected && have_actual && Matches(expected[i].text, actual[i])) continue;
    std::cerr << transcript.string() << ":"
              << (have_expected      ? expected[i].source_line
                  : expected.empty() ? 0
                                     : expected.back().source_line)
              << ": " << what << " line " << i + 1 << " differs\n"
              << "  expected: "
              << (have_expected ? "\"" + expected[i].text + "\"" : "(nothing more)") << "\n"
              << "  actual:   " << (have_actual ? "\"" + actual[i] + "\"" : "(nothing more)")
              << "\n"
              << "--- whole " << what << " ---\n";
    for (const std::string& line : actual) std::cerr << line << "\n";
    return false;
  }
  return true;
}

// Replaces every occurrence of `from` in `text` by `to`.
std::string ReplaceAll(std::string text, const std::string& from, const std::string& to) {
  if (from.empty()) return text;
  for (std::size_t at = text.find(from); at != std::string::npos;
       at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// Compiles the transcript's game into a copy of its folder (so its libraries are found beside
// it) and returns the compiled file's path; empty when it cannot.
std::string CompileCopy(const fs::path& compiler, const fs::path& transcript, const Transcript& t,
                        const fs::path& home) {
  const fs::path game = fs::absolute(transcript.parent_path() / t.game);
  const fs::path copy = home / "compiled";
  std::error_code ec;
  fs::copy(game.parent_path(), copy, fs::copy_options::recursive, ec);
  if (ec) return {};
  const fs::path compiled = copy / game.filename().replace_extension(".cgw");
  const std::string command =
      "'" + compiler.string() + "' '" + game.string() + "' '" + compiled.string() + "'";
  if (std::system(command.c_str()) != 0) return {};
  return compiled.string();
}

// The settings file tarve-cli reads with --settings: INI groups, values quoted so that commas,
// backslashes and a leading "@" keep their meaning as plain text.
void WriteSettings(const fs::path& folder, const std::vector<SettingValue>& settings,
                   const fs::path& home) {
  if (settings.empty()) return;
  fs::create_directories(folder);
  std::vector<std::string> sections;
  for (const SettingValue& s : settings) {
    if (std::find(sections.begin(), sections.end(), s.section) == sections.end()) {
      sections.push_back(s.section);
    }
  }
  std::ofstream out(folder / "Tarve.conf", std::ios::binary);
  for (const std::string& section : sections) {
    out << "[" << section << "]\n";
    for (const SettingValue& s : settings) {
      if (s.section != section) continue;
      std::string value = ReplaceAll(s.value, "{home}", home.string());
      if (!value.empty() && value[0] == '@') value.insert(0, "@");
      value = ReplaceAll(value, "\\", "\\\\");
      value = ReplaceAll(value, "\"", "\\\"");
      out << s.key << "=\"" << value << "\"\n";
    }
  }
}

constexpr int kSkipped = 77;

}  // namespace

int main(int argc, char** argv) {
  // transcript_runner TARVE_CLI TRANSCRIPT [TARVE_COMPILE]: with the compiler, the game is
  // played in its compiled form and must give the same transcript.
  if (argc != 3 && argc != 4) {
    std::cerr << "usage: transcript_runner TARVE_CLI TRANSCRIPT [TARVE_COMPILE]\n";
    return 2;
  }
  const fs::path cli = fs::absolute(argv[1]);
  const fs::path transcript = fs::absolute(argv[2]);
  Transcript t;
  std::string error;
  if (!Parse(transcript, t, error)) {
    std::cerr << error << "\n";
    return 2;
  }
  const bool compiled_form = argc == 4;
  if (compiled_form && (t.no_game || t.text_only || fs::path(t.game).extension() != ".gwl" ||
                        std::find(t.args.begin(), t.args.end(), "--dump") != t.args.end())) {
    std::cout << transcript.filename().string() << ": not played in compiled form\n";
    return kSkipped;
  }

  // Each run gets a fresh home, so settings and logs of one test never reach another.
  char home_template[] = "/tmp/tarve-transcript-XXXXXX";
  if (mkdtemp(home_template) == nullptr) return 2;
  const fs::path home = home_template;
  const fs::path input_file = home / "input.txt";
  const fs::path output_file = home / "output.txt";
  const fs::path log_file = home / "script.log";
  // "{home}" in the input names the run's own home folder, so that a test can write files (a
  // saved game) that vanish with it; the output shows that folder as "{home}" again.
  std::ofstream(input_file, std::ios::binary) << ReplaceAll(t.input, "{home}", home.string());
  std::string game_argument = t.game;
  if (compiled_form) {
    game_argument = CompileCopy(fs::absolute(argv[3]), transcript, t, home);
    if (game_argument.empty()) {
      std::cerr << transcript.string() << ": tarve-compile could not compile " << t.game << "\n";
      fs::remove_all(home);
      return 1;
    }
  }

  std::vector<std::string> args = {cli.string(), "--settings", (home / "settings").string()};
  if (t.check_log) {
    args.push_back("--log");
    args.push_back(log_file.string());
  }
  // "{home}" in the options too: a transcript file written in the run's own folder.
  for (const std::string& arg : t.args) args.push_back(ReplaceAll(arg, "{home}", home.string()));
  if (!t.no_game) args.push_back(game_argument);
  WriteSettings(home / "settings", t.settings, home);

  pid_t pid = fork();
  if (pid == 0) {
    if (chdir(transcript.parent_path().c_str()) != 0) _exit(127);
    int in = open(input_file.c_str(), O_RDONLY);
    int out = open(output_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (in < 0 || out < 0) _exit(127);
    dup2(in, 0);
    dup2(out, 1);
    setenv("HOME", home.c_str(), 1);
    setenv("XDG_CONFIG_HOME", (home / "config").c_str(), 1);
    setenv("XDG_DATA_HOME", (home / "data").c_str(), 1);
    setenv("NO_COLOR", "1", 1);
    std::vector<char*> argv_out;
    for (std::string& arg : args) argv_out.push_back(arg.data());
    argv_out.push_back(nullptr);
    execv(argv_out[0], argv_out.data());
    _exit(127);
  }
  int wait_status = 0;
  waitpid(pid, &wait_status, 0);

  bool ok = true;
  if (!WIFEXITED(wait_status)) {
    std::cerr << transcript.string() << ": tarve-cli did not exit normally (signal "
              << (WIFSIGNALED(wait_status) ? WTERMSIG(wait_status) : 0) << ")\n";
    ok = false;
  } else if (WEXITSTATUS(wait_status) != t.status) {
    std::cerr << transcript.string() << ": exit status " << WEXITSTATUS(wait_status)
              << ", expected " << t.status << "\n";
    ok = false;
  }
  // The compiled game and its folder stand where the text game and its folder stood in
  // everything the player prints.
  const std::string copy_folder = (home / "compiled").string() + "/";
  const std::string game_folder = fs::path(t.game).parent_path().string() + "/";
  auto read = [&](const fs::path& file) {
    std::string text = ReplaceAll(ReadFile(file), game_argument, t.game);
    if (compiled_form) text = ReplaceAll(text, copy_folder, game_folder);
    return Lines(ReplaceAll(text, home.string(), "{home}"));
  };
  ok = Compare(transcript, "output", t.output, read(output_file)) && ok;
  if (t.check_log) ok = Compare(transcript, "log", t.log, read(log_file)) && ok;
  for (const ExpectedFile& file : t.files) {
    ok = Compare(transcript, file.name.c_str(), file.lines, read(home / file.name)) && ok;
  }
  fs::remove_all(home);
  if (ok) std::cout << transcript.filename().string() << ": passed\n";
  return ok ? 0 : 1;
}
