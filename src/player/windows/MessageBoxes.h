// Message boxes of the desktop program: the style and answer codes that games and the player use,
// and ShowMessage, which shows either the platform's message box or the program's own window.
#pragma once

#include <string>

class QWidget;

namespace tarve {

// The codes have always been those of the platform's standard message box; games depend on them.
namespace message_box {

// Buttons: the low four bits of a style.
inline constexpr int kOkOnly = 0;
inline constexpr int kOkCancel = 1;
inline constexpr int kYesNo = 4;
inline constexpr int kButtonsMask = 0x0F;
// Icons: added to the buttons.
inline constexpr int kCritical = 16;
inline constexpr int kQuestion = 32;
inline constexpr int kExclamation = 48;
inline constexpr int kInformation = 64;
inline constexpr int kIconMask = 0x70;

// Answers.
inline constexpr int kOk = 1;
inline constexpr int kCancel = 2;
inline constexpr int kYes = 6;
inline constexpr int kNo = 7;

// The buttons a style asks for. Only OK, OK/Cancel and Yes/No exist; any other button code
// shows OK alone, so that both boxes offer the same answers for it.
int ButtonsOf(int style);

}  // namespace message_box

// Shows `text` in a modal message box titled `title` and returns the answer (kOk, kCancel, kYes,
// kNo). With `special_msg_box` the program's own window frmDunMsgBox is used, otherwise the
// platform's box (QMessageBox); closing either without a button gives Cancel or No when the box
// has such a button, else OK.
int ShowMessage(QWidget* parent, const std::string& text, const std::string& title, int style,
                bool special_msg_box);

}  // namespace tarve
