// frmSelection: the dialog in which the player picks one answer of a game's choice menu: the
// game's prompt, eight option buttons (one per answer, the rest hidden) with the first one
// chosen, and OK.
#pragma once

#include <QDialog>
#include <array>
#include <string>
#include <vector>

class QButtonGroup;
class QLabel;
class QPushButton;
class QRadioButton;

namespace tarve {

class frmSelection : public QDialog {
  Q_OBJECT

 public:
  // A menu offers at most this many answers; later ones are not shown.
  static constexpr int kMaxAnswers = 8;

  explicit frmSelection(QWidget* parent = nullptr);

  void SetChoices(const std::string& prompt, const std::vector<std::string>& answers);
  // Shows the dialog modally in the middle of the screen and returns the index (from 0) of the
  // answer the player confirmed, or -1 when the dialog was closed without one. With no answers
  // there is nothing to pick: -1 at once, without a dialog.
  int Run();

  QLabel* lblPrompt() const { return lbl_prompt_; }
  QRadioButton* optAnswer(int index) const { return opt_answers_[static_cast<std::size_t>(index)]; }
  QPushButton* butOK() const { return but_ok_; }
  // How many answers the dialog offers (the visible option buttons).
  int AnswerCount() const { return answers_; }

 private:
  QLabel* lbl_prompt_;
  std::array<QRadioButton*, kMaxAnswers> opt_answers_{};
  QButtonGroup* group_;
  QPushButton* but_ok_;
  int answers_ = 0;
  int picked_ = -1;
};

// The selection dialog in one call: SetChoices and Run.
int ShowSelection(QWidget* parent, const std::string& prompt,
                  const std::vector<std::string>& answers);

}  // namespace tarve
