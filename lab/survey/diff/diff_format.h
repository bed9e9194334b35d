#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "lab/survey/diff/diff_row.h"
#include "platform/console.h"

namespace fernwick::lab {

/// The numbers of computers between two payloads.
struct DiffTotals {
  std::size_t changed = 0;
  std::size_t unchanged = 0;
  std::size_t refused = 0;
  std::size_t abnormal = 0;
  std::size_t gained = 0;  // a plan
  std::size_t lost = 0;

  void Add(const DiffRow& row);
  std::size_t Computers() const { return changed + unchanged + refused + abnormal; }
};

/// One line for people.
std::string Describe(const DiffTotals& totals);

/// An output format of a comparison. Rows are added in the order of the selection; nothing is
/// written before the first. The console must outlive the format.
class DiffFormat {
 public:
  explicit DiffFormat(Console& console) : console_(console) {}
  virtual ~DiffFormat() = default;

  /// Adds a computer, changed or not.
  virtual void Add(const DiffRow& row) = 0;

  /// To be called once, after the last row.
  virtual void Finish(const DiffTotals& totals) = 0;

  /// Whether the totals are part of the output; otherwise they are for standard error.
  virtual bool ShowsTotals() const { return false; }

 protected:
  Console& Out() const { return console_; }

 private:
  Console& console_;
};

/// For people: equal changes of computers of one board are one group, in the order of their first
/// computers, after the lines of refused recordings and abnormal ends. Stores each different change
/// to the end.
std::unique_ptr<DiffFormat> MakeDiffGroups(Console& console);

/// For people: every computer with its changes, as it is added.
std::unique_ptr<DiffFormat> MakeDiffList(Console& console);

/// One JSON document with the computers that change, are refused or end abnormally, and the totals.
std::unique_ptr<DiffFormat> MakeDiffJson(Console& console);

/// A line of comma-separated values for each change, refused recording and abnormal end, after a
/// line of names.
std::unique_ptr<DiffFormat> MakeDiffCsv(Console& console);

/// JUnit XML: a test case for each computer, failed when it changes, skipped when it is refused or
/// ends abnormally with both payloads. Stores all to the end, since the counts come first.
std::unique_ptr<DiffFormat> MakeDiffJunit(Console& console);

}  // namespace fernwick::lab
