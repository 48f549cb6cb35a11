// Bounds: the values a parameter or an index may take, and the correction of any other value.
//
//   rangeValid { 0..9, 20..29, "auto", "off" }   is a BoundsParm with the spans [0, 9] and [20, 29]
//                                                and the texts auto (the correction) and off
//
//   value   accepted   corrected
//   "5"     yes
//   "12"    no         "20"     between two spans: up
//   "40"    no         "29"     beyond the last: to its end
//   "off"   yes
//   "on"    no         "auto"   a text: the first text of the range
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/boxed.h"
#include "deflang/expression/program.h"

/// What becomes of a number outside its range. No statement of a definition text asks for
/// OVERFLOW_WRAP: the bounds of the daemon all saturate.
enum overflow_t {
  OVERFLOW_WRAP = 0,      ///< goes on from the other end, modulo the range
  OVERFLOW_SATURATE = 1,  ///< stops at the nearer end; any other value but 0 acts alike
};

/// Integers from first to second, both inclusive.
using Span = std::pair<int, int>;
/// Several spans; where a function wants them in order, areOrdered() says in which.
using Spans = std::vector<Span>;

/// Brings `value` into [min, max], both ends inclusive. In [0, 9], wrapping gives 5 for 25 and 9
/// for -11. `max` < `min` is a programming error and stops the program.
int rangeCheck(overflow_t mode, int value, int min, int max);

/// Brings `value` into spans for which areOrdered() is true. A value beyond both ends is treated by
/// `mode`, as rangeCheck() does from the first low to the last high. A value between two spans
/// becomes the upper one's low when `roundUp` is set, else the lower one's high: 12 in
/// {[0, 9], [20, 29]} gives 20 or 9. Without spans, returns `value` itself.
/// Takes time logarithmic in the number of spans.
int limitToSpans(int value, bool roundUp, overflow_t mode, const Spans& spans);

/// Whether the spans are as limitToSpans wants them: each with low <= high, ascending, with at
/// least one number left out between neighbours. True without spans. Takes linear time.
bool areOrdered(const Spans& spans);

/// What all kinds of bounds can do. ConditionalBounds owns its bounds through this class, so the
/// destructor is virtual. The daemon always knows the kind when it calls another function here;
/// these are virtual so that every kind has the same ones.
///
/// All kinds but BoundsExpression take time logarithmic in the number of their entries for a check.
class Bounds {
 public:
  virtual ~Bounds() = default;
  /// Whether `value` lies within the bounds. With `fix` set, a value that does not is replaced by
  /// its correction; without, `value` never changes. May raise std::bad_alloc or WorkExceeded;
  /// `value` is then as before.
  [[nodiscard]] virtual bool check(std::string& value, bool fix) const = 0;
  /// Whether the bounds themselves are well formed. For assertions and tests: what the builder
  /// makes is.
  [[nodiscard]] virtual bool isConsistent() const = 0;
  /// How many entries there are: texts, spans or items.
  [[nodiscard]] virtual size_t count() const = 0;
  /// Removes all entries.
  virtual void clear() = 0;
};

/// A set of allowed texts. An empty set allows every text. Most ranges have no texts, so the set
/// takes memory only once there is one.
class BoundsString final : public Bounds {
 public:
  /// Accepts exactly the allowed texts, and every text where there are none; corrects to
  /// correction().
  [[nodiscard]] bool check(std::string& value, bool fix) const override;
  /// Always true.
  [[nodiscard]] bool isConsistent() const override { return true; }
  /// How many distinct texts are allowed.
  [[nodiscard]] size_t count() const override { return entries_->allowed.size(); }
  /// Empties the set; the correction stays.
  void clear() override;
  /// Adds `text`; the first text ever added is also the correction.
  /// Returns 0, also where `text` is allowed already, or 1 for the empty text, which changes
  /// nothing. Where memory runs out (std::bad_alloc), the set is as before, but its first text may
  /// be the correction already.
  int addText(const std::string& text);
  /// The allowed texts, ascending by their bytes. The reference is valid until the next addText().
  [[nodiscard]] const std::set<std::string>& texts() const { return entries_->allowed; }
  /// What a text that is not allowed becomes; empty while no text was ever added. The reference is
  /// valid until the next addText().
  [[nodiscard]] const std::string& correction() const { return entries_->correction; }

 private:
  struct Entries {
    std::string correction;
    std::set<std::string> allowed;
  };
  Boxed<Entries> entries_;
};

