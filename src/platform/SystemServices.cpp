#include "platform/SystemServices.h"

#include <dlfcn.h>

#include <QProcess>
#include <QString>
#include <QStringList>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <thread>
#include <vector>

#include "game/ScriptLog.h"
#include "platform/SoundPlayers.h"

#ifndef TARVE_SOUND_MODULE_DIR
#define TARVE_SOUND_MODULE_DIR "/usr/local/lib/tarve"
#endif

namespace tarve {

namespace {

// The desktop's programs can only be reached from a graphical session.
bool HasDesktop() {
  const char* x11 = std::getenv("DISPLAY");
  const char* wayland = std::getenv("WAYLAND_DISPLAY");
  return (x11 != nullptr && *x11 != '\0') || (wayland != nullptr && *wayland != '\0');
}

// Where the sound module may be: beside the program (the build tree), in lib/tarve beside the
// bin folder of an install wherever it was put, then in the install prefix the build names.
std::vector<std::filesystem::path> SoundModuleCandidates() {
  namespace fs = std::filesystem;
  std::vector<fs::path> candidates;
  std::error_code ec;
  const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  if (!ec) {
    candidates.push_back(exe.parent_path() / kSoundModuleName);
    candidates.push_back(exe.parent_path().parent_path() / "lib" / "tarve" / kSoundModuleName);
  }
  candidates.push_back(fs::path(TARVE_SOUND_MODULE_DIR) / kSoundModuleName);
  return candidates;
}

}  // namespace

SystemServices::SystemServices(Options options) : options_(options) {}

// The module stays loaded until the program ends: the audio libraries it brought keep threads
// and handlers of their own that must not lose their code.
SystemServices::~SystemServices() = default;

void SystemServices::Log(std::string_view message) {
  if (game_ != nullptr) LogScriptError(*game_, message);
}

SoundPlayers* SystemServices::Sounds() {
  if (sounds_tried_) return sounds_.get();
  sounds_tried_ = true;
  std::string why = std::string("the sound module ") + kSoundModuleName + " was not found.";
  for (const std::filesystem::path& candidate : SoundModuleCandidates()) {
    std::error_code ec;
    if (!std::filesystem::exists(candidate, ec)) continue;
    void* module = dlopen(candidate.c_str(), RTLD_NOW | RTLD_LOCAL);
    auto make = module != nullptr
                    ? reinterpret_cast<MakeSoundPlayersFunction>(dlsym(module, kMakeSoundPlayers))
                    : nullptr;
    if (make == nullptr) {
      const char* error = dlerror();
      why = "the sound module " + candidate.string() + " could not be loaded (" +
            (error != nullptr ? error : "unknown error") + ").";
      if (module != nullptr) dlclose(module);
      continue;
    }
    sounds_.reset(make([this](std::string_view m) { Log(m); }));
    return sounds_.get();
  }
  Log("Warning: Sounds are unavailable: " + why);
  return nullptr;
}

void SystemServices::PlayWave(const std::string& path, bool sync) {
  if (SoundPlayers* sounds = Sounds()) sounds->PlayWave(path, sync);
}

void SystemServices::PlayMidi(const std::string& path) {
  if (SoundPlayers* sounds = Sounds()) sounds->PlayMidi(path);
}

void SystemServices::StopMidi() {
  if (sounds_) sounds_->StopMidi();
}

void SystemServices::StopSounds() {
  if (!sounds_) return;
  sounds_->StopMidi();
  sounds_->StopWave();
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
