#include "lab/survey/selected.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

TEST(FirstRefusal, IsTheStatusOfTheFirstNamedRecordingThatWasRefused) {
  FirstRefusal refusal;
  EXPECT_EQ(refusal.Status(), LabStatus::Done);
  refusal.Add(false, LabStatus::MalformedInput);
  EXPECT_EQ(refusal.Status(), LabStatus::Done);
  refusal.Add(true, LabStatus::Done);
  EXPECT_EQ(refusal.Status(), LabStatus::Done);
  refusal.Add(true, LabStatus::UnreadableInput);
  EXPECT_EQ(refusal.Status(), LabStatus::UnreadableInput);
  refusal.Add(true, LabStatus::MalformedInput);
  EXPECT_EQ(refusal.Status(), LabStatus::UnreadableInput);
}

}  // namespace
}  // namespace fernwick::lab
