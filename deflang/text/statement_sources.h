// Statement sources: the statements of a definition text as their author wrote them, in little
// room.
//
// They are kept as long as the definitions, for whoever tells what has decided. Nothing that judges
// values looks at them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "deflang/expression/source_statement.h"

/// Filled while a text is read, in its order. A definition and a statement have numbers, by which
/// they are found: a statement takes three bytes beside its text without the keyword and the signs
/// around. Raises std::bad_alloc where memory is exhausted, or 4 GB are full.
class StatementSources {
 public:
  /// Begins the first definition of a name, on `line`. Returns its number, which is not 0.
  uint32_t beginDefinition(uint32_t line);
  /// Begins a further definition of the name whose first one has the number `definition`.
  void beginAgain(uint32_t definition);
  /// The number that the next statement will have.
  [[nodiscard]] uint32_t nextNumber() const { return numberAt(blocks_.back().size()); }
  /// Adds a statement to the definition that was begun last. Its keyword is `below` lines below the
  /// first name of its definition.
  void add(uint32_t below, std::string_view text);

  /// The line of the name of `definition`, where it first is.
  [[nodiscard]] uint32_t lineOf(uint32_t definition) const;
  /// A statement of `definition`; of its own number, the line of its name without a text.
  [[nodiscard]] SourceStatement statement(uint32_t definition, uint32_t number) const;
  /// All statements of `definition`, in the order of the text.
  [[nodiscard]] std::vector<SourceStatement> statementsOf(uint32_t definition) const;

 private:
  // Where a number leads.
  struct Place {
    size_t block;
    size_t at;
  };
  // A further definition of a name.
  struct Further {
    uint32_t definition;  // the first one
    uint32_t begin;       // of its statements
  };

  static constexpr unsigned BLOCK_BITS = 20;
  static constexpr size_t BLOCK_BYTES = size_t{1} << BLOCK_BITS;

  [[nodiscard]] uint32_t numberAt(size_t at) const {
    return static_cast<uint32_t>(((blocks_.size() - 1) << BLOCK_BITS) + at);
  }
  static Place placeOf(uint32_t number) { return {number >> BLOCK_BITS, number % BLOCK_BYTES}; }
  void append(std::string_view bytes, std::string_view more);
  void endDefinition();
  SourceStatement read(Place& place, uint32_t line) const;
  void readAll(Place place, uint32_t line, std::vector<SourceStatement>& out) const;

  // A definition is the number of its line and its statements; a further one has statements alone.
  // A zero is behind each. A statement is how far it is below the definition and one, its head and
  // tail, the length of the rest, and that. The first byte of all belongs to nothing.
  //
  // What begins in a block ends in it, so that the last of a block may go beyond BLOCK_BYTES. In
  // one piece instead, which grows, 100,000 definitions take 2 % longer to read.
  std::deque<std::string> blocks_{std::string(1, '\0')};
  std::vector<Further> further_;  // few texts have any
};
