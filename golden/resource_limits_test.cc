// The lab without enough descriptors, memory or disk space, or without permission: a message and a
// status of its own, never a result about a computer.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "testing/archives.h"
#include "testing/coverage_counting.h"
#include "testing/files.h"
#include "testing/programs/child_process.h"
#include "testing/sanitizers.h"
#include "testing/temporary_directory.h"
#include "testing/unprivileged.h"

namespace fernwick {
namespace {

namespace fs = std::filesystem;

using testing::ChildOutcome;
using testing::RunChild;

const std::string Examples = FERNWICK_SOURCE_DIRECTORY "/examples/";
const std::string OnePort = "ports-only.registry.plist";

// Runs the lab by a shell after `limit`, in the directory of the examples.
ChildOutcome RunWith(const std::string& limit, const std::string& arguments) {
  return RunChild({"/bin/sh", "-c", limit + " && exec \"$0\" " + arguments, FERNWICK_LAB_PROGRAM},
                  Examples);
}

// Expects that under each limit the command says what it says without one, or fails with 71 and a
// message.
void ExpectResultOrResourceError(const std::string& command) {
  const auto usual = RunWith("true", command);
  bool isLacking = false;
  for (int limit = 3; limit < 12; ++limit) {
    SCOPED_TRACE(command + " with " + std::to_string(limit) + " descriptors");
    const auto found = RunWith("ulimit -n " + std::to_string(limit), command);
    if (found == usual) continue;
    isLacking = true;
    EXPECT_EQ(found.status, "71");
    EXPECT_TRUE(found.standardError.starts_with("fernwick-lab: ")) << found.standardError;
    EXPECT_NE(found.standardError.find("Too many open files\n"), std::string::npos)
        << found.standardError;
  }
  EXPECT_TRUE(isLacking) << "no limit was low enough for " << command;
}

TEST(Descriptors, ThatAreTooFewAreAnErrorOfASurvey) {
  // A process that counts coverage or looks for leaks needs more.
  if (testing::UnderAddressSanitizer || testing::CountingCoverage) GTEST_SKIP();
  ExpectResultOrResourceError("survey -j1 -p payload --format ndjson " + OnePort);
  ExpectResultOrResourceError("survey -j1 -p payload --format ndjson .");
}

TEST(Descriptors, ThatAreTooFewAreAnErrorOfADiff) {
  // A process that counts coverage or looks for leaks needs more.
  if (testing::UnderAddressSanitizer || testing::CountingCoverage) GTEST_SKIP();
  ExpectResultOrResourceError("diff -j1 -p draft -p payload " + OnePort);
  ExpectResultOrResourceError("diff -j1 -p payload -p payload .");
}

TEST(Descriptors, ThatAreTooFewAreAnErrorOfEveryVerbOfOneComputer) {
  if (testing::UnderAddressSanitizer || testing::CountingCoverage) GTEST_SKIP();
  for (const auto* command : {"explain -p payload ", "explain --json -p payload ", "show "}) {
    ExpectResultOrResourceError(command + OnePort);
  }
  ExpectResultOrResourceError("convert --to xml " + OnePort + " -");
  ExpectResultOrResourceError("lint payload");
}

TEST(Descriptors, ThatAreTooFewAreAnErrorOfACoverage) {
  // A process that counts coverage or looks for leaks needs more.
  if (testing::UnderAddressSanitizer || testing::CountingCoverage) GTEST_SKIP();
  ExpectResultOrResourceError("coverage -j1 -p payload " + OnePort);
  ExpectResultOrResourceError("coverage -j1 -p payload .");
}

TEST(Descriptors, ThatAreTooFewAreAnErrorOfAShard) {
  // A process that counts coverage or looks for leaks needs more.
  if (testing::UnderAddressSanitizer || testing::CountingCoverage) GTEST_SKIP();
  ExpectResultOrResourceError("survey -j1 -p payload --format ndjson --shard 1/1 .");
  ExpectResultOrResourceError("coverage -j1 -p payload --shard 1/1 .");
}

TEST(Descriptors, ThatAreTooFewAreAnErrorOfSettle) {
  // A process that counts coverage or looks for leaks needs more.
  if (testing::UnderAddressSanitizer || testing::CountingCoverage) GTEST_SKIP();
  ExpectResultOrResourceError("settle -j1 -p payload --set hpm0:Version=0x99 " + OnePort);
  ExpectResultOrResourceError("settle -j1 -p payload .");
}

// Archives of the examples in every form.
class ExampleArchives {
 public:
  ExampleArchives() {
    std::vector<testing::ArchiveMember> members;
    for (const auto& file : fs::directory_iterator(Examples)) {
      const auto name = file.path().filename().string();
      if (!name.ends_with(".registry.plist")) continue;
      members.push_back({.name = name, .bytes = testing::ReadFile(file.path())});
    }
    const auto write = [&](const std::string& name, int format, int filter) {
      paths_.push_back(directory_.Write(name, testing::ArchiveOf(members, format, filter)));
    };
    write("a.tar", ARCHIVE_FORMAT_TAR_USTAR, ARCHIVE_FILTER_NONE);
    write("a.tar.gz", ARCHIVE_FORMAT_TAR_USTAR, ARCHIVE_FILTER_GZIP);
    write("a.tar.xz", ARCHIVE_FORMAT_TAR_USTAR, ARCHIVE_FILTER_XZ);
    write("a.tar.zst", ARCHIVE_FORMAT_TAR_USTAR, ARCHIVE_FILTER_ZSTD);
    write("a.zip", ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE);
    write("no-suffix", ARCHIVE_FORMAT_TAR_USTAR, ARCHIVE_FILTER_GZIP);
  }

