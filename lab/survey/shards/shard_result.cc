#include "lab/survey/shards/shard_result.h"

#include <fcntl.h>

#include <charconv>
#include <cstdlib>
#include <utility>

#include "lab/support/json_reading.h"
#include "platform/file_system.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {
namespace {

std::string HexOf(std::string_view bytes) {
  constexpr char Digits[] = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    text += Digits[static_cast<unsigned char>(byte) >> 4];
    text += Digits[static_cast<unsigned char>(byte) & 0xF];
  }
  return text;
}

// Empty where it is not hexadecimal.
std::optional<std::string> BytesOfHex(std::string_view hex) {
  std::string bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    const auto digits = hex.substr(i, 2);
    unsigned char byte = 0;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16).ptr;
    if (end != digits.data() + 2) return std::nullopt;
    bytes += static_cast<char>(byte);
  }
  return bytes;
}

// Adds the strings that are not UTF-8, each by its pointer.
void CollectBytes(const Json& value, const Json::json_pointer& pointer, Json& bytes) {
  if (value.is_string()) {
    const auto& text = value.get_ref<const std::string&>();
    if (FindInvalidUtf8(text) != std::string::npos) bytes[pointer.to_string()] = HexOf(text);
  } else if (value.is_array()) {
    for (std::size_t i = 0; i < value.size(); ++i) CollectBytes(value[i], pointer / i, bytes);
  } else if (value.is_object()) {
    for (const auto& [key, member] : value.items()) CollectBytes(member, pointer / key, bytes);
  }
}

// Puts them back. Returns whether each is for a string of the row.
bool RestoreBytes(const Json& bytes, Json& row) {
  if (!bytes.is_object()) return false;
  for (const auto& [pointer, hex] : bytes.items()) {
    const auto text =
        hex.is_string() ? BytesOfHex(hex.get_ref<const std::string&>()) : std::nullopt;
    if (!text) return false;
    try {
      auto& value = row.at(Json::json_pointer(pointer));
      if (!value.is_string()) return false;
      value = *text;
    } catch (const Json::exception&) {  // no pointer, or none into this row
      return false;
    }
  }
  return true;
}

// Empty where the line has no such member of the kind.
std::optional<std::size_t> CountIn(const Json& line, const char* key) {
  const auto found = line.find(key);
  if (found == line.end() || !found->is_number_unsigned()) return std::nullopt;
  return found->get<std::size_t>();
}

std::optional<std::string> TextIn(const Json& line, const char* key) {
  const auto found = line.find(key);
  if (found == line.end() || !found->is_string()) return std::nullopt;
  return found->get<std::string>();
}

std::optional<ShardHeader> HeaderOf(const Json& line) {
  if (!line.is_object()) return std::nullopt;
  const auto number = CountIn(line, "shard");
  const auto count = CountIn(line, "of");
  const auto verb = TextIn(line, "verb");
  const auto options = line.find("options");
  if (!number || !count || !verb || options == line.end() || !options->is_object()) {
    return std::nullopt;
  }
  if (*number == 0 || *number > *count) return std::nullopt;
  return ShardHeader{{*number, *count}, *verb, *options};
}

}  // namespace

std::string PrintShardHeader(const ShardHeader& header) {
  return PrintJsonRow({{"shard", header.shard.number},
                       {"of", header.shard.count},
                       {"verb", header.verb},
                       {"options", header.options}});
}

std::string PrintShardEnd(const ShardEnd& end) {
  return PrintJsonRow({{"end", true},
                       {"rows", end.rows},
                       {"computers", end.computers},
                       {"selection", end.selection},
                       {"totals", end.totals}});
}

std::string PrintShardRow(std::size_t index, bool isNamed, const Json& row, const Json& more) {
  Json line = {{"index", index}, {"named", isNamed}, {"row", row}};
  line.update(more);
  auto bytes = Json::object();
  CollectBytes(row, Json::json_pointer(), bytes);
  if (!bytes.empty()) line["bytes"] = std::move(bytes);
  return PrintJsonRow(line);
}

Result<ShardResult, LabError> ShardResult::Open(const std::string& path) {
  const auto refuse = [&](const Error& error) {
    return LabError{{path + ": " + error.message}, UnreadableStatus(error)};
  };
  const int descriptor = open(path.c_str(), CautiousReading);
  if (descriptor < 0) return refuse(SystemError());
  ShardResult result(path, StdioFile(fdopen(descriptor, "r")));
  const auto size = RegularFileSize(descriptor);
  if (!size) return refuse(size.Error());
  if (auto error = result.ReadHeader()) return *std::move(error);
  return result;
}

std::optional<LabError> ShardResult::ReadHeader() {
  const auto line = NextLine();
  if (!line) return line.Error();
  const auto json = ParseJson(line->value_or(""));
  auto header = json ? HeaderOf(*json) : std::nullopt;
  if (!header) return Malformed("this is not the result of a shard");
  header_ = *std::move(header);
  return std::nullopt;
}

Result<std::optional<ShardRow>, LabError> ShardResult::Next() {
  const auto text = NextLine();
  if (!text) return text.Error();
  if (!*text) return Malformed("the result lacks its end: the shard was not completed");
  auto line = ParseJson(**text);
  if (!line || !line->is_object()) return Malformed("this is not a line of a shard");
  if (line->contains("end")) return ReadEnd(*line);
  const auto index = CountIn(*line, "index");
  const auto named = line->find("named");
  const auto row = line->find("row");
  if (!index || *index < nextIndex_ || named == line->end() || !named->is_boolean() ||
      row == line->end()) {
    return Malformed("this is not a row of a shard");
  }
  ShardRow result{*index, named->get<bool>(), *row, {}};
  const auto bytes = line->find("bytes");
  if (bytes != line->end() && !RestoreBytes(*bytes, result.row)) {
    return Malformed("this is not a row of a shard");
  }
  nextIndex_ = *index + 1;
  ++rows_;
  result.line = *std::move(line);
  return std::optional(std::move(result));
}

Result<std::optional<ShardRow>, LabError> ShardResult::ReadEnd(const Json& line) {
  const auto rows = CountIn(line, "rows");
  const auto computers = CountIn(line, "computers");
  const auto selection = TextIn(line, "selection");
  const auto totals = line.find("totals");
  if (!rows || !computers || !selection || totals == line.end() || *rows != rows_ ||
      nextIndex_ > *computers) {
    return Malformed("the end is not that of these rows");
  }
  end_ = {*rows, *computers, *selection, *totals};
  const auto more = NextLine();
  if (!more) return more.Error();
  if (*more) return Malformed("there is more after the end");
  return std::optional<ShardRow>();
}

// Without its line feed. Empty at the end of the file.
Result<std::optional<std::string>, LabError> ShardResult::NextLine() {
  char* line = nullptr;
  std::size_t capacity = 0;
  const ssize_t length = getline(&line, &capacity, file_.get());
  const std::unique_ptr<char, decltype(&std::free)> owner(line, &std::free);
  if (length < 0 && std::ferror(file_.get()) != 0) {
    return LabError{{path_ + ": " + SystemError().message}, LabStatus::UnreadableInput};
  }
  if (length < 0) return std::optional<std::string>();
  ++lines_;
  return std::optional(std::string(line, static_cast<std::size_t>(length)));
}

LabError ShardResult::Malformed(const std::string& what) const {
  return {{path_ + ":" + std::to_string(lines_) + ": " + what}, LabStatus::MalformedInput};
}

}  // namespace fernwick::lab
