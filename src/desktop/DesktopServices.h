// The platform's services as the desktop program offers them: those of both front ends, and the
// picture window for the pictures a game shows.
#pragma once

#include <memory>
#include <string>

#include "platform/SystemServices.h"

namespace tarve {

struct Game;
class frmPic;

class DesktopServices : public SystemServices {
 public:
  explicit DesktopServices(Options options);
  ~DesktopServices() override;

  // The game whose log notes a picture, a sound or music that cannot be played.
  void Attach(Game& game);

  // Opens the picture window (one, reused) sized to the picture.
  void ShowPicture(const std::string& path) override;
  frmPic* PictureWindow() const { return picture_.get(); }

 private:
  Game* game_ = nullptr;
  std::unique_ptr<frmPic> picture_;
};

}  // namespace tarve
