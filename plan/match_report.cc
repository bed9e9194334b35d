#include "plan/match_report.h"

#include <cinttypes>
#include <string>

#include "plan/value_conversions.h"
#include "value/textual_dump.h"

namespace fernwick {
namespace {

// One labelled line. The label is padded so that every value starts in the same column.
class ReportLines {
 public:
  ReportLines(Console& console, const MatchRecord& match) : console_(console), match_(match) {}

  void Text(const char* label, std::string_view key) {
    console_.Print("\t%-31s ", label);
    console_.Write(TextOf(match_.Find(key)).value_or(AbsentText));
    EndLine();
  }

  // The low 32 bits, printed without a sign: −1 is 4294967295. Signed and unsigned 32-bit values
  // print alike.
  void Integer32(const char* label, std::string_view key) {
    console_.Print("\t%-31s %" PRIu32, label, Integer32Of(match_.Find(key)));
    EndLine();
  }

  void Hexadecimal64(const char* label, std::string_view key) {
    console_.Print("\t%-31s 0x%" PRIX64, label, IntegerOf(match_.Find(key)));
    EndLine();
  }

  void Real(const char* label, std::string_view key) {
    console_.Print("\t%-31s %1.02f", label, static_cast<double>(RealOf(match_.Find(key))));
    EndLine();
  }

  // The value is on the lines after the label.
  void Dump(const char* label, std::string_view key) {
    const auto* value = match_.Find(key);
    console_.Print("\t%s\n", label);
    console_.Write(value == nullptr ? std::string(AbsentText) : DumpText(*value));
    EndLine();
  }

 private:
  void EndLine() {
    console_.Write("\n");
    console_.Flush();
  }

  Console& console_;
  const MatchRecord& match_;
};

}  // namespace

void PrintMatchReportHeader(Console& console) {
  console.Write("Identified the following matches:\n");
  console.Flush();
}

void PrintMatchReport(Console& console, const MatchRecord& match) {
  ReportLines lines(console, match);
  lines.Text("PERSONALITY_TYPE:", "Personality Type");
  lines.Integer32("CONFIG_PORT_ADDRESS:", "Port Address");
  lines.Integer32("RID:", "RID");  // the only label without a prefix
  lines.Text("CONFIG_MODEL_NAME:", "Device Model Name");
  lines.Integer32("CONFIG_MODEL_ID:", "Device Model ID");
  lines.Integer32("CONFIG_MODEL_REVISION:", "Device Model Revision");
  lines.Text("CONFIG_PORT_UUID:", "Port UUID");
  lines.Integer32("CONFIG_PORT_SILICON_VENDOR_ID:", "Port Silicon Vendor ID");
  lines.Integer32("CONFIG_PORT_SILICON_DEVICE_ID:", "Port Silicon Device ID");
  lines.Integer32("CONFIG_PORT_SILICON_REVISION:", "Port Silicon Revision");
  lines.Integer32("CONFIG_PORT_OTP_REVISION:", "Port OTP Revision");
  lines.Hexadecimal64("CONFIG_RIDGE_UID:", "Ridge UID");
  lines.Integer32("CONFIG_RIDGE_SILICON_VENDOR_ID:", "Ridge Silicon Vendor ID");
  lines.Integer32("CONFIG_RIDGE_SILICON_DEVICE_ID:", "Ridge Silicon Device ID");
  lines.Integer32("CONFIG_RIDGE_SILICON_REVISION:", "Ridge Silicon Revision");
  lines.Integer32("CONFIG_RIDGE_FIRMWARE_MODE:", "Firmware Mode");
  lines.Text("CONFIG_FIRMWARE_NAME:", "Firmware");
  lines.Real("CONFIG_VERSION:", "Version");
  lines.Integer32("CONFIG_PRIORITY:", "Priority");
  lines.Dump("CONFIG_NVRAM_TO_SET:", "SetNVRAM");
  lines.Dump("CONFIG_NVRAM_TO_CLEAR:", "ClearNVRAM");
  console.Write("\n\n");
  console.Flush();
}

}  // namespace fernwick
