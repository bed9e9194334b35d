#include "lab/survey/shards/merged_rows.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using Indexes = std::vector<std::size_t>;

// One result to write.
struct WrittenShard {
  Shard shard;
  Indexes rows;
  std::size_t computers = 4;
  std::string selection = "s";
  std::string verb = "survey";
  Json options = {{"payload", "p"}};
};

class MergedShards : public ::testing::Test {
 protected:
  // Writes results with the names "0", "1", ... Returns their paths.
  std::vector<std::string> Write(const std::vector<WrittenShard>& shards) const {
    std::vector<std::string> paths;
    for (const auto& shard : shards) {
      auto text = PrintShardHeader({shard.shard, shard.verb, shard.options});
      for (const auto index : shard.rows) text += PrintShardRow(index, index == 0, {index});
      text += PrintShardEnd({shard.rows.size(), shard.computers, shard.selection, shard.rows});
      paths.push_back(directory_.Write(std::to_string(paths.size()), text));
    }
    return paths;
  }

  std::string OpenError(const std::vector<WrittenShard>& shards) const {
    const auto rows = MergedRows::Open(Write(shards));
    return rows ? "" : MessageOf(rows.Error());
  }

  // The error of reading all rows; empty when there is none.
  std::string ReadError(const std::vector<WrittenShard>& shards) const {
    auto rows = MergedRows::Open(Write(shards));
    for (;;) {
      const auto row = rows->Next();
      if (!row) return MessageOf(row.Error());
      if (!*row) return "";
    }
  }

  // Without the directory.
  std::string MessageOf(const LabError& error) const {
    EXPECT_EQ(error.status, LabStatus::MalformedInput);
    auto message = error.error.message;
    const auto prefix = directory_.Path() + "/";
    for (auto i = message.find(prefix); i != std::string::npos; i = message.find(prefix)) {
      message.erase(i, prefix.size());
    }
    return message;
  }

  testing::TemporaryDirectory directory_;
};

TEST_F(MergedShards, AreInTheOrderOfTheSelection) {
  const std::vector<WrittenShard> shards = {{{3, 3}, {0, 3}}, {{1, 3}, {1, 2}}, {{2, 3}, {}}};
  auto rows = MergedRows::Open(Write(shards));
  ASSERT_TRUE(rows);
  EXPECT_EQ(rows->Header().verb, "survey");
  EXPECT_EQ(rows->Header().shard.number, 3u);  // of the first that is named
  std::vector<Json> totals;
  rows->addTotals = [&](const Json& each) {
    totals.push_back(each);
    return true;
  };
  for (std::size_t i = 0; i < 4; ++i) {
    const auto row = rows->Next();
    ASSERT_TRUE(row && *row);
    EXPECT_EQ((*row)->index, i);
    EXPECT_EQ((*row)->isNamed, i == 0);
    EXPECT_EQ((*row)->row, Json({i}));
  }
  EXPECT_EQ(*rows->Next(), std::nullopt);
  const std::vector<Json> expected = {Indexes{}, Indexes{1, 2}, Indexes{0, 3}};  // as they end
  EXPECT_EQ(totals, expected);
}

TEST_F(MergedShards, MayBeAllEmpty) {
  EXPECT_EQ(ReadError({{{1, 1}, {}, 0}}), "");
}

TEST_F(MergedShards, AreAllOfOneRun) {
  const auto error = [&](const WrittenShard& other) { return OpenError({{{1, 2}, {}}, other}); };
  EXPECT_EQ(error({{2, 2}, {}}), "");
  EXPECT_EQ(error({{2, 3}, {}}), "1: its number of shards is not that of 0");
  EXPECT_EQ(error({.shard = {2, 2}, .rows = {}, .verb = "settle"}), "1: its verb is not that of 0");
  EXPECT_EQ(error({.shard = {2, 2}, .rows = {}, .options = {{"payload", "q"}}}),
            "1: its payload is not that of 0");
  EXPECT_EQ(error({.shard = {2, 2}, .rows = {}, .options = {{"each", true}, {"payload", "p"}}}),
            "1: its each is not that of 0");
  EXPECT_EQ(error({.shard = {2, 2}, .rows = {}, .options = Json::object()}),
            "1: its list of options is not that of 0");
}

TEST_F(MergedShards, AreThereOnce) {
  EXPECT_EQ(OpenError({{{2, 2}, {}}, {{2, 2}, {}}}), "1: it is shard 2 of 2, as is 0");
  EXPECT_EQ(OpenError({{{2, 2}, {}}}), "shard 1 of 2 is missing");
  EXPECT_EQ(OpenError({{{1, 9}, {}}, {{4, 9}, {}}, {{2, 9}, {}}}),
            "shard 3 of 9 is missing, and 5 more");
}

TEST_F(MergedShards, ThatCannotBeOpenedAreAnError) {
  const auto rows = MergedRows::Open({directory_.Path() + "/none"});
  ASSERT_FALSE(rows);
  EXPECT_EQ(rows.Error().status, LabStatus::UnreadableInput);
}

TEST_F(MergedShards, HaveARowOfEachComputer) {
  EXPECT_EQ(ReadError({{{1, 2}, {0, 3}}, {{2, 2}, {1}}}),
            "0: the computer of index 2 comes next but has none before it");
  EXPECT_EQ(ReadError({{{1, 2}, {0, 1}}, {{2, 2}, {1, 2}}}),
            "1: the computer of index 1 has a row already");
  EXPECT_EQ(ReadError({{{1, 2}, {0, 1}}, {{2, 2}, {2}}}), "0: the last of 4 computers have no row");
}

TEST_F(MergedShards, AreOfOneSelection) {
  EXPECT_EQ(ReadError({{{1, 2}, {0, 1}}, {{2, 2}, {2, 3}, 4, "t"}}),
            "1: its selection is not that of 0");
  EXPECT_EQ(ReadError({{{1, 2}, {0, 1}}, {{2, 2}, {2, 3}, 5}}),
            "1: its selection is not that of 0");
}

TEST_F(MergedShards, EndWhereAResultIsMalformed) {
  const auto paths = Write({{{1, 2}, {0, 1}}, {{2, 2}, {2, 3}}});
  const auto header = PrintShardHeader({{2, 2}, "survey", {{"payload", "p"}}});
  const auto errorWith = [&](const std::string& lines) {
    directory_.Write("1", header + lines);
    auto rows = MergedRows::Open(paths);
    for (int i = 0; i < 4; ++i) {
      const auto row = rows->Next();
      if (!row) return std::to_string(i) + " rows, " + MessageOf(row.Error());
    }
    return std::string();
  };
  EXPECT_EQ(errorWith("{}\n"), "0 rows, 1:2: this is not a row of a shard");
  EXPECT_EQ(errorWith(PrintShardRow(2, false, 1) + "{}\n"),
            "2 rows, 1:3: this is not a row of a shard");
}

TEST_F(MergedShards, HaveTotalsOfThePayload) {
  auto rows = MergedRows::Open(Write({{{1, 1}, {0}, 1}}));
  rows->addTotals = [](const Json&) { return false; };
  const auto row = rows->Next();
  ASSERT_FALSE(row);
  EXPECT_EQ(MessageOf(row.Error()), "0: its totals are not those of the payload");
}

}  // namespace
}  // namespace fernwick::lab
