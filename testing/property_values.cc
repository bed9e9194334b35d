#include "testing/property_values.h"

namespace fernwick::testing {

Arena& ValueArena() {
  static Arena arena;
  return arena;
}

}  // namespace fernwick::testing
