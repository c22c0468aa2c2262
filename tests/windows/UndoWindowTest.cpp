// The game window's Undo entry: enabled only while a turn can be taken back, and Ctrl+Z in the
// command box takes it back, with the location, the exits and the pane following.
#include <gtest/gtest.h>

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <memory>

#include "WindowTestSupport.h"
#include "desktop/DesktopHost.h"
#include "desktop/DesktopServices.h"
#include "player/Player.h"
#include "player/windows/RichOutputPane.h"
#include "player/windows/frmMain.h"

namespace tarve {
namespace {

class UndoWindowTest : public testing::Test {
 protected:
  UndoWindowTest() {
    host_.Attach(*player_);
    services_.Attach(player_->game());
  }
  ~UndoWindowTest() override { host_.Detach(); }

  frmMain& window() { return host_.window(); }

  void Type(const QString& text) {
    QLineEdit* box = window().txtCommand();
    box->setFocus();
    QTest::keyClicks(box, text);
    QTest::keyClick(box, Qt::Key_Return);
  }

  DesktopHost host_;
  DesktopServices services_{{.keep_pauses = false}};
  std::unique_ptr<Player> player_ = std::make_unique<Player>(Host(host_, host_, host_, services_));
};

TEST_F(UndoWindowTest, CtrlZTakesBackTheLastMoveOnlyWhileThereIsOne) {
  ASSERT_TRUE(player_->OpenGame(std::string(TARVE_TEST_GAMES) + "/desktop/window.gwl"));
  window().activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
  QAction* undo = window().mnuUndo();
  EXPECT_FALSE(undo->isEnabled());

  Type("look");  // changes nothing: still nothing to take back
  EXPECT_FALSE(undo->isEnabled());
  Type("north");
  ASSERT_EQ(window().lblLocation()->text().trimmed(), "Garden");
  EXPECT_TRUE(undo->isEnabled());
  EXPECT_FALSE(window().butDir(0)->isEnabled());  // no way north from the garden

  QTest::keyClicks(window().txtCommand(), "half typed");
  QTest::keyClick(window().txtCommand(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(window().lblLocation()->text().trimmed(), "Hall");
  EXPECT_TRUE(window().butDir(0)->isEnabled());
  EXPECT_TRUE(window().txtOutput()->Text().contains("Undone: north"));
  EXPECT_FALSE(undo->isEnabled());

  // With nothing to take back, Ctrl+Z is the command box's own again.
  QTest::keyClick(window().txtCommand(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(window().lblLocation()->text().trimmed(), "Hall");
}

}  // namespace
}  // namespace tarve
