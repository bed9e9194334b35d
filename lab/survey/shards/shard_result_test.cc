#include "lab/survey/shards/shard_result.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

const ShardHeader Header = {{2, 3}, "survey", {{"payload", "00ff"}, {"bypassVersion", false}}};

// The results of shards as files.
class ShardResults : public ::testing::Test {
 protected:
  // The error of opening the file with this text; empty when it can be opened.
  std::string OpenError(const std::string& text) const {
    const auto path = directory_.Write("r", text);
    const auto result = ShardResult::Open(path);
    if (result) return "";
    EXPECT_EQ(result.Error().status, LabStatus::MalformedInput);
    return WithoutPath(path, result.Error());
  }

  // The error of reading these lines after a header to the end; empty when there is none.
  std::string ReadError(const std::string& lines) const {
    const auto path = directory_.Write("r", PrintShardHeader(Header) + lines);
    auto result = ShardResult::Open(path);
    for (;;) {
      const auto row = result->Next();
      if (!row) return WithoutPath(path, row.Error());
      if (!*row) return "";
    }
  }

  static std::string WithoutPath(const std::string& path, const LabError& error) {
    EXPECT_TRUE(error.error.message.starts_with(path + ":")) << error.error.message;
    return error.error.message.substr(path.size() + 1);
  }

  testing::TemporaryDirectory directory_;
};

const std::string End = PrintShardEnd({0, 5, "s"});

TEST_F(ShardResults, AreReadAsTheyAreWritten) {
  const auto path =
      directory_.Write("r", PrintShardHeader(Header) + PrintShardRow(1, true, {{"a", 1}}) +
                                PrintShardRow(4, false, "text", {{"text", "for people"}}) +
                                PrintShardEnd({2, 5, "names", {{"sum", 7}}}));
  auto result = ShardResult::Open(path);
  ASSERT_TRUE(result);
  EXPECT_EQ(result->Path(), path);
  EXPECT_EQ(result->Header().shard.number, 2u);
  EXPECT_EQ(result->Header().shard.count, 3u);
  EXPECT_EQ(result->Header().verb, "survey");
  EXPECT_EQ(result->Header().options, Header.options);
  const auto first = **result->Next();
  EXPECT_EQ(first.index, 1u);
  EXPECT_TRUE(first.isNamed);
  EXPECT_EQ(first.row, Json({{"a", 1}}));
  const auto second = **result->Next();
  EXPECT_EQ(second.index, 4u);
  EXPECT_FALSE(second.isNamed);
  EXPECT_EQ(second.row, "text");
  EXPECT_EQ(second.line["text"], "for people");
  EXPECT_EQ(*result->Next(), std::nullopt);
  EXPECT_EQ(result->End().rows, 2u);
  EXPECT_EQ(result->End().computers, 5u);
  EXPECT_EQ(result->End().selection, "names");
  EXPECT_EQ(result->TakeTotals(), Json({{"sum", 7}}));
}

TEST_F(ShardResults, ContainStringsThatAreNotUtf8) {
  const Json row = {{"file", "\xFF\x00\x1F"}, {"list", {"text", {{"a/b~c", "\xE0\x80"}}}}};
  const auto line = PrintShardRow(0, false, row);
  EXPECT_NE(line.find(R"("bytes":{"/file":"ff","/list/1/a~1b~0c":"e080"})"), std::string::npos)
      << line;
  const auto path =
      directory_.Write("r", PrintShardHeader(Header) + line + PrintShardEnd({1, 1, "s"}));
  auto result = ShardResult::Open(path);
  EXPECT_EQ((**result->Next()).row, row);
  EXPECT_EQ(PrintShardRow(0, false, "text").find("bytes"), std::string::npos);
}

TEST_F(ShardResults, WithoutAHeaderAreRefused) {
  const std::string refusal = "1: this is not the result of a shard";
  EXPECT_EQ(OpenError(""), "0: this is not the result of a shard");
  for (const auto* header :
       {"\n", "{", "[]", "{}", R"({"of":1,"verb":"v","options":{}})",
        R"({"shard":1,"verb":"v","options":{}})", R"({"shard":1,"of":1,"options":{}})",
        R"({"shard":1,"of":1,"verb":"v"})", R"({"shard":1,"of":1,"verb":"v","options":[]})",
        R"({"shard":1,"of":1,"verb":1,"options":{}})",
        R"({"shard":0,"of":1,"verb":"v","options":{}})",
        R"({"shard":2,"of":1,"verb":"v","options":{}})",
        R"({"shard":-1,"of":1,"verb":"v","options":{}})",
        R"({"shard":1.0,"of":1,"verb":"v","options":{}})"}) {
    EXPECT_EQ(OpenError(header), refusal) << header;
  }
  EXPECT_EQ(OpenError(R"({"shard":1,"of":1,"verb":"v","options":{}})"), "");
}

