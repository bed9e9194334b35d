#include "lab/draft/avoidance.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "testing/inputs/random_choice.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t Enough = 1 << 20;

bool IsAvoided(const std::vector<CandidateFlags>& accepted,
               const std::vector<std::size_t>& chosen) {
  for (std::size_t i = 0; i < chosen.size(); ++i) {
    if (!accepted[i][chosen[i]]) return true;
  }
  return false;
}

bool IsSolution(const AvoidanceProblem& problem, const std::vector<std::size_t>& chosen) {
  for (const auto& obstacle : problem.accepted) {
    if (!IsAvoided(obstacle, chosen)) return false;
  }
  return true;
}

// Tries every choice.
bool HasSolution(const AvoidanceProblem& problem) {
  std::vector<std::size_t> chosen(problem.candidates.size(), 0);
  for (;;) {
    if (IsSolution(problem, chosen)) return true;
    std::size_t i = 0;
    while (i < chosen.size() && ++chosen[i] == problem.candidates[i]) chosen[i++] = 0;
    if (i == chosen.size()) return false;
  }
}

AvoidanceProblem RandomProblem(testing::RandomChoice& random) {
  AvoidanceProblem problem;
  const auto dimensions = 1 + random.Below(4);
  for (std::size_t i = 0; i < dimensions; ++i) {
    problem.candidates.push_back(1 + random.Below(3));
  }
  const auto obstacles = random.Below(9);
  for (std::size_t i = 0; i < obstacles; ++i) {
    auto& accepted = problem.accepted.emplace_back();
    for (const auto count : problem.candidates) {
      auto& flags = accepted.emplace_back();
      for (std::size_t j = 0; j < count; ++j) flags.push_back(!random.OnceIn(3));
    }
  }
  return problem;
}

TEST(Avoidance, IsFoundWhereOneExists) {
  testing::RandomChoice random(1);
  std::size_t found = 0;
  for (int i = 0; i < 3000; ++i) {
    const auto problem = RandomProblem(random);
    auto steps = Enough;
    const auto avoidance = FindAvoidance(problem, steps);
    EXPECT_FALSE(avoidance.isCutShort);
    ASSERT_EQ(avoidance.chosen.has_value(), HasSolution(problem));
    if (!avoidance.chosen) continue;
    ++found;
    EXPECT_TRUE(IsSolution(problem, *avoidance.chosen));
  }
  EXPECT_GT(found, 500u);
  EXPECT_LT(found, 2500u);
}

TEST(Avoidance, WithoutObstaclesPrefersTheFirstCandidates) {
  auto steps = Enough;
  EXPECT_EQ(FindAvoidance({{3, 1}}, steps).chosen, (std::vector<std::size_t>{0, 0}));
}

TEST(Avoidance, ChangesTheFirstDimensionsFirst) {
  auto steps = Enough;
  const AvoidanceProblem problem = {{2, 2}, {{{true, false}, {true, false}}}};
  EXPECT_EQ(FindAvoidance(problem, steps).chosen, (std::vector<std::size_t>{1, 0}));
}

TEST(Avoidance, EndsWhenNoStepsAreLeft) {
  const CandidateFlags first = {true, false};
  const CandidateFlags second = {false, true};
  const AvoidanceProblem problem = {
      {2, 2}, {{first, first}, {first, second}, {second, first}, {second, second}}};
  auto steps = Enough;
  EXPECT_EQ(FindAvoidance(problem, steps).chosen, std::nullopt);
  const auto needed = Enough - steps;
  EXPECT_EQ(needed, 48u);  // 3 passes over 4 candidates and 4 obstacles
  for (std::size_t available = 0; available < needed; ++available) {
    steps = available;
    const auto avoidance = FindAvoidance(problem, steps);
    EXPECT_TRUE(avoidance.isCutShort) << available;
    EXPECT_EQ(avoidance.chosen, std::nullopt);
  }
}

}  // namespace
}  // namespace fernwick::lab
