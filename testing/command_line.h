#pragma once

#include <initializer_list>
#include <string>
#include <vector>

namespace fernwick::testing {

/// A command line in the form that a program receives, its own name "fernwick" first.
class CommandLine {
 public:
  CommandLine(std::initializer_list<std::string> arguments)
      : CommandLine(std::vector<std::string>(arguments)) {}

  explicit CommandLine(const std::vector<std::string>& arguments) : words_{"fernwick"} {
    words_.insert(words_.end(), arguments.begin(), arguments.end());
    for (auto& word : words_) pointers_.push_back(word.data());
    pointers_.push_back(nullptr);
  }
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  /// As main receives them: the count, and the words with a null after them. They live as long as
  /// this.
  int Count() const { return static_cast<int>(words_.size()); }
  char* const* Vector() const { return pointers_.data(); }

 private:
  std::vector<std::string> words_;
  std::vector<char*> pointers_;
};

}  // namespace fernwick::testing
