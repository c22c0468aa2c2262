// MIDI music for both front ends: a game's `playmidi` plays a MIDI file through FluidSynth's
// General MIDI synthesizer, which plays on its own thread while the game goes on. Also the
// SoundFont search and an offline rendering of a MIDI file to a wave file.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tarve {

// The General MIDI SoundFont the system offers (the first of the usual files that exists), or ""
// when there is none.
std::string FindSoundFont();

// Renders `midi` with `soundfont` into the 16-bit wave file `wav_out`, as fast as the machine
// allows; at most ten minutes of music are written. On failure returns false and says why in
// `error`.
bool RenderMidiToFile(const std::string& midi, const std::string& soundfont,
                      const std::string& wav_out, std::string& error);

class MidiPlayer {
 public:
  // `log` receives the warnings for the script log: each file that cannot be played, and once
  // only, that no music can be played at all (no SoundFont, no audio device). The synthesizer
  // is started on the first Play with `soundfont`.
  explicit MidiPlayer(std::function<void(std::string_view)> log,
                      std::string soundfont = FindSoundFont());
  ~MidiPlayer();
  MidiPlayer(const MidiPlayer&) = delete;
  MidiPlayer& operator=(const MidiPlayer&) = delete;

  // Closes the music that was open and starts the MIDI file at `path`; returns at once.
  void Play(const std::string& path);
  // Silences the music; it stays open until the next Play.
  void Stop();

 private:
  struct Fluid;

  void Close();
  bool Open();

  std::function<void(std::string_view)> log_;
  std::string soundfont_;
  std::unique_ptr<Fluid> fluid_;
  bool unavailable_ = false;  // reported once; no later attempt to start the synthesizer
};

}  // namespace tarve
