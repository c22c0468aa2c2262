#include "platform/WavePlayer.h"

#include <QAudioDevice>
#include <QCoreApplication>
#include <QEventLoop>
#include <QMediaDevices>
#include <QSoundEffect>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>

// Why QSoundEffect and not QMediaPlayer: QSoundEffect reads uncompressed wave files itself and
// needs nothing but an audio output, while QMediaPlayer goes through a media backend (GStreamer
// or FFmpeg). On a machine without a sound card or without the GStreamer plugins, the backends
// of the Qt 6.4 that Debian ships crashed when a player was created or started; QSoundEffect
// never did. Games' sounds are short uncompressed effects, which is what QSoundEffect is for.

namespace tarve {

namespace {

namespace fs = std::filesystem;

// A sync play lasts at least the sound's length from the moment it starts, plus the time the
// sound takes to pass through the audio system...
constexpr int kOutputLatencyMs = 100;
// ...and at most its length plus this margin, counted from the call, so that a load that never
// ends or a stalled device cannot hold the game.
constexpr int kSyncMarginMs = 2000;

enum class WaveKind { kPlayable, kNotWave, kCompressed };

struct WaveFacts {
  WaveKind kind = WaveKind::kNotWave;
  std::uint64_t milliseconds = 0;
};

std::uint32_t Le32(const unsigned char* p) {
  return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
         static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

std::uint16_t Le16(const unsigned char* p) { return static_cast<std::uint16_t>(p[0] | p[1] << 8); }

// Plain sample data: PCM or floating point, directly or inside the extensible format.
bool IsUncompressed(std::uint16_t format, const unsigned char* fmt, std::uint32_t size) {
  constexpr std::uint16_t kPcm = 1, kFloat = 3, kExtensible = 0xFFFE;
  if (format == kExtensible && size >= 26) format = Le16(fmt + 24);
  return format == kPcm || format == kFloat;
}

// Reads a RIFF wave file's chunks far enough to know whether QSoundEffect can play it and how
// long it lasts. QSoundEffect itself waits for ever on some files it cannot read, so they are
// turned away here.
WaveFacts ReadWaveFacts(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::array<unsigned char, 12> riff{};
  if (!in.read(reinterpret_cast<char*>(riff.data()), riff.size()) ||
      std::memcmp(riff.data(), "RIFF", 4) != 0 || std::memcmp(riff.data() + 8, "WAVE", 4) != 0) {
    return {};
  }
  std::error_code ec;
  const std::uint64_t file_size = fs::file_size(path, ec);
  if (ec) return {};
  std::uint32_t byte_rate = 0;
  bool uncompressed = false;
  std::array<unsigned char, 8> head{};
  while (in.read(reinterpret_cast<char*>(head.data()), head.size())) {
    const std::uint32_t size = Le32(head.data() + 4);
    if (std::memcmp(head.data(), "fmt ", 4) == 0) {
      std::array<unsigned char, 40> fmt{};
      const std::uint32_t wanted = std::min<std::uint32_t>(size, fmt.size());
      if (size < 16 || !in.read(reinterpret_cast<char*>(fmt.data()), wanted)) return {};
      uncompressed = IsUncompressed(Le16(fmt.data()), fmt.data(), size);
      byte_rate = Le32(fmt.data() + 8);
      in.seekg(static_cast<std::streamoff>(size - wanted + (size & 1)), std::ios::cur);
    } else if (std::memcmp(head.data(), "data", 4) == 0) {
      if (byte_rate == 0) return {};  // no format before the samples
      if (!uncompressed) return {WaveKind::kCompressed, 0};
      // Some writers leave the size open (0 or all ones) while streaming: the file tells.
      const std::uint64_t left = file_size - static_cast<std::uint64_t>(in.tellg());
      const std::uint64_t data = size == 0 ? left : std::min<std::uint64_t>(size, left);
      return {WaveKind::kPlayable, data * 1000 / byte_rate};
    } else {
      in.seekg(static_cast<std::streamoff>(size) + (size & 1), std::ios::cur);
    }
  }
  return {};
}

}  // namespace

WavePlayer::WavePlayer(std::function<void(std::string_view)> log) : log_(std::move(log)) {}

WavePlayer::~WavePlayer() { Stop(); }

void WavePlayer::Play(const std::string& path, bool sync) {
  Stop();
  const std::string cannot = "Warning: Unable to play the sound " + path + ": ";
  std::error_code ec;
  if (!fs::is_regular_file(path, ec)) {
    log_(cannot + "the file does not exist.");
    return;
  }
  const WaveFacts facts = ReadWaveFacts(path);
  if (facts.kind == WaveKind::kNotWave) {
    log_(cannot + "it is not a wave file.");
    return;
  }
  if (facts.kind == WaveKind::kCompressed) {
    log_(cannot + "only uncompressed wave files can be played.");
    return;
  }
  if (!SoundAvailable()) return;

  effect_ = std::make_unique<QSoundEffect>();
  QSoundEffect& effect = *effect_;
  QObject::connect(&effect, &QSoundEffect::statusChanged, &effect, [this, &effect, cannot] {
    if (effect.status() == QSoundEffect::Error) log_(cannot + "the file could not be read.");
  });
  effect.setSource(QUrl::fromLocalFile(QString::fromStdString(path)));
  effect.play();
  if (sync) {
    constexpr std::uint64_t kLongest = std::numeric_limits<int>::max() - kSyncMarginMs;
    WaitForEnd(effect, static_cast<int>(std::min(facts.milliseconds, kLongest)));
  }
}

// The effect's playing flag alone does not tell when the sound has been heard: on PulseAudio, Qt
// sometimes clears it as soon as the whole sound has been handed to the audio server, well before
// the sound's end. So the wait also lasts the length read from the file, counted from the moment
// the sound has been loaded and starts.
void WavePlayer::WaitForEnd(QSoundEffect& effect, int length_ms) {
  QEventLoop loop;
  QTimer length;
  length.setSingleShot(true);
  bool started = false;
  const auto follow = [&] {
    if (effect.status() == QSoundEffect::Error) {
      loop.quit();
      return;
    }
    if (effect.status() == QSoundEffect::Ready && !started) {
      started = true;
      length.start(length_ms + kOutputLatencyMs);
    }
    if (started && !length.isActive() && !effect.isPlaying()) loop.quit();
  };
  QObject::connect(&effect, &QSoundEffect::statusChanged, &loop, follow);
  QObject::connect(&effect, &QSoundEffect::playingChanged, &loop, follow);
  QObject::connect(&length, &QTimer::timeout, &loop, follow);
  QTimer::singleShot(length_ms + kSyncMarginMs, &loop, &QEventLoop::quit);
  follow();
  if (effect.status() == QSoundEffect::Error) return;
  waiting_ = &loop;
  loop.exec();
  waiting_ = nullptr;
}

void WavePlayer::Stop() {
  if (waiting_ != nullptr) waiting_->quit();
  if (effect_ == nullptr) return;
  // Its signals would reach the waiting loop while the effect is being taken apart.
  effect_->disconnect();
  effect_->stop();
  effect_.reset();
}

bool WavePlayer::SoundAvailable() {
  const char* reason = nullptr;
  if (QCoreApplication::instance() == nullptr) {
    reason = "the player has no Qt application to play them with";
  } else if (QMediaDevices::defaultAudioOutput().isNull()) {
    reason = "no audio output device was found";
  }
  if (reason == nullptr) return true;
  if (!unavailable_reported_) {
    unavailable_reported_ = true;
    log_(std::string("Warning: Wave sounds are unavailable: ") + reason + ".");
  }
  return false;
}

}  // namespace tarve
