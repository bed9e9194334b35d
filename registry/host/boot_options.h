#pragma once

#include <map>
#include <optional>
#include <string>

#include "registry/host/host_files.h"

namespace fernwick {

/// The kernel's command line; absent where it is not text that a property list can contain.
std::optional<std::string> ReadBootArguments(const HostFiles& files);

/// The EFI variables: name to the name of the file, which has the GUID of the variable's owner
/// after it. Of several variables of one name, the first in byte order of the files.
using EfiVariables = std::map<std::string, std::string, std::less<>>;
EfiVariables ListEfiVariables(const HostFiles& files);

/// The bytes of a variable, without its attributes.
std::optional<std::string> ReadEfiVariable(const HostFiles& files, const std::string& file);

}  // namespace fernwick
