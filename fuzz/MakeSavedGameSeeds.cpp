// Writes the seed corpus of the saved-game target: saved games of the demo game and of the
// statement game at a few points of play, each naming its game by file name alone.
//
// usage: fuzz_make_saved_seeds FOLDER
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "FuzzTargets.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: fuzz_make_saved_seeds FOLDER\n";
    return 2;
  }
  const tarve::fuzz::Workspace workspace(TARVE_SOURCE_DIR);
  if (!workspace.ok()) return 1;
  struct Seed {
    const char* name;
    const char* game;
    std::vector<std::string> commands;
  };
  const Seed seeds[] = {
      {"demo-start.tsg", "demo.gwl", {}},
      {"demo-cottage.tsg", "demo.gwl", {"talk to marta", "2", "north", "northwest", "take lamp"}},
      {"demo-boathouse.tsg", "demo.gwl", {"enter boathouse", "take oil can", "inventory"}},
      {"statements-start.tsg", "statements.gwl", {}},
      {"statements-played.tsg",
       "statements.gwl",
       {"north", "take lamp", "south", "south", "take key", "north", "shout hello", "count 3"}},
  };
  for (const Seed& seed : seeds) {
    const std::string text = MakeSavedGameSeed(workspace, seed.game, seed.commands);
    if (text.empty()) return 1;
    std::ofstream(std::string(argv[1]) + "/" + seed.name, std::ios::binary) << text;
  }
  return 0;
}
