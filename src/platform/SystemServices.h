// The platform's services to a game, written once for the desktop program and the terminal
// player: wave sounds and MIDI music, pauses, and opening documents with the desktop's
// programs.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "game/Host.h"

namespace tarve {

struct Game;
class SoundPlayers;

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

  // The game whose script log takes the services' warnings (a sound that cannot be played, no
  // audio device). Until one is attached they go nowhere.
  void Attach(Game& game) { game_ = &game; }

  void PlayWave(const std::string& path, bool sync) override;
  void PlayMidi(const std::string& path) override;
  void StopMidi() override;
  void StopSounds() override;
  OpenResult OpenDocument(const std::string& path, bool minimised) override;
  void Sleep(int milliseconds) override;

 protected:
  void Log(std::string_view message);

 private:
  // The sound players, loaded from their module on the first sound (SoundPlayers.h); null when
  // the module cannot be loaded, which is logged once.
  SoundPlayers* Sounds();

  Options options_;
  Game* game_ = nullptr;
  std::unique_ptr<SoundPlayers> sounds_;
  bool sounds_tried_ = false;
};

}  // namespace tarve
