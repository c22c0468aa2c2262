#include "player/windows/RichOutputPane.h"

#include <QBrush>
#include <QPalette>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFragment>
#include <QWheelEvent>
#include <algorithm>
#include <vector>

namespace tarve {

namespace {

// Where a piece of text keeps the size the game chose, so that zooming can always go back to it
// without rounding errors building up.
constexpr int kGameSizeProperty = QTextFormat::UserProperty + 1;

// At most this much new text waits to be read out; a turn that prints more is read from the
// last of it.
constexpr qsizetype kMaxAddedCharacters = 64 * 1024;

}  // namespace

RichOutputPane::RichOutputPane(QWidget* parent, int max_paragraphs, int max_characters)
    : QTextEdit(parent),
      max_paragraphs_(std::max(max_paragraphs, 1)),
      max_characters_(std::max(max_characters, 2)) {
  setObjectName(QStringLiteral("txtOutput"));
  setAccessibleName(tr("Game text"));
  setReadOnly(true);
  // The player can select and copy text, and a keyboard (or a screen reader) can move through it
  // with a caret.
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  // Nothing is ever undone in the pane: keeping the edits would only hold memory.
  setUndoRedoEnabled(false);
  // Games choose their colours for a white page; a dark desktop theme must not make black text
  // unreadable.
  QPalette colours = palette();
  colours.setColor(QPalette::Base, Qt::white);
  colours.setColor(QPalette::Text, Qt::black);
  setPalette(colours);

  cursor_ = QTextCursor(document());
  format_.setForeground(QBrush(Qt::black));

  flush_timer_.setSingleShot(true);
  flush_timer_.setInterval(0);
  connect(&flush_timer_, &QTimer::timeout, this, &RichOutputPane::FlushAdded);
}

void RichOutputPane::InsertText(std::string_view text) {
  if (text.empty()) return;
  const QString shown = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  BeginBatch();
  qsizetype run_start = 0;
  for (qsizetype i = 0; i < shown.size(); ++i) {
    const QChar c = shown[i];
    if (c != QChar(u'\r') && c != QChar(u'\n')) continue;
    AppendRun(shown.mid(run_start, i - run_start));
    NewParagraph();
    // "\r\n" is one line end.
    if (c == QChar(u'\r') && i + 1 < shown.size() && shown[i + 1] == QChar(u'\n')) ++i;
    run_start = i + 1;
  }
  AppendRun(shown.mid(run_start));
  // Cut back only at twice the bound, so a long turn does not copy the text on every line.
  if (added_.size() > 2 * kMaxAddedCharacters) added_ = added_.right(kMaxAddedCharacters);
  TrimToBound();
  if (!flush_timer_.isActive()) flush_timer_.start();
}

void RichOutputPane::AppendRun(const QString& run) {
  if (run.isEmpty()) return;
  cursor_.insertText(run, format_);
  added_ += run;
}

void RichOutputPane::NewParagraph() {
  QTextBlockFormat paragraph;
  paragraph.setAlignment(alignment_);
  cursor_.insertBlock(paragraph, format_);
  added_ += QChar(u'\n');
}

void RichOutputPane::SetBold(bool on) { format_.setFontWeight(on ? QFont::Bold : QFont::Normal); }

void RichOutputPane::SetItalic(bool on) { format_.setFontItalic(on); }

void RichOutputPane::SetUnderline(bool on) { format_.setFontUnderline(on); }

void RichOutputPane::SetColour(const QColor& colour) { format_.setForeground(QBrush(colour)); }

void RichOutputPane::SetFontName(const QString& name) { format_.setFontFamilies({name}); }

void RichOutputPane::SetFontSize(double points) {
  if (points <= 0) return;
  points_ = points;
  format_.setProperty(kGameSizeProperty, points);
  format_.setFontPointSize(ZoomedSize(points));
}

void RichOutputPane::SetAlignment(Qt::Alignment alignment) {
  alignment_ = alignment;
  QTextBlockFormat paragraph;
  paragraph.setAlignment(alignment);
  cursor_.mergeBlockFormat(paragraph);
}

void RichOutputPane::ClearOutput() {
  EndBatch();
  document()->clear();
  cursor_ = QTextCursor(document());
  QTextBlockFormat paragraph;
  paragraph.setAlignment(alignment_);
  cursor_.setBlockFormat(paragraph);
  cursor_.setBlockCharFormat(format_);
  // What was printed before the clear was never seen: it is not read out either.
  added_.clear();
}

void RichOutputPane::RepaintNow() {
  EndBatch();
  ScrollToEnd();
  viewport()->repaint();
}

QTextCharFormat RichOutputPane::CurrentFormat() const {
  QTextCharFormat format = format_;
  if (points_ > 0) format.setFontPointSize(points_);
  format.clearProperty(kGameSizeProperty);
  return format;
}

double RichOutputPane::ZoomedSize(double points) const {
  return std::max(points * (1.0 + 0.1 * zoom_), 0.5);
}

void RichOutputPane::SetZoom(int steps) {
  steps = std::clamp(steps, kMinZoom, kMaxZoom);
  if (steps == zoom_) return;
  EndBatch();
  zoom_ = steps;
  if (points_ > 0) format_.setFontPointSize(ZoomedSize(points_));

  // The pieces are found first and changed afterwards: changing a piece's format can merge it
  // with its neighbours under a running iteration.
  struct Piece {
    int position;
    int length;
    double points;
  };
  std::vector<Piece> pieces;
  std::vector<std::pair<int, double>> paragraphs;  // empty lines take their height from these
  QTextDocument* doc = document();
  for (QTextBlock block = doc->begin(); block.isValid(); block = block.next()) {
    const QVariant paragraph_size = block.charFormat().property(kGameSizeProperty);
    if (paragraph_size.isValid())
      paragraphs.emplace_back(block.position(), paragraph_size.toDouble());
    for (QTextBlock::iterator it = block.begin(); !it.atEnd(); ++it) {
      const QTextFragment fragment = it.fragment();
      if (!fragment.isValid()) continue;
      const QVariant size = fragment.charFormat().property(kGameSizeProperty);
      if (size.isValid())
        pieces.push_back({fragment.position(), fragment.length(), size.toDouble()});
    }
  }
  QTextCursor cursor(doc);
  cursor.beginEditBlock();
  for (const Piece& piece : pieces) {
    cursor.setPosition(piece.position);
    cursor.setPosition(piece.position + piece.length, QTextCursor::KeepAnchor);
    QTextCharFormat size;
    size.setFontPointSize(ZoomedSize(piece.points));
    cursor.mergeCharFormat(size);
  }
  for (const auto& [position, points] : paragraphs) {
    cursor.setPosition(position);
    QTextCharFormat format = cursor.blockCharFormat();
    format.setFontPointSize(ZoomedSize(points));
    cursor.setBlockCharFormat(format);
  }
  cursor.endEditBlock();
  cursor_.movePosition(QTextCursor::End);
  ScrollToEnd();
  emit zoomChanged(zoom_);
}

void RichOutputPane::wheelEvent(QWheelEvent* event) {
  // Ctrl and the wheel zoom as Ctrl+Plus and Ctrl+Minus do; the toolkit's own zoom would leave
  // every size the game set unchanged.
  if ((event->modifiers() & Qt::ControlModifier) != 0) {
    const int delta = event->angleDelta().y();
    if (delta != 0) SetZoom(zoom_ + (delta > 0 ? 1 : -1));
    event->accept();
    return;
  }
  QTextEdit::wheelEvent(event);
}

bool RichOutputPane::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::Paint) EndBatch();
  return QTextEdit::viewportEvent(event);
}

