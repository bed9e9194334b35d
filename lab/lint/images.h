#pragma once

#include <string>
#include <vector>

#include "lab/lint/finding.h"
#include "lab/lint/subject.h"

namespace fernwick::lab {

/// Where the files of a board lie.
struct BoardFiles {
  std::string personalitiesDirectory;  // with the flashing utilities
  std::string boardDirectory;          // with the configuration and the images
};

/// The images that the personalities name, and the utilities that flash them.
void LintImages(const LintSubject& subject, const BoardFiles& files,
                ConfigurationFindings& findings);

/// The files of `names`, in the board directory, that no personality names. Hidden ones do not
/// count.
std::vector<std::string> UnusedFiles(const LintSubject& subject,
                                     const std::vector<std::string>& names);

}  // namespace fernwick::lab
