#pragma once

#include <string_view>

#include "value/property_list_reader.h"
#include "value/record.h"

namespace fernwick::lab {

/// Which entries a sample consists of, and how the controller reports its version.
struct SampleShape {
  bool hasPort = false;
  bool hasThunderbolt = false;     // above the port where there is one
  bool reportsHundredths = false;  // the version is the Thunderbolt controller's
  bool hasOwnRid = false;          // the port has an RID of its own

  friend bool operator==(const SampleShape&, const SampleShape&) = default;
};

/// A computer with one controller, by the values that its hardware record is to have.
struct SampleController {
  SampleShape shape;
  int boardRevision = 0;
  PropertyValue version = {};
  Record values = {};  // under every other key; "RID" where the port has its own
};

/// The smallest recording of such a computer of that board. It views the values of the controller.
/// REQUIRES: `board` has no zero byte; a Thunderbolt controller has a "Ridge UID", and the values
/// are those that a controller can have.
PropertyList RecordSample(std::string_view board, const SampleController& controller);

}  // namespace fernwick::lab
