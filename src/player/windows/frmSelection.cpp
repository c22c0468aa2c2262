#include "player/windows/frmSelection.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QStyleOptionViewItem>
#include <QVBoxLayout>
#include <algorithm>

#include "player/windows/WindowText.h"

namespace tarve {

namespace {

// The list is as wide as its longest answer within these many average characters; a longer
// answer wraps.
constexpr int kMinColumns = 30;
constexpr int kMaxColumns = 60;

}  // namespace

frmSelection::frmSelection(QWidget* parent)
    : QDialog(parent),
      lbl_prompt_(new QLabel(this)),
      lst_answers_(new QListWidget(this)),
      but_ok_(new QPushButton(tr("OK"), this)) {
  setObjectName(QStringLiteral("frmSelection"));
  lbl_prompt_->setObjectName(QStringLiteral("lblPrompt"));
  lst_answers_->setObjectName(QStringLiteral("lstAnswers"));
  but_ok_->setObjectName(QStringLiteral("butOK"));
  setWindowTitle(QStringLiteral("Tarve"));
  setAccessibleName(windowTitle());
  lst_answers_->setAccessibleName(tr("Answers"));
  but_ok_->setAccessibleName(but_ok_->text());

  // The prompt is the game's text, shown as written, never as markup.
  lbl_prompt_->setTextFormat(Qt::PlainText);
  lbl_prompt_->setWordWrap(true);
  lst_answers_->setSelectionMode(QAbstractItemView::SingleSelection);
  lst_answers_->setWordWrap(true);
  lst_answers_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  // Enter in the list reaches the dialog and presses OK, the default button.
  but_ok_->setDefault(true);

  auto* button_row = new QHBoxLayout;
  button_row->addStretch(1);
  button_row->addWidget(but_ok_);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lbl_prompt_);
  layout->addWidget(lst_answers_, 1);
  layout->addLayout(button_row);

  connect(but_ok_, &QPushButton::clicked, this, [this] {
    picked_ = lst_answers_->currentRow();
    accept();
  });
  // A double click confirms the answer it lands on. (Not `activated`: on desktops that activate on
  // a single click, one click would confirm before the player could look again.)
  connect(lst_answers_, &QListWidget::itemDoubleClicked, but_ok_, &QPushButton::click);
}

void frmSelection::SetChoices(const std::string& prompt, const std::vector<std::string>& answers) {
  const QString shown_prompt = ToDisplayText(prompt);
  lbl_prompt_->setText(shown_prompt);
  lbl_prompt_->setAccessibleName(shown_prompt);
  lbl_prompt_->setVisible(!shown_prompt.isEmpty());
  lst_answers_->setAccessibleDescription(shown_prompt);

  lst_answers_->clear();
  const std::size_t shown = std::min(answers.size(), static_cast<std::size_t>(kMaxAnswers));
  for (std::size_t i = 0; i < shown; ++i) lst_answers_->addItem(ToDisplayText(answers[i]));
  if (lst_answers_->count() > 0) lst_answers_->setCurrentRow(0);
  but_ok_->setEnabled(lst_answers_->count() > 0);
  FitList();
  // As small as the answers allow: a list's own preferred size is that of a file list.
  resize(minimumSizeHint());
}

int frmSelection::Run() {
  picked_ = -1;
  if (lst_answers_->count() == 0) return -1;
  const QScreen* where =
      parentWidget() != nullptr ? parentWidget()->screen() : QGuiApplication::primaryScreen();
  if (where != nullptr) {
    QRect frame = rect();
    frame.moveCenter(where->availableGeometry().center());
    move(frame.topLeft());
  }
  lst_answers_->setFocus();
  exec();
  return picked_;
}

void frmSelection::FitList() {
  const QFontMetrics metrics(lst_answers_->font());
  const int column = metrics.averageCharWidth();
  int widest = 0;
  for (int row = 0; row < lst_answers_->count(); ++row) {
    widest = std::max(widest, metrics.horizontalAdvance(lst_answers_->item(row)->text()));
  }
  const int frame = 2 * lst_answers_->frameWidth();
  const int width = std::clamp(widest + 2 * column, kMinColumns * column, kMaxColumns * column);
  lst_answers_->setMinimumWidth(width + frame);
  lbl_prompt_->setMinimumWidth(width + frame);

  // Tall enough for every answer, wrapped at that width, without a scroll bar. The list's own
  // row sizes are of no use before it is shown: they wrap at its provisional width.
  QStyleOptionViewItem option;
  option.initFrom(lst_answers_);
  option.font = lst_answers_->font();
  option.fontMetrics = metrics;
  option.features = QStyleOptionViewItem::WrapText;
  option.rect = QRect(0, 0, width, 1);
  int height = 0;
  for (int row = 0; row < lst_answers_->count(); ++row) {
    height += lst_answers_->itemDelegate()
                  ->sizeHint(option, lst_answers_->model()->index(row, 0))
                  .height();
  }
  lst_answers_->setMinimumHeight(height + frame + metrics.lineSpacing() / 2);
}

int ShowSelection(QWidget* parent, const std::string& prompt,
                  const std::vector<std::string>& answers) {
  frmSelection dialog(parent);
  dialog.SetChoices(prompt, answers);
  return dialog.Run();
}

}  // namespace tarve
