#include "driver/options.h"

#include <getopt.h>

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

// Nothing is normalised: a payload "/a/" gives "/a//Fernwick/".
std::optional<std::string> PersonalitiesDirectory(std::string_view payload) {
  if (FindInvalidUtf8(payload) != NoPlace) return std::nullopt;
  return std::string(payload) + "/Fernwick/";
}

}  // namespace

Options ParseOptions(int argumentCount, char* const arguments[]) {
  // The parser moves operands behind the options; the caller's vector stays as it is.
  std::vector<char*> vector(arguments, arguments + argumentCount + 1);
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
      default: options.accepted = false; return options;
    }
  }
}

}  // namespace fernwick
