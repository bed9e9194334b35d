#include "fuzz/same_value.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace fernwick::fuzz {
namespace {

bool SameReal(double a, double b) {
  if (std::isnan(a)) return std::isnan(b);
  return a == b && std::signbit(a) == std::signbit(b);
}

bool SameElements(Array a, Array b) {
  return std::ranges::equal(a, b, SameValue);
}

bool SameEntries(Dictionary a, Dictionary b) {
  return std::ranges::equal(a.Entries(), b.Entries(), [](const auto& x, const auto& y) {
    return x.key == y.key && SameValue(x.value, y.value);
  });
}

// Counts down the values and bytes that a small value may have.
class Budget {
 public:
  bool Covers(const PropertyValue& value) {
    if (!Spend(1)) return false;
    if (const auto text = value.AsString()) return Spend(text->size());
    if (const auto bytes = value.AsData()) return Spend(bytes->size());
    if (const auto array = value.AsArray()) return CoversAll(*array);
    if (const auto dictionary = value.AsDictionary()) return CoversEntries(*dictionary);
    return true;
  }

 private:
  bool Spend(std::size_t amount) {
    if (amount > left_) return false;
    left_ -= amount;
    return true;
  }

  bool CoversAll(Array array) {
    return std::ranges::all_of(array, [this](const auto& element) { return Covers(element); });
  }

  bool CoversEntries(Dictionary dictionary) {
    return std::ranges::all_of(dictionary.Entries(), [this](const auto& entry) {
      return Spend(entry.key.size()) && Covers(entry.value);
    });
  }

  std::size_t left_ = std::size_t{1} << 16;
};

}  // namespace

bool SameValue(const PropertyValue& a, const PropertyValue& b) {
  if (a.AsReal() && b.AsReal()) return SameReal(*a.AsReal(), *b.AsReal());
  if (a.AsArray() && b.AsArray()) return SameElements(*a.AsArray(), *b.AsArray());
  if (a.AsDictionary() && b.AsDictionary()) {
    return SameEntries(*a.AsDictionary(), *b.AsDictionary());
  }
  return a == b;
}

bool IsSmall(const PropertyValue& value) {
  return Budget().Covers(value);
}

}  // namespace fernwick::fuzz
