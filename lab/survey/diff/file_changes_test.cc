#include "lab/survey/diff/file_changes.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "testing/computer.h"
#include "testing/property_values.h"
#include "testing/temporary_directory.h"
#include "value/xml/writer.h"

namespace fernwick::lab {
namespace {

using testing::Dict;

// A computer with one port and two payloads whose one personality plans an image.
class FileChanges : public ::testing::Test {
 protected:
  FileChanges() {
    computer_.SetBoard("Zed-42", 3);
    computer_.AddPort("hpm0", {{"Version", 5}});
    for (const char* payload : {"old", "new"}) WriteUtility(payload, "utility");
  }

  void WritePayload(const std::string& payload, const char* image, int version = 9) {
    directory_.Write(payload + "/Fernwick/Zed-42/Config.plist",
                     WriteXmlPropertyList(Dict(
                         {{"LegacyUSBC", Dict({{"Version", version}, {"Firmware", image}})}})));
  }

  void WriteImage(const std::string& payload, const std::string& image, const std::string& bytes) {
    directory_.Write(payload + "/Fernwick/Zed-42/" + image, bytes);
  }

  void WriteUtility(const std::string& payload, const std::string& bytes) {
    directory_.Write(payload + "/Fernwick/PortFlash.efi", bytes);
  }

  // "kind: before -> after" of each change.
  std::string Changes() {
    const auto before = ToolOptions(directory_.Path() + "/old", false);
    const auto after = ToolOptions(directory_.Path() + "/new", false);
    PayloadFiles files;
    std::string text;
    const auto changes = FindFileChanges(RunTool(computer_.Recorded(), before), before,
                                         RunTool(computer_.Recorded(), after), after, files);
    if (!changes) return changes.Error().error.message + "\n";
    for (const auto& change : *changes) {
      const bool isOfMatch = NameOf(change.kind).starts_with("image");
      EXPECT_EQ(change.match,
                isOfMatch ? "LegacyUSBC, controller 1 (RID -, port -, version 5)" : "");
      text += std::string(NameOf(change.kind)) + ": " + change.before.dump() + " -> " +
              change.after.dump() + "\n";
    }
    return text;
  }

  testing::TemporaryDirectory directory_;
  testing::Computer computer_;
};

TEST_F(FileChanges, OfOtherBytesUnderTheSameNameAreFound) {
  WritePayload("old", "a.bin");
  WritePayload("new", "a.bin");
  WriteImage("old", "a.bin", "old bytes");
  WriteImage("new", "a.bin", "old bytes");
  EXPECT_EQ(Changes(), "");
  WriteImage("new", "a.bin", "new bytes");
  EXPECT_EQ(Changes(), "image bytes: \"a.bin, 9 bytes\" -> \"a.bin, 9 bytes\"\n");
  WriteImage("new", "a.bin", "longer bytes");
  EXPECT_EQ(Changes(), "image bytes: \"a.bin, 9 bytes\" -> \"a.bin, 12 bytes\"\n");
}

TEST_F(FileChanges, AreFoundAtTheEndOfALargeImage) {
  WritePayload("old", "a.bin");
  WritePayload("new", "a.bin");
  WriteImage("old", "a.bin", std::string(200'000, 'x') + "y");
  WriteImage("new", "a.bin", std::string(200'000, 'x') + "y");
  EXPECT_EQ(Changes(), "");
  WriteImage("new", "a.bin", std::string(200'000, 'x') + "z");
  EXPECT_EQ(Changes(), "image bytes: \"a.bin, 200001 bytes\" -> \"a.bin, 200001 bytes\"\n");
}

TEST_F(FileChanges, OfARenamedImageAreNone) {
  WritePayload("old", "a.bin");
  WritePayload("new", "b.bin");
  WriteImage("old", "a.bin", "old");
  WriteImage("new", "b.bin", "new");
  EXPECT_EQ(Changes(), "");
}

TEST_F(FileChanges, AreAMissingImageAndOneThatIsThereAgain) {
  WritePayload("old", "a.bin");
  WritePayload("new", "b.bin");
  EXPECT_EQ(Changes(), "") << "missing in both";
  WriteImage("old", "a.bin", "");
  EXPECT_EQ(Changes(), "image missing: null -> \"b.bin\"\n");
  WritePayload("old", "c.bin");
  WriteImage("new", "b.bin", "");
  EXPECT_EQ(Changes(), "image no longer missing: null -> \"b.bin\"\n");
}

TEST_F(FileChanges, OfAMatchThatIsGainedAreItsMissingImage) {
  WritePayload("old", "a.bin", 5);
  WritePayload("new", "a.bin");
  EXPECT_EQ(Changes(), "image missing: null -> \"a.bin\"\n");
  WriteImage("new", "a.bin", "");
  EXPECT_EQ(Changes(), "");
}

TEST_F(FileChanges, AreThoseOfTheFlashingUtility) {
  for (const char* payload : {"old", "new"}) {
    WritePayload(payload, "a.bin");
    WriteImage(payload, "a.bin", "image");
  }
  EXPECT_EQ(Changes(), "");
  WriteUtility("new", "other utility");
  EXPECT_EQ(Changes(),
            "flashing utility bytes: \"PortFlash.efi, 7 bytes\" -> \"PortFlash.efi, 13 bytes\"\n");
  std::filesystem::remove(directory_.Path() + "/new/Fernwick/PortFlash.efi");
  EXPECT_EQ(Changes(), "flashing utility missing: null -> \"PortFlash.efi\"\n");
  WritePayload("old", "a.bin", 5);  // plans nothing
  EXPECT_EQ(Changes(), "flashing utility missing: null -> \"PortFlash.efi\"\n");
}

TEST_F(FileChanges, NameAFlashingUtilityOfSeveralMatchesOnce) {
  computer_.AddPort("hpm1", {{"Version", 5}});
  for (const char* payload : {"old", "new"}) WritePayload(payload, "");
  WriteUtility("new", "other");
  EXPECT_EQ(Changes(),
            "flashing utility bytes: \"PortFlash.efi, 7 bytes\" -> \"PortFlash.efi, 5 bytes\"\n");
}

}  // namespace
}  // namespace fernwick::lab
