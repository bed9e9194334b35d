#pragma once

#include <cstddef>
#include <string>

#include "testing/temporary_directory.h"

namespace fernwick::testing {

/// A recording whose run ends abnormally.
std::string FaultyRecording();

/// A small recording: `number` decides on its board, "Zed-0" to "Zed-2", its up to three ports and
/// their versions.
std::string SmallRecording(std::size_t number);

/// Writes `count` small recordings of boards "Zed-0" to "Zed-2" with up to three ports each under
/// "computers", a hundred to a directory, and a payload for two of the boards under "payload". Of
/// every hundred the one at `faulty`, counted from 0, is a FaultyRecording if there is one.
void WriteManyComputers(const TemporaryDirectory& directory, std::size_t count,
                        std::size_t faulty = 100);

}  // namespace fernwick::testing