TEST_F(ShardResults, ThatCannotBeReadAreAnError) {
  for (const auto& [path, message] :
       {std::pair(directory_.Path() + "/none", "No such file or directory"),
        {directory_.Path(), "Is a directory"},
        {std::string("/dev/null"), "not a regular file"},
        // A regular file that cannot be read from its start.
        {std::string("/proc/self/mem"), "Input/output error"}}) {
    const auto result = ShardResult::Open(path);
    ASSERT_FALSE(result) << path;
    EXPECT_EQ(result.Error().status, LabStatus::UnreadableInput);
    EXPECT_EQ(result.Error().error.message, path + ": " + message);
  }
}

TEST_F(ShardResults, WithOtherLinesAreRefused) {
  for (const auto* line : {"\n", "{\n", "[]\n", "7\n", "\"end\"\n"}) {
    EXPECT_EQ(ReadError(line), "2: this is not a line of a shard") << line;
  }
  for (const auto* line :
       {R"({})", R"({"named":true,"row":1})", R"({"index":1,"row":1})",
        R"({"index":1,"named":true})", R"({"index":1,"named":1,"row":1})",
        R"({"index":-1,"named":true,"row":1})", R"({"index":"1","named":true,"row":1})"}) {
    EXPECT_EQ(ReadError(std::string(line) + "\n"), "2: this is not a row of a shard") << line;
  }
  const auto row = PrintShardRow(3, false, 1);
  EXPECT_EQ(ReadError(row + PrintShardRow(2, false, 1)), "3: this is not a row of a shard");
  EXPECT_EQ(ReadError(row + row), "3: this is not a row of a shard");
}

TEST_F(ShardResults, WithOtherBytesAreRefused) {
  const auto withBytes = [&](const std::string& bytes) {
    return ReadError(R"({"index":0,"named":false,"row":{"a":"x","b":[1]},"bytes":)" + bytes +
                     "}\n" + PrintShardEnd({1, 1, "s"}));
  };
  EXPECT_EQ(withBytes(R"({"/a":"ff"})"), "");
  EXPECT_EQ(withBytes("{}"), "");
  for (const auto* bytes :
       {"[]", R"({"/a":1})", R"({"/a":"f"})", R"({"/a":"fg"})", R"({"/a":"0x"})", R"({"/a":"fff"})",
        R"({"/c":"ff"})", R"({"a":"ff"})", R"({"/b":"ff"})", R"({"/b/0":"ff"})", R"({"/b/1":"ff"})",
        R"({"/b/-":"ff"})", R"({"":"ff"})"}) {
    EXPECT_EQ(withBytes(bytes), "2: this is not a row of a shard") << bytes;
  }
}

TEST_F(ShardResults, WithoutTheirEndAreRefused) {
  const std::string cut = "the result lacks its end: the shard was not completed";
  EXPECT_EQ(ReadError(""), "1: " + cut);
  EXPECT_EQ(ReadError(PrintShardRow(0, false, 1)), "2: " + cut);
  EXPECT_EQ(ReadError(End), "");
  EXPECT_EQ(ReadError(End.substr(0, End.size() - 1)), "");  // the line feed alone
  EXPECT_EQ(ReadError(End.substr(0, End.size() - 2)), "2: this is not a line of a shard");
  EXPECT_EQ(ReadError(End + End), "3: there is more after the end");
}

TEST_F(ShardResults, WithTheEndOfOthersAreRefused) {
  const std::string refusal = "2: the end is not that of these rows";
  for (const auto* end : {R"({"end":true})", R"({"end":true,"rows":0,"computers":1,"totals":1})",
                          R"({"end":true,"rows":0,"selection":"s","totals":1})",
                          R"({"end":true,"computers":1,"selection":"s","totals":1})",
                          R"({"end":true,"rows":0,"computers":1,"selection":"s"})",
                          R"({"end":true,"rows":0,"computers":1,"selection":5,"totals":1})",
                          R"({"end":true,"rows":1,"computers":1,"selection":"s","totals":1})"}) {
    EXPECT_EQ(ReadError(std::string(end) + "\n"), refusal) << end;
  }
  const auto row = PrintShardRow(3, false, 1);
  EXPECT_EQ(ReadError(row + PrintShardEnd({1, 4, "s"})), "");
  EXPECT_EQ(ReadError(row + PrintShardEnd({1, 3, "s"})), "3: the end is not that of these rows");
  EXPECT_EQ(ReadError(row + PrintShardEnd({0, 4, "s"})), "3: the end is not that of these rows");
}

}  // namespace
}  // namespace fernwick::lab
