#include "value/key_interner.h"

#include "value/key_hash.h"

namespace fernwick {

DictionaryKey KeyInterner::Intern(const SharedBytes& text) {
  auto& recent = recent_[KeyHash(text.View()) % SlotCount];
  if (!recent || recent->View() != text.View()) recent.emplace(text);
  return *recent;
}

}  // namespace fernwick
