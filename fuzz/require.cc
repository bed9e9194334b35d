#include "fuzz/require.h"

#include <unistd.h>

#include <cstdlib>
#include <string>

namespace fernwick::fuzz {

void Require(bool property, std::string_view name) {
  if (property) return;
  const std::string line = "fuzz: property violated: " + std::string(name) + "\n";
  [[maybe_unused]] const auto written = write(STDERR_FILENO, line.data(), line.size());
  std::abort();
}

}  // namespace fernwick::fuzz
