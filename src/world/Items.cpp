#include "world/Items.h"

#include "script/Game.h"

namespace tarve {

void SetUpItems(Game&) {}
void SetUpStartItems(Game&) {}
void SetUpCollectables(Game&) {}
Item* FindItem(
    Game&,
    std::string_view
        name);  // exact name Collectable* FindCollectable(Game&, std::string_view name); // exact
                // name // The amount of the collectable of that exact name; 0 when there is none.
                // float GetCollectableAmount(Game&, std::string_view) { return nullptr; }
void ExecuteGive(Game&, std::string_view) {}
void ExecuteLose(Game&, std::string_view) {}
void ExecuteSet(Game&, std::string_view parameter);  // set <collectable; change> bool
                                                     // TestGot(Game&, std::string_view) {}
bool TestHas(Game&, std::string_view) { return false; }
std::string ItemsDisplayText(const Game&) { return {}; }
std::string CollectableText(const Collectable&) { return {}; }
void RefreshInventory(Game&) {}

}  // namespace tarve
