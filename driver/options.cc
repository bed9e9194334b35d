#include "driver/options.h"

#include <getopt.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

constexpr char ShortOptions[] = "vp:Xs";

// The version bypass has no short form: "b" is not among the short options.
// clang-format off
constexpr option LongOptions[] = {
    {"verbose", no_argument, nullptr, 'v'},
    {"payload", required_argument, nullptr, 'p'},
    {"preflight", no_argument, nullptr, 'X'},
    {"subupdater", no_argument, nullptr, 's'},
    {"bypassVersion", no_argument, nullptr, 'b'},
    {nullptr, 0, nullptr, 0},
};
// clang-format on

constexpr int EndOfOptions = -1;

// The path is not normalised: a payload "/a/" results in "/a//Fernwick/".
std::optional<std::string> PersonalitiesDirectory(std::string_view payload) {
  if (FindInvalidUtf8(payload) != npos) return std::nullopt;
  return std::string(payload) + "/Fernwick/";
}

// Redirects what the C library writes to `stderr` into memory, from its construction on.
class StandardErrorText {
 public:
  StandardErrorText() : stream_(open_memstream(&bytes_, &size_)) {
    // coverage: 1 of 2 branches: There is memory for a stream at the start of a process.
    if (stream_ != nullptr) stderr = stream_;
  }
  ~StandardErrorText() {
    stderr = saved_;
    // coverage: 1 of 2 branches: As above.
    if (stream_ != nullptr) std::fclose(stream_);
    std::free(bytes_);
  }
  StandardErrorText(const StandardErrorText&) = delete;
  StandardErrorText& operator=(const StandardErrorText&) = delete;

  std::string Text() {
    // coverage: 3 of 6 branches: As above, and for the few lines that are written to it.
    if (stream_ == nullptr || std::fflush(stream_) != 0) return {};
    return {bytes_, size_};
  }

 private:
  std::FILE* const saved_ = stderr;
  char* bytes_ = nullptr;
  std::size_t size_ = 0;
  std::FILE* stream_;
};

}  // namespace

Options ParseOptions(int argumentCount, char* const arguments[]) {
  // The parser moves operands to the end; the caller's vector stays as it is.
  std::vector<char*> vector(arguments, arguments + argumentCount + 1);
  StandardErrorText diagnostic;
  Options options;
  optind = 0;  // makes the parser forget an earlier vector
  opterr = 1;
  for (;;) {
    switch (getopt_long(argumentCount, vector.data(), ShortOptions, LongOptions, nullptr)) {
      case EndOfOptions: return options;
      case 'v': options.verbose = true; break;
      case 'p': options.personalitiesDirectory = PersonalitiesDirectory(optarg); break;
      case 'X':
      case 's': break;  // accepted without effect
      case 'b': options.bypassVersionCheck = true; break;
      default:
        options.accepted = false;
        options.diagnostic = diagnostic.Text();
        return options;
    }
  }
}

}  // namespace fernwick
