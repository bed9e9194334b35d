#include <string_view>

#include "lab/support/json_stream.h"
#include "lab/survey/diff/diff_format.h"

namespace fernwick::lab {
namespace {

class DiffJson : public DiffFormat {
 public:
  explicit DiffJson(Console& console)
      : DiffFormat(console), stream_([this](std::string_view text) { Out().Write(text); }) {}

  void Add(const DiffRow& row) override {
    if (!IsReported(row)) return;
    Begin();
    stream_.Add(ToJson(row));
  }

  void Finish(const DiffTotals& totals) override {
    Begin();
    stream_.End();
    stream_.AddMembers({{"totals",
                         {{"changed", totals.changed},
                          {"gainedPlan", totals.gained},
                          {"lostPlan", totals.lost},
                          {"unchanged", totals.unchanged},
                          {"refused", totals.refused},
                          {"endedAbnormally", totals.abnormal}}}});
    stream_.End();
  }

  bool ShowsTotals() const override { return true; }

 private:
  // Not before the first row: an error leaves standard output empty.
  void Begin() {
    if (hasBegun_) return;
    stream_.Begin('{');
    stream_.Begin("computers", '[');
    hasBegun_ = true;
  }

  JsonStream stream_;
  bool hasBegun_ = false;
};

}  // namespace

std::unique_ptr<DiffFormat> MakeDiffJson(Console& console) {
  return std::make_unique<DiffJson>(console);
}

}  // namespace fernwick::lab
