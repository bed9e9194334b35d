// The first file that is included in the build of quality/mutate.py. All mutants of a file are
// compiled together; at run time the environment variable MUTANT chooses one.

#include <cstdio>
#include <cstdlib>

namespace mutant {

/// Whether this mutant is chosen. Its number is appended to the file that MUTANT_NOTES names.
inline bool IsChosen(int number) {
  static const char* const chosen = std::getenv("MUTANT");
  static const char* const path = std::getenv("MUTANT_NOTES");
  static bool noted[65536];
  if (path != nullptr && !noted[number]) {
    noted[number] = true;
    std::FILE* notes = std::fopen(path, "a");
    std::fprintf(notes, "%d\n", number);
    std::fclose(notes);
  }
  return chosen != nullptr && std::atoi(chosen) == number;
}

/// The same; false where the compiler evaluates the expression.
constexpr bool On(int number) {
  return !__builtin_is_constant_evaluated() && IsChosen(number);
}

}  // namespace mutant
