// tarve-gen-large: writes the large generated game of the benchmarks into a folder, reads it
// back with the game reader and prints what the reader made of it; or writes the tests' beach
// of many pebbles into one file.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include "LargeGame.h"

namespace {

constexpr const char* kUsage =
    "usage: tarve-gen-large [--scale X] [FOLDER]\n"
    "       tarve-gen-large --beach PEBBLES FILE\n"
    "Writes large.gwl, lib1.gwl and lib2.gwl into FOLDER (default: bench/generated/large).\n"
    "  --scale X   size of the game: 1 (the default) is about 31,000 lines once read,\n"
    "              0.5 half of that\n"
    "  --beach N   writes FILE, a game of one room holding N pebbles and a shell\n";

}  // namespace

int main(int argc, char** argv) {
  std::string folder = std::string(TARVE_BENCH_DEFAULT_FOLDER) + "/large";
  double scale = 1.0;
  if (argc == 4 && std::string_view(argv[1]) == "--beach") {
    const int pebbles = std::atoi(argv[2]);
    std::ofstream file(argv[3], std::ios::binary | std::ios::trunc);
    file << tarve::bench::MakeCrowdedBeach(pebbles);
    file.close();
    if (pebbles > 0 && file) return 0;
    std::fprintf(stderr, "tarve-gen-large: cannot write %d pebbles into %s\n", pebbles, argv[3]);
    return 1;
  }
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    if (arg == "--scale" && i + 1 < argc) {
      char* end = nullptr;
      scale = std::strtod(argv[++i], &end);
      if (*end != '\0' || !(scale > 0.0 && scale <= 1.05)) {
        std::fprintf(stderr, "tarve-gen-large: --scale needs a number above 0 and at most 1\n");
        return 2;
      }
    } else if (arg == "--help" || arg.starts_with("-")) {
      std::fputs(kUsage, arg == "--help" ? stdout : stderr);
      return arg == "--help" ? 0 : 2;
    } else {
      folder = std::string(arg);
    }
  }

  const tarve::bench::LargeGameFiles files = tarve::bench::MakeLargeGame(scale);
  std::string error;
  if (!tarve::bench::WriteLargeGame(folder, files, error)) {
    std::fprintf(stderr, "tarve-gen-large: %s\n", error.c_str());
    return 1;
  }
  const tarve::bench::LargeGameFigures& f = files.figures;
  std::printf("%s/large.gwl: %d lines, %d blocks (%d more inside rooms)\n", folder.c_str(),
              f.file_lines, f.file_blocks, f.nested_blocks);
  std::printf("libraries: %d lines, %d blocks\n", f.library_lines, f.library_blocks);
  std::printf("brace blocks: %d, making %d lines of procedures\n", f.brace_blocks,
              f.procedure_lines);
  std::printf("else lines: %d, continued lines: %d, lines with tabs: %d\n", f.else_lines,
              f.continued_lines, f.tab_lines);
  std::printf("once read: %d lines, %d blocks\n", f.ExpectedLines(), f.ExpectedBlocks());

  const std::string problems = tarve::bench::CheckLargeGame(folder, f);
  if (!problems.empty()) {
    std::fprintf(stderr, "tarve-gen-large: the reader disagrees: %s\n", problems.c_str());
    return 1;
  }
  std::printf("the reader agrees\n");
  return 0;
}
