#include "value/share.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace fernwick {
namespace {

// Says when it is released.
class Witness final : public Shared {
 public:
  explicit Witness(int& released) : released_(released) {}
  ~Witness() override { ++released_; }

 private:
  int& released_;
};

TEST(Share, LastShareReleasesWhatIsShared) {
  int released = 0;
  {
    const Share first(new Witness(released));
    {
      const Share second = first;  // NOLINT: the copy is what is tested
      EXPECT_EQ(second, first);
    }
    EXPECT_EQ(released, 0);
  }
  EXPECT_EQ(released, 1);
}

TEST(Share, MovingPassesTheShareOn) {
  int released = 0;
  Share first(new Witness(released));
  Share second = std::move(first);
  first = Share();
  EXPECT_EQ(released, 0);
  second = Share();
  EXPECT_EQ(released, 1);
}

TEST(Share, AnotherShareTakesThePlaceOfTheOneBefore) {
  int released = 0;
  int otherReleased = 0;
  Share share(new Witness(released));
  const Share other(new Witness(otherReleased));
  share = other;
  EXPECT_EQ(released, 1);
  EXPECT_EQ(share, other);
  EXPECT_FALSE(share == Share());
  share = *&share;  // with itself
  EXPECT_EQ(otherReleased, 0);
}

TEST(Share, SharesInNothingAreEqualAndReleaseNothing) {
  const Share nothing;
  const Share copy = nothing;  // NOLINT: the copy is what is tested
  EXPECT_EQ(copy, nothing);
  EXPECT_EQ(copy, Share(nullptr));
}

TEST(Share, ManySharesReleaseOnce) {
  int released = 0;
  {
    std::vector<Share> shares(100, Share(new Witness(released)));
    shares.erase(shares.begin(), shares.begin() + 50);
    EXPECT_EQ(released, 0);
  }
  EXPECT_EQ(released, 1);
}

}  // namespace
}  // namespace fernwick
