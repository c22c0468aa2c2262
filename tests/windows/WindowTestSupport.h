// Helpers for the window tests: acting on a modal window from inside its own event loop, and
// pressing keys where the player's keyboard focus is.
#pragma once

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <utility>

namespace tarve {

// Runs `act` on the application's modal window once it has opened. Give up after about five
// seconds, so a dialog that never opens fails its test instead of hanging it.
inline void WhenModalOpens(std::function<void(QWidget*)> act, int tries = 500) {
  QTimer::singleShot(10, [act = std::move(act), tries]() mutable {
    if (QWidget* modal = QApplication::activeModalWidget()) {
      act(modal);
    } else if (tries > 0) {
      WhenModalOpens(std::move(act), tries - 1);
    }
  });
}

// A key press as the player makes it: to the control that has the focus in `window`, from where
// an unhandled key travels up to the window.
inline void PressKey(QWidget* window, Qt::Key key) {
  QWidget* focus = window->focusWidget();
  QTest::keyClick(focus != nullptr ? focus : window, key);
}

}  // namespace tarve
