#include "LargeGame.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "game/Game.h"
#include "script/CommonCode.h"
#include "script/GameReader.h"

namespace tarve::bench {

namespace {

// The one seed of every generated game: the same scale always gives the same files.
constexpr std::uint64_t kSeed = 0x5461727665ULL;

// SplitMix64: small, and the same numbers on every compiler and standard library (the
// distributions of <random> are not).
class Rng {
 public:
  explicit Rng(std::uint64_t seed) : state_(seed) {}
  std::uint64_t Next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ULL);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
  }
  int Below(int n) { return static_cast<int>(Next() % static_cast<std::uint64_t>(n)); }
  int Between(int low, int high) { return low + Below(high - low + 1); }
  bool OneIn(int n) { return Below(n) == 0; }
  template <typename T, std::size_t N>
  std::string Pick(const std::array<T, N>& items) {
    return std::string(items[static_cast<std::size_t>(Below(static_cast<int>(N)))]);
  }

 private:
  std::uint64_t state_;
};

// The k-th of `slots` even shares of `total` (k from 0); the shares add up to `total` exactly,
// so a feature lands on evenly spread blocks and its count does not depend on chance.
int Share(int total, int slots, int k) {
  if (slots <= 0) return 0;
  const long long t = total;
  return static_cast<int>((k + 1) * t / slots - k * t / slots);
}

// Words for the prose. None of them holds a bracket, a brace or a substitution marker, and
// none begins a line with a keyword the reader acts on ("define", "end define", "if", "else").
constexpr std::array<std::string_view, 48> kWords = {
    "old",      "dusty",  "narrow",  "bright",  "quiet",   "cold",    "wooden", "broken",
    "stone",    "silver", "green",   "hollow",  "tall",    "small",   "heavy",  "faded",
    "corridor", "window", "table",   "lantern", "doorway", "curtain", "ladder", "chest",
    "painting", "floor",  "ceiling", "garden",  "river",   "bridge",  "tower",  "cellar",
    "leans",    "glows",  "creaks",  "waits",   "hums",    "rests",   "opens",  "hides",
    "beside",   "under",  "near",    "across",  "behind",  "café",    "fjord",  "ölkrug"};
constexpr std::array<std::string_view, 12> kThings = {"lamp", "key",   "scroll", "box",
                                                      "coin", "sword", "rope",   "bottle",
                                                      "map",  "ring",  "mirror", "candle"};
constexpr std::array<std::string_view, 12> kNames = {"Aino", "Bertil", "Céline", "Dmitri",
                                                     "Eevi", "Farid",  "Greta",  "Hannu",
                                                     "Iris", "Jónas",  "Kaisa",  "Lorcan"};
constexpr std::array<std::string_view, 8> kDirections = {"north",     "south",     "east", "west",
                                                         "northeast", "southwest", "up",   "down"};

// Block and feature counts at scale 1; ShapeFor scales them.
struct Shape {
  int rooms = 600;
  int objects = 700;     // outside rooms
  int characters = 300;  // outside rooms
  int procedures = 600;
  int functions = 300;
  int texts = 300;
  int selections = 158;
  int rooms_with_object = 200;
  int rooms_with_character = 150;
  int game_commands = 30;
  int synonym_lines = 40;
  int library_blocks = 20;  // of each kind, in each library

  // Brace blocks written directly in a block, the nested ones inside them (some two deep),
  // and "else {" blocks after them.
  int room_braces = 200;
  int room_nested = 25;
  int room_else_braces = 15;
  int procedure_braces = 150;
  int procedure_nested = 16;
  int procedure_deep = 4;
  int procedure_else_braces = 15;
  int object_braces = 40;
  int character_braces = 20;
  int function_braces = 10;
  int game_braces = 5;

  int room_elses = 100;
  int procedure_elses = 70;

  // Chains of continued lines, by the kind of block that holds them.
  int room_chains = 250;
  int object_chains = 150;
  int procedure_chains = 150;
  int character_chains = 50;
  int text_chains = 50;
  int function_chains = 25;
  int selection_chains = 25;
  int text_brace_lines = 60;
};

