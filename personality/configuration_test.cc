#include "personality/configuration.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "testing/inputs/binary_property_list_builder.h"
#include "testing/inputs/corruption.h"
#include "testing/property_values.h"
#include "testing/temporary_directory.h"
#include "testing/test_console.h"
#include "testing/unprivileged.h"
#include "value/property_list_reader.h"

namespace fernwick {
namespace {

namespace fs = std::filesystem;

using testing::Dict;
using testing::List;
using testing::Repeated;
using testing::TemporaryDirectory;

using OptionalText = std::optional<std::string>;

// What loading returned, and all that it logged.
struct Loading {
  std::optional<PropertyValue> value;
  std::string log;
  int systemError = 0;
  std::optional<PropertyList> list = {};  // which the value views

  friend bool operator==(const Loading& a, const Loading& b) {
    return a.value == b.value && a.log == b.log && a.systemError == b.systemError;
  }
};

void PrintTo(const Loading& loading, std::ostream* out) {
  *out << ::testing::PrintToString(loading.value) << ", log "
       << ::testing::PrintToString(loading.log) << ", errno " << loading.systemError;
}

Loading Load(const OptionalText& boardIdString, const OptionalText& personalitiesDirectory) {
  testing::TestConsole console;
  auto list = LoadPersonalityConfiguration(boardIdString, personalitiesDirectory, console);
  console.Flush();
  EXPECT_EQ(console.Output(), "");
  if (!list) return {{}, console.Error(), list.Error().systemError};
  const auto value = list->value;
  return {value, console.Error(), 0, *std::move(list)};
}

Loading NoFiles(std::string_view boardId, int systemError = ENOENT) {
  return {
      std::nullopt,
      "fernwick: Error reading plist: No files to support boardID: " + std::string(boardId) + "\n",
      systemError};
}

Loading NoConfig(int systemError = ENOENT) {
  return {std::nullopt, "fernwick: Error reading plist: No config file for this project\n",
          systemError};
}

Loading NotRead(std::string_view error, int format, int systemError = 0) {
  return {std::nullopt,
          "fernwick: Error reading plist: " + std::string(error) +
              ", format: " + std::to_string(format) + "\n",
          systemError};
}

// A payload with room for the one board "Zed-42".
class Payload {
 public:
  Payload() { fs::create_directories(BoardDirectoryPath()); }

  std::string PersonalitiesDirectory() const { return directory_.Path() + "/Fernwick/"; }
  std::string BoardDirectoryPath() const { return PersonalitiesDirectory() + "Zed-42"; }
  std::string ConfigPath() const { return BoardDirectoryPath() + "/Config.plist"; }

  void Write(std::string_view relativePath, std::string_view contents) const {
    directory_.Write("Fernwick/" + std::string(relativePath), contents);
  }

  void RestorePermissions() const {
    for (const auto& path : {directory_.Path(), PersonalitiesDirectory(), BoardDirectoryPath()}) {
      fs::permissions(path, fs::perms(0755));
    }
  }

  Loading LoadConfig() const { return Load("Zed-42", PersonalitiesDirectory()); }

