// RichOutputPane: the game window's output pane, the read-only rich text that everything a game
// prints goes to. Text is appended through a cursor kept at the end, with the styles set at that
// point; the oldest paragraphs go once the pane holds more than its bound, and the player can
// zoom the text without changing the sizes the game chose.
#pragma once

#include <QColor>
#include <QString>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextEdit>
#include <QTimer>
#include <string_view>

namespace tarve {

class RichOutputPane : public QTextEdit {
  Q_OBJECT

 public:
  // The pane keeps at least this many of the newest paragraphs and characters, and at most
  // twice as many: once over twice a bound, the oldest text goes in one edit down to the bound.
  // Removing text at the top makes the pane lay out what it keeps again, so trimming must be
  // rare. A paragraph is a printed line; both bounds are needed, since a game can print one
  // endless line with "|xn".
  static constexpr int kMaxParagraphs = 10000;
  static constexpr int kMaxCharacters = 1 << 20;
  // Zoom steps of 10% each, from 50% to 300% of the sizes the game chose.
  static constexpr int kMinZoom = -5;
  static constexpr int kMaxZoom = 20;

  // Other bounds than the defaults are for tests.
  explicit RichOutputPane(QWidget* parent = nullptr, int max_paragraphs = kMaxParagraphs,
                          int max_characters = kMaxCharacters);

  // Appends `text` (UTF-8) with the current styles; "\r\n" (or a lone "\r" or "\n") starts a
  // new paragraph, which keeps the current alignment.
  void InsertText(std::string_view text);
  void SetBold(bool on);
  void SetItalic(bool on);
  void SetUnderline(bool on);
  void SetColour(const QColor& colour);
  void SetFontName(const QString& name);
  // `points` as the game asked for it; the zoom is applied on top.
  void SetFontSize(double points);
  // The alignment of the current paragraph and of the paragraphs after it: Qt::AlignLeft,
  // Qt::AlignHCenter or Qt::AlignRight.
  void SetAlignment(Qt::Alignment alignment);
  // Empties the pane; the styles at the insertion point stay as they were.
  void ClearOutput();
  // Shows the end and paints the pane now, without returning to the event loop.
  void RepaintNow();

  // The styles that text inserted now takes, with the size as the game chose it.
  QTextCharFormat CurrentFormat() const;
  double CurrentFontSize() const { return points_; }

  int zoom() const { return zoom_; }
  // Sets the zoom (kept within kMinZoom to kMaxZoom) and resizes all text shown.
  void SetZoom(int steps);

  // The whole text, paragraphs ending in "\n" (the last one without).
  QString Text() const { return toPlainText(); }

 signals:
  void zoomChanged(int steps);
  // The text added since the event loop last ran, once per batch: what a screen reader or the
  // speech option reads. Text printed and cleared again before the pane was shown is not in it.
  void textAdded(const QString& text);

 protected:
  void wheelEvent(QWheelEvent* event) override;
  bool viewportEvent(QEvent* event) override;

 private:
  double ZoomedSize(double points) const;
  void AppendRun(const QString& run);
  void NewParagraph();
  void TrimToBound();
  void ScrollToEnd();
  void FlushAdded();
  // Text printed in one go (a turn, a long loop of messages) is inserted as one edit, so the
  // pane lays it out once instead of once for every styled piece of it. The edit ends before
  // the pane paints, and as soon as the event loop runs again.
  void BeginBatch();
  void EndBatch();

  QTextCursor cursor_;  // always at the end of the document
  QTextCharFormat format_;
  double points_ = 0;  // the size the game chose; 0 until it chooses one
  Qt::Alignment alignment_ = Qt::AlignLeft;
  int zoom_ = 0;
  int max_paragraphs_;
  int max_characters_;
  bool batch_open_ = false;
  QString added_;  // new text not yet announced
  QTimer flush_timer_;
};

}  // namespace tarve
