// The platform services: the settings file, the desktop's document types and the sound players.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "platform/DocumentTypes.h"
#include "platform/MidiPlayer.h"
#include "platform/QtSettingsStore.h"
#include "platform/WavePlayer.h"
#include "player/Settings.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;
using test::TempDir;
using namespace std::string_literals;
using Lines = std::vector<std::string>;

// Saving replaces the file whole: no temporary files are left beside it.
TEST(SettingsStore, ValuesSurviveReopeningAndDamagedFilesReadWithoutHarm) {
  TempDir dir;
  const std::string folder = dir.path() + "/settings";  // made when first written
  for (const char* font : {"Verdana", "Arial"}) {
    QtSettingsStore store(folder);
    EXPECT_EQ(store.FilePath(), folder + "/Tarve.conf");
    store.Write("Games", "Name1", "@home = \"Élan\"; [x], a tale");
    store.Write("Options", "LogFile", "");
    store.Write("Options", "DefaultFontName", font);
    store.Write("Options", "Doomed", font);
    store.Remove("Options", "Doomed");
    EXPECT_TRUE(store.Flush());
  }
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    EXPECT_TRUE(name == "Tarve.conf" || name == "Tarve.conf.lock") << name;
  }
  QtSettingsStore again(folder);
  EXPECT_EQ(again.Read("Games", "Name1"), "@home = \"Élan\"; [x], a tale");
  EXPECT_EQ(again.Read("Options", "DefaultFontName"), "Arial");
  EXPECT_EQ(again.Read("Options", "LogFile"), "");  // present and empty is not absent
  EXPECT_FALSE(again.Read("Options", "Doomed"));
  EXPECT_FALSE(again.Read("Games", "name1"));  // keys are the exact names

  // Hand-edited and damaged files read without harm, and can still be written.
  std::string garbage =
      "[Games]\nNumInstalled=999999\nName1=The Manor, a tale\nFile1=/g/manor.gwl\n"
      "[Options\nDefaultFontSize=abc\n=novalue\nnokey\n[Security]\nSecurityType=@Variant(\\0\\0)\n"
      "CustomSecurity1=\"unterminated\n";
  garbage += std::string("\0\xff\xfe[\x01]\n", 7) + std::string(100000, 'x') + "\n";
  dir.Write("Tarve.conf", garbage);
  QtSettingsStore damaged(dir.path());
  EXPECT_GE(ReadSettings(damaged).security_type, 0);
  const std::vector<InstalledGame> games = ReadInstalledGames(damaged);
  ASSERT_EQ(games.size(), 1u);
  EXPECT_EQ(games[0].name, "The Manor, a tale");  // an unquoted comma is kept as text
  damaged.Write("Init", "InstalledVer", "TARVE-210");
  EXPECT_TRUE(damaged.Flush());
  EXPECT_EQ(QtSettingsStore(dir.path()).Read("Init", "InstalledVer"), "TARVE-210");
}

// A user who installs into ~/.local gets the very files that the first start writes there, and
// anyone else gets an entry that takes the installed one's place: both must say the same.
TEST(DocumentTypes, FirstStartWritesTheInstalledFilesAndAssociatingAgainReplacesAType) {
  TempDir dir;
  setenv("XDG_DATA_HOME", (dir.path() + "/data").c_str(), 1);  // the desktop's data folder
  const auto data = [&](const std::string& file) { return ReadFile(dir.path() + "/data/" + file); };
  EXPECT_TRUE(AssociateFileType("Tarve Game", ".gwl"));
  EXPECT_TRUE(AssociateFileType("Tarve Game (Compiled)", ".cgw"));
  EXPECT_TRUE(AssociateFileType("Tarve Saved Game Data", ".tsg"));
  EXPECT_EQ(data("mime/packages/tarve.xml"), ReadFile(TARVE_SOURCE_DATA "/tarve.xml"));
  EXPECT_EQ(data("applications/tarve.desktop"), ReadFile(TARVE_SOURCE_DATA "/tarve.desktop"));

  AssociateFileType("Games <old> & new", ".GWL");
  const std::string package = data("mime/packages/tarve.xml");
  EXPECT_EQ(package.find("Tarve Game<"), std::string::npos);
  EXPECT_NE(package.find("<comment>Games &lt;old&gt; &amp; new</comment>"), std::string::npos);
  const std::string entry = data("applications/tarve.desktop");
  EXPECT_EQ(entry.find("application/x-tarve-game;"), entry.rfind("application/x-tarve-game;"));
  // A file where the data folder should be: nothing can be written, which is reported.
  setenv("XDG_DATA_HOME", dir.Write("file", "not a folder").c_str(), 1);
  EXPECT_FALSE(AssociateFileType("Tarve Game", ".gwl"));
}

