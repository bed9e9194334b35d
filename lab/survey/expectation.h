#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/support/messages.h"
#include "lab/support/stdio_file.h"
#include "lab/survey/absolute_paths.h"
#include "lab/survey/row.h"

namespace fernwick::lab {

/// The rows of a survey that was saved as ndjson. They stay in the file, which must not change
/// meanwhile; memory contains an index by path, 72 bytes for each row, so that they may be in any
/// order.
///
/// The path of a row is relative to the directory of the file that contains it. A row that was
/// saved elsewhere is found by its path relative to the working directory.
class SurveyExpectation {
 public:
  /// `path` is that of the file, or "-" for standard input, whose rows have paths relative to the
  /// working directory.
  explicit SurveyExpectation(std::string path);

  /// Returns why the file cannot be used, with the line where there is one; empty when it can. To
  /// be called once at most; without it there are no rows.
  std::optional<LabError> Load();

  /// Whether there is anything at the path.
  bool Exists() const;

  /// The next row for the file of this row, each row once; empty when there is none.
  std::optional<SurveyRow> ConsumeRowFor(const SurveyRow& found);

  /// Calls `visit` with every row that was not consumed, in the order of the file.
  void ForEachLeft(const std::function<void(const SurveyRow&)>& visit) const;

  /// The row as the file is to contain it: the path relative to the file's directory.
  std::string RowToSave(const SurveyRow& found);

 private:
  struct SavedRow {
    std::uint64_t offset;
    std::size_t size;
    bool isConsumed = false;
  };
  // A path under which a row is found.
  struct IndexEntry {
    std::uint64_t hash;
    bool isOfWorkingDirectory;
    std::size_t row;

    friend auto operator<=>(const IndexEntry&, const IndexEntry&) = default;
  };

  std::optional<Error> Open();
  std::optional<LabError> ReadRows();
  void Index(const std::string& file, std::size_t row);
  bool IsFor(const IndexEntry& entry, const SurveyRow& row, const std::string& path);
  std::optional<SurveyRow> ReadRow(const SavedRow& saved) const;

  std::string path_;
  AbsolutePaths ofFile_;              // relative to the file's directory
  AbsolutePaths ofWorkingDirectory_;  // relative to the working directory
  StdioFile file_;
  std::vector<SavedRow> rows_;     // in the order of the file
  std::vector<IndexEntry> index_;  // sorted
};

/// Whether two surveys have the same result for a computer, whatever its path. Where one was saved
/// before rows had a class, the classes and nearest misses are not compared.
bool AreSame(const SurveyRow& a, const SurveyRow& b);

}  // namespace fernwick::lab
