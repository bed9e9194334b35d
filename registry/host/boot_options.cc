#include "registry/host/boot_options.h"

#include <cstddef>
#include <string_view>

#include "registry/host/file_text.h"
#include "registry/host/limits.h"
#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

constexpr char EfiDirectory[] = "sys/firmware/efi/efivars";

constexpr std::size_t GuidLength = 36;
constexpr std::size_t AttributeBytes = 4;  // before the value of a variable

// The name of the variable in NAME-GUID; empty for a file of another name.
std::string_view VariableIn(std::string_view file) {
  if (file.size() <= GuidLength || file[file.size() - GuidLength - 1] != '-') return {};
  return file.substr(0, file.size() - GuidLength - 1);
}

}  // namespace

std::optional<std::string> ReadBootArguments(const HostFiles& files) {
  const auto line = files.Read("proc/cmdline", MaxSystemFile);
  if (!line) return std::nullopt;
  const auto arguments = WithoutLineEnd(*line);
  if (FindInvalidText(arguments) != npos) return std::nullopt;
  return std::string(arguments);
}

EfiVariables ListEfiVariables(const HostFiles& files) {
  EfiVariables variables;
  for (const auto& file : files.List(EfiDirectory).files) {
    const auto name = VariableIn(file);
    const bool isName = !name.empty() && FindInvalidText(name) == npos;
    if (isName) variables.emplace(name, file);
  }
  return variables;
}

std::optional<std::string> ReadEfiVariable(const HostFiles& files, const std::string& file) {
  auto bytes = files.Read(std::string(EfiDirectory) + "/" + file, MaxSystemFile);
  if (!bytes || bytes->size() < AttributeBytes) return std::nullopt;
  return bytes->substr(AttributeBytes);
}

}  // namespace fernwick
