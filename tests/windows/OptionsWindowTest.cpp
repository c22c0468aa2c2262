// The options window and its editor of the custom file types: what the controls show when the
// window opens, every key that OK writes, the default files, Cancel, the pages and the sample
// message box.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QFontDatabase>
#include <QFontDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "WindowTestSupport.h"
#include "base/Numbers.h"
#include "player/Settings.h"
#include "player/SettingsStore.h"
#include "player/windows/frmAdvancedSecurity.h"
#include "player/windows/frmDunMsgBox.h"
#include "player/windows/frmOptions.h"

// Failures name the texts, not their bytes.
static void PrintTo(const QString& text, std::ostream* out) { *out << text.toStdString(); }

namespace tarve {
namespace {

// Answers the next input box with `answer`, keeping its title and prompt.
void AnswerInputBox(const QString& answer, QString* title, QString* prompt) {
  WhenModalOpens([=](QWidget* modal) {
    auto* box = qobject_cast<QInputDialog*>(modal);
    if (box == nullptr) {
      ADD_FAILURE() << "no input box";
      modal->close();
      return;
    }
    *title = box->windowTitle();
    *prompt = box->labelText();
    box->setTextValue(answer);
    box->accept();
  });
}

std::vector<QString> Entries(const QListWidget* list) {
  std::vector<QString> entries;
  for (int i = 0; i < list->count(); ++i) entries.push_back(list->item(i)->text());
  return entries;
}

// A settings store whose every key, as "SECTION/KEY", a test can compare at once.
class KeyStore : public SettingsStore {
 public:
  std::optional<std::string> Read(std::string_view section, std::string_view key) const override {
    auto it = keys.find(Name(section, key));
    return it == keys.end() ? std::nullopt : std::optional<std::string>(it->second);
  }
  void Write(std::string_view section, std::string_view key, std::string_view value) override {
    keys[Name(section, key)] = value;
  }
  void Remove(std::string_view section, std::string_view key) override {
    keys.erase(Name(section, key));
  }
  std::map<std::string, std::string> keys;

 private:
  static std::string Name(std::string_view section, std::string_view key) {
    return std::string(section) + "/" + std::string(key);
  }
};

class OptionsWindowTest : public ::testing::Test {
 protected:
  QTemporaryDir data;
  KeyStore store;
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
  EXPECT_TRUE(options.chkLogScriptErrors()->isChecked());
  EXPECT_EQ(options.txtLogFileName()->text(), QStringLiteral("/old/errors.log"));
  EXPECT_FALSE(options.chkOutputToFile()->isChecked());
  EXPECT_FALSE(options.txtOutputFileName()->isEnabled());  // a name only goes with its switch
  EXPECT_TRUE(options.optNoExts()->isChecked());
  EXPECT_FALSE(options.butEditShellExts()->isEnabled());
  EXPECT_TRUE(options.chkSpecialMsgBox()->isChecked());
  EXPECT_TRUE(options.chkDetailedLook()->isChecked());
  EXPECT_TRUE(options.chkCustomSecurityIsDisallow()->isChecked());
  EXPECT_EQ(options.txtLabelForeground()->text(), QStringLiteral("112233"));
  EXPECT_EQ(options.lblFontSample()->text(), QStringLiteral("Courier New, 8.25 pt"));

