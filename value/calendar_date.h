#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "value/property_value.h"

namespace fernwick {

/// Reads "YYYY-MM-DDThh:mm:ssZ", a real day of the years 1 to 9999; empty when the text is
/// anything else.
std::optional<Date> ParseDate(std::string_view text);

/// The date in the form that ParseDate reads.
std::string FormatDate(Date date);

/// The date that is `seconds` after 2001-01-01T00:00:00Z, rounded down to whole seconds;
/// empty when it is outside the years 1 to 9999.
std::optional<Date> DateFromSecondsSince2001(double seconds);

/// The inverse of DateFromSecondsSince2001, exact.
double SecondsSince2001(Date date);

}  // namespace fernwick
