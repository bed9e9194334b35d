#include "lab/what_if/state_digest.h"

#include <gtest/gtest.h>

#include <vector>

#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

TEST(StateDigest, DoesNotDependOnTheOrderOfChanges) {
  StateDigest a;
  a.Add(1, "x", 1);
  a.Add(2, "y", 2);
  StateDigest b;
  b.Add(2, "y", 2);
  b.Add(1, "x", 1);
  EXPECT_EQ(a, b);
}

TEST(StateDigest, IsThatOfTheBeginningOnceAllIsRemoved) {
  StateDigest digest;
  digest.Remove(1, "x", 1);
  digest.Add(1, "x", 2);
  EXPECT_NE(digest, StateDigest());
  digest.Remove(1, "x", 2);
  digest.Add(1, "x", 1);
  EXPECT_EQ(digest, StateDigest());
}

TEST(StateDigest, DiffersForEachEntryPropertyKindAndValue) {
  const std::pair<RegistryEntry, PropertyValue> values[] = {
      {1, 1}, {1, 1.0}, {1, true}, {1, "1"}, {1, testing::Bytes("1")}, {1, 2}, {2, 1}};
  std::vector<StateDigest> digests;
  for (const char* property : {"x", "y"}) {
    for (const auto& [entry, value] : values) digests.emplace_back().Add(entry, property, value);
  }
  for (std::size_t i = 0; i < digests.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) EXPECT_NE(digests[i], digests[j]) << i << ", " << j;
  }
}

}  // namespace
}  // namespace fernwick::lab