  // Change every control.
  options.chkLogScriptErrors()->setChecked(false);
  options.chkOutputToFile()->setChecked(true);
  QTest::keyClicks(options.txtOutputFileName(), "/logs/game.txt");
  options.optAdvExts()->setChecked(true);
  ASSERT_TRUE(options.butEditShellExts()->isEnabled());
  WhenModalOpens([](QWidget* modal) {
    auto* editor = qobject_cast<frmAdvancedSecurity*>(modal);
    ASSERT_NE(editor, nullptr);
    editor->lstFileTypes()->setCurrentRow(3);  // DLL
    editor->butRemove()->click();
    QString title, prompt;
    AnswerInputBox(QStringLiteral(".txt"), &title, &prompt);
    editor->butAdd()->click();
    editor->butOK()->click();
  });
  options.butEditShellExts()->click();
  options.chkCustomSecurityIsDisallow()->setChecked(false);
  options.chkZeroSecurityInstalledGames()->setChecked(true);
  options.chkSpecialMsgBox()->setChecked(false);
  options.chkAutoInstall()->setChecked(true);
  options.chkDetailedLook()->setChecked(false);
  options.chkOverrideGameDefaultFont()->setChecked(true);
  options.chkOverrideAllFonts()->setChecked(true);
  options.chkOverrideEffects()->setChecked(true);
  options.txtLabelForeground()->clear();
  QTest::keyClicks(options.txtLabelForeground(), "00ff00");
  options.txtLabelBackground()->clear();
  QTest::keyClicks(options.txtLabelBackground(), "1g0z1010");  // only hexadecimal digits go in
  EXPECT_EQ(options.txtLabelBackground()->text(), QStringLiteral("101010"));
  EXPECT_EQ(options.lblLabelSample()->palette().color(QPalette::WindowText), QColor(0, 255, 0));

