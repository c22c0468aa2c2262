// The sound services: MIDI music rendered through a SoundFont and wave sounds, and what they log
// when they cannot play. The build machines have no sound card, so playing either reports the
// missing device once; with one, the sounds start, stop and are deleted while playing.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platform/MidiPlayer.h"
#include "platform/WavePlayer.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using namespace std::string_literals;
using Lines = std::vector<std::string>;

void Put(std::string& out, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

// One track, 96 ticks to the quarter note: a piano plays C, E and G loudly, 1.5 seconds in all.
std::string ThreeNotes() {
  const std::string events =
      "\x00\xC0\x00"                      // piano
      "\x00\x90\x3C\x7F\x60\x80\x3C\x40"  // C
      "\x00\x90\x40\x7F\x60\x80\x40\x40"  // E
      "\x00\x90\x43\x7F\x60\x80\x43\x40"  // G
      "\x00\xFF\x2F\x00"s;                // end of track
  return "MThd\0\0\0\x06\0\0\0\x01\0\x60MTrk\0\0\0"s + static_cast<char>(events.size()) + events;
}

// The same music as a RIFF MIDI file, the form Windows programs also write.
std::string InRiff(const std::string& midi) {
  std::string file = "RIFF";
  Put(file, static_cast<std::uint32_t>(midi.size() + 12), 4);
  file += "RMIDdata";
  Put(file, static_cast<std::uint32_t>(midi.size()), 4);
  return file + midi;
}

// A mono 16-bit wave file in `format` (1 = PCM) holding `samples` samples of silence.
std::string Wave(std::uint16_t format, std::uint32_t samples) {
  std::string out = "RIFF";
  Put(out, 36 + samples * 2, 4);
  out += "WAVEfmt ";
  for (const auto& [value, bytes] : {std::pair{16u, 4},
                                     {format, 2},
                                     {1u, 2},
                                     {22050u, 4},
                                     {44100u, 4},
                                     {2u, 2},
                                     {16u, 2},
                                     {0x61746164u, 4}}) {
    Put(out, value, bytes);  // the last is the "data" chunk's name
  }
  Put(out, samples * 2, 4);
  return out + std::string(samples * 2, '\0');
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
  test::TempDir dir;
  for (const std::string& midi :
       {dir.Write("tune.mid", ThreeNotes()), dir.Write("tune.rmi", InRiff(ThreeNotes()))}) {
    SCOPED_TRACE(midi);
    std::string error;
    ASSERT_TRUE(RenderMidiToFile(midi, soundfont, midi + ".wav", error)) << error;
    const std::string bytes = test::ReadFile(midi + ".wav");
    const std::size_t fmt = bytes.find("fmt "), data = bytes.find("data");
    ASSERT_TRUE(fmt != std::string::npos && data != std::string::npos);
    std::uint16_t channels = 0;
    std::uint32_t rate = 0;
    std::memcpy(&channels, bytes.data() + fmt + 10, 2);
    std::memcpy(&rate, bytes.data() + fmt + 12, 4);
    std::vector<std::int16_t> samples((bytes.size() - data - 8) / 2);
    std::memcpy(samples.data(), bytes.data() + data + 8, samples.size() * 2);
    // The rendering lasts until the last note has faded, and is not silent.
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

// Files that are missing or of another kind are the interpreter/statements transcript; a wave
// file that is compressed is refused before the player looks for a way to play it. Each kind is
// reported unavailable once: without a SoundFont or a Qt application, and (on the build machines)
// without a sound card; with one, the sounds play and are deleted while playing.
TEST(Sounds, EachKindIsReportedUnavailableOnceOrPlaysStopsAndReplays) {
  ASSERT_EQ(QCoreApplication::instance(), nullptr);
  test::TempDir dir;
  const std::string tune = dir.Write("tune.mid", ThreeNotes());
  const std::string tone = dir.Write("tone.wav", Wave(1, 4410));
  const std::string adpcm = dir.Write("adpcm.wav", Wave(2, 100));
  const auto play = [&](MidiPlayer& midi, WavePlayer& wave) {
    midi.Play(tune);
    midi.Stop();
    midi.Play(tune);
    midi.Play(tune);
    wave.Play(tone, true);
    wave.Play(tone, false);
    wave.Stop();
    wave.Play(tone, true);
  };
  Log log;
  {
    MidiPlayer midi(log.Sink(), dir.path() + "/none.sf2");
    WavePlayer wave(log.Sink());
    midi.Stop();
    wave.Stop();
    wave.Play(adpcm, true);
    play(midi, wave);
  }
  EXPECT_EQ(log.lines, (Lines{"Warning: Unable to play the sound " + adpcm +
                                  ": only uncompressed wave files can be played.",
                              "Warning: MIDI music is unavailable: no SoundFont was found.",
                              "Warning: Wave sounds are unavailable: the player has no Qt "
                              "application to play them with."}));
  int argc = 1;
  char name[] = "platform_tests";
  char* argv[] = {name, nullptr};
  QCoreApplication app(argc, argv);
  log.lines.clear();
  {
    MidiPlayer midi(log.Sink());
    WavePlayer wave(log.Sink());
    play(midi, wave);
  }
  for (const std::string& line : log.lines) {
    EXPECT_TRUE(line == "Warning: MIDI music is unavailable: no audio output device was found." ||
                line == "Warning: Wave sounds are unavailable: no audio output device was found.")
        << line;
  }
  EXPECT_LE(log.lines.size(), 2u);
}

}  // namespace
}  // namespace tarve
