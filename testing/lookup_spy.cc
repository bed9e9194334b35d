#include "testing/lookup_spy.h"

#include <string_view>

namespace fernwick::testing {
namespace {

LookupSpy* current = nullptr;

}  // namespace

LookupSpy::LookupSpy(const Dictionary& dictionary) : dictionary_(dictionary) {
  current = this;
}

LookupSpy::~LookupSpy() {
  current = nullptr;
}

void LookupSpy::Note(const Dictionary& dictionary, std::string_view key) {
  if (current != nullptr && &current->dictionary_ == &dictionary) current->keys_.emplace(key);
}

}  // namespace fernwick::testing

// The linker turns Dictionary::Find into __wrap_ of its symbol and gives the function itself the
// name __real_.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

const fernwick::PropertyValue*
__real__ZNK8fernwick10Dictionary4FindESt17basic_string_viewIcSt11char_traitsIcEE(
    const fernwick::Dictionary* dictionary, std::string_view key);

const fernwick::PropertyValue*
__wrap__ZNK8fernwick10Dictionary4FindESt17basic_string_viewIcSt11char_traitsIcEE(
    const fernwick::Dictionary* dictionary, std::string_view key) {
  fernwick::testing::LookupSpy::Note(*dictionary, key);
  return __real__ZNK8fernwick10Dictionary4FindESt17basic_string_viewIcSt11char_traitsIcEE(
      dictionary, key);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
