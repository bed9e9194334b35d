#include "lab/survey/diff/matches_by_controller.h"

#include "lab/survey/text.h"

namespace fernwick::lab {

std::string NameOf(const MatchedPair& pair) {
  const auto of = [&](std::string_view key) {
    return CellText(ToJson(pair.Controller().Find(key)));
  };
  return std::string(pair.key->key) + ", controller " + std::to_string(pair.controller + 1) +
         " (RID " + of("RID") + ", port " + of("Port Address") + ", version " + of("Version") + ")";
}

}  // namespace fernwick::lab
