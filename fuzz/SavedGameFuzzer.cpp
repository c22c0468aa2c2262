// libFuzzer entry point: arbitrary bytes loaded as a saved game over a game in progress.
#include <cstddef>
#include <cstdint>

#include "FuzzTargets.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  // libFuzzer calls this once per input; the scratch folder and its copies of the games are
  // made once per process and removed when the process ends.
  static const tarve::fuzz::Workspace workspace(TARVE_SOURCE_DIR);
  if (!workspace.ok()) __builtin_trap();
  tarve::fuzz::RunSavedGame(workspace, data, size);
  return 0;
}
