// frmOptions: the player's preferences on three pages (logging and the output copy; fonts and
// the label colours; security, message boxes and the rest). It shows the settings as they stand
// when it opens; OK copies the controls back into the settings and writes every key to the
// settings store; Cancel changes nothing, not even what the font dialog or the list of file
// types chose meanwhile.
#pragma once

#include <QDialog>
#include <string>

#include "player/OptionsForm.h"

class QButtonGroup;
class QCheckBox;
class QFont;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QStackedWidget;

namespace tarve {

class SettingsStore;

class frmOptions : public QDialog {
  Q_OBJECT

 public:
  static constexpr const char* kDemoMessage = "This is the style of message box you have selected.";

  // `settings` are the player's settings, changed on OK; `store` keeps them. Both must outlive
  // the window. Default log and output files go into `data_folder`.
  frmOptions(Settings& settings, SettingsStore& store, QWidget* parent = nullptr,
             const std::string& data_folder = UserDataFolder());

  // The page on show: 0 logging, 1 fonts, 2 other.
  int CurrentPage() const;
  // The default font as the window shows it in its sample.
  QFont ChosenFont() const;

  QPushButton* butLogging() const { return but_logging_; }
  QPushButton* butFonts() const { return but_fonts_; }
  QPushButton* butOther() const { return but_other_; }
  QCheckBox* chkLogScriptErrors() const { return chk_log_script_errors_; }
  QLineEdit* txtLogFileName() const { return txt_log_file_name_; }
  QCheckBox* chkOutputToFile() const { return chk_output_to_file_; }
  QLineEdit* txtOutputFileName() const { return txt_output_file_name_; }
  QLabel* lblFontSample() const { return lbl_font_sample_; }
  QPushButton* butSetFont() const { return but_set_font_; }
  QCheckBox* chkOverrideGameDefaultFont() const { return chk_override_game_default_font_; }
  QCheckBox* chkOverrideAllFonts() const { return chk_override_all_fonts_; }
  QCheckBox* chkOverrideEffects() const { return chk_override_effects_; }
  QLineEdit* txtLabelForeground() const { return txt_label_foreground_; }
  QLineEdit* txtLabelBackground() const { return txt_label_background_; }
  QLabel* lblLabelSample() const { return lbl_label_sample_; }
  QRadioButton* optNoExts() const { return opt_no_exts_; }
  QRadioButton* optAllExts() const { return opt_all_exts_; }
  QRadioButton* optAdvExts() const { return opt_adv_exts_; }
  QPushButton* butEditShellExts() const { return but_edit_shell_exts_; }
  QCheckBox* chkCustomSecurityIsDisallow() const { return chk_custom_security_is_disallow_; }
  QCheckBox* chkZeroSecurityInstalledGames() const { return chk_zero_security_installed_games_; }
  QCheckBox* chkSpecialMsgBox() const { return chk_special_msg_box_; }
  QPushButton* butDemoMsgBox() const { return but_demo_msg_box_; }
  QCheckBox* chkAutoInstall() const { return chk_auto_install_; }
  QCheckBox* chkDetailedLook() const { return chk_detailed_look_; }
  QPushButton* butOK() const { return but_ok_; }
  QPushButton* butCancel() const { return but_cancel_; }

 private:
  QWidget* MakeLoggingPage(const std::string& data_folder);
  QWidget* MakeFontsPage();
  QWidget* MakeOtherPage();
  // Form_Load: the controls show the form's values.
  void ShowValues();
  void ShowPage(int page);
  void SetFont();
  void UpdateFontSample();
  void UpdateLabelSample();
  void EditShellExts();
  void UpdateEnabled();
  void Confirm();

  Settings& settings_;
  SettingsStore& store_;
  OptionsForm form_;

  QButtonGroup* pages_group_;
  QStackedWidget* pages_;
  QPushButton* but_logging_;
  QPushButton* but_fonts_;
  QPushButton* but_other_;
  QCheckBox* chk_log_script_errors_ = nullptr;
  QLineEdit* txt_log_file_name_ = nullptr;
  QCheckBox* chk_output_to_file_ = nullptr;
  QLineEdit* txt_output_file_name_ = nullptr;
  QLabel* lbl_font_sample_ = nullptr;
  QPushButton* but_set_font_ = nullptr;
  QCheckBox* chk_override_game_default_font_ = nullptr;
  QCheckBox* chk_override_all_fonts_ = nullptr;
  QCheckBox* chk_override_effects_ = nullptr;
  QLineEdit* txt_label_foreground_ = nullptr;
  QLineEdit* txt_label_background_ = nullptr;
  QLabel* lbl_label_sample_ = nullptr;
  QButtonGroup* security_group_ = nullptr;
  QRadioButton* opt_no_exts_ = nullptr;
  QRadioButton* opt_all_exts_ = nullptr;
  QRadioButton* opt_adv_exts_ = nullptr;
  QPushButton* but_edit_shell_exts_ = nullptr;
  QCheckBox* chk_custom_security_is_disallow_ = nullptr;
  QCheckBox* chk_zero_security_installed_games_ = nullptr;
  QCheckBox* chk_special_msg_box_ = nullptr;
  QPushButton* but_demo_msg_box_ = nullptr;
  QCheckBox* chk_auto_install_ = nullptr;
  QCheckBox* chk_detailed_look_ = nullptr;
  QPushButton* but_ok_;
  QPushButton* but_cancel_;
};

}  // namespace tarve
