#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "platform/console.h"
#include "value/property_value.h"

namespace fernwick {

/// A value for one directive of a log format: for "%@" a property value (null: absent) or a text
/// (empty optional: absent), for "%lu" a number.
using LogArgument =
    std::variant<const PropertyValue*, std::optional<std::string_view>, unsigned long>;

/// Writes one line to the system log of `console`. In `format`, "%@" is replaced by the textual
/// form of a value: the text of a string, "(null)" for an absent value, the textual dump of
/// anything else; "%lu" for a number in decimal. REQUIRES: as many arguments as directives, in
/// their order.
void PlatformLog(Console& console, std::string_view format,
                 std::initializer_list<LogArgument> arguments = {});

/// The message that PlatformLog writes.
std::string FormatLogMessage(std::string_view format, std::initializer_list<LogArgument> arguments);

}  // namespace fernwick
