#include "value/decoded_bytes.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace fernwick {
namespace {

// Runs of lengths up to `longest`, each `between` bytes longer than the one before.
std::vector<std::string> Runs(std::size_t longest, std::size_t between) {
  std::vector<std::string> runs;
  for (std::size_t size = 0; size <= longest; size += between) {
    runs.emplace_back(size, static_cast<char>('a' + runs.size() % 26));
  }
  return runs;
}

TEST(DecodedBytes, RunsOfAnyLengthStayAsTheyWere) {
  constexpr std::size_t Distances[] = {1, 7, 250, 999, 1000, 1001, 2000};
  for (const std::size_t between : Distances) {
    DecodedBytes decoded;
    std::vector<SharedBytes> kept;
    const auto runs = Runs(9000, between);
    for (const auto& run : runs) kept.push_back(decoded.Keep(run));
    for (std::size_t i = 0; i < runs.size(); ++i) {
      ASSERT_EQ(kept[i].View(), runs[i]) << between << ' ' << i;
    }
  }
}

TEST(DecodedBytes, RunsThatFillABlockToItsEndStayAsTheyWere) {
  DecodedBytes decoded;
  std::vector<SharedBytes> kept;
  for (int i = 0; i < 12; ++i) kept.push_back(decoded.Keep(std::string(1000, 'a')));
  const auto behind = decoded.Keep("b");
  for (const auto& run : kept) EXPECT_EQ(run.View(), std::string(1000, 'a'));
  EXPECT_EQ(behind.View(), "b");
}

TEST(DecodedBytes, ShortRunsStandBehindEachOther) {
  DecodedBytes decoded;
  const auto first = decoded.Keep("first");
  const auto second = decoded.Keep("second");
  EXPECT_EQ(second.View().data(), first.View().data() + 5);
  EXPECT_EQ(second.Held(), first.Held());
}

TEST(DecodedBytes, RunOutlivesWhatKeptIt) {
  SharedBytes run;
  {
    DecodedBytes decoded;
    run = decoded.Keep("decoded");
    decoded.Keep("another");
  }
  EXPECT_EQ(run.View(), "decoded");
}

TEST(DecodedBytes, NothingIsKeptAsNothing) {
  EXPECT_EQ(DecodedBytes().Keep("").View(), "");
}

}  // namespace
}  // namespace fernwick
