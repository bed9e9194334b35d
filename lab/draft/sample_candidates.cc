// Representatives of equivalence classes: of the values that exactly the same personalities accept
// one is a candidate. Of versions and board revisions each personality accepts a range, and the
// lowest value of the wanted range and the first after the end of each other range are enough: any
// other value can be lowered to the next of these, and no range accepts that which does not accept
// the value itself. With a wanted range of 3 to 9 and another one of 2 to 5 they are 3 and 6.

#include "lab/draft/sample_candidates.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <set>
#include <utility>

#include "lab/support/controller_values.h"
#include "personality/requirements.h"

namespace fernwick::lab {
namespace {

// In place of the key of a hardware record.
constexpr std::string_view BoardRevisionKey = {};

// A value under a key, or that there is none, and which obstacles accept it.
struct SampleCandidate {
  std::optional<PropertyValue> value;
  CandidateFlags acceptedBy;
};

struct SampleDimension {
  std::string_view key;
  std::vector<SampleCandidate> candidates = {};
};

std::size_t RidIndex() {
  static const auto index = SetIndexOf("RID");
  return index;
}

std::size_t UidIndex() {
  static const auto index = SetIndexOf("Ridge UID");
  return index;
}

// Null accepts any.
bool AcceptsValue(const ValueSet* set, std::uint32_t number) {
  return set == nullptr || std::ranges::binary_search(*set, number);
}

class SampleDimensions {
 public:
  SampleDimensions(const SampleTask& task, const SampleShape& shape) : task_(task), shape_(shape) {}

  // Those whose first candidates matter most come last.
  std::vector<SampleDimension> All() {
    for (std::size_t i = 0; i < SetKeys().size(); ++i) {
      if (i != RidIndex() && i != UidIndex() && task_.wanted.sets[i] != nullptr) AddSet(i);
    }
    if (shape_.hasThunderbolt) AddUid();
    if (shape_.hasOwnRid) AddOwnRid();
    if (!shape_.hasOwnRid && !shape_.hasThunderbolt) AddAbsentRid();
    AddRevisions();
    AddVersions();
    return std::move(dimensions_);
  }

 private:
  const ValueSet* Wanted(std::size_t key) const { return task_.wanted.sets[key]; }

  void Begin(std::string_view key) {
    dimensions_.push_back({key});
    known_.clear();
  }

  // `accepts` returns whether an obstacle accepts the value.
  template <typename Accepts>
  void Add(std::optional<PropertyValue> value, Accepts accepts) {
    CandidateFlags acceptedBy;
    for (const auto* obstacle : task_.obstacles) acceptedBy.push_back(accepts(*obstacle));
    if (!known_.insert(acceptedBy).second) return;
    dimensions_.back().candidates.push_back({value, std::move(acceptedBy)});
  }

  // The values that the wanted personality accepts under the key.
  void AddSet(std::size_t index) {
    const auto& key = *SetKeys()[index];
    const bool isAtZero = shape_.hasThunderbolt && key.name == "Port Address";
    Begin(key.name);
    for (const auto number : *Wanted(index)) {
      const auto& value = task_.sets.ValueOf(number);
      if (!UnmatchableReason(value, key, task_.type).empty()) continue;
      if (isAtZero && !NumbersEqual(value, 0)) continue;
      Add(value, [&](const Acceptance& each) { return AcceptsValue(each.sets[index], number); });
    }
  }

  // The number of a value in the sets. REQUIRES: the value outlives them.
  std::uint32_t NumberOf(const PropertyValue& value) { return task_.sets.SetOf({&value})->front(); }

  // The numbers of the RIDs 0 to 15.
  std::array<std::uint32_t, 16> NumbersOfRids() {
    static const auto rids = [] {
      std::array<PropertyValue, 16> values;
      for (int rid = 0; rid < 16; ++rid) values[static_cast<std::size_t>(rid)] = rid;
      return values;
    }();
    std::array<std::uint32_t, 16> numbers{};
    std::ranges::transform(rids, numbers.begin(), [&](auto& rid) { return NumberOf(rid); });
    return numbers;
  }

  // The whole numbers near those that an obstacle lists under the key.
  std::set<std::uint64_t> ListedBy(std::size_t key) const {
    std::set<std::uint64_t> listed;
    for (const auto* obstacle : task_.obstacles) {
      if (obstacle->sets[key] == nullptr) continue;
      for (const auto number : *obstacle->sets[key]) {
        listed.insert(ToUnsigned64(*task_.sets.ValueOf(number).AsNumber()));
      }
    }
    return listed;
  }

  // The unique id of a Thunderbolt controller, from which its RID follows.
  void AddUid() {
    Begin("Ridge UID");
    const auto rids = NumbersOfRids();
    if (Wanted(UidIndex()) != nullptr) {
      for (const auto number : *Wanted(UidIndex())) {
        const auto& value = task_.sets.ValueOf(number);
        AddUidOf(value, number, rids[ToUnsigned64(*value.AsNumber()) & 0xF]);
      }
      return;
    }
    const auto listed = ListedBy(UidIndex());
    for (std::uint64_t rid = 0; rid < rids.size(); ++rid) {
      auto uid = rid;
      while (listed.contains(uid)) uid += rids.size();
      AddUidOf(uid, std::nullopt, rids[rid]);
    }
    // One that is not a number, of a controller without an RID, is less like that of a real one.
    if (shape_.hasOwnRid || Wanted(RidIndex()) != nullptr) return;
    Add("no number", [](const Acceptance& each) {
      return each.sets[UidIndex()] == nullptr && each.sets[RidIndex()] == nullptr;
    });
  }

