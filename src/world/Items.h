// Items the player may carry and collectables (named counters such as a score), declared in the
// game block; the give, lose and set statements and the got and has tests.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarve {

struct Game;

struct Item {
  std::string name;
  bool held = false;
};

struct Collectable {
  std::string name;
  std::string type;
  float amount = 0;
  std::string display = "<def>";
  bool flag = true;
};

struct Inventory {
  std::vector<Item> items;
  std::vector<Collectable> collectables;
};

// At game opening, from the game block.
void SetUpItems(Game& game);
void SetUpStartItems(Game& game);
void SetUpCollectables(Game& game);

Item* FindItem(Game& game, std::string_view name);                // exact name
Collectable* FindCollectable(Game& game, std::string_view name);  // exact name
// The amount of the collectable of that exact name; 0 when there is none.
float GetCollectableAmount(Game& game, std::string_view name);

void ExecuteGive(Game& game, std::string_view name);
void ExecuteLose(Game& game, std::string_view name);
void ExecuteSet(Game& game, std::string_view parameter);  // set <collectable; change>
bool TestGot(Game& game, std::string_view name);
bool TestHas(Game& game, std::string_view parameter);

// "Items:" and one indented line per held item, or "(no items)".
std::string ItemsDisplayText(const Game& game);
std::string CollectableText(const Collectable& collectable);
// Tells the host the items and collectables panes have changed.
void RefreshInventory(Game& game);

}  // namespace tarve
