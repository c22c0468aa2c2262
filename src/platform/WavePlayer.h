// Wave sounds for both front ends: a game's `playwav` plays a .wav file while the game goes on,
// or waits for the sound to end. Played with Qt Multimedia on the calling (Qt) thread.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

class QEventLoop;
class QSoundEffect;

namespace tarve {

class WavePlayer {
 public:
  // `log` receives the warnings for the script log: each sound that cannot be played, and once
  // only, that no sound can be played at all (no audio device, no Qt application).
  explicit WavePlayer(std::function<void(std::string_view)> log);
  ~WavePlayer();
  WavePlayer(const WavePlayer&) = delete;
  WavePlayer& operator=(const WavePlayer&) = delete;

  // Plays the wave file at `path` in place of any sound still playing. With `sync`, returns when
  // the sound has ended, keeping the windows alive meanwhile (a nested event loop). The wait ends
  // at once when the sound cannot be played, and at the latest two seconds after the sound's
  // length, so a stalled device never holds the game.
  void Play(const std::string& path, bool sync);
  // Silences the sound playing, if any, and ends a wait for it.
  void Stop();

 private:
  bool SoundAvailable();
  void WaitForEnd(QSoundEffect& effect, int length_ms);

  std::function<void(std::string_view)> log_;
  std::unique_ptr<QSoundEffect> effect_;
  QEventLoop* waiting_ = nullptr;  // the loop of a sync play in progress
  bool unavailable_reported_ = false;
};

}  // namespace tarve
