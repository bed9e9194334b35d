// Shards of random fleets: merged, they are what one run prints, to the byte, and its status. The
// computers are in directories and archives of every form, some of which are damaged, and some
// recordings are malformed, end abnormally or are missing.

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "testing/archives.h"
#include "testing/programs/child_process.h"
#include "testing/programs/many_computers.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using testing::ChildOutcome;
using Words = std::vector<std::string>;

constexpr unsigned Fleets = 7;  // with as many shards at most

Words Joined(Words words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

class RandomFleet {
 public:
  explicit RandomFleet(unsigned seed) : random_(seed) {
    testing::WriteManyComputers(directory_, 0);  // the payload
    // A computer that is selected, whatever else there is.
    arguments_ = {directory_.Write("one.registry.plist", testing::SmallRecording(seed))};
    for (auto i = Below(3); i > 0; --i) AddDirectory();
    for (auto i = Below(4); i > 0; --i) AddArchive();
    if (Below(2) == 0) arguments_.emplace_back("missing.registry.plist");
    if (Below(2) == 0) arguments_.push_back(arguments_[Below(arguments_.size())]);
    std::shuffle(arguments_.begin(), arguments_.end(), random_);
  }

  std::size_t Below(std::size_t bound) { return random_() % bound; }

  ChildOutcome Lab(const Words& words) const {
    return testing::RunChild(Joined({FERNWICK_LAB_PROGRAM}, words), directory_.Path());
  }

  // The verb over all computers.
  ChildOutcome Run(const std::string& verb, const Words& options) const {
    return Lab(Joined(Joined({verb, "-p", "payload"}, options), arguments_));
  }

  // Writes the results of all shards. Returns their names, in any order.
  Words WriteShards(const std::string& verb, std::size_t count, const Words& options) {
    Words results;
    for (std::size_t i = 1; i <= count; ++i) {
      const auto shard = std::to_string(i) + "/" + std::to_string(count);
      const auto jobs = "-j" + std::to_string(1 + Below(3));
      const auto outcome = Run(verb, Joined({"--shard", shard, jobs}, options));
      results.push_back(directory_.Write(verb + std::to_string(i), outcome.standardOutput));
    }
    std::shuffle(results.begin(), results.end(), random_);
    return results;
  }

 private:
  std::string Recording() {
    switch (Below(8)) {
      case 0: return "{";
      case 1: return testing::FaultyRecording();
      default: return testing::SmallRecording(Below(120));
    }
  }

  std::string Name() {
    const auto number = std::to_string(Below(1000));
    switch (Below(10)) {
      case 0: return number;  // no recording
      case 1: return "\xFF\"\n" + number + ".registry.plist";
      default: return number + ".registry.plist";
    }
  }

  void AddDirectory() {
    const auto name = "directory" + std::to_string(arguments_.size());
    directory_.Write(name + "/0.registry.plist", Recording());
    for (auto i = Below(20); i > 0; --i) directory_.Write(name + "/" + Name(), Recording());
    if (Below(2) == 0) directory_.Write(name + "/inner.tar.gz", Archive());
    arguments_.push_back(name);
  }

  std::string Archive() {
    std::vector<testing::ArchiveMember> members;
    for (auto i = Below(20); i > 0; --i) {
      members.push_back({.name = Name(), .bytes = Recording()});
      if (Below(12) > 0) continue;
      members.push_back({.name = Name(), .type = AE_IFLNK, .link = "elsewhere"});
    }
    constexpr int Filters[] = {ARCHIVE_FILTER_NONE, ARCHIVE_FILTER_GZIP, ARCHIVE_FILTER_XZ,
                               ARCHIVE_FILTER_ZSTD};
    auto bytes = Below(3) == 0
                     ? testing::ArchiveOf(members, ARCHIVE_FORMAT_ZIP)
                     : testing::ArchiveOf(members, ARCHIVE_FORMAT_TAR_GNUTAR, Filters[Below(4)]);
    if (Below(4) == 0) bytes.resize(Below(bytes.size() + 1));
    return bytes;
  }

  void AddArchive() {
    arguments_.push_back(
        directory_.Write("archive" + std::to_string(arguments_.size()) + ".tar", Archive()));
  }

  std::mt19937 random_;
  testing::TemporaryDirectory directory_;
  Words arguments_;
};

// A verb, the options of its shards, and what merges may print instead of the default.
struct ShardedVerb {
  std::string name;
  Words shard;
  Words whole;  // what one run needs for the same rows
  std::vector<Words> ends;
};

const ShardedVerb Verbs[] = {
    {"survey",
     {"--format", "ndjson"},
     {},
     {{},
      {"--wide"},
      {"--format", "ndjson", "--fail-on", "fault,no-plan"},
      {"--format", "csv"},
      {"--format", "junit"}}},
    {"coverage", {}, {}, {{}, {"--format", "json"}, {"--threshold", "62.5"}}},
    {"settle",
     {"--format", "ndjson", "--each"},
     {"--each"},
     {{}, {"--format", "ndjson"}, {"--fail-on", "refused,abnormal"}}}};

TEST(RandomShards, MergeToWhatOneRunPrints) {
  for (unsigned seed = 1; seed <= Fleets; ++seed) {
    RandomFleet fleet(seed);
    for (std::size_t i = 0; i < std::size(Verbs); ++i) {
      const auto& verb = Verbs[i];
      const auto count = 1 + (seed + i) % Fleets;
      const auto results = fleet.WriteShards(verb.name, count, verb.shard);
      for (const auto& end : verb.ends) {
        SCOPED_TRACE(verb.name + " of fleet " + std::to_string(seed) + " in " +
                     std::to_string(count) + " shards" + (end.empty() ? "" : ", " + end.back()));
        const bool needsPayload = verb.name == "coverage";
        const auto options = Joined(needsPayload ? Words{"-p", "payload"} : Words{}, end);
        testing::ExpectOutcome(fleet.Lab(Joined(Joined({"merge"}, options), results)),
                               fleet.Run(verb.name, Joined(verb.whole, end)));
      }
    }
  }
}

}  // namespace
}  // namespace fernwick
