#include "lab/survey/shards/payload_hash.h"

#include <string_view>

#include "lab/support/stable_hash.h"
#include "lab/survey/coverage/payload_boards.h"
#include "platform/file_system.h"

namespace fernwick::lab {

Result<std::string, LabError> PayloadHash(const std::string& payload) {
  const auto directory = AppendPathComponent(payload, "Fernwick");
  auto boards = BoardsOf(directory);
  if (!boards) return boards.Error();
  boards->emplace_back(".");  // which BoardNamed may return
  StableHash hash;
  for (const auto& board : *boards) {
    const auto path = AppendPathComponent(AppendPathComponent(directory, board), "Config.plist");
    const auto bytes = ReadWholeFile(path);
    if (!bytes && UnreadableStatus(bytes.Error()) == LabStatus::OutOfResources) {
      return LabError{{path + ": " + bytes.Error().message}, LabStatus::OutOfResources};
    }
    const auto& text = bytes ? *bytes : bytes.Error().message;
    hash.Add(board + (bytes ? "/" : "!") + std::to_string(text.size()) + "/");
    hash.Add(text);
  }
  return HashText(hash.Value());
}

}  // namespace fernwick::lab