 private:
  TemporaryDirectory directory_;
};

// The result of loading a configuration of these bytes.
Loading LoadBytes(std::string_view contents) {
  const Payload payload;
  payload.Write("Zed-42/Config.plist", contents);
  return payload.LoadConfig();
}

constexpr char SmallConfig[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<dict>
	<key>USBC</key>
	<array>
		<dict>
			<key>Version</key>
			<integer>5</integer>
			<key>Port UUID</key>
			<array>
				<string>b0A1</string>
			</array>
		</dict>
	</array>
	<key>LegacyUSBC</key>
	<dict>
		<key>Version</key>
		<real>41.05</real>
	</dict>
</dict>
</plist>
)";

const Dictionary SmallValue = Dict({
    {"USBC", List({Dict({{"Version", 5}, {"Port UUID", List({"b0A1"})}})})},
    {"LegacyUSBC", Dict({{"Version", 41.05}})},
});

TEST(ConfigurationPath, IsTheFileInTheDirectoryOfTheBoard) {
  EXPECT_EQ(ConfigurationPath("Zed-42", "/P//Fernwick/"), "/P//Fernwick/Zed-42/Config.plist");
  EXPECT_EQ(ConfigurationPath("", "/P/Fernwick/"), "/P/Fernwick/Config.plist");
  EXPECT_EQ(ConfigurationPath(std::nullopt, "/P/Fernwick/"), std::nullopt);
  EXPECT_EQ(ConfigurationPath("Zed-42", std::nullopt), std::nullopt);
}

TEST(BoardDirectory, IsThePersonalitiesDirectoryWithTheIdentifierAppended) {
  EXPECT_EQ(BoardDirectory("Zed-42", "/P/Fernwick/"), "/P/Fernwick/Zed-42");
  EXPECT_EQ(BoardDirectory("Zed-42", "/P/Fernwick"), "/P/Fernwick/Zed-42");
  EXPECT_EQ(BoardDirectory("Zed-42", "/P/Fernwick//"), "/P/Fernwick/Zed-42");
  EXPECT_EQ(BoardDirectory("Zed-42", "/P//Fernwick/"), "/P//Fernwick/Zed-42");
  EXPECT_EQ(BoardDirectory("Zed-42", "Fernwick/"), "Fernwick/Zed-42");
}

TEST(BoardDirectory, AcceptsAnyIdentifierAsItIs) {
  EXPECT_EQ(BoardDirectory("", "/P/Fernwick/"), "/P/Fernwick");
  EXPECT_EQ(BoardDirectory("/", "/P/Fernwick/"), "/P/Fernwick/");
  EXPECT_EQ(BoardDirectory("/Zed-42", "/P/Fernwick/"), "/P/Fernwick/Zed-42");
  EXPECT_EQ(BoardDirectory("Zed/42", "/P/Fernwick/"), "/P/Fernwick/Zed/42");
  EXPECT_EQ(BoardDirectory("../x", "/P/Fernwick/"), "/P/Fernwick/../x");
  EXPECT_EQ(BoardDirectory(" %@ ", "/P/Fernwick/"), "/P/Fernwick/ %@ ");
}

TEST(BoardDirectory, IsAbsentWhenEitherPartIs) {
  EXPECT_EQ(BoardDirectory(std::nullopt, "/P/Fernwick/"), std::nullopt);
  EXPECT_EQ(BoardDirectory("Zed-42", std::nullopt), std::nullopt);
  EXPECT_EQ(BoardDirectory(std::nullopt, std::nullopt), std::nullopt);
}

TEST(Configuration, IsReadFromTheBoardsDirectory) {
  EXPECT_EQ(LoadBytes(SmallConfig), (Loading{SmallValue, ""}));
}

TEST(Configuration, InBinaryFormLoadsAsInXml) {
  using testing::AsciiObject, testing::ArrayObject, testing::DictionaryObject, testing::RealObject;
  const std::string integerFive = {0x10, 5};
  const std::string file = testing::BinaryFile({
      DictionaryObject({1, 2}, {3, 4}),
      AsciiObject("USBC"),
      AsciiObject("LegacyUSBC"),
      ArrayObject({5}),
      DictionaryObject({6}, {7}),
      DictionaryObject({6, 8}, {9, 10}),
      AsciiObject("Version"),
      RealObject(41.05),
      AsciiObject("Port UUID"),
      integerFive,
      ArrayObject({11}),
      AsciiObject("b0A1"),
  });
  EXPECT_EQ(LoadBytes(file), LoadBytes(SmallConfig));
}

TEST(Configuration, InTheOldTextFormIsLoaded) {
  EXPECT_EQ(LoadBytes("{ USBC = ( { \"Port UUID\" = ( b0A1 ); } ); }"),
            (Loading{Dict({{"USBC", List({Dict({{"Port UUID", List({"b0A1"})}})})}}), ""}));
}

TEST(Configuration, OfAnyTopLevelKindIsLoadedWithoutComplaint) {
  EXPECT_EQ(LoadBytes("<plist><array><integer>5</integer></array></plist>"),
            (Loading{List({5}), ""}));
  EXPECT_EQ(LoadBytes("<plist><string>USBC</string></plist>"), (Loading{"USBC", ""}));
  EXPECT_EQ(LoadBytes("<plist><false/></plist>"), (Loading{false, ""}));
  EXPECT_EQ(LoadBytes("<plist><dict/></plist>"), (Loading{Dictionary(), ""}));
}

TEST(Configuration, AKeyThatOccursTwiceKeepsItsFirstPositionAndItsLastValue) {
  EXPECT_EQ(LoadBytes("<dict><key>A</key><integer>1</integer><key>B</key><integer>2</integer>"
                      "<key>A</key><integer>3</integer></dict>"),
            (Loading{Dict({{"A", 3}, {"B", 2}}), ""}));
}

TEST(Configuration, WithoutAPersonalitiesDirectoryReportsThatThereAreNoFiles) {
  EXPECT_EQ(Load("Zed-42", std::nullopt), NoFiles("Zed-42"));
}

TEST(Configuration, WithoutABoardIdentifierReportsThatThereAreNoFilesForNull) {
  const Payload payload;
  EXPECT_EQ(Load(std::nullopt, payload.PersonalitiesDirectory()), NoFiles("(null)"));
  EXPECT_EQ(Load(std::nullopt, std::nullopt), NoFiles("(null)"));
}

TEST(Configuration, OfAnotherBoardReportsThatThereAreNoFiles) {
  const Payload payload;
  payload.Write("Zed-42/Config.plist", SmallConfig);
  EXPECT_EQ(Load("Zed-43", payload.PersonalitiesDirectory()), NoFiles("Zed-43"));
  EXPECT_EQ(Load("Zed-4", payload.PersonalitiesDirectory()), NoFiles("Zed-4"));
}

TEST(Configuration, OfAMissingPayloadReportsThatThereAreNoFiles) {
  const TemporaryDirectory directory;
  EXPECT_EQ(Load("Zed-42", directory.Path() + "/Fernwick/"), NoFiles("Zed-42"));
}

TEST(Configuration, ABoardIdentifierIsReportedAsItIs) {
  for (const std::string boardId : {"%@ %lu %s %n", "two\nlines",
                                    "Z\xC3\xA9"
                                    "d",
                                    "\"Zed\"", " "}) {
    EXPECT_EQ(Load(boardId, std::nullopt), NoFiles(boardId));
  }
}

TEST(Configuration, AnOverLongBoardIdentifierReportsThatThereAreNoFiles) {
  const Payload payload;
  const std::string boardId(5000, 'Z');
  EXPECT_EQ(Load(boardId, payload.PersonalitiesDirectory()), NoFiles(boardId, ENAMETOOLONG));
}

TEST(Configuration, AnEmptyBoardIdentifierNamesThePersonalitiesDirectory) {
  const Payload payload;
  EXPECT_EQ(Load("", payload.PersonalitiesDirectory()), NoConfig());
  payload.Write("Config.plist", SmallConfig);
  EXPECT_EQ(Load("", payload.PersonalitiesDirectory()), (Loading{SmallValue, ""}));
  EXPECT_EQ(Load("/", payload.PersonalitiesDirectory()), (Loading{SmallValue, ""}));
}

TEST(Configuration, AnEmptyBoardIdentifierWithoutAPayloadIsReportedAsEmpty) {
  EXPECT_EQ(Load("", std::nullopt), NoFiles(""));
}

TEST(Configuration, ABoardIdentifierMayLeadThroughTheFileSystem) {
  const Payload payload;
  payload.Write("Zed/42/Config.plist", SmallConfig);
  EXPECT_EQ(Load("Zed/42", payload.PersonalitiesDirectory()), (Loading{SmallValue, ""}));
  EXPECT_EQ(Load("/Zed//42/", payload.PersonalitiesDirectory()), (Loading{SmallValue, ""}));
  EXPECT_EQ(Load("../Fernwick/Zed/42", payload.PersonalitiesDirectory()),
            (Loading{SmallValue, ""}));
  EXPECT_EQ(Load("..", payload.PersonalitiesDirectory()), NoConfig());
}

TEST(Configuration, ThePersonalitiesDirectoryMayEndInAnyNumberOfSlashes) {
  const Payload payload;
  payload.Write("Zed-42/Config.plist", SmallConfig);
  const auto directory = payload.PersonalitiesDirectory();
  EXPECT_EQ(Load("Zed-42", directory.substr(0, directory.size() - 1)), (Loading{SmallValue, ""}));
  EXPECT_EQ(Load("Zed-42", directory + "//"), (Loading{SmallValue, ""}));
}

TEST(Configuration, MissingFromTheBoardsDirectoryIsReported) {
  EXPECT_EQ(Payload().LoadConfig(), NoConfig());
}

TEST(Configuration, OfAnotherNameIsMissing) {
  const Payload payload;
  payload.Write("Zed-42/Config.xml", SmallConfig);
  payload.Write("Zed-42/Config.plist.old", SmallConfig);
  EXPECT_EQ(payload.LoadConfig(), NoConfig());
}

TEST(Configuration, ABoardDirectoryThatIsAPlainFileExistsWithoutAConfiguration) {
  const Payload payload;
  payload.Write("Zed-43", SmallConfig);
  EXPECT_EQ(Load("Zed-43", payload.PersonalitiesDirectory()), NoConfig(ENOTDIR));
}

TEST(Configuration, ABoardDirectoryBelowAPlainFileDoesNotExist) {
  const Payload payload;
  payload.Write("Zed-43", SmallConfig);
  EXPECT_EQ(Load("Zed-43/x", payload.PersonalitiesDirectory()), NoFiles("Zed-43/x", ENOTDIR));
}

TEST(Configuration, ADanglingLinkInsteadOfTheBoardDirectoryDoesNotExist) {
  const Payload payload;
  fs::create_symlink("nowhere", payload.PersonalitiesDirectory() + "Zed-43");
  EXPECT_EQ(Load("Zed-43", payload.PersonalitiesDirectory()), NoFiles("Zed-43"));
}

TEST(Configuration, ADanglingLinkInsteadOfTheFileDoesNotExist) {
  const Payload payload;
  fs::create_symlink("nowhere", payload.ConfigPath());
  EXPECT_EQ(payload.LoadConfig(), NoConfig());
}

TEST(Configuration, ALinkToItselfDoesNotExist) {
  const Payload payload;
  fs::create_symlink("Config.plist", payload.ConfigPath());
  EXPECT_EQ(payload.LoadConfig(), NoConfig(ELOOP));
}

TEST(Configuration, IsReadThroughLinks) {
  const Payload payload;
  payload.Write("common/Real.plist", SmallConfig);
  fs::create_symlink("../common/Real.plist", payload.ConfigPath());
  fs::create_symlink("Zed-42", payload.PersonalitiesDirectory() + "Zed-43");
  EXPECT_EQ(Load("Zed-43", payload.PersonalitiesDirectory()), (Loading{SmallValue, ""}));
}

TEST(Configuration, ADirectoryIsNotRead) {
  const Payload payload;
  fs::create_directory(payload.ConfigPath());
  EXPECT_EQ(payload.LoadConfig(), NotRead("Is a directory", 0));
}

TEST(Configuration, AFifoIsNotWaitedFor) {
  const Payload payload;
  ASSERT_EQ(mkfifo(payload.ConfigPath().c_str(), 0600), 0);
  EXPECT_EQ(payload.LoadConfig(), NotRead("not a regular file", 0));
}

TEST(Configuration, ADeviceIsNotRead) {
  const Payload payload;
  fs::create_symlink("/dev/zero", payload.ConfigPath());
  EXPECT_EQ(payload.LoadConfig(), NotRead("not a regular file", 0));
}

TEST(Configuration, AFileThatMayNotBeReadIsReported) {
  const Payload payload;
  payload.Write("Zed-42/Config.plist", SmallConfig);
  payload.RestorePermissions();
  fs::permissions(payload.ConfigPath(), fs::perms::none);
  const testing::Unprivileged unprivileged;
  EXPECT_EQ(payload.LoadConfig(), NotRead("Permission denied", 0, EACCES));
}

TEST(Configuration, ABoardDirectoryThatMayNotBeSearchedHasNoConfiguration) {
  const Payload payload;
  payload.Write("Zed-42/Config.plist", SmallConfig);
  payload.RestorePermissions();
  fs::permissions(payload.BoardDirectoryPath(), fs::perms::none);
  {
    const testing::Unprivileged unprivileged;
    EXPECT_EQ(payload.LoadConfig(), NoConfig(EACCES));
  }
  fs::permissions(payload.BoardDirectoryPath(), fs::perms::owner_all);
}

TEST(Configuration, AFileThatFailsWhileItIsReadIsReported) {
  const Payload payload;
  fs::create_symlink("/proc/self/mem", payload.ConfigPath());
  EXPECT_EQ(payload.LoadConfig(), NotRead("Input/output error", 0, EIO));
}

TEST(Configuration, AnEmptyFileHasNoSerialisation) {
  EXPECT_EQ(LoadBytes(""), NotRead("the file is empty", 0));
}

TEST(Configuration, AFileOfMoreThanOneGibibyteIsRefused) {
  const Payload payload;
  payload.Write("Zed-42/Config.plist", SmallConfig);
  fs::resize_file(payload.ConfigPath(), (std::uintmax_t{1} << 30) + 1);
  EXPECT_EQ(payload.LoadConfig(), NotRead("the file is larger than 1 GiB", 0));
}

TEST(Configuration, OfManyPersonalitiesIsLoadedWhole) {
  constexpr std::size_t count = 100000;
  const std::vector<PropertyValue> personalities(count, Dict({{"Version", 5}}));
  EXPECT_EQ(LoadBytes("<dict><key>USBC</key><array>" +
                      Repeated("<dict><key>Version</key><integer>5</integer></dict>", count) +
                      "</array></dict>"),
            (Loading{Dict({{"USBC", List(personalities)}}), ""}));
}

TEST(Configuration, OtherContentIsReportedWithTheCodeOfTheTextForm) {
  EXPECT_EQ(LoadBytes("This is no list.\n"), NotRead("line 1, column 6: \"=\" was expected", 1));
}

TEST(Configuration, BrokenXmlIsReportedWithTheCodeOfXml) {
  EXPECT_EQ(LoadBytes("<plist>\n<dict>\n"),
            NotRead("line 3, column 1: the document ends too early", 100));
}

TEST(Configuration, BrokenBinaryIsReportedWithTheCodeOfBinary) {
  EXPECT_EQ(LoadBytes("bplist00"), NotRead("byte 8: the file is cut short", 200));
}

TEST(Configuration, NestedTooDeeplyIsReported) {
  EXPECT_EQ(
      LoadBytes(Repeated("<array>", 600) + Repeated("</array>", 600)),
      NotRead("line 1, column 3585: more than 512 arrays and dictionaries are nested in each other",
              100));
}

TEST(Configuration, NestedAsDeeplyAsMayBeIsLoaded) {
  EXPECT_EQ(LoadBytes(Repeated("<array>", 512) + Repeated("</array>", 512)),
            (Loading{testing::NestedArrays(511, Array()), ""}));
}

// A truncated file is reported with the reader's own message.
TEST(Configuration, CutShortAnywhereIsReported) {
  const std::string_view whole = SmallConfig;
  const std::size_t end = whole.find("</plist>") + 8;
  for (std::size_t size = 1; size < end; ++size) {
    const auto bytes = testing::Truncated(whole, size);
    const auto reading = ReadPropertyList(bytes);
    ASSERT_FALSE(reading.list) << size;
    EXPECT_EQ(LoadBytes(bytes),
              NotRead(Describe(reading.list.Error()), static_cast<int>(reading.serialisation)))
        << size;
  }
  EXPECT_EQ(LoadBytes(whole.substr(0, end)), (Loading{SmallValue, ""}));
}

TEST(Configuration, IsReadAgainEachTime) {
  const Payload payload;
  payload.Write("Zed-42/Config.plist", SmallConfig);
  EXPECT_EQ(payload.LoadConfig(), (Loading{SmallValue, ""}));
  payload.Write("Zed-42/Config.plist", "<array/>");
  EXPECT_EQ(payload.LoadConfig(), (Loading{Array(), ""}));
  fs::remove(payload.ConfigPath());
  EXPECT_EQ(payload.LoadConfig(), NoConfig());
}

}  // namespace
}  // namespace fernwick
