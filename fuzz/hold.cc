#include "fuzz/hold.h"

#include <unistd.h>

#include <cstdlib>
#include <string>

namespace fernwick::fuzz {

void Hold(bool property, std::string_view name) {
  if (property) return;
  // Not through the stream, which a target may have put aside.
  const std::string line = "fuzz: does not hold: " + std::string(name) + "\n";
  [[maybe_unused]] const auto written = write(STDERR_FILENO, line.data(), line.size());
  std::abort();
}

}  // namespace fernwick::fuzz
