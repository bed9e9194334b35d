#include "lab/survey/coverage/covered_recording.h"

#include <gtest/gtest.h>

#include "lab/support/json_reading.h"

namespace fernwick::lab {
namespace {

// As written and read again.
std::string Again(const std::string& row) {
  const auto recording = CoveredRecordingOf(*ParseJson(row));
  return recording ? ToJson(*recording).dump() : "none";
}

TEST(CoveredRecording, IsReadAsItWasWritten) {
  for (const char* use :
       {"counted", "no configuration", "unknown board", "bypassed", "abnormal end"}) {
    const auto row = R"({"use":")" + std::string(use) + R"("})";
    EXPECT_EQ(Again(row), row);
  }
  const std::string refused = R"({"use":"refused","message":"a: no file","status":66})";
  EXPECT_EQ(Again(refused), refused);
}

TEST(CoveredRecording, IsNotReadFromAnotherRow) {
  for (const char* row : {"1", "[]", "{}", R"({"use":1})", R"({"use":"else"})",
                          R"({"use":"refused"})", R"({"use":"refused","message":1,"status":66})",
                          R"({"use":"refused","message":"a","status":"66"})"}) {
    EXPECT_EQ(Again(row), "none") << row;
  }
}

}  // namespace
}  // namespace fernwick::lab