Shape ShapeFor(double scale) {
  auto n = [scale](int full) { return std::max(1, static_cast<int>(std::lround(full * scale))); };
  Shape s;
  for (int* count : {&s.rooms,
                     &s.objects,
                     &s.characters,
                     &s.procedures,
                     &s.functions,
                     &s.texts,
                     &s.selections,
                     &s.rooms_with_object,
                     &s.rooms_with_character,
                     &s.game_commands,
                     &s.synonym_lines,
                     &s.library_blocks,
                     &s.room_braces,
                     &s.room_nested,
                     &s.room_else_braces,
                     &s.procedure_braces,
                     &s.procedure_nested,
                     &s.procedure_deep,
                     &s.procedure_else_braces,
                     &s.object_braces,
                     &s.character_braces,
                     &s.function_braces,
                     &s.game_braces,
                     &s.room_elses,
                     &s.procedure_elses,
                     &s.room_chains,
                     &s.object_chains,
                     &s.procedure_chains,
                     &s.character_chains,
                     &s.text_chains,
                     &s.function_chains,
                     &s.selection_chains,
                     &s.text_brace_lines}) {
    *count = n(*count);
  }
  return s;
}

std::string JoinLines(const std::vector<std::string>& lines, std::string_view line_end) {
  std::string out;
  std::size_t size = 0;
  for (const std::string& line : lines) size += line.size() + line_end.size();
  out.reserve(size);
  for (const std::string& line : lines) {
    out += line;
    out += line_end;
  }
  return out;
}

class Generator {
 public:
  explicit Generator(double scale) : shape_(ShapeFor(scale)), rng_(kSeed) {}

  LargeGameFiles Make() {
    LargeGameFiles files;
    files.lib1 = Library(1);
    files.lib2 = Library(2);
    files.game = GameFile();
    files.figures = figures_;
    return files;
  }

 private:
  enum class Kind { kRoom, kObject, kCharacter, kProcedure, kFunction, kText, kSelection };

  // --- Lines --------------------------------------------------------------------------------

  void Emit(std::string line) {
    if (line.find('\t') != std::string::npos) ++figures_.tab_lines;
    out_->push_back(std::move(line));
  }

  // Indentation of the block being written: some blocks are indented with tabs, the rest
  // with four blanks a level, as authors do.
  std::string Ind(int level) const {
    return tabs_ ? std::string(static_cast<std::size_t>(level), '\t')
                 : std::string(static_cast<std::size_t>(level) * 4, ' ');
  }

  std::string Words(int low, int high) {
    std::string text;
    const int count = rng_.Between(low, high);
    for (int i = 0; i < count; ++i) {
      if (i > 0) text += ' ';
      text += rng_.Pick(kWords);
    }
    return text;
  }

  std::string Sentence(int low, int high) {
    std::string text = Words(low, high);
    if (text[0] >= 'a' && text[0] <= 'z') text[0] = static_cast<char>(text[0] - 'a' + 'A');
    return text + ".";
  }

  std::string Msg() { return "msg <" + Sentence(3, 8) + ">"; }

  std::string RoomName(int r) const { return "Room " + std::to_string(r % shape_.rooms + 1); }
  std::string ThingName(int t) const {
    return std::string(kThings[static_cast<std::size_t>(t) % kThings.size()]) + " " +
           std::to_string(t + 1);
  }
  std::string PersonName(int c) const {
    return std::string(kNames[static_cast<std::size_t>(c) % kNames.size()]) + " " +
           std::to_string(c + 1);
  }
  int AnyThing() { return rng_.Below(shape_.objects); }

  std::string Condition() {
    switch (rng_.Below(5)) {
      case 0:
        return "if got <" + ThingName(AnyThing()) + "> then";
      case 1:
        return "if here <" + ThingName(AnyThing()) + "> then";
      case 2:
        return "if flag <door " + std::to_string(rng_.Below(100)) + " open> then";
      case 3:
        return "if is <%score%; gt; " + std::to_string(rng_.Below(50)) + "> then";
      default:
        return "if is <#player name#; ; nobody> and got <" + ThingName(AnyThing()) + "> then";
    }
  }

