#include "lab/support/input_file.h"

#include <unistd.h>

#include <cerrno>

#include "platform/file_system.h"

namespace fernwick::lab {
namespace {

Result<std::string> ReadStandardInput() {
  std::string bytes;
  char block[1 << 16];
  while (true) {
    const ssize_t count = read(STDIN_FILENO, block, sizeof block);
    if (count == 0) return bytes;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return SystemError();
    bytes.append(block, static_cast<std::size_t>(count));
    if (bytes.size() > MaxFileSize) return Error{"the input is larger than 1 GiB"};
  }
}

}  // namespace

Result<std::string, LabError> ReadInput(const std::string& operand) {
  auto bytes = operand == "-" ? ReadStandardInput() : ReadWholeFile(operand);
  if (!bytes) return LabError{bytes.Error(), UnreadableStatus(bytes.Error())};
  return *std::move(bytes);
}

std::string InputName(const std::string& operand) {
  return operand == "-" ? "standard input" : operand;
}

}  // namespace fernwick::lab
