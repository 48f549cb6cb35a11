// Bounds: the values a parameter or an index may take, and the correction of any other value.
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

/// What becomes of a number outside its range.
enum overflow_t {
  OVERFLOW_WRAP = 0,      ///< goes on from the other end, modulo the range
  OVERFLOW_SATURATE = 1,  ///< stops at the nearer end; any other value but 0 acts alike
};

/// Integers from first to second, both inclusive.
using Span = std::pair<int, int>;
using Spans = std::vector<Span>;

/// Brings `value` into [min, max], both ends inclusive. In [0, 9], wrapping gives 5 for 25 and 9
/// for -11. `max` < `min` is a programming error and stops the program.
int rangeCheck(overflow_t mode, int value, int min, int max);

/// The allowed value nearest to `value` in ascending spans; between two spans the upper one's low
/// when `roundUp` is set, else the lower one's high. Without spans, `value` itself.
int limitToSpans(int value, bool roundUp, overflow_t mode, const Spans& spans);

/// Whether the spans are as limitToSpans wants them: each with low <= high, ascending, with at
/// least one number left out between neighbours.
bool areOrdered(const Spans& spans);

class Bounds {
 public:
  virtual ~Bounds() = default;
  /// Whether `value` lies within the bounds; with `fix` set, a value that does not is replaced by
  /// its correction.
  [[nodiscard]] virtual bool check(std::string& value, bool fix) const = 0;
  /// Whether the bounds themselves are well formed.
  [[nodiscard]] virtual bool isConsistent() const = 0;
  /// How many entries there are.
  [[nodiscard]] virtual size_t count() const = 0;
  /// Removes all entries.
  virtual void clear() = 0;
};

/// A set of allowed texts. An empty set allows every text.
class BoundsString final : public Bounds {
 public:
  [[nodiscard]] bool check(std::string& value, bool fix) const override;
  [[nodiscard]] bool isConsistent() const override { return true; }
  [[nodiscard]] size_t count() const override { return entries_->allowed.size(); }
  /// Empties the set; the correction stays.
  void clear() override;
  /// Adds `text`; the first text ever added is also the correction.
  /// Returns 0, or 1 for the empty text; nothing is then changed.
  int addText(const std::string& text);
  [[nodiscard]] const std::set<std::string>& texts() const { return entries_->allowed; }
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
  explicit BoundsInteger(overflow_t overflow = OVERFLOW_SATURATE) : overflow_(overflow) {}
  [[nodiscard]] bool check(std::string& value, bool fix) const override;
  /// The same, where it is known what number `value` is, if it is one.
  bool check(std::string& value, std::optional<int32_t> number, bool fix) const;
  [[nodiscard]] bool isConsistent() const override { return areOrdered(spans()); }
  [[nodiscard]] size_t count() const override { return spans().size(); }
  void clear() override;
  /// Adds the span [low, high], both inclusive, joined with every span that it overlaps or
  /// touches: [4, 9] added to {[0, 3]} gives {[0, 9]}.
  /// Returns 0, or 1 when `high` < `low`; the spans are then as before.
  int addSpan(int low, int high);
  [[nodiscard]] const Spans& spans() const;

 private:
  // As they were added, until spans() is asked for.
  mutable Spans spans_;
  mutable bool inOrder_ = true;
  overflow_t overflow_;
};

/// Allowed texts and integer spans together. A number is held against the spans where there are
/// any, every other text against the texts where there are any.
class BoundsParm final : public Bounds {
 public:
  [[nodiscard]] bool check(std::string& value, bool fix) const override;
  [[nodiscard]] bool isConsistent() const override;
  [[nodiscard]] size_t count() const override { return strings_.count() + integers_.count(); }
  void clear() override;
  /// Adds what `text` means: the span [n, n] for a number text (the empty text counts as 0), else
  /// the text. Returns 0, or the refusal of the member that it went to.
  int addValue(const std::string& text);
  [[nodiscard]] BoundsString& strings() { return strings_; }
  [[nodiscard]] const BoundsString& strings() const { return strings_; }
  [[nodiscard]] BoundsInteger& integers() { return integers_; }
  [[nodiscard]] const BoundsInteger& integers() const { return integers_; }

 private:
  BoundsString strings_;
  BoundsInteger integers_;
};

/// Spans and texts that are computed in a situation.
class BoundsExpression final : public Bounds {
 public:
  /// A single value, or a span where there is an upper program.
  struct Item {
    Program lower;
    std::optional<Program> upper;
    /// Whether a single text means itself, also one that could be a number.
    bool quoted = false;
  };
  /// Judges in a situation without any variable; while an item has no value there, every value is
  /// accepted and left alone.
  [[nodiscard]] bool check(std::string& value, bool fix) const override;
  /// False when an item that uses no variables can never be evaluated. Items that use variables
  /// are passed over.
  [[nodiscard]] bool isConsistent() const override;
  [[nodiscard]] size_t count() const override { return items_.size(); }
  void clear() override { items_.clear(); }
  void addItem(Item item) { items_.push_back(std::move(item)); }
  /// What evaluate() costs, in units of work, beside the texts.
  [[nodiscard]] uint64_t work() const;
  /// Adds what the items are in a situation to `out`, in order, up to the first that fails.
  /// Returns 0; -1 when a lower or upper program is empty; -2 when a lower value is neither a
  /// number nor a text; -3 when a lower value with an upper one is no number; -4 when an upper
  /// value is no number; -5 when a lower value is greater than its upper one.
  int evaluate(BoundsParm& out, const SituationView& situation) const {
    return evaluate(out, items_, situation);
  }
  /// The same for any items.
  static int evaluate(BoundsParm& out, std::span<const Item> items, const SituationView& situation);

 private:
  std::vector<Item> items_;
};
