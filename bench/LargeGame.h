// The large generated game the benchmarks read: a game folder written from a fixed seed, with
// every kind of block, brace blocks, `else` lines, continued lines, tabs and two libraries, and
// the figures the reader must arrive at when it reads that folder; and the tests' stress game of
// one crowded room.
#pragma once

#include <string>
#include <string_view>

#include "game/Host.h"

namespace tarve::bench {

// What the generator wrote, counted as it wrote it.
struct LargeGameFigures {
  int file_lines = 0;        // lines of large.gwl
  int file_blocks = 0;       // its top-level blocks
  int nested_blocks = 0;     // objects and characters written inside rooms
  int library_lines = 0;     // lines the two libraries add to the game (appended or inserted)
  int library_blocks = 0;    // top-level blocks among them
  int brace_blocks = 0;      // "{" ... "}" blocks, nested ones included
  int procedure_lines = 0;   // lines of the procedures the reader makes of them
  int else_lines = 0;        // `else` lines after `if` lines in rooms and procedures
  int continued_lines = 0;   // lines ending in "__"
  int tab_lines = 0;         // lines holding at least one tab
  int text_brace_lines = 0;  // lines of text blocks that hold a "{", which stay as written

  // The game once read: its own lines, the libraries' and the made procedures'.
  int ExpectedLines() const { return file_lines + library_lines + procedure_lines; }
  int ExpectedBlocks() const { return file_blocks + library_blocks + brace_blocks; }
};

// The texts of the three files.
struct LargeGameFiles {
  std::string game;  // large.gwl
  std::string lib1;  // lib1.gwl
  std::string lib2;  // lib2.gwl
  LargeGameFigures figures;
};

// Generates the game. `scale` 1.0 gives a game of about 31,000 lines once read, a little below
// the 32,767 a game may hold; 0.5 gives one of half the size. The same scale always gives the
// same bytes.
LargeGameFiles MakeLargeGame(double scale);

// Writes large.gwl, lib1.gwl and lib2.gwl into `folder` (created when missing). False, with a
// reason in `error`, when a file cannot be written.
bool WriteLargeGame(const std::string& folder, const LargeGameFiles& files, std::string& error);

// Reads `folder`/large.gwl with the game reader and compares what it made with `figures`.
// Empty when all agree, otherwise what differs.
std::string CheckLargeGame(const std::string& folder, const LargeGameFigures& figures);

// A beach holding `pebbles` numbered pebbles and one shell, all in its one room: the stress game
// of the parser's and the room description's tests.
std::string MakeCrowdedBeach(int pebbles);

// A host that shows nothing: the reader's only calls to the outside world are message boxes
// on failure.
class NullHost : public OutputPane, public Dialogs, public GameWindow, public PlatformServices {
 public:
  void InsertText(std::string_view) override {}
  int ShowMessage(const std::string& text, const std::string& title, int) override {
    last_message = title + ": " + text;
    return kAnswerOk;
  }
  std::string last_message;
};

}  // namespace tarve::bench
