#pragma once

#include <cstdio>
#include <memory>

namespace fernwick::lab {

struct CloseStdioFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

/// A stream of the C library that is read and closed by its owner. May be null.
using StdioFile = std::unique_ptr<std::FILE, CloseStdioFile>;

}  // namespace fernwick::lab
