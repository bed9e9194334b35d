#include <string>
#include <vector>

#include "lab/explain/print.h"
#include "lab/support/json_stream.h"
#include "lab/survey/coverage/coverage_format.h"
#include "personality/personality.h"

namespace fernwick::lab {
namespace {

Json RejectionsJson(const std::vector<Rejection>& rejections) {
  auto list = Json::array();
  for (const auto& [requirement, count] : rejections) {
    list.push_back(
        {{"key", requirement->key}, {"hardwareKey", requirement->hardwareKey}, {"count", count}});
  }
  return list;
}

// One board's configuration.
class ConfigurationJson {
 public:
  ConfigurationJson(const CoveredBoard& board, JsonStream& stream)
      : file_(*board.file), coverage_(board.coverage), stream_(stream) {}

  void Print() {
    const KeyLocations locations(&file_.Root());
    const auto entries = file_.Value().AsDictionary()->Entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
      PrintKey(*locations.Find(entries[i].key), entries[i].value, coverage_.keys[i]);
    }
  }

 private:
  Json LocationOf(std::size_t offset) const { return LocationJson(file_.LocationOf(offset)); }

  void PrintKey(const KeyLocation& location, const PropertyValue& value,
                const TypeCoverage& coverage) {
    const auto candidates = PersonalitiesOf(location.key, value);
    const bool isType = coverage.type != Types::None;
    stream_.Begin('{');
    stream_.AddMembers({{"key", location.key},
                        {"location", LocationOf(location.offset)},
                        {"isType", isType},
                        {"hasShape", candidates.has_value()}});
    stream_.Begin("personalities", '[');
    const std::size_t count = isType && candidates ? candidates->size() : 0;
    for (std::size_t i = 0; i < count; ++i) {
      const auto& found = *LocationOfCandidate(&location, coverage.type, i);
      PrintCandidate((*candidates)[i], found, coverage, i);
    }
    stream_.End();
    stream_.End();
  }

  // One that is not a dictionary has no values and no counts.
  void PrintCandidate(const PropertyValue& candidate, const ValueLocation& location,
                      const TypeCoverage& coverage, std::size_t index) {
    const auto dictionary = candidate.AsDictionary();
    const auto personality = dictionary.value_or(Dictionary());
    stream_.Begin('{');
    stream_.AddMembers({{"personality", index + 1},
                        {"location", LocationOf(location.offset)},
                        {"isDictionary", dictionary.has_value()},
                        {"firmware", ToJson(personality.Find("Firmware"))},
                        {"tested", coverage.tested[index]},
                        {"matched", coverage.matched[index]},
                        {"rejectedFirst", RejectionsJson(RejectionsOf(coverage, index))}});
    PrintLists(personality, location, coverage, index);
    stream_.End();
  }

  void PrintLists(Dictionary personality, const ValueLocation& location,
                  const TypeCoverage& coverage, std::size_t index) {
    const KeyLocations keys(&location);
    auto element = coverage.firstElement[index];
    stream_.Begin("lists", '[');
    ForEachList(coverage.type, personality, [&](const Requirement& requirement, Array list) {
      PrintList(*keys.Find(requirement.key), list, coverage, element);
      element += list.size();
    });
    stream_.End();
  }

  // `first` is the index of the first element.
  void PrintList(const KeyLocation& key, Array list, const TypeCoverage& coverage,
                 std::size_t first) {
    stream_.Begin('{');
    stream_.AddMembers({{"key", key.key}, {"location", LocationOf(key.offset)}});
    stream_.Begin("elements", '[');
    for (std::size_t i = 0; i < list.size(); ++i) {
      const auto element = first + i;
      stream_.Begin('{');
      stream_.AddMember("value", list[i]);
      stream_.AddMembers(
          {{"location", LocationOf(key.value.Elements()[i].offset)},
           {"tested", coverage.elements.tested[element]},
           {"matched", coverage.elements.matched[element]},
           {"rejectedFirst", RejectionsJson(RejectionsOfElement(coverage, element))}});
      stream_.End();
    }
    stream_.End();
    stream_.End();
  }

  const ConfigurationFile& file_;
  const BoardCoverage& coverage_;
  JsonStream& stream_;
};

class CoverageJson : public CoverageFormat {
 public:
  explicit CoverageJson(Console& console)
      : CoverageFormat(console),
        stream_([&console](std::string_view text) { console.Write(text); }) {
    stream_.Begin('{');
    stream_.Begin("boards", '[');
  }

  void AddBoard(const CoveredBoard& board) override {
    stream_.Begin('{');
    stream_.AddMembers({{"board", board.name},
                        {"recordings", board.coverage.runs},
                        {"problem", board.problem.empty() ? Json(nullptr) : Json(board.problem)}});
    stream_.Begin("keys", '[');
    if (board.file != nullptr) ConfigurationJson(board, stream_).Print();
    stream_.End();
    stream_.End();
  }

  void Finish(const CoverageTotals& totals) override {
    stream_.End();
    const auto used = [&](RecordingUse use) {
      return totals.recordings[static_cast<std::size_t>(use)];
    };
    const auto& counts = totals.counts;
    stream_.AddMembers({{"recordings",
                         {{"counted", used(RecordingUse::Counted)},
                          {"noConfiguration", used(RecordingUse::NoConfiguration)},
                          {"unknownBoard", used(RecordingUse::UnknownBoard)},
                          {"bypassed", used(RecordingUse::Bypassed)},
                          {"endedAbnormally", used(RecordingUse::AbnormalEnd)},
                          {"refused", used(RecordingUse::Refused)}}},
                        {"boardsWithoutRecording", totals.boardsWithoutRun},
                        {"personalities",
                         {{"all", counts.personalities},
                          {"tested", counts.testedPersonalities},
                          {"matched", counts.matchedPersonalities}}},
                        {"elements",
                         {{"all", counts.elements},
                          {"tested", counts.testedElements},
                          {"matched", counts.matchedElements}}},
                        {"percent", static_cast<double>(counts.PerMille()) / 10}});
    stream_.End();
  }

 private:
  JsonStream stream_;
};

}  // namespace

std::unique_ptr<CoverageFormat> MakeCoverageJson(Console& console) {
  return std::make_unique<CoverageJson>(console);
}

}  // namespace fernwick::lab
