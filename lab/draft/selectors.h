#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "lab/draft/controller_table.h"

namespace fernwick::lab {

/// A set of constraints, one bit each: those of the columns, then the four bounds.
using ConstraintSet = std::uint32_t;

/// The constraints that personalities of a type may have on controllers of a table.
struct ConstraintSchema {
  /// REQUIRES: the table has a column for each key of the type.
  ConstraintSchema(TypeSet type, const ControllerTable& table);

  std::size_t columns = 0;
  std::vector<std::string_view> names;  // the key of each constraint, by bit
  ConstraintSet required = 0;
  ConstraintSet optional = 0;             // without the identifying ones
  ConstraintSet identifying = 0;          // optional ones whose values are unique to one chip
  std::vector<std::size_t> byPreference;  // the bits of those that are not required, the best first

  // All sets of those that are not required: those with the fewest first, of equally many those
  // whose least preferred constraint is preferred most.
  std::vector<ConstraintSet> sets;

  ConstraintSet All() const { return required | optional | identifying; }
};

/// What some controllers have in common: a personality with the chosen constraints accepts them.
class Selector {
 public:
  explicit Selector(const ConstraintSchema& schema) : schema_(&schema) {
    values_.resize(schema.columns);
  }

  void Add(const ControllerRow& row);

  /// The constraints that exclude the controller, as they are or, where `extra` is not null, once
  /// that controller is added. A column is no constraint where one that was added lacks the key.
  ConstraintSet ExclusionsOf(const ControllerRow& row, const ControllerRow* extra = nullptr) const;

  /// Whether a personality with the chosen constraints accepts the controller.
  bool Accepts(const ControllerRow& row) const {
    return (ExclusionsOf(row) & (chosen | schema_->required)) == 0;
  }

  /// The values of a column, sorted, each once.
  const std::vector<std::uint32_t>& ValuesOf(std::size_t column) const { return values_[column]; }
  std::pair<std::uint32_t, std::uint32_t> Versions() const { return versions_; }
  std::pair<int, int> Revisions() const { return revisions_; }

  ConstraintSet chosen = 0;  // without the required ones

 private:
  const ConstraintSchema* schema_;
  std::vector<std::vector<std::uint32_t>> values_;
  ConstraintSet lacking_ = 0;  // columns that one lacks
  std::pair<std::uint32_t, std::uint32_t> versions_ = {std::numeric_limits<std::uint32_t>::max(),
                                                       0};
  std::pair<int, int> revisions_ = {255, 0};
};

/// A controller to select and an excepted one that no personality can distinguish, by their
/// indexes.
using Indistinguishable = std::pair<std::size_t, std::size_t>;

/// How controllers are selected.
struct Separation {
  std::vector<Selector> selectors = {};

  // At most one for each controller to select.
  std::vector<Indistinguishable> indistinguishable = {};

  bool isTooLarge = false;  // nothing was searched for
};

/// How many pairs of a controller to select and an excepted one are compared at most.
inline constexpr std::size_t MaxComparedPairs = std::size_t{1} << 22;

/// The different controllers for which all partitions into selectors are tried.
inline constexpr std::size_t MaxExhaustive = 10;

/// Finds selectors that together accept every wanted controller and no excepted one, with the
/// constraints that they need. An identifying constraint is used only for controllers that the
/// other constraints do not distinguish from every excepted one. Within that the selectors are as
/// few as possible, and then their constraints, where an exhaustive search is affordable: for up to
/// MaxExhaustive wanted controllers, as long as their subsets times the excepted controllers are at
/// most MaxComparedPairs. Otherwise the selectors are found by first fit. A selector has as few
/// constraints as its controllers allow, of these the best.
Separation FindSelectors(const ConstraintSchema& schema, const std::vector<ControllerRow>& wanted,
                         const std::vector<ControllerRow>& excepted);

}  // namespace fernwick::lab
