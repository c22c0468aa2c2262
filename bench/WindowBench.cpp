// The desktop program's launcher and options window, drawn offscreen: opening the launcher with a
// thousand installed games (made, shown and painted once), moving its list a step and a page,
// and opening the options window. The installed games come from memory and, as the program
// reads them, from a settings file. Read the median of the repetitions.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QGroupBox>
#include <QPixmap>
#include <QScrollBar>
#include <QTemporaryDir>
#include <string>
#include <string_view>
#include <vector>

#include "game/Game.h"
#include "game/Host.h"
#include "platform/QtSettingsStore.h"
#include "player/Settings.h"
#include "player/SettingsStore.h"
#include "player/windows/frmNewGame.h"
#include "player/windows/frmOptions.h"

namespace {

using tarve::frmNewGame;

constexpr int kInstalledGames = 1000;

class QuietHost : public tarve::OutputPane,
                  public tarve::Dialogs,
                  public tarve::GameWindow,
                  public tarve::PlatformServices {
 public:
  void InsertText(std::string_view) override {}
  int ShowMessage(const std::string&, const std::string&, int) override { return tarve::kAnswerOk; }
};

void InstallGames(tarve::SettingsStore& store) {
  std::vector<tarve::InstalledGame> games;
  for (int i = 1; i <= kInstalledGames; ++i) {
    games.push_back({"The Adventure of the Installed Game Number " + std::to_string(i),
                     "/home/player/games/adventure" + std::to_string(i) + ".gwl"});
  }
  tarve::WriteInstalledGames(store, games);
}

// Made, shown and painted: what the player waits for before the launcher can be used.
void OpenLauncher(tarve::Game& game, tarve::SettingsStore& store) {
  frmNewGame launcher(game, store);
  launcher.show();
  QPixmap painted = launcher.grab();
  benchmark::DoNotOptimize(painted);
}

void BM_OpenLauncherWithThousandGames(benchmark::State& state) {
  QuietHost host;
  tarve::Game game{tarve::Host(host)};
  tarve::MemorySettingsStore store;
  InstallGames(store);
  for (auto _ : state) OpenLauncher(game, store);
}
BENCHMARK(BM_OpenLauncherWithThousandGames)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(10)
    ->ReportAggregatesOnly(true);

void BM_OpenLauncherWithThousandGamesFromSettingsFile(benchmark::State& state) {
  QuietHost host;
  tarve::Game game{tarve::Host(host)};
  QTemporaryDir folder;
  tarve::QtSettingsStore store(folder.path().toStdString());
  InstallGames(store);
  for (auto _ : state) OpenLauncher(game, store);
}
BENCHMARK(BM_OpenLauncherWithThousandGamesFromSettingsFile)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(10)
    ->ReportAggregatesOnly(true);

// One step (a click on the scroll bar's arrow) or one page, with the games frame painted anew.
void ScrollLauncher(benchmark::State& state, QAbstractSlider::SliderAction forward,
                    QAbstractSlider::SliderAction back) {
  QuietHost host;
  tarve::Game game{tarve::Host(host)};
  tarve::MemorySettingsStore store;
  InstallGames(store);
  frmNewGame launcher(game, store);
  launcher.show();
  QScrollBar* bar = launcher.scrlGamePos();
  QAbstractSlider::SliderAction action = forward;
  for (auto _ : state) {
    if (bar->value() == bar->maximum()) action = back;
    if (bar->value() == bar->minimum()) action = forward;
    bar->triggerAction(action);
    QPixmap painted = launcher.frameInstalledGames()->grab();
    benchmark::DoNotOptimize(painted);
  }
}

void BM_ScrollLauncherOneGame(benchmark::State& state) {
  ScrollLauncher(state, QAbstractSlider::SliderSingleStepAdd, QAbstractSlider::SliderSingleStepSub);
}
BENCHMARK(BM_ScrollLauncherOneGame)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(10)
    ->ReportAggregatesOnly(true);

void BM_ScrollLauncherOnePage(benchmark::State& state) {
  ScrollLauncher(state, QAbstractSlider::SliderPageStepAdd, QAbstractSlider::SliderPageStepSub);
}
BENCHMARK(BM_ScrollLauncherOnePage)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(10)
    ->ReportAggregatesOnly(true);

void BM_OpenOptionsWindow(benchmark::State& state) {
  tarve::MemorySettingsStore store;
  tarve::Settings settings;
  for (auto _ : state) {
    tarve::frmOptions options(settings, store, nullptr, "/home/player/.local/share/Tarve");
    options.show();
    QPixmap painted = options.grab();
    benchmark::DoNotOptimize(painted);
  }
}
BENCHMARK(BM_OpenOptionsWindow)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(10)
    ->ReportAggregatesOnly(true);

}  // namespace

int main(int argc, char** argv) {
  // The windows are drawn without a display unless one is asked for.
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
