// frmStringVariables: the variables viewer, one window class for the three stores a game keeps
// (string variables, numeric variables, collectables): a grid of names and contents that fills
// the window and can be refreshed row by row while a game runs.
#pragma once

#include <QWidget>
#include <string>
#include <utility>
#include <vector>

class QTableWidget;

namespace tarve {

class frmStringVariables : public QWidget {
  Q_OBJECT

 public:
  // The grid's columns start 1650 and 4000 twips wide, at 15 twips to a pixel.
  static constexpr int kTwipsPerPixel = 15;
  static constexpr int kNameColumnTwips = 1650;
  static constexpr int kValueColumnTwips = 4000;

  // A cell shows at most this many characters of a value: a grid cannot show a megabyte of text,
  // and measuring one on every repaint would stall the window.
  static constexpr int kMaxCellCharacters = 1000;

  // The stores a game keeps, each with its own caption and headings.
  enum class Store { kStringVariables, kNumericVariables, kCollectables };

  explicit frmStringVariables(Store store, QWidget* parent = nullptr);
  frmStringVariables(const std::string& caption, const std::string& name_heading,
                     const std::string& value_heading, QWidget* parent = nullptr);

  // Shows exactly these rows (name, contents), replacing what was shown.
  void SetContents(const std::vector<std::pair<std::string, std::string>>& rows);
  // Sets row `row` (from 0); the grid grows when `row` is past its end. Only that row is redrawn,
  // and nothing at all when it already shows these texts, so a running game can refresh the
  // viewer after every change.
  void SetRow(int row, const std::string& name, const std::string& value);
  // Drops the rows from `rows` on (or adds empty ones up to it).
  void SetRowCount(int rows);
  int RowCount() const;

  QTableWidget* grdVariables() const { return grd_variables_; }

 private:
  void SetCell(int row, int column, const QString& text);

  QTableWidget* grd_variables_;
};

}  // namespace tarve
