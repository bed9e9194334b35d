#include "platform/output.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

#include "testing/capture.h"

namespace fernwick {
namespace {

TEST(Output, SendsOutAtEachFlush) {
  testing::StreamCapture capture;
  Output out(capture.Stream());
  out.Write("a ");
  out.Print("%d%%\n", 7);
  out.Flush();
  out.Write("b");
  EXPECT_EQ(capture.Flushes(), std::vector<std::string>{"a 7%\n"});
  EXPECT_EQ(capture.Text(), "a 7%\nb");
  EXPECT_EQ(out.Error(), 0);
}

TEST(Output, WritesTextWithoutReadingItAsAFormat) {
  testing::StreamCapture capture;
  Output(capture.Stream()).Write("100%s");
  EXPECT_EQ(capture.Text(), "100%s");
}

// Later flushes succeed again, with nothing left to send out.
TEST(Output, RemembersTheFirstFailure) {
  std::FILE* fullDisk = testing::OpenFullDisk();
  Output out(fullDisk);
  out.Write("lost");
  EXPECT_EQ(out.Error(), 0);
  out.Flush();
  EXPECT_EQ(out.Error(), ENOSPC);
  out.Flush();
  EXPECT_EQ(out.Error(), ENOSPC);
  std::fclose(fullDisk);
}

TEST(Output, NoticesAFailureWithoutAFlush) {
  std::FILE* fullDisk = testing::OpenFullDisk();
  Output out(fullDisk);
  out.Write(std::string(1 << 20, 'x'));
  EXPECT_EQ(out.Error(), ENOSPC);
  std::fclose(fullDisk);
}

}  // namespace
}  // namespace fernwick
