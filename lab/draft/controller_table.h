#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "lab/lint/acceptance.h"
#include "registry/hardware_record.h"
#include "registry/key_schema.h"
#include "value/arena.h"

namespace fernwick::lab {

/// A controller by the numbers of its values: what a personality can distinguish of it.
struct ControllerRow {
  std::vector<std::uint32_t> values;  // by column of the table; 0: the record lacks the key
  std::uint32_t version = 0;
  int boardRevision = 0;
  bool runsEngineeringFirmware = false;

  /// Its computer has a switch that bypasses the version check: the installed version, if it is
  /// known, and engineering firmware exclude no personality but by its bounds.
  bool bypassesVersionCheck = false;

  /// Whether it has a counterpart of the other kind: a port a Thunderbolt controller above it, a
  /// Thunderbolt controller a listed port below it.
  bool hasCounterpart = false;

  /// The version is that of a Thunderbolt controller: for a port, of the one above it.
  bool hasThunderboltVersion = false;

  friend auto operator<=>(const ControllerRow&, const ControllerRow&) = default;
};

/// The values of the controllers of one kind in many computers. Equal values have one number
/// (interning), and are copied: nothing views a recording.
class ControllerTable {
 public:
  /// With a column for each key of which a personality of the type tests a set of values.
  explicit ControllerTable(TypeSet type);

  const std::vector<const Key*>& Columns() const { return columns_; }

  /// The row of a controller. What no personality can require counts as absent: NaN, and a value of
  /// another kind than the personalities have under the key. REQUIRES: Ranked was not called yet.
  ControllerRow RowOf(const HardwareRecord& record, int boardRevision);

  /// The row with its values numbered in their order, from 1: smaller numbers are less.
  ControllerRow Ranked(ControllerRow row);

  /// The value with that rank. REQUIRES: there is a ranked row.
  const PropertyValue& ValueOf(std::uint32_t rank) const { return *byRank_[rank - 1]; }

  /// The next value in the order; null after the last one. REQUIRES: as ValueOf.
  const PropertyValue* ValueAfter(std::uint32_t rank) const {
    return rank < byRank_.size() ? byRank_[rank] : nullptr;
  }

  /// The record of a ranked row, as far as a personality distinguishes it.
  HardwareRecord RecordOf(const ControllerRow& row) const;

 private:
  struct Before {
    bool operator()(const PropertyValue& a, const PropertyValue& b) const {
      return IsBefore(&a, &b);
    }
  };

  std::uint32_t NumberOf(const PropertyValue* value, const Key& key);

  std::vector<const Key*> columns_;
  Arena arena_;
  std::map<PropertyValue, std::uint32_t, Before> numbers_;
  std::vector<std::uint32_t> ranks_;  // by number
  std::vector<const PropertyValue*> byRank_;
};

}  // namespace fernwick::lab
