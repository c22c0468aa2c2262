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

TEST(UndoWindow, CtrlZTakesBackTheLastMoveOnlyWhileThereIsOne) {
  DesktopHost host;
  DesktopServices services({.keep_pauses = false});
  Player player(Host(host, host, host, services));
  host.Attach(player);
  services.Attach(player.game());
  // The window lets go of the player before the player goes, whatever the test's end.
  const std::unique_ptr<DesktopHost, void (*)(DesktopHost*)> detach(
      &host, [](DesktopHost* attached) { attached->Detach(); });
  frmMain& window = host.window();
  ASSERT_TRUE(player.OpenGame(std::string(TARVE_TEST_GAMES) + "/desktop/window.gwl"));
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  QLineEdit* box = window.txtCommand();
  QAction* undo = window.mnuUndo();
  EXPECT_FALSE(undo->isEnabled());

  box->setFocus();
  for (const char* command : {"look", "north"}) {
    QTest::keyClicks(box, command);
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_EQ(undo->isEnabled(), command == std::string("north"));  // a look changes nothing
  }
  ASSERT_EQ(window.lblLocation()->text().trimmed(), "Garden");
  EXPECT_FALSE(window.butDir(0)->isEnabled());  // no way north from the garden

  QTest::keyClicks(box, "half typed");
  QTest::keyClick(box, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(window.lblLocation()->text().trimmed(), "Hall");
  EXPECT_TRUE(window.butDir(0)->isEnabled());
  EXPECT_TRUE(window.txtOutput()->Text().contains("Undone: north"));
  EXPECT_FALSE(undo->isEnabled());

  // With nothing to take back, Ctrl+Z is the command box's own again.
  QTest::keyClick(box, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(window.lblLocation()->text().trimmed(), "Hall");
}

}  // namespace
}  // namespace tarve
