// Work: what a request costs, counted and not timed, and the budget that no request may pass.
//
// The unit is about a nanosecond of the machine that docs/reliability.md names. The count follows
// from the definitions, the values and the request alone, so it is the same on every machine and
// in every build.
//
//   Work::begin();                 // the frame of a method
//   Work::spendOn(parm.name());    // for the log, should the budget be passed
//   Work::add(300);                // before the work; raises WorkExceeded
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

/// The exception that passing the budget raises. It travels as std::bad_alloc does, and the frame
/// of all methods makes an error of both. It has no content: the log line comes from
/// Work::exceededText().
struct WorkExceeded {};

/// The work of the request that is being served. All is static, because the process has one thread
/// and serves one request at a time; so no function needs to hand a counter on.
class Work {
 public:
  /// Begins to count a request that may cost `budget` units; what was counted before is forgotten.
  /// Until the first call the budget is UINT64_MAX, so reading a text has no limit.
  static void begin(uint64_t budget = WORK_BUDGET) {
    budget_ = budget;
    left_ = budget;
    subject_ = nullptr;
  }
  /// Counts `units` that are about to be spent. Raises WorkExceeded where they pass the budget; all
  /// that is left is then taken, so every later add() of more than 0 raises too.
  static void add(uint64_t units) {
    if (units > left_) exceed(units);
    left_ -= units;
  }
  /// Raises WorkExceeded as add() does, but counts nothing otherwise: for a request whose pieces
  /// count their units later, and which must not begin where it cannot end.
  static void require(uint64_t units) {
    if (units > left_) exceed(units);
  }
  /// Counts `units` that were spent already, at most what is left. Raises nothing: for a line that
  /// is logged, maybe because the budget was passed.
  static void addSpent(uint64_t units) { left_ -= units < left_ ? units : left_; }
  /// Whether `units` more are within the budget.
  [[nodiscard]] static bool allows(uint64_t units) { return units <= left_; }
  /// How many units were counted since begin(); never more than budget().
  [[nodiscard]] static uint64_t done() { return budget_ - left_; }
  /// How many units the request may cost.
  [[nodiscard]] static uint64_t budget() { return budget_; }
  /// Notes the parameter or index that the work is spent on from now on. `name` is not copied, and
  /// has to outlive the request.
  static void spendOn(const std::string& name) { subject_ = &name; }
  /// The line for the system log after WorkExceeded, such as
  ///
  ///   work: ERROR "gain": 2000000300 units of work, 2000000000 allowed
  ///
  /// with the name of spendOn(), which is empty where there was none. May raise std::bad_alloc.
  [[nodiscard]] static std::string exceededText();

 private:
  [[noreturn]] static void exceed(uint64_t units);

  inline static uint64_t budget_ = UINT64_MAX;
  inline static uint64_t left_ = UINT64_MAX;
  inline static uint64_t wanted_ = 0;  // all units with those that passed the budget
  inline static const std::string* subject_ = nullptr;
};

/// a + b, or UINT64_MAX where the sum is larger. A text can be made whose instances cost more.
constexpr uint64_t addedWork(uint64_t a, uint64_t b) {
  uint64_t sum = 0;
  return __builtin_add_overflow(a, b, &sum) ? UINT64_MAX : sum;
}
/// a * b, or UINT64_MAX where the product is larger.
constexpr uint64_t multipliedWork(uint64_t a, uint64_t b) {
  uint64_t product = 0;
  return __builtin_mul_overflow(a, b, &product) ? UINT64_MAX : product;
}

/// `units` in half the space, for the figures that every definition keeps; UINT32_MAX where they do
/// not fit. That loses no refusal, because UINT32_MAX units are more than the budget too.
constexpr uint32_t fittingWork(uint64_t units) {
  static_assert(UINT32_MAX > WORK_BUDGET);
  return static_cast<uint32_t>(units < UINT32_MAX ? units : UINT32_MAX);
}

/// How a log line says that a request was too much: "NEEDED units of work, ALLOWED allowed", both
/// in decimal.
std::string workText(uint64_t needed, uint64_t allowed);
