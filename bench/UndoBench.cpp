// Undo's costs: a turn through the player, which keeps what the turn changed, against the same
// turn run on the engine alone; taking one turn back; and the memory of a hundred kept turns of
// the large generated game. Each timed turn changes a variable as well as looking, so that every
// turn is one the player keeps.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "LargeGame.h"
#include "base/Text.h"
#include "game/Game.h"
#include "interpreter/Variables.h"
#include "player/Player.h"
#include "player/TurnHistory.h"
#include "world/CommandParser.h"
#include "world/World.h"

namespace {

class QuietHost : public tarve::bench::NullHost {
 public:
  int ShowMessage(const std::string&, const std::string&, int style) override {
    return (style & 0x0F) == tarve::kYesNo ? tarve::kAnswerNo : tarve::kAnswerOk;
  }
};

// range(0): 0 the demo game, 1 the large game at full size.
std::string GamePath(int which, std::string& error) {
  if (which == 0) return std::string(TARVE_BENCH_SOURCE_DIR) + "/examples/demo.gwl";
  const std::string folder = std::string(TARVE_BENCH_GENERATED_DIR) + "/undo-large";
  tarve::bench::WriteLargeGame(folder, tarve::bench::MakeLargeGame(1.0), error);
  return error.empty() ? folder + "/large.gwl" : std::string();
}

struct OpenedPlayer {
  QuietHost host;
  tarve::Player player{host};
};

std::unique_ptr<OpenedPlayer> Open(benchmark::State& state) {
  std::string error;
  const std::string path = GamePath(static_cast<int>(state.range(0)), error);
  auto opened = std::make_unique<OpenedPlayer>();
  if (path.empty() || !opened->player.OpenGame(path)) {
    state.SkipWithError(path.empty() ? error.c_str() : "the game did not open");
    return nullptr;
  }
  state.SetLabel(state.range(0) == 0 ? "demo" : "large");
  return opened;
}

// One kept turn: a variable changes, then the player looks. The demo game's storm ends it after
// sixty moves, so its count is set back as well.
void KeptTurn(tarve::Player& player, int turn) {
  tarve::SetNumericVariable(player.game(), "bench.turn", static_cast<int16_t>(turn % 1000));
  tarve::SetNumericVariable(player.game(), "moves", 0);
  player.SubmitCommand("look");
}

void BM_TurnKeptForUndo(benchmark::State& state) {
  std::unique_ptr<OpenedPlayer> opened = Open(state);
  if (!opened) return;
  int turn = 0;
  for (auto _ : state) KeptTurn(opened->player, ++turn);
}

// The same turn on the engine alone, with nothing kept.
void BM_TurnNotKept(benchmark::State& state) {
  std::unique_ptr<OpenedPlayer> opened = Open(state);
  if (!opened) return;
  tarve::Game& game = opened->player.game();
  int turn = 0;
  for (auto _ : state) {
    tarve::SetNumericVariable(game, "bench.turn", static_cast<int16_t>(++turn % 1000));
    tarve::SetNumericVariable(game, "moves", 0);
    std::string command = "look";
    tarve::ExecuteCommand(game, command, /*echo=*/true, /*try_game_commands=*/true);
  }
}

// Taking one turn back, room description included (the turn itself is not timed).
void BM_UndoOneTurn(benchmark::State& state) {
  std::unique_ptr<OpenedPlayer> opened = Open(state);
  if (!opened) return;
  int turn = 0;
  for (auto _ : state) {
    state.PauseTiming();
    KeptTurn(opened->player, ++turn);
    state.ResumeTiming();
    if (!opened->player.Undo()) {
      state.SkipWithError("nothing to undo");
      return;
    }
  }
}

// The heap a history of a hundred turns of the large game takes: the copy of the tables and what
// each turn changed. The turns walk through the rooms, taking what they find.
void BM_MemoryOfHundredTurns(benchmark::State& state) {
  std::unique_ptr<OpenedPlayer> opened = Open(state);
  if (!opened) return;
  tarve::Game& game = opened->player.game();
  constexpr std::array<std::string_view, 4> kExits = {"south", "west", "north", "east"};
  std::size_t bytes = 0;
  std::size_t kept = 0;
  for (auto _ : state) {
    const std::size_t before = mallinfo2().uordblks;
    auto history = std::make_unique<tarve::TurnHistory>();
    history->Reset(game);
    for (int t = 0; t < 100; ++t) {
      std::string command;
      if (t % 2 == 0) {
        command = kExits[static_cast<std::size_t>(t / 2) % kExits.size()];
      } else {
        command = "take lamp 1";
        for (const tarve::Thing& thing : game.world.objects) {
          if (thing.exists && tarve::EqualsNoCase(thing.room, game.world.current_room)) {
            command = "take " + thing.name;
            break;
          }
        }
      }
      tarve::SetNumericVariable(game, "bench.turn", static_cast<int16_t>(t));
      std::string run = command;
      tarve::ExecuteCommand(game, run, /*echo=*/true, /*try_game_commands=*/true);
      history->Record(game, command);
    }
    bytes = mallinfo2().uordblks - before;
    kept = history->size();
  }
  state.counters["MB"] = static_cast<double>(bytes) / (1 << 20);
  state.counters["turns_kept"] = static_cast<double>(kept);
}

BENCHMARK(BM_TurnKeptForUndo)
    ->Arg(0)
    ->Arg(1)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TurnNotKept)
    ->Arg(0)
    ->Arg(1)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_UndoOneTurn)
    ->Arg(0)
    ->Arg(1)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MemoryOfHundredTurns)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
