// frmEditInstalledList: the editor of the installed-games list. It reads the list when it opens
// and shows the names; the player renames an entry, points it at another file, moves or removes
// it; the list as it then stands is written back when the window closes, however it closes.
#pragma once

#include <QDialog>

#include "player/InstalledGamesList.h"
#include "player/windows/FileDialogs.h"

class QLabel;
class QListWidget;
class QPushButton;

namespace tarve {

class SettingsStore;

class frmEditInstalledList : public QDialog {
  Q_OBJECT

 public:
  // `store` holds the list and must outlive the window. Without `choose_file` Change File asks
  // the player with the file dialog.
  explicit frmEditInstalledList(SettingsStore& store, FileChooser choose_file = {},
                                QWidget* parent = nullptr);

  const InstalledGamesList& games() const { return list_; }

  QListWidget* lstGames() const { return lst_games_; }
  QLabel* lblGameFile() const { return lbl_game_file_; }
  QPushButton* butEditName() const { return but_edit_name_; }
  QPushButton* butChangeFile() const { return but_change_file_; }
  QPushButton* butMove() const { return but_move_; }
  QPushButton* butRemove() const { return but_remove_; }
  QPushButton* butClose() const { return but_close_; }

  void done(int result) override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void EditName();
  void ChangeFile();
  void Move(bool up);
  void Remove();
  // Shows the list with entry `selected` chosen (none when out of range).
  void ShowList(int selected);
  void SelectionChanged();
  int Selected() const;

  InstalledGamesList list_;
  FileChooser choose_file_;
  QListWidget* lst_games_;
  QLabel* lbl_game_file_;
  QPushButton* but_edit_name_;
  QPushButton* but_change_file_;
  QPushButton* but_move_;
  QPushButton* but_remove_;
  QPushButton* but_close_;
};

}  // namespace tarve
