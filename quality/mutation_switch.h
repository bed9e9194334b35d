#pragma once

// Included into a file that is compiled once with many changes in it, each made only in a process
// that is told its number. Where the compiler evaluates an expression none is made.

#include <cstdio>
#include <cstdlib>
#include <type_traits>

namespace mutant {

/// Notes, once for each change, that its place was reached: a line in the file of that name.
inline void Note(const char* file, int number) {
  static bool noted[65536];
  if (noted[number]) return;
  noted[number] = true;
  std::FILE* notes = std::fopen(file, "a");
  std::fprintf(notes, "%d\n", number);
  std::fclose(notes);
}

inline bool IsChosen(int number) {
  static const char* const choice = std::getenv("MUTANT_CHOSEN");
  static const int chosen = choice == nullptr ? -1 : std::atoi(choice);
  static const char* const notes = std::getenv("MUTANT_NOTES");
  if (notes != nullptr) Note(notes, number);
  return number == chosen;
}

/// Whether the change of that number is made.
constexpr bool On(int number) {
  if (std::is_constant_evaluated()) return false;
  return IsChosen(number);
}

template <int Number>
constexpr bool Flip(bool condition) {
  return On(Number) != condition;
}

/// Not<N>() ->* !x is x where the change is made.
template <int Number>
struct Not {
  constexpr bool operator->*(bool negated) const { return Flip<Number>(negated); }
};

/// a < Comparison<'<', N, M>() < b compares as that operator does, or as its first or second
/// substitute where change N or M is made. 'l' and 'g' stand for <= and >=.
template <char Operator, int First, int Second>
struct Comparison {};

template <char Operator, typename A, typename B>
constexpr bool Compare(const A& a, const B& b) {
  if constexpr (Operator == '=') return static_cast<bool>(a == b);
  if constexpr (Operator == '!') return static_cast<bool>(a != b);
  if constexpr (Operator == '<') return static_cast<bool>(a < b);
  if constexpr (Operator == 'l') return static_cast<bool>(a <= b);
  if constexpr (Operator == '>') return static_cast<bool>(a > b);
  if constexpr (Operator == 'g') return static_cast<bool>(a >= b);
}

constexpr char FirstSubstitute(char operation) {
  switch (operation) {
    case '=': return '!';
    case '!': return '=';
    case '<': return 'l';
    case 'l': return '<';
    case '>': return 'g';
    default: return '>';
  }
}

constexpr char SecondSubstitute(char operation) {
  switch (operation) {
    case '<': return 'g';
    case 'l': return '>';
    case '>': return 'l';
    case 'g': return '<';
    default: return operation;
  }
}

template <typename A, char Operator, int First, int Second>
struct LeftSide {
  const A& a;

  template <typename B>
  constexpr bool With(const B& b) const {
    if (On(First)) return Compare<FirstSubstitute(Operator)>(a, b);
    if (Second >= 0 && On(Second)) return Compare<SecondSubstitute(Operator)>(a, b);
    return Compare<Operator>(a, b);
  }
};

#define MUTANT_COMPARISON(operation)                                                      \
  template <typename A, char Operator, int First, int Second>                             \
  constexpr LeftSide<A, Operator, First, Second> operator operation(                      \
      const A& a, Comparison<Operator, First, Second>) {                                  \
    return {a};                                                                           \
  }                                                                                       \
  template <typename A, char Operator, int First, int Second, typename B>                 \
  constexpr bool operator operation(LeftSide<A, Operator, First, Second> a, const B& b) { \
    return a.With(b);                                                                     \
  }

MUTANT_COMPARISON(==)
MUTANT_COMPARISON(!=)
MUTANT_COMPARISON(<)
MUTANT_COMPARISON(<=)
MUTANT_COMPARISON(>)
MUTANT_COMPARISON(>=)

#undef MUTANT_COMPARISON

}  // namespace mutant
