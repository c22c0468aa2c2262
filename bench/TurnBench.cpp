// One turn of the player, from the typed command to the end of the turn: plain "look", a move,
// "take" and a command that one of the game's own command patterns answers. They run on a game
// of a few hundred rooms generated here (each with its objects, characters, exits and command
// lines, and a game block with synonyms and many command patterns), and "look" and a game
// command also on the large generated game. The host shows nothing, so the figures are the
// engine's own work; read the median of the repetitions.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "LargeGame.h"
#include "game/Game.h"
#include "player/OpenGame.h"
#include "world/CommandParser.h"

namespace {

constexpr int kRooms = 300;
constexpr int kObjectsPerRoom = 10;
constexpr int kGameCommands = 60;
constexpr int kSynonyms = 40;

std::string RoomName(int r) { return "Room " + std::to_string((r + kRooms) % kRooms + 1); }

// A ring of rooms: north leads on, south back.
std::string TurnGameText() {
  std::string text;
  auto line = [&text](const std::string& l) { text += l + "\n"; };
  line("define game <Turns>");
  line("    gwl-version <217>");
  line("    start <" + RoomName(0) + ">");
  line("    possitems <lamp, key, coin>");
  line("    collectables <score n=0>");
  for (int i = 0; i < kGameCommands; ++i) {
    line("    command <verb" + std::to_string(i) + " #thing#> msg <You verb the #thing#.>");
  }
  line("    command <pull #thing#> msg <You pull the #thing#. Nothing happens.>");
  line("end define");
  line("define synonyms");
  for (int i = 0; i < kSynonyms; ++i) {
    line("    word" + std::to_string(i) + "; other" + std::to_string(i) + " = take");
  }
  line("end define");
  for (int r = 0; r < kRooms; ++r) {
    line("define room <" + RoomName(r) + ">");
    line("    look <A room of many doors, number " + std::to_string(r + 1) + ".>");
    line("    north <" + RoomName(r + 1) + ">");
    line("    south <" + RoomName(r - 1) + ">");
    line("    place <the; shed " + std::to_string(r + 1) + "> msg <The shed is locked.>");
    for (int c = 0; c < 5; ++c) {
      line("    command <kick" + std::to_string(c) + " #thing#> msg <Ouch.>");
    }
    for (int o = 0; o < kObjectsPerRoom; ++o) {
      const std::string name = "stone " + std::to_string(r * kObjectsPerRoom + o + 1);
      line("    define object <" + name + ">");
      line("        look <A grey stone.>");
      line("        take msg <You pick up the " + name + ".>");
      line("    end define");
    }
    for (int c = 0; c < 2; ++c) {
      line("    define character <person " + std::to_string(r * 2 + c + 1) + ">");
      line("        gender <she>");
      line("        speak <Hello.>");
      line("    end define");
    }
    line("end define");
  }
  return text;
}

struct OpenedGame {
  tarve::bench::NullHost host;
  tarve::Game game{host};
  bool ok = false;
};

std::unique_ptr<OpenedGame> OpenGameText(const std::string& folder, const std::string& file,
                                         const std::string& text) {
  std::filesystem::create_directories(folder);
  const std::string path = folder + "/" + file;
  std::ofstream(path, std::ios::binary) << text;
  auto opened = std::make_unique<OpenedGame>();
  opened->ok = tarve::OpenGame(opened->game, path);
  return opened;
}

OpenedGame& TurnGame() {
  static std::unique_ptr<OpenedGame> game =
      OpenGameText(std::string(TARVE_BENCH_GENERATED_DIR) + "/turns", "turns.gwl", TurnGameText());
  return *game;
}

OpenedGame& LargeGame() {
  static std::unique_ptr<OpenedGame> game = [] {
    const std::string folder = std::string(TARVE_BENCH_GENERATED_DIR) + "/turns-large";
    const tarve::bench::LargeGameFiles files = tarve::bench::MakeLargeGame(1.0);
    std::string error;
    tarve::bench::WriteLargeGame(folder, files, error);
    auto opened = std::make_unique<OpenedGame>();
    opened->ok = error.empty() && tarve::OpenGame(opened->game, folder + "/large.gwl");
    return opened;
  }();
  return *game;
}

void Turn(tarve::Game& game, const std::string& typed) {
  std::string command = typed;
  tarve::ExecuteCommand(game, command, /*echo=*/true, /*try_game_commands=*/true);
}

void RunTurns(benchmark::State& state, OpenedGame& opened, const std::string& typed) {
  if (!opened.ok) {
    state.SkipWithError("the game could not be opened");
    return;
  }
  tarve::Game& game = opened.game;
  const std::string room = game.world.current_room;
  for (auto _ : state) Turn(game, typed);
  tarve::EnterRoom(game, room);
}

void BM_TurnLook(benchmark::State& state) { RunTurns(state, TurnGame(), "look"); }

void BM_TurnMove(benchmark::State& state) {
  OpenedGame& opened = TurnGame();
  if (!opened.ok) {
    state.SkipWithError("the game could not be opened");
    return;
  }
  // There and back again, so every turn enters a room.
  bool north = true;
  for (auto _ : state) {
    Turn(opened.game, north ? "north" : "south");
    north = !north;
  }
}

void BM_TurnTake(benchmark::State& state) { RunTurns(state, TurnGame(), "take stone 7"); }

void BM_TurnGameCommand(benchmark::State& state) { RunTurns(state, TurnGame(), "pull the lever"); }

void BM_TurnLookLargeGame(benchmark::State& state) { RunTurns(state, LargeGame(), "look"); }

void BM_TurnGameCommandLargeGame(benchmark::State& state) { RunTurns(state, LargeGame(), "xyzzy"); }

BENCHMARK(BM_TurnLook)->Repetitions(5)->ReportAggregatesOnly(true)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TurnMove)->Repetitions(5)->ReportAggregatesOnly(true)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TurnTake)->Repetitions(5)->ReportAggregatesOnly(true)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TurnGameCommand)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TurnLookLargeGame)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TurnGameCommandLargeGame)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
