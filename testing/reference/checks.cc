#include "testing/reference/checks.h"

#include <limits>
#include <optional>
#include <string_view>

namespace fernwick::testing::reference {
namespace {

// Represents every integer and every real of a value exactly, so that comparing does not round.
using ExactNumber = long double;
static_assert(std::numeric_limits<ExactNumber>::digits >= 64);

// The value of a key; null when it is absent.
const PropertyValue* Find(const Dictionary& record, std::string_view key) {
  for (const DictionaryEntry& entry : record.Entries()) {
    if (entry.key == key) return &entry.value;
  }
  return nullptr;
}

ExactNumber Exact(const Integer& integer) {
  if (integer.IsNegative()) return -static_cast<ExactNumber>(0 - integer.Bits());
  return static_cast<ExactNumber>(integer.Bits());
}

// An integer, a real or a boolean is a number; nothing else is.
std::optional<ExactNumber> NumberOf(const PropertyValue& value) {
  if (value.AsInteger().has_value()) return Exact(*value.AsInteger());
  if (value.AsReal().has_value()) return static_cast<ExactNumber>(*value.AsReal());
  if (value.AsBoolean().has_value()) return *value.AsBoolean() ? 1.0L : 0.0L;
  return std::nullopt;
}

bool NumbersEqual(const PropertyValue& a, const PropertyValue& b) {
  const auto left = NumberOf(a);
  const auto right = NumberOf(b);
  return left.has_value() && right.has_value() && *left == *right;
}

bool NumberGreater(const PropertyValue& a, const PropertyValue& b) {
  const auto left = NumberOf(a);
  const auto right = NumberOf(b);
  return left.has_value() && right.has_value() && *left > *right;
}

bool NumberLess(const PropertyValue& a, const PropertyValue& b) {
  const auto left = NumberOf(a);
  const auto right = NumberOf(b);
  return left.has_value() && right.has_value() && *left < *right;
}

bool StringsEqual(const PropertyValue& a, const PropertyValue& b) {
  const auto left = a.AsString();
  const auto right = b.AsString();
  return left.has_value() && right.has_value() && *left == *right;
}

bool IsNumber(const PropertyValue& value) {
  return NumberOf(value).has_value();
}

bool IsString(const PropertyValue& value) {
  return value.AsString().has_value();
}

enum class Presence { OptionalKey, RequiredKey };

using KindTest = bool (*)(const PropertyValue&);
using Comparison = bool (*)(const PropertyValue&, const PropertyValue&);

// `missingKeyMessage` is empty where there is none.
bool RequirementSetMatch(const Dictionary& personality, const Dictionary& hardware,
                         std::string_view key, Presence presence, KindTest isSingleValueKind,
                         Comparison compare, std::string_view missingKeyMessage,
                         std::string& diagnostics) {
  const PropertyValue* p = Find(personality, key);
  const PropertyValue* h = Find(hardware, key);
  if (p == nullptr && presence == Presence::OptionalKey) return true;
  if (p == nullptr && presence == Presence::RequiredKey) {
    diagnostics += missingKeyMessage;
    return false;
  }
  if (h == nullptr) {
    diagnostics += missingKeyMessage;
    return false;
  }
  const std::optional<Array> elements = p->AsArray();
  if (!elements && !isSingleValueKind(*p)) return false;
  if (elements) {
    bool matches = false;
    for (const PropertyValue& element : *elements) {
      if (compare(element, *h)) matches = true;
    }
    return matches;
  }
  return compare(*p, *h);
}

bool OptionalNumber(const Dictionary& personality, const Dictionary& hardware,
                    std::string_view key) {
  std::string noDiagnostics;
  return RequirementSetMatch(personality, hardware, key, Presence::OptionalKey, IsNumber,
                             NumbersEqual, "", noDiagnostics);
}

bool RequiredNumber(const Dictionary& personality, const Dictionary& hardware,
                    std::string_view key) {
  std::string noDiagnostics;
  return RequirementSetMatch(personality, hardware, key, Presence::RequiredKey, IsNumber,
                             NumbersEqual, "", noDiagnostics);
}

// Whether the value is other than 0 as an unsigned integer: a real loses its fractional part
// and is 0 when it is negative or NaN. A value that is not a number counts as 0.
bool IsNonZeroUnsigned(const PropertyValue& value) {
  if (value.AsReal().has_value()) return *value.AsReal() >= 1.0;
  const auto number = NumberOf(value);
  return number.has_value() && *number != 0;
}

bool FirmwareVersionWindow(const Dictionary& personality, const Dictionary& hardware,
                           bool engineeringGate, bool bypassVersionCheck,
                           std::string& diagnostics) {
  if (!bypassVersionCheck) {
    const PropertyValue* pv = Find(personality, "Version");
    const PropertyValue* hv = Find(hardware, "Version");
    if (pv == nullptr || hv == nullptr) return false;
    if (!NumberGreater(*pv, *hv)) return false;
    if (engineeringGate) {
      const PropertyValue* engineering = Find(hardware, "Engineering Version");
      if (engineering != nullptr && IsNonZeroUnsigned(*engineering)) return false;
    }
  }

  const PropertyValue* mn = Find(personality, "Existing Min Version");
  const PropertyValue* mx = Find(personality, "Existing Max Version");
  const PropertyValue* hv = Find(hardware, "Version");
  if (hv == nullptr) {
    diagnostics += "** No current firmware version?\n";
    return true;
  }
  if (mn != nullptr) {
    if (!IsNumber(*mn)) {
      diagnostics += "** minversion bad object type in personality\n";
      return false;
    }
    if (NumberGreater(*mn, *hv)) {
      diagnostics += "** Min firmware version not met.  Aborting\n";
      return false;
    }
  }
  if (mx != nullptr) {
    if (!IsNumber(*mx)) {
      diagnostics += "** maxversion bad object type in personality\n";
      return false;
    }
    if (NumberLess(*mx, *hv)) {
      diagnostics += "** Max firmware version not met.  Aborting\n";
      return false;
    }
  }
  return true;
}

}  // namespace

bool CheckLegacyUsbcRequirements(const Dictionary& personality, const Dictionary& hardware,
                                 bool bypassVersionCheck, std::string& diagnostics) {
  if (!FirmwareVersionWindow(personality, hardware, true, bypassVersionCheck, diagnostics)) {
    return false;
  }
  return OptionalNumber(personality, hardware, "Port Address");
}

bool CheckUsbcRequirements(const Dictionary& personality, const Dictionary& hardware,
                           std::uint32_t boardRevision, bool bypassVersionCheck,
                           std::string& diagnostics) {
  if (!CheckLegacyUsbcRequirements(personality, hardware, bypassVersionCheck, diagnostics)) {
    return false;
  }

  if (!OptionalNumber(personality, hardware, "RID")) return false;

  // A bound that is not a number rejects the pair.
  const PropertyValue revision(boardRevision % 256);
  const PropertyValue* lowest = Find(personality, "MinBoardRevision");
  if (lowest != nullptr && !IsNumber(*lowest)) return false;
  if (lowest != nullptr && NumberGreater(*lowest, revision)) return false;
  const PropertyValue* highest = Find(personality, "MaxBoardRevision");
  if (highest != nullptr && !IsNumber(*highest)) return false;
  if (highest != nullptr && NumberLess(*highest, revision)) return false;

  if (!RequiredNumber(personality, hardware, "Port Silicon Vendor ID")) return false;
  if (!RequiredNumber(personality, hardware, "Port Silicon Device ID")) return false;

  if (!RequirementSetMatch(personality, hardware, "Port Silicon Revision", Presence::RequiredKey,
                           IsNumber, NumbersEqual, "** Missing port silicon revision key(s)\n",
                           diagnostics)) {
    return false;
  }

  if (!RequirementSetMatch(personality, hardware, "Port OTP Revision", Presence::OptionalKey,
                           IsNumber, NumbersEqual, "** Missing port OTP revision key(s) **\n",
                           diagnostics)) {
    return false;
  }

  // A single value must be a number, but strings are compared: only an array can match.
  return RequirementSetMatch(personality, hardware, "Port UUID", Presence::OptionalKey, IsNumber,
                             StringsEqual, "** Missing port UUID(s)\n", diagnostics);
}

bool CheckLegacyThunderboltRequirements(const Dictionary& personality, const Dictionary& hardware,
                                        bool bypassVersionCheck, std::string& diagnostics) {
  if (!FirmwareVersionWindow(personality, hardware, false, bypassVersionCheck, diagnostics)) {
    return false;
  }
  if (!OptionalNumber(personality, hardware, "RID")) return false;
  if (!RequiredNumber(personality, hardware, "Ridge Silicon Vendor ID")) return false;
  if (!RequiredNumber(personality, hardware, "Ridge Silicon Device ID")) return false;
  if (!RequiredNumber(personality, hardware, "Ridge Silicon Revision")) return false;
  return OptionalNumber(personality, hardware, "Ridge UID");
}

bool CheckThunderboltRequirements(const Dictionary& personality, const Dictionary& hardware,
                                  std::uint32_t boardRevision, bool bypassVersionCheck,
                                  std::string& diagnostics) {
  if (!CheckUsbcRequirements(personality, hardware, boardRevision, bypassVersionCheck,
                             diagnostics)) {
    return false;
  }
  if (!CheckLegacyThunderboltRequirements(personality, hardware, bypassVersionCheck, diagnostics)) {
    return false;
  }
  std::string noDiagnostics;
  if (!RequirementSetMatch(personality, hardware, "Device Model Name", Presence::OptionalKey,
                           IsString, StringsEqual, "", noDiagnostics)) {
    return false;
  }
  if (!OptionalNumber(personality, hardware, "Device Model ID")) return false;
  if (!OptionalNumber(personality, hardware, "Device Model Revision")) return false;
  return OptionalNumber(personality, hardware, "Firmware Mode");
}

}  // namespace fernwick::testing::reference
