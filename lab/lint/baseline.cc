#include "lab/lint/baseline.h"

#include <charconv>
#include <string_view>

#include "lab/support/json_reading.h"
#include "lab/support/json_stream.h"
#include "lab/support/stable_hash.h"

namespace fernwick::lab {
namespace {

constexpr int FormatVersion = 1;

using Counts = std::unordered_map<std::uint64_t, std::size_t>;

std::optional<std::uint64_t> ParseFingerprint(const std::string& text) {
  std::uint64_t fingerprint = 0;
  std::from_chars(text.data(), text.data() + text.size(), fingerprint, 16);
  if (HashText(fingerprint) != text) return std::nullopt;
  return fingerprint;
}

// The number of findings with each fingerprint; nullopt when the document is not a baseline.
std::optional<Counts> CountsIn(const Json& document) {
  const auto& findings = MemberOf(document, "findings");
  if (MemberOf(document, "version") != FormatVersion || !findings.is_array()) return std::nullopt;
  Counts counts;
  for (const auto& entry : findings) {
    const auto& text = MemberOf(entry, "fingerprint");
    const auto& count = MemberOf(entry, "count");
    const bool isEntry = text.is_string() && count.is_number_unsigned();
    const auto fingerprint = isEntry ? ParseFingerprint(text.get<std::string>()) : std::nullopt;
    if (!fingerprint) return std::nullopt;
    counts[*fingerprint] += count.get<std::size_t>();
  }
  return counts;
}

}  // namespace

std::optional<LabError> Baseline::Read(const std::string& path) {
  const auto document = ReadJsonFile(path);
  if (!document) return document.Error();
  auto counts = CountsIn(*document);
  if (!counts) return LabError{{"it is not a baseline of lint"}, LabStatus::MalformedInput};
  left_ = *std::move(counts);
  return std::nullopt;
}

bool Baseline::IsNew(const FindingIdentity& identity) {
  if (!collects_ && left_.empty()) return true;
  const auto fingerprint = FingerprintOf(identity);
  if (collects_) {
    const auto& [rule, path, personality, message] = identity;
    ++count_;
    ++found_[{std::string(path), std::string(rule->id), std::string(message), fingerprint}];
  }
  const auto left = left_.find(fingerprint);
  if (left == left_.end() || left->second == 0) return true;
  --left->second;
  ++known_;
  return false;
}

std::string Baseline::Text() const {
  std::string text;
  JsonStream stream([&](std::string_view part) { text += part; });
  stream.Begin('{');
  stream.AddMembers({{"version", FormatVersion}});
  stream.Begin("findings", '[');
  for (const auto& [entry, count] : found_) {
    stream.Add({{"fingerprint", HashText(entry.fingerprint)},
                {"count", count},
                {"id", entry.id},
                {"path", entry.path},
                {"message", entry.message}});
  }
  stream.End();
  stream.End();
  return text;
}

}  // namespace fernwick::lab
