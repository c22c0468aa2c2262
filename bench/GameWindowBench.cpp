// The game window's costs, measured with the real window on Qt's offscreen platform: printing
// formatted lines into the output pane, a typed command from Enter to the painted answer on the
// demo game and on the large generated game, and the memory a long session holds with and
// without the pane's bound. Painting is forced before each measurement ends.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "LargeGame.h"
#include "desktop/DesktopHost.h"
#include "desktop/DesktopServices.h"
#include "output/Output.h"
#include "player/Player.h"
#include "player/windows/RichOutputPane.h"
#include "player/windows/frmMain.h"

namespace {

// Resident memory of this process, in megabytes.
double ResidentMegabytes() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmRSS:", 0) == 0) {
      std::istringstream fields(line.substr(6));
      double kilobytes = 0;
      fields >> kilobytes;
      return kilobytes / 1024.0;
    }
  }
  return 0;
}

// One desktop program: the window, its host and the application, with a game open.
struct Desktop {
  tarve::DesktopHost host;
  tarve::DesktopServices services{{.keep_pauses = false}};
  tarve::Player player{tarve::Host(host, host, host, services)};
  bool open = false;

  explicit Desktop(const std::string& path) {
    host.Attach(player);
    services.Attach(player.game());
    open = player.OpenGame(path);
    QApplication::processEvents();
  }
  ~Desktop() { host.Detach(); }
  tarve::frmMain& window() { return host.window(); }
  // Paints the window now, as the event loop would once the turn is over.
  void Paint() {
    QApplication::processEvents();
    window().repaint();
  }
};

std::string DemoPath() { return std::string(TARVE_BENCH_SOURCE_DIR) + "/examples/demo.gwl"; }

std::string LargeGamePath() {
  const std::string folder = std::string(TARVE_BENCH_GENERATED_DIR) + "/window-large";
  std::string error;
  tarve::bench::WriteLargeGame(folder, tarve::bench::MakeLargeGame(1.0), error);
  return error.empty() ? folder + "/large.gwl" : std::string();
}

// A line with bold, italics, two colours, a size change and a substituted number, as a game's
// room descriptions and messages have them.
std::string FormattedLine(int i) {
  return "|bLine|xb " + std::to_string(i) + " of the |irun|xi: |crred|cb, |clblue|cb and " +
         "|s12bigger|s00 text that fills a good part of a line in the window.";
}

// Start-up with the demo game on the command line, from making the window to the first room
// painted: what `tarve demo.gwl` does after the toolkit has started.
void BM_StartDemoToFirstPaintedRoom(benchmark::State& state) {
  for (auto _ : state) {
    tarve::DesktopHost host;
    tarve::DesktopServices services({.keep_pauses = false});
    tarve::Player player(tarve::Host(host, host, host, services));
    host.Attach(player);
    services.Attach(player.game());
    tarve::Player::StartOptions options;
    options.seed = 1;
    options.program_folder = std::string(TARVE_BENCH_SOURCE_DIR) + "/data";
    if (player.Start(DemoPath(), options) != tarve::Player::Started::kGame) {
      state.SkipWithError("the demo game did not open");
      return;
    }
    QApplication::processEvents();
    host.window().repaint();
    state.PauseTiming();
    host.window().hide();
    QApplication::processEvents();
    host.Detach();
    state.ResumeTiming();
  }
}

void BM_PrintFormattedLinesIntoThePane(benchmark::State& state) {
  const int lines = static_cast<int>(state.range(0));
  Desktop desktop(DemoPath());
  if (!desktop.open) {
    state.SkipWithError("the demo game did not open");
    return;
  }
  for (auto _ : state) {
    desktop.window().txtOutput()->ClearOutput();
    for (int i = 0; i < lines; ++i) tarve::PrintText(desktop.player.game(), FormattedLine(i));
    desktop.Paint();
  }
  state.counters["lines/s"] =
      benchmark::Counter(static_cast<double>(lines), benchmark::Counter::kIsIterationInvariantRate);
}

// Enter in the command box with `command` typed, until the answer is painted.
void EnterToPaintedAnswer(benchmark::State& state, const std::string& path,
                          const QString& command) {
  if (path.empty()) {
    state.SkipWithError("the game could not be written");
    return;
  }
  Desktop desktop(path);
  if (!desktop.open) {
    state.SkipWithError("the game did not open");
    return;
  }
  QLineEdit* box = desktop.window().txtCommand();
  for (auto _ : state) {
    box->setText(command);
    QTest::keyClick(box, Qt::Key_Return);
    desktop.Paint();
  }
}

void BM_EnterToPaintedAnswerDemoLook(benchmark::State& state) {
  EnterToPaintedAnswer(state, DemoPath(), QStringLiteral("look"));
}

void BM_EnterToPaintedAnswerDemoTalk(benchmark::State& state) {
  EnterToPaintedAnswer(state, DemoPath(), QStringLiteral("look at marta"));
}

void BM_EnterToPaintedAnswerLargeGameLook(benchmark::State& state) {
  EnterToPaintedAnswer(state, LargeGamePath(), QStringLiteral("look"));
}

void BM_EnterToPaintedAnswerLargeGameCommand(benchmark::State& state) {
  EnterToPaintedAnswer(state, LargeGamePath(), QStringLiteral("xyzzy"));
}

// A session of 100,000 printed lines: the memory the process holds afterwards, with the pane's
// bound (range 1) and with a pane that keeps everything (range 0).
void BM_MemoryOfA100000LineSession(benchmark::State& state) {
  const bool bounded = state.range(0) != 0;
  double grown = 0;
  int paragraphs = 0;
  for (auto _ : state) {
    const double before = ResidentMegabytes();
    tarve::RichOutputPane pane(nullptr, bounded ? tarve::RichOutputPane::kMaxParagraphs : 1 << 28,
                               bounded ? tarve::RichOutputPane::kMaxCharacters : 1 << 28);
    pane.resize(800, 600);
    pane.show();
    pane.SetFontName(QStringLiteral("Courier New"));
    pane.SetFontSize(10);
    for (int i = 0; i < 100000; ++i) {
      pane.SetBold(i % 3 == 0);
      pane.InsertText("Line " + std::to_string(i) + " of a long session, with some words.\r\n");
      if (i % 1000 == 0) QApplication::processEvents();
    }
    QApplication::processEvents();
    pane.repaint();
    grown = ResidentMegabytes() - before;
    paragraphs = pane.document()->blockCount();
  }
  state.counters["rss_growth_MB"] = grown;
  state.counters["paragraphs_kept"] = paragraphs;
}

BENCHMARK(BM_StartDemoToFirstPaintedRoom)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PrintFormattedLinesIntoThePane)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(3)
    ->ReportAggregatesOnly(true);
BENCHMARK(BM_EnterToPaintedAnswerDemoLook)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EnterToPaintedAnswerDemoTalk)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EnterToPaintedAnswerLargeGameLook)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EnterToPaintedAnswerLargeGameCommand)->Unit(benchmark::kMillisecond);
// Run each alone (bench/run.sh does) for a fair figure: memory one freed stays with the process.
BENCHMARK(BM_MemoryOfA100000LineSession)->Arg(1)->Arg(0)->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace

int main(int argc, char** argv) {
  // The window is measured without a display unless one is asked for.
  if (std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
