#include "plan/launcher_plist.h"

#include "value/xml/writer.h"

namespace fernwick {
namespace {

Dictionary LauncherPropertyList(const std::vector<std::string>& arguments, const PlanValues& plan) {
  Dictionary list;
  list.Set("Version", 1);  // of the list's own format
  list.Set("Priority", plan.lowestPriority);
  list.Set("HallowArguments", Array(arguments.begin(), arguments.end()));
  if (plan.nvramToSet.Size() > 0) list.Set("SetNVRAM", plan.nvramToSet);
  if (!plan.nvramToClear.empty()) list.Set("ClearNVRAM", plan.nvramToClear);
  return list;
}

}  // namespace

int WritePlan(Output& out, bool verbose, const std::vector<std::string>& arguments,
              const PlanValues& plan) {
  // The builder always adds the options argument; this guard stays for the day it does not.
  if (arguments.empty()) return 1;
  if (verbose) out.Write("\n\nResulting Kestrel Plist:\n\n");
  out.Write(WriteXmlPropertyList(LauncherPropertyList(arguments, plan)));
  out.Write("\n");
  out.Flush();
  return 0;
}

}  // namespace fernwick
