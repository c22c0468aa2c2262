// The platform's services to a game, written once for the desktop program and the terminal
// player: wave sounds and MIDI music, pauses, and opening documents with the desktop's
// programs.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "game/Host.h"

namespace tarve {

class MidiPlayer;
class WavePlayer;

class SystemServices : public PlatformServices {
 public:
  struct Options {
    // Pauses pace a reader at the screen; a player whose output goes to a file or a pipe skips
    // them, since there they only cost time.
    bool keep_pauses = true;
  };
  explicit SystemServices(Options options);
  ~SystemServices() override;
  SystemServices(const SystemServices&) = delete;
  SystemServices& operator=(const SystemServices&) = delete;

  // Where the services' warnings go (a sound that cannot be played, no audio device): the
  // script log of the game being played.
  void SetLog(std::function<void(std::string_view)> log) { log_ = std::move(log); }

  void PlayWave(const std::string& path, bool sync) override;
  void PlayMidi(const std::string& path) override;
  void StopMidi() override;
  void StopSounds() override;
  OpenResult OpenDocument(const std::string& path, bool minimised) override;
  void Sleep(int milliseconds) override;

 private:
  void Log(std::string_view message);

  Options options_;
  std::function<void(std::string_view)> log_;
  // Made on the first sound, so that a game without sounds never starts the audio system.
  std::unique_ptr<WavePlayer> wave_;
  std::unique_ptr<MidiPlayer> midi_;
};

}  // namespace tarve
