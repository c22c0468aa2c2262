// The player as a user meets it: opening a game (file to the first room description) for the
// demo game and the large generated game at two sizes, walks of mixed commands through the demo
// game and through the large generated game at two lengths, and script loops with substitution,
// conditions and function calls at two lengths. Two sizes of each show whether the cost grows
// linearly.
#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "LargeGame.h"
#include "base/Text.h"
#include "game/Game.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "player/OpenGame.h"
#include "player/Player.h"
#include "script/CommonCode.h"
#include "world/World.h"

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

// Writes the large generated game at `size` percent into a folder of its own and returns the
// path of its game file; empty, with the reason in `error`, when it cannot be written.
std::string LargeGamePath(int size, std::string& error) {
  const std::string folder =
      std::string(TARVE_BENCH_GENERATED_DIR) + "/open-" + std::to_string(size);
  tarve::bench::WriteLargeGame(folder, tarve::bench::MakeLargeGame(size / 100.0), error);
  return error.empty() ? folder + "/large.gwl" : std::string();
}

void BM_OpenLargeGame(benchmark::State& state) {
  std::string error;
  const std::string path = LargeGamePath(static_cast<int>(state.range(0)), error);
  if (path.empty()) {
    state.SkipWithError(error.c_str());
    return;
  }
  for (auto _ : state) {
    QuietHost host;
    tarve::Game game(host);
    if (!tarve::OpenGame(game, path)) {
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

// Times `turns` turns played by `play` on a freshly opened copy of the game at `path`; opening
// and freeing the game are not timed. `play` answers false when the walk went wrong.
template <typename Play>
void TimeWalks(benchmark::State& state, const std::string& path, int turns, Play play) {
  for (auto _ : state) {
    state.PauseTiming();
    auto host = std::make_unique<QuietHost>();
    auto player = std::make_unique<tarve::Player>(*host);
    const bool opened = player->OpenGame(path);
    state.ResumeTiming();
    if (!opened) {
      state.SkipWithError("the game did not open");
      return;
    }
    if (!play(*player)) {
      state.SkipWithError("the walk ended the game");
      return;
    }
    state.PauseTiming();
    player.reset();
    host.reset();
    state.ResumeTiming();
  }
  state.counters["turns/s"] =
      benchmark::Counter(static_cast<double>(turns) * static_cast<double>(state.iterations()),
                         benchmark::Counter::kIsRate);
}

void BM_DemoWalk(benchmark::State& state) {
  const int turns = static_cast<int>(state.range(0));
  TimeWalks(state, DemoPath(), turns, [turns](tarve::Player& player) {
    for (int t = 0; t < turns; ++t) {
      const std::size_t step = static_cast<std::size_t>(t) % kWalk.size();
      if (step == 0) tarve::SetNumericVariable(player.game(), "moves", 0);
      player.SubmitCommand(kWalk[step]);
    }
    return !player.game_over();
  });
}

// A thing of `kind` in the player's room, or `fallback` when there is none.
std::string ThingHere(tarve::Game& game, tarve::ThingKind kind, const std::string& fallback) {
  for (const tarve::Thing& thing : tarve::ThingsOf(game, kind)) {
    if (thing.exists && tarve::EqualsNoCase(thing.room, game.world.current_room)) {
      return thing.name;
    }
  }
  return fallback;
}

// One round of the large game's walk: the names in braces are filled in as the walk goes.
constexpr std::array<std::string_view, 10> kLargeGameRound = {
    "look",
    "{exit}",
    "take {object}",
    "look at {object}",
    "give {object} to {character}",
    "use {object}",
    "inventory",
    "pull the lever",
    "bridge stone",
    "xyzzy",
};

// Replaces `marker` in `text` by `value`.
std::string Fill(std::string text, std::string_view marker, std::string_view value) {
  const std::size_t at = text.find(marker);
  if (at != std::string::npos) text.replace(at, marker.size(), value);
  return text;
}

// A walk of `turns` mixed commands through the large generated game, made by playing it once:
// each round looks, tries an exit (south, west, north and east in turn), takes and examines a
// thing of the room (or the last one found), gives it to a character of the room, uses it,
// lists the inventory, and types one of the rooms' own command patterns, one of the game's and a
// command nobody knows. Empty when the game ends before the walk does.
std::vector<std::string> PlanLargeGameWalk(const std::string& path, int turns) {
  static constexpr std::array<std::string_view, 4> kExits = {"south", "west", "north", "east"};
  QuietHost host;
  tarve::Player player(host);
  tarve::Game& game = player.game();
  if (!player.OpenGame(path)) return {};
  std::vector<std::string> walk;
  std::string object = "lamp 1";
  for (int t = 0; t < turns && !game.run.game_over; ++t) {
    const std::size_t step = static_cast<std::size_t>(t) % kLargeGameRound.size();
    if (step == 2) object = ThingHere(game, tarve::ThingKind::kObject, object);
    std::string command = Fill(std::string(kLargeGameRound[step]), "{object}", object);
    command = Fill(command, "{exit}", kExits[(static_cast<std::size_t>(t) / 10) % kExits.size()]);
    command = Fill(command, "{character}", ThingHere(game, tarve::ThingKind::kCharacter, "Aino 1"));
    player.SubmitCommand(command);
    walk.push_back(std::move(command));
  }
  if (game.run.game_over) walk.clear();
  return walk;
}

void BM_LargeGameWalk(benchmark::State& state) {
  const int turns = static_cast<int>(state.range(0));
  std::string error;
  const std::string path = LargeGamePath(100, error);
  const std::vector<std::string> walk =
      path.empty() ? std::vector<std::string>() : PlanLargeGameWalk(path, turns);
  if (walk.empty()) {
    state.SkipWithError(path.empty() ? error.c_str() : "the walk did not go the whole way");
    return;
  }
  TimeWalks(state, path, turns, [&walk](tarve::Player& player) {
    for (const std::string& command : walk) player.SubmitCommand(command);
    return !player.game_over();
  });
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
BENCHMARK(BM_LargeGameWalk)
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
