#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/support/messages.h"
#include "lab/survey/row.h"

namespace fernwick::lab {

/// The rows of a survey that was saved as ndjson. They stay in the file, which must not change
/// meanwhile; memory holds 32 bytes for each, so that they may be in any order.
class SurveyExpectation {
 public:
  /// Returns why the file cannot be used, where there is one with the line; empty when it can. To
  /// be called once, first.
  std::optional<LabError> Load(const std::string& path);

  /// The next row for the file of this row, which is then taken; none when there is none.
  std::optional<SurveyRow> TakeFor(const SurveyRow& found);

  /// Every row that was not taken, in the order of the file.
  void ForEachLeft(const std::function<void(const SurveyRow&)>& take) const;

 private:
  struct SavedRow {
    std::uint64_t hash;  // of the row's "file"
    std::uint64_t offset;
    std::size_t size;
    bool isTaken = false;
  };
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  std::string Open(const std::string& path);
  std::optional<LabError> ReadRows();
  std::optional<SurveyRow> ReadRow(const SavedRow& saved) const;

  std::unique_ptr<std::FILE, Close> file_;
  std::vector<SavedRow> rows_;  // by hash, then by offset
};

/// Whether two surveys say the same of a computer.
bool AreSame(const SurveyRow& a, const SurveyRow& b);

}  // namespace fernwick::lab
