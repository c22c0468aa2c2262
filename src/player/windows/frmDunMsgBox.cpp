#include "player/windows/frmDunMsgBox.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPalette>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QTextDocument>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "player/windows/MessageBoxes.h"
#include "player/windows/WindowText.h"

namespace tarve {

namespace {

// Answers recorded by the two buttons, before the style turns them into answer codes.
constexpr int kButOK = 1;
constexpr int kButCancel = 2;

// The text box grows with the message up to these many average characters and lines; a longer
// message scrolls.
constexpr int kMinColumns = 30;
constexpr int kMaxColumns = 60;
constexpr int kMaxLines = 15;

}  // namespace

frmDunMsgBox::frmDunMsgBox(QWidget* parent)
    : QDialog(parent),
      lbl_icon_(new QLabel(this)),
      txt_message_(new QPlainTextEdit(this)),
      but_ok_(new QPushButton(tr("OK"), this)),
      but_cancel_(new QPushButton(tr("Cancel"), this)) {
  setObjectName(QStringLiteral("frmDunMsgBox"));
  lbl_icon_->setObjectName(QStringLiteral("lblIcon"));
  txt_message_->setObjectName(QStringLiteral("txtMessage"));
  but_ok_->setObjectName(QStringLiteral("butOK"));
  but_cancel_->setObjectName(QStringLiteral("butCancel"));

  lbl_icon_->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
  lbl_icon_->hide();

  // The message reads like a label but stays a text box, so that a keyboard user can tab into it,
  // scroll a long message and copy from it.
  txt_message_->setReadOnly(true);
  txt_message_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  txt_message_->setFrameShape(QFrame::NoFrame);
  QPalette palette = txt_message_->palette();
  palette.setColor(QPalette::Base, palette.color(QPalette::Window));
  txt_message_->setPalette(palette);
  txt_message_->setAccessibleName(tr("Message"));

  but_ok_->setDefault(true);

  auto* message_row = new QHBoxLayout;
  message_row->addWidget(lbl_icon_);
  message_row->addWidget(txt_message_, 1);
  auto* button_row = new QHBoxLayout;
  // Stretch on both sides: the buttons sit in the middle, and OK alone is centred.
  button_row->addStretch(1);
  button_row->addWidget(but_ok_);
  button_row->addWidget(but_cancel_);
  button_row->addStretch(1);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(message_row, 1);
  layout->addLayout(button_row);

  setTabOrder(but_ok_, but_cancel_);
  setTabOrder(but_cancel_, txt_message_);

  connect(but_ok_, &QPushButton::clicked, this, [this] { Finish(kButOK); });
  connect(but_cancel_, &QPushButton::clicked, this, [this] { Finish(kButCancel); });
}

void frmDunMsgBox::SetMessage(const std::string& text, const std::string& title, int style) {
  style_ = style;
  const QString shown = ToDisplayText(text);
  setWindowTitle(QString::fromStdString(title));
  setAccessibleName(windowTitle());
  setAccessibleDescription(shown);
  txt_message_->setPlainText(shown);
  FitTextBox(shown);

  switch (message_box::ButtonsOf(style)) {
    case kYesNo:
      // The underlined letters show the Y and N keys.
      but_ok_->setText(tr("&Yes"));
      but_cancel_->setText(tr("&No"));
      but_cancel_->show();
      break;
    case kOkCancel:
      but_ok_->setText(tr("OK"));
      but_cancel_->setText(tr("Cancel"));
      but_cancel_->show();
      break;
    default:
      but_ok_->setText(tr("OK"));
      but_cancel_->hide();
      break;
  }
  but_ok_->setAccessibleName(QString(but_ok_->text()).remove(QChar(u'&')));
  but_cancel_->setAccessibleName(QString(but_cancel_->text()).remove(QChar(u'&')));

  QStyle::StandardPixmap icon = QStyle::SP_MessageBoxWarning;
  QString icon_name;
  switch (style & message_box::kIconMask) {
    case message_box::kCritical:
      icon = QStyle::SP_MessageBoxCritical;
      icon_name = tr("Error");
      break;
    case message_box::kQuestion:
      icon = QStyle::SP_MessageBoxQuestion;
      icon_name = tr("Question");
      break;
    case kExclamation:
      icon = QStyle::SP_MessageBoxWarning;
      icon_name = tr("Warning");
      break;
    case message_box::kInformation:
      icon = QStyle::SP_MessageBoxInformation;
      icon_name = tr("Information");
      break;
    default:
      break;
  }
  if (icon_name.isEmpty()) {
    lbl_icon_->hide();
  } else {
    const int extent = QWidget::style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    // The icon is drawn for the screen's pixel ratio, so it stays sharp on high-density screens.
    lbl_icon_->setPixmap(
        QWidget::style()->standardIcon(icon, nullptr, this).pixmap(extent, extent));
    lbl_icon_->setAccessibleName(icon_name);
    lbl_icon_->show();
  }
  // As small as the message allows: the text box's own preferred size is that of an editor.
  resize(minimumSizeHint());
}

int frmDunMsgBox::Run() {
  answer_ = kButOK;
  but_ok_->setFocus();
  exec();
  const bool ok = answer_ == kButOK;
  if (message_box::ButtonsOf(style_) == kYesNo) {
    return ok ? kAnswerYes : kAnswerNo;
  }
  return ok ? kAnswerOk : kAnswerCancel;
}

void frmDunMsgBox::reject() { Finish(but_cancel_->isHidden() ? kButOK : kButCancel); }

void frmDunMsgBox::keyPressEvent(QKeyEvent* event) {
  // Y and N answer without a modifier, as the letters of the answers; with Alt they reach the
  // buttons' own mnemonics.
  const bool plain =
      (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == 0;
  if (plain && event->key() == Qt::Key_Y) {
    but_ok_->click();
    return;
  }
  if (plain && event->key() == Qt::Key_N && !but_cancel_->isHidden()) {
    but_cancel_->click();
    return;
  }
  QDialog::keyPressEvent(event);
}

void frmDunMsgBox::Finish(int answer) {
  answer_ = answer;
  done(answer);
}

void frmDunMsgBox::FitTextBox(const QString& text) {
  // Laid out once off screen with the text box's font and margins, to learn the size the text
  // needs when it wraps at the widest allowed line.
  const QFontMetrics metrics(txt_message_->font());
  const int column = metrics.averageCharWidth();
  QTextDocument measure;
  measure.setDefaultFont(txt_message_->font());
  measure.setDocumentMargin(txt_message_->document()->documentMargin());
  measure.setPlainText(text);
  measure.setTextWidth(kMaxColumns * column);
  const int width = std::clamp(static_cast<int>(std::ceil(measure.idealWidth())),
                               kMinColumns * column, kMaxColumns * column);
  measure.setTextWidth(width);
  const int height =
      std::min(static_cast<int>(std::ceil(measure.size().height())),
               kMaxLines * metrics.lineSpacing() + 2 * static_cast<int>(measure.documentMargin()));
  // Room for a scroll bar as well: one that shows while the window is still being laid out would
  // otherwise narrow the text, wrap it onto another line and so never go away again.
  const int scroll_bar = txt_message_->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  const int frame = 2 * txt_message_->frameWidth();
  txt_message_->setMinimumSize(width + frame + scroll_bar, height + frame + column / 2);
}

}  // namespace tarve
