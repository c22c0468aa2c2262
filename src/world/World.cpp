#include "world/World.h"

#include "script/Game.h"

namespace tarve {

void BuildWorldTables(Game&) {}
std::vector<Thing>& ThingsOf(Game& game, ThingKind) { return game.world.objects; }
Thing* FindThing(Game&, ThingKind, std::string_view, std::string_view) { return nullptr; }
BlockRange FindThingBlock(Game&, ThingKind, std::string_view, std::string_view) { return {}; }
bool ThingExists(Game&, ThingKind, std::string_view) { return false; }
std::string GetThingTag(Game&, std::string_view, std::string_view, std::string_view) { return {}; }
std::string FindThingTagWithParameter(Game&, std::string_view, std::string_view, std::string_view,
                                      std::string_view) {
  return {};
}
void EnterRoom(Game&, std::string_view) {}
void MoveThing(Game&, ThingKind, std::string_view) {}
void SetThingExists(Game&, ThingKind, std::string_view, bool) {}
void SetThingVisible(Game&, ThingKind, std::string_view, bool) {}
bool TestHere(Game&, std::string_view) { return false; }
bool TestExists(Game&, std::string_view, bool) { return false; }
std::string LocationOf(Game&, std::string_view) { return {}; }

}  // namespace tarve
