#include "testing/lookup_spy.h"

#include <dlfcn.h>

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

// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

#ifdef FERNWICK_SHARED_FOLDERS

// This library is loaded before the one of value/ and so takes the place of Dictionary::Find.
const fernwick::PropertyValue*
_ZNK8fernwick10Dictionary4FindESt17basic_string_viewIcSt11char_traitsIcEE(
    const fernwick::Dictionary* dictionary, std::string_view key) {
  using Find = const fernwick::PropertyValue* (*)(const fernwick::Dictionary*, std::string_view);
  static const auto find = reinterpret_cast<Find>(dlsym(
      RTLD_NEXT, "_ZNK8fernwick10Dictionary4FindESt17basic_string_viewIcSt11char_traitsIcEE"));
  fernwick::testing::LookupSpy::Note(*dictionary, key);
  return find(dictionary, key);
}

#else

// The linker turns Dictionary::Find into __wrap_ of its symbol and gives the function itself the
// name __real_.
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

#endif

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
