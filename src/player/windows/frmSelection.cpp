#include "player/windows/frmSelection.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <algorithm>

#include "player/windows/WindowPlacement.h"
#include "player/windows/WindowText.h"

namespace tarve {

namespace {

// An answer wraps past this many average characters, so that a long one keeps the dialog
// readable.
constexpr int kMaxColumns = 60;

}  // namespace

frmSelection::frmSelection(QWidget* parent)
    : QDialog(parent),
      lbl_prompt_(new QLabel(this)),
      group_(new QButtonGroup(this)),
      but_ok_(new QPushButton(tr("OK"), this)) {
  setObjectName(QStringLiteral("frmSelection"));
  lbl_prompt_->setObjectName(QStringLiteral("lblPrompt"));
  but_ok_->setObjectName(QStringLiteral("butOK"));
  setWindowTitle(QStringLiteral("Tarve"));
  setAccessibleName(windowTitle());
  but_ok_->setAccessibleName(but_ok_->text());

  // The prompt is the game's text, shown as written, never as markup.
  lbl_prompt_->setTextFormat(Qt::PlainText);
  lbl_prompt_->setWordWrap(true);
  lbl_prompt_->setMaximumWidth(kMaxColumns * fontMetrics().averageCharWidth());
  // Enter on an answer reaches the dialog and presses OK, the default button.
  but_ok_->setDefault(true);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lbl_prompt_);
  for (int i = 0; i < kMaxAnswers; ++i) {
    auto* option = new QRadioButton(this);
    option->setObjectName(QStringLiteral("optAnswer%1").arg(i + 1));
    option->setVisible(false);
    group_->addButton(option, i);
    layout->addWidget(option);
    opt_answers_[static_cast<std::size_t>(i)] = option;
  }
  auto* button_row = new QHBoxLayout;
  button_row->addStretch(1);
  button_row->addWidget(but_ok_);
  layout->addLayout(button_row);

  connect(but_ok_, &QPushButton::clicked, this, [this] {
    picked_ = group_->checkedId();
    accept();
  });
}

void frmSelection::SetChoices(const std::string& prompt, const std::vector<std::string>& answers) {
  const QString shown_prompt = ToDisplayText(prompt);
  lbl_prompt_->setText(shown_prompt);
  lbl_prompt_->setVisible(!shown_prompt.isEmpty());
  answers_ = static_cast<int>(std::min(answers.size(), static_cast<std::size_t>(kMaxAnswers)));
  for (int i = 0; i < kMaxAnswers; ++i) {
    QRadioButton* option = opt_answers_[static_cast<std::size_t>(i)];
    const bool shown = i < answers_;
    // A caption is the answer as written: an "&" in it is no keyboard shortcut.
    const QString caption =
        shown ? ToDisplayText(answers[static_cast<std::size_t>(i)]).replace('&', "&&") : QString();
    option->setText(caption);
    option->setAccessibleName(shown ? ToDisplayText(answers[static_cast<std::size_t>(i)])
                                    : QString());
    option->setAccessibleDescription(shown_prompt);
    option->setVisible(shown);
  }
  if (answers_ > 0) opt_answers_[0]->setChecked(true);
  but_ok_->setEnabled(answers_ > 0);
  adjustSize();
}

int frmSelection::Run() {
  picked_ = -1;
  if (answers_ == 0) return -1;
  CentreOnScreen(*this);
  opt_answers_[0]->setFocus();
  exec();
  return picked_;
}

int ShowSelection(QWidget* parent, const std::string& prompt,
                  const std::vector<std::string>& answers) {
  frmSelection dialog(parent);
  dialog.SetChoices(prompt, answers);
  return dialog.Run();
}

}  // namespace tarve
