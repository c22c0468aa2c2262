// The platform's services to a game, written once for the desktop program and the terminal
// player: pauses, opening documents with the desktop's programs, and (through their own files)
// sound and music.
#pragma once

#include <string>

#include "game/Host.h"

namespace tarve {

class SystemServices : public PlatformServices {
 public:
  struct Options {
    // Pauses pace a reader at the screen; a player whose output goes to a file or a pipe skips
    // them, since there they only cost time.
    bool keep_pauses = true;
  };
  explicit SystemServices(Options options) : options_(options) {}

  OpenResult OpenDocument(const std::string& path, bool minimised) override;
  void Sleep(int milliseconds) override;

 private:
  Options options_;
};

}  // namespace tarve
