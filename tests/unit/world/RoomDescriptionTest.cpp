#include <gtest/gtest.h>

#include "support/TestSupport.h"
#include "world/RoomDescription.h"
#include "world/World.h"

namespace tarve {
namespace {

using test::ReadSource;
using test::TempDir;
using test::TestGame;

// The text of a room's description is the world/things transcript, and the variables it
// publishes (the same lists, bold codes and all) the world/layout transcript. These are what the
// window alone shows: the styles, the location, the direction buttons and the list of things.
TEST(DescribeRoom, StylesTheTextAndFillsTheWindowsLocationButtonsAndList) {
  TempDir dir;
  TestGame t(dir);
  ASSERT_TRUE(ReadSource(t, dir,
                         "define game <G>\nend define\n"
                         "define room <hall>\n"
                         "  alias <the Wrong Hall>\n  alias <the Great Hall>\n  prefix <the>\n"
                         "  out <Garden>\n  out <Cellar>\n"
                         "  northeast <Tower>\n  north <Library>\n  west msg <Too high.>\n"
                         "  place <Study>\n  place <the ; sun room> msg <It is locked.>\n"
                         "  define character <Ann>\n  end define\n"
                         "  define character <Bill>\n    prefix <Sir>\n    suffix <the Brave>\n"
                         "  end define\n"
                         "  define object <lamp>\n    prefix <a>\n  end define\n"
                         "  define object <keys>\n    prefix <some>\n    suffix <(rusty)>\n"
                         "  end define\n"
                         "end define\n"
                         "define room <Garden>\n  alias <the rose garden>\nend define\n"));
  BuildWorldTables(t.game);
  t.game.world.current_room = "hall";
  DescribeRoom(t.game, "hall");
  EXPECT_EQ(t.host.styled,
            "You are in the {colour:255,0,0}the Great Hall{colour:0,0,0}.\r\n"
            "You can see {b}Ann{/b} and Sir {b}Bill{/b} the Brave here.\r\n"
            "There is a {b}lamp{/b} and some {b}keys{/b} (rusty) here.\r\n"
            "You can go out to the rose garden.\r\n"
            "You can go {b}northeast{/b}, {b}north{/b} or {b}west{/b}.\r\n"
            "You can go to {b}Study{/b} or the {b}sun room{/b}.\r\n");
  EXPECT_EQ(t.host.location, "  the Great Hall");
  EXPECT_EQ(t.host.directions, "anwo");
  // The list of things here: characters, objects, then places by the name "go to" takes.
  std::vector<std::string> listed;
  for (const GameWindow::ListedThing& thing : t.host.things_here) {
    listed.push_back(std::to_string(static_cast<int>(thing.type)) + ":" + thing.name);
  }
  EXPECT_EQ(listed, (std::vector<std::string>{"0:Ann", "0:Bill", "1:lamp", "1:keys", "2:Study",
                                              "2:sun room"}));
  EXPECT_TRUE(t.host.log.empty());
}

}  // namespace
}  // namespace tarve
