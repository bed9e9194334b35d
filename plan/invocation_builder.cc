#include "plan/invocation_builder.h"

#include <initializer_list>
#include <utility>

#include "personality/configuration.h"
#include "plan/value_conversions.h"
#include "platform/file_system.h"
#include "platform/platform_log.h"
#include "value/textual_dump.h"

namespace fernwick {
namespace {

enum class UtilityFamily { None, Ridge, Port };

// Which EFI flashing utility serves the type.
UtilityFamily FamilyOf(std::string_view type) {
  if (type == PersonalityType::LegacyThunderbolt || type == PersonalityType::Thunderbolt) {
    return UtilityFamily::Ridge;
  }
  if (type == PersonalityType::LegacyUsbc || type == PersonalityType::Usbc) {
    return UtilityFamily::Port;
  }
  return UtilityFamily::None;
}

// The utility's file in the PersonalitiesDirectory; a type without one leaves the bare directory.
std::string_view UtilityFile(UtilityFamily family) {
  // coverage: 1 of 4 branches: The enumeration has no fourth value.
  switch (family) {
    case UtilityFamily::Ridge: return "RidgeFlash.efi";
    case UtilityFamily::Port: return "PortFlash.efi";
    case UtilityFamily::None: break;
  }
  return "";
}

void Append(std::vector<std::string>& list, std::initializer_list<std::string> words) {
  list.insert(list.end(), words);
}

std::string JoinWithBlanks(const std::vector<std::string>& words) {
  std::string joined;
  for (const auto& word : words) {
    if (!joined.empty()) joined += ' ';
    joined += word;
  }
  return joined;
}

}  // namespace

std::string_view FlashingUtility(std::string_view type) {
  return UtilityFile(FamilyOf(type));
}

InvocationBuilder::InvocationBuilder(std::string directory,
                                     const std::optional<std::string>& boardIdString)
    : personalitiesDirectory(std::move(directory)),
      boardDirectory(BoardDirectory(boardIdString, personalitiesDirectory)) {}

bool InvocationBuilder::AddMatch(const MatchRecord& match, PlanValues& plan, bool verbose,
                                 Console& console) {
  const std::string type(TextOf(match.Find("Personality Type")).value_or(AbsentText));
  if (type != currentType) StartGroup(type);
  MergeNvram(match, plan);
  const auto family = FamilyOf(type);
  if (family != UtilityFamily::None) {
    const auto image = TextOf(match.Find("Firmware")).value_or("");
    if (image.empty() || !boardDirectory) {
      PlatformLog(console, "Error in personality: no firmware image to flash for type %@",
                  {std::string_view(type)});
      return false;
    }
    family == UtilityFamily::Ridge ? AddThunderboltOptions(match) : AddPortOptions();
    Append(arguments, {"-payload", AppendPathComponent(*boardDirectory, image)});
  } else if (verbose) {
    console.Write("\t*** No supported platform type? (was using " + type + ")***\n");
    console.Flush();
  }
  ++payloadIndex;
  return true;
}

// The whole head is repeated for each group, deliberately: it must not be merged into one.
void InvocationBuilder::StartGroup(std::string_view type) {
  currentType = type;
  Append(arguments, {"/usr/sbin/hallow", "-verbose", "-mount", "/"});
  firmwarePath = personalitiesDirectory;
  firmwarePath += FlashingUtility(type);
  Append(arguments, {"-firmware", firmwarePath});
  Append(trailer, {"-folder", "TBTH", "-options"});
  payloadIndex = 0;
}

void InvocationBuilder::AddThunderboltOptions(const MatchRecord& match) {
  const auto rid = std::to_string(Integer32Of(match.Find("RID")));
  const char* mode = Integer32Of(match.Find("Firmware Mode")) == 0 ? "-ee" : "-fs";
  Append(optionTokens, {"-g", "-o", "-sr", rid, "0", mode, PayloadVariable()});
}

void InvocationBuilder::AddPortOptions() {
  Append(optionTokens, {"-g", "-os", "-o", "u", "-f", PayloadVariable()});
}

// The NVRAM variable that carries the payload.
std::string InvocationBuilder::PayloadVariable() const {
  return "efi-quince-payload" + std::to_string(payloadIndex) + "-data";
}

void InvocationBuilder::FinishInvocation() {
  optionTokens.emplace_back("-noreset");
  arguments.insert(arguments.end(), trailer.begin(), trailer.end());
  arguments.push_back(JoinWithBlanks(optionTokens));
}

void InvocationBuilder::PrintInvocation(Console& console) const {
  console.Write("Hallow Invocation:\n");
  console.Flush();
  console.Write("\t");
  for (const auto& argument : arguments) {
    const bool containsBlank = argument.find(' ') != std::string::npos;
    console.Write(containsBlank ? "\"" + argument + "\"" : argument + " ");
  }
  console.Write("\n");
  console.Flush();
}

}  // namespace fernwick
