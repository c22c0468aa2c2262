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

#include "base/Files.h"
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
  // Beside the program (the build tree), in lib/tarve of an install wherever it was put, or in
  // the install prefix the build names.
  const std::filesystem::path module = std::filesystem::path(FindProgramFileFolder(
                                           kSoundModuleName, "lib/tarve", TARVE_SOUND_MODULE_DIR)) /
                                       kSoundModuleName;
  std::error_code ec;
  if (!std::filesystem::exists(module, ec)) {
    Log(std::string("Warning: Sounds are unavailable: the sound module ") + kSoundModuleName +
        " was not found.");
    return nullptr;
  }
  void* handle = dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);
  auto make = handle != nullptr
                  ? reinterpret_cast<MakeSoundPlayersFunction>(dlsym(handle, kMakeSoundPlayers))
                  : nullptr;
  if (make == nullptr) {
    const char* error = dlerror();
    Log("Warning: Sounds are unavailable: the sound module " + module.string() +
        " could not be loaded (" + (error != nullptr ? error : "unknown error") + ").");
    if (handle != nullptr) dlclose(handle);
    return nullptr;
  }
  sounds_.reset(make([this](std::string_view m) { Log(m); }));
  return sounds_.get();
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
