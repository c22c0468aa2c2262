#include "game/Host.h"

#include <chrono>

namespace tarve {

std::uint32_t PlatformServices::ClockSeed() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return static_cast<std::uint32_t>(
      std::chrono::duration_cast<std::chrono::microseconds>(now).count());
}

}  // namespace tarve
