#include "fuzz/payload.h"

#include <unistd.h>

#include <climits>
#include <cstddef>
#include <fstream>

#include "fuzz/require.h"

namespace fernwick::fuzz {
namespace {

constexpr std::size_t VeryMany = 1000;

constexpr char Board[] = "every board";

}  // namespace

Payload::Payload()
    : configurationPath_(directory_.Write(std::string("Fernwick/") + Board + "/Config.plist", "")) {
}

void Payload::Configure(std::string_view configuration) {
  std::ofstream(configurationPath_, std::ios::binary) << configuration;
}

void Payload::AddBoard(std::string_view boardId) {
  const bool isName = !boardId.empty() && boardId.size() <= NAME_MAX && boardId != "." &&
                      boardId != ".." && boardId.find('/') == std::string_view::npos;
  if (!isName || boardId == Board || boards_.contains(boardId) || boards_.size() == VeryMany) {
    return;
  }
  const auto& name = *boards_.emplace(boardId).first;
  Require(symlink(Board, (Path() + "/Fernwick/" + name).c_str()) == 0, "a board can be added");
}

}  // namespace fernwick::fuzz