  const QStringList families = QFontDatabase::families();
  ASSERT_FALSE(families.isEmpty());
  QFont picked;
  WhenModalOpens([&](QWidget* modal) {
    auto* dialog = qobject_cast<QFontDialog*>(modal);
    ASSERT_NE(dialog, nullptr);
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
  const std::map<std::string, std::string> expected = {
      {"Options/LogErrors", "No"},
      {"Options/LogFile", "/old/errors.log"},
      {"Options/OutputFile", "Yes"},
      {"Options/OutFile", "/logs/game.txt"},
      {"Options/SpecialMsgBox", "No"},
      {"Options/AutoInstall", "Yes"},
      {"Options/DetailedLook", "No"},
      {"Options/DefaultFontName", picked.family().toStdString()},
      {"Options/DefaultFontSize", FormatSingle(static_cast<float>(picked.pointSizeF()))},
      {"Options/DefaultFontBold", picked.bold() ? "Yes" : "No"},
      {"Options/DefaultFontItalic", picked.italic() ? "Yes" : "No"},
      {"Options/OverrideGameDefaultFont", "Yes"},
      {"Options/OverrideAllFonts", "Yes"},
      {"Options/OverrideEffects", "Yes"},
      {"Options/LabelForegroundColour", "00FF00"},
      {"Options/LabelBackgroundColour", "101010"},
      {"Security/SecurityType", "3"},
      {"Security/ZeroSecurityInstalledGames", "Yes"},
      {"Security/NumberCustomSecurity", "4"},
      {"Security/CustomSecurityIsDisallow", "No"},
      {"Security/CustomSecurity1", "EXE"},
      {"Security/CustomSecurity2", "COM"},
      {"Security/CustomSecurity3", "DOC"},
      {"Security/CustomSecurity4", "TXT"}};
  EXPECT_EQ(store.keys, expected);
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
  EXPECT_EQ(options.txtOutputFileName()->text(), QString::fromStdString(folder + "/GAMELOG.LOG"));
  EXPECT_EQ(store.Read("Options", "LogFile"), folder + "/TARVELOG.LOG");
  EXPECT_EQ(store.Read("Options", "OutFile"), folder + "/GAMELOG.LOG");
  EXPECT_EQ(settings.log_file, folder + "/TARVELOG.LOG");
  if (saved.isNull()) {
    qunsetenv("XDG_DATA_HOME");
  } else {
    qputenv("XDG_DATA_HOME", saved);
  }
}

TEST_F(OptionsWindowTest, CancelChangesNothingEvenWhatTheFontAndListEditorsChose) {
  frmOptions options(settings, store, nullptr, data.path().toStdString());
  options.chkSpecialMsgBox()->setChecked(false);
  options.optAllExts()->setChecked(true);
  options.optAdvExts()->setChecked(true);
  WhenModalOpens([](QWidget* modal) {
    auto* editor = qobject_cast<frmAdvancedSecurity*>(modal);
    ASSERT_NE(editor, nullptr);
    editor->butRemove()->click();
    editor->butOK()->click();
  });
  options.butEditShellExts()->click();
  WhenModalOpens([](QWidget* modal) {
    auto* dialog = qobject_cast<QFontDialog*>(modal);
    ASSERT_NE(dialog, nullptr);
    QFont bold = dialog->currentFont();
    bold.setBold(true);
    dialog->setCurrentFont(bold);
    dialog->accept();
  });
  options.butSetFont()->click();
  options.butCancel()->click();

  EXPECT_EQ(options.result(), QDialog::Rejected);
  EXPECT_TRUE(store.keys.empty());
  const Settings defaults;
  EXPECT_TRUE(settings.special_msg_box);
  EXPECT_EQ(settings.security_type, 3);
  EXPECT_EQ(settings.custom_security, defaults.custom_security);
  EXPECT_FALSE(settings.default_font_bold);
  EXPECT_EQ(settings.default_font_name, "Courier New");
}

TEST_F(OptionsWindowTest, PageButtonsSwitchPagesAndTheSampleBoxHasTheChosenStyle) {
  frmOptions options(settings, store, nullptr, data.path().toStdString());
  EXPECT_EQ(options.CurrentPage(), 0);
  options.butFonts()->click();
  EXPECT_EQ(options.CurrentPage(), 1);
  EXPECT_TRUE(options.butFonts()->isChecked());
  options.butOther()->click();
  EXPECT_EQ(options.CurrentPage(), 2);
  options.butLogging()->click();
  EXPECT_EQ(options.CurrentPage(), 0);
  EXPECT_FALSE(options.butOther()->isChecked());

  const QString sample = QStringLiteral("This is the style of message box you have selected.");
  QString shown;
  WhenModalOpens([&](QWidget* modal) {
    auto* own = qobject_cast<frmDunMsgBox*>(modal);
    ASSERT_NE(own, nullptr);
    shown = own->txtMessage()->toPlainText();
    own->butOK()->click();
  });
  options.butDemoMsgBox()->click();
  EXPECT_EQ(shown, sample);

  // The style the box shows is the one ticked now, before OK.
  options.chkSpecialMsgBox()->setChecked(false);
  shown.clear();
  WhenModalOpens([&](QWidget* modal) {
    auto* platform = qobject_cast<QMessageBox*>(modal);
    ASSERT_NE(platform, nullptr);
    shown = platform->text();
    platform->accept();
  });
  options.butDemoMsgBox()->click();
  EXPECT_EQ(shown, sample);
  EXPECT_TRUE(settings.special_msg_box);
}

TEST(AdvancedSecurity, AddsTypesAsTheCheckComparesThemRemovesAndKeepsOnlyOnOk) {
  frmAdvancedSecurity editor({"EXE", "COM"});
  QString title, prompt;
  WhenModalOpens([&](QWidget*) {
    AnswerInputBox(QStringLiteral(" .doc "), &title, &prompt);
    editor.butAdd()->click();
    EXPECT_EQ(editor.lstFileTypes()->currentItem()->text(), QStringLiteral("DOC"));
    // A type already listed is chosen, not added again; an empty answer adds nothing.
    QString ignored;
    AnswerInputBox(QStringLiteral("exe"), &ignored, &ignored);
    editor.butAdd()->click();
    EXPECT_EQ(editor.lstFileTypes()->currentRow(), 0);
    AnswerInputBox(QString(), &ignored, &ignored);
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
  WhenModalOpens([&](QWidget*) {
    cancelled.butRemove()->click();
    cancelled.butCancel()->click();
  });
  EXPECT_EQ(cancelled.Run(), std::nullopt);
}

}  // namespace
}  // namespace tarve
