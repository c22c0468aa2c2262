#include <gtest/gtest.h>

#include "script/CommonCode.h"
#include "support/TestSupport.h"
#include "world/World.h"

namespace tarve {
namespace {

// The world tables as a player meets them are the world/things and parser/verbs transcripts:
// prefixes, startin lines, hidden and invisible things, and the tag lines that take, look at
// and use find. These are the answers that no command shows.
class WorldTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(test::ReadSource(t, dir,
                                 "define game <Manor>\n"
                                 "end define\n"
                                 "define room <Hall>\n"
                                 "  define object <Lamp>\n"
                                 "    use <oil> msg <Refilled.>\n"
                                 "  end define\n"
                                 "  define character <Bob>\n"
                                 "    hidden\n"
                                 "    speak <Hello.>\n"
                                 "  end define\n"
                                 "end define\n"
                                 "define character <Stranger>\n"
                                 "end define\n"));
    BuildWorldTables(t.game);
    t.game.world.current_room = "Hall";
  }

  test::TempDir dir;
  test::TestGame t{dir};
};

TEST_F(WorldTest, TagLookupsTellAThingNotHereFromAMissingTag) {
  EXPECT_EQ(FindThingBlock(t.game, ThingKind::kObject, "LAMP", "HALL"), (BlockRange{4, 6}));
  EXPECT_EQ(GetThingTag(t.game, "object", "lamp", "speak"), kUnfoundTag);
  EXPECT_EQ(GetThingTag(t.game, "object", "stool", "look"), kUndefinedThing);
  // A hidden character still has its lines; a parameter must match whole.
  EXPECT_EQ(GetThingTag(t.game, "character", "BOB", "speak"), "speak <Hello.>");
  EXPECT_EQ(FindThingTagWithParameter(t.game, "object", "lamp", "use", "oi"), kUnfoundTag);
  // A thing outside the rooms without a startin line is nowhere.
  EXPECT_EQ(t.game.world.characters.at(1).room, "");
}

TEST_F(WorldTest, ThingExistsReadsTheNamedRoomOrTheCurrentOne) {
  EXPECT_TRUE(ThingExists(t.game, ThingKind::kObject, "lamp"));
  EXPECT_TRUE(ThingExists(t.game, ThingKind::kObject, " lamp @ hall "));
  EXPECT_FALSE(ThingExists(t.game, ThingKind::kObject, "lamp@Cellar"));
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