  // A statement for the body of a script block.
  std::string Statement() {
    switch (rng_.Below(6)) {
      case 0:
        return "setstring <last seen; " + ThingName(AnyThing()) + ">";
      case 1:
        return "setvar <score; %score% + " + std::to_string(rng_.Between(1, 9)) + ">";
      case 2:
        return "give <" + ThingName(AnyThing()) + ">";
      case 3:
        return "playerwin";
      default:
        return Msg();
    }
  }

  // A line continued over two or three text lines ("__" at the end of all but the last).
  // The pieces after the first are indented one level deeper; the reader drops those blanks.
  int Continued(int level, const std::string& head) {
    const int pieces = (chain_count_++ % 3 == 2) ? 3 : 2;
    Emit(Ind(level) + head + Words(3, 5) + " __");
    if (pieces == 3) Emit(Ind(level + 1) + Words(3, 5) + " __");
    Emit(Ind(level + 1) + Words(2, 4) + ".>");
    figures_.continued_lines += pieces - 1;
    return pieces;
  }

  // A "{" ... "}" block after `opener`, holding `nesting` levels of nested brace blocks.
  // Returns the number of lines written. The reader moves the lines between the braces into a
  // procedure of its own, so its lines are counted as the procedure's: its define and end
  // define lines, the text after "{" when there is some, the lines between, and the text
  // before the closing "}" when there is some.
  int Brace(int level, const std::string& opener, int nesting) {
    const bool text_after_open = rng_.OneIn(4);
    const bool text_before_close = rng_.OneIn(4);
    Emit(Ind(level) + opener + (text_after_open ? " { " + Msg() : " {"));
    int between = 0;
    const int before_nested = rng_.Between(1, 2);
    for (int i = 0; i < before_nested; ++i) {
      Emit(Ind(level + 1) + Statement());
      ++between;
    }
    if (rng_.OneIn(5)) between += Continued(level + 1, "msg <");
    if (nesting > 0) {
      between += Brace(level + 1, Condition(), nesting - 1);
      Emit(Ind(level + 1) + Msg());
      ++between;
    }
    Emit(Ind(level) + (text_before_close ? Msg() + " }" : "}"));
    ++figures_.brace_blocks;
    figures_.procedure_lines += 2 + text_after_open + between + text_before_close;
    return 2 + between;
  }

  // An `if` line and the `else` line after it.
  void IfElse(int level) {
    Emit(Ind(level) + Condition() + " " + Msg());
    Emit(Ind(level) + "else " + (rng_.OneIn(3) ? Statement() : Msg()));
    ++figures_.else_lines;
  }

  // --- Blocks -------------------------------------------------------------------------------

  void Room(int r) {
    tabs_ = r % 4 == 3;
    Emit("define room <" + RoomName(r) + ">");
    if (r % 2 == 0) Emit(Ind(1) + "prefix <the>");
    const int chains = Share(shape_.room_chains, shape_.rooms, r);
    if (chains > 0) {
      Continued(1, "look <");
    } else {
      Emit(Ind(1) + "look <" + Sentence(6, 14) + ">");
    }
    const int exits = rng_.Between(2, 3);
    for (int i = 0; i < exits; ++i) {
      Emit(Ind(1) + std::string(kDirections[static_cast<std::size_t>(i * 2 + rng_.Below(2))]) +
           " <" + RoomName(r + 1 + rng_.Below(std::max(1, shape_.rooms - 1))) + ">");
    }
    Emit(Ind(1) + "script " + Msg());
    Emit(Ind(1) + "command <pull #thing#> " + Msg());
    for (int i = 1; i < chains; ++i) Continued(1, "command <kick #thing#> msg <");
    for (int i = Share(shape_.room_elses, shape_.rooms, r); i > 0; --i) IfElse(1);
    for (int i = Share(shape_.room_braces, shape_.rooms, r); i > 0; --i) {
      const int j = room_brace_++;
      Brace(1, Condition(), Share(shape_.room_nested, shape_.room_braces, j));
      if (Share(shape_.room_else_braces, shape_.room_braces, j) > 0) {
        Brace(1, "else", 0);
        ++figures_.else_lines;
      }
    }
    if (Share(shape_.rooms_with_object, shape_.rooms, r) > 0) {
      Thing(Kind::kObject, shape_.objects + nested_objects_++, /*inside_room=*/true);
    }
    if (Share(shape_.rooms_with_character, shape_.rooms, r) > 0) {
      Thing(Kind::kCharacter, shape_.characters + nested_characters_++, /*inside_room=*/true);
    }
    Emit("end define");
  }

