#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace fernwick {

/// A location in a file: the line and the column of a text, both from 1, columns in characters; or,
/// with line 0, the offset of a byte.
struct FileLocation {
  std::size_t line = 0;
  std::size_t column = 0;
  std::size_t byte = 0;

  friend bool operator==(const FileLocation&, const FileLocation&) = default;
};

/// What went wrong, and where in a file if it went wrong in one.
struct Error {
  std::string message;
  std::optional<FileLocation> location = std::nullopt;
  int systemError = 0;  // errno, where the operating system refused a call

  friend bool operator==(const Error&, const Error&) = default;
};

/// The error as one text: "line 3, column 7: MESSAGE", "byte 12: MESSAGE" or "MESSAGE".
std::string Describe(const Error& error);

/// A value, or why there is none. REQUIRES: T and E are different types.
template <typename T, typename E = Error>
class [[nodiscard]] Result {
 public:
  Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}  // NOLINT: a value
  Result(E error) : content_(std::in_place_index<1>, std::move(error)) {}  // NOLINT: is a result

  explicit operator bool() const { return content_.index() == 0; }

  /// REQUIRES: there is a value.
  T& operator*() & { return *std::get_if<0>(&content_); }
  const T& operator*() const& { return *std::get_if<0>(&content_); }
  T&& operator*() && { return std::move(*std::get_if<0>(&content_)); }
  T* operator->() { return std::get_if<0>(&content_); }
  const T* operator->() const { return std::get_if<0>(&content_); }

  /// REQUIRES: there is no value.
  const E& Error() const { return *std::get_if<1>(&content_); }

  friend bool operator==(const Result&, const Result&) = default;

 private:
  std::variant<T, E> content_;
};

}  // namespace fernwick