// 53 bytes, one track, 96 ticks to the quarter note: a piano plays C, E and G loudly (half a
// second each), then the track ends.
const std::string kThreeNotes =
    "MThd\0\0\0\x06\0\0\0\x01\0\x60MTrk\0\0\0\x1F\x00\xC0\x00"
    "\x00\x90\x3C\x7F\x60\x80\x3C\x40\x00\x90\x40\x7F\x60\x80\x40\x40"
    "\x00\x90\x43\x7F\x60\x80\x43\x40\x00\xFF\x2F\x00"s;

// A mono 16-bit wave file at 22050 Hz in `format` (1 = PCM): 0.2 seconds of silence.
std::string Wave(char format) {
  return "RIFF\x98\x22\0\0WAVEfmt \x10\0\0\0"s + format +
         "\0\x01\0\x22\x56\0\0\x44\xAC\0\0\x02\0\x10\0data\x74\x22\0\0"s + std::string(8820, '\0');
}

TEST(MidiPlayer, RenderedMusicIsHeardForAsLongAsThePieceLasts) {
  const std::string soundfont = FindSoundFont();
  ASSERT_FALSE(soundfont.empty()) << "scripts/install-deps.sh installs a General MIDI SoundFont";
  test::TempDir dir;
  // The second is the same music as a RIFF MIDI file, the form Windows programs also write.
  for (const std::string& midi :
       {dir.Write("tune.mid", kThreeNotes),
        dir.Write("tune.rmi", "RIFF\x41\0\0\0RMIDdata\x35\0\0\0"s + kThreeNotes)}) {
    SCOPED_TRACE(midi);
    std::string error;
    ASSERT_TRUE(RenderMidiToFile(midi, soundfont, midi + ".wav", error)) << error;
    const std::string bytes = test::ReadFile(midi + ".wav");
    const std::size_t fmt = bytes.find("fmt "), data = bytes.find("data");
    ASSERT_TRUE(fmt != std::string::npos && data != std::string::npos);
    std::uint32_t bytes_a_second = 0;
    std::memcpy(&bytes_a_second, bytes.data() + fmt + 16, 4);
    std::vector<std::int16_t> samples((bytes.size() - data - 8) / 2);
    std::memcpy(samples.data(), bytes.data() + data + 8, samples.size() * 2);
    // The rendering lasts until the last note has faded, and is not silent.
    const double seconds = static_cast<double>(samples.size()) * 2 / bytes_a_second;
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

// Missing files and files of another kind: interpreter/statements.tt. A compressed wave file is
// refused first; each kind is reported unavailable once (no SoundFont, no Qt application, and on
// the build machines no sound card); with a sound card the sounds play.
TEST(Sounds, EachKindIsReportedUnavailableOnceOrPlaysStopsAndReplays) {
  ASSERT_EQ(QCoreApplication::instance(), nullptr);
  test::TempDir dir;
  const std::string tune = dir.Write("tune.mid", kThreeNotes);
  const std::string tone = dir.Write("tone.wav", Wave(1));
  const std::string adpcm = dir.Write("adpcm.wav", Wave(2));
  Lines log;
  const auto play = [&](MidiPlayer&& midi, WavePlayer&& wave) {
    midi.Stop();
    wave.Stop();
    midi.Play(tune);
    midi.Stop();
    midi.Play(tune);
    midi.Play(tune);
    wave.Play(tone, true);
    wave.Play(tone, false);
    wave.Stop();
    wave.Play(tone, true);
  };
  const auto sink = [&log](std::string_view line) { log.emplace_back(line); };
  WavePlayer(sink).Play(adpcm, true);
  play(MidiPlayer(sink, dir.path() + "/none.sf2"), WavePlayer(sink));
  EXPECT_EQ(log, (Lines{"Warning: Unable to play the sound " + adpcm +
                            ": only uncompressed wave files can be played.",
                        "Warning: MIDI music is unavailable: no SoundFont was found.",
                        "Warning: Wave sounds are unavailable: the player has no Qt application "
                        "to play them with."}));
  int argc = 1;
  char name[] = "platform_tests";
  char* argv[] = {name, nullptr};
  QCoreApplication app(argc, argv);
  log.clear();
  play(MidiPlayer(sink), WavePlayer(sink));
  for (const std::string& line : log) {
    EXPECT_TRUE(line == "Warning: MIDI music is unavailable: no audio output device was found." ||
                line == "Warning: Wave sounds are unavailable: no audio output device was found.")
        << line;
  }
  EXPECT_LE(log.size(), 2u);
}

}  // namespace
}  // namespace tarve
