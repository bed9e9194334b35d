// Compares the four requirement checks with the plain reference: verdict and diagnostics, over
// domains small enough for exhaustive comparison, then at random.

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "personality/requirements.h"
#include "testing/check_result.h"
#include "testing/dictionaries.h"
#include "testing/inputs/fitting_personality.h"
#include "testing/inputs/random_choice.h"
#include "testing/inputs/value_domain.h"
#include "testing/named_rows.h"
#include "testing/reference/checks.h"

namespace fernwick {
namespace {

using testing::CheckResult;
using testing::FittingPersonality;
using testing::FullController;
using testing::List;
using testing::Named;
using testing::RandomChoice;
using testing::ValueDomain;
using testing::With;

namespace reference = testing::reference;

using MaybeValue = std::optional<PropertyValue>;
using Values = std::vector<MaybeValue>;
using Records = std::vector<Record>;

constexpr std::uint8_t BoardRevision = 2;

// One input of a check.
struct Constraint {
  const char* personalityKey;
  const char* hardwareKey;
};

// All of them, also what only some of the checks read, and pairs of which one is read by none.
constexpr Constraint Constraints[] = {
    {"Version", "Version"},
    {"Existing Min Version", "Version"},
    {"Existing Max Version", "Version"},
    {"Engineering Version", "Engineering Version"},
    {"Port Address", "Port Address"},
    {"RID", "RID"},
    {"MinBoardRevision", "MinBoardRevision"},
    {"MaxBoardRevision", "MaxBoardRevision"},
    {"Port Silicon Vendor ID", "Port Silicon Vendor ID"},
    {"Port Silicon Device ID", "Port Silicon Device ID"},
    {"Port Silicon Revision", "Port Silicon Revision"},
    {"Port OTP Revision", "Port OTP Revision"},
    {"Port UUID", "Port UUID"},
    {"Ridge Silicon Vendor ID", "Ridge Silicon Vendor ID"},
    {"Ridge Silicon Device ID", "Ridge Silicon Device ID"},
    {"Ridge Silicon Revision", "Ridge Silicon Revision"},
    {"Ridge UID", "Ridge UID"},
    {"Device Model Name", "Device Model Name"},
    {"Device Model ID", "Device Model ID"},
    {"Device Model Revision", "Device Model Revision"},
    {"Firmware Mode", "Firmware Mode"},
};

const std::vector<PropertyValue> Present = ValueDomain();

// The domain and absence.
const Values Domain = [] {
  Values values(Present.begin(), Present.end());
  values.emplace_back();
  return values;
}();

Record Replacing(Record replaced, std::string_view key, const MaybeValue& value) {
  replaced.SetOrRemove(key, value ? &*value : nullptr);
  return replaced;
}

// Every one of the records with every one of the values.
Records Variants(const Records& records, std::string_view key, const Values& values) {
  Records variants;
  for (const auto& record : records) {
    for (const auto& value : values) variants.push_back(Replacing(record, key, value));
  }
  return variants;
}

using RealCheck = bool (*)(Dictionary, const RequirementContext&, Console&);
using ReferenceCheck = bool (*)(const Dictionary&, const Dictionary&, unsigned, bool, std::string&);

struct CheckPair {
  RealCheck real;
  ReferenceCheck reference;
};

const std::vector<Named<CheckPair>> Checks = {
    {"LegacyUsbc",
     {CheckLegacyUsbcRequirements,
      [](const Dictionary& personality, const Dictionary& hardware, unsigned, bool bypass,
         std::string& diagnostics) {
        return reference::CheckLegacyUsbcRequirements(personality, hardware, bypass, diagnostics);
      }}},
    {"Usbc", {CheckUsbcRequirements, reference::CheckUsbcRequirements}},
    {"LegacyThunderbolt",
     {CheckLegacyThunderboltRequirements,
      [](const Dictionary& personality, const Dictionary& hardware, unsigned, bool bypass,
         std::string& diagnostics) {
        return reference::CheckLegacyThunderboltRequirements(personality, hardware, bypass,
                                                             diagnostics);
      }}},
    {"Thunderbolt", {CheckThunderboltRequirements, reference::CheckThunderboltRequirements}},
};

// Compares the two up to the first difference; a test that sees only one verdict fails.
class ChecksReference : public ::testing::TestWithParam<Named<CheckPair>> {
 protected:
  // With the version check and with it bypassed.
  void Compare(const Record& personality, const Record& hardware,
               unsigned boardRevision = BoardRevision) {
    CompareOnce(personality, hardware, boardRevision, false);
    CompareOnce(personality, hardware, boardRevision, true);
  }

  void CompareAll(const Records& personalities, const Records& hardware) {
    for (const auto& personality : personalities) {
      for (const auto& record : hardware) Compare(personality, record);
    }
  }

  void TearDown() override {
    if (HasFailure()) return;
    EXPECT_EQ(verdicts_, (std::set{false, true}));
  }

 private:
  // The matcher passes on the low 8 bits of the board revision; the reference truncates it itself.
  void CompareOnce(const Record& personality, const Record& hardware, unsigned boardRevision,
                   bool bypass) {
    if (HasFailure()) return;
    const RequirementContext context = {hardware, static_cast<std::uint8_t>(boardRevision), bypass};
    CheckResult found;
    found.applies = GetParam().row.real(personality, context, console_);
    found.diagnostics = console_.TakeError();
    CheckResult expected;
    expected.applies = GetParam().row.reference(personality, hardware, boardRevision, bypass,
                                                expected.diagnostics);
    verdicts_.insert(found.applies);
    if (found == expected) return;
    ADD_FAILURE() << "The personality\n"
                  << ::testing::PrintToString(personality) << "\nof the hardware\n"
                  << ::testing::PrintToString(hardware) << "\nat board revision " << boardRevision
                  << (bypass ? ", version check bypassed" : "")
                  << "\n     Found: " << ::testing::PrintToString(found)
                  << "\n  Expected: " << ::testing::PrintToString(expected);
  }

