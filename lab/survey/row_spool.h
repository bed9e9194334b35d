#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace fernwick::lab {

/// Keeps lines in a temporary file until all have come, so that memory does not grow with them.
class RowSpool {
 public:
  RowSpool();

  /// `line` holds no line feed.
  void Add(std::string_view line);

  /// Calls `take` with each line, in their order. To be called once, after the last Add.
  void ForEach(const std::function<void(std::string_view)>& take);

  /// Why it could not keep the lines; empty when it could.
  const std::string& Error() const { return error_; }

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  void NoteError();

  std::unique_ptr<std::FILE, Close> file_;
  std::string error_;
};

}  // namespace fernwick::lab
