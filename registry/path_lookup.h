#pragma once

#include <string_view>

#include "registry/registry.h"

namespace fernwick {

/// The entry at the path "PLANE:/a/b", for backends of the registry: `rootOf(plane)` is the root of
/// a plane and `childNamed(entry, name)` the first child of that name, both 0 where there is none.
/// 0 where the path names nothing, as one with an empty step does.
template <typename RootOf, typename ChildNamed>
RegistryEntry LookupByPath(std::string_view path, RootOf rootOf, ChildNamed childNamed) {
  const auto colon = path.find(':');
  if (colon == std::string_view::npos) return 0;
  RegistryEntry entry = rootOf(path.substr(0, colon));
  path.remove_prefix(colon + 1);
  if (!path.starts_with('/')) return 0;
  if (path == "/") return entry;
  while (entry != 0 && !path.empty()) {
    path.remove_prefix(1);  // the "/" before the step
    const auto step = path.substr(0, path.find('/'));
    entry = step.empty() ? 0 : childNamed(entry, step);
    path.remove_prefix(step.size());
  }
  return entry;
}

}  // namespace fernwick
