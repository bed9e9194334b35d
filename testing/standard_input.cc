#include "testing/standard_input.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace fernwick::testing {

StandardInputPipe::StandardInputPipe() : saved_(dup(STDIN_FILENO)) {
  int ends[2];
  if (pipe(ends) != 0) {
    std::perror("pipe");
    std::abort();
  }
  dup2(ends[0], STDIN_FILENO);
  close(ends[0]);
  writeEnd_ = ends[1];
}

StandardInputPipe::~StandardInputPipe() {
  End();
  dup2(saved_, STDIN_FILENO);
  close(saved_);
}

void StandardInputPipe::Write(std::string_view bytes) const {
  if (write(writeEnd_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size())) return;
  std::perror("write");
  std::abort();
}

void StandardInputPipe::End() {
  if (writeEnd_ >= 0) close(writeEnd_);
  writeEnd_ = -1;
}

}  // namespace fernwick::testing
