#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "lab/support/json_values.h"
#include "lab/support/messages.h"
#include "lab/support/stdio_file.h"
#include "lab/survey/shards/shard.h"
#include "value/result.h"

namespace fernwick::lab {

// The result of a shard is a file of lines, each a JSON object:
//
//   {"shard":2,"of":3,"verb":"survey","options":{...}}
//   {"index":7,"named":false,"row":{...}}
//   {"index":9,"named":false,"row":{...},"bytes":{"/file":"66ff"}}
//   {"end":true,"rows":2,"computers":11,"selection":"9c3d...","totals":null}
//
// First what was run, with all options that change a row, and a hash of the payload. Then the rows
// with the index of their computer among all that the command line selects, ascending; a verb may
// have more in a line. JSON cannot contain strings that are not UTF-8: "bytes" has those of a row
// in hexadecimal, by their JSON pointers. The last line makes sure that the file is complete, and
// has the number of all computers that are selected, those of other shards as well, a hash of
// their names, and what the verb adds up ("totals") instead of printing it in rows.

/// The first line.
struct ShardHeader {
  Shard shard;
  std::string verb;
  Json options;  // the same in each shard of a run
};

/// The last line.
struct ShardEnd {
  std::size_t rows = 0;
  std::size_t computers = 0;
  std::string selection;
  Json totals = nullptr;  // those that a verb adds up
};

/// A line with its line feed.
std::string PrintShardHeader(const ShardHeader& header);
std::string PrintShardEnd(const ShardEnd& end);

/// The line of a computer; `more` has further members. `isNamed` as in Selected.
std::string PrintShardRow(std::size_t index, bool isNamed, const Json& row,
                          const Json& more = Json::object());

/// A row that was read.
struct ShardRow {
  std::size_t index = 0;
  bool isNamed = false;
  Json row;   // with the strings that are not UTF-8
  Json line;  // all members
};

/// Reads the result of a shard, a line at a time.
class ShardResult {
 public:
  /// Opens the file and reads its header. The message of an error has the path.
  static Result<ShardResult, LabError> Open(const std::string& path);

  const std::string& Path() const { return path_; }
  const ShardHeader& Header() const { return header_; }

  /// The next row; empty after the last one, when the end has been read. Rows whose indexes do not
  /// ascend, and a file without its end or with more after it, are errors.
  Result<std::optional<ShardRow>, LabError> Next();

  /// REQUIRES: Next has returned the end.
  const ShardEnd& End() const { return end_; }

  /// The same of its totals, which are no longer stored then.
  Json TakeTotals() { return std::move(end_.totals); }

 private:
  ShardResult(std::string path, StdioFile file) : path_(std::move(path)), file_(std::move(file)) {}

  Result<std::optional<std::string>, LabError> NextLine();
  std::optional<LabError> ReadHeader();
  Result<std::optional<ShardRow>, LabError> ReadEnd(const Json& line);
  LabError Malformed(const std::string& what) const;

  std::string path_;
  StdioFile file_;
  std::size_t lines_ = 0;
  std::size_t rows_ = 0;
  std::size_t nextIndex_ = 0;  // the smallest that may come
  ShardHeader header_;
  ShardEnd end_;
};

}  // namespace fernwick::lab
