#include "lab/support/diagnostics.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

using Counts = std::vector<DiagnosticCount>;

TEST(DiagnosticConsole, CountsEachTextWhereItFirstCame) {
  DiagnosticConsole console(false);
  console.WriteError("** b\n");
  console.Log("a");
  console.WriteError("** b\n");
  console.WriteError("no line feed");
  console.Write("a plan");
  console.Flush();
  EXPECT_EQ(console.TakeCounts(), (Counts{{"** b", 2}, {"fernwick: a", 1}, {"no line feed", 1}}));
  EXPECT_EQ(console.TakeOutput(), "");
  EXPECT_EQ(console.TakeError(), "");
}

TEST(DiagnosticConsole, DoesNotCountTheLinesOfOneDiagnostic) {
  DiagnosticConsole console(false);
  console.Log("No files to support boardID: Zed\n** Aborting");
  EXPECT_EQ(console.TakeCounts(),
            (Counts{{"fernwick: No files to support boardID: Zed\n** Aborting", 1}}));
}

TEST(DiagnosticConsole, CollectsTextsWhereTheyAreKept) {
  DiagnosticConsole console(true);
  console.Write("a plan");
  console.WriteError("** b\n");
  console.Log("a");
  EXPECT_EQ(console.OutputError(), 0);
  EXPECT_EQ(console.TakeError(), "** b\nfernwick: a\n");
  console.Flush();
  EXPECT_EQ(console.TakeOutput(), "a plan");
}

}  // namespace
}  // namespace fernwick::lab
