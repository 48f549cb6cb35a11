#include "sw/parm/statement_lines.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "base/packed_number.h"

namespace {

// A group is the statements of one element of a list. Each statement is how far its source is
// behind that of the definition, twice, and one more where a further statement follows. The empty
// group is a zero: so is the definition itself.
class GroupWriter {
 public:
  // Writes to `out`, which has room for all.
  GroupWriter(const StatementPlace& definition, char* out)
      : definition_(definition.source), out_(packNumber(definition_, out)) {}

  [[nodiscard]] const char* end() const { return out_; }

  void add(std::span<const StatementPlace> group) {
    if (group.empty()) out_ = packNumber(0, out_);
    for (size_t i = 0; i < group.size(); ++i) {
      const uint32_t isMore = i + 1 < group.size() ? 1 : 0;
      out_ = packNumber(2 * (group[i].source - definition_) + isMore, out_);
    }
  }
  // Of a list in which the first statement of `set` stands for all of that.
  void addList(std::span<const StatementPlace> list, std::span<const StatementPlace> set) {
    for (const StatementPlace& place : list) {
      const bool isSet = !set.empty() &&
                         std::ranges::binary_search(set, place.source, {}, &StatementPlace::source);
      add(isSet ? set : std::span(&place, 1));
    }
  }

 private:
  uint32_t definition_;
  char* out_;
};

class GroupReader {
 public:
  GroupReader(std::string_view bytes, const StatementsOfDefinition::FindSource& find)
      : bytes_(bytes), find_(find), definition_(unpackNumber(bytes_, at_)) {}

  [[nodiscard]] uint32_t line() const { return find_(definition_, definition_).line; }
  // The statements of a group as one.
  SourceStatement read() {
    SourceStatement all;
    uint32_t number = 0;
    do {
      number = unpackNumber(bytes_, at_);
      if (number == 0) break;
      const SourceStatement next = find_(definition_, definition_ + number / 2);
      if (all.line == 0) {
        all = next;
      } else {
        all.text += " " + next.text;
      }
    } while (number % 2 == 1);
    return all;
  }
  StatementsOfDefinition::List readList(size_t count) {
    StatementsOfDefinition::List list(count);
    for (SourceStatement& each : list) each = read();
    return list;
  }

 private:
  std::string_view bytes_;
  const StatementsOfDefinition::FindSource& find_;
  size_t at_ = 0;
  uint32_t definition_;
};

}  // namespace

void StatementLines::appendTo(std::string& bytes) const {
  size_t most = 3;
  for (const List* list : {&validity, &ranges, &translations, &readOnly, &defaults, &documented,
                           &inBase, &inSet, &inDocumentedSet}) {
    most += list->size();
  }
  const size_t begin = bytes.size();
  bytes.resize(begin + most * MOST_PACKED_BYTES);
  GroupWriter out(definition, bytes.data() + begin);
  out.add(std::span(&fallback, fallback.line == 0 ? 0 : 1));
  out.add(inBase);
  out.addList(validity, {});
  out.addList(ranges, inSet);
  out.addList(translations, {});
  out.addList(readOnly, {});
  out.addList(defaults, {});
  out.addList(documented, inDocumentedSet);
  bytes.resize(static_cast<size_t>(out.end() - bytes.data()));
}

uint32_t StatementsOfDefinition::definitionIn(std::string_view kept) {
  size_t at = 0;
  return unpackNumber(kept, at);
}

StatementsOfDefinition::StatementsOfDefinition(const IndexDef& index, const ParmDef* parm,
                                               std::string_view kept, const FindSource& find) {
  GroupReader in(kept, find);
  definition = in.line();
  fallback = in.read();
  base = in.read();
  validity = in.readList(index.validityConditions().size());
  ranges = in.readList(index.conditionalBounds().size());
  translations = in.readList(index.translations().size());
  if (parm == nullptr) return;
  readOnly = in.readList(parm->readOnlyConditions().size());
  defaults = in.readList(parm->defaults().size());
  documented = in.readList(parm->documentedRanges().size());
}

StatementsOfDefinition::StatementsOfDefinition(const IndexDef& index, std::string_view kept,
                                               const FindSource& find)
    : StatementsOfDefinition(index, nullptr, kept, find) {}

StatementsOfDefinition::StatementsOfDefinition(const ParmDef& parm, std::string_view kept,
                                               const FindSource& find)
    : StatementsOfDefinition(parm, &parm, kept, find) {}
