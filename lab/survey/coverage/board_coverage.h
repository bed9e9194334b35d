#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "lab/support/tool_run.h"
#include "personality/personality.h"
#include "personality/requirements.h"
#include "registry/key_schema.h"
#include "value/property_value.h"

namespace fernwick::lab {

/// How often each of several items was tested against a controller, by index: the personalities of
/// a key, or the elements of their lists. An item is tested as often as it matches and is rejected.
struct TestCounts {
  std::vector<std::size_t> tested = {};
  std::vector<std::size_t> matched = {};

  /// By the requirements of the type, then by item: how often it was rejected by that one first.
  /// Those of a requirement that rejects nothing first are empty: a configuration may have many
  /// personalities.
  std::vector<std::vector<std::size_t>> rejected = {};

  /// Counts a test of an item. `first` is the index of the requirement that rejects it first; that
  /// after the last one where it matches.
  void Count(std::size_t item, std::size_t first);

  /// Adds the counts of other runs. REQUIRES: they are of the same items.
  void Add(const TestCounts& other);

  friend bool operator==(const TestCounts&, const TestCounts&) = default;
};

/// What runs exercised of one top-level key of a configuration: the counts of its candidates, for
/// pairs of a personality and a controller, not those after a match. Without candidates where the
/// key names no type or its value has another shape.
struct TypeCoverage : TestCounts {
  TypeSet type = Types::None;
  std::vector<bool> isPersonality = {};        // by candidate: whether it is a dictionary
  std::vector<std::size_t> firstElement = {};  // by candidate: the index in `elements`

  /// The elements of all lists. One is tested when the value of a controller is compared with it:
  /// the personality is tested, no requirement before that of the list rejects it, the controller
  /// has a value, and no element before it in the list is equal. It is rejected by the requirement
  /// of its list where it is not equal, otherwise by the first one that rejects the personality.
  TestCounts elements = {};

  friend bool operator==(const TypeCoverage&, const TypeCoverage&) = default;
};

/// What runs exercised of one configuration.
struct BoardCoverage {
  /// Nothing yet. Without keys where the configuration is not a dictionary.
  explicit BoardCoverage(const PropertyValue& configuration);

  std::size_t runs = 0;
  std::vector<TypeCoverage> keys;  // in the order of the file

  /// Adds the counts of other runs. Returns false, and adds nothing, where the other configuration
  /// has other keys, personalities or lists.
  bool Add(const BoardCoverage& other);

  friend bool operator==(const BoardCoverage&, const BoardCoverage&) = default;
};

/// What one run exercised of its configuration. REQUIRES: it has one, a dictionary, and no fault.
BoardCoverage CoverageOf(const ToolRun& run);

/// The personalities and list elements of a configuration, and how many were exercised.
struct CoverageCounts {
  std::size_t personalities = 0;  // the candidates that are dictionaries
  std::size_t testedPersonalities = 0;
  std::size_t matchedPersonalities = 0;
  std::size_t elements = 0;
  std::size_t testedElements = 0;
  std::size_t matchedElements = 0;

  CoverageCounts& operator+=(const CoverageCounts& other);

  std::size_t All() const { return personalities + elements; }
  std::size_t Matched() const { return matchedPersonalities + matchedElements; }

  /// The matched ones in tenths of a percent of all, rounded down; 1000 where there are none.
  std::size_t PerMille() const { return All() == 0 ? 1000 : Matched() * 1000 / All(); }
};

CoverageCounts CountsOf(const BoardCoverage& coverage);

/// A list in a personality: the values of a key, of which a controller needs one.
using ListVisitor = std::function<void(const Requirement& requirement, Array list)>;

/// Visits, in the order of the file, every array under a key of which the type accepts several
/// values. Their elements, one after the other, are those of TypeCoverage.
void ForEachList(TypeSet type, Dictionary personality, const ListVisitor& visit);

}  // namespace fernwick::lab
