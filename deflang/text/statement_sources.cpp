#include "deflang/text/statement_sources.h"

#include <iterator>
#include <limits>
#include <new>

#include "base/packed_number.h"

namespace {

// How most statements begin and end. They count from 0, and fit in one byte together.
constexpr std::string_view HEADS[] = {
    "",
    "index { ",
    "valueChange { ",
    "ctrlRO (",
    "ctrlValid (",
    "rangeDoc (",
    "rangeDoc { ",
    "default (",
    "rangeValid (",
    "default { ",
    "rangeValid { ",
};
constexpr std::string_view TAILS[] = {"", "}", ")", " }"};
static_assert(std::size(HEADS) * std::size(TAILS) <= 256);

// The place of the head that `text` begins with. Comparing the first letter alone leaves few.
size_t headOf(std::string_view text) {
  size_t place = std::size(HEADS) - 1;
  while (place > 0 && (HEADS[place][0] != text[0] || !text.starts_with(HEADS[place]))) --place;
  return place;
}

// The place of the tail that `text` ends in, the longer one of two.
size_t tailOf(std::string_view text) {
  size_t place = std::size(TAILS) - 1;
  while (!text.ends_with(TAILS[place])) --place;  // the first is empty
  return place;
}

}  // namespace

uint32_t StatementSources::beginDefinition(uint32_t line) {
  endDefinition();
  const uint32_t definition = nextNumber();
  char packed[MOST_PACKED_BYTES];
  append({packed, packNumber(line, packed)}, {});
  return definition;
}

void StatementSources::beginAgain(uint32_t definition) {
  endDefinition();
  further_.push_back({definition, nextNumber()});
}

void StatementSources::endDefinition() {
  if (nextNumber() > 1) append(std::string_view("\0", 1), {});
}

void StatementSources::add(uint32_t below, std::string_view text) {
  const size_t head = headOf(text);
  text.remove_prefix(HEADS[head].size());
  const size_t tail = tailOf(text);
  text.remove_suffix(TAILS[tail].size());
  char packed[2 * MOST_PACKED_BYTES + 1];
  char* end = packNumber(below + 1, packed);
  *end++ = static_cast<char>(head * std::size(TAILS) + tail);
  end = packNumber(static_cast<uint32_t>(text.size()), end);
  append({packed, end}, text);
}

// Adds what is to be in one block, and begins a new one where that is full.
void StatementSources::append(std::string_view bytes, std::string_view more) {
  std::string& block = blocks_.back();
  block += bytes;
  block += more;
  if (block.size() < BLOCK_BYTES) return;
  if (numberAt(0) > std::numeric_limits<uint32_t>::max() - BLOCK_BYTES) throw std::bad_alloc();
  constexpr size_t BEYOND = 4096;  // most statements are shorter
  blocks_.emplace_back().reserve(BLOCK_BYTES + BEYOND);
}

uint32_t StatementSources::lineOf(uint32_t definition) const {
  Place place = placeOf(definition);
  return unpackNumber(blocks_[place.block], place.at);
}

SourceStatement StatementSources::statement(uint32_t definition, uint32_t number) const {
  const uint32_t line = lineOf(definition);
  if (number == definition) return {line, {}};
  Place place = placeOf(number);
  return read(place, line);
}

std::vector<SourceStatement> StatementSources::statementsOf(uint32_t definition) const {
  std::vector<SourceStatement> statements;
  Place place = placeOf(definition);
  const uint32_t line = unpackNumber(blocks_[place.block], place.at);
  readAll(place, line, statements);
  for (const Further& further : further_) {
    if (further.definition == definition) readAll(placeOf(further.begin), line, statements);
  }
  return statements;
}

// Reads the statement at `place`, of a definition on `line`, and goes past it.
SourceStatement StatementSources::read(Place& place, uint32_t line) const {
  const std::string& block = blocks_[place.block];
  SourceStatement statement = {line + unpackNumber(block, place.at) - 1, {}};
  const auto form = static_cast<unsigned char>(block[place.at++]);
  const uint32_t length = unpackNumber(block, place.at);
  statement.text = HEADS[form / std::size(TAILS)];
  statement.text.append(block, place.at, length).append(TAILS[form % std::size(TAILS)]);
  place.at += length;
  return statement;
}

void StatementSources::readAll(Place place, uint32_t line,
                               std::vector<SourceStatement>& out) const {
  for (;;) {
    const bool isAtEnd = place.at >= blocks_[place.block].size();
    if (isAtEnd && place.block + 1 < blocks_.size()) place = {place.block + 1, 0};
    const std::string& block = blocks_[place.block];
    if (place.at >= block.size() || block[place.at] == '\0') return;
    out.push_back(read(place, line));
  }
}
