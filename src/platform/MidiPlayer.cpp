#include "platform/MidiPlayer.h"

#include <fluidsynth.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>

namespace tarve {

namespace {

namespace fs = std::filesystem;

struct FluidDelete {
  void operator()(fluid_settings_t* p) const { delete_fluid_settings(p); }
  void operator()(fluid_synth_t* p) const { delete_fluid_synth(p); }
  void operator()(fluid_audio_driver_t* p) const { delete_fluid_audio_driver(p); }
  void operator()(fluid_player_t* p) const { delete_fluid_player(p); }
  void operator()(fluid_file_renderer_t* p) const { delete_fluid_file_renderer(p); }
};
template <typename T>
using FluidPtr = std::unique_ptr<T, FluidDelete>;

constexpr int kLongestRenderSeconds = 600;

// FluidSynth writes its errors to stderr, which would garble a game played in the terminal; the
// player reports what matters through its own log instead. The setting is FluidSynth's own and
// holds for the whole process.
void SilenceFluidSynth() {
  for (int level = FLUID_PANIC; level <= FLUID_DBG; ++level) {
    fluid_set_log_function(level, nullptr, nullptr);
  }
}

// The player must advance with the samples the synthesizer renders, not with a timer thread of
// its own, or the music would lose its tempo in a rendering that runs faster than real time.
FluidPtr<fluid_settings_t> NewSettings() {
  FluidPtr<fluid_settings_t> settings(new_fluid_settings());
  if (settings) {
    fluid_settings_setstr(settings.get(), "player.timing-source", "sample");
    // Locking the SoundFont's samples into memory needs a privilege the player does not have.
    fluid_settings_setint(settings.get(), "synth.lock-memory", 0);
  }
  return settings;
}

// PulseAudio (or PipeWire's PulseAudio service) is what desktops run; plain ALSA serves the
// rest. ALSA prints its own failures to stderr, so it is only tried where sound cards exist.
FluidPtr<fluid_audio_driver_t> StartAudio(fluid_settings_t* settings, fluid_synth_t* synth) {
  std::error_code ec;
  const bool has_cards = fs::exists("/dev/snd", ec);
  for (const char* driver : {"pulseaudio", "alsa"}) {
    if (std::string_view(driver) == "alsa" && !has_cards) continue;
    fluid_settings_setstr(settings, "audio.driver", driver);
    if (fluid_audio_driver_t* audio = new_fluid_audio_driver(settings, synth)) {
      return FluidPtr<fluid_audio_driver_t>(audio);
    }
  }
  return nullptr;
}

// The standard MIDI file in `path`: the file's bytes, or those of the MIDI file that a RIFF MIDI
// file (.rmi, which Windows' sequencer plays) wraps in its "data" chunk. Empty when the file
// holds neither.
std::string ReadMidiFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (bytes.size() >= 12 && bytes.compare(0, 4, "RIFF") == 0 && bytes.compare(8, 4, "RMID") == 0) {
    std::string wrapped;
    for (std::size_t at = 12; at + 8 <= bytes.size();) {
      std::uint32_t size = 0;
      for (int i = 3; i >= 0; --i) size = size << 8 | static_cast<unsigned char>(bytes[at + 4 + i]);
      if (bytes.compare(at, 4, "data") == 0) {
        wrapped = bytes.substr(at + 8, size);
        break;
      }
      at += 8 + static_cast<std::size_t>(size) + (size & 1);
    }
    bytes = std::move(wrapped);
  }
  if (bytes.compare(0, 4, "MThd") != 0) return "";
  return bytes;
}

// Queues the MIDI file `bytes` on a new player of `synth` and starts it.
FluidPtr<fluid_player_t> StartPlayer(fluid_synth_t* synth, const std::string& bytes) {
  FluidPtr<fluid_player_t> player(new_fluid_player(synth));
  if (!player || fluid_player_add_mem(player.get(), bytes.data(), bytes.size()) != FLUID_OK ||
      fluid_player_play(player.get()) != FLUID_OK) {
    return nullptr;
  }
  return player;
}

}  // namespace

std::string FindSoundFont() {
  // The system's chosen General MIDI SoundFont first (a Debian alternative), then the common
  // files of Debian's and other distributions' SoundFont packages, best sounding first.
  for (const char* candidate : {
           "/usr/share/sounds/sf2/default-GM.sf2",
           "/usr/share/sounds/sf2/FluidR3_GM.sf2",
           "/usr/share/sounds/sf2/TimGM6mb.sf2",
           "/usr/share/soundfonts/default.sf2",
           "/usr/share/soundfonts/FluidR3_GM.sf2",
           "/usr/share/sounds/sf3/default-GM.sf3",
       }) {
    std::error_code ec;
    if (fs::is_regular_file(candidate, ec)) return candidate;
  }
  return "";
}

