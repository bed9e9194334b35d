#include "plan/launcher_plist.h"

#include "value/xml/writer.h"

namespace fernwick {
int WritePlan(Console& console, bool verbose, const std::vector<std::string>& arguments,
              const PlanValues& plan) {
  // Unreachable in a run: the builder always adds the options argument.
  if (arguments.empty()) return 1;
  if (verbose) console.Write("\n\nResulting Kestrel Plist:\n\n");
  const std::vector<PropertyValue> words(arguments.begin(), arguments.end());
  Record list = {{"Version", 1},  // of the list's own format
                 {"Priority", plan.lowestPriority},
                 {"HallowArguments", Array(words)}};
  const auto toSet = NvramToSet(plan);
  const auto toClear = NvramToClear(plan);
  if (toSet.Size() > 0) list.Set("SetNVRAM", Dictionary(toSet));
  if (!toClear.empty()) list.Set("ClearNVRAM", Array(toClear));
  WriteXmlPropertyList(Dictionary(list), std::string::npos,
                       [&](std::string_view part) { console.Write(part); });
  console.Write("\n");
  console.Flush();
  return 0;
}

}  // namespace fernwick
