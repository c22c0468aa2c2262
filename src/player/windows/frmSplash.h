// frmSplash: the frameless window with the program's name and version that shows while the
// program starts. Escape closes it.
#pragma once

#include <QFrame>
#include <string>

class QLabel;

namespace tarve {

class frmSplash : public QFrame {
  Q_OBJECT

 public:
  // `version_text` is shown as it is given, e.g. "Version 2.17".
  explicit frmSplash(const std::string& version_text, QWidget* parent = nullptr);

  // Shows the window in the middle of the screen and paints it at once: start-up goes on reading
  // files without returning to the event loop, and the window must not stay blank meanwhile.
  void ShowNow();

  QLabel* lblVersion() const { return lbl_version_; }

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QLabel* lbl_title_;
  QLabel* lbl_version_;
};

}  // namespace tarve
