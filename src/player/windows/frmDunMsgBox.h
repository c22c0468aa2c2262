// frmDunMsgBox: the program's own message window, used instead of the platform's message box when
// the player asks for it. A read-only text box with the message, OK (or Yes) and Cancel (or No),
// and the keys Y and N for the two answers.
#pragma once

#include <QDialog>
#include <string>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace tarve {

class frmDunMsgBox : public QDialog {
  Q_OBJECT

 public:
  explicit frmDunMsgBox(QWidget* parent = nullptr);

  // Caption, message and buttons for a message of `style` (a MessageStyle, possibly with an icon code).
  void SetMessage(const std::string& text, const std::string& title, int style);
  // Shows the window modally and returns the answer code of the style: kAnswerOk or kAnswerCancel,
  // or kAnswerYes or kAnswerNo for a Yes/No message.
  int Run();

  // The controls, for the tests and for accessibility tools.
  QPlainTextEdit* txtMessage() const { return txt_message_; }
  QPushButton* butOK() const { return but_ok_; }
  QPushButton* butCancel() const { return but_cancel_; }

 public slots:
  // Escape and the frame's close box come here: they give Cancel (or No) when that button shows,
  // else OK, as a one-button message has no other answer.
  void reject() override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Finish(int answer);
  void FitTextBox(const QString& text);

  QLabel* lbl_icon_;
  QPlainTextEdit* txt_message_;
  QPushButton* but_ok_;
  QPushButton* but_cancel_;
  int style_ = 0;
  int answer_ = 1;  // the button that ended the window: 1 butOK, 2 butCancel
};

}  // namespace tarve