  const std::vector<std::string>& Paths() const { return paths_; }
  const std::string& Directory() const { return directory_.Path(); }

 private:
  testing::TemporaryDirectory directory_;
  std::vector<std::string> paths_;
};

TEST(Descriptors, ThatAreTooFewAreAnErrorOfArchives) {
  // A process that counts coverage or looks for leaks needs more.
  if (testing::UnderAddressSanitizer || testing::CountingCoverage) GTEST_SKIP();
  const ExampleArchives archives;
  for (const auto& path : archives.Paths()) {
    ExpectResultOrResourceError("survey -j1 -p payload --format ndjson " + path);
  }
  for (const auto* verb : {"coverage", "settle", "diff -p draft"}) {
    ExpectResultOrResourceError(verb + (" -j1 -p payload " + archives.Directory()));
  }
}

// Below what the process needs to start, the system or the C library ends it.
bool HasStarted(const ChildOutcome& outcome) {
  return outcome.status != "SIGSEGV" && outcome.status != "SIGKILL" && outcome.status != "127";
}

ChildOutcome RunInKibibytes(int kibibytes, const std::string& command) {
  return RunWith("ulimit -v " + std::to_string(kibibytes), command);
}

// In how much memory the process starts, about.
int KibibytesToStart() {
  int kibibytes = 5000;
  while (!HasStarted(RunInKibibytes(kibibytes, "--version"))) kibibytes += 500;
  return kibibytes;
}

// Expects that with up to so much more memory than it needs to start, the command says what it says
// without a limit, or fails with 71. Returns whether it ever fails.
bool FailsOrHasTheSameResult(const std::string& command, int moreKibibytes) {
  static const int start = KibibytesToStart();
  const auto usual = RunWith("true", command);
  bool isLacking = false;
  for (int more = 0; more < moreKibibytes; more += 500) {
    const auto found = RunInKibibytes(start + more, command);
    if (found == usual || !HasStarted(found)) continue;
    isLacking = true;
    EXPECT_EQ(found.status, "71") << command << " in " << start + more
                                  << " KiB: " << found.standardError;
  }
  return isLacking;
}

TEST(Memory, ThatIsTooLittleIsNoAnswer) {
  if (testing::UnderAddressSanitizer || testing::CountingCoverage) GTEST_SKIP();
  for (const auto* command : {"diff -j1 -p draft -p payload .", "survey -j1 -p payload .",
                              "coverage -j1 -p payload .", "settle -j1 -p payload ."}) {
    FailsOrHasTheSameResult(command, 6000);
  }
}

TEST(Memory, ThatIsTooLittleForAnArchiveIsNoAnswer) {
  if (testing::UnderAddressSanitizer || testing::CountingCoverage) GTEST_SKIP();
  const ExampleArchives archives;
  for (const auto& path : archives.Paths()) {
    const bool isLacking =
        FailsOrHasTheSameResult("survey -j1 -p payload --format ndjson " + path, 14000);
    // The window of this compression alone has 8 MiB.
    EXPECT_TRUE(isLacking || !path.ends_with(".xz"));
  }
}

// A payload for the board of the example with ports alone, whose configuration is not to be read.
class Payload {
 public:
  Payload() {
    fs::copy(Examples + "payload", directory_.Path() + "/p", fs::copy_options::recursive);
    fs::permissions(directory_.Path(), fs::perms(0755));
  }

