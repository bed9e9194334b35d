#include "lab/survey/row_spool.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace fernwick::lab {

RowSpool::RowSpool() : file_(std::tmpfile()) {
  if (file_ == nullptr) NoteError();
}

void RowSpool::Add(std::string_view line) {
  if (!error_.empty()) return;
  const bool isKept = std::fwrite(line.data(), 1, line.size(), file_.get()) == line.size() &&
                      std::fputc('\n', file_.get()) != EOF;
  if (!isKept) NoteError();
}

void RowSpool::ForEach(const std::function<void(std::string_view)>& take) {
  if (error_.empty() && std::fseek(file_.get(), 0, SEEK_SET) != 0) NoteError();
  if (!error_.empty()) return;
  char* line = nullptr;
  std::size_t capacity = 0;
  ssize_t length = 0;
  while ((length = getline(&line, &capacity, file_.get())) > 0) {
    take({line, static_cast<std::size_t>(length) - 1});
  }
  if (std::ferror(file_.get()) != 0) NoteError();
  std::free(line);
}

void RowSpool::NoteError() {
  error_ = std::string("a temporary file: ") + std::strerror(errno);
}

}  // namespace fernwick::lab
