#include "fuzz/packed_run.h"

#include <utility>

namespace fernwick::fuzz {
namespace {

// Removes everything up to the first `separator`, and that one, from the start of `text`.
std::string_view SplitFront(std::string_view& text, char separator) {
  const auto end = text.find(separator);
  if (end == std::string_view::npos) return std::exchange(text, {});
  const auto front = text.substr(0, end);
  text.remove_prefix(end + 1);
  return front;
}

}  // namespace

PackedRun Unpack(std::string_view input) {
  PackedRun run;
  run.options = SplitFront(input, '\n');
  run.recording = SplitFront(input, '\0');
  run.configuration = input;
  return run;
}

std::string Pack(const PackedRun& run) {
  std::string packed(run.options);
  packed.append("\n").append(run.recording).append(1, '\0').append(run.configuration);
  return packed;
}

std::vector<std::string> WordsOf(std::string_view options, std::string_view payload) {
  std::vector<std::string> words;
  while (!options.empty()) {
    // An argument of a program cannot contain a zero byte.
    auto word = SplitFront(options, ' ');
    std::string argument(SplitFront(word, '\0'));
    const auto at = argument.find('@');
    if (at != std::string::npos) argument.replace(at, 1, payload);
    words.push_back(std::move(argument));
  }
  return words;
}

}  // namespace fernwick::fuzz
