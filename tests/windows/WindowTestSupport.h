// Helpers for the window tests: answering a modal window from inside its own event loop, and
// pressing keys where the player's keyboard focus is.
#pragma once

#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>
#include <deque>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "player/windows/frmDunMsgBox.h"

// Failures name the texts, not their bytes.
inline void PrintTo(const QString& text, std::ostream* out) { *out << text.toStdString(); }

namespace tarve {

// Runs `act` on the modal window once one of kind `Dialog` has opened. After about thirty
// seconds (a loaded machine opens a file dialog slowly) the test fails and closes whatever modal
// window is open, so that it never hangs.
template <typename Dialog>
void WhenOpens(std::function<void(Dialog*)> act, int tries = 3000) {
  QTimer::singleShot(10, [act = std::move(act), tries]() mutable {
    if (auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget())) {
      act(dialog);
    } else if (tries > 0) {
      WhenOpens<Dialog>(std::move(act), tries - 1);
    } else {
      ADD_FAILURE() << "the expected dialog did not open";
      if (QWidget* modal = QApplication::activeModalWidget()) modal->close();
    }
  });
}

// The window and each control of ours in it (Qt names the parts it builds "qt_...") have a
// name for a screen reader.
inline void ExpectAccessibleNames(QWidget* window) {
  const std::string name = window->objectName().toStdString();
  EXPECT_FALSE(QAccessible::queryAccessibleInterface(window)->text(QAccessible::Name).isEmpty())
      << name;
  for (QWidget* control : window->findChildren<QWidget*>()) {
    const QString id = control->objectName();
    if (id.isEmpty() || id.startsWith("qt_") || control->isHidden()) continue;
    EXPECT_FALSE(QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name).isEmpty())
        << name << " " << id.toStdString();
  }
}

// Answers the next input box with `answer`, recording its title and prompt.
inline void AnswerInput(const QString& answer, QString* title = nullptr,
                        QString* prompt = nullptr) {
  WhenOpens<QInputDialog>([=](QInputDialog* box) {
    if (title != nullptr) *title = box->windowTitle();
    if (prompt != nullptr) *prompt = box->labelText();
    box->setTextValue(answer);
    box->accept();
  });
}

// Runs `act`, answering each message box that opens, whichever kind it is, with Yes/OK (`yes`)
// or No/Cancel, and closing any other modal window; tells for each its kind, title and text.
inline QStringList Answering(const std::function<void()>& act, bool yes = true) {
  QStringList opened;
  QTimer watch;
  watch.callOnTimeout([&opened, yes] {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr) return;
    opened << QStringLiteral("%1 %2").arg(modal->metaObject()->className(), modal->windowTitle());
    if (auto* own = qobject_cast<frmDunMsgBox*>(modal)) {
      opened.back() += ": " + own->txtMessage()->toPlainText();
      (yes ? own->butOK() : own->butCancel())->click();
    } else if (auto* box = qobject_cast<QMessageBox*>(modal)) {
      opened.back() += ": " + box->text();
      QAbstractButton* button = box->button(yes ? QMessageBox::Yes : QMessageBox::No);
      (button ? button : box->button(yes ? QMessageBox::Ok : QMessageBox::Cancel))->click();
    } else {
      modal->close();
    }
  });
  watch.start(10);
  act();
  return opened;
}

// A key press as the player makes it: to the control that has the focus in `window`, from where
// an unhandled key travels up to the window.
inline void PressKey(QWidget* window, Qt::Key key) {
  QWidget* focus = window->focusWidget();
  QTest::keyClick(focus != nullptr ? focus : window, key);
}

}  // namespace tarve
