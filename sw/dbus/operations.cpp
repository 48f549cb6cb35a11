#include "sw/dbus/operations.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "database/commit.h"
#include "database/dependencies.h"
#include "database/index_query.h"
#include "database/range_query.h"
#include "sw/dbus/errors.h"
#include "sw/dbus/publish.h"
#include "sw/dbus/range_set.h"
#include "sw/dbus/reply.h"
#include "sw/dbus/service_state.h"
#include "sw/dbus/spare_memory.h"
#include "sw/parm/parm_name.h"

namespace {

// What messages call the replies.
const char* const VALUES = "parmValue";
const char* const TEXT_RANGE = "idxStrRange";
const char* const DEPENDENCIES = "parmDep";

// An unknown name reads as the empty text.
std::string_view orEmpty(const std::string* text) {
  return text == nullptr ? std::string_view("") : *text;
}

void announce(std::vector<Change> changes, CommitRecord record, ValueObject* object) {
  publish(object, changes);
  ServiceState::current().committed(std::move(changes), std::move(record));
}

// Adds the values of names that are looked up together, up to the first that is too much for a
// message.
void addTexts(const Transaction& transaction, std::span<char* const> names, TextList& list) {
  std::array<const std::string*, Database::NAMES_TOGETHER> texts;
  transaction.findAll(names, texts);
  for (size_t i = 0; i < names.size() && list.bytes() <= MAX_MESSAGE_BYTES; ++i) {
    list.add(orEmpty(texts[i]));
  }
}

template <typename Texts>
int packTexts(const char* what, const Texts& texts, char*** reply) {
  TextList list(what, texts.size());
  list.addAll(texts);
  if (list.bytes() > MAX_MESSAGE_BYTES) return INTERNAL_ERROR;
  requireMessageMemory(list.bytes());
  *reply = list.release();
  return 0;
}

template <typename Texts>
int packRange(const Texts& texts, const Spans& spans, char*** textReply, GPtrArray** spanReply) {
  if (spans.size() * STRUCT_MEMORY > MAX_REPLY_MEMORY) return INTERNAL_ERROR;
  TextList textList(TEXT_RANGE, texts.size());
  textList.addAll(texts);
  const size_t bytes = textList.bytes() + spans.size() * SPAN_BYTES;
  if (bytes > MAX_MESSAGE_BYTES) return INTERNAL_ERROR;
  requireMemory(spans.size() * STRUCT_MEMORY + COPIES_IN_MESSAGE * bytes);
  StructArray spanArray;
  for (const Span& span : spans) spanArray.addSpan(span);
  *textReply = textList.release();
  *spanReply = spanArray.release();
  return 0;
}

// What the ranges of a name take as structures, and in the message that is made of them. The gap
// between two structures is no longer than a span.
size_t memoryToPack(const RangeSet::NamedRange& range) {
  constexpr size_t COPIES = 1 + COPIES_IN_MESSAGE;
  const size_t each = bytesInMessage(range.name.size()) + 2 * SPAN_BYTES;
  size_t memory = range.bounds->count() * (STRUCT_MEMORY + COPIES * each);
  for (const std::string& text : range.bounds->strings().texts()) {
    memory += COPIES * bytesInMessage(text.size());
  }
  return memory;
}

}  // namespace

int inNewTransaction(const std::function<int(Transaction&)>& operation) {
  ServiceState& state = ServiceState::current();
  uint32_t id = 0;
  if (state.transactions().useId(id) != 0) return UNKNOWN_TRANSACTION;
  Transaction transaction(state.database());
  return operation(transaction);
}

int getText(Transaction& transaction, const char* name, char** value) {
  const NewText text = newText({orEmpty(transaction.find(name))});
  MemoryReserve reserve;
  if (!reserve.grow(COPIES_IN_MESSAGE * text.length)) {
    g_free(text.text);
    return INTERNAL_ERROR;
  }
  *value = text.text;
  return 0;
}

int getTexts(Transaction& transaction, uint32_t count, char** names, char*** values) {
  std::span<char* const> open(names, std::min(count, g_strv_length(names)));
  TextList list(VALUES, open.size());
  while (!open.empty()) {
    const size_t together = std::min(open.size(), Database::NAMES_TOGETHER);
    addTexts(transaction, open.first(together), list);
    if (list.bytes() > MAX_MESSAGE_BYTES) return INTERNAL_ERROR;
    open = open.subspan(together);
  }
  requireMessageMemory(list.bytes());
  *values = list.release();
  return 0;
}