  // An object or a character, in a room or on its own with a `startin` line.
  void Thing(Kind kind, int t, bool inside_room) {
    const bool object = kind == Kind::kObject;
    const int indent = inside_room ? 1 : 0;
    if (!inside_room) tabs_ = t % 5 == 1;
    const std::string name = object ? ThingName(t) : PersonName(t);
    Emit(Ind(indent) + (object ? "define object <" : "define character <") + name + ">");
    const int level = indent + 1;
    if (!inside_room) Emit(Ind(level) + "startin <" + RoomName(rng_.Below(shape_.rooms)) + ">");
    if (object) {
      Emit(Ind(level) + (rng_.OneIn(3) ? "prefix <an old>" : "prefix <a>"));
    } else {
      Emit(Ind(level) + (rng_.OneIn(2) ? "gender <she>" : "gender <he>"));
    }
    const int chains = inside_room ? 0
                       : object    ? Share(shape_.object_chains, shape_.objects, t)
                                   : Share(shape_.character_chains, shape_.characters, t);
    if (chains > 0) {
      Continued(level, "look <");
    } else {
      Emit(Ind(level) + "look <" + Sentence(4, 10) + ">");
    }
    if (object) {
      Emit(Ind(level) + "take " + Msg());
      Emit(Ind(level) + "use <" + ThingName(AnyThing()) + "> " + Msg());
    } else {
      Emit(Ind(level) + "speak <" + Sentence(5, 12) + ">");
      Emit(Ind(level) + "give <" + ThingName(AnyThing()) + "> " + Msg());
    }
    const int braces = inside_room ? 0
                       : object    ? Share(shape_.object_braces, shape_.objects, t)
                                   : Share(shape_.character_braces, shape_.characters, t);
    for (int i = 0; i < braces; ++i) {
      Brace(level, object ? "use <" + ThingName(AnyThing()) + ">" : "speak", 0);
    }
    if (t % 7 == 3) Emit(Ind(level) + "invisible");
    if (t % 11 == 5) Emit(Ind(level) + "hidden");
    Emit(Ind(indent) + "end define");
    if (inside_room) ++figures_.nested_blocks;
  }

  void Procedure(int p) {
    tabs_ = p % 3 == 0;
    Emit("define procedure <proc " + std::to_string(p + 1) + ">");
    Emit(Ind(1) + Msg());
    for (int i = Share(shape_.procedure_chains, shape_.procedures, p); i > 0; --i) {
      Continued(1, "msg <");
    }
    for (int i = Share(shape_.procedure_elses, shape_.procedures, p); i > 0; --i) IfElse(1);
    for (int i = Share(shape_.procedure_braces, shape_.procedures, p); i > 0; --i) {
      const int j = procedure_brace_++;
      int nesting = 0;
      if (Share(shape_.procedure_nested, shape_.procedure_braces, j) > 0) {
        const int site = procedure_nest_++;
        nesting = 1 + Share(shape_.procedure_deep, shape_.procedure_nested, site);
      }
      Brace(1, Condition(), nesting);
      if (Share(shape_.procedure_else_braces, shape_.procedure_braces, j) > 0) {
        Brace(1, "else", 0);
        ++figures_.else_lines;
      }
    }
    Emit(Ind(1) + Statement());
    if (p > 0) Emit(Ind(1) + "do <proc " + std::to_string(rng_.Below(p) + 1) + ">");
    Emit("end define");
  }

  void Function(int f) {
    tabs_ = f % 4 == 2;
    const std::string name = "fn " + std::to_string(f + 1);
    Emit("define function <" + name + ">");
    Emit(Ind(1) + "setstring <" + name + " result; #tarve.function.parameter.1#>");
    for (int i = Share(shape_.function_chains, shape_.functions, f); i > 0; --i) {
      Continued(1, "setstring <" + name + " note; ");
    }
    for (int i = Share(shape_.function_braces, shape_.functions, f); i > 0; --i) {
      Brace(1, Condition(), 0);
    }
    Emit(Ind(1) + "return <#" + name + " result# " + Words(1, 3) + ">");
    Emit("end define");
  }

