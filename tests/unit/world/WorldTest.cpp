#include <gtest/gtest.h>

#include "script/CommonCode.h"
#include "support/TestSupport.h"
#include "world/World.h"

namespace tarve {
namespace {

using test::ReadSource;
using test::TempDir;
using test::TestGame;

constexpr std::string_view kManor =
    "define game <Manor>\n"                  // 1
    "end define\n"                           // 2
    "define room <Hall>\n"                   // 3
    "  define object <Lamp>\n"               // 4
    "    look <A brass lamp.>\n"             // 5
    "    look <A shining brass lamp.>\n"     // 6
    "    use <oil> msg <Refilled.>\n"        // 7
    "    use <OIL> msg <Refilled again.>\n"  // 8
    "  end define\n"                         // 9
    "  define text <notes>\n"                // 10
    "    hidden\n"                           // 11
    "  end define\n"                         // 12
    "  define character <Bob>\n"             // 13
    "      hidden  \n"                       // 14
    "    speak <Hello.>\n"                   // 15
    "  end define\n"                         // 16
    "  define object <ghost>\n"              // 17
    "    invisible\n"                        // 18
    "    hidden away\n"                      // 19
    "  end define\n"                         // 20
    "end define\n"                           // 21
    "define room <Cellar>\n"                 // 22
    "  define object <lamp>\n"               // 23
    "    look <A rusty lamp.>\n"             // 24
    "  end define\n"                         // 25
    "end define\n"                           // 26
    "define character <Stranger>\n"          // 27
    "end define\n";                          // 28

class WorldTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(ReadSource(t, dir, kManor));
    BuildWorldTables(t.game);
    t.game.world.current_room = "Hall";
  }

  const Thing& Object(std::size_t i) { return t.game.world.objects.at(i); }

  TempDir dir;
  TestGame t{dir};
};

// Prefixes, suffixes, startin lines and hidden things as a player meets them are the
// world/things transcript.
TEST_F(WorldTest, BuildsBothTablesInTextOrderWithTheirSpecialLines) {
  const World& world = t.game.world;
  ASSERT_EQ(world.objects.size(), 3u);
  ASSERT_EQ(world.characters.size(), 2u);
  EXPECT_EQ((BlockRange{Object(0).first_line, Object(0).last_line}), (BlockRange{4, 9}));
  EXPECT_EQ((BlockRange{Object(2).first_line, Object(2).last_line}), (BlockRange{23, 25}));
  // "invisible" clears only the visible flag; "hidden away" is not the line "hidden".
  EXPECT_TRUE(Object(1).exists);
  EXPECT_FALSE(Object(1).visible);
  // A block whose only special line is "hidden", written with blanks around it; a thing
  // outside the rooms without a startin line is nowhere.
  EXPECT_FALSE(world.characters[0].exists);
  EXPECT_TRUE(world.characters[0].visible);
  EXPECT_EQ(world.characters[1].room, "");
}

// The tag lookups behind take, look at and use (the parser/verbs transcript): the last fitting
// line wins, and the sentinels tell a thing not here from a missing tag.
TEST_F(WorldTest, LookupsFindTheThingInTheCurrentRoomIgnoringCase) {
  EXPECT_EQ(FindThingBlock(t.game, ThingKind::kObject, "Lamp", "CELLAR"), (BlockRange{23, 25}));
  EXPECT_EQ(GetThingTag(t.game, "object", "lamp", "look"), "look <A shining brass lamp.>");
  EXPECT_EQ(GetThingTag(t.game, "object", "lamp", "speak"), kUnfoundTag);
  EXPECT_EQ(GetThingTag(t.game, "object", "stool", "look"), kUndefinedThing);
  // Any kind but "object" is a character; a hidden character still has its lines.
  EXPECT_EQ(GetThingTag(t.game, "person", "BOB", "speak"), "speak <Hello.>");
  EXPECT_EQ(FindThingTagWithParameter(t.game, "object", "lamp", "use", "Oil"),
            "use <OIL> msg <Refilled again.>");
  EXPECT_EQ(FindThingTagWithParameter(t.game, "object", "lamp", "use", "oi"), kUnfoundTag);
  t.game.world.current_room = "cellar";
  EXPECT_EQ(GetThingTag(t.game, "object", "LAMP", "look"), "look <A rusty lamp.>");
}

TEST_F(WorldTest, ThingExistsReadsTheNamedRoomOrTheCurrentOne) {
  EXPECT_TRUE(ThingExists(t.game, ThingKind::kObject, "lamp"));
  EXPECT_TRUE(ThingExists(t.game, ThingKind::kObject, " lamp @ cellar "));
  EXPECT_TRUE(ThingExists(t.game, ThingKind::kObject, "ghost"));  // invisible but there
  // Records added after the first lookups are found too. Of two records of one name in one
  // room, the last decides for objects and the first for characters.
  Thing first;
  first.name = "twin";
  first.room = "Hall";
  Thing second = first;
  second.exists = false;
  for (std::vector<Thing>* things : {&t.game.world.objects, &t.game.world.characters}) {
    things->push_back(first);
    things->push_back(second);
  }
  EXPECT_FALSE(ThingExists(t.game, ThingKind::kObject, "TWIN"));
  EXPECT_TRUE(ThingExists(t.game, ThingKind::kCharacter, "twin"));
}

}  // namespace
}  // namespace tarve
