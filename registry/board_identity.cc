#include "registry/board_identity.h"

#include <cstdlib>
#include <string_view>

#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

constexpr std::string_view BoardIdPrefix = "Zed-";

// The bytes of a property at or below the entry; empty (nullopt) when it is absent or not data.
std::optional<std::string> SearchData(Registry& registry, RegistryEntry entry,
                                      std::string_view key) {
  const auto value = registry.SearchProperty(entry, DeviceTreePlane, key, SearchRecursively);
  const auto bytes = value ? value->AsData() : std::nullopt;
  if (!bytes) return std::nullopt;
  return std::string(*bytes);
}

// The text up to its first zero byte, as the C library reads a string, or all of it.
std::uint64_t ParseBoardId(const std::string& text) {
  if (!text.starts_with(BoardIdPrefix)) return 0;
  return std::strtoull(text.c_str() + BoardIdPrefix.size(), nullptr, 16);
}

std::uint8_t SearchBoardRevision(Registry& registry, RegistryEntry root) {
  const auto bytes = SearchData(registry, root, BoardRevisionProperty);
  if (!bytes || bytes->empty()) return 0;
  return static_cast<std::uint8_t>(bytes->front());
}

}  // namespace

std::uint64_t ReadBoardId(Registry& registry, std::uint64_t& boardId, std::uint8_t& boardRevision) {
  boardRevision = 0;
  boardId = 0;
  const RegistryEntry root = registry.LookupEntryByPath(DeviceTreeRoot);
  if (root == 0) return 0;
  const auto text = SearchData(registry, root, BoardIdentifierProperty);
  if (text) boardId = ParseBoardId(*text);
  boardRevision = SearchBoardRevision(registry, root);
  registry.ReleaseEntry(root);
  return boardId;
}

std::optional<std::string> ReadBoardIdString(Registry& registry) {
  const RegistryEntry root = registry.LookupEntryByPath(DeviceTreeRoot);
  std::optional<std::string> text;
  if (root != 0) text = SearchData(registry, root, BoardIdentifierProperty);
  registry.ReleaseEntry(root);
  if (!text) return std::nullopt;
  text->resize(std::string_view(text->c_str()).size());
  if (FindInvalidUtf8(*text) != npos) return std::nullopt;
  return text;
}

int ReadBoardRevision(Registry& registry) {
  const RegistryEntry root = registry.LookupEntryByPath(DeviceTreeRoot);
  const std::uint8_t revision = root == 0 ? 0 : SearchBoardRevision(registry, root);
  registry.ReleaseEntry(root);
  return revision;
}

BoardIdentity ReadBoardIdentity(Registry& registry) {
  BoardIdentity identity;
  ReadBoardId(registry, identity.boardId, identity.boardRevision);
  identity.boardIdString = ReadBoardIdString(registry);
  return identity;
}

}  // namespace fernwick
