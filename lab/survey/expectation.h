#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/survey/row.h"

namespace fernwick::lab {

/// The rows of a survey that was saved as ndjson. They stay in the file, which must not change
/// meanwhile; memory holds 32 bytes for each, so that they may stand in any order.
class SurveyExpectation {
 public:
  /// Returns why the file cannot be used, with the path and, where there is one, the line; empty
  /// when it can. `status` becomes the LabStatus. To be called once, first.
  std::string Load(const std::string& path, int& status);

  /// The next row for the file of this row, which is then taken; none when there is none.
  std::optional<SurveyRow> TakeFor(const SurveyRow& found);

  /// Every row that was not taken, in the order of the file.
  void ForEachLeft(const std::function<void(const SurveyRow&)>& take) const;

 private:
  struct Place {
    std::uint64_t hash;  // of the row's "file"
    std::uint64_t offset;
    std::size_t size;
    bool isTaken = false;
  };
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  std::string Open(const std::string& path);
  std::string ReadPlaces(int& status);
  std::optional<SurveyRow> ReadRow(const Place& place) const;

  std::unique_ptr<std::FILE, Close> file_;
  std::vector<Place> places_;  // by hash, then by offset
};

/// Whether two surveys say the same of a computer.
bool AreSame(const SurveyRow& a, const SurveyRow& b);

}  // namespace fernwick::lab
