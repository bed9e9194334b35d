#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "lab/lint/configuration.h"
#include "value/xml/writer.h"

namespace fernwick::lab {

/// For tests: what lint finds in a configuration of a payload with both flashing utilities and
/// images of these names, each with contents of its own. The payload is written to the directory.
inline std::vector<ConfigurationFindings::Row> LintedRows(const std::string& directory,
                                                          const PropertyValue& configuration,
                                                          const std::vector<std::string>& images) {
  const auto write = [&](const std::string& name, const std::string& contents) {
    const std::filesystem::path path(directory + "/Fernwick/" + name);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << contents;
    return path.string();
  };
  for (const std::string utility : {"RidgeFlash.efi", "PortFlash.efi"}) write(utility, utility);
  for (const auto& image : images) write("Zed-42/" + image, image);
  const auto path = write("Zed-42/Config.plist", WriteXmlPropertyList(configuration));
  const auto file = LoadConfiguration(path);
  ConfigurationFindings findings;
  LintConfiguration(LintSubject(*file), {directory + "/Fernwick", directory + "/Fernwick/Zed-42"},
                    findings);
  return findings.TakeSorted();
}

}  // namespace fernwick::lab
