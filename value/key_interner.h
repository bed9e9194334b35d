#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "value/dictionary_key.h"
#include "value/shared_bytes.h"

namespace fernwick {

/// Makes the keys of dictionaries from the text of a file, equal ones mostly as copies of each
/// other. It remembers a bounded number of keys.
class KeyInterner {
 public:
  /// A key of that text.
  DictionaryKey Intern(const SharedBytes& text);

 private:
  static constexpr std::size_t SlotCount = 512;

  std::array<std::optional<DictionaryKey>, SlotCount> recent_;  // by their hashes
};

}  // namespace fernwick
