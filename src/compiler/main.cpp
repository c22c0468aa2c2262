// tarve-compile: writes a game in compiled form (.cgw), for authors who distribute their games
// that way. The compiled file reads back as the same lines, with leading and trailing blanks
// removed (the lines of text blocks exactly as written).
#include <sys/stat.h>

#include <iostream>
#include <string>
#include <vector>

#include "base/Files.h"
#include "base/Text.h"
#include "script/CompiledGame.h"
#include "script/GameReader.h"
#include "script/KeywordTable.h"

#ifndef TARVE_INSTALLED_DATA_DIR
#define TARVE_INSTALLED_DATA_DIR "/usr/local/share/tarve"
#endif
#ifndef TARVE_VERSION
#define TARVE_VERSION "unknown"
#endif

namespace {

constexpr const char* kUsage =
    "Usage: tarve-compile GAME.gwl OUT.cgw\n"
    "Writes the game in compiled form. Libraries it includes are not merged: they\n"
    "are read when the compiled game is opened, as for the text form.\n"
    "\n"
    "  -h, --help   show this help\n"
    "  --version    show the version\n";

// The same file (device and inode, through links): the game is never written over.
bool SameFile(const std::string& a, const std::string& b) {
  struct stat first {};
  struct stat second {};
  return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace tarve;
  const std::vector<std::string> args(argv + 1, argv + argc);
  if (args.size() == 1 && (args[0] == "-h" || args[0] == "--help")) {
    std::cout << kUsage;
    return 0;
  }
  if (args.size() == 1 && args[0] == "--version") {
    std::cout << "tarve-compile " TARVE_VERSION "\n";
    return 0;
  }
  if (args.size() != 2 || LCase(CharRight(args[0], 4)) != ".gwl") {
    std::cerr << kUsage;
    return 2;
  }
  if (SameFile(args[0], args[1])) {
    std::cerr << "tarve-compile: " << args[1] << " is the game itself: it is not written over\n";
    return 2;
  }
  const std::string table_path = FindDataFolder(TARVE_INSTALLED_DATA_DIR) + "/tarve.dat";
  std::string table_text;
  if (!ReadWholeFile(table_path, table_text)) {
    std::cerr << "tarve-compile: cannot read the keyword table " << table_path << "\n";
    return 1;
  }
  std::vector<std::string> problems;
  const KeywordTable table = ParseKeywordTable(table_text, problems);
  std::vector<std::string> lines;
  if (!ReadTextFileLines(args[0], lines)) {
    std::cerr << "tarve-compile: cannot read " << args[0] << "\n";
    return 1;
  }
  const std::string compiled = CompileGame(table, lines, problems);
  for (const std::string& problem : problems) std::cerr << args[0] << ": " << problem << "\n";
  if (compiled.empty() || !problems.empty()) return 1;
  if (!WriteFileAtomically(args[1], compiled)) {
    std::cerr << "tarve-compile: cannot write " << args[1] << "\n";
    return 1;
  }
  return 0;
}
