#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "lab/verbs.h"
#include "testing/capture.h"
#include "testing/command_line.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

struct Shown {
  int status;
  std::string standardError;

  friend bool operator==(const Shown&, const Shown&) = default;
};

// The result of showing a recording of these bytes, with further `arguments`.
Shown ShowOf(std::string_view bytes, std::initializer_list<std::string> arguments) {
  const testing::TemporaryDirectory directory;
  directory.Write("c.registry.plist", bytes);
  const auto back = std::filesystem::current_path();
  std::filesystem::current_path(directory.Path());
  std::vector<std::string> words = arguments;
  words.insert(words.begin(), "c.registry.plist");
  std::vector<char*> vector;
  for (auto& word : words) vector.push_back(word.data());
  testing::StandardErrorCapture errors;
  const int status = ShowVerb(static_cast<int>(vector.size()), vector.data()).status;
  std::filesystem::current_path(back);
  return {status, errors.TakeText()};
}

constexpr char Empty[] =
    "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict/></dict>";

TEST(Show, RefusesAPlaneThatIsNotThere) {
  EXPECT_EQ(ShowOf(Empty, {"--plane", "IOService"}),
            (Shown{64, "fernwick-lab: c.registry.plist: there is no plane \"IOService\"\n"}));
}

TEST(Show, RefusesARecordingThatBreaksARule) {
  EXPECT_EQ(ShowOf("<dict/>", {}),
            (Shown{65, "fernwick-lab: c.registry.plist: \"Recording Version\" is missing\n"}));
}

TEST(Show, RefusesWhatItDoesNotKnow) {
  EXPECT_EQ(
      ShowOf(Empty, {"--xml"}),
      (Shown{64, "fernwick-lab: there is no option \"--xml\"; see fernwick-lab show --help\n"}));
}

}  // namespace
}  // namespace fernwick::lab
