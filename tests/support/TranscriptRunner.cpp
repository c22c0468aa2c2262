// Runs one transcript test: plays a game through tarve-cli with the transcript's input lines and
// compares what the player printed (and, when asked, its script log and files) with the
// transcript. The format is described in tests/README.md.
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Expected {
  std::string text;
  int source_line;
};

// What the run must leave behind: its output, its log or a file in its home folder.
struct Section {
  std::string name;  // "output", "log" or the file's name, all in the run's home folder
  std::vector<Expected> lines;
};

struct Transcript {
  std::string game;
  bool no_game = false;    // tarve-cli starts without a file
  bool text_only = false;  // the transcript shows something only the text form has
  std::vector<std::string> args;
  int status = 0;
  std::string input;
  std::vector<Section> sections = {{"output", {}}};
  // The settings file tarve-cli reads with --settings: the lines of each INI group, values quoted
  // so that commas, backslashes and a leading "@" keep their meaning as plain text.
  std::map<std::string, std::string> settings;
};

std::string ReplaceAll(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = from.empty() ? std::string::npos : text.find(from); at != std::string::npos;
       at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

bool Parse(const fs::path& path, Transcript& t, std::string& error) {
  std::ifstream in(path);
  if (!in) return error = "cannot read " + path.string(), false;
  bool header = true;
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (header && line.starts_with("#")) continue;
    if (header && line.starts_with("@") && line != "@log" && !line.starts_with("@file ")) {
      const std::size_t blank = line.find(' ');
      const std::string key = line.substr(0, blank);
      const std::string value = blank == std::string::npos ? "" : line.substr(blank + 1);
      std::istringstream fields(value);
      if (key == "@game") {
        // "{generated}" names the folder of the games the build generates (stress games).
        const char* generated = std::getenv("TARVE_GENERATED_GAMES");
        t.game = generated ? ReplaceAll(value, "{generated}", generated) : value;
      } else if (key == "@args") {
        for (std::string word; fields >> word;) t.args.push_back(word);
      } else if (key == "@status") {
        t.status = std::atoi(value.c_str());
      } else if (key == "@text-only") {
        t.text_only = true;
      } else if (key == "@no-game") {
        t.no_game = true;
      } else if (key == "@settings") {  // SECTION KEY VALUE, the value the rest of the line
        std::string section, name, text;
        std::getline(fields >> section >> name >> std::ws, text);
        if (text.starts_with("@")) text.insert(0, "@");
        text = ReplaceAll(ReplaceAll(text, "\\", "\\\\"), "\"", "\\\"");
        t.settings[section] += name + "=\"" + text + "\"\n";
      } else {
        return error = path.string() + ":" + std::to_string(number) + ": unknown directive " + key,
               false;
      }
      continue;
    }
    header = false;
    if (line == "@log" || line.starts_with("@file ")) {
      t.sections.push_back({line == "@log" ? "log" : line.substr(6), {}});
    } else if (t.sections.size() > 1) {
      t.sections.back().lines.push_back({line, number});
    } else if (line.starts_with("> ") || line.starts_with("<<")) {
      t.input += line.substr(std::min<std::size_t>(line[0] == '>' ? 2 : 3, line.size())) + "\n";
      if (line[0] == '>') t.sections[0].lines.push_back({line, number});
    } else {
      t.sections[0].lines.push_back({line.starts_with("=") ? line.substr(1) : line, number});
    }
  }
  if (t.game.empty() != t.no_game)
    return error = path.string() + ": needs @game or @no-game", false;
  return true;
}

// "{*}" in an expected line stands for any text.
bool Matches(std::string_view expected, std::string_view actual) {
  const std::size_t star = expected.find("{*}");
  if (star == std::string_view::npos) return expected == actual;
  if (actual.substr(0, star) != expected.substr(0, star)) return false;
  for (std::size_t from = star; from <= actual.size(); ++from) {
    if (Matches(expected.substr(star + 3), actual.substr(from))) return true;
  }
  return false;
}

bool Compare(const fs::path& transcript, const Section& section,
             const std::vector<std::string>& actual) {
  const std::vector<Expected>& expected = section.lines;
  for (std::size_t i = 0; i < std::max(expected.size(), actual.size()); ++i) {
    const bool have_expected = i < expected.size(), have_actual = i < actual.size();
    if (have_expected && have_actual && Matches(expected[i].text, actual[i])) continue;
    const int line = expected.empty() ? 0 : expected[std::min(i, expected.size() - 1)].source_line;
    std::cerr << transcript.string() << ":" << line << ": " << section.name << " line " << i + 1
              << " differs\n  expected: "
              << (have_expected ? "\"" + expected[i].text + "\"" : "(nothing more)")
              << "\n  actual:   " << (have_actual ? "\"" + actual[i] + "\"" : "(nothing more)")
              << "\n--- whole " << section.name << " ---\n";
    for (const std::string& text : actual) std::cerr << text << "\n";
    return false;
  }
  return true;
}

