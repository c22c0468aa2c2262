#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "interpreter/ExecuteScript.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::ReadSource;
using test::TempDir;
using test::TestGame;

TEST(Selection, ClosingTheDialogWithoutConfirmingEchoesAndRunsNothing) {
  TempDir dir;
  TestGame t(dir);
  ASSERT_TRUE(ReadSource(t, dir,
                         "define selection <way>\n"
                         "  info <Which way?>\n"
                         "  choice <North> msg <You go north.>\n"
                         "end define\n"));
  t.host.selection_answers = {-1, 0};
  ExecuteScript(t.game, "choose <way>");
  EXPECT_EQ(t.host.output, "- Which way?\r\n");
  ExecuteScript(t.game, "choose <way>");
  EXPECT_EQ(t.host.output, "- Which way?\r\n- Which way?\r\n- North\r\n\r\nYou go north.\r\n");
  EXPECT_NE(t.host.styled.find("- {i}Which way?{/i}"), std::string::npos);
}

}  // namespace
}  // namespace tarve
