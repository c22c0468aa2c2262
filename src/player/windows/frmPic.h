// frmPic: the window that shows a picture a game asks for. It takes the picture's own size,
// shrunk to fit the screen when the picture is larger, and keeps the picture's proportions.
#pragma once

#include <QImage>
#include <QPixmap>
#include <QWidget>
#include <string>

namespace tarve {

class frmPic : public QWidget {
  Q_OBJECT

 public:
  explicit frmPic(QWidget* parent = nullptr);

  // Reads the picture at `path` (UTF-8), captions the window with the file's name and sizes the
  // window to the picture. False, with the window left as it was, when the file cannot be read as
  // a picture; the caller reports it.
  bool LoadPicture(const std::string& path);

  // The picture's own size in pixels; empty before a picture is loaded.
  QSize PictureSize() const { return picture_.size(); }

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QSize FittedSize() const;

  QImage picture_;
  // The picture scaled for the window's present size and pixel ratio, so a repaint does not
  // scale a large picture again.
  QPixmap scaled_;
};

}  // namespace tarve
