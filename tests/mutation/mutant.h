// What mutated sources call (see scripts/mutate): each place where they may go wrong asks here
// whether it shall. The number of the one mutant that does is in the environment, in MUTANT.
// MUTANTS_REACHED names a file with a byte for each mutant, which is set to 1 when it is asked for.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <type_traits>

namespace mutant {

struct Choice {
  int chosen = 0;
  unsigned char* reached = nullptr;

  Choice() {
    if (const char* number = getenv("MUTANT")) chosen = atoi(number);
    if (const char* path = getenv("MUTANTS_REACHED")) open(path);
  }

 private:
  // Shared with the file: also a process that is killed has noted what it reached.
  void open(const char* path) {
    const int file = ::open(path, O_RDWR | O_CLOEXEC);
    struct stat state {};
    if (file < 0 || fstat(file, &state) != 0) abort();
    void* bytes = mmap(nullptr, static_cast<size_t>(state.st_size), PROT_READ | PROT_WRITE,
                       MAP_SHARED, file, 0);
    if (bytes == MAP_FAILED) abort();
    reached = static_cast<unsigned char*>(bytes);
    close(file);
  }
};

// Before all that initializers of the program compute.
inline Choice choice __attribute__((init_priority(101)));

inline bool isChosen(int number) {
  if (choice.reached != nullptr) choice.reached[number] = 1;
  return number == choice.chosen;
}

/// Whether mutant `number` is the one. What the compiler computes stays right.
constexpr bool is(int number) {
  if (std::is_constant_evaluated()) return false;
  return isChosen(number);
}

template <typename T>
constexpr bool turned(int number, T&& condition) {
  return static_cast<bool>(condition) != is(number);
}

#define MUTANT_OPERATOR(name, right, wrong)                                      \
  template <typename A, typename B>                                              \
  constexpr auto name(int number, A a, B b) {                                    \
    return is(number) ? static_cast<decltype(a right b)>(a wrong b) : a right b; \
  }
MUTANT_OPERATOR(equal, ==, !=)
MUTANT_OPERATOR(notEqual, !=, ==)
MUTANT_OPERATOR(plus, +, -)
MUTANT_OPERATOR(minus, -, +)
MUTANT_OPERATOR(times, *, +)
MUTANT_OPERATOR(over, /, *)
MUTANT_OPERATOR(modulo, %, *)
MUTANT_OPERATOR(leftBy, <<, >>)
MUTANT_OPERATOR(rightBy, >>, <<)
MUTANT_OPERATOR(bitAnd, &, |)
MUTANT_OPERATOR(bitOr, |, &)
MUTANT_OPERATOR(bitXor, ^, &)
#undef MUTANT_OPERATOR

// Two mutants each: the bound moved, and the comparison turned.
#define MUTANT_COMPARISON(name, right, moved, opposite) \
  template <typename A, typename B>                     \
  constexpr bool name(int number, A a, B b) {           \
    if (is(number)) return a moved b;                   \
    if (is(number + 1)) return a opposite b;            \
    return a right b;                                   \
  }
MUTANT_COMPARISON(less, <, <=, >=)
MUTANT_COMPARISON(lessOrEqual, <=, <, >)
MUTANT_COMPARISON(greater, >, >=, <=)
MUTANT_COMPARISON(greaterOrEqual, >=, >, <)
#undef MUTANT_COMPARISON

#define MUTANT_ASSIGNMENT(name, right, wrong) \
  template <typename A, typename B>           \
  constexpr A& name(int number, A& a, B b) {  \
    if (is(number)) return a wrong b;         \
    return a right b;                         \
  }
MUTANT_ASSIGNMENT(add, +=, -=)
MUTANT_ASSIGNMENT(subtract, -=, +=)
MUTANT_ASSIGNMENT(multiply, *=, +=)
MUTANT_ASSIGNMENT(divide, /=, *=)
MUTANT_ASSIGNMENT(setBits, |=, &=)
MUTANT_ASSIGNMENT(clearBits, &=, |=)
#undef MUTANT_ASSIGNMENT

template <typename T>
constexpr T& increment(int number, T& value) {
  return is(number) ? --value : ++value;
}

template <typename T>
constexpr T& decrement(int number, T& value) {
  return is(number) ? ++value : --value;
}

template <typename T>
constexpr T incrementAfter(int number, T& value) {
  return is(number) ? value-- : value++;
}

template <typename T>
constexpr T decrementAfter(int number, T& value) {
  return is(number) ? value++ : value--;
}

template <typename T>
constexpr auto negative(int number, const T& value) {
  return is(number) ? +value : -value;
}

/// Two mutants: one more, one less.
template <typename T>
constexpr T constant(int number, T value) {
  if (is(number)) return static_cast<T>(value + 1);
  if (is(number + 1)) return static_cast<T>(value - 1);
  return value;
}

/// What a function returns: 1 for 0, 0 for anything else.
template <typename T>
constexpr T result(int number, T value) {
  if (is(number)) return static_cast<T>(value == static_cast<T>(0) ? 1 : 0);
  return value;
}

template <typename T>
constexpr const T& larger(int number, const T& a, const T& b) {
  return (a < b) != is(number) ? b : a;
}

template <typename T>
constexpr const T& smaller(int number, const T& a, const T& b) {
  return (b < a) != is(number) ? b : a;
}

}  // namespace mutant
