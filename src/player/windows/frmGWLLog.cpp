#include "player/windows/frmGWLLog.h"

#include <QFontDatabase>
#include <QHideEvent>
#include <QPlainTextEdit>
#include <QShowEvent>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QVBoxLayout>
#include <algorithm>

#include "player/windows/WindowText.h"

namespace tarve {

namespace {

// The window opens wide enough for a typical message and a screenful of them.
constexpr int kInitialColumns = 80;
constexpr int kInitialLines = 20;

}  // namespace

frmGWLLog::frmGWLLog(QWidget* parent, int max_characters)
    : QWidget(parent, Qt::Window),
      txt_log_(new QPlainTextEdit(this)),
      max_characters_(std::max(max_characters, 2)) {
  setObjectName(QStringLiteral("frmGWLLog"));
  txt_log_->setObjectName(QStringLiteral("txtLog"));
  setWindowTitle(tr("Script log"));
  setAccessibleName(windowTitle());
  txt_log_->setAccessibleName(windowTitle());

  txt_log_->setReadOnly(true);
  txt_log_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  // Messages quote script lines, whose columns line up only in a fixed-width face.
  txt_log_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  // A message is one line; wrapping would hide where one ends and the next begins.
  txt_log_->setLineWrapMode(QPlainTextEdit::NoWrap);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(txt_log_);

  const QFontMetrics metrics(txt_log_->font());
  resize(kInitialColumns * metrics.averageCharWidth(), kInitialLines * metrics.lineSpacing());
}

void frmGWLLog::AppendMessage(const std::string& message) {
  QString shown = ToDisplayText(message);
  // A message longer than half the bound would push out everything else at once.
  if (shown.size() > max_characters_ / 2) shown.truncate(max_characters_ / 2);
  // A new paragraph at the end: the earlier text is neither copied nor laid out again, and the
  // view follows the newest line only when it was already at the end.
  txt_log_->appendPlainText(shown);
  TrimToBound();
}

void frmGWLLog::SetText(const std::string& text) {
  QString shown = ToDisplayText(text);
  // Each message ends in a line end; the last would leave an empty line that the next message
  // would be written after.
  if (shown.endsWith(QChar(u'\n'))) shown.chop(1);
  if (shown.size() >= max_characters_) {
    // The newest messages that fit, from the start of a message on.
    const qsizetype start = shown.indexOf(QChar(u'\n'), shown.size() - max_characters_ + 1);
    shown = start < 0 ? shown.right(max_characters_ / 2) : shown.mid(start + 1);
  }
  txt_log_->setPlainText(shown);
  TrimToBound();
  txt_log_->moveCursor(QTextCursor::End);
}

std::string frmGWLLog::Text() const { return txt_log_->toPlainText().toStdString(); }

void frmGWLLog::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  // A window that the desktop minimises or restores is still open as far as the menu goes.
  if (!event->spontaneous()) emit visibilityChanged(true);
}

void frmGWLLog::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  if (!event->spontaneous()) emit visibilityChanged(false);
}

void frmGWLLog::TrimToBound() {
  QTextDocument* document = txt_log_->document();
  if (document->characterCount() <= max_characters_) return;
  // The older half goes at once, up to the start of a message, so that trimming happens seldom
  // and a message is never cut in the middle.
  QTextBlock keep = document->findBlock(document->characterCount() - max_characters_ / 2);
  if (keep.position() == 0) keep = keep.next();
  if (!keep.isValid()) return;
  QTextCursor cursor(document);
  cursor.setPosition(keep.position(), QTextCursor::KeepAnchor);
  cursor.removeSelectedText();
}

}  // namespace tarve
