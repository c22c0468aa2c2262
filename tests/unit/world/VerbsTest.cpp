#include <gtest/gtest.h>

#include "ParserTestGame.h"
#include "game/Game.h"
#include "world/Verbs.h"

namespace tarve {
namespace {

using test::ParserTestGame;

constexpr std::string_view kVerbGame =
    "define game <G>\n"
    "  possitems <lamp, key, coin, rope>\n"
    "  startitems <key, coin, rope>\n"
    "  use <coin> msg <The coin spins on the floor.>\n"
    "  error <baduse; NEVER SHOWN>\n"
    "end define\n"
    "define room <Hall>\n"
    "  look <A draughty hall.>\n"
    "  use <rope> msg <You tie the rope to the banister.>\n"
    "  define object <Lamp>\n"
    "    look <A brass lamp.>\n"
    "    take msg <You take the lamp.>\n"
    "    take msg <Never run: only the first take line counts.>\n"
    "  end define\n"
    "  define object <chair>\n"
    "  end define\n"
    "  define object <door>\n"
    "    look msg <The door is |bshut|xb.>\n"
    "    use <key> msg <The door unlocks.>\n"
    "  end define\n"
    "  define object <ghost>\n"
    "    hidden\n"
    "    look <Boo.>\n"
    "  end define\n"
    "  define character <Bob>\n"
    "    look <A cheerful man.>\n"
    "  end define\n"
    "  define character <Ann>\n"
    "    gender <she>\n"
    "  end define\n"
    "  define character <robot>\n"
    "    use <key> msg <The robot whirs.>\n"
    "  end define\n"
    "end define\n"
    "define room <Garden>\n"
    "  define object <rake>\n"
    "    take msg <You take the rake.>\n"
    "  end define\n"
    "end define\n";

TEST(Take, FindsTheObjectHereWithOrWithoutTheAndRunsItsFirstTakeLine) {
  ParserTestGame p(kVerbGame, "Hall");
  EXPECT_EQ(p.Turn("take lamp"), "> take lamp\nYou take the lamp.\n");
  EXPECT_EQ(p.Turn("get the lamp"), "> get the lamp\nYou take the lamp.\n");
  EXPECT_EQ(p.Turn("pick up LAMP"), "> pick up LAMP\nYou take the lamp.\n");
  EXPECT_EQ(p.Turn("take chair"), "> take chair\nYou can't take that!\n");
  EXPECT_EQ(p.Turn("take ghost"), "> take ghost\nNo such item!\n");  // hidden
  EXPECT_EQ(p.Turn("take rake"), "> take rake\nNo such item!\n");    // in another room
  EXPECT_EQ(p.Turn("take the"), "> take the\nNo such item!\n");
}

TEST(Look, LooksAtObjectsBeforeCharactersAndTellsMissingFromUndescribed) {
  ParserTestGame p(kVerbGame, "Hall");
  EXPECT_EQ(p.Turn("look at lamp"), "> look at lamp\nA brass lamp.\n");
  EXPECT_EQ(p.Turn("look at the lamp"), "> look at the lamp\nA brass lamp.\n");
  EXPECT_EQ(p.Turn("look at door"), "> look at door\nThe door is shut.\n");
  EXPECT_EQ(p.Turn("look at bob"), "> look at bob\nA cheerful man.\n");
  EXPECT_EQ(p.Turn("look at chair"), "> look at chair\nNothing out of the ordinary.\n");
  EXPECT_EQ(p.Turn("look at ann"), "> look at ann\nNothing out of the ordinary.\n");
  EXPECT_EQ(p.Turn("look at ghost"), "> look at ghost\nWhat's that?\n");
  EXPECT_EQ(p.Turn("look at rake"), "> look at rake\nWhat's that?\n");
  EXPECT_EQ(p.Turn("look at"), "> look at\nWhat's that?\n");
  EXPECT_EQ(p.Turn("lookout"), "> lookout\nLook at what?\n");
}

TEST(Look, PlainLookDescribesTheRoomOrOnlyItsLookTextWhenNotDetailed) {
  ParserTestGame p(kVerbGame, "Hall");
  const std::string full = p.Turn("look");
  EXPECT_TRUE(full.starts_with("> look\nYou are in Hall.\n")) << full;
  EXPECT_TRUE(full.ends_with("A draughty hall.\n")) << full;
  p.game().settings.detailed_look = false;
  EXPECT_EQ(p.Turn("look"), "> look\nA draughty hall.\n");
  p.game().world.current_room = "Garden";
  EXPECT_EQ(p.Turn("look"), "> look\nNothing out of the ordinary.\n");
}

TEST(Use, NeedsTheItemFirstThenFindsTheRoomGameOrTargetUseLine) {
  ParserTestGame p(kVerbGame, "Hall");
  // Not held: refused before the target is looked at.
  EXPECT_EQ(p.Turn("use lamp on door"), "> use lamp on door\nYou don't have that!\n");
  EXPECT_EQ(p.Turn("use lamp on nothing"), "> use lamp on nothing\nYou don't have that!\n");
  EXPECT_EQ(p.Turn("use rope"), "> use rope\nYou tie the rope to the banister.\n");
  EXPECT_EQ(p.Turn("use coin"), "> use coin\nThe coin spins on the floor.\n");
  EXPECT_EQ(p.Turn("use key"), "> use key\nYou can't use that item here.\n");
  EXPECT_EQ(p.Turn("use key on door"), "> use key on door\nThe door unlocks.\n");
  EXPECT_EQ(p.Turn("use key with robot"), "> use key with robot\nThe robot whirs.\n");
  EXPECT_EQ(p.Turn("use coin on door"), "> use coin on door\nYou can't use that item here.\n");
  EXPECT_EQ(p.Turn("use coin on bob"), "> use coin on bob\nYou can't use that item here.\n");
  EXPECT_EQ(p.Turn("use key on rake"), "> use key on rake\nWhat's that?\n");
  EXPECT_EQ(p.Turn("use key on ghost"), "> use key on ghost\nWhat's that?\n");
}

}  // namespace
}  // namespace tarve
