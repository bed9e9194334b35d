#include "testing/programs/host_namespace.h"

#include "testing/host_tree.h"
#include "testing/sanitizers.h"

namespace fernwick::testing {
namespace {

// /proc comes last: mount itself reads it.
constexpr char Script[] =
    "mount --bind \"$1/sys\" /sys && mount --bind \"$1/proc\" /proc && shift && exec \"$@\"";

}  // namespace

std::string NoHostNamespaceReason() {
  if (UnderAddressSanitizer) return "the sanitizers need the real /proc";
  static const ChildOutcome tried = RunOnHost(HostTree("").Root(), {"true"}, "/");
  return tried.status == "0" ? "" : "no user and mount namespaces here: " + tried.standardError;
}

ChildOutcome RunOnHost(const std::string& root, const std::vector<std::string>& command,
                       const std::string& directory, OutputTarget target) {
  std::vector<std::string> words = {
      "unshare", "--map-root-user", "--mount", "sh", "-c", Script, "sh", root};
  words.insert(words.end(), command.begin(), command.end());
  return RunChild(words, directory, target);
}

}  // namespace fernwick::testing
