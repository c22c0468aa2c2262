// frmAdvancedSecurity: the editor of the custom list of file types that a game may or may not
// open under the security level "custom". OK keeps the edited list, Cancel forgets it.
#pragma once

#include <QDialog>
#include <optional>
#include <string>
#include <vector>

#include "player/OptionsForm.h"

class QListWidget;
class QPushButton;

namespace tarve {

class frmAdvancedSecurity : public QDialog {
  Q_OBJECT

 public:
  explicit frmAdvancedSecurity(std::vector<std::string> entries, QWidget* parent = nullptr);

  // Shows the window modally: the list as edited when the player pressed OK, else nothing.
  std::optional<std::vector<std::string>> Run();

  const CustomSecurityList& list() const { return list_; }

  QListWidget* lstFileTypes() const { return lst_file_types_; }
  QPushButton* butAdd() const { return but_add_; }
  QPushButton* butRemove() const { return but_remove_; }
  QPushButton* butOK() const { return but_ok_; }
  QPushButton* butCancel() const { return but_cancel_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Add();
  void Remove();
  void ShowList(int selected);

  CustomSecurityList list_;
  QListWidget* lst_file_types_;
  QPushButton* but_add_;
  QPushButton* but_remove_;
  QPushButton* but_ok_;
  QPushButton* but_cancel_;
};

}  // namespace tarve
