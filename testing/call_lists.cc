#include "testing/call_lists.h"

namespace fernwick::testing {

CallList Joined(std::initializer_list<CallList> lists) {
  CallList joined;
  for (const auto& list : lists) joined.insert(joined.end(), list.begin(), list.end());
  return joined;
}

CallList PropertyReads(std::string_view entry, std::initializer_list<std::string_view> keys) {
  CallList reads;
  for (const auto key : keys) {
    reads.push_back("GetProperty " + std::string(entry) + " " + std::string(key));
  }
  return reads;
}

CallList ThunderboltFieldReads(std::string_view controller) {
  return PropertyReads(controller, {"UID", "Vendor ID", "Device ID", "Revision ID",
                                    "Device Model Name", "Device Model ID", "Device Model Revision",
                                    "Firmware Mode", "UID", "ROM Version", "EEPROM Revision"});
}

}  // namespace fernwick::testing
