#pragma once

#include "personality/bypass_flags.h"

namespace fernwick::testing {

/// Bypasses the version check until the end of its scope.
class VersionCheckBypass {
 public:
  VersionCheckBypass() { BypassVersionCheck = 1; }
  ~VersionCheckBypass() { BypassVersionCheck = 0; }
  VersionCheckBypass(const VersionCheckBypass&) = delete;
  VersionCheckBypass& operator=(const VersionCheckBypass&) = delete;
};

}  // namespace fernwick::testing
