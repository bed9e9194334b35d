#include "testing/inputs/odd_values.h"

#include "testing/computer.h"

namespace fernwick::testing {

std::vector<NamedValue> NonNumbers() {
  return {
      {"TextOfANumber", "5"},
      {"EmptyText", ""},
      {"FourBytes", Bytes({"\5\0\0\0", 4})},
      {"NoBytes", Bytes("")},
      {"EmptyArray", Array()},
      {"ArrayOfANumber", List({5})},
      {"EmptyDictionary", Dictionary()},
      {"DictionaryOfANumber", Dict({{"Value", 5}})},
      {"Date", Date{5}},
  };
}

}  // namespace fernwick::testing
