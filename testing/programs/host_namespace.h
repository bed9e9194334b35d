#pragma once

#include <string>
#include <vector>

#include "testing/programs/child_process.h"

namespace fernwick::testing {

/// Why programs cannot be run on made-up computers here: that needs a user and a mount namespace,
/// which some machines and containers do not allow, and the sanitizers need the real /proc. Empty
/// when they can. A test that needs it is skipped with this reason.
std::string NoHostNamespaceReason();

/// Runs a program to its end, as RunChild, on a computer whose /proc and /sys are the directories
/// of these names below `root`. REQUIRES: NoHostNamespaceReason() is empty.
ChildOutcome RunOnHost(const std::string& root, const std::vector<std::string>& command,
                       const std::string& directory, OutputTarget target = OutputTarget::Captured);

}  // namespace fernwick::testing
