#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "lab/lint/acceptance.h"
#include "lab/lint/finding.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {

/// A personality is compared with no more than this many others. Comparing all with all would last
/// hours for a large configuration of personalities that are all alike.
inline constexpr std::size_t MaxCompared = 256;

/// Personalities by what they accept under each key.
class AcceptanceIndex {
 public:
  AcceptanceIndex() : keys_(SetKeys().size()) {}

  /// Adds a personality that accepts any, by its number. REQUIRES: in rising order.
  void Add(const Acceptance& acceptance, std::size_t personality);

  /// The result of a search: the number of a personality that is as wanted, or npos.
  struct Found {
    std::size_t personality = npos;
    bool isCutShort = false;  // none of MaxCompared was as wanted, and there are more
  };

  using Predicate = std::function<bool(std::size_t)>;

  /// Among the personalities that may accept everything that this one accepts.
  Found FindCovering(const Acceptance& acceptance, const Predicate& isWanted) const;

  /// Among the personalities that may accept a controller that this one accepts.
  Found FindOverlapping(const Acceptance& acceptance, const Predicate& isWanted) const;

 private:
  using Numbers = std::vector<std::size_t>;

  struct KeyIndex {
    Numbers unconstrained;
    std::unordered_map<std::uint32_t, Numbers> byValue;
  };

  Numbers all_;
  std::vector<KeyIndex> keys_;  // by SetKeys
};

/// How many personalities of a type might be as wanted together with one that they were not
/// compared with.
using CutShort = std::map<TypeSet, std::size_t>;

/// Reports that personalities were not compared with all others to find out whether `question`.
void LintLimits(const LintSubject& subject, const CutShort& cutShort, std::string_view question,
                ConfigurationFindings& findings);

}  // namespace fernwick::lab