int validate(Transaction& transaction, const char* name, const char* value, gboolean* valid) {
  *valid = transaction.validate(name, value) ? TRUE : FALSE;
  return 0;
}

int checkSet(Transaction& transaction, const char* name, const char* value, gboolean* valid) {
  *valid = transaction.validate(name, value) ? TRUE : FALSE;
  return *valid == TRUE ? transaction.set(name, value, false) : 0;
}

int setTexts(Transaction& transaction, char** names, char** values, bool force) {
  uint64_t work = 0;
  for (size_t i = 0; names[i] != nullptr && values[i] != nullptr; ++i) {
    work += stagingWork(names[i], values[i]);
  }
  Work::require(work);
  int first = 0;
  for (; *names != nullptr && *values != nullptr; ++names, ++values) {
    const int result = transaction.set(*names, *values, force);
    if (first == 0) first = result;
  }
  return first;
}

int resetAll(Transaction& transaction, char** names, bool force) {
  uint64_t work = 0;
  for (size_t i = 0; names[i] != nullptr; ++i) work += stagingWork(names[i], {});
  Work::require(work);
  int first = 0;
  for (; *names != nullptr; ++names) {
    const int result = transaction.reset(*names, force);
    if (first == 0) first = result;
  }
  return first;
}

int commitAndPublish(Transaction& transaction, ValueObject* object) {
  returnSpareMemorySoon();
  std::vector<Change> changes;
  CommitRecord record;
  SignalRoom room;
  int result = INTERNAL_ERROR;
  try {
    result = commit(transaction, changes, &room, &record);
  } catch (...) {
    // Where memory is exhausted in between, what is stored is told all the same.
    room.giveBack();
    announce(std::move(changes), std::move(record), object);
    throw;
  }
  room.giveBack();
  announce(std::move(changes), std::move(record), object);
  return result;
}

int getDependencies(Database& database, const char* name, char*** dependencyReply) {
  returnSpareMemorySoon();
  std::set<std::string> names;
  int result = dependencies(database, name, true, names);
  if (result == DEPENDENCIES_INVALID_INDEX && strchr(name, '[') == nullptr) {
    result = dependencies(database, name, false, names);
  }
  if (result != DEPENDENCIES_FOUND) return result;
  return packTexts(DEPENDENCIES, names, dependencyReply);
}

int getRange(Transaction& transaction, const char* name, char*** texts, GPtrArray** spans) {
  returnSpareMemorySoon();
  BoundsParm bounds;
  const int result = queryRange(transaction.database(), transaction.staged(), name, bounds);
  if (result != RANGE_FOUND) return result;
  return packRange(bounds.strings().texts(), bounds.integers().spans(), texts, spans);
}

int getRanges(Transaction& transaction, char** names, GPtrArray** texts, GPtrArray** spans) {
  returnSpareMemorySoon();
  RangeSet ranges(transaction);
  for (; *names != nullptr; ++names) {
    if (const int result = ranges.add(*names); result != RANGE_FOUND) return result;
  }
  const std::vector<RangeSet::NamedRange>& inOrder = ranges.inNameOrder();
  size_t memory = 0;
  for (const RangeSet::NamedRange& range : inOrder) memory += memoryToPack(range);
  requireMemory(memory);
  StructArray textArray;
  StructArray spanArray;
  for (const auto& [name, bounds] : inOrder) {
    for (const std::string& text : bounds->strings().texts()) textArray.addText(name, text);
    for (const Span& span : bounds->integers().spans()) spanArray.addSpan(name, span);
    if (textArray.bytes() + spanArray.bytes() > MAX_MESSAGE_BYTES) return INTERNAL_ERROR;
  }
  *texts = textArray.release();
  *spans = spanArray.release();
  return 0;
}

int getParmIndices(Transaction& transaction, const char* name, char*** indices) {
  const ParmEntry* entry = transaction.database().findNamed(name);
  if (entry == nullptr) return PARAMETER_NOT_FOUND;
  return packTexts(
      TEXT_RANGE, validIndices(transaction.database(), transaction.staged(), entry->parm), indices);
}

int getIndexRange(Transaction& transaction, const char* name, char*** texts, GPtrArray** spans) {
  returnSpareMemorySoon();
  std::vector<std::string> allowedTexts;
  Spans allowedSpans;
  const int result =
      indexRange(transaction.database(), transaction.staged(), name, allowedTexts, allowedSpans);
  if (result != INDEX_RANGE_FOUND) return result;
  return packRange(allowedTexts, allowedSpans, texts, spans);
}
