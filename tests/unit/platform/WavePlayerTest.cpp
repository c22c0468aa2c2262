#include <gtest/gtest.h>

#include <QCoreApplication>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/WavePlayer.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::TempDir;

void Put(std::string& out, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

// A mono 16-bit wave file header in `format` (1 = PCM), for `samples` samples at `rate`.
std::string WaveHeader(std::uint16_t format, std::uint32_t rate, std::uint32_t samples) {
  std::string out = "RIFF";
  Put(out, 36 + samples * 2, 4);
  out += "WAVEfmt ";
  Put(out, 16, 4);
  Put(out, format, 2);
  Put(out, 1, 2);
  Put(out, rate, 4);
  Put(out, rate * 2, 4);
  Put(out, 2, 2);
  Put(out, 16, 2);
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

struct Log {
  std::vector<std::string> lines;
  auto Sink() {
    return [this](std::string_view line) { lines.emplace_back(line); };
  }
};

TEST(WavePlayer, FilesItCannotPlayAreLoggedEachTimeAndEndASyncPlayAtOnce) {
  TempDir dir;
  const std::string missing = dir.path() + "/door.wav";
  const std::string text = dir.Write("note.wav", "This is not a sound.\n");
  const std::string adpcm =
      dir.Write("adpcm.wav", WaveHeader(2, 22050, 100) + std::string(200, 'x'));
  Log log;
  WavePlayer player(log.Sink());
  player.Stop();
  player.Play(missing, true);
  player.Play(missing, false);
  player.Play(text, true);
  player.Play(adpcm, true);
  player.Stop();
  const std::vector<std::string> expected = {
      "Warning: Unable to play the sound " + missing + ": the file does not exist.",
      "Warning: Unable to play the sound " + missing + ": the file does not exist.",
      "Warning: Unable to play the sound " + text + ": it is not a wave file.",
      "Warning: Unable to play the sound " + adpcm +
          ": only uncompressed wave files can be played.",
  };
  EXPECT_EQ(log.lines, expected);
}

TEST(WavePlayer, WithoutAQtApplicationSoundsAreReportedUnavailableOnce) {
  ASSERT_EQ(QCoreApplication::instance(), nullptr);
  TempDir dir;
  const std::string tone = dir.Write("tone.wav", ShortTone());
  Log log;
  WavePlayer player(log.Sink());
  player.Play(tone, true);
  player.Play(tone, false);
  player.Play(tone, true);
  EXPECT_EQ(log.lines, std::vector<std::string>{"Warning: Wave sounds are unavailable: the player "
                                                "has no Qt application to play them with."});
}

// Without a sound card (as on the build machines) the sound is reported unavailable once and a
// sync play returns at once; with one, the sync play returns when the tone has ended.
TEST(WavePlayer, SyncPlayOfAShortSoundReturnsWithOrWithoutAnAudioDevice) {
  int argc = 1;
  char name[] = "platform_tests";
  char* argv[] = {name, nullptr};
  QCoreApplication app(argc, argv);
  TempDir dir;
  const std::string tone = dir.Write("tone.wav", ShortTone());
  Log log;
  {
    WavePlayer player(log.Sink());
    player.Play(tone, true);
    player.Play(tone, true);
    player.Play(tone, false);
    player.Stop();
    player.Play(tone, false);
  }  // deleted while the sound may still play
  ASSERT_LE(log.lines.size(), 1u);
  if (!log.lines.empty()) {
    EXPECT_EQ(log.lines[0],
              "Warning: Wave sounds are unavailable: no audio output device was found.");
  }
}

}  // namespace
}  // namespace tarve
