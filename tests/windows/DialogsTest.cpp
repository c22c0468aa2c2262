// The message boxes and the choice menu: which box opens and the answer each way out gives.
#include "WindowTestSupport.h"
#include "player/windows/MessageBoxes.h"
#include "player/windows/frmSelection.h"

namespace tarve {
namespace {

TEST(ShowMessage, PlatformBoxShowsTheTextAsWrittenAndGivesTheAnswerOfItsButton) {
  const std::tuple<int, bool, int> cases[] = {{kOkOnly, true, kAnswerOk},
                                              {kOkCancel + kExclamation, false, kAnswerCancel},
                                              {kYesNo, true, kAnswerYes},
                                              {kYesNo, false, kAnswerNo}};
  for (const auto& [style, yes, answer] : cases) {
    QString text;
    bool own_box = true;
    AnswerMessage(yes, &text, &own_box);
    EXPECT_EQ(ShowMessage(nullptr, "Open <the> door?\r\nA & B", "Tarve", style, false), answer);
    EXPECT_FALSE(own_box);
    // Game text is shown as written, not as markup, with the line end as a line break.
    EXPECT_EQ(text, QStringLiteral("Open <the> door?\nA & B"));
  }
}

TEST(DunMsgBox, ShowsTheTextAndItsKeysAndClosingTheFrameGiveTheAnswersOfTheButtons) {
  const auto ok_only = [](frmDunMsgBox* box) {
    EXPECT_EQ(box->windowTitle(), QStringLiteral("Error"));
    EXPECT_EQ(box->txtMessage()->toPlainText(), "Line one\nLine two");
    EXPECT_TRUE(box->txtMessage()->isReadOnly() && !box->butCancel()->isVisible());
    EXPECT_EQ(box->butOK()->text(), QStringLiteral("OK"));
    const int centre = box->butOK()->geometry().center().x();
    EXPECT_LE(std::abs(centre - box->rect().center().x()), 2);
    PressKey(box, Qt::Key_N);  // no No to give
    QApplication::processEvents();
    EXPECT_TRUE(box->isVisible());
    PressKey(box, Qt::Key_Return);
  };
  const auto key = [](Qt::Key pressed) {
    return [pressed](frmDunMsgBox* box) { PressKey(box, pressed); };
  };
  const auto close = [](frmDunMsgBox* box) { box->close(); };
  const auto yes_no = [](frmDunMsgBox* box) {
    EXPECT_EQ(box->butOK()->text() + box->butCancel()->text(), QStringLiteral("&Yes&No"));
    ExpectAccessibleNames(box);
    PressKey(box, Qt::Key_Y);
  };
  // With the focus in the text box the keys still answer.
  const auto n_in_text = [](frmDunMsgBox* box) {
    box->txtMessage()->setFocus();
    PressKey(box, Qt::Key_N);
  };
  const std::tuple<int, std::function<void(frmDunMsgBox*)>, int> cases[] = {
      {kOkOnly, ok_only, kAnswerOk},
      {kYesNo, yes_no, kAnswerYes},
      {kYesNo + kExclamation, n_in_text, kAnswerNo},
      {kOkCancel, key(Qt::Key_N), kAnswerCancel},
      {kOkCancel, key(Qt::Key_Escape), kAnswerCancel},
      {kOkCancel, key(Qt::Key_Return), kAnswerOk},  // the default button
      // Closing by the frame gives Cancel or No when there is such a button.
      {kYesNo, close, kAnswerNo},
      {kOkOnly, close, kAnswerOk}};
  int number = 0;
  for (const auto& [style, act, answer] : cases) {
    WhenOpens<frmDunMsgBox>(act);
    EXPECT_EQ(ShowMessage(nullptr, "Line one\r\nLine two", "Error", style, true), answer)
        << "case " << number++;
  }
}

// Offers `count` answers, runs `act` on the dialog once it shows and returns what it gave.
int Choose(int count, const std::function<void(frmSelection*)>& act) {
  std::vector<std::string> answers;
  for (int i = 1; i <= count; ++i) answers.push_back("Answer " + std::to_string(i));
  WhenOpens<frmSelection>(act);
  return ShowSelection(nullptr, "What now?", answers);
}

TEST(Selection, OffersAtMostEightAnswersAndGivesTheConfirmedOneOrNone) {
  EXPECT_EQ(Choose(10,
                   [](frmSelection* dialog) {
                     EXPECT_EQ(dialog->lblPrompt()->text(), QStringLiteral("What now?"));
                     EXPECT_TRUE(dialog->optAnswer(0)->isChecked());
                     EXPECT_TRUE(dialog->optAnswer(7)->isVisible());
                     EXPECT_EQ(dialog->optAnswer(7)->text(), QStringLiteral("Answer 8"));
                     ExpectAccessibleNames(dialog);
                     // The arrows move the choice from button to button; Enter confirms it.
                     QApplication::setActiveWindow(dialog);
                     PressKey(dialog, Qt::Key_Down);
                     PressKey(dialog, Qt::Key_Down);
                     PressKey(dialog, Qt::Key_Return);
                   }),
            2);
  // A clicked answer is confirmed; closing without confirming gives none.
  EXPECT_EQ(Choose(3,
                   [&](frmSelection* dialog) {
                     EXPECT_FALSE(dialog->optAnswer(3)->isVisible());
                     // On the button's round mark: the button is as wide as the dialog.
                     QTest::mouseClick(dialog->optAnswer(1), Qt::LeftButton, {}, QPoint(8, 10));
                     QTest::mouseClick(dialog->butOK(), Qt::LeftButton);
                   }),
            1);
  EXPECT_EQ(Choose(3, [](frmSelection* dialog) { dialog->close(); }), -1);
  EXPECT_EQ(Choose(3, [](frmSelection* dialog) { PressKey(dialog, Qt::Key_Escape); }), -1);
  // Nothing to pick: no dialog opens.
  frmSelection empty;
  empty.SetChoices("What now?", {});
  EXPECT_EQ(empty.Run(), -1);
  EXPECT_FALSE(empty.isVisible());
}

}  // namespace
}  // namespace tarve
