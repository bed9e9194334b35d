#include "lab/lint/payload.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

#include "lab/lint/board_names.h"
#include "lab/lint/configuration.h"
#include "lab/lint/rules/payload_rules.h"
#include "lab/lint/rules/plan_rules.h"
#include "lab/support/configuration_file.h"
#include "lab/support/messages.h"
#include "platform/file_system.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {
namespace {

namespace fs = std::filesystem;

// The names in a directory, links followed, sorted by their bytes.
struct Listing {
  std::vector<std::string> directories;
  std::vector<std::string> files;  // regular ones
  std::error_code error;
};

Listing List(const std::string& directory) {
  Listing listing;
  auto entry = fs::directory_iterator(directory, listing.error);
  for (; !listing.error && entry != fs::directory_iterator(); entry.increment(listing.error)) {
    std::error_code unknown;  // of a dangling link, which is of no kind
    const auto type = entry->status(unknown).type();
    if (unknown == std::errc::permission_denied) {
      listing.error = unknown;
      break;
    }
    if (type == fs::file_type::directory) listing.directories.push_back(entry->path().filename());
    if (type == fs::file_type::regular) listing.files.push_back(entry->path().filename());
  }
  std::ranges::sort(listing.directories);
  std::ranges::sort(listing.files);
  return listing;
}

auto OrderOf(const Finding& finding) {
  const auto at = finding.location.value_or(FileLocation{});
  return std::tuple(std::string_view(finding.path), at.line, at.column, at.byte, finding.rule->id,
                    std::string_view(finding.message));
}

// The findings of one board, or of the payload as a whole, until they are passed on.
class Found {
 public:
  Found(const std::string& payload, const FindingSink& sink, const FindingFilter& filter)
      : payload_(payload), sink_(sink), filter_(filter) {}

  std::string RelativeToPayload(const std::string& path) const {
    const auto start = AppendPathComponent(payload_, "").size();
    const auto relative = std::string_view(path).substr(start);
    return std::string(relative.substr(std::min(relative.size(), relative.find_first_not_of('/'))));
  }

  // Whether the finding was added.
  bool Add(const LintRule& rule, const std::string& path, std::string message,
           std::optional<FileLocation> location = {}) {
    const auto relative = RelativeToPayload(path);
    const FindingIdentity identity = {&rule, relative, 0, message};
    if (filter_ && !filter_(identity)) return false;
    const auto fingerprint = FingerprintOf(identity);
    found_.push_back({&rule, path, location, std::move(message), fingerprint});
    return true;
  }

  // A finding for each of the names in the directory, of no more than MaxListed of them.
  void AddForEach(const LintRule& rule, const std::vector<std::string>& names,
                  const std::string& directory, const std::string& message) {
    std::size_t count = 0;
    for (const auto& name : names) {
      if (!Add(rule, AppendPathComponent(directory, name), message)) continue;
      if (++count > MaxListed) found_.pop_back();
    }
    if (count <= MaxListed) return;
    const auto unlisted = count - MaxListed;
    const auto fingerprint = FingerprintOf({&rule, RelativeToPayload(directory), 0, ""});
    found_.push_back({&rule, directory, {}, MessageOfUnlisted(unlisted), fingerprint, unlisted});
  }

  // What is found in the configuration at the path.
  void AddConfiguration(const LintSubject& subject, const std::string& path,
                        const BoardFiles& files) {
    ConfigurationFindings findings(RelativeToPayload(path), filter_);
    LintConfiguration(subject, files, findings);
    resourceError_ = findings.ResourceError();
    for (auto& [rule, offset, message, fingerprint, count] : findings.TakeSorted()) {
      found_.push_back(
          {rule, path, subject.file.LocationOf(offset), std::move(message), fingerprint, count});
    }
  }

  // As that of ConfigurationFindings.
  const std::string& ResourceError() const { return resourceError_; }

  void PassOn() {
    std::ranges::sort(found_, {}, OrderOf);
    for (auto& finding : found_) sink_(std::move(finding));
    found_.clear();
  }

 private:
  const std::string& payload_;
  const FindingSink& sink_;
  const FindingFilter& filter_;  // may be empty
  std::vector<Finding> found_;
  std::string resourceError_;
};

class PayloadLinter {
 public:
  PayloadLinter(const std::string& payload, const FindingSink& sink, const FindingFilter& filter)
      : payload_(payload),
        personalitiesDirectory_(AppendPathComponent(payload, "Fernwick")),
        found_(payload, sink, filter) {}

  PayloadLinting Lint(std::vector<std::string> boards) {
    if (!RefusePayload() && SelectBoards(boards)) {
      found_.PassOn();
      for (const auto& board : boards) {
        LintBoard(board);
        if (!result_.error.empty()) break;
        found_.PassOn();
      }
    }
    return std::move(result_);
  }

 private:
  void Refuse(const std::string& path, const std::string& why) {
    result_.error = path + ": " + why;
    result_.status = LabStatus::UnreadableInput;
  }

  // Whether there is nothing to lint.
  bool RefusePayload() {
    std::error_code error;
    if (!fs::is_directory(payload_, error)) {
      Refuse(payload_, error ? error.message() : "Not a directory");
      return true;
    }
    const auto type = fs::status(personalitiesDirectory_, error).type();
    if (type == fs::file_type::directory) return false;
    if (type == fs::file_type::none) {  // it is not known
      Refuse(personalitiesDirectory_, error.message());
      return true;
    }
    found_.Add(LintRuleOf::NoFernwickDirectory, payload_, "there is no directory Fernwick/ in it");
    found_.PassOn();
    return true;
  }

