#include "player/windows/MessageBoxes.h"

#include <QMessageBox>
#include <QPushButton>

#include "player/windows/WindowText.h"
#include "player/windows/frmDunMsgBox.h"

namespace tarve {

namespace message_box {

int ButtonsOf(int style) {
  const int buttons = style & kButtonsMask;
  return buttons == kOkCancel || buttons == kYesNo ? buttons : kOkOnly;
}

}  // namespace message_box

namespace {

QMessageBox::Icon PlatformIcon(int style) {
  switch (style & message_box::kIconMask) {
    case message_box::kCritical:
      return QMessageBox::Critical;
    case message_box::kQuestion:
      return QMessageBox::Question;
    case kExclamation:
      return QMessageBox::Warning;
    case message_box::kInformation:
      return QMessageBox::Information;
    default:
      return QMessageBox::NoIcon;
  }
}

int ShowPlatformMessage(QWidget* parent, const std::string& text, const std::string& title,
                        int style) {
  QMessageBox box(parent);
  box.setWindowTitle(QString::fromStdString(title));
  // Game text may hold "<" and "&"; it is shown as written, never as markup.
  box.setTextFormat(Qt::PlainText);
  box.setText(ToDisplayText(text));
  box.setIcon(PlatformIcon(style));
  const int buttons = message_box::ButtonsOf(style);
  if (buttons == kYesNo) {
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(QMessageBox::No);
  } else if (buttons == kOkCancel) {
    box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
    box.setDefaultButton(QMessageBox::Ok);
    box.setEscapeButton(QMessageBox::Cancel);
  } else {
    box.setStandardButtons(QMessageBox::Ok);
    box.setEscapeButton(QMessageBox::Ok);
  }
  box.exec();
  switch (box.standardButton(box.clickedButton())) {
    case QMessageBox::Ok:
      return kAnswerOk;
    case QMessageBox::Cancel:
      return kAnswerCancel;
    case QMessageBox::Yes:
      return kAnswerYes;
    case QMessageBox::No:
      return kAnswerNo;
    default:
      // Closed some other way: the box's way out.
      return buttons == kYesNo ? kAnswerNo : buttons == kOkCancel ? kAnswerCancel : kAnswerOk;
  }
}

}  // namespace

int ShowMessage(QWidget* parent, const std::string& text, const std::string& title, int style,
                bool special_msg_box) {
  if (!special_msg_box) return ShowPlatformMessage(parent, text, title, style);
  frmDunMsgBox box(parent);
  box.SetMessage(text, title, style);
  return box.Run();
}

}  // namespace tarve
