#pragma once

#include <string>
#include <vector>

#include "lab/lint/configuration.h"
#include "testing/temporary_directory.h"
#include "value/xml/writer.h"

namespace fernwick::lab {

/// For tests: what lint finds in a configuration of a payload with both flashing utilities and
/// images of these names, each with contents of its own.
inline std::vector<ConfigurationFindings::Row> LintedRows(const PropertyValue& configuration,
                                                          const std::vector<std::string>& images) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Path() + "/Fernwick";
  for (const std::string utility : {"RidgeFlash.efi", "PortFlash.efi"}) {
    directory.Write("Fernwick/" + utility, utility);
  }
  for (const auto& image : images) directory.Write("Fernwick/Zed-42/" + image, image);
  const auto file =
      LoadConfiguration(directory.Write("Config.plist", WriteXmlPropertyList(configuration)));
  ConfigurationFindings findings;
  LintConfiguration(LintSubject(*file), {path, path + "/Zed-42"}, findings);
  return findings.TakeSorted();
}

}  // namespace fernwick::lab
