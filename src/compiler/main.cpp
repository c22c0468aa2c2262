// tarve-compile: writes a game in compiled form (.cgw), for authors who distribute their games
// that way. The compiled file reads back as the same lines, with leading and trailing blanks
// removed (the lines of text blocks exactly as written).
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

int main(int argc, char** argv) {
  using namespace tarve;
  const std::vector<std::string> args(argv + 1, argv + argc);
  if (args.size() != 2 || LCase(CharRight(args[0], 4)) != ".gwl") {
    std::cerr << "Usage: tarve-compile GAME.gwl OUT.cgw\n"
                 "Writes the game in compiled form. Libraries it includes are not merged: they\n"
                 "are read when the compiled game is opened, as for the text form.\n";
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
