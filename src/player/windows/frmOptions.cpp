#include "player/windows/frmOptions.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFontDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "base/Numbers.h"
#include "game/Host.h"
#include "player/windows/Controls.h"
#include "player/windows/MessageBoxes.h"
#include "player/windows/frmAdvancedSecurity.h"

namespace tarve {

namespace {

// The file name boxes are wide enough for a path in the user's home folder.
constexpr int kFileNameColumns = 40;

QColor ColourOf(const QString& digits) { return QColor(QLatin1Char('#') + digits); }

}  // namespace

frmOptions::frmOptions(Settings& settings, SettingsStore& store, QWidget* parent,
                       const std::string& data_folder)
    : QDialog(parent),
      settings_(settings),
      store_(store),
      form_(settings, data_folder),
      pages_group_(new QButtonGroup(this)),
      pages_(new QStackedWidget(this)),
      but_logging_(Named(new QPushButton(tr("&Logging"), this), "butLogging")),
      but_fonts_(Named(new QPushButton(tr("&Fonts"), this), "butFonts")),
      but_other_(Named(new QPushButton(tr("O&ther"), this), "butOther")),
      but_ok_(Named(new QPushButton(tr("OK"), this), "butOK")),
      but_cancel_(Named(new QPushButton(tr("Cancel"), this), "butCancel")) {
  setObjectName(QStringLiteral("frmOptions"));
  setWindowTitle(tr("Options"));
  setAccessibleName(windowTitle());

  // The page buttons stand in a column beside the pages, like tabs that keep their words whole.
  auto* page_column = new QVBoxLayout;
  int page = 0;
  for (QPushButton* button : {but_logging_, but_fonts_, but_other_}) {
    button->setCheckable(true);
    button->setAutoDefault(false);
    pages_group_->addButton(button, page++);
    page_column->addWidget(button);
  }
  page_column->addStretch(1);
  pages_->setObjectName(QStringLiteral("pages"));
  pages_->addWidget(MakeLoggingPage(data_folder));
  pages_->addWidget(MakeFontsPage());
  pages_->addWidget(MakeOtherPage());
  connect(pages_group_, &QButtonGroup::idClicked, this, &frmOptions::ShowPage);

  but_ok_->setDefault(true);
  auto* button_row = new QHBoxLayout;
  button_row->addStretch(1);
  button_row->addWidget(but_ok_);
  button_row->addWidget(but_cancel_);
  connect(but_ok_, &QPushButton::clicked, this, &frmOptions::Confirm);
  connect(but_cancel_, &QPushButton::clicked, this, &QDialog::reject);

  auto* body = new QHBoxLayout;
  body->addLayout(page_column);
  body->addWidget(pages_, 1);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(body, 1);
  layout->addLayout(button_row);

  ShowValues();
  ShowPage(0);
}

QWidget* frmOptions::MakeLoggingPage(const std::string& data_folder) {
  auto* page = new QWidget(pages_);
  page->setObjectName(QStringLiteral("pageLogging"));
  chk_log_script_errors_ =
      Named(new QCheckBox(tr("Write script &errors to a log file"), page), "chkLogScriptErrors");
  txt_log_file_name_ = new QLineEdit(page);
  txt_log_file_name_->setObjectName(QStringLiteral("txtLogFileName"));
  txt_log_file_name_->setAccessibleName(tr("Log file"));
  chk_output_to_file_ = Named(new QCheckBox(tr("&Copy everything the game prints to a file"), page),
                              "chkOutputToFile");
  txt_output_file_name_ = new QLineEdit(page);
  txt_output_file_name_->setObjectName(QStringLiteral("txtOutputFileName"));
  txt_output_file_name_->setAccessibleName(tr("Output file"));
  const int width = kFileNameColumns * fontMetrics().averageCharWidth();
  txt_log_file_name_->setMinimumWidth(width);
  txt_output_file_name_->setMinimumWidth(width);

  auto* log_file = new QFormLayout;
  log_file->addRow(tr("Log &file:"), txt_log_file_name_);
  auto* out_file = new QFormLayout;
  out_file->addRow(tr("O&utput file:"), txt_output_file_name_);
  // Where a file goes when its name is left empty.
  // A path is not wrapped: it would break at its slashes.
  auto* note = new QLabel(tr("Left empty, the files are %1 and %2 in the folder\n%3")
                              .arg(QString::fromLatin1(kDefaultLogFileName),
                                   QString::fromLatin1(kDefaultOutputFileName),
                                   data_folder.empty() ? tr("the program starts in")
                                                       : QString::fromStdString(data_folder)),
                          page);
  note->setObjectName(QStringLiteral("lblDefaultFiles"));
  note->setTextFormat(Qt::PlainText);
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(chk_log_script_errors_);
  layout->addLayout(log_file);
  layout->addSpacing(fontMetrics().height());
  layout->addWidget(chk_output_to_file_);
  layout->addLayout(out_file);
  layout->addSpacing(fontMetrics().height());
  layout->addWidget(note);
  layout->addStretch(1);

  connect(chk_log_script_errors_, &QCheckBox::toggled, this, &frmOptions::UpdateEnabled);
  connect(chk_output_to_file_, &QCheckBox::toggled, this, &frmOptions::UpdateEnabled);
  return page;
}

QWidget* frmOptions::MakeFontsPage() {
  auto* page = new QWidget(pages_);
  page->setObjectName(QStringLiteral("pageFonts"));

  auto* font_frame = new QGroupBox(tr("Default font"), page);
  lbl_font_sample_ = new QLabel(font_frame);
  lbl_font_sample_->setObjectName(QStringLiteral("lblFontSample"));
  lbl_font_sample_->setTextFormat(Qt::PlainText);
  lbl_font_sample_->setFrameShape(QFrame::StyledPanel);
  lbl_font_sample_->setFrameShadow(QFrame::Sunken);
  lbl_font_sample_->setMinimumHeight(3 * fontMetrics().lineSpacing());
  lbl_font_sample_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  but_set_font_ = Named(new QPushButton(tr("&Set Font..."), font_frame), "butSetFont");
  auto* font_row = new QHBoxLayout(font_frame);
  font_row->addWidget(lbl_font_sample_, 1);
  font_row->addWidget(but_set_font_, 0, Qt::AlignTop);

  chk_override_game_default_font_ =
      Named(new QCheckBox(tr("Use this font instead of the game's &default font"), page),
            "chkOverrideGameDefaultFont");
  chk_override_all_fonts_ =
      Named(new QCheckBox(tr("Use this font for &all text, whatever font the game asks for"), page),
            "chkOverrideAllFonts");
  chk_override_effects_ = Named(
      new QCheckBox(tr("&Ignore bold, italic, underline and colours"), page), "chkOverrideEffects");

  auto* colour_frame = new QGroupBox(tr("Colours of the game window's labels"), page);
  txt_label_foreground_ = new QLineEdit(colour_frame);
  txt_label_foreground_->setObjectName(QStringLiteral("txtLabelForeground"));
  txt_label_foreground_->setAccessibleName(tr("Label text colour"));
  txt_label_background_ = new QLineEdit(colour_frame);
  txt_label_background_->setObjectName(QStringLiteral("txtLabelBackground"));
  txt_label_background_->setAccessibleName(tr("Label background colour"));
  for (QLineEdit* box : {txt_label_foreground_, txt_label_background_}) {
    // Six hexadecimal digits, red, green and blue, as the settings keep them.
    box->setValidator(new QRegularExpressionValidator(
        QRegularExpression(QStringLiteral("[0-9A-Fa-f]{0,6}")), box));
    box->setMaxLength(6);
    box->setMaximumWidth(10 * fontMetrics().averageCharWidth());
    connect(box, &QLineEdit::textChanged, this, &frmOptions::UpdateLabelSample);
  }
  lbl_label_sample_ = new QLabel(tr("Sample label"), colour_frame);
  lbl_label_sample_->setObjectName(QStringLiteral("lblLabelSample"));
  lbl_label_sample_->setAlignment(Qt::AlignCenter);
  lbl_label_sample_->setAutoFillBackground(true);
  lbl_label_sample_->setMinimumWidth(16 * fontMetrics().averageCharWidth());
  auto* colour_boxes = new QFormLayout;
  colour_boxes->addRow(tr("&Text (RRGGBB):"), txt_label_foreground_);
  colour_boxes->addRow(tr("&Background (RRGGBB):"), txt_label_background_);
  auto* colour_row = new QHBoxLayout(colour_frame);
  colour_row->addLayout(colour_boxes);
  colour_row->addWidget(lbl_label_sample_, 1);

  auto* layout = new QVBoxLayout(page);
  layout->addWidget(font_frame);
  layout->addWidget(chk_override_game_default_font_);
  layout->addWidget(chk_override_all_fonts_);
  layout->addWidget(chk_override_effects_);
  layout->addWidget(colour_frame);
  layout->addStretch(1);

  connect(but_set_font_, &QPushButton::clicked, this, &frmOptions::SetFont);
  return page;
}

QWidget* frmOptions::MakeOtherPage() {
  auto* page = new QWidget(pages_);
  page->setObjectName(QStringLiteral("pageOther"));

  auto* security_frame = new QGroupBox(tr("Files a game may open"), page);
  opt_no_exts_ = Named(new QRadioButton(tr("&No files"), security_frame), "optNoExts");
  opt_all_exts_ = Named(new QRadioButton(tr("&All files"), security_frame), "optAllExts");
  opt_adv_exts_ =
      Named(new QRadioButton(tr("&Custom: the list of file types decides"), security_frame),
            "optAdvExts");
  security_group_ = new QButtonGroup(this);
  security_group_->addButton(opt_no_exts_, 1);
  security_group_->addButton(opt_all_exts_, 2);
  security_group_->addButton(opt_adv_exts_, 3);
  but_edit_shell_exts_ =
      Named(new QPushButton(tr("&Edit List..."), security_frame), "butEditShellExts");
  chk_custom_security_is_disallow_ =
      Named(new QCheckBox(tr("The list names the file types that are &refused"), security_frame),
            "chkCustomSecurityIsDisallow");
  chk_zero_security_installed_games_ =
      Named(new QCheckBox(tr("Games started from the &installed list may open all files"),
                          security_frame),
            "chkZeroSecurityInstalledGames");
  auto* custom_row = new QHBoxLayout;
  custom_row->addWidget(opt_adv_exts_);
  custom_row->addWidget(but_edit_shell_exts_);
  custom_row->addStretch(1);
  auto* custom_detail = new QVBoxLayout;
  custom_detail->setContentsMargins(4 * fontMetrics().averageCharWidth(), 0, 0, 0);
  custom_detail->addWidget(chk_custom_security_is_disallow_);
  auto* security_layout = new QVBoxLayout(security_frame);
  security_layout->addWidget(opt_no_exts_);
  security_layout->addWidget(opt_all_exts_);
  security_layout->addLayout(custom_row);
  security_layout->addLayout(custom_detail);
  security_layout->addWidget(chk_zero_security_installed_games_);

  auto* message_frame = new QGroupBox(tr("Message boxes"), page);
  chk_special_msg_box_ = Named(new QCheckBox(tr("Use Tarve's own &message window"), message_frame),
                               "chkSpecialMsgBox");
  but_demo_msg_box_ = Named(new QPushButton(tr("S&how Me"), message_frame), "butDemoMsgBox");
  auto* message_row = new QHBoxLayout(message_frame);
  message_row->addWidget(chk_special_msg_box_);
  message_row->addStretch(1);
  message_row->addWidget(but_demo_msg_box_);

  chk_auto_install_ = Named(
      new QCheckBox(tr("Add a game chosen with Browse to the installed games at &once"), page),
      "chkAutoInstall");
  chk_detailed_look_ =
      Named(new QCheckBox(tr("\"&Look\" on its own describes the room in full"), page),
            "chkDetailedLook");

  auto* layout = new QVBoxLayout(page);
  layout->addWidget(security_frame);
  layout->addWidget(message_frame);
  layout->addWidget(chk_auto_install_);
  layout->addWidget(chk_detailed_look_);
  layout->addStretch(1);

  connect(security_group_, &QButtonGroup::idToggled, this, &frmOptions::UpdateEnabled);
  connect(but_edit_shell_exts_, &QPushButton::clicked, this, &frmOptions::EditShellExts);
  connect(but_demo_msg_box_, &QPushButton::clicked, this, [this] {
    ShowMessage(this, kDemoMessage, "Tarve", kOkOnly, chk_special_msg_box_->isChecked());
  });
  return page;
}

void frmOptions::ShowValues() {
  const Settings& v = form_.values;
  chk_log_script_errors_->setChecked(v.log_errors);
  txt_log_file_name_->setText(QString::fromStdString(v.log_file));
  chk_output_to_file_->setChecked(v.output_file);
  txt_output_file_name_->setText(QString::fromStdString(v.out_file));
  chk_override_game_default_font_->setChecked(v.override_game_default_font);
  chk_override_all_fonts_->setChecked(v.override_all_fonts);
  chk_override_effects_->setChecked(v.override_effects);
  txt_label_foreground_->setText(QString::fromStdString(v.label_foreground_colour));
  txt_label_background_->setText(QString::fromStdString(v.label_background_colour));
  // A level the settings do not define leaves every choice off.
  security_group_->setExclusive(false);
  for (QAbstractButton* option : security_group_->buttons()) option->setChecked(false);
  security_group_->setExclusive(true);
  if (QAbstractButton* level = security_group_->button(v.security_type)) level->setChecked(true);
  chk_custom_security_is_disallow_->setChecked(v.custom_security_is_disallow);
  chk_zero_security_installed_games_->setChecked(v.zero_security_installed_games);
  chk_special_msg_box_->setChecked(v.special_msg_box);
  chk_auto_install_->setChecked(v.auto_install);
  chk_detailed_look_->setChecked(v.detailed_look);
  UpdateFontSample();
  UpdateLabelSample();
  UpdateEnabled();
}

int frmOptions::CurrentPage() const { return pages_->currentIndex(); }

void frmOptions::ShowPage(int page) {
  pages_->setCurrentIndex(page);
  if (QAbstractButton* button = pages_group_->button(page)) button->setChecked(true);
}

QFont frmOptions::ChosenFont() const {
  const Settings& v = form_.values;
  QFont font(QString::fromStdString(v.default_font_name));
  // A size the settings could not read (0) leaves the toolkit's size.
  if (v.default_font_size > 0) font.setPointSizeF(v.default_font_size);
  font.setBold(v.default_font_bold);
  font.setItalic(v.default_font_italic);
  return font;
}

void frmOptions::UpdateFontSample() {
  const Settings& v = form_.values;
  QString text = QString::fromStdString(v.default_font_name) + QStringLiteral(", ") +
                 QString::fromStdString(FormatSingle(v.default_font_size)) + QStringLiteral(" pt");
  if (v.default_font_bold) text += tr(", bold");
  if (v.default_font_italic) text += tr(", italic");
  lbl_font_sample_->setText(text);
  lbl_font_sample_->setFont(ChosenFont());
}

void frmOptions::SetFont() {
  QFontDialog dialog(ChosenFont(), this);
  dialog.setWindowTitle(tr("Default Font"));
  if (dialog.exec() != QDialog::Accepted) return;
  const QFont chosen = dialog.selectedFont();
  Settings& v = form_.values;
  v.default_font_name = chosen.family().toStdString();
  if (chosen.pointSizeF() > 0) v.default_font_size = static_cast<float>(chosen.pointSizeF());
  v.default_font_bold = chosen.bold();
  v.default_font_italic = chosen.italic();
  UpdateFontSample();
}

void frmOptions::UpdateLabelSample() {
  const QString text = txt_label_foreground_->text();
  const QString back = txt_label_background_->text();
  // Until a box holds a whole colour the sample keeps the colour the settings have.
  QPalette colours = lbl_label_sample_->palette();
  colours.setColor(QPalette::WindowText,
                   ColourOf(OptionsForm::IsColour(text.toStdString())
                                ? text
                                : QString::fromStdString(settings_.label_foreground_colour)));
  colours.setColor(QPalette::Window,
                   ColourOf(OptionsForm::IsColour(back.toStdString())
                                ? back
                                : QString::fromStdString(settings_.label_background_colour)));
  lbl_label_sample_->setPalette(colours);
}

void frmOptions::UpdateEnabled() {
  txt_log_file_name_->setEnabled(chk_log_script_errors_->isChecked());
  txt_output_file_name_->setEnabled(chk_output_to_file_->isChecked());
  const bool custom = opt_adv_exts_->isChecked();
  but_edit_shell_exts_->setEnabled(custom);
  chk_custom_security_is_disallow_->setEnabled(custom);
}

void frmOptions::EditShellExts() {
  frmAdvancedSecurity editor(form_.values.custom_security, this);
  if (std::optional<std::vector<std::string>> list = editor.Run()) {
    form_.values.custom_security = std::move(*list);
  }
}

void frmOptions::Confirm() {
  Settings& v = form_.values;
  v.log_errors = chk_log_script_errors_->isChecked();
  v.log_file = txt_log_file_name_->text().toStdString();
  v.output_file = chk_output_to_file_->isChecked();
  v.out_file = txt_output_file_name_->text().toStdString();
  // With no level chosen the form keeps the level it was opened with.
  if (security_group_->checkedId() > 0) v.security_type = security_group_->checkedId();
  v.override_game_default_font = chk_override_game_default_font_->isChecked();
  v.override_all_fonts = chk_override_all_fonts_->isChecked();
  v.override_effects = chk_override_effects_->isChecked();
  v.label_foreground_colour = txt_label_foreground_->text().toStdString();
  v.label_background_colour = txt_label_background_->text().toStdString();
  v.custom_security_is_disallow = chk_custom_security_is_disallow_->isChecked();
  v.zero_security_installed_games = chk_zero_security_installed_games_->isChecked();
  v.special_msg_box = chk_special_msg_box_->isChecked();
  v.auto_install = chk_auto_install_->isChecked();
  v.detailed_look = chk_detailed_look_->isChecked();

  form_.Confirm(settings_, store_);
  // The boxes show what was stored: a default file, a colour put back.
  txt_log_file_name_->setText(QString::fromStdString(v.log_file));
  txt_output_file_name_->setText(QString::fromStdString(v.out_file));
  txt_label_foreground_->setText(QString::fromStdString(v.label_foreground_colour));
  txt_label_background_->setText(QString::fromStdString(v.label_background_colour));
  accept();
}

}  // namespace tarve
