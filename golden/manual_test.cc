// What the manual pages list is compared with the schema of keys, the requirements and what the
// programs list.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "personality/requirements.h"
#include "registry/key_schema.h"
#include "testing/dictionaries.h"
#include "testing/files.h"
#include "testing/inputs/value_domain.h"
#include "testing/programs/child_process.h"
#include "testing/programs/manual_page.h"
#include "testing/programs/program_help.h"

namespace fernwick {
namespace {

namespace fs = std::filesystem;

using testing::ItemsOf;

const fs::path SourceDirectory = FERNWICK_SOURCE_DIRECTORY;
const fs::path Pages = SourceDirectory / "man";

TEST(Manual, PagesAreSoundMarkup) {
  for (const auto& page : testing::ManualPages(SourceDirectory)) {
    const auto outcome = testing::RunChild(
        {"mandoc", "-T", "lint", "-W", "warning", page.filename().string()}, Pages.string());
    EXPECT_EQ(outcome.standardOutput + outcome.standardError, "");
    EXPECT_EQ(outcome.status, "0");
  }
}

TEST(Manual, ToolPageListsItsOptionsAndNoOther) {
  std::set<std::string> listed;
  for (const auto& item : ItemsOf(Pages / "fernwick.1")) {
    for (auto& option : testing::OptionsIn(item.heading)) listed.insert(std::move(option));
  }
  EXPECT_EQ(listed, testing::OptionsOfTool(FERNWICK_PROGRAM));
}

// Every diagnostic of a requirement, over every two values that its two sides can have, each
// without its line feed.
std::set<std::string> DiagnosticsOf(const Requirement& requirement) {
  std::vector<std::optional<PropertyValue>> values = {std::nullopt};
  for (const auto& value : testing::ValueDomain()) values.emplace_back(value);
  std::set<std::string> diagnostics;
  for (const auto& wanted : values) {
    const auto personality = testing::SingleEntry(requirement.key, wanted);
    for (const auto& found : values) {
      const auto hardware = testing::SingleEntry(requirement.hardwareKey, found);
      auto diagnostic = Test(requirement, personality, {hardware}).diagnostic;
      if (diagnostic.empty()) continue;
      EXPECT_TRUE(diagnostic.ends_with('\n')) << diagnostic;
      diagnostic.remove_suffix(1);
      diagnostics.emplace(diagnostic);
    }
  }
  return diagnostics;
}

TEST(Manual, ToolPageListsTheDiagnosticsOfTheChecks) {
  std::set<std::string> written;
  for (const auto& requirement : RequirementsOf(Types::Thunderbolt)) {
    written.merge(DiagnosticsOf(requirement));
  }
  EXPECT_EQ(written.size(), 8u);
  std::set<std::string> listed;
  for (const auto& item : ItemsOf(Pages / "fernwick.1")) {
    if (item.section == "DIAGNOSTICS") listed.insert(item.heading);
  }
  EXPECT_EQ(listed, written);
}

TEST(Manual, LabPageListsTheOptionsOfEachVerbAndNoOther) {
  const auto verbs = testing::VerbsAndOptions(FERNWICK_LAB_PROGRAM);
  std::map<std::string, std::set<std::string>> listed;
  const auto source = testing::ReadFile(Pages / "fernwick-lab.1");
  const std::regex subsection(R"(\.Ss (\w+)\n)");
  for (std::sregex_iterator verb(source.begin(), source.end(), subsection), end; verb != end;
       ++verb) {
    listed[(*verb)[1]] = {};
  }
  for (const auto& item : ItemsOf(Pages / "fernwick-lab.1")) {
    for (auto& option : testing::OptionsIn(item.heading)) {
      listed[item.section].insert(std::move(option));
    }
  }
  EXPECT_FALSE(verbs.empty());
  EXPECT_EQ(listed, verbs);
}

std::string NamesOf(TypeSet types) {
  std::string names;
  for (const auto& [type, name] : std::initializer_list<std::pair<TypeSet, const char*>>{
           {Types::LegacyThunderbolt, "LegacyThunderbolt"},
           {Types::Thunderbolt, "Thunderbolt"},
           {Types::LegacyUsbc, "LegacyUSBC"},
           {Types::Usbc, "USBC"}}) {
    if ((types & type) != 0) names.append(names.empty() ? "" : ", ").append(name);
  }
  return names;
}

const char* KindOf(const Key& key) {
  switch (key.kind) {
    case KeyKind::OneNumber: return "One number.";
    case KeyKind::NumberOrList: return "A number or a list of numbers.";
    case KeyKind::StringOrList: return "A string or a list of strings.";
    case KeyKind::ListOfStrings: return "A list of strings.";
    case KeyKind::FileName: return "The name of a file.";
    case KeyKind::Priority: return "A number.";
    case KeyKind::NvramDictionary: return "A dictionary.";
    case KeyKind::NameList: return "A list of names.";
    case KeyKind::NotRead: break;
  }
  return "";
}

const char* AbsenceOf(const Key& key) {
  if (key.kind == KeyKind::FileName) return "Without it there is no plan.";
  if (key.kind == KeyKind::Priority) return "Without it the priority is 0.";
  if (key.kind == KeyKind::NvramDictionary) return "Without it nothing is set.";
  if (key.kind == KeyKind::NameList) return "Without it nothing is removed.";
  if (key.name == "Version") {
    return "Without it nothing matches, unless the version check is bypassed.";
  }
  return key.requiredBy == Types::None ? "Without it there is no constraint."
                                       : "Without it nothing matches.";
}

// The first paragraph of a key says its kind, which types read it and what its absence means.
TEST(Manual, ConfigurationPageStatesTheFactsOfEveryKey) {
  std::map<std::string, std::string> expected;
  for (const auto& key : KeySchema()) {
    if (key.kind == KeyKind::NotRead) continue;
    auto& facts = expected["Qq " + std::string(key.name)];
    facts = KindOf(key);
    if (key.checkedBy != Types::None) facts += " Tested by " + NamesOf(key.checkedBy) + ".";
    if (key.plannedBy != Types::None) facts += " Planned by " + NamesOf(key.plannedBy) + ".";
    facts.append(" ").append(AbsenceOf(key));
    // A type that tests a key and needs it: those that need it are all that test it.
    if (key.checkedBy != Types::None && key.requiredBy != Types::None) {
      EXPECT_EQ(key.requiredBy, key.checkedBy) << key.name;
    }
  }
  std::map<std::string, std::string> stated;
  for (const auto& item : ItemsOf(Pages / "fernwick-config.5")) {
    if (item.heading.starts_with("Qq ")) stated[item.heading] = item.paragraph;
  }
  EXPECT_EQ(stated, expected);
}

// The row of a key in the table of properties: "-" for a controller that has no property of it.
std::string PropertyRowOf(const Key& key) {
  const auto cell = [](const PropertyOrigin& origin) {
    return " Ta " + std::string(origin.property.empty() ? "-" : origin.property);
  };
  return std::string(key.name) + cell(key.port) + cell(key.thunderbolt);
}

TEST(Manual, ConfigurationPageListsThePropertiesThatEachKeyIsReadFrom) {
  std::vector<std::string> expected;
  for (const auto& key : KeySchema()) {
    const bool isRead = !key.port.property.empty() || !key.thunderbolt.property.empty();
    if (isRead) expected.push_back(PropertyRowOf(key));
  }
  std::vector<std::string> listed;
  for (const auto& item : ItemsOf(Pages / "fernwick-config.5")) {
    if (item.section == "PROPERTIES" && !item.heading.starts_with("Sy ")) {
      listed.push_back(item.heading);
    }
  }
  EXPECT_EQ(listed, expected);
}

}  // namespace
}  // namespace fernwick
