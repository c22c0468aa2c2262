#include <gtest/gtest.h>

#include <tuple>

#include "interpreter/Variables.h"
#include "script/CommonCode.h"
#include "support/TestSupport.h"
#include "world/CommandParser.h"
#include "world/Items.h"
#include "world/RoomDescription.h"
#include "world/World.h"

namespace tarve {
namespace {

// A game read from source with its world tables and turn scripts, and one typed turn with what it
// printed.
class WorldTest : public ::testing::Test {
 protected:
  void Read(std::string_view source, std::string room = "") {
    ASSERT_TRUE(test::ReadSource(t, dir, source));
    BuildWorldTables(t.game);
    ReadTurnScripts(t.game);
    t.game.world.current_room = room;
  }
  std::string Turn(std::string command) {
    t.host.output.clear();
    ExecuteCommand(t.game, command, /*echo=*/true, /*try_game_commands=*/true);
    std::erase(t.host.output, '\r');
    return t.host.output;
  }

  test::TempDir dir;
  test::TestGame t{dir};
};

TEST(PatternMatches, LiteralPiecesMatchInOrderAndOnlyAtTheEnds) {
  const std::tuple<const char*, const char*, bool> cases[] = {
      {"  look  ", "look", true},  // the command is trimmed
      {"look at x", "look", false},
      {"look", "look at x", false},
      {"give apple to bob", "give #item# to #who#", true},
      {"please give apple to bob", "give #item# to #who#", false},
      {"give apple", "give #item# to #who#", false},
      {"give  to bob", "give #item# to #who#", true},  // variables may be empty
      {"", "#a##b#", true},
      {"x", "", false},
      {"say #x", "say #x", true},  // a "#" without a partner is literal text
      {"say hi", "say #x", false},
  };
  for (const auto& [command, pattern, matches] : cases) {
    EXPECT_EQ(PatternMatches(command, pattern), matches) << command << " / " << pattern;
  }
}

// What the variables take is the parser/verbs transcript; the variable keeps the name as the
// pattern writes it, and of two variables side by side the first takes nothing.
TEST_F(WorldTest, CaptureNamesTheVariableAsThePatternWritesIt) {
  CapturePatternVariables(t.game, "unlock door", "Unlock #Thing#");
  EXPECT_EQ(FindVariable(t.game.variables.strings, "thing")->name, "Thing");
  CapturePatternVariables(t.game, "open the box", "#a##b#");
  EXPECT_EQ(GetStringVariable(t.game, "a") + "|" + GetStringVariable(t.game, "b"), "|open the box");
}

// Turns as the window plays them: the turn scripts (every afterturn line), the command box, the
// blank line after a turn, and a paused game, in which a typed line is no command.
TEST_F(WorldTest, TurnsRunTheTurnScriptsEmptyTheCommandBoxAndSkipPausedTurns) {
  Read(
      "define game <G>\n  beforeturn msg <before>\n  afterturn msg <after>\n"
      "  afterturn   msg <after again>\n  command <xyzzy> msg <Nothing happens.>\nend define\n");
  t.game.output.blank_line_after_turn = true;
  EXPECT_EQ(Turn("XYZZY"), "> XYZZY\nbefore\nNothing happens.\n\nafter\nafter again\n");
  EXPECT_EQ(t.host.controls, "cf");

  EXPECT_EQ(Turn(""), "");
  t.game.parser.paused = true;
  EXPECT_EQ(Turn("xyzzy"), "");
  // A line that answers an enter statement (the player/key-wait transcript) empties the box too.
  t.game.parser.paused = false;
  t.game.parser.waiting_for_input = true;
  t.game.parser.input_variable = "answer";
  Turn("Ann");
  EXPECT_EQ(t.host.controls, "cfcf");
}

TEST_F(WorldTest, HelpSwitchesToVerdanaAndBack) {
  t.game.output.current_default_font_name = "Georgia";
  Turn("help");
  const std::string& styled = t.host.styled;
  EXPECT_LT(styled.find("{font:Verdana}"), styled.find("USING TARVE:"));
  EXPECT_GT(styled.find("{font:Georgia}"), styled.find("F11"));
}

// The world tables as a player meets them are the world/things and parser/verbs transcripts:
// prefixes, startin lines, hidden and invisible things, and the tag lines that take, look at
// and use find. These are the answers that no command shows.
TEST_F(WorldTest, TagLookupsTellAThingNotHereFromAMissingTag) {
  Read(
      "define game <Manor>\nend define\ndefine room <Hall>\n  define object <Lamp>\n"
      "    use <oil> msg <Refilled.>\n  end define\n  define character <Bob>\n    hidden\n"
      "    speak <Hello.>\n  end define\nend define\ndefine character <Stranger>\nend define\n",
      "Hall");
  EXPECT_EQ(FindThingBlock(t.game, ThingKind::kObject, "LAMP", "HALL"), (BlockRange{4, 6}));
  EXPECT_EQ(GetThingTag(t.game, "object", "lamp", "speak"), kUnfoundTag);
  EXPECT_EQ(GetThingTag(t.game, "object", "stool", "look"), kUndefinedThing);
  // A hidden character still has its lines; a parameter must match whole.
  EXPECT_EQ(GetThingTag(t.game, "character", "BOB", "speak"), "speak <Hello.>");
  EXPECT_EQ(FindThingTagWithParameter(t.game, "object", "lamp", "use", "oi"), kUnfoundTag);
  // A thing outside the rooms without a startin line is nowhere.
  EXPECT_EQ(t.game.world.characters.at(1).room, "");
  // Records added after a first lookup are found too ("@" rooms are the world/things transcript).
  // Of two records of one name in one room, the last decides for objects, the first for characters.
  EXPECT_TRUE(ThingExists(t.game, ThingKind::kObject, "lamp"));
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

// The text of a room's description is the world/things transcript, and the variables it
// publishes (the same lists, bold codes and all) the world/layout transcript. These are what the
// window alone shows: the styles, the location, the direction buttons and the list of things.
TEST_F(WorldTest, DescribeRoomStylesTheTextAndFillsTheWindowsLocationButtonsAndList) {
  Read(
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
      "define room <Garden>\n  alias <the rose garden>\nend define\n",
      "hall");
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

// What a player sees of items and collectables through the game's own text is the
// world/inventory transcript; these are the window's panes and viewer. The collectables pane
// leaves out a "d" collectable and one with an empty display; the viewer shows them all. In a
// display only the first "!" takes the amount, and the text between two "*" is kept unless the
// amount is 1.
TEST_F(WorldTest, ThePanesAndTheViewerShowTheDeclarationsAndFollowEveryChange) {
  Read(
      "define game <G>\n  items <lamp, key>\n"
      "  collectables <score num=10 [Score: !], gold coins = 2.5 [! coin*s*; so far]; "
      "gems num=1 [! gem*s* and ! ring*s*], lives int=3, secret dnum=1, hidden num=0 [], "
      "stars=7 [Stars: * (unclosed]>\nend define\n");
  SetUpItems(t.game);
  SetUpStartItems(t.game);
  SetUpCollectables(t.game);
  // The viewer's rows: table 3, rows in all with the heading, row, name and value.
  EXPECT_EQ(
      t.host.viewer_rows,
      (std::vector<std::string>{"3 8 1 score=10", "3 8 2 gold=2.5", "3 8 3 gems=1", "3 8 4 lives=3",
                                "3 8 5 secret=1", "3 8 6 hidden=0", "3 8 7 stars=7"}));
  ExecuteGive(t.game, "lamp");
  ExecuteGive(t.game, "key");
  EXPECT_EQ(t.host.items, "Items:\r\n    lamp\r\n    key");
  ExecuteLose(t.game, "lamp");
  ExecuteLose(t.game, "key");
  EXPECT_EQ(t.host.items, "Items:\r\n    (no items)");

  ExecuteSet(t.game, "score; =0.3");
  EXPECT_EQ(t.host.collectables,
            (std::vector<std::string>{"Score: 0.3", "2.5 coins; so far", "1 gem and ! ring",
                                      "You have 3 lives", "Stars: * (unclosed"}));
  EXPECT_EQ(t.host.viewer_rows.back(), "3 8 7 stars=7");
  ExecuteSet(t.game, "score; =1e39");
  EXPECT_EQ(GetCollectableAmount(t.game, "score"), 0.3f);
  EXPECT_EQ(t.host.log,
            std::vector<std::string>{"Error: Collectable amount out of range in score; =1e39"});
}

}  // namespace
}  // namespace tarve
