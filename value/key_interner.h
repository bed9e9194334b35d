#pragma once

#include <array>
#include <cstddef>

#include "value/shared_bytes.h"

namespace fernwick {

/// Gives equal keys of a file the same bytes: most of its dictionaries have the same few keys, and
/// who reads them all need not go through the whole file for them. It knows a bounded number of
/// keys, so equal keys may have bytes of their own all the same.
class KeyInterner {
 public:
  /// `key`, or one equal to it that was given before.
  SharedBytes Intern(SharedBytes key);

 private:
  static constexpr std::size_t SlotCount = 128;

  std::array<SharedBytes, SlotCount> recent_;  // by their hashes
};

}  // namespace fernwick
