// The choice menu dialog: what it offers, how the player confirms, and what closing it gives.
#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <string>
#include <vector>

#include "WindowTestSupport.h"
#include "player/windows/frmSelection.h"

namespace tarve {
namespace {

std::vector<std::string> Answers(int count) {
  std::vector<std::string> answers;
  for (int i = 1; i <= count; ++i) answers.push_back("Answer " + std::to_string(i));
  return answers;
}

// Opens the dialog, runs `act` on it once it shows and returns what the dialog gave.
int Choose(const std::vector<std::string>& answers, const std::function<void(frmSelection*)>& act) {
  WhenModalOpens([=](QWidget* modal) {
    auto* dialog = qobject_cast<frmSelection*>(modal);
    if (dialog == nullptr) {
      ADD_FAILURE() << "the modal window is not frmSelection";
      modal->close();
      return;
    }
    act(dialog);
  });
  return ShowSelection(nullptr, "What now?", answers);
}

TEST(Selection, OffersAtMostEightAnswersWithTheFirstChosenAndEnterConfirms) {
  QStringList shown;
  bool first_checked = false;
  QString prompt;
  const int picked = Choose(Answers(10), [&](frmSelection* dialog) {
    prompt = dialog->lblPrompt()->text();
    for (int i = 0; i < frmSelection::kMaxAnswers; ++i) {
      if (dialog->optAnswer(i)->isVisible()) shown << dialog->optAnswer(i)->text();
    }
    first_checked = dialog->optAnswer(0)->isChecked();
    // The arrows move the choice from button to button; Enter confirms it.
    QApplication::setActiveWindow(dialog);
    PressKey(dialog, Qt::Key_Down);
    PressKey(dialog, Qt::Key_Down);
    PressKey(dialog, Qt::Key_Return);
  });
  EXPECT_EQ(prompt, QStringLiteral("What now?"));
  EXPECT_EQ(shown.size(), 8);
  EXPECT_EQ(shown.front(), QStringLiteral("Answer 1"));
  EXPECT_EQ(shown.back(), QStringLiteral("Answer 8"));
  EXPECT_TRUE(first_checked);
  EXPECT_EQ(picked, 2);
}

TEST(Selection, ThreeAnswersShowThreeButtonsAndAClickedOneIsConfirmed) {
  int visible = 0;
  const int picked = Choose(Answers(3), [&](frmSelection* dialog) {
    for (int i = 0; i < frmSelection::kMaxAnswers; ++i)
      visible += dialog->optAnswer(i)->isVisible();
    // On the button's round mark: the button is as wide as the dialog, its caption shorter.
    QTest::mouseClick(dialog->optAnswer(1), Qt::LeftButton, {}, QPoint(8, 10));
    QTest::mouseClick(dialog->butOK(), Qt::LeftButton);
  });
  EXPECT_EQ(visible, 3);
  EXPECT_EQ(picked, 1);
}

TEST(Selection, ClosingWithoutConfirmingGivesMinusOne) {
  EXPECT_EQ(Choose(Answers(3), [](frmSelection* dialog) { dialog->close(); }), -1);
  EXPECT_EQ(Choose(Answers(3), [](frmSelection* dialog) { PressKey(dialog, Qt::Key_Escape); }), -1);
  // Nothing to pick: no dialog opens.
  frmSelection empty;
  empty.SetChoices("What now?", {});
  EXPECT_EQ(empty.Run(), -1);
  EXPECT_FALSE(empty.isVisible());
}

}  // namespace
}  // namespace tarve
