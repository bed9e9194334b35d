// Reads property lists and prints a line for each: the result of the reader, exact to the bit.
//
//   describe_property_list FILE...    reads the files
//   describe_property_list            reads documents from standard input, each after a line with
//                                     its size in bytes
//
// A line is the code of the serialisation, a blank, and the value or "error" with its text:
//
//   dictionary {"key": value, ...}   array [value, ...]   string "text"   data <hexadecimal>
//   integer 17   real real(bits in hexadecimal)   boolean true   date date(seconds since 1970)
//
// A byte of a string that is not printable ASCII, a quote or a backslash is written as \xHH. A line
// ends after MaxDescriptionSize bytes: objects that are shared can add up to many times the size of
// their file.
#include <bit>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "value/number_text.h"
#include "value/property_list_reader.h"

namespace fernwick {
namespace {

constexpr std::size_t MaxDescriptionSize = 200'000;

// Writes what it is called with until the description is long enough.
class Description {
 public:
  const std::string& Text() const { return text_; }

  void Value(const PropertyValue& value) {
    if (text_.size() >= MaxDescriptionSize) return;
    value.Visit([&](const auto& content) { Content(content); });
  }

  void Quoted(std::string_view text) {
    Append("\"");
    for (const char c : text) {
      if (c < ' ' || c > '~' || c == '"' || c == '\\') {
        Append("\\x");
        Hexadecimal(static_cast<unsigned char>(c), 2);
      } else {
        Append({&c, 1});
      }
    }
    Append("\"");
  }

 private:
  void Append(std::string_view text) { text_ += text.substr(0, MaxDescriptionSize - text_.size()); }

  void Hexadecimal(std::uint64_t number, unsigned digits) {
    for (unsigned digit = digits; digit-- > 0;) {
      Append({&"0123456789abcdef"[number >> 4 * digit & 0xF], 1});
    }
  }

  void Content(Dictionary dictionary) {
    std::string_view separator;
    Append("{");
    for (const auto& [key, value] : dictionary.Entries()) {
      Append(std::exchange(separator, ", "));
      Quoted(key);
      Append(": ");
      Value(value);
    }
    Append("}");
  }

  void Content(Array array) {
    std::string_view separator;
    Append("[");
    for (const auto& value : array) {
      Append(std::exchange(separator, ", "));
      Value(value);
    }
    Append("]");
  }

  void Content(const Data& data) {
    Append("<");
    for (const char byte : data.bytes) Hexadecimal(static_cast<unsigned char>(byte), 2);
    Append(">");
  }

  void Content(double real) {
    Append("real(");
    Hexadecimal(std::bit_cast<std::uint64_t>(real), 16);
    Append(")");
  }

  void Content(std::string_view string) { Quoted(string); }
  void Content(const Integer& integer) { Append(FormatInteger(integer)); }
  void Content(bool boolean) { Append(boolean ? "true" : "false"); }
  void Content(const Date& date) { Append("date(" + std::to_string(date.seconds) + ")"); }

  std::string text_;
};

void DescribeDocument(std::string document) {
  const auto [serialisation, list] = ReadPropertyList(std::move(document));
  Description description;
  if (list) {
    description.Value(list->value);
  } else {
    description.Quoted(Describe(list.Error()));
  }
  std::cout << static_cast<unsigned long>(serialisation) << (list ? " " : " error ")
            << description.Text() << '\n';
}

bool DescribeFile(const char* path) {
  std::ifstream file(path, std::ios::binary);
  std::string document{std::istreambuf_iterator<char>(file), {}};
  if (file.fail() && !file.eof()) {
    std::cerr << "describe_property_list: cannot read " << path << '\n';
    return false;
  }
  DescribeDocument(std::move(document));
  return true;
}

bool DescribeStandardInput() {
  std::size_t size = 0;
  while (std::cin >> size) {
    std::string document(size, '\0');
    if (std::cin.get() != '\n' ||
        !std::cin.read(document.data(), static_cast<std::streamsize>(size))) {
      std::cerr << "describe_property_list: a document is cut short\n";
      return false;
    }
    DescribeDocument(std::move(document));
  }
  return std::cin.eof();
}

}  // namespace
}  // namespace fernwick

int main(int count, char** arguments) {
  std::ios::sync_with_stdio(false);
  bool succeeded = count > 1 || fernwick::DescribeStandardInput();
  for (int i = 1; i < count; ++i) succeeded = fernwick::DescribeFile(arguments[i]) && succeeded;
  std::cout.flush();
  return succeeded && std::cout ? 0 : 1;
}