bool RenderMidiToFile(const std::string& midi, const std::string& soundfont,
                      const std::string& wav_out, std::string& error) {
  SilenceFluidSynth();
  const std::string bytes = ReadMidiFile(midi);
  if (bytes.empty()) {
    error = midi + " is not a MIDI file";
    return false;
  }
  if (!fluid_is_soundfont(soundfont.c_str())) {
    error = soundfont + " is not a SoundFont";
    return false;
  }
  FluidPtr<fluid_settings_t> settings = NewSettings();
  if (!settings) {
    error = "the synthesizer could not be started";
    return false;
  }
  fluid_settings_setstr(settings.get(), "audio.file.name", wav_out.c_str());
  fluid_settings_setstr(settings.get(), "audio.file.type", "wav");
  fluid_settings_setstr(settings.get(), "audio.file.format", "s16");
  FluidPtr<fluid_synth_t> synth(new_fluid_synth(settings.get()));
  if (!synth) {
    error = "the synthesizer could not be started";
    return false;
  }
  if (fluid_synth_sfload(synth.get(), soundfont.c_str(), 1) == FLUID_FAILED) {
    error = "the SoundFont " + soundfont + " could not be loaded";
    return false;
  }
  FluidPtr<fluid_player_t> player = StartPlayer(synth.get(), bytes);
  if (!player) {
    error = midi + " could not be played";
    return false;
  }
  // Made last and so deleted first: deleting it finishes the wave file.
  FluidPtr<fluid_file_renderer_t> renderer(new_fluid_file_renderer(synth.get()));
  if (!renderer) {
    error = "the wave file " + wav_out + " could not be written";
    return false;
  }
  double rate = 44100;
  int period = 64;
  fluid_settings_getnum(settings.get(), "synth.sample-rate", &rate);
  fluid_settings_getint(settings.get(), "audio.period-size", &period);
  const long longest = static_cast<long>(rate) * kLongestRenderSeconds / (period > 0 ? period : 64);
  for (long block = 0;
       block < longest && fluid_player_get_status(player.get()) == FLUID_PLAYER_PLAYING; ++block) {
    if (fluid_file_renderer_process_block(renderer.get()) != FLUID_OK) {
      error = "the wave file " + wav_out + " could not be written";
      return false;
    }
  }
  return true;
}

// Declared in this order so that they are deleted in the reverse one: the player and the audio
// thread end before the synthesizer they use goes.
struct MidiPlayer::Fluid {
  FluidPtr<fluid_settings_t> settings;
  FluidPtr<fluid_synth_t> synth;
  FluidPtr<fluid_audio_driver_t> audio;
  FluidPtr<fluid_player_t> player;
};

MidiPlayer::MidiPlayer(std::function<void(std::string_view)> log, std::string soundfont)
    : log_(std::move(log)), soundfont_(std::move(soundfont)) {
  SilenceFluidSynth();
}

MidiPlayer::~MidiPlayer() { Close(); }

void MidiPlayer::Play(const std::string& path) {
  Close();
  const std::string cannot = "Warning: Unable to play the music " + path + ": ";
  std::error_code ec;
  if (!fs::is_regular_file(path, ec)) {
    log_(cannot + "the file does not exist.");
    return;
  }
  const std::string bytes = ReadMidiFile(path);
  if (bytes.empty()) {
    log_(cannot + "it is not a MIDI file.");
    return;
  }
  if (!Open()) return;
  fluid_->player = StartPlayer(fluid_->synth.get(), bytes);
  if (!fluid_->player) log_(cannot + "the synthesizer could not start it.");
}

void MidiPlayer::Stop() {
  if (!fluid_ || !fluid_->player) return;
  fluid_player_stop(fluid_->player.get());
  fluid_synth_all_sounds_off(fluid_->synth.get(), -1);
}

void MidiPlayer::Close() {
  if (!fluid_ || !fluid_->player) return;
  Stop();
  fluid_->player.reset();
  // The next piece starts from General MIDI's defaults, not from the instruments and
  // controllers the last one left behind.
  fluid_synth_system_reset(fluid_->synth.get());
}

bool MidiPlayer::Open() {
  if (fluid_) return true;
  if (unavailable_) return false;
  const auto unavailable = [this](const std::string& reason) {
    unavailable_ = true;
    log_("Warning: MIDI music is unavailable: " + reason + ".");
    return false;
  };
  std::error_code ec;
  if (soundfont_.empty() || !fs::is_regular_file(soundfont_, ec)) {
    return unavailable("no SoundFont was found");
  }
  auto fluid = std::make_unique<Fluid>();
  fluid->settings = NewSettings();
  if (fluid->settings) fluid->synth.reset(new_fluid_synth(fluid->settings.get()));
  if (!fluid->synth) return unavailable("the synthesizer could not be started");
  fluid->audio = StartAudio(fluid->settings.get(), fluid->synth.get());
  if (!fluid->audio) return unavailable("no audio output device was found");
  if (fluid_synth_sfload(fluid->synth.get(), soundfont_.c_str(), 1) == FLUID_FAILED) {
    return unavailable("the SoundFont " + soundfont_ + " could not be loaded");
  }
  fluid_ = std::move(fluid);
  return true;
}

}  // namespace tarve
