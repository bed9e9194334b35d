#include "lab/lint/fingerprint.h"

#include <algorithm>
#include <string>

#include "lab/lint/acceptance.h"
#include "lab/support/stable_hash.h"
#include "value/textual_dump.h"

namespace fernwick::lab {
namespace {

// The parts of an identity, with a zero byte after each text.
class IdentityHash {
 public:
  void Add(std::string_view part) {
    hash_.Add(part);
    hash_.Add(std::string_view("", 1));
  }

  void AddNumber(std::uint64_t number) {
    for (int shift = 0; shift < 64; shift += 8) {
      const char byte = static_cast<char>(number >> shift & 0xFF);
      hash_.Add({&byte, 1});
    }
  }

  std::uint64_t Value() const { return hash_.Value(); }

 private:
  StableHash hash_;
};

std::size_t EndOfDigits(std::string_view text, std::size_t start) {
  return std::min(text.find_first_not_of("0123456789", start), text.size());
}

// The length of the location with which the text begins, "12:7" or "byte 812"; 0 when it begins
// with none.
std::size_t LocationLength(std::string_view text) {
  constexpr std::string_view Byte = "byte ";
  if (text.starts_with(Byte)) return EndOfDigits(text, Byte.size());
  const auto line = EndOfDigits(text, 0);
  return text.substr(line).starts_with(':') ? EndOfDigits(text, line + 1) : 0;
}

void AddWithoutLocations(std::string_view message, IdentityHash& hash) {
  constexpr std::string_view Before = " at ";
  for (auto at = message.find(Before); at != std::string_view::npos; at = message.find(Before)) {
    hash.Add(message.substr(0, at));
    message.remove_prefix(at + Before.size());
    message.remove_prefix(LocationLength(message));
  }
  hash.Add(message);
}

}  // namespace

std::uint64_t IdentityOf(const LocatedPersonality& personality) {
  IdentityHash hash;
  hash.Add(personality.typeName);
  for (const auto* key : SetKeys()) {
    const auto* entry = personality.Find(key->name);
    if (entry == nullptr || (key->checkedBy & personality.type) == 0) continue;
    hash.Add(key->name);
    hash.Add(DumpText(*entry->value));
  }
  return hash.Value();
}

std::uint64_t FingerprintOf(const FindingIdentity& identity) {
  IdentityHash hash;
  hash.Add(identity.rule->id);
  hash.Add(identity.path);
  hash.AddNumber(identity.personality);
  AddWithoutLocations(identity.message, hash);
  return hash.Value();
}

}  // namespace fernwick::lab
