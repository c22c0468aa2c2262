#include "world/RoomDescription.h"

#include "script/Game.h"

namespace tarve {

void DescribeRoom(Game&, std::string_view) {}
void RefreshThingsHere(Game&) {}

}  // namespace tarve
