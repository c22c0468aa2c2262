#include "player/windows/frmProgress.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>
#include <algorithm>

#include "player/windows/WindowPlacement.h"

namespace tarve {

namespace {

constexpr int kMinColumns = 40;

}  // namespace

frmProgress::frmProgress(QWidget* parent)
    // No close box: opening a game cannot be stopped half-way.
    : QWidget(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      lbl_caption_(new QLabel(this)),
      prg_progress_(new QProgressBar(this)) {
  setObjectName(QStringLiteral("frmProgress"));
  lbl_caption_->setObjectName(QStringLiteral("lblCaption"));
  prg_progress_->setObjectName(QStringLiteral("prgProgress"));
  setWindowTitle(QStringLiteral("Tarve"));
  setAccessibleName(windowTitle());
  prg_progress_->setAccessibleName(tr("Progress"));

  lbl_caption_->setTextFormat(Qt::PlainText);
  prg_progress_->setRange(0, 100);
  prg_progress_->setValue(0);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lbl_caption_);
  layout->addWidget(prg_progress_);
  setMinimumWidth(kMinColumns * fontMetrics().averageCharWidth());
}

void frmProgress::SetCaption(const std::string& caption) {
  lbl_caption_->setText(QString::fromStdString(caption));
  lbl_caption_->setAccessibleName(lbl_caption_->text());
  prg_progress_->setAccessibleDescription(lbl_caption_->text());
}

void frmProgress::SetProgress(int percent) { prg_progress_->setValue(std::clamp(percent, 0, 100)); }

void frmProgress::ShowNow() {
  if (!placed_) {
    adjustSize();
    CentreOnScreen(*this);
    placed_ = true;
  }
  show();
  raise();
  repaint();
  // Only painting: the player's clicks and keys wait until the game is open.
  QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

}  // namespace tarve
