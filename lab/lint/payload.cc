#include "lab/lint/payload.h"

#include <algorithm>
#include <filesystem>
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

// The entries of a directory of one kind, links followed, sorted by their bytes.
struct Listing {
  std::vector<std::string> names;
  std::error_code error;
};

Listing List(const std::string& directory, fs::file_type type) {
  Listing listing;
  auto entry = fs::directory_iterator(directory, listing.error);
  for (; !listing.error && entry != fs::directory_iterator(); entry.increment(listing.error)) {
    std::error_code unknown;  // of a dangling link, which is of no kind
    if (entry->status(unknown).type() == type) listing.names.push_back(entry->path().filename());
  }
  std::ranges::sort(listing.names);
  return listing;
}

class PayloadLinter {
 public:
  explicit PayloadLinter(const std::string& payload)
      : personalitiesDirectory_(AppendPathComponent(payload, "Fernwick")) {}

  PayloadLinting Lint(const std::string& payload, std::vector<std::string> boards) {
    std::error_code error;
    if (!fs::is_directory(payload, error)) {
      Refuse(payload, error ? error.message() : "Not a directory");
    } else if (!fs::is_directory(personalitiesDirectory_, error)) {
      Add(LintRuleOf::NoFernwickDirectory, payload, "there is no directory Fernwick/ in it");
    } else if (SelectBoards(boards)) {
      for (const auto& board : boards) LintBoard(board);
    }
    const auto place = [](const Finding& f) {
      const auto at = f.place.value_or(FileLocation{});
      return std::tuple(std::string_view(f.path), at.line, at.column, at.byte, f.rule->id,
                        std::string_view(f.message));
    };
    std::ranges::sort(result_.findings, {}, place);
    return std::move(result_);
  }

 private:
  void Refuse(const std::string& path, const std::string& why) {
    result_.error = path + ": " + why;
    result_.status = LabStatus::UnreadableInput;
  }

  void Add(const LintRule& rule, const std::string& path, std::string message,
           std::optional<FileLocation> place = {}) {
    result_.findings.push_back({&rule, path, place, std::move(message)});
  }

  void AddUnreadable(const std::string& path, const std::string& why) {
    Add(LintRuleOf::UnreadableFile, path, "it cannot be read: " + why);
    result_.status = LabStatus::UnreadableInput;
  }

  void AddUnusable(const std::string& path, const LabError& error) {
    if (error.status == LabStatus::UnreadableInput) {
      return AddUnreadable(path, error.error.message);
    }
    Add(LintRuleOf::MalformedPropertyList, path, PrintableText(error.error.message),
        error.error.location);
    if (result_.status == LabStatus::Done) result_.status = error.status;
  }

  // Fills in all boards when none is named. False when one that is named is not there.
  bool SelectBoards(std::vector<std::string>& boards) {
    auto listing = List(personalitiesDirectory_, fs::file_type::directory);
    std::erase_if(listing.names, IsNoBoard);
    allBoards_ = std::move(listing.names);
    if (boards.empty()) {
      if (listing.error) {
        AddUnreadable(personalitiesDirectory_, listing.error.message());
      } else if (allBoards_.empty()) {
        Add(LintRuleOf::NoBoards, personalitiesDirectory_, "there is no board directory in it");
      }
      boards = allBoards_;
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
    if (FindInvalidUtf8(board) != npos) {
      Add(LintRuleOf::ImpossibleBoardId, directory,
          "its name is not UTF-8, so no board has it for its identifier");
    } else {
      LintBoardName(board, directory);
    }
    LintNestedBoards(directory);
    const auto path = AppendPathComponent(directory, "Config.plist");
    std::error_code error;
    const bool exists = fs::exists(path, error);
    if (error) return AddUnreadable(path, error.message());
    if (!exists) {
      Add(LintRuleOf::NoConfiguration, directory, "there is no Config.plist in it");
      return;
    }
    LintFile(path, {personalitiesDirectory_, directory});
  }

  void LintBoardName(const std::string& board, const std::string& directory) {
    if (const auto problem = BoardNameProblem(board, allBoards_)) {
      Add(LintRuleOf::DoubtfulBoardId, directory, "no computer may ask for it: " + *problem);
    } else if (const auto other = SameBoardBefore(board, allBoards_); !other.empty()) {
      Add(LintRuleOf::SameBoardTwice, directory,
          "it differs from " + Quoted(other) + " only in leading zeros");
    }
  }

  void LintNestedBoards(const std::string& directory) {
    for (const auto& name : List(directory, fs::file_type::directory).names) {
      const auto path = AppendPathComponent(directory, name);
      std::error_code error;
      const bool isBoard = fs::exists(AppendPathComponent(path, "Config.plist"), error);
      if (name == "Config.plist" || (!isBoard && !LooksLikeBoard(name))) continue;
      Add(LintRuleOf::NestedBoard, path, "it is inside a board directory, where no computer looks");
    }
  }

  void LintFile(const std::string& path, const BoardFiles& files) {
    const auto configuration = LoadConfiguration(path);
    if (!configuration) return AddUnusable(path, configuration.Error());
    const LintSubject subject(*configuration);
    for (auto& row : LintConfiguration(subject, files)) {
      Add(*row.rule, path, std::move(row.message), configuration->LocationOf(row.offset));
    }
    if (configuration->Value().AsDictionary()) LintUnusedFiles(subject, files);
  }

  void LintUnusedFiles(const LintSubject& subject, const BoardFiles& files) {
    const auto [names, error] = List(files.boardDirectory, fs::file_type::regular);
    if (error) return AddUnreadable(files.boardDirectory, error.message());
    for (const auto& name : UnusedFiles(subject, names)) {
      Add(LintRuleOf::UnusedFile, AppendPathComponent(files.boardDirectory, name),
          "no personality of the board names it");
    }
  }

  const std::string personalitiesDirectory_;
  std::vector<std::string> allBoards_;  // sorted
  PayloadLinting result_;
};

}  // namespace

PayloadLinting LintPayload(const std::string& payload, std::vector<std::string> boards) {
  return PayloadLinter(payload).Lint(payload, std::move(boards));
}

}  // namespace fernwick::lab
