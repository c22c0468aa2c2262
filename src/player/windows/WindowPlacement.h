// Where the small windows open: in the middle of the screen their owner is on (or the primary
// screen when they have none).
#pragma once

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace tarve {

inline void CentreOnScreen(QWidget& window) {
  const QScreen* where = window.parentWidget() != nullptr ? window.parentWidget()->screen()
                                                          : QGuiApplication::primaryScreen();
  if (where == nullptr) return;
  QRect frame = window.rect();
  frame.moveCenter(where->availableGeometry().center());
  window.move(frame.topLeft());
}

}  // namespace tarve