/// Integer spans, ascending, with at least one number left out between neighbours.
class BoundsInteger final : public Bounds {
 public:
  /// No spans; `overflow` is what becomes of a number beyond both ends.
  explicit BoundsInteger(overflow_t overflow = OVERFLOW_SATURATE) : overflow_(overflow) {}
  /// Accepts a number text (see wholeNumber(); the empty text is 0) within a span, or any number
  /// text where there are no spans. A number outside is corrected as by limitToSpans(), rounding
  /// up. A text that is no number becomes what 0 would: "0" itself where 0 is allowed. A
  /// correction is in decimal.
  [[nodiscard]] bool check(std::string& value, bool fix) const override;
  /// As the other check(), for a caller that has converted `value` already: `number` is
  /// wholeNumber(value).
  bool check(std::string& value, std::optional<int32_t> number, bool fix) const;
  /// Always true: addSpan() refuses what is not in order, and spans() joins the rest.
  [[nodiscard]] bool isConsistent() const override { return areOrdered(spans()); }
  /// How many spans there are once all that touch are joined.
  [[nodiscard]] size_t count() const override { return spans().size(); }
  /// Removes all spans; what becomes of a number beyond both ends stays.
  void clear() override;
  /// Adds the span [low, high], both inclusive, joined with every span that it overlaps or
  /// touches: [4, 9] added to {[0, 3]} gives {[0, 9]}.
  /// Returns 0, or 1 when `high` < `low`; the spans are then as before, as they are where memory
  /// runs out (std::bad_alloc).
  int addSpan(int low, int high);
  /// The spans, for which areOrdered() is true. The reference is valid until the next addSpan() or
  /// clear(). The first call after an addSpan() may have to sort n spans, in time n log n; the
  /// others only return the reference.
  [[nodiscard]] const Spans& spans() const;

 private:
  // As they were added, until spans() is asked for: then in order, and joined. That a question
  // brings them in order is seen by nobody, and the process has one thread; hence `mutable`.
  mutable Spans spans_;
  mutable bool inOrder_ = true;
  overflow_t overflow_;
};

/// Allowed texts and integer spans together: the range of a statement whose values are known, or of
/// a run-time range in one situation. Without any entries, every value is accepted.
class BoundsParm final : public Bounds {
 public:
  /// Which entries judge `value`:
  ///
  ///   entries         a number   the empty text                   any other text
  ///   texts only      the texts  the texts                        the texts
  ///   spans only      the spans  refused; corrected as 0 would    the spans: refused
  ///                              be, so kept where 0 is allowed
  ///   texts, spans    the spans  the texts                        the texts
  [[nodiscard]] bool check(std::string& value, bool fix) const override;
  /// Always true, as its texts and its spans are.
  [[nodiscard]] bool isConsistent() const override;
  /// How many texts and spans there are together.
  [[nodiscard]] size_t count() const override { return strings_.count() + integers_.count(); }
  /// Removes all texts and spans; the correction of the texts stays.
  void clear() override;
  /// Adds what `text` means: the span [n, n] for a number text (the empty text counts as 0), else
  /// the text. "0x10" adds [16, 16], "auto" adds the text. Returns 0: neither can be refused.
  int addValue(const std::string& text);
  /// The texts, to be added to. The reference is valid as long as the object, as those below are.
  [[nodiscard]] BoundsString& strings() { return strings_; }
  /// The texts.
  [[nodiscard]] const BoundsString& strings() const { return strings_; }
  /// The spans, to be added to.
  [[nodiscard]] BoundsInteger& integers() { return integers_; }
  /// The spans.
  [[nodiscard]] const BoundsInteger& integers() const { return integers_; }

 private:
  BoundsString strings_;
  BoundsInteger integers_;
};

/// A run-time range: spans and texts that are computed in a situation. With { 0..(last), "off" },
/// and `last` holding 7, evaluate() gives the span [0, 7] and the text off.
class BoundsExpression final : public Bounds {
 public:
  /// A single value, or a span where there is an upper program.
  struct Item {
    Program lower;                 ///< the value, or the low end
    std::optional<Program> upper;  ///< the high end; nullopt for a single value
    /// Whether a single text means itself, also one that could be a number: "7" is then a text.
    bool quoted = false;
  };
  /// Judges in a situation without any variable; while an item has no value there, every value is
  /// accepted and left alone. Evaluates every item in each call: to judge in a situation, see
  /// PresentBounds.
  [[nodiscard]] bool check(std::string& value, bool fix) const override;
  /// False when an item that uses no variables can never be evaluated. Items that use variables
  /// are passed over.
  [[nodiscard]] bool isConsistent() const override;
  /// How many items there are.
  [[nodiscard]] size_t count() const override { return items_.size(); }
  /// The items, in their order. Valid until one is added.
  [[nodiscard]] std::span<const Item> items() const { return items_; }
  /// Removes all items.
  void clear() override { items_.clear(); }
  /// Adds an item behind the others. Its programs have the slots of the definition's variables.
  void addItem(Item item) { items_.push_back(std::move(item)); }
  /// What evaluate() costs, in units of work, beside the work on texts. The caller counts it.
  [[nodiscard]] uint64_t work() const;
  /// Adds what the items are in a situation to `out`, in order, up to the first that fails; those
  /// before it stay in `out`. Returns
  ///    0  every item has its value;
  ///   -1  a lower or upper program is empty;
  ///   -2  a lower value is neither a number nor a text: it is undefined or has no result;
  ///   -3  a lower value with an upper one is no number;
  ///   -4  an upper value is no number;
  ///   -5  a lower value is greater than its upper one.
  /// queryRange() hands these on. May raise std::bad_alloc or WorkExceeded.
  int evaluate(BoundsParm& out, const SituationView& situation) const {
    return evaluate(out, items_, situation);
  }
  /// As the other evaluate(), for items that belong to no bounds: the builder's.
  static int evaluate(BoundsParm& out, std::span<const Item> items, const SituationView& situation);

 private:
  std::vector<Item> items_;
};
