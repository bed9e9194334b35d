#include "testing/reference/bypass_switch.h"

#include <optional>
#include <string>

#include "value/unicode/utf8.h"

namespace fernwick::testing::reference {
namespace {

bool SetsSwitch(const std::string& bootArguments, std::string_view name) {
  const std::string assignment = " " + std::string(name) + "=";
  for (auto at = bootArguments.find(assignment); at != std::string::npos;
       at = bootArguments.find(assignment, at + 1)) {
    const auto value = at + assignment.size();
    if (bootArguments.substr(value, bootArguments.find_first_of(" =", value) - value) != "0") {
      return true;
    }
  }
  return false;
}

}  // namespace

bool HasBareName(std::string_view bootArguments, std::string_view name) {
  const auto padded = " " + std::string(bootArguments) + " ";
  return padded.find(" " + std::string(name) + " ") != std::string::npos;
}

bool IsSwitchSet(std::string_view bootArguments, const PropertyValue* variable,
                 std::string_view name) {
  if (SetsSwitch(" " + std::string(bootArguments) + " ", name)) return true;
  if (variable == nullptr) return false;
  if (const auto text = variable->AsString()) return *text != "0";
  const auto bytes = variable->AsData();
  return bytes && *bytes != "0" && FindInvalidUtf8(*bytes) == npos;
}

}  // namespace fernwick::testing::reference
