// The sound services: MIDI music rendered through a SoundFont and wave sounds, and what they log
// when they cannot play. The build machines have no sound card, so playing either reports the
// missing device once; with one, the sounds start, stop and are deleted while playing.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "platform/MidiPlayer.h"
#include "platform/WavePlayer.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::TempDir;
using Lines = std::vector<std::string>;

void Put(std::string& out, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

std::uint32_t Le(const std::string& bytes, std::size_t at, int count) {
  std::uint32_t value = 0;
  for (int i = count - 1; i >= 0; --i)
    value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
  return value;
}

// A one-track MIDI file: a piano plays C, E and G loudly, half a second each (96 ticks to the
// quarter note at the default 120 beats a minute), 1.5 seconds in all.
std::string ThreeNotes() {
  const std::string events = {
      '\x00', '\xC0', '\x00',                                          // piano
      '\x00', '\x90', '\x3C', '\x7F', '\x60', '\x80', '\x3C', '\x40',  // C
      '\x00', '\x90', '\x40', '\x7F', '\x60', '\x80', '\x40', '\x40',  // E
      '\x00', '\x90', '\x43', '\x7F', '\x60', '\x80', '\x43', '\x40',  // G
      '\x00', '\xFF', '\x2F', '\x00',                                  // end of track
  };
  std::string file = std::string("MThd\0\0\0\x06\0\0\0\x01\0\x60", 14) + "MTrk";
  file += std::string("\0\0\0", 3) + static_cast<char>(events.size());
  return file + events;
}

// The same music as a RIFF MIDI file, the form Windows programs also write.
std::string InRiff(const std::string& midi) {
  std::string data = "RMIDdata";
  Put(data, static_cast<std::uint32_t>(midi.size()), 4);
  std::string file = "RIFF";
  Put(file, static_cast<std::uint32_t>(data.size() + midi.size()), 4);
  return file + data + midi;
}

// A mono 16-bit wave file header in `format` (1 = PCM), for `samples` samples at `rate`.
std::string WaveHeader(std::uint16_t format, std::uint32_t rate, std::uint32_t samples) {
  std::string out = "RIFF";
  Put(out, 36 + samples * 2, 4);
  out += "WAVEfmt ";
  const std::uint32_t fields[][2] = {{16, 4},       {format, 2}, {1, 2}, {rate, 4},
                                     {rate * 2, 4}, {2, 2},      {16, 2}};
  for (const auto& [value, bytes] : fields) Put(out, value, static_cast<int>(bytes));
  out += "data";
  Put(out, samples * 2, 4);
  return out;
}

// 0.2 seconds of a 440 Hz tone.
std::string ShortTone() {
  constexpr std::uint32_t kRate = 22050, kSamples = kRate / 5;
  std::string out = WaveHeader(1, kRate, kSamples);
  for (std::uint32_t i = 0; i < kSamples; ++i) {
    const double value = 12000 * std::sin(2 * M_PI * 440 * i / kRate);
    Put(out, static_cast<std::uint16_t>(static_cast<std::int16_t>(value)), 2);
  }
  return out;
}

// The 16-bit samples of a wave file's data chunk; empty when the file is not such a file.
std::vector<std::int16_t> Samples(const std::string& path, int& channels, int& rate) {
  const std::string bytes = test::ReadFile(path);
  if (bytes.size() < 12 || bytes.compare(0, 4, "RIFF") != 0) return {};
  for (std::size_t at = 12; at + 8 <= bytes.size();) {
    const std::uint32_t size = Le(bytes, at + 4, 4);
    if (bytes.compare(at, 4, "fmt ") == 0) {
      if (Le(bytes, at + 8, 2) != 1 || Le(bytes, at + 22, 2) != 16) return {};
      channels = static_cast<int>(Le(bytes, at + 10, 2));
      rate = static_cast<int>(Le(bytes, at + 12, 4));
    } else if (bytes.compare(at, 4, "data") == 0) {
      std::vector<std::int16_t> samples((std::min<std::size_t>(size, bytes.size() - at - 8)) / 2);
      std::memcpy(samples.data(), bytes.data() + at + 8, samples.size() * 2);
      return samples;
    }
    at += 8 + size + (size & 1);
  }
  return {};
}

struct Log {
  Lines lines;
  auto Sink() {
    return [this](std::string_view line) { lines.emplace_back(line); };
  }
};

TEST(MidiPlayer, RenderedMusicIsHeardForAsLongAsThePieceLasts) {
  const std::string soundfont = FindSoundFont();
  ASSERT_FALSE(soundfont.empty()) << "scripts/install-deps.sh installs a General MIDI SoundFont";
  TempDir dir;
  for (const std::string& midi :
       {dir.Write("tune.mid", ThreeNotes()), dir.Write("tune.rmi", InRiff(ThreeNotes()))}) {
    SCOPED_TRACE(midi);
    const std::string wav = midi + ".wav";
    std::string error;
    ASSERT_TRUE(RenderMidiToFile(midi, soundfont, wav, error)) << error;
    int channels = 0, rate = 0;
    const std::vector<std::int16_t> samples = Samples(wav, channels, rate);
    ASSERT_GT(channels, 0);
    ASSERT_GT(rate, 0);
    // The rendering lasts until the last note has faded.
    const double seconds = static_cast<double>(samples.size()) / channels / rate;
    EXPECT_GE(seconds, 1.5);
    EXPECT_LT(seconds, 10);
    int peak = 0;
    for (std::int16_t sample : samples) peak = std::max(peak, std::abs(static_cast<int>(sample)));
    EXPECT_GT(peak, 300);  // of 32767; silence stays within a few steps of 0
  }
  std::string error;
  const std::string text = dir.Write("notes.mid", "C E G\n");
  EXPECT_FALSE(RenderMidiToFile(text, soundfont, dir.path() + "/notes.wav", error));
  EXPECT_EQ(error, text + " is not a MIDI file");
}

TEST(Sounds, FilesThatCannotBePlayedAreLoggedEachTime) {
  TempDir dir;
  const std::string missing_mid = dir.path() + "/theme.mid";
  const std::string text_mid = dir.Write("notes.mid", "C E G\n");
  const std::string missing_wav = dir.path() + "/door.wav";
  const std::string text_wav = dir.Write("note.wav", "This is not a sound.\n");
  const std::string adpcm =
      dir.Write("adpcm.wav", WaveHeader(2, 22050, 100) + std::string(200, 'x'));
  Log log;
  MidiPlayer midi(log.Sink());
  WavePlayer wave(log.Sink());
  midi.Stop();
  midi.Play(missing_mid);
  midi.Play(text_mid);
  midi.Play(missing_mid);
  midi.Stop();
  wave.Stop();
  wave.Play(missing_wav, true);
  wave.Play(missing_wav, false);
  wave.Play(text_wav, true);
  wave.Play(adpcm, true);
  wave.Stop();
  const std::string music = "Warning: Unable to play the music ";
  const std::string sound = "Warning: Unable to play the sound ";
  EXPECT_EQ(log.lines, (Lines{music + missing_mid + ": the file does not exist.",
                              music + text_mid + ": it is not a MIDI file.",
                              music + missing_mid + ": the file does not exist.",
                              sound + missing_wav + ": the file does not exist.",
                              sound + missing_wav + ": the file does not exist.",
                              sound + text_wav + ": it is not a wave file.",
                              sound + adpcm + ": only uncompressed wave files can be played."}));
}

TEST(Sounds, WithoutASoundFontOrAQtApplicationEachKindIsReportedUnavailableOnce) {
  ASSERT_EQ(QCoreApplication::instance(), nullptr);
  TempDir dir;
  const std::string tune = dir.Write("tune.mid", ThreeNotes());
  const std::string tone = dir.Write("tone.wav", ShortTone());
  Log log;
  MidiPlayer midi(log.Sink(), dir.path() + "/none.sf2");
  WavePlayer wave(log.Sink());
  midi.Play(tune);
  midi.Stop();
  midi.Play(tune);
  wave.Play(tone, true);
  wave.Play(tone, false);
  wave.Play(tone, true);
  EXPECT_EQ(log.lines, (Lines{"Warning: MIDI music is unavailable: no SoundFont was found.",
                              "Warning: Wave sounds are unavailable: the player has no Qt "
                              "application to play them with."}));
}

// Without a sound card each kind is reported unavailable once and a sync play returns at once;
// with one, the sync play returns when the tone has ended.
TEST(Sounds, PlayStopAndReplayWithOrWithoutAnAudioDevice) {
  int argc = 1;
  char name[] = "platform_tests";
  char* argv[] = {name, nullptr};
  QCoreApplication app(argc, argv);
  TempDir dir;
  const std::string tune = dir.Write("tune.mid", ThreeNotes());
  const std::string tone = dir.Write("tone.wav", ShortTone());
  Log log;
  {
    MidiPlayer midi(log.Sink());
    WavePlayer wave(log.Sink());
    midi.Play(tune);
    midi.Stop();
    midi.Play(tune);
    midi.Play(tune);
    wave.Play(tone, true);
    wave.Play(tone, true);
    wave.Play(tone, false);
    wave.Stop();
    wave.Play(tone, false);
  }  // deleted while the sounds may still play
  for (const std::string& line : log.lines) {
    EXPECT_TRUE(line == "Warning: MIDI music is unavailable: no audio output device was found." ||
                line == "Warning: Wave sounds are unavailable: no audio output device was found.")
        << line;
  }
  EXPECT_LE(log.lines.size(), 2u);
}

}  // namespace
}  // namespace tarve
