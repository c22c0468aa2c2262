// frmGWLLog: the script log window, one read-only text box with every warning and error of the
// run, newest last. Closing it only hides it; the game window's menu follows its visibility.
#pragma once

#include <QWidget>
#include <string>

class QPlainTextEdit;

namespace tarve {

class frmGWLLog : public QWidget {
  Q_OBJECT

 public:
  // The window keeps at most this many characters, the newest; the engine keeps the same amount
  // of the run's log for reopening the window.
  static constexpr int kMaxCharacters = 4 << 20;

  // `max_characters` other than kMaxCharacters is for tests of the bound.
  explicit frmGWLLog(QWidget* parent = nullptr, int max_characters = kMaxCharacters);

  // Adds one message as the newest line without laying out the earlier ones again.
  void AppendMessage(const std::string& message);
  // Replaces the whole text, e.g. with the engine's log of the run (messages each ending in a line
  // end).
  void SetText(const std::string& text);
  // What the window shows, lines ending in "\n".
  std::string Text() const;

  QPlainTextEdit* txtLog() const { return txt_log_; }

 signals:
  // The window was shown or hidden (by its close box too), for the check mark of the menu item.
  void visibilityChanged(bool visible);

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void TrimToBound();

  QPlainTextEdit* txt_log_;
  int max_characters_;
};

}  // namespace tarve
