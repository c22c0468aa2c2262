#include "desktop/DesktopServices.h"

#include "player/windows/frmPic.h"

namespace tarve {

DesktopServices::DesktopServices(Options options) : SystemServices(options) {}

DesktopServices::~DesktopServices() = default;

void DesktopServices::ShowPicture(const std::string& path) {
  if (!picture_) picture_ = std::make_unique<frmPic>();
  if (!picture_->LoadPicture(path)) {
    // A missing picture must not stop the game: the author finds the note in the log.
    Log("Warning: Unable to show the picture " + path +
        " - the file is missing or is not a picture.");
    return;
  }
  picture_->show();
  picture_->raise();
}

}  // namespace tarve
