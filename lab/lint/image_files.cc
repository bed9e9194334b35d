#include "lab/lint/image_files.h"

#include <filesystem>
#include <functional>

#include "lab/lint/rules/payload_rules.h"
#include "lab/lint/rules/plan_rules.h"
#include "lab/support/messages.h"
#include "platform/file_system.h"

namespace fernwick::lab {
namespace {

namespace fs = std::filesystem;

// What version control leaves instead of a file that was not downloaded.
constexpr std::string_view PointerFileStart = "version https://git-lfs.github.com/spec/";

// Whether the file is inside the directory once all links are followed.
bool IsInside(const std::string& path, const std::string& directory) {
  std::error_code error;
  const auto file = fs::canonical(path, error);
  const auto outer = error ? fs::path() : fs::canonical(directory, error);
  if (error) return true;  // unknown
  const auto relative = file.lexically_relative(outer);
  return !relative.empty() && *relative.begin() != "..";
}

}  // namespace

std::optional<std::string> ImageFiles::Read(std::string_view name, const std::string& path,
                                            std::size_t offset) {
  auto contents = ReadWholeFile(path);
  if (!contents && UnreadableStatus(contents.Error()) == LabStatus::OutOfResources) {
    findings_.SetResourceError(path, contents.Error());
  } else if (!contents) {
    findings_.Add(LintRuleOf::UnreadableFile, offset,
                  Quoted(name) + " cannot be read: " + contents.Error().message);
  } else if (contents->empty()) {
    findings_.Add(LintRuleOf::EmptyImage, offset, Quoted(name) + " is an empty file");
  } else if (contents->starts_with(PointerFileStart)) {
    findings_.Add(LintRuleOf::PointerFile, offset,
                  Quoted(name) + " is the pointer file of a large-file store, not the file itself");
  } else {
    return *std::move(contents);
  }
  return std::nullopt;
}

void ImageFiles::LintImage(std::string_view name, const std::string& path,
                           const std::string& boardDirectory, std::size_t offset) {
  const auto contents = Read(name, path, offset);
  if (!contents) return;
  if (!IsInside(path, boardDirectory)) {
    findings_.Add(LintRuleOf::ImageLinkedOutside, offset,
                  Quoted(name) + " is a link to a file outside the board directory");
  }
  const std::pair key(contents->size(), std::hash<std::string>()(*contents));
  const auto [same, isNew] = images_.emplace(key, name);
  if (isNew || same->second == name) return;
  findings_.Add(LintRuleOf::SameImageTwice, offset,
                Quoted(name) + " has the same bytes as " + Quoted(same->second));
}

}  // namespace fernwick::lab
