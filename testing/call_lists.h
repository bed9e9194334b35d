#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::testing {

/// Calls as a LoggingRegistry logs them, in their order.
using CallList = std::vector<std::string>;

/// The lists one after the other.
CallList Joined(std::initializer_list<CallList> lists);

/// Own properties of one entry fetched one after the other.
CallList PropertyReads(std::string_view entry, std::initializer_list<std::string_view> keys);

/// What filling a record without "RID" from a Thunderbolt controller with a "ROM Version" reads.
CallList ThunderboltFieldReads(std::string_view controller);

}  // namespace fernwick::testing
