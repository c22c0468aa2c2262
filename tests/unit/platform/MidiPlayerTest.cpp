#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "platform/MidiPlayer.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::TempDir;

// A one-track MIDI file: a piano plays C, E and G loudly, half a second each (96 ticks to the
// quarter note at the default 120 beats a minute), 1.5 seconds in all.
std::string ThreeNotes() {
  const std::string events = {
      '\x00', '\xC0', '\x00',          // piano
      '\x00', '\x90', '\x3C', '\x7F',  // C on
      '\x60', '\x80', '\x3C', '\x40',  // C off after 96 ticks
      '\x00', '\x90', '\x40', '\x7F',  // E
      '\x60', '\x80', '\x40', '\x40',  // E off
      '\x00', '\x90', '\x43', '\x7F',  // G
      '\x60', '\x80', '\x43', '\x40',  // G off
      '\x00', '\xFF', '\x2F', '\x00',  // end of track
  };
  std::string file = std::string("MThd\0\0\0\x06\0\0\0\x01\0\x60", 14) + "MTrk";
  file += std::string("\0\0\0", 3) + static_cast<char>(events.size());
  return file + events;
}

// The same music as a RIFF MIDI file, the form Windows programs also write.
std::string InRiff(const std::string& midi) {
  std::string data = "RMIDdata";
  for (int i = 0; i < 4; ++i) data.push_back(static_cast<char>(midi.size() >> (8 * i) & 0xFF));
  data += midi;
  std::string file = "RIFF";
  for (int i = 0; i < 4; ++i) file.push_back(static_cast<char>(data.size() >> (8 * i) & 0xFF));
  return file + data;
}

std::uint32_t Le(const std::string& bytes, std::size_t at, int count) {
  std::uint32_t value = 0;
  for (int i = count - 1; i >= 0; --i) {
    value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
  }
  return value;
}

// The 16-bit samples of a wave file's data chunk; empty when the file is not such a file.
std::vector<std::int16_t> Samples(const std::string& path, int& channels, int& rate) {
  std::ifstream in(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
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
  std::vector<std::string> lines;
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

TEST(MidiPlayer, FilesItCannotPlayAreLoggedEachTime) {
  TempDir dir;
  const std::string missing = dir.path() + "/theme.mid";
  const std::string text = dir.Write("notes.mid", "C E G\n");
  Log log;
  MidiPlayer player(log.Sink());
  player.Stop();
  player.Play(missing);
  player.Play(text);
  player.Play(missing);
  player.Stop();
  const std::vector<std::string> expected = {
      "Warning: Unable to play the music " + missing + ": the file does not exist.",
      "Warning: Unable to play the music " + text + ": it is not a MIDI file.",
      "Warning: Unable to play the music " + missing + ": the file does not exist.",
  };
  EXPECT_EQ(log.lines, expected);
}

TEST(MidiPlayer, WithoutASoundFontMusicIsReportedUnavailableOnce) {
  TempDir dir;
  const std::string midi = dir.Write("tune.mid", ThreeNotes());
  Log log;
  MidiPlayer player(log.Sink(), dir.path() + "/none.sf2");
  player.Play(midi);
  player.Stop();
  player.Play(midi);
  EXPECT_EQ(log.lines, std::vector<std::string>{
                           "Warning: MIDI music is unavailable: no SoundFont was found."});
}

// Without a sound card (as on the build machines) the music is reported unavailable once; with
// one, the tune starts and is stopped and closed again.
TEST(MidiPlayer, PlayStopAndReplayWithOrWithoutAnAudioDevice) {
  TempDir dir;
  const std::string midi = dir.Write("tune.mid", ThreeNotes());
  Log log;
  {
    MidiPlayer player(log.Sink());
    player.Play(midi);
    player.Stop();
    player.Play(midi);
    player.Play(midi);
  }  // deleted while the tune may still play
  ASSERT_LE(log.lines.size(), 1u);
  if (!log.lines.empty()) {
    EXPECT_EQ(log.lines[0],
              "Warning: MIDI music is unavailable: no audio output device was found.");
  }
}

}  // namespace
}  // namespace tarve
