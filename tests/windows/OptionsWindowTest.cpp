// The options window and its editor of the custom file types.

#include <sstream>

#include "WindowTestSupport.h"
#include "base/Numbers.h"
#include "player/Settings.h"
#include "player/SettingsStore.h"
#include "player/windows/frmAdvancedSecurity.h"
#include "player/windows/frmOptions.h"

namespace tarve {
namespace {

class OptionsWindowTest : public ::testing::Test {
 protected:
  QTemporaryDir data;
  MemorySettingsStore store;
  Settings settings;
};

TEST_F(OptionsWindowTest, ShowsTheSettingsAndOkWritesEveryKeyAsTheControlsStand) {
  // What the player chose before, read back as start-up reads it.
  Settings before;
  before.log_errors = true;
  before.log_file = "/old/errors.log";
  before.security_type = 1;
  before.label_foreground_colour = "112233";
  ASSERT_TRUE(SaveSettings(before, store));
  settings = ReadSettings(store);

  frmOptions options(settings, store, nullptr, data.path().toStdString());
  std::string ticks;
  for (const QAbstractButton* button : std::initializer_list<const QAbstractButton*>{
           options.chkLogScriptErrors(), options.chkOutputToFile(), options.optNoExts(),
           options.chkSpecialMsgBox(), options.chkDetailedLook(),
           options.chkCustomSecurityIsDisallow()}) {
    ticks += button->isChecked() ? '1' : '0';
  }
  EXPECT_EQ(ticks, "101111");
  EXPECT_EQ(options.txtLogFileName()->text(), QStringLiteral("/old/errors.log"));
  // A name or a list only goes with its switch.
  EXPECT_FALSE(options.txtOutputFileName()->isEnabled() || options.butEditShellExts()->isEnabled());
  EXPECT_EQ(options.txtLabelForeground()->text(), QStringLiteral("112233"));
  EXPECT_EQ(options.lblFontSample()->text(), QStringLiteral("Courier New, 8.25 pt"));

  // Change every control.
  options.chkLogScriptErrors()->setChecked(false);
  options.chkOutputToFile()->setChecked(true);
  QTest::keyClicks(options.txtOutputFileName(), "/logs/game.txt");
  options.optAdvExts()->setChecked(true);
  ASSERT_TRUE(options.butEditShellExts()->isEnabled());
  WhenOpens<frmAdvancedSecurity>([](frmAdvancedSecurity* editor) {
    editor->butRemove()->click();
    editor->butCancel()->click();  // keeps nothing
  });
  options.butEditShellExts()->click();
  QString input;
  WhenOpens<frmAdvancedSecurity>([&input](frmAdvancedSecurity* editor) {
    editor->lstFileTypes()->setCurrentRow(3);  // DLL
    QTest::keyClick(editor->lstFileTypes(), Qt::Key_Delete);
    // Typed types are cut to what the check compares; a listed one is chosen, not added again.
    AnswerInput(QStringLiteral(" .txt "), nullptr, &input);
    editor->butAdd()->click();
    for (const QString& typed : {QStringLiteral("exe"), QString()}) {
      AnswerInput(typed);
      editor->butAdd()->click();
    }
    EXPECT_EQ(editor->lstFileTypes()->currentRow(), 0);
    editor->butOK()->click();
  });
  options.butEditShellExts()->click();
  EXPECT_EQ(input, QStringLiteral("Please enter a file extension:"));
  for (QCheckBox* box : {options.chkZeroSecurityInstalledGames(), options.chkAutoInstall(),
                         options.chkOverrideGameDefaultFont(), options.chkOverrideAllFonts(),
                         options.chkOverrideEffects()}) {
    box->setChecked(true);
  }
  for (QCheckBox* box : {options.chkCustomSecurityIsDisallow(), options.chkSpecialMsgBox(),
                         options.chkDetailedLook()}) {
    box->setChecked(false);
  }
  options.txtLabelForeground()->clear();
  QTest::keyClicks(options.txtLabelForeground(), "00ff00");
  options.txtLabelBackground()->clear();
  QTest::keyClicks(options.txtLabelBackground(), "1g0z1010");  // only hexadecimal digits go in
  EXPECT_EQ(options.txtLabelBackground()->text(), QStringLiteral("101010"));
  EXPECT_EQ(options.lblLabelSample()->palette().color(QPalette::WindowText), QColor(0, 255, 0));

  const QStringList families = QFontDatabase::families();
  ASSERT_FALSE(families.isEmpty());
  QFont picked;
  WhenOpens<QFontDialog>([&](QFontDialog* dialog) {
    QFont wanted(families.last(), 12);
    wanted.setItalic(true);
    dialog->setCurrentFont(wanted);
    picked = dialog->currentFont();
    dialog->accept();
  });
  options.butSetFont()->click();
  EXPECT_NE(picked.family(), QStringLiteral("Courier New"));
  EXPECT_TRUE(options.lblFontSample()->text().startsWith(picked.family() + QStringLiteral(", ")));

  options.butOK()->click();
  EXPECT_EQ(options.result(), QDialog::Accepted);
  // Every key OK writes, as section/key=value.
  std::istringstream written(
      "Options/LogErrors=No Options/LogFile=/old/errors.log Options/OutputFile=Yes "
      "Options/OutFile=/logs/game.txt Options/SpecialMsgBox=No Options/AutoInstall=Yes "
      "Options/DetailedLook=No Options/OverrideGameDefaultFont=Yes Options/OverrideAllFonts=Yes "
      "Options/OverrideEffects=Yes Options/LabelForegroundColour=00FF00 "
      "Options/LabelBackgroundColour=101010 Options/DefaultFontSize=" +
      FormatSingle(static_cast<float>(picked.pointSizeF())) +
      " Options/DefaultFontBold=" + (picked.bold() ? "Yes" : "No") +
      " Options/DefaultFontItalic=" + (picked.italic() ? "Yes" : "No") +
      " Security/SecurityType=3 Security/ZeroSecurityInstalledGames=Yes "
      "Security/NumberCustomSecurity=4 Security/CustomSecurityIsDisallow=No "
      "Security/CustomSecurity1=EXE Security/CustomSecurity2=COM Security/CustomSecurity3=DOC "
      "Security/CustomSecurity4=TXT");
  std::size_t keys = 1;  // and the font's name, which may hold spaces
  EXPECT_EQ(store.Read("Options", "DefaultFontName"), picked.family().toStdString());
  for (std::string key; written >> key; ++keys) {
    const std::size_t slash = key.find('/'), equals = key.find('=');
    EXPECT_EQ(store.Read(key.substr(0, slash), key.substr(slash + 1, equals - slash - 1)),
              key.substr(equals + 1));
  }
  EXPECT_EQ(store.Size(), keys);
  EXPECT_FALSE(settings.special_msg_box);  // the player's settings changed with the store
  EXPECT_EQ(settings.custom_security.back(), "TXT");
}

TEST_F(OptionsWindowTest, EmptyFileNamesBecomeTheDefaultFilesInTheUsersDataFolder) {
  const QByteArray saved = qgetenv("XDG_DATA_HOME");
  qputenv("XDG_DATA_HOME", data.path().toUtf8());
  frmOptions options(settings, store);  // the data folder as the environment names it
  options.chkLogScriptErrors()->setChecked(true);
  options.chkOutputToFile()->setChecked(true);
  options.butOK()->click();
  const std::string folder = data.path().toStdString() + "/Tarve";
  EXPECT_EQ(options.txtLogFileName()->text(), QString::fromStdString(folder + "/TARVELOG.LOG"));
  EXPECT_EQ(store.Read("Options", "LogFile"), folder + "/TARVELOG.LOG");
  EXPECT_EQ(store.Read("Options", "OutFile"), folder + "/GAMELOG.LOG");
  EXPECT_EQ(settings.log_file, folder + "/TARVELOG.LOG");
  saved.isNull() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", saved);
}

TEST_F(OptionsWindowTest, PagesTheSampleBoxAndCancelWhichChangesNothing) {
  frmOptions options(settings, store, nullptr, data.path().toStdString());
  std::string pages = std::to_string(options.CurrentPage());
  for (QPushButton* page : {options.butFonts(), options.butOther(), options.butLogging()}) {
    page->click();
    pages += std::to_string(options.CurrentPage());
  }
  EXPECT_EQ(pages, "0120");
  EXPECT_FALSE(options.butOther()->isChecked());

  // The style the sample box shows is the one ticked now, before OK.
  for (const bool special : {true, false}) {
    options.chkSpecialMsgBox()->setChecked(special);
    QString shown;
    bool own_box = !special;
    AnswerMessage(true, &shown, &own_box);
    options.butDemoMsgBox()->click();
    EXPECT_EQ(shown, "This is the style of message box you have selected.");
    EXPECT_EQ(own_box, special);
  }

  // Cancel changes nothing, not even what the font and list editors chose.
  options.optAllExts()->setChecked(true);
  options.optAdvExts()->setChecked(true);
  WhenOpens<frmAdvancedSecurity>([](frmAdvancedSecurity* editor) {
    editor->butRemove()->click();
    editor->butOK()->click();
  });
  options.butEditShellExts()->click();
  WhenOpens<QFontDialog>([](QFontDialog* dialog) {
    QFont bold = dialog->currentFont();
    bold.setBold(true);
    dialog->setCurrentFont(bold);
    dialog->accept();
  });
  options.butSetFont()->click();
  options.butCancel()->click();
  EXPECT_EQ(options.result(), QDialog::Rejected);
  EXPECT_EQ(store.Size(), 0u);
  EXPECT_TRUE(settings.special_msg_box && settings.security_type == 3);
  EXPECT_FALSE(settings.default_font_bold);
  EXPECT_EQ(settings.custom_security, Settings().custom_security);
}

}  // namespace
}  // namespace tarve
