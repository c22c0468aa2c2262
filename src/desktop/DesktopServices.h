// The platform's services as the desktop program offers them: those of both front ends, and the
// picture window for the pictures a game shows.
#pragma once

#include <memory>
#include <string>

#include "platform/SystemServices.h"

namespace tarve {

class frmPic;

class DesktopServices : public SystemServices {
 public:
  explicit DesktopServices(Options options);
  ~DesktopServices() override;

  // Opens the picture window (one, reused) sized to the picture.
  void ShowPicture(const std::string& path) override;
  frmPic* PictureWindow() const { return picture_.get(); }

 private:
  std::unique_ptr<frmPic> picture_;
};

}  // namespace tarve
