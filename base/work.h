// Work: what a request costs, counted and not timed, and the budget that no request may pass.
//
// The unit is about a nanosecond of the machine that docs/reliability.md names. The count follows
// from the definitions, the values and the request alone, so it is the same on every machine and
// in every build.
#pragma once

#include <cstdint>
#include <string>

/// What one request may cost, in units: about two seconds, during which nobody else is served.
constexpr uint64_t WORK_BUDGET = 2'000'000'000;

// What is counted, in units.
constexpr uint64_t WORK_PER_STEP = 2;         ///< an operator or operand that is evaluated
constexpr uint64_t WORK_PER_PROGRAM = 5;      ///< an expression that is evaluated
constexpr uint64_t WORK_PER_CANDIDATE = 10;   ///< conditional bounds that are asked
constexpr uint64_t WORK_PER_ITEM = 50;        ///< an item of a range that is worked out
constexpr uint64_t WORK_PER_NAME = 20;        ///< a variable that is given its value
constexpr uint64_t WORK_PER_INSTANCE = 300;   ///< an instance that is evaluated
constexpr uint64_t WORK_PER_INDEX = 200;      ///< an index value that it has
constexpr uint64_t WORK_PER_REFERENCE = 300;  ///< a name that a parameter is found to depend on
constexpr uint64_t WORK_PER_REQUEST = 300;    ///< a name of a request that is looked up or staged
constexpr uint64_t WORK_PER_COMPARISON = 25;  ///< of two names that are put in order
constexpr uint64_t WORK_PER_LOG_LINE = 2000;  ///< a line for the system log
constexpr uint64_t WORK_PER_SEARCHED_BYTE = 4;
constexpr uint64_t WORK_PER_VALUE_BYTE = 4;  ///< of a value on its way through an evaluation
// Any other byte that is copied or compared is one unit.

/// What passing the budget raises. It travels as exhausted memory does, and ends in the same place:
/// the frame of all methods.
struct WorkExceeded {};

/// The work of the request that is being served. There is one at a time.
class Work {
 public:
  /// Begins to count; before the first request there is no limit.
  static void begin(uint64_t budget = WORK_BUDGET) {
    budget_ = budget;
    left_ = budget;
    subject_ = nullptr;
  }
  /// Counts `units` that are about to be spent. Raises WorkExceeded where they pass the budget; all
  /// that is left is then taken.
  static void add(uint64_t units) {
    if (units > left_) exceed(units);
    left_ -= units;
  }
  /// Raises WorkExceeded as add() does, but counts nothing: for what is counted piece by piece
  /// later and must not begin where it cannot end.
  static void require(uint64_t units) {
    if (units > left_) exceed(units);
  }
  /// Counts what was spent already, and raises nothing.
  static void addSpent(uint64_t units) { left_ -= units < left_ ? units : left_; }
  /// Whether `units` more are within the budget.
  [[nodiscard]] static bool allows(uint64_t units) { return units <= left_; }
  /// What was counted since begin().
  [[nodiscard]] static uint64_t done() { return budget_ - left_; }
  [[nodiscard]] static uint64_t budget() { return budget_; }
  /// Notes the parameter that the work is spent on from now on. The name outlives the request.
  static void spendOn(const std::string& name) { subject_ = &name; }
  /// For the system log, after WorkExceeded: at which parameter, and how much was wanted.
  [[nodiscard]] static std::string exceededText();

 private:
  [[noreturn]] static void exceed(uint64_t units);

  inline static uint64_t budget_ = UINT64_MAX;
  inline static uint64_t left_ = UINT64_MAX;
  inline static uint64_t wanted_ = 0;  // by what passed the budget
  inline static const std::string* subject_ = nullptr;
};

/// a + b and a * b, or the largest number where that is larger.
constexpr uint64_t addedWork(uint64_t a, uint64_t b) {
  uint64_t sum = 0;
  return __builtin_add_overflow(a, b, &sum) ? UINT64_MAX : sum;
}
constexpr uint64_t multipliedWork(uint64_t a, uint64_t b) {
  uint64_t product = 0;
  return __builtin_mul_overflow(a, b, &product) ? UINT64_MAX : product;
}

/// The same in less space. What does not fit is more than the budget, so it may be less than it
/// was.
constexpr uint32_t fittingWork(uint64_t units) {
  static_assert(UINT32_MAX > WORK_BUDGET);
  return static_cast<uint32_t>(units < UINT32_MAX ? units : UINT32_MAX);
}

/// "NEEDED units of work, ALLOWED allowed".
std::string workText(uint64_t needed, uint64_t allowed);
