#include "desktop/DesktopHost.h"

#include <QApplication>
#include <QColor>
#include <QCoreApplication>
#include <QEventLoop>
#include <QFileDialog>
#include <QInputDialog>
#include <QPushButton>

#include "game/Game.h"
#include "player/Player.h"
#include "player/windows/MessageBoxes.h"
#include "player/windows/RichOutputPane.h"
#include "player/windows/frmGWLLog.h"
#include "player/windows/frmMain.h"
#include "player/windows/frmNewGame.h"
#include "player/windows/frmOptions.h"
#include "player/windows/frmProgress.h"
#include "player/windows/frmSelection.h"
#include "player/windows/frmSplash.h"

namespace tarve {

DesktopHost::DesktopHost() : main_(std::make_unique<frmMain>()) {}

DesktopHost::~DesktopHost() {
  main_->Detach();
  if (busy_) QApplication::restoreOverrideCursor();
}

void DesktopHost::Attach(Player& player) {
  player_ = &player;
  main_->Attach(player);
}

void DesktopHost::Detach() {
  player_ = nullptr;
  main_->Detach();
}

void DesktopHost::InsertText(std::string_view text) { main_->txtOutput()->InsertText(text); }
void DesktopHost::SetBold(bool on) { main_->txtOutput()->SetBold(on); }
void DesktopHost::SetItalic(bool on) { main_->txtOutput()->SetItalic(on); }
void DesktopHost::SetUnderline(bool on) { main_->txtOutput()->SetUnderline(on); }
void DesktopHost::SetColour(Rgb colour) {
  main_->txtOutput()->SetColour(QColor(colour.r, colour.g, colour.b));
}
void DesktopHost::SetFontName(const std::string& name) {
  main_->txtOutput()->SetFontName(QString::fromStdString(name));
}
void DesktopHost::SetFontSize(float size) { main_->txtOutput()->SetFontSize(size); }
void DesktopHost::SetAlignment(Alignment alignment) {
  switch (alignment) {
    case Alignment::kCentre:
      main_->txtOutput()->SetAlignment(Qt::AlignHCenter);
      return;
    case Alignment::kRight:
      main_->txtOutput()->SetAlignment(Qt::AlignRight);
      return;
    case Alignment::kLeft:
      break;
  }
  main_->txtOutput()->SetAlignment(Qt::AlignLeft);
}
void DesktopHost::ClearOutput() { main_->txtOutput()->ClearOutput(); }
void DesktopHost::Repaint() { main_->txtOutput()->RepaintNow(); }

QWidget* DesktopHost::DialogParent() const { return main_->isVisible() ? main_.get() : nullptr; }

int DesktopHost::ShowMessage(const std::string& text, const std::string& title, int style) {
  // Before the settings are read the player's default (the program's own box) holds.
  const bool special = player_ == nullptr || player_->game().settings.special_msg_box;
  return tarve::ShowMessage(DialogParent(), text, title, style, special);
}

std::optional<std::string> DesktopHost::InputBox(const std::string& title,
                                                 const std::string& prompt) {
  QInputDialog dialog(DialogParent());
  dialog.setWindowTitle(QString::fromStdString(title));
  dialog.setLabelText(QString::fromStdString(prompt));
  dialog.setInputMode(QInputDialog::TextInput);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.textValue().toStdString();
}

int DesktopHost::ShowSelection(const std::string& prompt, const std::vector<std::string>& answers) {
  return tarve::ShowSelection(DialogParent(), prompt, answers);
}

std::optional<std::string> DesktopHost::ChooseSavedGameFile(bool save) {
  // The dialog opens where the saved game last used lies, else beside the game.
  QString folder;
  if (player_ != nullptr) {
    const Game& game = player_->game();
    folder = QString::fromStdString(game.run.current_saved_game_path.empty()
                                        ? game.game_path
                                        : game.run.current_saved_game_path);
  }
  QFileDialog dialog(DialogParent(),
                     save ? QObject::tr("Save the game as") : QObject::tr("Load a saved game"),
                     folder, QString::fromUtf8(kSavedGameFilter));
  dialog.setObjectName(save ? QStringLiteral("dlgSaveAs") : QStringLiteral("dlgLoad"));
  dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return dialog.selectedFiles().constFirst().toStdString();
}

void DesktopHost::ShowProgress(const std::string& caption, int percent) {
  if (!progress_) progress_ = std::make_unique<frmProgress>();
  progress_->SetCaption(caption);
  progress_->SetProgress(percent);
  if (!progress_->isVisible()) progress_->ShowNow();
}

void DesktopHost::CloseProgress() {
  if (progress_) progress_->hide();
}

void DesktopHost::ShowSplash() {
  splash_ = std::make_unique<frmSplash>(std::string("Version ") + kPlayerVersion);
  splash_->ShowNow();
}

void DesktopHost::CloseSplash() { splash_.reset(); }

void DesktopHost::ShowLauncher() {
  if (player_ == nullptr || ending_) return;
  if (!launcher_) {
    launcher_ = std::make_unique<frmNewGame>(player_->game(), player_->settings_store());
    // A game or saved game that opens takes the launcher's place; one that does not has had
    // its message, and the player picks again.
    QObject::connect(launcher_.get(), &frmNewGame::playGame, [this](const QString& path) {
      if (player_ != nullptr && player_->OpenGame(path.toStdString())) launcher_->hide();
    });
    QObject::connect(launcher_.get(), &frmNewGame::loadSavedGame, [this](const QString& path) {
      if (player_ != nullptr && player_->LoadSavedGame(path.toStdString())) launcher_->hide();
    });
    QObject::connect(launcher_.get(), &frmNewGame::optionsRequested, [this] {
      if (player_ == nullptr) return;
      frmOptions options(player_->game().settings, player_->settings_store(), launcher_.get());
      options.exec();
    });
    QObject::connect(launcher_.get(), &frmNewGame::exitRequested, [this] { EndProgram(); });
  } else {
    launcher_->DisplayInstalledGames();
  }
  // Start-up does not wait for the launcher: it shows, and the program's event loop runs it.
  launcher_->show();
  launcher_->raise();
  launcher_->activateWindow();
  // Enter plays the first installed game: the keyboard starts where the games are.
  if (QPushButton* first = launcher_->butInstalledGame(0); first != nullptr && first->isVisible()) {
    first->setFocus();
  }
}

void DesktopHost::EndProgram() {
  ending_ = true;
  QCoreApplication::quit();
}

void DesktopHost::SetCaption(const std::string& caption) {
  // The caption is set as soon as a game's text has been read: from here on the game prints,
  // and may wait for the player, so its window shows.
  main_->SetCaption(caption);
  main_->GameOpened();
  if (!main_->isVisible()) {
    main_->show();
    main_->raise();
    main_->activateWindow();
  }
}

void DesktopHost::SetLocation(const std::string& location) { main_->SetLocation(location); }
void DesktopHost::SetStatusText(const std::string& text) { main_->SetStatusText(text); }
void DesktopHost::SetDirections(const std::string& letters) { main_->SetDirections(letters); }
void DesktopHost::SetThingsHere(const std::vector<ListedThing>& things) {
  main_->SetThingsHere(things);
}
void DesktopHost::SetItems(const std::string& display_text) { main_->SetItems(display_text); }
void DesktopHost::SetCollectables(const std::vector<std::string>& lines) {
  main_->SetCollectables(lines);
}
void DesktopHost::EnableGameControls(bool on) { main_->EnableGameControls(on); }
void DesktopHost::ShowDebugMenu(bool shown) { main_->ShowDebugMenu(shown); }
void DesktopHost::GameOver() { main_->GameOver(); }
void DesktopHost::ClearCommandBox() { main_->ClearCommandBox(); }
void DesktopHost::FocusCommandBox() { main_->FocusCommandBox(); }

void DesktopHost::SetBusy(bool on) {
  if (on == busy_) return;
  busy_ = on;
  if (on) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QApplication::restoreOverrideCursor();
  }
}

void DesktopHost::CloseGame(bool end_program) {
  main_->hide();
  if (main_->LogWindow() != nullptr) main_->LogWindow()->hide();
  main_->GameClosed();
  if (end_program) {
    EndProgram();
  } else {
    // Back to the launcher once the menu or the close box that got here has returned.
    ShowLauncher();
  }
}

void DesktopHost::ScriptLogAppended(std::string_view message) { main_->AppendLogMessage(message); }

void DesktopHost::VariableViewerRow(int store, int rows, int row, const std::string& name,
                                    const std::string& value) {
  main_->SetViewerRow(store, rows, row, name, value);
}

void DesktopHost::ProcessEventsUntil(const std::function<bool()>& done) {
  // The wait goes on while the game's window can still take a key or a line: once the player
  // has left the game (or the program is ending) nothing could end it.
  main_->UpdateControls();
  const auto can_wait = [this] { return !ending_ && main_->game_shown() && main_->isVisible(); };
  while (!done() && can_wait()) {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  main_->UpdateControls();
}

}  // namespace tarve
