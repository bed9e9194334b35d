#include "value/key_interner.h"

#include <utility>

#include "value/key_hash.h"

namespace fernwick {

SharedBytes KeyInterner::Intern(SharedBytes key) {
  auto& recent = recent_[KeyHash(key.View()) % SlotCount];
  if (recent != key) recent = std::move(key);
  return recent;
}

}  // namespace fernwick
