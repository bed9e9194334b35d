#include "lab/draft/drafting.h"

#include <algorithm>
#include <utility>

#include "lab/draft/selectors.h"
#include "lab/support/controller_values.h"
#include "lab/support/messages.h"
#include "lab/support/words.h"

namespace fernwick::lab {
namespace {

// Whether the controllers that get an image of the type can store the version.
bool IsStorable(const PropertyValue& version, TypeSet type) {
  const bool isOfThunderbolt = IsOfThunderbolt(type);
  return IsReportable(version, {.thunderbolt = isOfThunderbolt, .port = !isOfThunderbolt});
}

class Drafter {
 public:
  Drafter(DraftedComputers& computers, const DraftTarget& target)
      : computers_(computers),
        target_(target),
        table_(computers.TableOf(target.type)),
        schema_(target.type, table_) {}

  DraftOutcome Make() {
    Select(DraftSide::Wanted);
    Select(DraftSide::Excepted);
    if (wanted_.empty()) {
      Refuse("no controller of these computers can match");
    } else if (!IsStorable(target_.version, target_.type)) {
      Refuse("--version " + InlineText(target_.version) +
                 " would be installed again and again: a port reports whole numbers, a Thunderbolt "
                 "controller hundredths up to .63, each of eight digits at most",
             LabStatus::BadUsage);
    } else if (const auto* port = FirstUnsettled()) {
      Refuse(*port +
             " would never settle: the tool compares the version of the Thunderbolt controller "
             "above it, which an image for a port does not change; use --type Thunderbolt");
    } else {
      Separate();
    }
    return std::move(outcome_);
  }

 private:
  // The controllers that a personality may match.
  void Select(DraftSide side) {
    const bool isWanted = side == DraftSide::Wanted;
    for (const auto& controller : computers_.ControllersOf(target_.type, side)) {
      const auto reason = UnselectableReason(target_, table_, controller.row);
      if (reason.empty()) {
        (isWanted ? wanted_ : excepted_).push_back(controller.row);
        (isWanted ? wantedNames_ : exceptedNames_).push_back(NameOf(controller));
      } else if (isWanted) {
        outcome_.unmatchable.push_back(NameOf(controller) + " cannot match: " + reason);
      }
    }
  }

  // The name of the first wanted port that would never settle, as its image does not change the
  // version that the tool compares. Null when there is none.
  const std::string* FirstUnsettled() const {
    if (IsOfThunderbolt(target_.type)) return nullptr;
    const auto found = std::ranges::find_if(wanted_, &ControllerRow::hasThunderboltVersion);
    if (found == wanted_.end()) return nullptr;
    return &wantedNames_[static_cast<std::size_t>(found - wanted_.begin())];
  }

  static std::string NameOf(const DraftedController& controller) {
    if (controller.count == 1) return controller.name;
    return controller.name + " (and " + std::to_string(controller.count - 1) + " like it)";
  }

  void Refuse(std::string refusal, int status = LabStatus::Negative) {
    outcome_.refusal = std::move(refusal);
    outcome_.status = status;
  }

  void Separate() {
    const auto [selectors, indistinguishable, isTooLarge] =
        FindSelectors(schema_, wanted_, excepted_);
    for (const auto& [wanted, excepted] : indistinguishable) {
      outcome_.indistinguishable.push_back(wantedNames_[wanted] +
                                           " cannot be distinguished from the excepted " +
                                           exceptedNames_[excepted]);
      outcome_.status = LabStatus::Negative;
    }
    if (!indistinguishable.empty()) return;
    if (isTooLarge) {
      return Refuse("there are too many different controllers: " + std::to_string(wanted_.size()) +
                    " wanted and " + std::to_string(excepted_.size()) + " excepted ones");
    }
    if (target_.type == Types::LegacyUsbc && selectors.size() > 1) {
      return Refuse("\"LegacyUSBC\" can have one personality, but " +
                    std::to_string(selectors.size()) + " are needed");
    }
    Confirm(DraftConfiguration(target_, table_, schema_, selectors));
  }

  // Checks the draft with the tool's own requirements before it is returned.
  void Confirm(PropertyList draft) {
    const auto count = [&](const std::vector<ControllerRow>& rows) {
      return CountMatched(draft.value, target_.type, table_, rows);
    };
    if (count(wanted_) < wanted_.size() || count(excepted_) > 0) {
      return Refuse("the draft does not match what it should");
    }
    outcome_.configuration = std::move(draft);
  }

  DraftedComputers& computers_;
  const DraftTarget& target_;
  const ControllerTable& table_;
  const ConstraintSchema schema_;
  std::vector<ControllerRow> wanted_;
  std::vector<ControllerRow> excepted_;
  std::vector<std::string> wantedNames_;
  std::vector<std::string> exceptedNames_;
  DraftOutcome outcome_;
};

}  // namespace

DraftOutcome MakeDraft(DraftedComputers& computers, const DraftTarget& target) {
  return Drafter(computers, target).Make();
}

}  // namespace fernwick::lab