std::string Quote(const std::string& text) { return "'" + ReplaceAll(text, "'", "'\\''") + "'"; }

}  // namespace

int main(int argc, char** argv) {
  // transcript_runner TARVE_CLI TRANSCRIPT [TARVE_COMPILE]: with the compiler, the game is
  // played in its compiled form and must give the same transcript.
  if (argc != 3 && argc != 4)
    return std::cerr << "usage: transcript_runner TARVE_CLI TRANSCRIPT [TARVE_COMPILE]\n", 2;
  const fs::path transcript = fs::absolute(argv[2]);
  Transcript t;
  std::string error;
  if (!Parse(transcript, t, error)) return std::cerr << error << "\n", 2;
  const bool compiled_form = argc == 4;
  if (compiled_form && (t.no_game || t.text_only || fs::path(t.game).extension() != ".gwl" ||
                        std::ranges::find(t.args, "--dump") != t.args.end())) {
    std::cout << transcript.filename().string() << ": not played in compiled form\n";
    return 77;  // skipped
  }

  // Each run gets a fresh home, so settings and logs of one test never reach another. "{home}"
  // in the input and the options names it, so that a test can write files (a saved game) that
  // vanish with it; the output shows that folder as "{home}" again.
  char home_template[] = "/tmp/tarve-transcript-XXXXXX";
  if (mkdtemp(home_template) == nullptr) return 2;
  const fs::path home = home_template;
  std::ofstream(home / "input", std::ios::binary) << ReplaceAll(t.input, "{home}", home);
  const bool check_log = std::ranges::any_of(t.sections, [](auto& s) { return s.name == "log"; });
  std::string command =
      "cd " + Quote(transcript.parent_path()) + " && exec env HOME=" + Quote(home) +
      " XDG_CONFIG_HOME=" + Quote(home / "config") + " XDG_DATA_HOME=" + Quote(home / "data") +
      " NO_COLOR=1 " + Quote(fs::absolute(argv[1])) + " --settings " + Quote(home / "settings") +
      (check_log ? " --log " + Quote(home / "log") : "");
  for (const std::string& arg : t.args) command += " " + Quote(ReplaceAll(arg, "{home}", home));
  std::string game = t.game;
  if (compiled_form) {
    // Compiled into a copy of the game's folder, so that its libraries are found beside it.
    const fs::path source = fs::absolute(transcript.parent_path() / t.game);
    game = (home / "compiled" / source.filename().replace_extension(".cgw")).string();
    std::error_code ec;
    fs::copy(source.parent_path(), home / "compiled", fs::copy_options::recursive, ec);
    if (ec ||
        std::system(
            (Quote(fs::absolute(argv[3])) + " " + Quote(source) + " " + Quote(game)).c_str())) {
      std::cerr << transcript.string() << ": tarve-compile could not compile " << t.game << "\n";
      fs::remove_all(home);
      return 1;
    }
  }
  if (!t.no_game) command += " " + Quote(game);
  command += " <" + Quote(home / "input") + " >" + Quote(home / "output");
  if (!t.settings.empty() && fs::create_directories(home / "settings")) {
    std::ofstream out(home / "settings" / "Tarve.conf", std::ios::binary);
    for (const auto& [group, lines] : t.settings) {
      out << "[" << group << "]\n" << ReplaceAll(lines, "{home}", home);
    }
  }
  const int status = std::system(command.c_str());

  bool ok = WIFEXITED(status) && WEXITSTATUS(status) == t.status;
  if (!ok) {
    std::cerr << transcript.string() << ": tarve-cli ended with "
              << (WIFEXITED(status) ? "status " + std::to_string(WEXITSTATUS(status))
                                    : "signal " + std::to_string(WTERMSIG(status)))
              << ", expected status " << t.status << "\n";
  }
  // The compiled game and its folder stand where the text game and its folder stood in
  // everything the player prints.
  for (const Section& section : t.sections) {
    std::ifstream in(home / section.name, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    text = ReplaceAll(text, game, t.game);
    if (compiled_form) {
      text = ReplaceAll(text, (home / "compiled/").string(),
                        fs::path(t.game).parent_path().string() + "/");
    }
    std::istringstream lines(ReplaceAll(text, home.string(), "{home}"));
    std::vector<std::string> actual;
    for (std::string line; std::getline(lines, line);) {
      actual.push_back(line.ends_with('\r') ? line.substr(0, line.size() - 1) : line);
    }
    ok = Compare(transcript, section, actual) && ok;
  }
  fs::remove_all(home);
  if (ok) std::cout << transcript.filename().string() << ": passed\n";
  return ok ? 0 : 1;
}
