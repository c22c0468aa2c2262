// Reading a game: the whole reader on the large generated game (libraries merged, block index,
// brace blocks, `else` lines and continued lines rewritten, the load-time check), and as its
// baseline merely reading the same file and splitting it into lines. Each runs on the full game
// and on one of half the size, to show that the reader's time grows in step with the game.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "LargeGame.h"
#include "game/Game.h"
#include "script/GameReader.h"

namespace {

using tarve::bench::LargeGameFigures;

// A load frees some megabytes that the next one takes again. With glibc's own settings, whether
// that memory goes back to the system in between (and comes back through page faults, which are
// dear on virtual machines) depends on what ran before, so the same benchmark could differ
// several times over between runs. Keeping freed memory in the process measures the reader's
// own work; TARVE_BENCH_MALLOC_DEFAULTS=1 keeps glibc's settings instead. The cost of a fresh
// process, page faults included, is what time_cli.sh measures.
const bool kSteadyHeap = [] {
  const char* defaults = std::getenv("TARVE_BENCH_MALLOC_DEFAULTS");
  const bool steady = defaults == nullptr || std::string(defaults) != "1";
  if (steady) {
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
  }
  benchmark::AddCustomContext("heap", steady ? "freed memory kept" : "glibc defaults");
  return steady;
}();

struct GeneratedGame {
  std::string folder;
  LargeGameFigures figures;
  std::string error;  // empty when the game was written and reads as generated
};

// Writes the game of `percent` per cent size into the build tree the first time it is asked
// for, and checks that the reader makes of it what the generator counted.
const GeneratedGame& GameOfSize(int percent) {
  static std::map<int, GeneratedGame> games;
  if (auto it = games.find(percent); it != games.end()) return it->second;
  GeneratedGame game;
  game.folder = std::string(TARVE_BENCH_GENERATED_DIR) + "/scale-" + std::to_string(percent);
  const tarve::bench::LargeGameFiles files = tarve::bench::MakeLargeGame(percent / 100.0);
  game.figures = files.figures;
  if (tarve::bench::WriteLargeGame(game.folder, files, game.error)) {
    game.error = tarve::bench::CheckLargeGame(game.folder, game.figures);
  }
  return games.emplace(percent, std::move(game)).first->second;
}

void ReportSize(benchmark::State& state, const GeneratedGame& game) {
  state.counters["file_lines"] = game.figures.file_lines;
  state.counters["lines_read"] = game.figures.ExpectedLines();
}

void BM_LoadLargeGame(benchmark::State& state) {
  const GeneratedGame& generated = GameOfSize(static_cast<int>(state.range(0)));
  if (!generated.error.empty()) {
    state.SkipWithError(generated.error.c_str());
    return;
  }
  const std::string path = generated.folder + "/large.gwl";
  for (auto _ : state) {
    tarve::bench::NullHost host;
    tarve::Game game(host);
    game.game_path = generated.folder + "/";
    game.program_folder = generated.folder + "/no-program-folder";
    const bool read = tarve::ReadGameFile(game, path);
    benchmark::DoNotOptimize(read);
    if (!read) {
      state.SkipWithError("the reader refused the game");
      break;
    }
  }
  ReportSize(state, generated);
}

void BM_ReadAndSplitLargeGame(benchmark::State& state) {
  const GeneratedGame& generated = GameOfSize(static_cast<int>(state.range(0)));
  if (!generated.error.empty()) {
    state.SkipWithError(generated.error.c_str());
    return;
  }
  const std::string path = generated.folder + "/large.gwl";
  for (auto _ : state) {
    std::vector<std::string> lines;
    const bool read = tarve::ReadTextFileLines(path, lines);
    benchmark::DoNotOptimize(read);
    benchmark::DoNotOptimize(lines.data());
    if (!read) {
      state.SkipWithError("the file cannot be read");
      break;
    }
  }
  ReportSize(state, generated);
}

// Size in per cent of the full game; medians of ten repetitions.
BENCHMARK(BM_LoadLargeGame)
    ->ArgName("size")
    ->Arg(100)
    ->Arg(50)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(10)
    ->ReportAggregatesOnly(true);
BENCHMARK(BM_ReadAndSplitLargeGame)
    ->ArgName("size")
    ->Arg(100)
    ->Arg(50)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(10)
    ->ReportAggregatesOnly(true);

}  // namespace