  testing::TestConsole console_;
  std::set<bool> verdicts_;
};

TEST_P(ChecksReference, AgreesOnEachConstraintOverItsWholeDomain) {
  for (const auto& [personalityKey, hardwareKey] : Constraints) {
    CompareAll(Variants({FittingPersonality}, personalityKey, Domain),
               Variants({FullController}, hardwareKey, Domain));
  }
}

TEST_P(ChecksReference, AgreesOnTheWholeVersionWindowAtOnce) {
  constexpr double JustAbove = 5.000000001;
  constexpr std::int64_t Inexact = (std::int64_t{1} << 53) + 1;
  constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
  const Values installed = {{}, "5", 5, 5.0, JustAbove, Inexact - 1, Inexact, true, NotANumber};
  const Values offered = {{}, "6", 4, 5, JustAbove, 6, Inexact, List({6}), NotANumber};
  const Values bounds = {{}, "5", 4, 5, JustAbove, 6, Inexact, List({5}), NotANumber};
  const Values engineering = {{}, 0, 64, false, "64"};
  auto personalities = Variants({FittingPersonality}, "Version", offered);
  personalities = Variants(personalities, "Existing Min Version", bounds);
  personalities = Variants(personalities, "Existing Max Version", bounds);
  const auto hardware = Variants(Variants({FullController}, "Version", installed),
                                 "Engineering Version", engineering);
  CompareAll(personalities, hardware);
}

TEST_P(ChecksReference, AgreesOnTheBoundsOfTheBoardRevision) {
  const auto personalities = Variants(Variants({FittingPersonality}, "MinBoardRevision", Domain),
                                      "MaxBoardRevision", Domain);
  const Record tooNew = With(FullController, {{"Version", 9}});
  for (const unsigned boardRevision : {0u, 1u, 2u, 3u, 255u, 256u, 259u, 0xFFFFFF02u}) {
    for (const auto& personality : personalities)
      Compare(personality, FullController, boardRevision);
    Compare(FittingPersonality, tooNew, boardRevision);
  }
}

struct Change {
  std::string_view key;
  MaybeValue value;
};

// What is wrong with one constraint, on either side or on both.
struct Flaw {
  std::optional<Change> personality;
  std::optional<Change> hardware;
};

// The key is missing, of another kind, too small or too great.
std::vector<Flaw> AllFlaws() {
  const Values wrong = {{}, Dictionary(), 1, 9};
  std::vector<Flaw> flaws;
  for (const auto& [personalityKey, hardwareKey] : Constraints) {
    for (const auto& value : wrong) {
      flaws.push_back({Change{personalityKey, value}, {}});
      flaws.push_back({{}, Change{hardwareKey, value}});
      flaws.push_back({Change{personalityKey, value}, Change{hardwareKey, {}}});
    }
  }
  return flaws;
}

void Apply(const std::optional<Change>& change, Record& record) {
  if (change) record = Replacing(record, change->key, change->value);
}

// Which of two flaws is reported, or whether both are, shows the order of the steps.
TEST_P(ChecksReference, AgreesOnAnyTwoFlawsAtOnce) {
  const auto flaws = AllFlaws();
  for (const auto& one : flaws) {
    for (const auto& other : flaws) {
      Record personality = FittingPersonality;
      Record hardware = FullController;
      Apply(one.personality, personality);
      Apply(one.hardware, hardware);
      Apply(other.personality, personality);
      Apply(other.hardware, hardware);
      Compare(personality, hardware);
    }
  }
}

class RandomRecords {
 public:
  // A personality and a controller with up to `changes` changes, each to one key of one of them.
  std::pair<Record, Record> Pair(std::size_t changes) {
    Record personality = FittingPersonality;
    Record hardware = FullController;
    for (std::size_t i = choice_.Below(changes + 1); i > 0; --i) {
      const auto& [personalityKey, hardwareKey] = choice_.OneOf(Constraints);
      if (choice_.OnceIn(2)) {
        personality = Replacing(personality, personalityKey, Value(hardware.Find(hardwareKey)));
      } else {
        hardware = Replacing(hardware, hardwareKey, Value(personality.Find(personalityKey)));
      }
    }
    return {personality, hardware};
  }

  unsigned BoardRevision() {
    return static_cast<unsigned>(choice_.Below(4) + choice_.Below(2) * 256);
  }

 private:
  // Sometimes the other side's value, by itself or in an array.
  MaybeValue Value(const PropertyValue* other) {
    if (other == nullptr || choice_.OnceIn(2)) return choice_.OneOf(Domain);
    if (choice_.OnceIn(2)) return *other;
    std::vector<PropertyValue> elements;
    for (std::size_t i = choice_.Below(3); i > 0; --i) elements.push_back(choice_.OneOf(Present));
    elements.push_back(*other);
    choice_.Shuffle(elements);
    return List(elements);
  }

  RandomChoice choice_{20260917};
};

TEST_P(ChecksReference, AgreesOnRandomRecords) {
  RandomRecords records;
  for (int i = 0; i < 20000; ++i) {
    const auto [personality, hardware] = records.Pair(8);
    Compare(personality, hardware, records.BoardRevision());
  }
}

INSTANTIATE_TEST_SUITE_P(Checks, ChecksReference, ::testing::ValuesIn(Checks), testing::RowName);

}  // namespace
}  // namespace fernwick
