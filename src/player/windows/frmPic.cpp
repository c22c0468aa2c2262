#include "player/windows/frmPic.h"

#include <QFileInfo>
#include <QImageReader>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>

namespace tarve {

namespace {

// The share of the screen's free area a picture may cover, leaving room for the window's frame.
constexpr double kMaxScreenShare = 0.9;

}  // namespace

frmPic::frmPic(QWidget* parent) : QWidget(parent, Qt::Window) {
  setObjectName(QStringLiteral("frmPic"));
  setAccessibleName(tr("Picture"));
  // Escape closes the window, so it must be able to take the keyboard focus.
  setFocusPolicy(Qt::StrongFocus);
}

bool frmPic::LoadPicture(const std::string& path) {
  const QString file = QString::fromStdString(path);
  QImageReader reader(file);
  // Photographs record their orientation apart from their pixels.
  reader.setAutoTransform(true);
  QImage picture = reader.read();
  if (picture.isNull()) return false;

  picture_ = std::move(picture);
  scaled_ = QPixmap();
  const QString name = QFileInfo(file).fileName();
  setWindowTitle(name);
  setAccessibleName(tr("Picture %1").arg(name));
  resize(FittedSize());
  update();
  return true;
}

QSize frmPic::sizeHint() const { return picture_.isNull() ? QWidget::sizeHint() : FittedSize(); }

QSize frmPic::FittedSize() const {
  // A picture's pixels are taken as the desktop's own units, as the picture has always been shown
  // at 96 dots per inch; on a denser screen it keeps the size its author saw.
  QSize size = picture_.size();
  if (const QScreen* where = screen()) {
    const QSize room = where->availableGeometry().size() * kMaxScreenShare;
    if (size.width() > room.width() || size.height() > room.height()) {
      size.scale(room, Qt::KeepAspectRatio);
    }
  }
  return size.expandedTo(QSize(1, 1));
}

void frmPic::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().window());
  if (picture_.isNull()) return;

  // Scaled in device pixels, so that a shrunk picture stays sharp on a high-density screen.
  const qreal ratio = devicePixelRatioF();
  const QSize room = size() * ratio;
  const QSize wanted = picture_.size().scaled(room, Qt::KeepAspectRatio);
  if (scaled_.size() != wanted || scaled_.devicePixelRatio() != ratio) {
    scaled_ =
        QPixmap::fromImage(picture_.size() == wanted ? picture_
                                                     : picture_.scaled(wanted, Qt::KeepAspectRatio,
                                                                       Qt::SmoothTransformation));
    scaled_.setDevicePixelRatio(ratio);
  }
  const QSizeF shown = QSizeF(scaled_.size()) / ratio;
  const QPointF corner((width() - shown.width()) / 2, (height() - shown.height()) / 2);
  painter.drawPixmap(corner, scaled_);
}

void frmPic::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
    return;
  }
  QWidget::keyPressEvent(event);
}

}  // namespace tarve
