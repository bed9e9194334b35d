#pragma once

#include <cstdint>
#include <string>

#include "value/property_value.h"

/// The requirement checks a second time, as plainly as they can be told: each rule is one function,
/// its steps in their order, nothing shared, nothing clever. They are there to be compared with the
/// real ones over more inputs than anybody can write expectations for, so they must not share code
/// with them: what both use, no comparison tells wrong from right. All that they take from
/// elsewhere is the value as data; looking up a key and comparing numbers are their own.
///
/// Each check appends to `diagnostics` what the real one writes to standard error. Whether the
/// version check is bypassed is an argument here.
namespace fernwick::testing::reference {

/// Whether a "LegacyUSBC" personality applies to a port.
bool CheckLegacyUsbcRequirements(const Dictionary& personality, const Dictionary& hardware,
                                 bool bypassVersionCheck, std::string& diagnostics);

/// Whether a "USBC" personality applies to a port. Of `boardRevision` only the low 8 bits count.
bool CheckUsbcRequirements(const Dictionary& personality, const Dictionary& hardware,
                           std::uint32_t boardRevision, bool bypassVersionCheck,
                           std::string& diagnostics);

/// Whether a "LegacyThunderbolt" personality applies to a controller.
bool CheckLegacyThunderboltRequirements(const Dictionary& personality, const Dictionary& hardware,
                                        bool bypassVersionCheck, std::string& diagnostics);

/// Whether a "Thunderbolt" personality applies to a port. Of `boardRevision` only the low 8 bits
/// count.
bool CheckThunderboltRequirements(const Dictionary& personality, const Dictionary& hardware,
                                  std::uint32_t boardRevision, bool bypassVersionCheck,
                                  std::string& diagnostics);

}  // namespace fernwick::testing::reference
