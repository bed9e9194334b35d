#include "registry/host/boot_options.h"

#include <algorithm>
#include <cstddef>

#include "registry/host/file_text.h"
#include "registry/host/limits.h"
#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

constexpr char EfiDirectory[] = "sys/firmware/efi/efivars";

constexpr std::size_t GuidLength = 36;
constexpr std::size_t AttributeBytes = 4;  // before the value of a variable

}  // namespace

std::optional<std::string> ReadBootArguments(const HostFiles& files) {
  const auto line = files.Read("proc/cmdline", MaxSystemFile);
  if (!line) return std::nullopt;
  const auto arguments = WithoutLineEnd(*line);
  if (FindInvalidText(arguments) != npos) return std::nullopt;
  return std::string(arguments);
}

std::vector<std::string> ListEfiFiles(const HostFiles& files) {
  return files.List(EfiDirectory).files;
}

std::string_view EfiVariableOf(std::string_view file) {
  if (file.size() <= GuidLength || file[file.size() - GuidLength - 1] != '-') return {};
  return file.substr(0, file.size() - GuidLength - 1);
}

// Files whose names begin alike are neighbours.
const std::string* FindEfiFile(const std::vector<std::string>& efiFiles, std::string_view name) {
  if (name.empty()) return nullptr;
  auto file = std::ranges::lower_bound(efiFiles, name);
  for (; file != efiFiles.end() && file->starts_with(name); ++file) {
    if (EfiVariableOf(*file) == name) return &*file;
  }
  return nullptr;
}

std::optional<std::string> ReadEfiVariable(const HostFiles& files, const std::string& file) {
  auto bytes = files.Read(std::string(EfiDirectory) + "/" + file, MaxSystemFile);
  if (!bytes || bytes->size() < AttributeBytes) return std::nullopt;
  return bytes->substr(AttributeBytes);
}

}  // namespace fernwick