  // Text blocks keep their lines as written, braces included.
  void Text(int x) {
    tabs_ = false;
    Emit(x == 0 ? "define text <intro>" : "define text <text " + std::to_string(x + 1) + ">");
    const int lines = rng_.Between(3, 6);
    for (int i = 0; i < lines; ++i) Emit(Sentence(4, 12));
    for (int i = Share(shape_.text_brace_lines, shape_.texts, x); i > 0; --i) {
      Emit("The sign reads {" + Words(1, 2) + "}: " + Sentence(2, 4));
      ++figures_.text_brace_lines;
    }
    for (int i = Share(shape_.text_chains, shape_.texts, x); i > 0; --i) Continued(0, "|b<");
    if (x % 3 == 1) Emit("Name:\t" + PersonName(x) + "\tRoom:\t" + RoomName(x));
    Emit(Sentence(3, 6));
    Emit("end define");
  }

  void Selection(int s) {
    tabs_ = s % 2 == 1;
    Emit("define selection <choice " + std::to_string(s + 1) + ">");
    Emit(Ind(1) + "info <" + Sentence(4, 8) + ">");
    Emit(Ind(1) + "choice <" + Words(2, 4) + "> " + Msg());
    Emit(Ind(1) + "choice <" + Words(2, 4) + "> do <proc " +
         std::to_string(rng_.Below(shape_.procedures) + 1) + ">");
    for (int i = Share(shape_.selection_chains, shape_.selections, s); i > 0; --i) {
      Continued(1, "choice <" + Words(1, 2) + "> msg <");
    }
    Emit("end define");
  }

  void GameBlock() {
    tabs_ = false;
    Emit("define game <Large generated game>");
    Emit(Ind(1) + "gwl-version <217>");
    Emit(Ind(1) + "start <" + RoomName(0) + ">");
    Emit(Ind(1) + "startscript setvar <score; 0>");
    Emit(Ind(1) + "startscript setstring <player name; nobody>");
    Emit(Ind(1) + "beforeturn setvar <turns; %turns% + 1>");
    Emit(Ind(1) + "afterturn do <proc 1>");
    Emit(Ind(1) + "default fontname <Verdana>");
    Emit(Ind(1) + "default fontsize <10>");
    Emit(Ind(1) + "error <nosuchobject; There is no #tarve.error.object# here.>");
    for (int i = 0; i < shape_.game_commands; ++i) {
      Emit(Ind(1) + "command <" + Words(1, 2) + " #thing" + std::to_string(i) + "#> " + Msg());
    }
    for (int i = 0; i < shape_.game_braces; ++i) {
      Brace(1, "command <search " + ThingName(AnyThing()) + ">", 0);
    }
    Emit(Ind(1) + "command <xyzzy> msg <Nothing happens.>");
    Emit("end define");
  }

  void SynonymsBlock() {
    tabs_ = true;
    Emit("define synonyms");
    for (int i = 0; i < shape_.synonym_lines; ++i) {
      Emit(Ind(1) + Words(1, 1) + std::to_string(i) + "; " + Words(1, 1) + std::to_string(i) +
           " = " + Words(1, 1));
    }
    Emit("end define");
  }

