// The script log window: messages newest last, closing that only hides, and the bound on what it
// keeps.
#include <gtest/gtest.h>

#include <QPlainTextEdit>
#include <vector>

#include "player/windows/frmGWLLog.h"

namespace tarve {
namespace {

TEST(GWLLog, ClosingHidesTheWindowKeepsTheTextAndSignals) {
  frmGWLLog log;
  std::vector<bool> signalled;
  QObject::connect(&log, &frmGWLLog::visibilityChanged,
                   [&](bool visible) { signalled.push_back(visible); });
  log.SetText("Tarve 2.17\r\nFinished loading file.\r\n");
  log.AppendMessage("Warning: No such variable 'score'");
  log.show();
  log.close();
  EXPECT_FALSE(log.isVisible());
  log.show();
  EXPECT_EQ(log.Text(), "Tarve 2.17\nFinished loading file.\nWarning: No such variable 'score'");
  EXPECT_EQ(signalled, (std::vector<bool>{true, false, true}));
  EXPECT_TRUE(log.txtLog()->isReadOnly());
  EXPECT_EQ(log.txtLog()->geometry(), log.rect());
  log.resize(500, 300);
  EXPECT_EQ(log.txtLog()->geometry(), log.rect());
}

TEST(GWLLog, KeepsTheNewestWholeMessagesWithinItsBound) {
  frmGWLLog log(nullptr, 100);
  for (int i = 10; i < 60; ++i) log.AppendMessage("message " + std::to_string(i));
  const std::string text = log.Text();
  EXPECT_LE(text.size(), 100u);
  EXPECT_EQ(text.rfind("message 59"), text.size() - 10);
  EXPECT_EQ(text.rfind("message ", 0), 0u);  // begins with a whole message
  // Text for reopening that is over the bound keeps its newest whole messages too.
  std::string long_log;
  for (int i = 10; i < 60; ++i) long_log += "message " + std::to_string(i) + "\r\n";
  log.SetText(long_log);
  EXPECT_LE(log.Text().size(), 100u);
  EXPECT_EQ(log.Text().rfind("message ", 0), 0u);
  EXPECT_EQ(log.Text().substr(log.Text().size() - 10), "message 59");
}

}  // namespace
}  // namespace tarve
