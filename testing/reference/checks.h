#pragma once

#include <cstdint>
#include <string>

#include "value/property_value.h"

/// The reference implementation of the requirement checks, as plain as possible: each rule is one
/// function with its steps in order, and nothing is shared. It is compared with the real checks
/// over more inputs than anyone can write expectations for (differential testing). It must not
/// share code with them, because a comparison cannot find a fault in what both use: only the values
/// as data come from elsewhere, and looking up a key and comparing numbers are implemented again.
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
