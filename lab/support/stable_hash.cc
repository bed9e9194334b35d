#include "lab/support/stable_hash.h"

#include <cinttypes>
#include <cstdio>

namespace fernwick::lab {

void StableHash::Add(std::string_view bytes) {
  constexpr std::uint64_t Prime = 0x100000001b3;
  for (const char byte : bytes) value_ = (value_ ^ static_cast<unsigned char>(byte)) * Prime;
}

std::string HashText(std::uint64_t hash) {
  char text[17];
  std::snprintf(text, sizeof text, "%016" PRIx64, hash);
  return text;
}

}  // namespace fernwick::lab
