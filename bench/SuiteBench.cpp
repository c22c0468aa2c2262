// The player as a user meets it: opening a game (file to the first room description) for the
// demo game and the large generated game at two sizes, walks of mixed commands through the demo
// game at two lengths, and script loops with substitution, conditions and function calls at two
// lengths. Two sizes of each show whether the cost grows linearly.
#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "LargeGame.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "player/MainWindow.h"
#include "script/CommonCode.h"
#include "script/Game.h"
#include "script/OpenGame.h"

namespace {

// A host that prints nothing and answers every question at once (the first answer, OK, Yes).
class QuietHost : public tarve::bench::NullHost {
 public:
  int ShowMessage(const std::string&, const std::string&, int style) override {
    return (style & 0x0F) == tarve::kYesNo ? tarve::kAnswerNo : tarve::kAnswerOk;
  }
};

std::string DemoPath() { return std::string(TARVE_BENCH_SOURCE_DIR) + "/examples/demo.gwl"; }

void BM_OpenDemoGame(benchmark::State& state) {
  for (auto _ : state) {
    QuietHost host;
    tarve::Game game(host);
    if (!tarve::OpenGame(game, DemoPath())) {
      state.SkipWithError("the demo game did not open");
      return;
    }
    benchmark::DoNotOptimize(game.world.current_room);
  }
}

void BM_OpenLargeGame(benchmark::State& state) {
  const int size = static_cast<int>(state.range(0));
  const std::string folder =
      std::string(TARVE_BENCH_GENERATED_DIR) + "/open-" + std::to_string(size);
  std::string error;
  tarve::bench::WriteLargeGame(folder, tarve::bench::MakeLargeGame(size / 100.0), error);
  if (!error.empty()) {
    state.SkipWithError(error.c_str());
    return;
  }
  for (auto _ : state) {
    QuietHost host;
    tarve::Game game(host);
    if (!tarve::OpenGame(game, folder + "/large.gwl")) {
      state.SkipWithError("the large game did not open");
      return;
    }
    benchmark::DoNotOptimize(game.world.current_room);
  }
}

// Forty turns of every kind through the demo game without winning it: moves, looks, taking,
// giving, talking (a selection), using, the game's own command patterns and commands it does
// not know. The storm ends the game after 60 moves, so the count is set back before each round.
constexpr std::array<std::string_view, 40> kWalk = {
    "look",
    "look at marta",
    "take net",
    "x net",
    "talk to marta",
    "give key to marta",
    "dance",
    "enter boathouse",
    "look at oars",
    "take oars",
    "grab oil can",
    "inventory",
    "out",
    "north",
    "look at gull",
    "take gull",
    "north",
    "ring bell",
    "ring rope",
    "score",
    "l",
    "climb stairs",
    "xyzzy",
    "south",
    "northwest",
    "i",
    "use key",
    "speak to gull",
    "fly away",
    "southeast",
    "look",
    "give oil to gull",
    "south",
    "west",
    "take the rocks",
    "examine marta",
    "light beacon",
    "north",
    "south",
    "look",
};

void BM_DemoWalk(benchmark::State& state) {
  const int turns = static_cast<int>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    auto host = std::make_unique<QuietHost>();
    auto game = std::make_unique<tarve::Game>(*host);
    const bool opened = tarve::OpenGame(*game, DemoPath());
    state.ResumeTiming();
    if (!opened) {
      state.SkipWithError("the demo game did not open");
      return;
    }
    for (int t = 0; t < turns; ++t) {
      const std::size_t step = static_cast<std::size_t>(t) % kWalk.size();
      if (step == 0) tarve::SetNumericVariable(*game, "moves", 0);
      tarve::SubmitCommand(*game, kWalk[step]);
    }
    if (game->run.game_over) {
      state.SkipWithError("the walk ended the game");
      return;
    }
    state.PauseTiming();
    game.reset();
    host.reset();
    state.ResumeTiming();
  }
  state.counters["turns/s"] =
      benchmark::Counter(static_cast<double>(turns) * static_cast<double>(state.iterations()),
                         benchmark::Counter::kIsRate);
}

// One round: a `setvar` with substitution and arithmetic, an `if` with two conditions, a
// `setstring` that calls a game function and a built-in one.
constexpr std::string_view kLoopScripts[] = {
    "define procedure <round>",
    "    setvar <x; %x%+%i%>",
    "    if is <%x%; 0> or not is <#s#; abc> then setvar <y; %y%+1> else setvar <y; 0>",
    "    setstring <s; $twice(%i%)$ $lengthof(#s#)$>",
    "end define",
    "define function <twice>",
    "    setvar <t; #tarve.function.parameter.1#*2>",
    "    return <%t%>",
    "end define",
};

void BM_StatementLoop(benchmark::State& state) {
  const int rounds = static_cast<int>(state.range(0));
  QuietHost host;
  tarve::Game game(host);
  for (std::string_view line : kLoopScripts) tarve::AddLine(game.text, std::string(line));
  if (!tarve::BuildBlockIndex(game)) {
    state.SkipWithError("the scripts did not load");
    return;
  }
  const std::string loop = "for <i; 1; " + std::to_string(rounds) + "> do <round>";
  for (auto _ : state) {
    tarve::SetNumericVariable(game, "x", 0);
    tarve::ExecuteScript(game, loop);
  }
  // Each round: the `do`, the three lines of the procedure, the `setvar` after the `if`, and
  // the two lines of the function.
  state.counters["statements/s"] = benchmark::Counter(
      7.0 * rounds * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

BENCHMARK(BM_OpenDemoGame)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenLargeGame)
    ->ArgName("size")
    ->Arg(50)
    ->Arg(100)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DemoWalk)
    ->ArgName("turns")
    ->Arg(500)
    ->Arg(1000)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StatementLoop)
    ->ArgName("rounds")
    ->Arg(10000)
    ->Arg(20000)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMillisecond);

}  // namespace
