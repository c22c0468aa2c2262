// Running scripts: a procedure whose `for` loop runs 30,000 rounds of a small body (a `do`, a
// `setvar` with substitution and an `if`), and a loop that calls a game function with two
// parameters on every round. Both report the statements run per second; the output goes to a
// host that drops it, so the figures are the interpreter's own.
#include <benchmark/benchmark.h>

#include <string>
#include <string_view>

#include "LargeGame.h"
#include "game/Game.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "script/CommonCode.h"

namespace {

constexpr int kRounds = 30000;

constexpr std::string_view kScripts[] = {
    "define procedure <loop>",
    "    for <i; 1; 30000> do <step>",
    "end define",
    "define procedure <step>",
    "    setvar <x; %x%+1>",
    "    if is <%x%; 100> then msg <hit>",
    "end define",
    "define function <add>",
    "    setvar <r; #tarve.function.parameter.1#+#tarve.function.parameter.2#>",
    "    return <%r%>",
    "end define",
    "define procedure <calls>",
    "    for <i; 1; 30000> setvar <y; $add(%i%; 1)$>",
    "end define",
};

// A game holding only the scripts above, ready to run them.
bool LoadScripts(tarve::Game& game) {
  for (std::string_view line : kScripts) {
    if (!tarve::AddLine(game.text, std::string(line))) return false;
  }
  return tarve::BuildBlockIndex(game);
}

void BM_LoopOfSimpleStatements(benchmark::State& state) {
  tarve::bench::NullHost host;
  tarve::Game game(host);
  if (!LoadScripts(game)) {
    state.SkipWithError("the scripts did not load");
    return;
  }
  for (auto _ : state) {
    tarve::SetNumericVariable(game, "x", 0);
    tarve::ExecuteScript(game, "do <loop>");
  }
  if (tarve::GetNumericVariable(game, "x") != kRounds) {
    state.SkipWithError("the loop did not run every round");
  }
  // Each round runs three statements: the `do` and the two lines of the procedure.
  state.counters["statements/s"] = benchmark::Counter(
      3.0 * kRounds * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void BM_LoopOfFunctionCalls(benchmark::State& state) {
  tarve::bench::NullHost host;
  tarve::Game game(host);
  if (!LoadScripts(game)) {
    state.SkipWithError("the scripts did not load");
    return;
  }
  for (auto _ : state) tarve::ExecuteScript(game, "do <calls>");
  if (tarve::GetNumericVariable(game, "y") != kRounds + 1) {
    state.SkipWithError("the function did not give the sum");
  }
  // Each round runs the `setvar` that calls the function and the function's two lines.
  const double rounds = static_cast<double>(kRounds) * static_cast<double>(state.iterations());
  state.counters["calls/s"] = benchmark::Counter(rounds, benchmark::Counter::kIsRate);
  state.counters["statements/s"] = benchmark::Counter(3.0 * rounds, benchmark::Counter::kIsRate);
}

BENCHMARK(BM_LoopOfSimpleStatements)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(10)
    ->ReportAggregatesOnly(true);
BENCHMARK(BM_LoopOfFunctionCalls)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(10)
    ->ReportAggregatesOnly(true);

}  // namespace
