#include "personality/match_record.h"

#include "registry/key_schema.h"

namespace fernwick {
MatchRecord BuildMatchRecord(const Personality& personality, const HardwareRecord& controller,
                             std::string_view type) {
  MatchRecord match(personality);
  const auto setFromController = [&](std::string_view key) {
    match.SetOrRemove(key, controller.Find(key));
  };
  setFromController("RID");
  const auto* version = match.Find("Version");
  if (version == nullptr || !version->IsNumber()) setFromController("Version");
  // The condition is "RID" and not "Port Address", deliberately: the address of a controller with a
  // RID is set even where the personality has none; without a RID the file's address stays.
  if (match.Find("RID") != nullptr) setFromController("Port Address");
  for (const auto& key : KeySchema()) {
    const bool isOfController = key.inMatch == MatchValue::OfController;
    if (isOfController && match.Find(key.name) != nullptr) setFromController(key.name);
  }
  match.Set("Personality Type", type);
  const bool controllerHasMode = controller.Find("Firmware Mode") != nullptr;
  if (type == PersonalityType::Thunderbolt && controllerHasMode) setFromController("Firmware Mode");
  return match;
}

}  // namespace fernwick
