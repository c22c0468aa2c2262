#include "platform/SystemServices.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

namespace tarve {

namespace {

// The desktop's programs can only be reached from a graphical session.
bool HasDesktop() {
  const char* x11 = std::getenv("DISPLAY");
  const char* wayland = std::getenv("WAYLAND_DISPLAY");
  return (x11 != nullptr && *x11 != '\0') || (wayland != nullptr && *wayland != '\0');
}

}  // namespace

PlatformServices::OpenResult SystemServices::OpenDocument(const std::string& path, bool minimised) {
  // The desktop decides how a document opens; asking for it minimised cannot be passed on.
  (void)minimised;
  if (!HasDesktop()) return OpenResult::kNoAssociation;
  const bool address = path.find(':') != std::string::npos && !std::filesystem::exists(path);
  if (!address && !std::filesystem::exists(path)) return OpenResult::kNotFound;
  const bool started = QProcess::startDetached(QStringLiteral("xdg-open"),
                                               QStringList{QString::fromStdString(path)});
  return started ? OpenResult::kOpened : OpenResult::kNoAssociation;
}

void SystemServices::Sleep(int milliseconds) {
  if (!options_.keep_pauses || milliseconds <= 0) return;
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace tarve
