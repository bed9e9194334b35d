#include "testing/redirection.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace fernwick::testing {

Redirection::Redirection(int descriptor)
    : Redirection(descriptor, memfd_create("redirection", MFD_CLOEXEC)) {}

Redirection::Redirection(int descriptor, const std::string& path)
    : Redirection(descriptor, open(path.c_str(), O_WRONLY)) {}

Redirection::Redirection(int descriptor, int target)
    : descriptor_(descriptor), saved_(dup(descriptor)), target_(target) {
  std::fflush(nullptr);
  if (saved_ >= 0 && target_ >= 0 && dup2(target_, descriptor_) == descriptor_) return;
  std::perror("redirection");
  std::abort();
}

Redirection::~Redirection() {
  End();
  close(target_);
}

void Redirection::End() {
  if (saved_ < 0) return;
  std::fflush(nullptr);
  dup2(saved_, descriptor_);
  close(saved_);
  saved_ = -1;
}

std::string Redirection::Text() const {
  std::string text;
  char piece[4096];
  for (;;) {
    const ssize_t size = pread(target_, piece, sizeof piece, static_cast<off_t>(text.size()));
    if (size <= 0) return text;
    text.append(piece, static_cast<std::size_t>(size));
  }
}

}  // namespace fernwick::testing
