#include "world/Items.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

#include "base/Numbers.h"
#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"
#include "interpreter/Variables.h"

namespace tarve {

namespace {

constexpr std::string_view kLineBreak = "\r\n";

// A number as a single-precision amount; one too large for it becomes an infinity, which the
// callers refuse.
float ToSingle(double value) {
  constexpr double kLargest = std::numeric_limits<float>::max();
  if (value > kLargest) return std::numeric_limits<float>::infinity();
  if (value < -kLargest) return -std::numeric_limits<float>::infinity();
  return static_cast<float>(value);
}

// Calls `visit` for every line of the game block that begins with one of the keywords.
template <typename Visit>
void ForEachGameLine(Game& game, std::initializer_list<std::string_view> keywords, Visit visit) {
  const BlockRange block = FindBlock(game, "game");
  if (!block.Found()) return;
  const int last = std::min(block.end - 1, game.text.LineCount());
  for (int i = block.start + 1; i <= last; ++i) {
    const std::string& line = game.text.Line(i);
    if (std::any_of(keywords.begin(), keywords.end(),
                    [&](std::string_view keyword) { return BeginsWith(line, keyword); })) {
      visit(line);
    }
  }
}

// The names of an items list, separated by "," or ";", each trimmed; empty names are skipped.
std::vector<std::string> SplitNames(std::string_view list) {
  std::vector<std::string> names;
  std::size_t from = 0;
  while (from <= list.size()) {
    std::size_t separator = list.find_first_of(",;", from);
    if (separator == std::string_view::npos) separator = list.size();
    const std::string_view name = TrimView(list.substr(from, separator - from));
    if (!name.empty()) names.emplace_back(name);
    from = separator + 1;
  }
  return names;
}

// The entries of a collectables list. Both "," and ";" separate entries, but not inside a
// display text in "[...]", which may hold either.
std::vector<std::string_view> SplitCollectableEntries(std::string_view list) {
  std::vector<std::string_view> entries;
  std::size_t start = 0;
  bool in_display = false;
  for (std::size_t i = 0; i <= list.size(); ++i) {
    const char c = i < list.size() ? list[i] : ',';
    if (c == '[') in_display = true;
    if (c == ']') in_display = false;
    if ((c == ',' || c == ';') && (!in_display || i == list.size())) {
      const std::string_view entry = TrimView(list.substr(start, i - start));
      if (!entry.empty()) entries.push_back(entry);
      start = i + 1;
      in_display = false;
    }
  }
  return entries;
}

// One entry: name, blank, type, "=", starting value, and an optional display text in "[...]".
Collectable ParseCollectable(std::string_view entry) {
  Collectable collectable;
  const std::size_t bracket = entry.find('[');
  const std::string_view declaration = entry.substr(0, bracket);
  if (bracket != std::string_view::npos) {
    const std::size_t close = entry.find(']', bracket + 1);
    collectable.display = std::string(entry.substr(bracket + 1, close == std::string_view::npos
                                                                    ? std::string_view::npos
                                                                    : close - bracket - 1));
  }

  const std::size_t equals = declaration.find('=');
  const std::string_view before_equals = declaration.substr(0, equals);
  const std::size_t blank = before_equals.find(' ');
  collectable.name = Trim(before_equals.substr(0, blank));
  std::string type =
      blank == std::string_view::npos ? std::string() : Trim(before_equals.substr(blank + 1));
  if (!type.empty() && type.front() == 'd') {
    type.erase(0, 1);
    collectable.flag = false;
  }
  collectable.type = std::move(type);

  if (equals != std::string_view::npos) {
    std::string_view value = TrimLeftView(declaration.substr(equals + 1));
    value = value.substr(0, value.find(' '));
    collectable.amount = ToSingle(Val(value));
    if (!std::isfinite(collectable.amount)) collectable.amount = 0;
  }
  return collectable;
}

// The amount named by a set or has statement: numeric text, or the name of another collectable.
float AmountOf(Game& game, std::string_view text) {
  if (IsNumeric(text)) return ToSingle(Val(text));
  return GetCollectableAmount(game, text);
}

void SplitAtSemicolon(std::string_view parameter, std::string_view& name,
                      std::string_view& change) {
  const std::size_t semicolon = parameter.find(';');
  name = TrimView(parameter.substr(0, semicolon));
  change = semicolon == std::string_view::npos ? std::string_view()
                                               : TrimView(parameter.substr(semicolon + 1));
}

// Shows the collectables pane's line for a collectable: one whose type began with "d", or
// whose display text is empty, is kept out of the pane.
bool ShownInPane(const Collectable& collectable) {
  return collectable.flag && !collectable.display.empty();
}

}  // namespace

void SetUpItems(Game& game) {
  game.inventory.items.clear();
  ForEachGameLine(game, {"possitems ", "items "}, [&](const std::string& line) {
    for (std::string& name : SplitNames(RetrieveParameter(game, line, true))) {
      game.inventory.items.push_back({std::move(name), false});
    }
  });
}

void SetUpStartItems(Game& game) {
  ForEachGameLine(game, {"startitems "}, [&](const std::string& line) {
    for (const std::string& name : SplitNames(RetrieveParameter(game, line, true))) {
      if (Item* item = FindItem(game, name)) item->held = true;
    }
  });
}

void SetUpCollectables(Game& game) {
  std::vector<Collectable>& collectables = game.inventory.collectables;
  collectables.clear();
  // Only the first collectables line counts; a later one is ignored.
  bool read = false;
  ForEachGameLine(game, {"collectables "}, [&](const std::string& line) {
    if (read) return;
    read = true;
    const std::string list = RetrieveParameter(game, line, true);
    for (std::string_view entry : SplitCollectableEntries(list)) {
      collectables.push_back(ParseCollectable(entry));
    }
  });
  const int rows = static_cast<int>(collectables.size()) + 1;
  for (std::size_t i = 0; i < collectables.size(); ++i) {
    game.host.window.VariableViewerRow(static_cast<int>(VariableStore::kCollectable), rows,
                                       static_cast<int>(i) + 1, collectables[i].name,
                                       FormatSingle(collectables[i].amount));
  }
}

Item* FindItem(Game& game, std::string_view name) {
  for (Item& item : game.inventory.items) {
    if (item.name == name) return &item;
  }
  return nullptr;
}

Collectable* FindCollectable(Game& game, std::string_view name) {
  for (Collectable& collectable : game.inventory.collectables) {
    if (collectable.name == name) return &collectable;
  }
  return nullptr;
}

float GetCollectableAmount(Game& game, std::string_view name) {
  const Collectable* collectable = FindCollectable(game, name);
  return collectable == nullptr ? 0.0f : collectable->amount;
}

void ExecuteGive(Game& game, std::string_view name) {
  if (Item* item = FindItem(game, name)) item->held = true;
  RefreshInventory(game);
}

void ExecuteLose(Game& game, std::string_view name) {
  if (Item* item = FindItem(game, name)) item->held = false;
  RefreshInventory(game);
}

void ExecuteSet(Game& game, std::string_view parameter) {
  std::string_view name;
  std::string_view change;
  SplitAtSemicolon(parameter, name, change);
  Collectable* collectable = FindCollectable(game, name);
  if (collectable == nullptr) {
    LogScriptError(game, "Error: No such collectable in " + std::string(parameter));
    return;
  }
  if (!change.empty()) {
    const float amount = AmountOf(game, TrimView(change.substr(1)));
    float result = collectable->amount;
    switch (change.front()) {
      case '+':
        result += amount;
        break;
      case '-':
        result -= amount;
        break;
      case '=':
        result = amount;
        break;
      default:
        break;
    }
    // The one limit on an amount: it stays a finite single-precision number.
    if (std::isfinite(result)) {
      collectable->amount = result;
    } else {
      LogScriptError(game, "Error: Collectable amount out of range in " + std::string(parameter));
    }
  }
  RefreshInventory(game);
}

bool TestGot(Game& game, std::string_view name) {
  const Item* item = FindItem(game, name);
  if (item == nullptr) {
    LogScriptError(game, "Error: Item '" + std::string(name) + "' not defined.");
    return false;
  }
  return item->held;
}

bool TestHas(Game& game, std::string_view parameter) {
  std::string_view name;
  std::string_view condition;
  SplitAtSemicolon(parameter, name, condition);
  const Collectable* collectable = FindCollectable(game, name);
  if (collectable == nullptr) {
    LogScriptError(game, "GWL Script Error: No such collectable in " + std::string(parameter));
    return false;
  }
  if (condition.empty()) return false;
  const float amount = AmountOf(game, TrimView(condition.substr(1)));
  switch (condition.front()) {
    case '+':
      return collectable->amount > amount;
    case '-':
      return collectable->amount < amount;
    case '=':
      return collectable->amount == amount;
    default:
      return false;
  }
}

std::string ItemsDisplayText(const Game& game) {
  std::string text = "Items:";
  bool any = false;
  for (const Item& item : game.inventory.items) {
    if (!item.held) continue;
    text += kLineBreak;
    text += "    " + item.name;
    any = true;
  }
  if (!any) {
    text += kLineBreak;
    text += "    (no items)";
  }
  return text;
}

std::string CollectableText(const Collectable& collectable) {
  const std::string amount = FormatSingle(collectable.amount);
  if (collectable.display == "<def>") return "You have " + amount + " " + collectable.name;
  if (collectable.display.empty()) return "<null>";

  std::string text = collectable.display;
  if (const std::size_t mark = text.find('!'); mark != std::string::npos) {
    text.replace(mark, 1, amount);
  }
  // Every part between two "*" is the plural ending: kept unless the amount is exactly 1.
  const bool plural = collectable.amount != 1.0f;
  std::string result;
  std::size_t from = 0;
  while (true) {
    const std::size_t open = text.find('*', from);
    const std::size_t close = open == std::string::npos ? open : text.find('*', open + 1);
    if (close == std::string::npos) {
      result.append(text, from, std::string::npos);
      break;
    }
    result.append(text, from, open - from);
    if (plural) result.append(text, open + 1, close - open - 1);
    from = close + 1;
  }
  return result;
}

void RefreshInventory(Game& game) {
  game.host.window.SetItems(ItemsDisplayText(game));
  const std::vector<Collectable>& collectables = game.inventory.collectables;
  std::vector<std::string> lines;
  for (const Collectable& collectable : collectables) {
    if (ShownInPane(collectable)) lines.push_back(CollectableText(collectable));
  }
  game.host.window.SetCollectables(lines);
  const int rows = static_cast<int>(collectables.size()) + 1;
  for (std::size_t i = 0; i < collectables.size(); ++i) {
    game.host.window.VariableViewerRow(static_cast<int>(VariableStore::kCollectable), rows,
                                       static_cast<int>(i) + 1, collectables[i].name,
                                       FormatSingle(collectables[i].amount));
  }
}

}  // namespace tarve