  std::string GameFile() {
    std::vector<std::string> lines;
    out_ = &lines;
    Emit("' A large game made by tarve-gen-large for the benchmarks of the game reader.");
    Emit("!include <lib1.gwl>");
    Emit("!include <lib2.gwl>");
    Emit("");
    GameBlock();
    Emit("");
    SynonymsBlock();
    figures_.file_blocks += 2;

    // The other blocks are interleaved, each kind spread evenly through the file.
    struct Slot {
      double key;
      Kind kind;
      int index;
    };
    std::vector<Slot> slots;
    auto add = [&slots](Kind kind, int count) {
      for (int i = 0; i < count; ++i) slots.push_back({(i + 0.5) / count, kind, i});
    };
    add(Kind::kText, shape_.texts);
    add(Kind::kRoom, shape_.rooms);
    add(Kind::kObject, shape_.objects);
    add(Kind::kCharacter, shape_.characters);
    add(Kind::kProcedure, shape_.procedures);
    add(Kind::kFunction, shape_.functions);
    add(Kind::kSelection, shape_.selections);
    std::stable_sort(slots.begin(), slots.end(),
                     [](const Slot& a, const Slot& b) { return a.key < b.key; });
    for (const Slot& slot : slots) {
      Emit("");
      switch (slot.kind) {
        case Kind::kRoom:
          Room(slot.index);
          break;
        case Kind::kObject:
        case Kind::kCharacter:
          Thing(slot.kind, slot.index, /*inside_room=*/false);
          break;
        case Kind::kProcedure:
          Procedure(slot.index);
          break;
        case Kind::kFunction:
          Function(slot.index);
          break;
        case Kind::kText:
          Text(slot.index);
          break;
        case Kind::kSelection:
          Selection(slot.index);
          break;
      }
      ++figures_.file_blocks;
    }
    figures_.file_lines = static_cast<int>(lines.size());
    return JoinLines(lines, "\r\n");
  }

  // A library with a header, sections for the game and synonyms blocks, comments and blocks
  // of its own. It holds no empty lines and no braces.
  std::string Library(int n) {
    std::vector<std::string> lines;
    out_ = &lines;
    tabs_ = n == 2;
    const std::string prefix = "lib" + std::to_string(n) + " ";
    Emit("!library");
    Emit("!gwl-version <200>");
    Emit("' Library " + std::to_string(n) + " of the large generated game.");
    Emit("!addto game");
    const int game_lines = 4 + shape_.library_blocks / 4;
    for (int i = 0; i < game_lines; ++i) {
      Emit(Ind(1) + "command <" + prefix + Words(1, 1) + " #thing#> do <" + prefix + "proc " +
           std::to_string(i % shape_.library_blocks + 1) + ">");
    }
    Emit("!end");
    Emit("' Words the library understands.");
    Emit("!addto synonyms");
    const int synonym_lines = 2 + shape_.library_blocks / 8;
    for (int i = 0; i < synonym_lines; ++i) {
      Emit(Ind(1) + prefix + Words(1, 1) + "; " + prefix + Words(1, 1) + " = take");
    }
    Emit("!end");
    figures_.library_lines += game_lines + synonym_lines;

    std::vector<std::string> body;
    out_ = &body;
    for (int i = 0; i < shape_.library_blocks; ++i) {
      const std::string number = std::to_string(i + 1);
      Emit("define procedure <" + prefix + "proc " + number + ">");
      Emit(Ind(1) + Msg());
      if (i % 4 == 0) Continued(1, "msg <");
      Emit(Ind(1) + Condition() + " " + Msg());
      Emit("end define");
      Emit("define function <" + prefix + "fn " + number + ">");
      Emit(Ind(1) + "return <" + Words(1, 3) + ">");
      Emit("end define");
      Emit("define object <" + prefix + "thing " + number + ">");
      Emit(Ind(1) + "startin <" + RoomName(rng_.Below(shape_.rooms)) + ">");
      Emit(Ind(1) + "look <" + Sentence(4, 9) + ">");
      Emit("end define");
      figures_.library_blocks += 3;
    }
    figures_.library_lines += static_cast<int>(body.size());
    lines.insert(lines.end(), body.begin(), body.end());
    lines.push_back("' End of library " + std::to_string(n) + ".");
    return JoinLines(lines, "\n");
  }

  Shape shape_;
  Rng rng_;
  LargeGameFigures figures_;
  std::vector<std::string>* out_ = nullptr;
  bool tabs_ = false;
  int chain_count_ = 0;
  int room_brace_ = 0;
  int procedure_brace_ = 0;
  int procedure_nest_ = 0;
  int nested_objects_ = 0;
  int nested_characters_ = 0;
};

bool WriteFile(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  return static_cast<bool>(file);
}

bool EndsWith(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

}  // namespace

