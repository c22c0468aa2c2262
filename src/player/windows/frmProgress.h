// frmProgress: the small window that shows how far the opening of a game has come: a caption
// such as "Initialising..." and a bar from 0 to 100.
#pragma once

#include <QWidget>
#include <string>

class QLabel;
class QProgressBar;

namespace tarve {

class frmProgress : public QWidget {
  Q_OBJECT

 public:
  explicit frmProgress(QWidget* parent = nullptr);

  void SetCaption(const std::string& caption);
  // `percent` is kept within 0 to 100.
  void SetProgress(int percent);
  // Shows the window (in the middle of the screen the first time) and paints it at once: a game
  // opens without returning to the event loop, so the window would otherwise stay blank.
  void ShowNow();

  QLabel* lblCaption() const { return lbl_caption_; }
  QProgressBar* prgProgress() const { return prg_progress_; }

 private:
  QLabel* lbl_caption_;
  QProgressBar* prg_progress_;
  bool placed_ = false;
};

}  // namespace tarve
