// Builds the document from the events of the library's parser: its own builder looks a key up by
// comparing it with each before it, and knows no limit of depth.

#include "lab/support/json_reading.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/file_system.h"
#include "value/unicode/text_position.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t MaxDepth = 1024;

class JsonBuilder : public nlohmann::json_sax<Json> {
 public:
  explicit JsonBuilder(std::string_view text) : text_(text) {}

  bool null() override { return Add(nullptr); }
  bool boolean(bool value) override { return Add(value); }
  bool number_integer(number_integer_t value) override { return Add(value); }
  bool number_unsigned(number_unsigned_t value) override { return Add(value); }
  bool number_float(number_float_t value, const string_t&) override { return Add(value); }
  bool string(string_t& value) override { return Add(std::move(value)); }
  bool binary(binary_t&) override { return false; }  // not in a text

  bool start_object(std::size_t) override { return Begin(Json::object()); }
  bool start_array(std::size_t) override { return Begin(Json::array()); }
  bool key(string_t& name) override {
    levels_.back().key = std::move(name);
    return true;
  }
  bool end_object() override { return End(); }
  bool end_array() override { return End(); }

  bool parse_error(std::size_t byte, const std::string&, const Json::exception& error) override {
    const auto offset = std::min(byte - std::min<std::size_t>(byte, 1), text_.size());
    const bool isOutOfRange = dynamic_cast<const Json::out_of_range*>(&error) != nullptr;
    error_ = isOutOfRange ? Error{"a number is out of range"}
                          : ErrorAt(text_, offset, "this is not JSON");
    return false;
  }

  Json TakeDocument() { return std::move(document_); }
  const Error& ParseError() const { return error_; }

 private:
  // An array or object that has begun.
  struct Level {
    Json value;
    std::string key = {};                             // of the next member
    std::map<std::string, std::size_t> indexes = {};  // of the members, by key
  };

  bool Begin(Json value) {
    levels_.push_back({std::move(value)});
    if (levels_.size() <= MaxDepth) return true;
    error_ = {"arrays and objects are nested too deeply"};
    return false;
  }

  bool End() {
    auto value = std::move(levels_.back().value);
    levels_.pop_back();
    return Add(std::move(value));
  }

  bool Add(Json value) {
    if (levels_.empty()) {
      document_ = std::move(value);
      return true;
    }
    auto& level = levels_.back();
    if (level.value.is_array()) {
      level.value.push_back(std::move(value));
      return true;
    }
    auto& members = level.value.get_ref<Json::object_t&>();
    const auto [index, isNew] = level.indexes.emplace(level.key, members.size());
    if (isNew) {
      members.emplace_back(std::move(level.key), std::move(value));
    } else {
      (members.begin() + static_cast<std::ptrdiff_t>(index->second))->second = std::move(value);
    }
    return true;
  }

  std::string_view text_;
  Json document_;
  Error error_;
  std::vector<Level> levels_;
};

}  // namespace

Result<Json> ParseJson(std::string_view text) {
  JsonBuilder builder(text);
  if (!Json::sax_parse(text, &builder)) return builder.ParseError();
  return builder.TakeDocument();
}

Result<Json, LabError> ReadJsonFile(const std::string& path) {
  const auto text = ReadWholeFile(path);
  if (!text) return LabError{text.Error(), UnreadableStatus(text.Error())};
  auto json = ParseJson(*text);
  if (!json) return LabError{json.Error(), LabStatus::MalformedInput};
  return *std::move(json);
}

const Json& MemberOf(const Json& object, const char* key) {
  static const Json Null;
  const auto member = object.find(key);
  return member == object.end() ? Null : *member;
}

std::optional<std::vector<std::string>> StringsOf(const Json& array) {
  const auto isString = [](const Json& element) { return element.is_string(); };
  if (!array.is_array() || !std::ranges::all_of(array, isString)) return std::nullopt;
  return array.get<std::vector<std::string>>();
}

}  // namespace fernwick::lab
