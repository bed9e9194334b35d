#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "registry/registry.h"

namespace fernwick {

/// The plane of the device tree, and the path of its root.
inline constexpr std::string_view DeviceTreePlane = "IODeviceTree";
inline constexpr std::string_view DeviceTreeRoot = "IODeviceTree:/";

/// The property of the board identifier, at the root or below it: data with a text that ends with a
/// zero byte.
inline constexpr std::string_view BoardIdentifierProperty = "board-id";

/// The property of the board revision, at the root or below it: data, of which the first byte
/// counts.
inline constexpr std::string_view BoardRevisionProperty = "board-rev";

/// Who the host is.
struct BoardIdentity {
  std::optional<std::string> boardIdString;  // such as "Zed-42"
  std::uint64_t boardId = 0;
  std::uint8_t boardRevision = 0;
};

/// Stores the numeric board id and the board revision, each 0 when the registry has none, and
/// returns the numeric board id: the hexadecimal number, as strtoull reads it, after the prefix
/// "Zed-" of "board-id", and 0 without that prefix. For callers that need the numbers alone.
std::uint64_t ReadBoardId(Registry& registry, std::uint64_t& boardId, std::uint8_t& boardRevision);

/// The board identifier string: "board-id" up to its first zero byte. Empty (nullopt) when there is
/// no such property, it is not data or the string is not UTF-8.
std::optional<std::string> ReadBoardIdString(Registry& registry);

/// The board revision that ReadBoardId stores, 0 to 255. For callers that need it alone.
int ReadBoardRevision(Registry& registry);

/// All of it: the numbers first, then the string.
BoardIdentity ReadBoardIdentity(Registry& registry);

}  // namespace fernwick
