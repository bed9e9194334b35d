#include "lab/lint/images.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string_view>

#include "lab/lint/image_files.h"
#include "lab/lint/rules/plan_rules.h"
#include "personality/requirements.h"
#include "plan/invocation_builder.h"
#include "plan/value_conversions.h"
#include "platform/file_system.h"

namespace fernwick::lab {
namespace {

namespace fs = std::filesystem;

// The path without empty and "." components and with ".." undone, relative to the board directory.
// None when it leaves that, be it only on the way.
std::optional<std::string> Normalised(std::string_view image) {
  std::vector<std::string_view> components;
  while (!image.empty()) {
    const auto component = image.substr(0, image.find('/'));
    image.remove_prefix(std::min(image.size(), component.size() + 1));
    if (component.empty() || component == ".") continue;
    if (component != "..") {
      components.push_back(component);
    } else if (components.empty()) {
      return std::nullopt;
    } else {
      components.pop_back();
    }
  }
  std::string path;
  for (const auto component : components) path.append(path.empty() ? "" : "/").append(component);
  return path;
}

class ImageLinter {
 public:
  ImageLinter(const BoardFiles& files, ConfigurationFindings& findings)
      : files_(files), findings_(findings), contents_(findings) {}

  void Lint(const LocatedPersonality& personality) {
    const auto* firmware = personality.Find("Firmware");
    const auto image = TextOf(personality.Value("Firmware")).value_or("");
    if (!image.empty()) return LintImage(image, firmware->valueOffset);
    std::string what = "an empty \"Firmware\"";
    if (firmware == nullptr) what = "no \"Firmware\"";
    if (firmware != nullptr && !firmware->value->AsString()) {
      what = Shown(*firmware->value) + " for a \"Firmware\"";
    }
    findings_.Add(LintRuleOf::NoFirmware,
                  firmware == nullptr ? personality.offset : firmware->valueOffset,
                  "a match of this personality, with " + what + ", ends the run without a plan");
  }

  // One image is of one version.
  void LintVersion(const LocatedPersonality& personality) {
    const auto* version = personality.Find("Version");
    const auto image = TextOf(personality.Value("Firmware"));
    if (!image || image->empty() || version == nullptr || !version->value->IsNumber()) return;
    const auto [first, isNew] = versions_.emplace(Normalised(*image).value_or(""), version->value);
    if (isNew || NumbersEqual(*first->second, *version->value)) return;
    findings_.Add(LintRuleOf::ImageVersionsDiffer, version->valueOffset,
                  Quoted(*image) + " is of \"Version\" " + Shown(*version->value) +
                      " here and of " + Shown(*first->second) + " in an earlier personality");
  }

  void LintUtility(const LocatedType& type) {
    const std::string utility(FlashingUtility(type.entry.key));
    const auto path = AppendPathComponent(files_.personalitiesDirectory, utility);
    if (type.personalities.empty()) return;
    if (TypeOf(path) == fs::file_type::regular) {
      contents_.LintUtility(utility, path, type.entry.keyOffset);
      return;
    }
    findings_.Add(LintRuleOf::MissingUtility, type.entry.keyOffset,
                  utility + ", which flashes the images of \"" + std::string(type.entry.key) +
                      "\", is not a file in Fernwick/");
  }

 private:
  void LintImage(std::string_view image, std::size_t offset) {
    if (!Normalised(image)) {
      findings_.Add(LintRuleOf::ImageOutsideBoardDirectory, offset,
                    Quoted(image) + " is outside the board directory");
      return;
    }
    if (image.find('/') != std::string_view::npos) {
      findings_.Add(LintRuleOf::ImageNotAPlainName, offset,
                    Quoted(image) + " is a path, not the name of a file in the board directory");
    }
    const auto type = TypeOfImage(image, offset);
    if (type == fs::file_type::not_found) {
      findings_.Add(LintRuleOf::MissingImage, offset,
                    Quoted(image) + " is not in the board directory");
    } else if (type != fs::file_type::regular) {
      findings_.Add(LintRuleOf::ImageNotAFile, offset, Quoted(image) + " is not a file");
    } else if (Normalised(image) == "Config.plist") {
      findings_.Add(LintRuleOf::ConfigurationAsImage, offset,
                    "the configuration itself is named as the image");
    }
  }

  // Personalities often share an image: its contents are reported once.
  fs::file_type TypeOfImage(std::string_view image, std::size_t offset) {
    const auto known = imageTypes_.find(image);
    if (known != imageTypes_.end()) return known->second;
    const auto path = AppendPathComponent(files_.boardDirectory, image);
    const auto type = TypeOf(path);
    imageTypes_.emplace(image, type);
    const auto name = Normalised(image).value_or("");
    if (type == fs::file_type::regular && name != "Config.plist") {
      contents_.LintImage(name, path, files_.boardDirectory, offset);
    }
    return type;
  }

  // What cannot be reached does not exist.
  static fs::file_type TypeOf(const std::string& path) {
    if (!PathExists(path)) return fs::file_type::not_found;
    std::error_code error;
    return fs::status(path, error).type();
  }

  const BoardFiles& files_;
  ConfigurationFindings& findings_;
  ImageFiles contents_;
  std::map<std::string, const PropertyValue*> versions_;  // the first of each image
  std::map<std::string, fs::file_type, std::less<>> imageTypes_;
};

}  // namespace

void LintImages(const LintSubject& subject, const BoardFiles& files,
                ConfigurationFindings& findings) {
  ImageLinter linter(files, findings);
  for (const auto& type : subject.types) {
    linter.LintUtility(type);
    for (const auto& personality : type.personalities) {
      findings.Enter(&personality);
      linter.Lint(personality);
      linter.LintVersion(personality);
    }
    findings.Enter(nullptr);
  }
}

std::vector<std::string> UnusedFiles(const LintSubject& subject,
                                     const std::vector<std::string>& names) {
  std::set<std::string> used = {"Config.plist"};
  for (const auto& type : subject.types) {
    for (const auto& personality : type.personalities) {
      const auto image = TextOf(personality.Value("Firmware"));
      if (auto path = image ? Normalised(*image) : std::nullopt) used.insert(*std::move(path));
    }
  }
  std::vector<std::string> unused;
  std::ranges::copy_if(names, std::back_inserter(unused), [&](const std::string& name) {
    return !name.starts_with('.') && !used.contains(name);
  });
  return unused;
}

}  // namespace fernwick::lab
