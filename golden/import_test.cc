// The verb "import" as a process.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "testing/files.h"
#include "testing/programs/child_process.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

namespace fs = std::filesystem;

using Words = std::vector<std::string>;

// A dump of each plane, in a directory of their own.
class Import : public ::testing::Test {
 protected:
  Import() {
    directory_.Write("tree.plist",
                     "{ identity = 1; \"board-id\" = <5a65642d 34320000>;"
                     "  below = ( { entry = options; identity = 2; } ); }");
    directory_.Write("services.plist",
                     "{ identity = 1; below = ("
                     "  { entry = ridge0; kind = Gen3; identity = 3; size = \"2 x\";"
                     "    below = ( { entry = unused; identity = 2; } ); } ); }");
    directory_.Write("classes.plist", "{ Gen3 = IOThunderboltSwitch; }");
  }

  std::string Write(const std::string& name, const std::string& bytes) const {
    return directory_.Write(name, bytes);
  }

  // The outcome in one text. "out" is the file that is written.
  std::string Run(Words arguments) const {
    arguments.insert(arguments.begin(), FERNWICK_LAB_PROGRAM);
    const auto outcome = testing::RunChild(arguments, directory_.Path());
    return outcome.standardOutput + outcome.standardError + "[status " + outcome.status + "]\n";
  }

  // With the keys of the dumps.
  std::string RunImport(Words further) const {
    further.insert(further.begin(), {"import", "out", "--name-key=entry", "--children-key=below",
                                     "--class-key", "kind"});
    return Run(further);
  }

  std::string Output() const { return testing::ReadFile(directory_.Path() + "/out"); }

  testing::TemporaryDirectory directory_;
};

constexpr char Done[] = "[status 0]\n";

TEST_F(Import, MakesARecordingOfSeveralPlanes) {
  EXPECT_EQ(RunImport({"--plane", "IODeviceTree=tree.plist", "--plane=IOService=services.plist",
                       "--id-key=identity", "--classes=classes.plist"}),
            Done);
  EXPECT_EQ(Run({"show", "out"}),
            "Board Zed-42 (0x42), revision 0\n"
            "\n"
            "IODeviceTree:\n"
            "/\n"
            "      \"board-id\" = <5a65642d 34320000>\n"
            "  options\n"
            "\n"
            "IOService:\n"
            "/\n"
            "      \"board-id\" = <5a65642d 34320000>\n"
            "  ridge0  <Gen3>  [Thunderbolt controller, not listed]\n"
            "        \"size\" = \"2 x\"\n"
            "    options\n"
            "\n"
            "Thunderbolt controllers as the tool sees them: none\n"
            "\n"
            "USB-C port controllers as the tool sees them: none\n"
            "[status 0]\n");
}

TEST_F(Import, RefusesBadInputWithThePathToTheEntry) {
  Write("bad.plist",
        "{ below = ( { entry = a; }, { entry = b; below = ( { entry = \"c/d\"; } ); } ); }");
  EXPECT_EQ(RunImport({"--plane", "IOService=bad.plist"}),
            "fernwick-lab: bad.plist: below[1]/below[0]: \"entry\" is \"c/d\", with a \"/\"\n"
            "[status 65]\n");
  Write("twice.plist",
        "{ below = ( { entry = a; identity = 1; }, { entry = b; identity = 1; } ); }");
  EXPECT_EQ(
      RunImport({"--plane=A=tree.plist", "--plane=B=twice.plist", "--id-key=identity", "--force"}),
      "fernwick-lab: twice.plist: below[1]: the entry with the identity \"1\" is in this plane "
      "twice\n[status 65]\n");
}

TEST_F(Import, RefusesFilesThatAreNoPropertyListsOrCannotBeRead) {
  Write("broken.plist", "<dict>\n");
  EXPECT_EQ(
      RunImport({"--plane", "IOService=broken.plist"}),
      "fernwick-lab: broken.plist: line 2, column 1: the document ends too early\n[status 65]\n");
  EXPECT_EQ(RunImport({"--plane", "IOService=none.plist"}),
            "fernwick-lab: none.plist: No such file or directory\n[status 66]\n");
  EXPECT_EQ(RunImport({"--plane", "IOService=services.plist", "--classes", "none.plist"}),
            "fernwick-lab: none.plist: No such file or directory\n[status 66]\n");
  EXPECT_FALSE(fs::exists(directory_.Path() + "/out"));
}

TEST_F(Import, RefusesClassesThatBreakARule) {
  Write("loop.plist", "{ A = B; B = A; }");
  EXPECT_EQ(
      RunImport({"--plane", "IOService=services.plist", "--classes", "loop.plist"}),
      "fernwick-lab: loop.plist: Classes: the class \"A\" derives from itself\n[status 65]\n");
  Write("list.plist", "( A )");
  EXPECT_EQ(RunImport({"--plane", "IOService=services.plist", "--classes", "list.plist"}),
            "fernwick-lab: list.plist: Classes: not a dictionary\n[status 65]\n");
}

TEST_F(Import, RefusesPlanesAndKeysThatCannotBe) {
  const std::string see = "; see fernwick-lab import --help\n[status 64]\n";
  const std::string lab = "fernwick-lab: ";
  for (const char* plane : {"IOService", "=services.plist", "IOService=", ""}) {
    EXPECT_EQ(RunImport({"--plane", plane}), lab + "--plane needs a NAME=FILE" + see) << plane;
  }
  for (const char* name : {"a:b", "\x01"}) {
    const std::string shown = name == std::string("\x01") ? "\\001" : name;
    EXPECT_EQ(RunImport({"--plane", std::string(name) + "=services.plist"}),
              lab + "--plane \"" + shown + "\": the name of a plane is a text without \":\"" + see);
  }
  EXPECT_EQ(RunImport({"--plane=A=tree.plist", "--plane=A=services.plist"}),
            lab + "--plane \"A\": there are two of that name" + see);
  EXPECT_EQ(RunImport({"--plane=A=tree.plist", "--id-key=kind"}),
            lab + "two options name the key \"kind\"" + see);
  EXPECT_EQ(Run({"import", "out", "--plane=A=tree.plist", "--name-key=entry"}),
            lab + "--children-key is required" + see);
}

TEST_F(Import, ReplacesAFileOnlyWhenForced) {
  Write("out", "old");
  EXPECT_EQ(RunImport({"--plane", "IOService=services.plist"}),
            "fernwick-lab: out: there is a file of that name; --force replaces it\n[status 74]\n");
  EXPECT_EQ(Output(), "old");
  EXPECT_EQ(RunImport({"--plane", "IOService=services.plist", "--force"}), Done);
  EXPECT_TRUE(Output().starts_with("<?xml"));
}

// Ten thousand entries of two planes, each linked: no step searches through all of them.
TEST_F(Import, OfManyEntriesHasThemAll) {
  std::string entries;
  for (int i = 0; i < 10000; ++i) {
    const auto number = std::to_string(i);
    entries += "{ entry = e" + number + "; identity = " + number + "; },";
  }
  Write("many.plist", "{ below = (" + entries + "); }");
  EXPECT_EQ(RunImport({"--plane=A=many.plist", "--plane=B=many.plist", "--id-key=identity"}), Done);
  const auto recording = Output();
  EXPECT_NE(recording.find("<key>Link</key>\n\t\t\t\t\t<string>9999</string>"), std::string::npos);
  EXPECT_EQ(Run({"replay", "out", "--no-such-option"}).substr(0, 9), "fernwick:");
}

}  // namespace
}  // namespace fernwick
