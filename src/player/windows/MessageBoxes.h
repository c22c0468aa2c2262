// Message boxes of the desktop program: the icon codes a message style may carry, and
// ShowMessage, which shows either the platform's message box or the program's own window.
#pragma once

#include <string>

#include "game/Host.h"

class QWidget;

namespace tarve {

// The style codes beyond the buttons of game/Host.h's MessageStyle: the icons a message can
// carry. The codes have always been those of the platform's standard message box.
namespace message_box {

// Buttons: the low four bits of a style (kOkOnly, kOkCancel, kYesNo).
inline constexpr int kButtonsMask = 0x0F;
// Icons: added to the buttons. kExclamation (48) is the engine's own.
inline constexpr int kCritical = 16;
inline constexpr int kQuestion = 32;
inline constexpr int kInformation = 64;
inline constexpr int kIconMask = 0x70;

// The buttons a style asks for. Only OK, OK/Cancel and Yes/No exist; any other button code
// shows OK alone, so that both boxes offer the same answers for it.
int ButtonsOf(int style);

}  // namespace message_box

// Shows `text` in a modal message box titled `title` and returns the answer (a MessageAnswer). With
// `special_msg_box` the program's own window frmDunMsgBox is used, otherwise the platform's box
// (QMessageBox); closing either without a button gives Cancel or No when the box has such a button,
// else OK.
int ShowMessage(QWidget* parent, const std::string& text, const std::string& title, int style,
                bool special_msg_box);

}  // namespace tarve
