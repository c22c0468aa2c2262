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
    "  start <Hall>\n"                       // 2
    "end define\n"                           // 3
    "define room <Hall>\n"                   // 4
    "  define object <Lamp>\n"               // 5
    "    prefix <a>\n"                       // 6
    "    suffix <(lit)>\n"                   // 7
    "    look <A brass lamp.>\n"             // 8
    "    look <A shining brass lamp.>\n"     // 9
    "    use <oil> msg <Refilled.>\n"        // 10
    "    use <OIL> msg <Refilled again.>\n"  // 11
    "    startin <Cellar>\n"                 // 12
    "  end define\n"                         // 13
    "  define text <notes>\n"                // 14
    "    hidden\n"                           // 15
    "  end define\n"                         // 16
    "  define character <Bob>\n"             // 17
    "      hidden  \n"                       // 18
    "    speak <Hello.>\n"                   // 19
    "  end define\n"                         // 20
    "  define object <ghost>\n"              // 21
    "    invisible\n"                        // 22
    "    hidden away\n"                      // 23
    "  end define\n"                         // 24
    "end define\n"                           // 25
    "define room <Cellar>\n"                 // 26
    "  define object <lamp>\n"               // 27
    "    look <A rusty lamp.>\n"             // 28
    "  end define\n"                         // 29
    "end define\n"                           // 30
    "define object <chair>\n"                // 31
    "  startin <Hall>\n"                     // 32
    "  startin <Cellar>\n"                   // 33
    "end define\n"                           // 34
    "define character <Stranger>\n"          // 35
    "end define\n";                          // 36

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

TEST_F(WorldTest, BuildsBothTablesInTextOrderWithTheirSpecialLines) {
  const World& world = t.game.world;
  ASSERT_EQ(world.objects.size(), 4u);
  ASSERT_EQ(world.characters.size(), 2u);
  // Inside a room a startin line is an ordinary tag line; prefix and suffix carry their blank.
  EXPECT_EQ(Object(0).name, "Lamp");
  EXPECT_EQ(Object(0).room, "Hall");
  EXPECT_EQ(Object(0).prefix, "a ");
  EXPECT_EQ(Object(0).suffix, " (lit)");
  EXPECT_EQ((BlockRange{Object(0).first_line, Object(0).last_line}), (BlockRange{5, 13}));
  EXPECT_TRUE(Object(0).exists && Object(0).visible);
  // "invisible" clears only the visible flag; "hidden away" is not the line "hidden".
  EXPECT_TRUE(Object(1).exists);
  EXPECT_FALSE(Object(1).visible);
  EXPECT_EQ((BlockRange{Object(2).first_line, Object(2).last_line}), (BlockRange{27, 29}));
  // Outside the rooms the last startin line places the thing; without one it is nowhere.
  EXPECT_EQ(Object(3).room, "Cellar");
  EXPECT_EQ((BlockRange{Object(3).first_line, Object(3).last_line}), (BlockRange{31, 34}));
  EXPECT_EQ(world.characters[1].room, "");
  // A block whose only special line is "hidden", written with blanks around it.
  EXPECT_FALSE(world.characters[0].exists);
  EXPECT_TRUE(world.characters[0].visible);
  EXPECT_EQ(world.characters[0].prefix, "");
}

TEST_F(WorldTest, LookupsFindTheThingInTheCurrentRoomIgnoringCase) {
  EXPECT_EQ(FindThing(t.game, ThingKind::kObject, "LAMP", "hall"), &Object(0));
  EXPECT_EQ(FindThingBlock(t.game, ThingKind::kObject, "Lamp", "CELLAR"), (BlockRange{27, 29}));
  EXPECT_EQ(FindThingBlock(t.game, ThingKind::kCharacter, "lamp", "Hall"), BlockRange{});

  // The last fitting line wins; the sentinels tell a thing not here from a missing tag.
  EXPECT_EQ(GetThingTag(t.game, "object", "lamp", "look"), "look <A shining brass lamp.>");
  EXPECT_EQ(GetThingTag(t.game, "object", "lamp", "speak"), kUnfoundTag);
  EXPECT_EQ(GetThingTag(t.game, "object", "stool", "look"), kUndefinedThing);
  // Any kind but "object" is a character; a hidden character still has its lines.
  EXPECT_EQ(GetThingTag(t.game, "person", "BOB", "speak"), "speak <Hello.>");
  EXPECT_EQ(FindThingTagWithParameter(t.game, "object", "lamp", "use", "Oil"),
            "use <OIL> msg <Refilled again.>");
  EXPECT_EQ(FindThingTagWithParameter(t.game, "object", "lamp", "use", "oi"), kUnfoundTag);
  EXPECT_EQ(FindThingTagWithParameter(t.game, "character", "lamp", "use", "oil"), kUndefinedThing);

  t.game.world.current_room = "cellar";
  EXPECT_EQ(GetThingTag(t.game, "object", "LAMP", "look"), "look <A rusty lamp.>");
  EXPECT_EQ(GetThingTag(t.game, "character", "Bob", "speak"), kUndefinedThing);
}

TEST_F(WorldTest, ThingExistsReadsTheNamedRoomOrTheCurrentOne) {
  EXPECT_TRUE(ThingExists(t.game, ThingKind::kObject, "lamp"));
  EXPECT_TRUE(ThingExists(t.game, ThingKind::kObject, " lamp @ cellar "));
  EXPECT_FALSE(ThingExists(t.game, ThingKind::kObject, "lamp@Attic"));
  EXPECT_FALSE(ThingExists(t.game, ThingKind::kCharacter, "Bob"));  // hidden
  EXPECT_TRUE(ThingExists(t.game, ThingKind::kObject, "ghost"));    // invisible but there
  EXPECT_FALSE(ThingExists(t.game, ThingKind::kObject, "chair"));   // it is in the cellar

  // Records added after the first lookups are found too. Of two records of one name in one
  // room, the last decides for objects and the first for characters.
  Thing first;
  first.name = "twin";
  first.room = "Hall";
  Thing second = first;
  second.exists = false;
  t.game.world.objects.push_back(first);
  t.game.world.objects.push_back(second);
  t.game.world.characters.push_back(first);
  t.game.world.characters.push_back(second);
  EXPECT_FALSE(ThingExists(t.game, ThingKind::kObject, "TWIN"));
  EXPECT_TRUE(ThingExists(t.game, ThingKind::kCharacter, "twin"));
}

}  // namespace
}  // namespace tarve
