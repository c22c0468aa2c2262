// tarve-sound.so: the wave and MIDI players behind the services' interface, each started on its
// first sound so that a game with music alone never starts the audio system for waves.
#include <memory>
#include <utility>

#include "platform/MidiPlayer.h"
#include "platform/SoundPlayers.h"
#include "platform/WavePlayer.h"

namespace tarve {
namespace {

class ModulePlayers final : public SoundPlayers {
 public:
  explicit ModulePlayers(std::function<void(std::string_view)> log) : log_(std::move(log)) {}

  void PlayWave(const std::string& path, bool sync) override {
    if (!wave_) wave_ = std::make_unique<WavePlayer>(log_);
    wave_->Play(path, sync);
  }
  void PlayMidi(const std::string& path) override {
    if (!midi_) midi_ = std::make_unique<MidiPlayer>(log_);
    midi_->Play(path);
  }
  void StopMidi() override {
    if (midi_) midi_->Stop();
  }
  void StopWave() override {
    if (wave_) wave_->Stop();
  }

 private:
  std::function<void(std::string_view)> log_;
  std::unique_ptr<WavePlayer> wave_;
  std::unique_ptr<MidiPlayer> midi_;
};

}  // namespace
}  // namespace tarve

extern "C" __attribute__((visibility("default"))) tarve::SoundPlayers* tarve_make_sound_players(
    std::function<void(std::string_view)> log) {
  return new tarve::ModulePlayers(std::move(log));
}
