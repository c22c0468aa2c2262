#include "platform/SystemServices.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <thread>

#include "game/ScriptLog.h"
#include "platform/MidiPlayer.h"
#include "platform/WavePlayer.h"

namespace tarve {

namespace {

// The desktop's programs can only be reached from a graphical session.
bool HasDesktop() {
  const char* x11 = std::getenv("DISPLAY");
  const char* wayland = std::getenv("WAYLAND_DISPLAY");
  return (x11 != nullptr && *x11 != '\0') || (wayland != nullptr && *wayland != '\0');
}

}  // namespace

SystemServices::SystemServices(Options options) : options_(options) {}

SystemServices::~SystemServices() = default;

void SystemServices::Log(std::string_view message) {
  if (game_ != nullptr) LogScriptError(*game_, message);
}

void SystemServices::PlayWave(const std::string& path, bool sync) {
  if (!wave_) wave_ = std::make_unique<WavePlayer>([this](std::string_view m) { Log(m); });
  wave_->Play(path, sync);
}

void SystemServices::PlayMidi(const std::string& path) {
  if (!midi_) midi_ = std::make_unique<MidiPlayer>([this](std::string_view m) { Log(m); });
  midi_->Play(path);
}

void SystemServices::StopMidi() {
  if (midi_) midi_->Stop();
}

void SystemServices::StopSounds() {
  StopMidi();
  if (wave_) wave_->Stop();
}

PlatformServices::OpenResult SystemServices::OpenDocument(const std::string& path, bool minimised) {
  // The desktop decides how a document opens; asking for it minimised cannot be passed on.
  (void)minimised;
  // A name that is no file may still be an address ("mailto:...") the desktop can open. A
  // missing file is missing whether or not a desktop could open it.
  std::error_code ec;
  if (path.find(':') == std::string::npos && !std::filesystem::exists(path, ec)) {
    return OpenResult::kNotFound;
  }
  if (!HasDesktop()) return OpenResult::kNoAssociation;
  const bool started = QProcess::startDetached(QStringLiteral("xdg-open"),
                                               QStringList{QString::fromStdString(path)});
  return started ? OpenResult::kOpened : OpenResult::kNoAssociation;
}

void SystemServices::Sleep(int milliseconds) {
  if (!options_.keep_pauses || milliseconds <= 0) return;
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace tarve