  void AddUnreadable(const std::string& path, const Error& error) {
    if (UnreadableStatus(error) == LabStatus::OutOfResources)
      return SetResourceError(path + ": " + error.message);
    found_.Add(LintRuleOf::UnreadableFile, path, "it cannot be read: " + error.message);
    result_.status = LabStatus::UnreadableInput;
  }

  void AddUnreadable(const std::string& path, const std::error_code& error) {
    AddUnreadable(path, Error{.message = error.message(), .systemError = error.value()});
  }

  // Without memory or descriptors nothing can be said of the payload.
  void SetResourceError(const std::string& what) {
    result_.error = what;
    result_.status = LabStatus::OutOfResources;
  }

  void AddUnusable(const std::string& path, const LabError& error) {
    if (error.status != LabStatus::MalformedInput) return AddUnreadable(path, error.error);
    found_.Add(LintRuleOf::MalformedPropertyList, path, PrintableText(error.error.message),
               error.error.location);
    if (result_.status == LabStatus::Done) result_.status = error.status;
  }

  // Fills in all boards when none is named. False when one that is named is not there.
  bool SelectBoards(std::vector<std::string>& boards) {
    auto listing = List(personalitiesDirectory_);
    std::erase_if(listing.directories, IsNoBoard);
    names_ = BoardNames(std::move(listing.directories));
    if (boards.empty()) {
      if (listing.error) {
        AddUnreadable(personalitiesDirectory_, listing.error);
      } else if (names_.All().empty()) {
        found_.Add(LintRuleOf::NoBoards, personalitiesDirectory_,
                   "there is no board directory in it");
      }
      boards = names_.All();
      if (!result_.error.empty()) return false;
    }
    std::ranges::sort(boards);
    boards.erase(std::unique(boards.begin(), boards.end()), boards.end());
    for (const auto& board : boards) {
      const auto path = AppendPathComponent(personalitiesDirectory_, board);
      std::error_code error;
      if (board.empty() || !fs::is_directory(path, error)) {
        Refuse(path, error ? error.message() : "Not a directory");
        return false;
      }
    }
    return true;
  }

  void LintBoard(const std::string& board) {
    ++result_.boards;
    const auto directory = AppendPathComponent(personalitiesDirectory_, board);
    const auto listing = List(directory);
    if (listing.error) AddUnreadable(directory, listing.error);
    if (FindInvalidUtf8(board) != npos) {
      found_.Add(LintRuleOf::ImpossibleBoardId, directory,
                 "its name is not UTF-8, so no board has it for its identifier");
    } else {
      LintBoardName(board, directory);
    }
    LintNestedBoards(directory, listing.directories);
    const auto path = AppendPathComponent(directory, "Config.plist");
    std::error_code error;
    const bool exists = fs::exists(path, error);
    if (error) return AddUnreadable(path, error);
    if (!exists) {
      found_.Add(LintRuleOf::NoConfiguration, directory, "there is no Config.plist in it");
      return;
    }
    LintFile(path, {personalitiesDirectory_, directory}, listing.files);
  }

  void LintBoardName(const std::string& board, const std::string& directory) {
    if (const auto problem = names_.Problem(board)) {
      found_.Add(LintRuleOf::DoubtfulBoardId, directory, "no computer may ask for it: " + *problem);
    } else if (const auto other = names_.SameBefore(board); !other.empty()) {
      found_.Add(LintRuleOf::SameBoardTwice, directory,
                 "it differs from " + Quoted(other) + " only in leading zeros");
    }
  }

  void LintNestedBoards(const std::string& directory, const std::vector<std::string>& names) {
    const auto isBoard = [&](const std::string& name) {
      const auto path = AppendPathComponent(directory, name);
      std::error_code error;
      return name != "Config.plist" &&
             (LooksLikeBoard(name) || fs::exists(AppendPathComponent(path, "Config.plist"), error));
    };
    std::vector<std::string> nested;
    std::ranges::copy_if(names, std::back_inserter(nested), isBoard);
    found_.AddForEach(LintRuleOf::NestedBoard, nested, directory,
                      "it is inside a board directory, where no computer looks");
  }

  void LintFile(const std::string& path, const BoardFiles& files,
                const std::vector<std::string>& names) {
    const auto configuration = LoadConfiguration(path);
    if (!configuration) return AddUnusable(path, configuration.Error());
    const LintSubject subject(*configuration);
    found_.AddConfiguration(subject, path, files);
    if (!found_.ResourceError().empty()) return SetResourceError(found_.ResourceError());
    if (!configuration->Value().AsDictionary()) return;
    found_.AddForEach(LintRuleOf::UnusedFile, UnusedFiles(subject, names), files.boardDirectory,
                      "no personality of the board names it");
  }

  const std::string& payload_;
  const std::string personalitiesDirectory_;
  BoardNames names_{{}};
  Found found_;
  PayloadLinting result_;
};

}  // namespace

PayloadLinting LintPayload(const std::string& payload, std::vector<std::string> boards,
                           const FindingSink& sink, const FindingFilter& filter) {
  return PayloadLinter(payload, sink, filter).Lint(std::move(boards));
}

}  // namespace fernwick::lab
