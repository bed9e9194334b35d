#include "lab/what_if/changed_configurations.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <filesystem>

#include "testing/property_values.h"
#include "testing/sanitizers.h"
#include "testing/temporary_directory.h"
#include "testing/test_console.h"

namespace fernwick::lab {
namespace {

using testing::Dict;
using testing::List;

class ConfigurationToChange : public ::testing::Test {
 protected:
  ConfigurationToChange() {
    Write(Dict({{"LegacyUSBC", Dict({{"Version", 1}})},
                {"USBC", List({Dict({{"Version", 2}}), 3, Dict({{"RID", 4}})})},
                {"Thunderbolt", 5}}));
  }

  void Write(const PropertyValue& configuration) {
    path_ = directory_.Write("Zed-42/Config.plist", WriteXmlPropertyList(configuration));
  }

  // What a run loads: the value, or the error that was logged as its refusal, or another.
  std::string Load(ChangedConfigurations& configurations) {
    std::optional<Error> refusal;
    testing::TestConsole console;
    const auto loaded = configurations.Loader(refusal)("Zed-42", directory_.Path() + "/", console);
    if (loaded) return WriteXmlPropertyList(loaded->value);
    if (!refusal) return "cannot be read";
    EXPECT_EQ(*refusal, loaded.Error());
    return Describe(*refusal);
  }

  std::string LoadChanged(std::vector<std::string> personalities) {
    const auto changes =
        ParseChanges({.properties = {}, .personalities = std::move(personalities)});
    ChangedConfigurations configurations(*changes);
    return Load(configurations);
  }

  static std::string Xml(const PropertyValue& value) { return WriteXmlPropertyList(value); }

  testing::TemporaryDirectory directory_;
  std::string path_;
};

TEST_F(ConfigurationToChange, HasKeysReplacedAddedAndRemoved) {
  EXPECT_EQ(
      LoadChanged(
          {"LegacyUSBC:1:Version=9", "USBC:1:Version=", "USBC:3:Version=(1, 2)", "USBC:3:RID=5"}),
      Xml(Dict({{"LegacyUSBC", Dict({{"Version", 9}})},
                {"USBC", List({Dict(Record()), 3, Dict({{"RID", 5}, {"Version", List({1, 2})}})})},
                {"Thunderbolt", 5}})));
}

TEST_F(ConfigurationToChange, LacksThePersonality) {
  const std::string head = "--personality: there is no personality ";
  EXPECT_EQ(LoadChanged({"USBC:4:Version=1"}), head + "4 of USBC: the type has 3");
  EXPECT_EQ(LoadChanged({"LegacyUSBC:2:Version=1"}), head + "2 of LegacyUSBC: the type has 1");
  EXPECT_EQ(LoadChanged({"USBC:2:Version=1"}), head + "2 of USBC: it is not a dictionary");
  EXPECT_EQ(LoadChanged({"Thunderbolt:1:Version=1"}), head + "1 of Thunderbolt: the type has 0");
  EXPECT_EQ(LoadChanged({"LegacyThunderbolt:1:Version=1"}),
            head + "1 of LegacyThunderbolt: the configuration lacks the type");
  Write(List({}));
  EXPECT_EQ(LoadChanged({"USBC:1:Version=1"}),
            head + "1 of USBC: the configuration lacks the type");
}

TEST_F(ConfigurationToChange, IsOfTheBoardThatAChangeNames) {
  EXPECT_EQ(LoadChanged({"Zed-8/USBC:1:Version=9"}),
            "--personality: there is no personality 1 of USBC: the board is Zed-42");
  EXPECT_NE(LoadChanged({"Zed-42/USBC:1:Version=9"}).find("<integer>9<"), std::string::npos);
}

TEST_F(ConfigurationToChange, IsOfOneOfTheBoardsThatShareItsFile) {
  const auto changes = ParseChanges({.properties = {}, .personalities = {"Zed-42/USBC:1:RID=9"}});
  ChangedConfigurations configurations(*changes);
  for (const std::string board : {"Zed-42/", "Zed-42", "Zed-42/"}) {
    std::vector<bool> applied;
    testing::TestConsole console;
    const auto loaded = configurations.Loader(applied)(board, directory_.Path() + "/", console);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(applied, std::vector<bool>{board == "Zed-42"}) << board;
  }
}

TEST_F(ConfigurationToChange, HasTheChangesThatItCanHave) {
  const auto changes = ParseChanges(
      {.properties = {},
       .personalities = {"USBC:4:Version=9", "USBC:1:Version=9", "Zed-8/USBC:1:Version=10"}});
  ChangedConfigurations configurations(*changes);
  for (int run = 0; run < 2; ++run) {
    std::vector<bool> applied;
    testing::TestConsole console;
    const auto loaded = configurations.Loader(applied)("Zed-42", directory_.Path() + "/", console);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(WriteXmlPropertyList(loaded->value), LoadChanged({"USBC:1:Version=9"}));
    EXPECT_EQ(applied, (std::vector<bool>{false, true, false}));
  }
}

TEST_F(ConfigurationToChange, IsReadOnce) {
  const Changes changes;
  ChangedConfigurations configurations(changes);
  const auto first = Load(configurations);
  Write(Dict(Record()));
  EXPECT_EQ(Load(configurations), first);
}

TEST_F(ConfigurationToChange, ThatCannotBeReadIsReadAgain) {
  std::filesystem::rename(path_, path_ + "2");
  const Changes changes;
  ChangedConfigurations configurations(changes);
  EXPECT_EQ(Load(configurations), "cannot be read");
  std::filesystem::rename(path_ + "2", path_);
  EXPECT_NE(Load(configurations), "cannot be read");
}

TEST_F(ConfigurationToChange, IsAbsentWithoutABoard) {
  const Changes changes;
  ChangedConfigurations configurations(changes);
  std::optional<Error> refusal;
  testing::TestConsole console;
  EXPECT_FALSE(configurations.Loader(refusal)(std::nullopt, std::nullopt, console));
  EXPECT_FALSE(refusal);
}

TEST_F(ConfigurationToChange, IsLocatedOnce) {
  const Changes changes;
  ChangedConfigurations configurations(changes);
  const auto file = configurations.Located("Zed-42", directory_.Path() + "/");
  ASSERT_TRUE(file);
  ASSERT_NE(*file, nullptr);
  EXPECT_EQ((*file)->Root().Entries().size(), 3u);
  EXPECT_EQ(*configurations.Located("./Zed-42/", directory_.Path() + "/"), *file);
  std::filesystem::remove(path_);
  EXPECT_EQ(*configurations.Located("Zed-42", directory_.Path() + "/"), *file);
  EXPECT_EQ(*configurations.Located("Zed-43", directory_.Path() + "/"), nullptr);
}

TEST_F(ConfigurationToChange, IsAnErrorWithoutDescriptors) {
  // The sanitizers need descriptors of their own.
  if (testing::UnderAddressSanitizer) GTEST_SKIP();
  const Changes changes;
  ChangedConfigurations configurations(changes);
  rlimit usual = {};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
  const rlimit none = {0, usual.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  const auto file = configurations.Located("Zed-42", directory_.Path() + "/");
  const auto settled = Load(configurations);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &usual), 0);
  ASSERT_FALSE(file);
  EXPECT_EQ(file.Error().error.message, path_ + ": Too many open files");
  EXPECT_EQ(file.Error().status, LabStatus::OutOfResources);
  EXPECT_EQ(settled, "cannot be read");
}

}  // namespace
}  // namespace fernwick::lab
