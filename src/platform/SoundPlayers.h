// The sound players as the services see them. Wave sounds (Qt Multimedia) and MIDI music
// (FluidSynth) bring some eighty shared libraries with them, which cost a player a dozen
// milliseconds at every start; they are therefore built as a module of their own,
// tarve-sound.so, that the services load on a game's first sound.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tarve {

class SoundPlayers {
 public:
  virtual ~SoundPlayers() = default;
  virtual void PlayWave(const std::string& path, bool sync) = 0;
  virtual void PlayMidi(const std::string& path) = 0;
  virtual void StopMidi() = 0;
  virtual void StopWave() = 0;
};

// The module's one entry point: makes its players, which report to `log` what they cannot
// play. The caller owns the result.
using MakeSoundPlayersFunction = SoundPlayers* (*)(std::function<void(std::string_view)> log);
inline constexpr const char* kMakeSoundPlayers = "tarve_make_sound_players";
inline constexpr const char* kSoundModuleName = "tarve-sound.so";

}  // namespace tarve
