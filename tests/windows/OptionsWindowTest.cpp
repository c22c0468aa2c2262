// The options window and its editor of the custom file types: what the controls show when the
// window opens, every key that OK writes, the default files, Cancel, the pages and the sample
// message box.

#include "WindowTestSupport.h"
#include "base/Numbers.h"
#include "player/Settings.h"
#include "player/SettingsStore.h"
#include "player/windows/frmAdvancedSecurity.h"
#include "player/windows/frmOptions.h"

namespace tarve {
namespace {

std::vector<QString> Entries(const QListWidget* list) {
  std::vector<QString> entries;
  for (int i = 0; i < list->count(); ++i) entries.push_back(list->item(i)->text());
  return entries;
}

// Which of `buttons` are ticked, as 1s and 0s.
std::string Ticks(std::initializer_list<const QAbstractButton*> buttons) {
  std::string ticks;
  for (const QAbstractButton* button : buttons) ticks += button->isChecked() ? '1' : '0';
  return ticks;
}

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
  EXPECT_EQ(Ticks({options.chkLogScriptErrors(), options.chkOutputToFile(), options.optNoExts(),
                   options.chkSpecialMsgBox(), options.chkDetailedLook(),
                   options.chkCustomSecurityIsDisallow()}),
            "101111");
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
    editor->lstFileTypes()->setCurrentRow(3);  // DLL
    editor->butRemove()->click();
    AnswerInput(QStringLiteral(".txt"));
    editor->butAdd()->click();
    editor->butOK()->click();
  });
  options.butEditShellExts()->click();
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
  const std::string font = picked.family().toStdString(),
                    size = FormatSingle(static_cast<float>(picked.pointSizeF())),
                    bold = picked.bold() ? "Yes" : "No", italic = picked.italic() ? "Yes" : "No";
  const std::vector<std::pair<std::string, std::string>> options_keys = {
      {"LogErrors", "No"},
      {"LogFile", "/old/errors.log"},
      {"OutputFile", "Yes"},
      {"OutFile", "/logs/game.txt"},
      {"SpecialMsgBox", "No"},
      {"AutoInstall", "Yes"},
      {"DetailedLook", "No"},
      {"DefaultFontName", font},
      {"DefaultFontSize", size},
      {"DefaultFontBold", bold},
      {"DefaultFontItalic", italic},
      {"OverrideGameDefaultFont", "Yes"},
      {"OverrideAllFonts", "Yes"},
      {"OverrideEffects", "Yes"},
      {"LabelForegroundColour", "00FF00"},
      {"LabelBackgroundColour", "101010"}};
  for (const auto& [key, value] : options_keys) EXPECT_EQ(store.Read("Options", key), value) << key;
  const std::vector<std::pair<std::string, std::string>> security_keys = {
      {"SecurityType", "3"},         {"ZeroSecurityInstalledGames", "Yes"},
      {"NumberCustomSecurity", "4"}, {"CustomSecurityIsDisallow", "No"},
      {"CustomSecurity1", "EXE"},    {"CustomSecurity2", "COM"},
      {"CustomSecurity3", "DOC"},    {"CustomSecurity4", "TXT"}};
  for (const auto& [key, value] : security_keys)
    EXPECT_EQ(store.Read("Security", key), value) << key;
  EXPECT_EQ(store.Size(), options_keys.size() + security_keys.size());
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

TEST(AdvancedSecurity, AddsTypesAsTheCheckComparesThemRemovesAndKeepsOnlyOnOk) {
  frmAdvancedSecurity editor({"EXE", "COM"});
  QString title, prompt;
  WhenOpens<QWidget>([&](QWidget*) {
    AnswerInput(QStringLiteral(" .doc "), &title, &prompt);
    editor.butAdd()->click();
    EXPECT_EQ(editor.lstFileTypes()->currentItem()->text(), QStringLiteral("DOC"));
    // A type already listed is chosen, not added again; an empty answer adds nothing.
    AnswerInput(QStringLiteral("exe"));
    editor.butAdd()->click();
    EXPECT_EQ(editor.lstFileTypes()->currentRow(), 0);
    AnswerInput(QString());
    editor.butAdd()->click();
    EXPECT_EQ(Entries(editor.lstFileTypes()), (std::vector<QString>{"EXE", "COM", "DOC"}));
    editor.butRemove()->click();                             // EXE, the chosen one
    QTest::keyClick(editor.lstFileTypes(), Qt::Key_Delete);  // then COM
    EXPECT_EQ(Entries(editor.lstFileTypes()), std::vector<QString>{"DOC"});
    editor.butOK()->click();
  });
  EXPECT_EQ(editor.Run(), std::vector<std::string>{"DOC"});
  EXPECT_EQ(title, QStringLiteral("Add file type"));
  EXPECT_EQ(prompt, QStringLiteral("Please enter a file extension:"));

  frmAdvancedSecurity cancelled({"EXE"});
  WhenOpens<QWidget>([&](QWidget*) {
    cancelled.butRemove()->click();
    cancelled.butCancel()->click();
  });
  EXPECT_EQ(cancelled.Run(), std::nullopt);
}

}  // namespace
}  // namespace tarve
