// The rendering of findings that code-scanning services and editors import.

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

#include "lab/lint/report.h"
#include "lab/support/json_stream.h"
#include "lab/support/stable_hash.h"

namespace fernwick::lab {
namespace {

bool IsUnreserved(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         std::string_view("-._~/").find(c) != std::string_view::npos;
}

// The path as a URI reference: reserved characters, and bytes beyond ASCII, as "%XX". The first
// component must not look like a scheme.
std::string UriOf(std::string_view path) {
  constexpr std::string_view Digits = "0123456789ABCDEF";
  std::string uri;
  for (const char c : path) {
    if (IsUnreserved(c)) {
      uri += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      uri.append({'%', Digits[byte >> 4], Digits[byte & 0xF]});
    }
  }
  return path.starts_with('/') ? "file://" + uri : uri;
}

Json RuleAsJson(const LintRule& rule) {
  return {{"id", rule.id},
          {"shortDescription", {{"text", rule.title}}},
          {"fullDescription", {{"text", rule.reason}}},
          {"help", {{"text", rule.remedy}}},
          {"defaultConfiguration", {{"level", NameOf(rule.severity)}}}};
}

Json LocationOf(const Finding& finding) {
  Json location = {{"artifactLocation", {{"uri", UriOf(finding.path)}}}};
  if (finding.location && finding.location->line != 0) {
    location["region"] = {{"startLine", finding.location->line},
                          {"startColumn", finding.location->column}};
  } else if (finding.location) {
    location["region"] = {{"byteOffset", finding.location->byte}, {"byteLength", 0}};
  }
  return {{"physicalLocation", std::move(location)}};
}

std::ptrdiff_t IndexOf(const LintRule* rule) {
  return std::distance(LintRules().begin(), std::ranges::find(LintRules(), rule));
}

class LintSarif : public LintFormat {
 public:
  explicit LintSarif(Console& console)
      : LintFormat(console), stream_([this](std::string_view text) { Out().Write(text); }) {}

  void Add(const Finding& finding) override {
    Begin();
    Json result = {{"ruleId", finding.rule->id},
                   {"ruleIndex", IndexOf(finding.rule)},
                   {"level", NameOf(finding.severity)},
                   {"message", {{"text", finding.message}}},
                   {"locations", Json::array({LocationOf(finding)})},
                   {"partialFingerprints", {{"fernwickLint/v1", FingerprintOf(finding)}}}};
    if (finding.count > 1) result["occurrenceCount"] = finding.count;
    stream_.Add(result);
  }

  void Finish(const LintTotals&) override {
    Begin();
    for (int level = 0; level < 4; ++level) stream_.End();
  }

 private:
  void Begin() {
    if (hasBegun_) return;
    hasBegun_ = true;
    stream_.Begin('{');
    stream_.AddMembers(
        {{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"}, {"version", "2.1.0"}});
    stream_.Begin("runs", '[');
    stream_.Begin('{');
    auto rules = Json::array();
    for (const auto* rule : LintRules()) rules.push_back(RuleAsJson(*rule));
    // Columns count characters, not UTF-16 units.
    stream_.AddMembers(
        {{"tool", {{"driver", {{"name", "fernwick-lab lint"}, {"rules", std::move(rules)}}}}},
         {"columnKind", "unicodeCodePoints"}});
    stream_.Begin("results", '[');
  }

  // The fingerprint of a finding; those of findings with equal identities end in different numbers.
  std::string FingerprintOf(const Finding& finding) {
    if (finding.path != path_) numbers_.clear();
    path_ = finding.path;
    const auto number = ++numbers_[finding.fingerprint];
    return HashText(finding.fingerprint) + ":" + std::to_string(number);
  }

  JsonStream stream_;
  bool hasBegun_ = false;
  std::string path_;
  std::map<std::uint64_t, std::size_t> numbers_;  // by fingerprint, in the file of that path
};

}  // namespace

std::unique_ptr<LintFormat> MakeLintSarif(Console& console) {
  return std::make_unique<LintSarif>(console);
}

}  // namespace fernwick::lab
