#include <gtest/gtest.h>

#include "interpreter/Variables.h"
#include "support/TestSupport.h"
#include "world/RoomDescription.h"
#include "world/World.h"

namespace tarve {
namespace {

using test::ReadSource;
using test::TempDir;
using test::TestGame;

// The pane operations of a text written with short marks: [r] red, [k] black, [b] bold on,
// [/b] bold off.
std::string Styled(std::string text) {
  const std::pair<std::string_view, std::string_view> marks[] = {
      {"[r]", "{colour:255,0,0}"}, {"[k]", "{colour:0,0,0}"}, {"[b]", "{b}"}, {"[/b]", "{/b}"}};
  for (const auto& [mark, code] : marks) {
    for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at)) {
      text.replace(at, mark.size(), code);
      at += code.size();
    }
  }
  return text;
}

TEST(DescribeRoom, BuildsEverySentenceAndPublishesItsParts) {
  TempDir dir;
  TestGame t(dir);
  ASSERT_TRUE(ReadSource(t, dir,
                         "define game <G>\n"
                         "end define\n"
                         "define room <hall>\n"
                         "  alias <the Wrong Hall>\n"
                         "  alias <the Great Hall>\n"
                         "  prefix <the>\n"
                         "  out <Garden>\n"
                         "  out <Cellar>\n"
                         "  northeast <Tower>\n"
                         "  north <Library>\n"
                         "  west msg <The wall is too high.>\n"
                         "  place <Study>\n"
                         "  place <the ; sun room> msg <It is locked.>\n"
                         "  define character <Ann>\n"
                         "  end define\n"
                         "  define character <Bill>\n"
                         "    prefix <Sir>\n"
                         "    suffix <the Brave>\n"
                         "  end define\n"
                         "  define character <Cora>\n"
                         "  end define\n"
                         "  define object <lamp>\n"
                         "    prefix <a>\n"
                         "  end define\n"
                         "  define object <keys>\n"
                         "    prefix <some>\n"
                         "    suffix <(rusty)>\n"
                         "  end define\n"
                         "  define object <box>\n"
                         "  end define\n"
                         "end define\n"
                         "define room <Garden>\n"
                         "  alias <the rose garden>\n"
                         "end define\n"));
  BuildWorldTables(t.game);
  t.game.world.current_room = "hall";
  DescribeRoom(t.game, "hall");
  const auto variable = [&](std::string_view name) -> std::string {
    const VariableEntry* entry = FindVariable(t.game.variables.strings, name);
    return entry == nullptr ? "(undefined)" : entry->value;
  };
  EXPECT_EQ(t.host.output,
            "You are in the the Great Hall.\r\n"
            "You can see Ann, Sir Bill the Brave and Cora here.\r\n"
            "There is a lamp, some keys (rusty) and box here.\r\n"
            "You can go out to the rose garden.\r\n"
            "You can go northeast, north or west.\r\n"
            "You can go to Study or the sun room.\r\n");
  EXPECT_EQ(t.host.styled,
            Styled("You are in the [r]the Great Hall[k].\r\n"
                   "You can see [b]Ann[/b], Sir [b]Bill[/b] the Brave and [b]Cora[/b] here.\r\n"
                   "There is a [b]lamp[/b], some [b]keys[/b] (rusty) and [b]box[/b] here.\r\n"
                   "You can go out to the rose garden.\r\n"
                   "You can go [b]northeast[/b], [b]north[/b] or [b]west[/b].\r\n"
                   "You can go to [b]Study[/b] or the [b]sun room[/b].\r\n"));
  EXPECT_EQ(t.host.location, "  the Great Hall");
  EXPECT_EQ(t.host.directions, "anwo");
  EXPECT_EQ(variable("tarve.formatroom"), "the the Great Hall");
  EXPECT_EQ(variable("tarve.characters"), "|bAnn|xb, Sir |bBill|xb the Brave, |bCora|xb");
  EXPECT_EQ(variable("tarve.objects"), "a lamp, some keys, box");
  EXPECT_EQ(variable("tarve.formatobjects"), "a |blamp|xb, some |bkeys|xb (rusty) and |bbox|xb");
  EXPECT_EQ(variable("tarve.doorways.out"), "the rose garden");
  EXPECT_EQ(variable("tarve.doorways.dirs"), "|bnortheast|xb, |bnorth|xb or |bwest|xb");
  EXPECT_EQ(variable("tarve.doorways.places"), "|bStudy|xb or the |bsun room|xb");

  // The list of things here: characters, objects, then places by the name "go to" takes.
  std::vector<std::string> listed;
  for (const GameWindow::ListedThing& thing : t.host.things_here) {
    listed.push_back(std::to_string(static_cast<int>(thing.type)) + ":" + thing.name);
  }
  EXPECT_EQ(listed, (std::vector<std::string>{"0:Ann", "0:Bill", "0:Cora", "1:lamp", "1:keys",
                                              "1:box", "2:Study", "2:sun room"}));
  EXPECT_TRUE(t.host.log.empty());
}

}  // namespace
}  // namespace tarve
