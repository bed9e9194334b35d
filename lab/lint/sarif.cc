// The rendering of findings that code-scanning services and editors import.

#include <algorithm>
#include <iterator>
#include <string_view>

#include "lab/lint/report.h"
#include "lab/support/json_values.h"

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
  if (finding.place && finding.place->line != 0) {
    location["region"] = {{"startLine", finding.place->line},
                          {"startColumn", finding.place->column}};
  } else if (finding.place) {
    location["region"] = {{"byteOffset", finding.place->byte}, {"byteLength", 0}};
  }
  return {{"physicalLocation", std::move(location)}};
}

Json ResultAsJson(const Finding& finding) {
  const auto rule = std::ranges::find(LintRules(), finding.rule);
  return {{"ruleId", finding.rule->id},
          {"ruleIndex", std::distance(LintRules().begin(), rule)},
          {"level", NameOf(finding.severity)},
          {"message", {{"text", finding.message}}},
          {"locations", Json::array({LocationOf(finding)})}};
}

}  // namespace

std::string LintAsSarif(const PayloadLinting& linting) {
  auto rules = Json::array();
  for (const auto* rule : LintRules()) rules.push_back(RuleAsJson(*rule));
  auto results = Json::array();
  for (const auto& finding : linting.findings) results.push_back(ResultAsJson(finding));
  // Columns count characters, not UTF-16 units.
  Json run = {{"tool", {{"driver", {{"name", "fernwick-lab lint"}, {"rules", std::move(rules)}}}}},
              {"columnKind", "unicodeCodePoints"},
              {"results", std::move(results)}};
  return PrintJson({{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                    {"version", "2.1.0"},
                    {"runs", Json::array({std::move(run)})}});
}

}  // namespace fernwick::lab
