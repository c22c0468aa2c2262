#include "desktop/DesktopServices.h"

#include "game/Game.h"
#include "game/ScriptLog.h"
#include "player/windows/frmPic.h"

namespace tarve {

DesktopServices::DesktopServices(Options options) : SystemServices(options) {}

DesktopServices::~DesktopServices() = default;

void DesktopServices::Attach(Game& game) {
  game_ = &game;
  SetLog([&game](std::string_view message) { LogScriptError(game, message); });
}

void DesktopServices::ShowPicture(const std::string& path) {
  if (!picture_) picture_ = std::make_unique<frmPic>();
  if (!picture_->LoadPicture(path)) {
    // A missing picture must not stop the game: the author finds the note in the log.
    if (game_ != nullptr) {
      LogScriptError(*game_, "Warning: Unable to show the picture " + path +
                                 " - the file is missing or is not a picture.");
    }
    return;
  }
  picture_->show();
  picture_->raise();
}

}  // namespace tarve
