#include "lab/survey/diff/image_changes.h"

#include <gtest/gtest.h>

#include "testing/computer.h"
#include "testing/property_values.h"
#include "testing/temporary_directory.h"
#include "value/xml/writer.h"

namespace fernwick::lab {
namespace {

using testing::Dict;

// A computer with one port and two payloads whose one personality plans an image.
class ImageChanges : public ::testing::Test {
 protected:
  ImageChanges() {
    computer_.SetBoard("Zed-42", 3);
    computer_.AddPort("hpm0", {{"Version", 5}});
  }

  void WritePayload(const std::string& payload, const char* image, int version = 9) {
    directory_.Write(payload + "/Fernwick/Zed-42/Config.plist",
                     WriteXmlPropertyList(Dict(
                         {{"LegacyUSBC", Dict({{"Version", version}, {"Firmware", image}})}})));
  }

  void WriteImage(const std::string& payload, const std::string& image, const std::string& bytes) {
    directory_.Write(payload + "/Fernwick/Zed-42/" + image, bytes);
  }

  // "kind: before -> after" of each change.
  std::string Changes() {
    const auto before = ToolOptions(directory_.Path() + "/old", false);
    const auto after = ToolOptions(directory_.Path() + "/new", false);
    PayloadImages files;
    std::string text;
    const auto changes = FindImageChanges(RunTool(computer_.Recorded(), before), before,
                                          RunTool(computer_.Recorded(), after), after, files);
    if (!changes) return changes.Error().error.message + "\n";
    for (const auto& change : *changes) {
      EXPECT_EQ(change.match, "LegacyUSBC, controller 1 (RID -, port -, version 5)");
      text += change.kind + ": " + change.before.dump() + " -> " + change.after.dump() + "\n";
    }
    return text;
  }

  testing::TemporaryDirectory directory_;
  testing::Computer computer_;
};

TEST_F(ImageChanges, OfOtherBytesUnderTheSameNameAreFound) {
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

TEST_F(ImageChanges, AreFoundAtTheEndOfALargeImage) {
  WritePayload("old", "a.bin");
  WritePayload("new", "a.bin");
  WriteImage("old", "a.bin", std::string(200'000, 'x') + "y");
  WriteImage("new", "a.bin", std::string(200'000, 'x') + "y");
  EXPECT_EQ(Changes(), "");
  WriteImage("new", "a.bin", std::string(200'000, 'x') + "z");
  EXPECT_EQ(Changes(), "image bytes: \"a.bin, 200001 bytes\" -> \"a.bin, 200001 bytes\"\n");
}

TEST_F(ImageChanges, OfARenamedImageAreNone) {
  WritePayload("old", "a.bin");
  WritePayload("new", "b.bin");
  WriteImage("old", "a.bin", "old");
  WriteImage("new", "b.bin", "new");
  EXPECT_EQ(Changes(), "");
}

TEST_F(ImageChanges, AreAMissingImageAndOneThatIsThereAgain) {
  WritePayload("old", "a.bin");
  WritePayload("new", "b.bin");
  EXPECT_EQ(Changes(), "") << "missing in both";
  WriteImage("old", "a.bin", "");
  EXPECT_EQ(Changes(), "image missing: null -> \"b.bin\"\n");
  WritePayload("old", "c.bin");
  WriteImage("new", "b.bin", "");
  EXPECT_EQ(Changes(), "image no longer missing: null -> \"b.bin\"\n");
}

TEST_F(ImageChanges, OfAMatchThatIsGainedAreItsMissingImage) {
  WritePayload("old", "a.bin", 5);
  WritePayload("new", "a.bin");
  EXPECT_EQ(Changes(), "image missing: null -> \"a.bin\"\n");
  WriteImage("new", "a.bin", "");
  EXPECT_EQ(Changes(), "");
}

}  // namespace
}  // namespace fernwick::lab
