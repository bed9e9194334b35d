#include "plan/invocation_builder.h"

#include <initializer_list>
#include <utility>

#include "personality/configuration.h"
#include "plan/value_conversions.h"
#include "platform/file_system.h"
#include "platform/platform_log.h"
#include "registry/key_schema.h"
#include "value/textual_dump.h"

namespace fernwick {
namespace {

enum class UtilityFamily { None, Ridge, Port };

// Which EFI flashing utility serves the type.
UtilityFamily FamilyOf(std::string_view type) {
  switch (TypeNamed(type)) {
    case Types::LegacyThunderbolt:
    case Types::Thunderbolt: return UtilityFamily::Ridge;
    case Types::LegacyUsbc:
    case Types::Usbc: return UtilityFamily::Port;
    default: return UtilityFamily::None;
  }
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

InvocationBuilder::InvocationBuilder(std::string personalitiesDirectory,
                                     const std::optional<std::string>& boardIdString)
    : personalitiesDirectory_(std::move(personalitiesDirectory)),
      boardDirectory_(BoardDirectory(boardIdString, personalitiesDirectory_)) {}

bool InvocationBuilder::AddMatch(const MatchRecord& match, PlanValues& plan, bool verbose,
                                 Console& console) {
  const std::string type(TextOf(match.Find("Personality Type")).value_or(AbsentText));
  if (type != invocation_.currentType) StartGroup(type);
  MergeNvram(match, plan);
  const auto family = FamilyOf(type);
  if (family != UtilityFamily::None) {
    const auto image = TextOf(match.Find("Firmware")).value_or("");
    if (image.empty() || !boardDirectory_) {
      PlatformLog(console, "Error in personality: no firmware image to flash for type %@",
                  {std::string_view(type)});
      return false;
    }
    family == UtilityFamily::Ridge ? AddThunderboltOptions(match) : AddPortOptions();
    Append(invocation_.arguments, {"-payload", AppendPathComponent(*boardDirectory_, image)});
  } else if (verbose) {
    console.Write("\t*** No supported platform type? (was using " + type + ")***\n");
    console.Flush();
  }
  ++invocation_.payloadIndex;
  return true;
}

// The whole head is repeated for each group, deliberately: it must not be merged into one.
void InvocationBuilder::StartGroup(std::string_view type) {
  auto firmwarePath = personalitiesDirectory_;
  firmwarePath += FlashingUtility(type);
  invocation_.currentType = type;
  Append(invocation_.arguments,
         {"/usr/sbin/hallow", "-verbose", "-mount", "/", "-firmware", firmwarePath});
  Append(invocation_.trailer, {"-folder", "TBTH", "-options"});
  invocation_.payloadIndex = 0;
}

void InvocationBuilder::AddThunderboltOptions(const MatchRecord& match) {
  const auto rid = std::to_string(Integer32Of(match.Find("RID")));
  const char* mode = Integer32Of(match.Find("Firmware Mode")) == 0 ? "-ee" : "-fs";
  Append(invocation_.optionTokens, {"-g", "-o", "-sr", rid, "0", mode, PayloadVariable()});
}

void InvocationBuilder::AddPortOptions() {
  Append(invocation_.optionTokens, {"-g", "-os", "-o", "u", "-f", PayloadVariable()});
}

// The NVRAM variable that carries the payload.
std::string InvocationBuilder::PayloadVariable() const {
  return "efi-quince-payload" + std::to_string(invocation_.payloadIndex) + "-data";
}

void InvocationBuilder::FinishInvocation() {
  auto& arguments = invocation_.arguments;
  const auto& trailer = invocation_.trailer;
  arguments.insert(arguments.end(), trailer.begin(), trailer.end());
  invocation_.optionTokens.emplace_back("-noreset");
  arguments.push_back(JoinWithBlanks(invocation_.optionTokens));
}

void InvocationBuilder::PrintInvocation(Console& console) const {
  console.Write("Hallow Invocation:\n");
  console.Flush();
  console.Write("\t");
  for (const auto& argument : invocation_.arguments) {
    const bool containsBlank = argument.find(' ') != std::string::npos;
    console.Write(containsBlank ? "\"" + argument + "\"" : argument + " ");
  }
  console.Write("\n");
  console.Flush();
}

}  // namespace fernwick
