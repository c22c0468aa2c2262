#include "player/windows/frmSplash.h"

#include <QApplication>
#include <QFont>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QVBoxLayout>

namespace tarve {

namespace {

// Sizes relative to the desktop's own font, so the window scales with the player's settings and
// the screen's density.
constexpr double kTitleScale = 3.0;
constexpr double kVersionScale = 1.2;

QFont ScaledFont(const QFont& base, double scale, bool bold) {
  QFont font = base;
  if (base.pointSizeF() > 0) {
    font.setPointSizeF(base.pointSizeF() * scale);
  } else {
    font.setPixelSize(qRound(base.pixelSize() * scale));
  }
  font.setBold(bold);
  return font;
}

}  // namespace

frmSplash::frmSplash(const std::string& version_text, QWidget* parent)
    : QFrame(parent, Qt::SplashScreen | Qt::FramelessWindowHint),
      lbl_title_(new QLabel(QStringLiteral("Tarve"), this)),
      lbl_version_(new QLabel(QString::fromStdString(version_text), this)) {
  setObjectName(QStringLiteral("frmSplash"));
  lbl_title_->setObjectName(QStringLiteral("lblTitle"));
  lbl_version_->setObjectName(QStringLiteral("lblVersion"));
  setWindowTitle(QStringLiteral("Tarve"));
  setAccessibleName(QStringLiteral("Tarve"));
  lbl_title_->setAccessibleName(lbl_title_->text());
  lbl_version_->setAccessibleName(lbl_version_->text());

  // A frameless window needs its own edge to stand out from the desktop behind it.
  setFrameShape(QFrame::Box);
  setLineWidth(1);
  setAutoFillBackground(true);
  QPalette colours = palette();
  colours.setColor(QPalette::Window, colours.color(QPalette::Base));
  setPalette(colours);

  lbl_title_->setFont(ScaledFont(font(), kTitleScale, true));
  lbl_version_->setFont(ScaledFont(font(), kVersionScale, false));
  lbl_title_->setAlignment(Qt::AlignCenter);
  lbl_version_->setAlignment(Qt::AlignCenter);

  const int space = fontMetrics().height();
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4 * space, 2 * space, 4 * space, 2 * space);
  layout->setSpacing(space);
  layout->addWidget(lbl_title_);
  layout->addWidget(lbl_version_);

  // Escape can only reach the window when it may take the keyboard focus.
  setFocusPolicy(Qt::StrongFocus);
}

void frmSplash::ShowNow() {
  adjustSize();
  if (const QScreen* screen = QGuiApplication::primaryScreen()) {
    QRect frame = rect();
    frame.moveCenter(screen->availableGeometry().center());
    move(frame.topLeft());
  }
  show();
  raise();
  activateWindow();
  setFocus();
  repaint();
  // Only painting: a click or a key must not start anything while start-up is still running.
  QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void frmSplash::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
    return;
  }
  QFrame::keyPressEvent(event);
}

}  // namespace tarve
