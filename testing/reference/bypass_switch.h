#pragma once

#include <string_view>

#include "value/property_value.h"

namespace fernwick::testing::reference {

/// A second implementation of the bypass switches, which searches a text where the tool splits it
/// into tokens.

/// Whether the name is among the tokens of the boot arguments without "=", which is a fault.
bool HasBareName(std::string_view bootArguments, std::string_view name);

/// Whether the switch is set, by the boot arguments or by the NVRAM variable of its name (null:
/// absent). REQUIRES: the bare name is not among the arguments.
bool IsSwitchSet(std::string_view bootArguments, const PropertyValue* variable,
                 std::string_view name);

}  // namespace fernwick::testing::reference
