#include "lab/report/commands.h"

#include "lab/report/markup.h"

namespace fernwick::lab {
namespace {

std::string CommandOf(const std::string& verb, const std::string& payload,
                      const std::string& format) {
  return "fernwick-lab " + verb + " -p " + ShellWord(payload) + format + " RECORDING...";
}

}  // namespace

ReportCommands::ReportCommands(const ReportedPayloads& payloads)
    : survey(CommandOf("survey", payloads.payload, "")),
      settle(CommandOf("settle", payloads.payload, "")),
      coverage(CommandOf("coverage", payloads.payload, "")),
      lint("fernwick-lab lint " + ShellWord(payloads.payload)) {
  if (!payloads.old) return;
  diff = CommandOf("diff", *payloads.old, " -p " + ShellWord(payloads.payload) + " --each");
}

}  // namespace fernwick::lab