  // `number` is that of the id in the sets; nullopt where none lists it.
  void AddUidOf(const PropertyValue& uid, std::optional<std::uint32_t> number, std::uint32_t rid) {
    const auto acceptsRid = [&](const Acceptance& each) {
      return shape_.hasOwnRid || AcceptsValue(each.sets[RidIndex()], rid);
    };
    if (!acceptsRid(task_.wanted)) return;
    Add(uid, [&](const Acceptance& each) {
      const auto* set = each.sets[UidIndex()];
      return acceptsRid(each) && (number ? AcceptsValue(set, *number) : set == nullptr);
    });
  }

  void AddOwnRid() {
    if (Wanted(RidIndex()) != nullptr) return AddSet(RidIndex());
    const auto listed = ListedBy(RidIndex());
    std::uint64_t rid = 0;
    while (listed.contains(rid)) ++rid;
    Begin("RID");
    Add(rid, [](const Acceptance& each) { return each.sets[RidIndex()] == nullptr; });
  }

  void AddAbsentRid() {
    Begin("RID");
    Add(std::nullopt, [](const Acceptance& each) { return each.sets[RidIndex()] == nullptr; });
  }

  void AddRevisions() {
    Begin(BoardRevisionKey);
    const auto& wanted = task_.wanted.revisions;
    std::set<int> revisions = {wanted.lowest};
    for (const auto* obstacle : task_.obstacles) revisions.insert(obstacle->revisions.highest + 1);
    for (const int revision : revisions) {
      if (revision < wanted.lowest || revision > wanted.highest) continue;
      Add(revision, [&](const Acceptance& each) {
        return each.revisions.lowest <= revision && revision <= each.revisions.highest;
      });
    }
  }

  void AddVersion(const PropertyValue& version) {
    if (!task_.wanted.window.Contains(version)) return;
    Add(version, [&](const Acceptance& each) { return each.window.Contains(version); });
  }

  // Versions without hundredths first, which need a property less.
  void AddVersions() {
    Begin("Version");
    const VersionScales scale = {.thunderbolt = shape_.reportsHundredths,
                                 .port = !shape_.reportsHundredths};
    auto versions = LowestInstalledVersions(scale, task_.wanted.window.minimum);
    for (const auto* obstacle : task_.obstacles) {
      const auto next =
          LowestVersionAfter(scale, *obstacle->window.offered, obstacle->window.maximum);
      if (next) versions.push_back(*next);
    }
    if (shape_.reportsHundredths) {
      for (const auto& version : versions) {
        // The next whole number. A reported 41.00 may be a little more than 41.
        const PropertyValue whole = std::ceil(*version.AsReal() - 0.005);
        for (const auto& next : LowestInstalledVersions(scale, &whole)) AddVersion(next);
      }
    }
    for (const auto& version : versions) AddVersion(version);
  }

  const SampleTask& task_;
  const SampleShape& shape_;
  std::vector<SampleDimension> dimensions_;
  std::set<CandidateFlags> known_;  // of the last dimension
};

void Apply(const SampleDimension& dimension, const SampleCandidate& candidate,
           SampleController& controller) {
  if (!candidate.value) return;
  if (dimension.key == BoardRevisionKey) {
    controller.boardRevision = static_cast<int>(candidate.value->AsInteger()->Bits());
  } else if (dimension.key == "Version") {
    controller.version = *candidate.value;
  } else {
    controller.values.Set(dimension.key, *candidate.value);
  }
}

AvoidanceProblem ProblemOf(const std::vector<SampleDimension>& dimensions, std::size_t obstacles) {
  AvoidanceProblem problem;
  problem.accepted.resize(obstacles);
  for (const auto& dimension : dimensions) {
    problem.candidates.push_back(dimension.candidates.size());
    for (std::size_t i = 0; i < obstacles; ++i) {
      auto& accepted = problem.accepted[i].emplace_back();
      for (const auto& each : dimension.candidates) accepted.push_back(each.acceptedBy[i]);
    }
  }
  return problem;
}

}  // namespace

std::vector<SampleShape> ShapesFor(TypeSet type, const Acceptance& wanted) {
  const SampleShape alone = {.hasThunderbolt = true, .reportsHundredths = true};
  const SampleShape below = {.hasPort = true, .hasThunderbolt = true, .reportsHundredths = true};
  const auto withRid = [](SampleShape shape) {
    shape.hasOwnRid = true;
    return shape;
  };
  if (type == Types::LegacyThunderbolt) return {alone};
  if (type == Types::Thunderbolt) {
    auto whole = below;
    whole.reportsHundredths = false;
    return {below, whole, withRid(below), withRid(whole)};
  }
  const SampleShape port = {.hasPort = true, .hasOwnRid = wanted.sets[RidIndex()] != nullptr};
  return {port, below, withRid(below)};
}

SampleAttempt FindController(const SampleTask& task, const SampleShape& shape, std::size_t& steps) {
  const auto dimensions = SampleDimensions(task, shape).All();
  const bool isPossible = std::ranges::none_of(
      dimensions, [](const SampleDimension& each) { return each.candidates.empty(); });
  if (!isPossible) return {};
  const auto found = FindAvoidance(ProblemOf(dimensions, task.obstacles.size()), steps);
  if (!found.chosen) return {std::nullopt, found.isCutShort};
  SampleController controller{.shape = shape};
  for (std::size_t i = 0; i < dimensions.size(); ++i) {
    Apply(dimensions[i], dimensions[i].candidates[(*found.chosen)[i]], controller);
  }
  return {std::move(controller)};
}

}  // namespace fernwick::lab