LargeGameFiles MakeLargeGame(double scale) { return Generator(scale).Make(); }

std::string MakeCrowdedBeach(int pebbles) {
  std::string game =
      "' A beach with " + std::to_string(pebbles) +
      " pebbles and one shell.\n"
      "define game <Pebbles>\n    gwl-version <217>\n    start <Beach>\nend define\n\n"
      "define room <Beach>\n    look <Pebbles as far as the eye can see.>\n";
  for (int i = 1; i <= pebbles; ++i) {
    const std::string n = std::to_string(i);
    game += "    define object <pebble " + n + ">\n        look <Pebble number " + n +
            ".>\n        take msg <You take pebble " + n + ".>\n    end define\n";
  }
  return game +
         "    define object <shell>\n        look <A pink shell.>\n    end define\nend define\n";
}

bool WriteLargeGame(const std::string& folder, const LargeGameFiles& files, std::string& error) {
  std::error_code ec;
  std::filesystem::create_directories(folder, ec);
  if (ec) {
    error = "cannot create " + folder + ": " + ec.message();
    return false;
  }
  const std::filesystem::path dir(folder);
  for (const auto& [name, bytes] :
       {std::pair{"large.gwl", &files.game}, std::pair{"lib1.gwl", &files.lib1},
        std::pair{"lib2.gwl", &files.lib2}}) {
    if (!WriteFile(dir / name, *bytes)) {
      error = "cannot write " + (dir / name).string();
      return false;
    }
  }
  return true;
}

std::string CheckLargeGame(const std::string& folder, const LargeGameFigures& figures) {
  NullHost host;
  Game game(host);
  game.game_path = folder + "/";
  game.program_folder = folder + "/no-program-folder";
  std::string problems;
  auto problem = [&problems](const std::string& text) {
    if (!problems.empty()) problems += "; ";
    problems += text;
  };
  auto compare = [&problem](const char* what, long got, long expected) {
    if (got != expected) {
      problem(std::string(what) + ": " + std::to_string(got) + ", expected " +
              std::to_string(expected));
    }
  };

  if (!ReadGameFile(game, folder + "/large.gwl")) {
    problem("the reader refused the game (" + host.last_message + ")");
  }
  // The only messages of a clean read are the notes of the two included libraries.
  std::size_t pos = 0;
  while (pos < game.log.text.size()) {
    std::size_t end = game.log.text.find("\r\n", pos);
    if (end == std::string::npos) end = game.log.text.size();
    const std::string message = game.log.text.substr(pos, end - pos);
    if (!message.starts_with("Including library ")) problem("logged: " + message);
    pos = end + 2;
  }
  if (!problems.empty()) return problems;

  const GameText& text = game.text;
  compare("lines", text.LineCount(), figures.ExpectedLines());
  compare("blocks", text.BlockCount(), figures.ExpectedBlocks());
  compare("procedures made of brace blocks", game.intproc_counter - 1, figures.brace_blocks);

  // What the rewriting must have left: no braces outside text blocks, no `else` line left on
  // its own in a room or procedure, no line still ending in "__".
  int text_brace_lines = 0;
  int braces_left = 0;
  int elses_left = 0;
  int continuations_left = 0;
  for (int b = 1; b <= text.BlockCount(); ++b) {
    const BlockRecord& block = text.blocks[static_cast<std::size_t>(b)];
    const bool else_joined = block.type == "room" || block.type == "procedure";
    for (int i = block.start + 1; i < block.end; ++i) {
      const std::string& line = text.Line(i);
      const bool has_brace = line.find_first_of("{}") != std::string::npos;
      if (block.type == "text") {
        text_brace_lines += line.find('{') != std::string::npos;
      } else {
        braces_left += has_brace;
      }
      elses_left += else_joined && BeginsWith(line, "else");
      continuations_left += EndsWith(line, "__");
    }
  }
  compare("text block lines with braces", text_brace_lines, figures.text_brace_lines);
  compare("lines with braces left outside text blocks", braces_left, 0);
  compare("else lines left", elses_left, 0);
  compare("continued lines left", continuations_left, 0);
  return problems;
}

}  // namespace tarve::bench