  std::string Path() const { return directory_.Path() + "/p"; }
  std::string Board() const { return Path() + "/Fernwick/Zed-1A07"; }
  std::string Configuration() const { return Board() + "/Config.plist"; }

 private:
  testing::TemporaryDirectory directory_;
};

TEST(Permission, ThatIsMissingForAConfigurationOrItsDirectoryIsAnError) {
  // A process that counts coverage or looks for leaks needs more.
  if (testing::UnderAddressSanitizer || testing::CountingCoverage) GTEST_SKIP();
  const Payload payload;
  for (const auto& path : {payload.Configuration(), payload.Board()}) {
    fs::permissions(path, fs::perms::none);
    const std::vector<std::vector<std::string>> commands = {
        {"survey", "-j1", "-p", payload.Path(), OnePort},
        {"coverage", "-j1", "-p", payload.Path(), OnePort},
        {"settle", "-j1", "-p", payload.Path(), OnePort},
        {"diff", "-j1", "-p", "payload", "-p", payload.Path(), OnePort},
        {"diff", "-j1", "-p", payload.Path(), "-p", payload.Path(), OnePort}};
    for (auto command : commands) {
      command.insert(command.begin(), FERNWICK_LAB_PROGRAM);
      // Without a shell, which would return to the user that it was started by.
      const testing::Unprivileged unprivileged;
      testing::ExpectOutcome(
          RunChild(command, Examples),
          {"66", "", "fernwick-lab: " + payload.Configuration() + ": Permission denied\n"});
    }
    fs::permissions(path, fs::perms::owner_all);
  }
}

TEST(Configuration, ThatIsMalformedInBothPayloadsIsMentioned) {
  const testing::TemporaryDirectory directory;
  for (const auto* payload : {"old", "new"}) {
    directory.Write(std::string(payload) + "/Fernwick/Zed-1A07/Config.plist", "<dict>");
  }
  const auto diff = [&](const std::string& options) {
    return RunChild(
        {"/bin/sh", "-c", "exec \"$0\" diff -p old -p new " + Examples + OnePort + " " + options,
         FERNWICK_LAB_PROGRAM},
        directory.Path());
  };
  const std::string note =
      "malformed configuration in both: line 1, column 7: the document ends too early -> line 1, "
      "column 7: the document ends too early\n";
  const std::string totals =
      "1 computer: 0 changed (0 gained a plan, 0 lost it), 1 unchanged, 0 refused, 0 ended "
      "abnormally\n";
  testing::ExpectOutcome(diff(""), {"0", "1 computer of Zed-1A07: " + note + totals, ""});
  testing::ExpectOutcome(
      diff("--each"),
      {"0", Examples + OnePort + ": board Zed-1A07, revision 2\n  " + note + totals, ""});
  for (const auto* format : {"json", "csv", "junit"}) {
    const auto found = diff(std::string("--format ") + format);
    EXPECT_EQ(found.status, "0");
    EXPECT_NE(found.standardOutput.find("malformed configuration in both"), std::string::npos)
        << found.standardOutput;
  }
}

TEST(Room, ThatIsMissingForAFileLeavesNone) {
  // A process that counts coverage or looks for leaks needs more.
  if (testing::UnderAddressSanitizer || testing::CountingCoverage) GTEST_SKIP();
  const testing::TemporaryDirectory directory;
  for (const auto* verb : {"convert --to xml", "redact"}) {
    const auto found =
        RunWith("ulimit -f 1", std::string(verb) + " ports-below-thunderbolt.registry.plist " +
                                   directory.Path() + "/out");
    EXPECT_EQ(found.status, "74") << verb;
    EXPECT_EQ(found.standardError, "fernwick-lab: " + directory.Path() + "/out: File too large\n");
    EXPECT_TRUE(fs::is_empty(directory.Path()));
  }
}

TEST(Expectation, NestedDeeplyIsMalformed) {
  const testing::TemporaryDirectory directory;
  const auto file = directory.Write(
      "e.ndjson", "{\"file\":" + std::string(66'000, '[') + std::string(66'000, ']') + "}\n");
  const auto found = RunWith("true", "survey -p payload --expect " + file + " " + OnePort);
  EXPECT_EQ(found.status, "65");
  EXPECT_EQ(found.standardError, "fernwick-lab: " + file + ": 1: this is not a row of a survey\n");
}

// The recording of a computer with this board identifier.
std::string WithBoard(const std::string& hexadecimal) {
  return "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>"
         "<key>IODeviceTree</key><dict><key>Properties</key><dict><key>board-id</key><data>" +
         hexadecimal + "</data></dict></dict></dict></dict>";
}

TEST(Survey, OfABoardIdentifierWithALineFeedCountsNoDiagnosticOfIt) {
  const testing::TemporaryDirectory directory;
  // "Zed\n** x" and a zero byte.
  const auto path = directory.Write("a.registry.plist", WithBoard("WmVkCioqIHgA"));
  const auto found = RunWith("true", "survey -p payload " + path);
  EXPECT_EQ(found.standardOutput.find("x ** x"), std::string::npos) << found.standardOutput;
  EXPECT_NE(found.standardOutput.find("1 x fernwick: Error reading plist: No files to support "
                                      "boardID: Zed\\012** x\n"),
            std::string::npos)
      << found.standardOutput;
}

TEST(Survey, OfALargeRecordingIsRefusedUnlessItIsPermitted) {
  const testing::TemporaryDirectory directory;
  const auto path =
      directory.Write("a.registry.plist", testing::ReadFile(Examples + OnePort) +
                                              std::string(std::size_t{2} << 20, '\n'));
  const auto survey = [&](const std::string& options) {
    return RunWith("true", "survey --format csv -p payload " + options + " " + path);
  };
  EXPECT_EQ(survey("").status, "0");
  const auto refused = survey("--max-size 1");
  EXPECT_EQ(refused.status, "66");
  EXPECT_NE(refused.standardOutput.find(",refused,66,the file is larger than 1 MiB,"),
            std::string::npos)
      << refused.standardOutput;
  EXPECT_EQ(survey("--max-size 3").status, "0");
  EXPECT_EQ(survey("--max-size 0").status, "64");
}

TEST(Survey, HasColumnsOfAMaximumWidthUnlessItIsWide) {
  const testing::TemporaryDirectory directory;
  const auto name = std::string(90, 'x') + ".registry.plist";
  directory.Write(name, testing::ReadFile(Examples + "no-supported-hardware.registry.plist"));
  directory.Write("y.registry.plist",
                  testing::ReadFile(Examples + "no-supported-hardware.registry.plist"));
  const auto survey = [&](const std::string& options) {
    return RunChild({"/bin/sh", "-c",
                     "exec \"$0\" survey -p " + Examples + "payload " + options + " " + name +
                         " y.registry.plist",
                     FERNWICK_LAB_PROGRAM},
                    directory.Path())
        .standardOutput;
  };
  const auto row = [](const std::string& file, std::size_t width) {
    return "\n" + file + std::string(width - file.size(), ' ') +
           "  Zed-1A09  0    13      no controllers\n";
  };
  const auto limited = survey("");
  EXPECT_NE(limited.find(row(name, name.size())), std::string::npos) << limited;
  EXPECT_NE(limited.find(row("y.registry.plist", 60)), std::string::npos) << limited;
  const auto wide = survey("--wide");
  EXPECT_NE(wide.find(row("y.registry.plist", name.size())), std::string::npos) << wide;
}

}  // namespace
}  // namespace fernwick
