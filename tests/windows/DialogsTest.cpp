// The message boxes and the choice menu: which box ShowMessage opens, the buttons of the
// program's own box, its Y and N keys and the answer each way out gives; what the choice menu
// offers, how the player confirms and what closing it gives.
#include <gtest/gtest.h>

#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <string>
#include <vector>

#include "WindowTestSupport.h"
#include "player/windows/MessageBoxes.h"
#include "player/windows/frmDunMsgBox.h"
#include "player/windows/frmSelection.h"

namespace tarve {
namespace {

constexpr int kOk = kAnswerOk;
constexpr int kCancel = kAnswerCancel;
constexpr int kYes = kAnswerYes;
constexpr int kNo = kAnswerNo;

bool AnyDunMsgBoxExists() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (qobject_cast<frmDunMsgBox*>(window) != nullptr) return true;
  }
  return false;
}

// Opens the platform's box through ShowMessage, clicks `button` in it and returns the answer.
int AnswerPlatformBox(int style, QMessageBox::StandardButton button, QString* shown_text,
                      bool* dun_box_seen) {
  WhenModalOpens([=](QWidget* modal) {
    *dun_box_seen = AnyDunMsgBoxExists();
    auto* box = qobject_cast<QMessageBox*>(modal);
    if (box == nullptr || box->button(button) == nullptr) {
      ADD_FAILURE() << "no platform message box with that button";
      modal->close();
      return;
    }
    *shown_text = box->text();
    box->button(button)->click();
  });
  return ShowMessage(nullptr, "Open <the> door?\r\nA & B", "Tarve", style, false);
}

// Opens frmDunMsgBox through ShowMessage, runs `act` on it and returns the answer.
int AnswerDunMsgBox(int style, const std::function<void(frmDunMsgBox*)>& act) {
  WhenModalOpens([=](QWidget* modal) {
    auto* box = qobject_cast<frmDunMsgBox*>(modal);
    if (box == nullptr) {
      ADD_FAILURE() << "the modal window is not frmDunMsgBox";
      modal->close();
      return;
    }
    act(box);
  });
  return ShowMessage(nullptr, "Really quit?", "Tarve", style, true);
}

TEST(ShowMessage, PlatformBoxIsUsedAndNoDunMsgBoxCreatedWhenSpecialBoxIsOff) {
  QString text;
  bool dun_box_seen = true;
  EXPECT_EQ(AnswerPlatformBox(kOkOnly, QMessageBox::Ok, &text, &dun_box_seen), kOk);
  EXPECT_FALSE(dun_box_seen);
  // Game text is shown as written, not as markup, with the line end as a line break.
  EXPECT_EQ(text, QStringLiteral("Open <the> door?\nA & B"));
  EXPECT_EQ(AnswerPlatformBox(kOkCancel + kExclamation, QMessageBox::Cancel, &text, &dun_box_seen),
            kCancel);
  EXPECT_EQ(AnswerPlatformBox(kYesNo, QMessageBox::Yes, &text, &dun_box_seen), kYes);
  EXPECT_EQ(AnswerPlatformBox(kYesNo, QMessageBox::No, &text, &dun_box_seen), kNo);
  EXPECT_FALSE(dun_box_seen);
}

TEST(DunMsgBox, OkOnlyMessageShowsTheTextAndOneCentredButton) {
  frmDunMsgBox box;
  box.SetMessage("Line one\r\nLine two", "Error", kOkOnly);
  WhenModalOpens([&](QWidget*) {
    EXPECT_EQ(box.windowTitle(), QStringLiteral("Error"));
    EXPECT_EQ(box.txtMessage()->toPlainText(), QStringLiteral("Line one\nLine two"));
    EXPECT_TRUE(box.txtMessage()->isReadOnly());
    EXPECT_FALSE(box.butCancel()->isVisible());
    EXPECT_EQ(box.butOK()->text(), QStringLiteral("OK"));
    const int centre = box.butOK()->geometry().center().x();
    EXPECT_LE(std::abs(centre - box.rect().center().x()), 2);
    PressKey(&box, Qt::Key_Return);
  });
  EXPECT_EQ(box.Run(), kOk);
}

TEST(DunMsgBox, NKeyDoesNothingInAnOkOnlyMessage) {
  bool still_open = false;
  const int answer = AnswerDunMsgBox(kOkOnly, [&](frmDunMsgBox* box) {
    PressKey(box, Qt::Key_N);
    QApplication::processEvents();
    still_open = box->isVisible();
    // Closing a box without Cancel by its frame is its OK.
    box->close();
  });
  EXPECT_TRUE(still_open);
  EXPECT_EQ(answer, kOk);
}

TEST(DunMsgBox, KeysAndClosingTheFrameGiveTheAnswersOfTheButtons) {
  QString yes_caption, no_caption;
  EXPECT_EQ(AnswerDunMsgBox(kYesNo,
                            [&](frmDunMsgBox* box) {
                              yes_caption = box->butOK()->text();
                              no_caption = box->butCancel()->text();
                              EXPECT_TRUE(box->butCancel()->isVisible());
                              PressKey(box, Qt::Key_Y);
                            }),
            kYes);
  EXPECT_EQ(yes_caption, QStringLiteral("&Yes"));
  EXPECT_EQ(no_caption, QStringLiteral("&No"));
  EXPECT_EQ(AnswerDunMsgBox(kYesNo, [](frmDunMsgBox* box) { PressKey(box, Qt::Key_N); }), kNo);
  // With the focus in the text box the keys still answer.
  EXPECT_EQ(AnswerDunMsgBox(kYesNo + kExclamation,
                            [](frmDunMsgBox* box) {
                              box->txtMessage()->setFocus();
                              PressKey(box, Qt::Key_N);
                            }),
            kNo);
  EXPECT_EQ(AnswerDunMsgBox(kOkCancel, [](frmDunMsgBox* box) { PressKey(box, Qt::Key_N); }),
            kCancel);
  // Closing by the frame gives Cancel or No when there is such a button.
  const auto close = [](frmDunMsgBox* box) { box->close(); };
  EXPECT_EQ(AnswerDunMsgBox(kOkCancel, close), kCancel);
  EXPECT_EQ(AnswerDunMsgBox(kYesNo, close), kNo);
  EXPECT_EQ(AnswerDunMsgBox(kOkOnly, close), kOk);
  EXPECT_EQ(AnswerDunMsgBox(kOkCancel, [](frmDunMsgBox* box) { PressKey(box, Qt::Key_Escape); }),
            kCancel);
  // Enter presses the default button, OK.
  EXPECT_EQ(AnswerDunMsgBox(kOkCancel, [](frmDunMsgBox* box) { PressKey(box, Qt::Key_Return); }),
            kOk);
}

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

TEST(Selection, ThreeAnswersShowThreeButtonsAClickedOneIsConfirmedAndClosingGivesNone) {
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

  // Closing without confirming gives -1.
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
