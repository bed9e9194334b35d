#include "lab/survey/absolute_paths.h"

#include <filesystem>
#include <system_error>

namespace fernwick::lab {
namespace {

namespace fs = std::filesystem;

// Resolves the links of the part that exists. Where that fails, without resolving any.
std::string Resolved(const fs::path& path) {
  std::error_code error;
  const auto absolute = fs::absolute(path, error);
  auto resolved = fs::weakly_canonical(absolute, error);
  if (error) resolved = absolute.lexically_normal();
  // "/a/." of a directory that does not exist
  return resolved.has_filename() ? resolved.string() : resolved.parent_path().string();
}

}  // namespace

AbsolutePaths::AbsolutePaths(const std::string& directory) : directory_(Resolved(directory)) {}

std::string AbsolutePaths::Of(const std::string& path) {
  if (path == "-") return path;
  const auto full = fs::path(directory_) / path;
  const auto name = full.filename();
  if (name.empty() || name == "." || name == "..") return Resolved(full);
  const auto parent = full.parent_path().string();
  if (parent != lastParent_) {
    lastParent_ = parent;
    lastResolved_ = Resolved(parent);
  }
  return (fs::path(lastResolved_) / name).string();
}

std::string AbsolutePaths::RelativeTo(const std::string& absolute) const {
  if (absolute == "-") return absolute;
  return fs::path(absolute).lexically_relative(directory_).string();
}

}  // namespace fernwick::lab
