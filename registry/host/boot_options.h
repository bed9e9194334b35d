#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "registry/host/host_files.h"

namespace fernwick {

/// The kernel's command line; absent where it is not text that a property list can contain.
std::optional<std::string> ReadBootArguments(const HostFiles& files);

/// The files of the EFI variables, in byte order of their names: NAME-GUID, where the GUID is that
/// of the variable's owner.
std::vector<std::string> ListEfiFiles(const HostFiles& files);

/// The name of the variable in the name of a file; empty for a file of another form.
std::string_view EfiVariableOf(std::string_view file);

/// The first of the files that has the variable of that name; null when there is none. Logarithmic.
const std::string* FindEfiFile(const std::vector<std::string>& efiFiles, std::string_view name);

/// The bytes of the variable in a file, without its attributes.
std::optional<std::string> ReadEfiVariable(const HostFiles& files, const std::string& file);

}  // namespace fernwick
