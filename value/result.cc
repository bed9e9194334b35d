#include "value/result.h"

namespace fernwick {

std::string Describe(const Error& error) {
  if (!error.location) return error.message;
  const auto& [line, column, byte] = *error.location;
  if (line == 0) return "byte " + std::to_string(byte) + ": " + error.message;
  return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " +
         error.message;
}

}  // namespace fernwick
