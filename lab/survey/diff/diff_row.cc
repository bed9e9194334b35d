#include "lab/survey/diff/diff_row.h"

#include <array>
#include <utility>

#include "lab/support/messages.h"
#include "lab/survey/text.h"

namespace fernwick::lab {
namespace {

constexpr std::array<std::string_view, ChangeKindCount> KindNames = {
    "gains plan",
    "loses plan",
    "gains match",
    "loses match",
    "image",
    "version",
    "order",
    "priority",
    "NVRAM to set",
    "NVRAM to clear",
    "options",
    "image bytes",
    "image missing",
    "image no longer missing",
    "flashing utility bytes",
    "flashing utility missing",
    "flashing utility no longer missing",
    "ends abnormally",
    "no longer ends abnormally",
    "malformed configuration in both"};

// The values before and after. Of a match that is gained or lost the one side that has a value; of
// an image or a version that one side lacks both.
std::string SidesText(const DiffChange& change) {
  const bool isOfAMatch = change.kind == ChangeKind::Image || change.kind == ChangeKind::Version;
  if (change.before.is_null() && change.after.is_null()) return {};
  if (change.before.is_null() && !isOfAMatch) return ": " + CellText(change.after);
  if (change.after.is_null() && !isOfAMatch) return ": " + CellText(change.before);
  return ": " + CellText(change.before) + " -> " + CellText(change.after);
}

}  // namespace

std::string_view NameOf(ChangeKind kind) {
  return KindNames[static_cast<std::size_t>(kind)];
}

bool IsReported(const DiffRow& row) {
  return !row.refusal.empty() || !row.abnormalEnd.empty() || !row.changes.empty() ||
         !row.notes.empty();
}

Json ToJson(const DiffChange& change) {
  return {{"kind", NameOf(change.kind)},
          {"match", TextOrNull(change.match)},
          {"before", change.before},
          {"after", change.after},
          {"reasons", change.reasons}};
}

std::string DescribeChange(const DiffChange& change, const std::string& indentation) {
  auto text = std::string(NameOf(change.kind));
  if (!change.match.empty()) text += " " + PrintableText(change.match);
  text += SidesText(change) + "\n";
  for (const auto& reason : change.reasons) text += indentation + PrintableText(reason) + "\n";
  return text;
}

Json ToJson(const DiffRow& row) {
  auto changes = Json::array();
  for (const auto& change : row.changes) changes.push_back(ToJson(change));
  auto notes = Json::array();
  for (const auto& note : row.notes) notes.push_back(ToJson(note));
  return {{"file", row.file},
          {"board", row.board ? Json(*row.board) : Json(nullptr)},
          {"revision", row.revision},
          {"refused", TextOrNull(row.refusal)},
          {"abnormalEnd", TextOrNull(row.abnormalEnd)},
          {"changes", std::move(changes)},
          {"notes", std::move(notes)}};
}

std::string DescribeRow(const DiffRow& row) {
  auto text = PrintableText(row.file);
  if (!row.refusal.empty()) return text + ": refused: " + PrintableText(row.refusal) + "\n";
  if (!row.abnormalEnd.empty()) return text + ": ends abnormally: " + row.abnormalEnd + "\n";
  text += ": board " + PrintableText(row.board.value_or("-")) + ", revision " +
          std::to_string(row.revision) + "\n";
  for (const auto* list : {&row.notes, &row.changes}) {
    for (const auto& change : *list) text += "  " + DescribeChange(change, "    ");
  }
  return text;
}

}  // namespace fernwick::lab