void RichOutputPane::BeginBatch() {
  if (batch_open_) return;
  cursor_.beginEditBlock();
  batch_open_ = true;
}

void RichOutputPane::EndBatch() {
  if (!batch_open_) return;
  batch_open_ = false;
  cursor_.endEditBlock();
}

void RichOutputPane::TrimToBound() {
  QTextDocument* doc = document();
  const int paragraphs = doc->blockCount();
  const int characters = doc->characterCount();
  // Nothing goes until the pane holds twice a bound; then the oldest text goes in one edit down
  // to the bound. Each trim costs a layout of all that is kept, so it must be rare.
  if (paragraphs / 2 <= max_paragraphs_ && characters / 2 <= max_characters_) return;
  int cut = 0;
  if (paragraphs > max_paragraphs_) {
    cut = doc->findBlockByNumber(paragraphs - max_paragraphs_).position();
  }
  if (characters - cut > max_characters_) {
    // Whole paragraphs go where they can; one paragraph longer than the bound loses its start.
    const int first_kept = characters - max_characters_;
    const QTextBlock holder = doc->findBlock(first_kept);
    cut = holder.position() == first_kept || !holder.next().isValid() ? first_kept
                                                                      : holder.next().position();
  }
  if (cut <= 0) return;
  // A character outside the basic plane is never cut in two.
  if (doc->characterAt(cut).isLowSurrogate()) ++cut;
  const QTextBlock first = doc->findBlock(cut);
  const QTextBlockFormat first_paragraph = first.blockFormat();
  QTextCursor cursor(doc);
  cursor.setPosition(cut, QTextCursor::KeepAnchor);
  cursor.removeSelectedText();
  // The first kept line keeps its own alignment, not that of the removed line it was joined to.
  cursor.setBlockFormat(first_paragraph);
}

void RichOutputPane::ScrollToEnd() {
  QScrollBar* bar = verticalScrollBar();
  bar->setValue(bar->maximum());
}

void RichOutputPane::FlushAdded() {
  EndBatch();
  ScrollToEnd();
  if (added_.isEmpty()) return;
  QString text;
  text.swap(added_);
  emit textAdded(text);
}

}  // namespace tarve
