#pragma once

#include <string_view>

#include "value/property_value.h"

namespace fernwick::fuzz {

/// The rule of the bypass switches a second time, by searching a text where the tool takes it apart
/// token by token.

/// Whether the boot arguments hold the name as a token without "=", which ends the tool abnormally.
bool HoldsBareName(std::string_view bootArguments, std::string_view name);

/// Whether the switch is set, by the boot arguments or by the NVRAM variable of its name (null:
/// absent). REQUIRES: the bare name is not among the arguments.
bool IsSwitchSet(std::string_view bootArguments, const PropertyValue* variable,
                 std::string_view name);

}  // namespace fernwick::fuzz
