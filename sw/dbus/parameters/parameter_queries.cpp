#include "sw/dbus/parameters/parameter_queries.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/shell_pattern.h"
#include "base/work.h"
#include "database/explain.h"
#include "database/instance_state.h"
#include "database/present_instances.h"
#include "database/preview.h"
#include "database/reads.h"
#include "database/reason_rows.h"
#include "sw/dbus/parameters/bus_error.h"
#include "sw/dbus/spare_memory.h"
#include "sw/parm/parm_name.h"

namespace {

using Texts = std::vector<std::string>;

// The transaction of a call: that of an id, or an empty one for the committed situation.
class AskedTransaction {
 public:
  AskedTransaction(ParametersState& state, uint32_t id) {
    if (id == NO_TRANSACTION) {
      found_ = &none_.emplace(state.service().database());
      return;
    }
    found_ = state.service().findTransaction(id);
    if (found_ == nullptr) {
      throw BusError{UNKNOWN_TRANSACTION_ERROR,
                     "No transaction " + std::to_string(id) + " is open that this client may use"};
    }
  }
  [[nodiscard]] Transaction& get() { return *found_; }

 private:
  std::optional<Transaction> none_;
  Transaction* found_ = nullptr;
};

void requirePlanned(int result) {
  if (result != COMMIT_TOO_LARGE) return;
  throw BusError{TOO_LARGE_ERROR, "More depends on what is staged than a commit takes"};
}

// A definition, which is a parameter's or an index's.
struct Listed {
  std::string_view name;
  ParmEntry* parm = nullptr;
  IndexEntry* index = nullptr;
};

std::vector<Listed> allDefinitions(Database& database) {
  std::vector<Listed> all;
  for (ParmEntry* const parm : database.parmsInNameOrder()) {
    all.push_back({parm->parm.name(), parm, nullptr});
  }
  for (IndexEntry* const index : database.indicesInNameOrder()) {
    all.push_back({index->index->name(), nullptr, index});
  }
  std::ranges::sort(all, {}, &Listed::name);
  return all;
}

Texts indexNames(const ParmDef& parm) {
  Texts names;
  for (const IndexDef* const index : parm.indices()) names.push_back(index->name());
  return names;
}

// What is told of a definition wherever it is.
struct Head {
  std::string_view name;
  std::string_view access;
  Texts indices;
  uint32_t line = 0;
  uint32_t level = 0;
};

constexpr std::string_view INDEX_ACCESS = "index";

std::string_view accessOf(const Listed& listed) {
  return listed.parm != nullptr ? accessText(listed.parm->parm.access()) : INDEX_ACCESS;
}

Head headOf(const Database& database, const ParmEntry& entry) {
  const ParmDef& parm = entry.parm;
  return {parm.name(), accessText(parm.access()), indexNames(parm), database.lineOf(entry.lines),
          entry.level};
}

Head headOf(const Database& database, const IndexEntry& entry) {
  return {entry.index->name(), INDEX_ACCESS, {}, database.lineOf(entry.lines), 0};
}

// The pattern of a call; none is one of all names.
class DefinitionPattern {
 public:
  explicit DefinitionPattern(std::string_view text) : length_(text.size()) {
    std::string_view error;
    pattern_ = ShellPattern::parse(text.empty() ? "*" : text, error);
    if (pattern_) return;
    throw BusError{INVALID_PATTERN_ERROR,
                   "The pattern " + quoted(text) + " is wrong: " + std::string(error)};
  }

  [[nodiscard]] bool matches(std::string_view name) const {
    Work::add(length_ * name.size());
    return pattern_->matches(name);
  }

 private:
  const size_t length_;
  std::optional<ShellPattern> pattern_;
};

void writeListed(const Database& database, const Listed& listed, MessageWriter& out) {
  Work::add(WORK_PER_REQUEST);
  const Head head =
      listed.parm != nullptr ? headOf(database, *listed.parm) : headOf(database, *listed.index);
  out.structure([&] {
    out.text(std::string(head.name));
    out.text(std::string(head.access));
    out.texts(head.indices);
    out.number(head.line);
    out.number(head.level);
  });
}

// Writes the entries of a definition's dictionary.
class DefinitionWriter {
 public:
  explicit DefinitionWriter(MessageWriter& out) : out_(out) {}

  void text(const char* key, std::string_view value) {
    add(key, "s", [&] { out_.text(std::string(value)); });
  }
  void number(const char* key, uint32_t value) {
    add(key, "u", [&] { out_.number(value); });
  }
  template <typename List>
  void texts(const char* key, const List& values) {
    add(key, "as", [&] { out_.texts(values); });
  }
  void statements(const std::vector<SourceStatement>& statements) {
    add("statements", "a(us)", [&] {
      out_.array("(us)", [&] {
        for (const SourceStatement& statement : statements) {
          out_.structure([&] {
            out_.number(statement.line);
            out_.text(statement.text);
          });
        }
      });
    });
  }
  void translations(const std::map<std::string, std::string>& translations) {
    add("translations", "a(ss)", [&] {
      out_.array("(ss)", [&] {
        for (const auto& translation : translations) {
          out_.structure([&] {
            out_.text(translation.first);
            out_.text(translation.second);
          });
        }
      });
    });
  }

 private:
  template <typename Fill>
  void add(const char* key, const char* signature, const Fill& fill) {
    out_.entry([&] {
      out_.text(key);
      out_.variant(signature, fill);
    });
  }

  MessageWriter& out_;
};

std::set<std::string> namesRead(const VariableSources& sources) {
  std::set<std::string> names;
  for (const VariableSource& source : sources) {
    if (source.parm != nullptr) names.insert(source.parm->parm.name());
  }
  return names;
}

void addNames(const std::vector<ParmEntry*>& parms, std::set<std::string>& names) {
  for (const ParmEntry* const parm : parms) names.insert(parm->parm.name());
}

std::set<std::string> usersOf(const ParmEntry& parm) {
  std::set<std::string> users;
  addNames(parm.dependents, users);
  for (const IndexEntry* const index : parm.indices->naming) users.insert(index->index->name());
  return users;
}

std::set<std::string> usersOf(const IndexEntry& index) {
  std::set<std::string> users;
  addNames(index.dependents, users);
  return users;
}

// `entry` is what the database has of `definition`.
template <typename Entry, typename Definition>
void writeDefinition(const Database& database, const Entry& entry, const Definition& definition,
                     MessageWriter& message) {
  const Head head = headOf(database, entry);
  DefinitionWriter out(message);
  out.text("access", head.access);
  out.texts("indices", head.indices);
  out.number("line", head.line);
  out.number("level", head.level);
  out.statements(database.sourceOf(entry.lines));
  out.translations(definition.translations());
  out.texts("uses", namesRead(entry.sources));
  out.texts("used-by", usersOf(entry));
  out.text("description", database.descriptionOf(definition.name()));
}

[[noreturn]] void refuseName(const std::string& name) {
  throw BusError{UNKNOWN_PARAMETER_ERROR, "No definition has the name " + quoted(name)};
}

[[noreturn]] void refuseInstance(Database& database, const std::string& name) {
  if (database.findNamed(name) == nullptr) {
    throw BusError{UNKNOWN_PARAMETER_ERROR, "No parameter has the name " + quoted(name)};
  }
  throw BusError{UNKNOWN_PARAMETER_ERROR,
                 "No instance of its parameter has so many index values: " + quoted(name)};
}

// The flags of GetState.
constexpr uint32_t FLAG_KNOWN = 1;
constexpr uint32_t FLAG_EXISTS = 2;
constexpr uint32_t FLAG_WRITABLE = 4;
constexpr uint32_t FLAG_STAGED = 8;
constexpr uint32_t FLAG_LIMITED = 16;
constexpr uint32_t FLAG_NO_LIMITS = 32;
constexpr uint32_t FLAG_HAS_VALUE = 64;

uint32_t flagsOf(const InstanceState& state) {
  if (!state.isKnown) return 0;
  uint32_t flags = FLAG_KNOWN;
  if (state.exists) flags |= FLAG_EXISTS;
  if (state.isWritable) flags |= FLAG_WRITABLE;
  if (state.isStaged) flags |= FLAG_STAGED;
  if (state.rangeResult != 0) flags |= FLAG_NO_LIMITS;
  if (state.rangeResult == 0 && state.range.count() > 0) flags |= FLAG_LIMITED;
  if (state.hasValue) flags |= FLAG_HAS_VALUE;
  return flags;
}

void writeState(const char* name, const InstanceState& state, MessageWriter& out) {
  const uint32_t flags = flagsOf(state);
  const bool isLimited = (flags & FLAG_LIMITED) != 0;
  out.structure([&] {
    out.text(name);
    out.number(flags);
    out.text(state.value != nullptr ? *state.value : std::string());
    out.spans(isLimited ? state.range.integers().spans() : Spans());
    if (isLimited) {
      out.texts(state.range.strings().texts());
    } else {
      out.texts(Texts());
    }
  });
}

}  // namespace

void answerList(ParametersState& state, MessageReader& in, MessageWriter& out) {
  const DefinitionPattern pattern(in.text());
  Database& database = state.service().database();
  out.array("(ssasuu)", [&] {
    for (const Listed& listed : allDefinitions(database)) {
      if (pattern.matches(listed.name)) writeListed(database, listed, out);
    }
  });
}

void answerListNames(ParametersState& state, MessageReader& in, MessageWriter& out) {
  const DefinitionPattern pattern(in.text());
  const std::vector<const char*> words = in.texts();
  const std::set<std::string_view> access(words.begin(), words.end());
  out.array("s", [&] {
    for (const Listed& listed : allDefinitions(state.service().database())) {
      if (!access.empty() && !access.contains(accessOf(listed))) continue;
      if (pattern.matches(listed.name)) out.text(std::string(listed.name));
    }
  });
}

void answerListInstances(ParametersState& state, MessageReader& in, MessageWriter& out) {
  AskedTransaction transaction(state, in.number());
  const std::vector<const char*> names = in.texts();
  Database& database = state.service().database();
  std::vector<ParmEntry*> parms = database.parmsInNameOrder();
  if (!names.empty()) {
    const std::set<std::string_view> wanted(names.begin(), names.end());
    std::erase_if(parms,
                  [&](const ParmEntry* parm) { return !wanted.contains(parm->parm.name()); });
  }
  const Outlook outlook(transaction.get());
  requirePlanned(outlook.result());
  PresentInstances instances(outlook.values());
  out.array("s", [&] {
    for (const ParmEntry* const parm : parms) {
      instances.visit(*parm, [&](const std::string& name) {
        out.text(name);
        return true;
      });
    }
  });
}

void answerGetDefinition(ParametersState& state, MessageReader& in, MessageWriter& out) {
  Database& database = state.service().database();
  const std::string name = in.text();
  const ParmEntry* const parm = database.findParm(name);
  const IndexEntry* const index = parm == nullptr ? database.findIndexEntry(name) : nullptr;
  if (parm == nullptr && index == nullptr) refuseName(name);
  out.array("{sv}", [&] {
    if (parm != nullptr) {
      writeDefinition(database, *parm, parm->parm, out);
    } else {
      writeDefinition(database, *index, *index->index, out);
    }
  });
}

void answerGetUses(ParametersState& state, MessageReader& in, MessageWriter& out) {
  const std::vector<const char*> names = in.texts();
  returnSpareMemorySoon();
  Database& database = state.service().database();
  out.array("as", [&] {
    for (const char* const name : names) {
      Work::add(WORK_PER_REQUEST);
      const ParmEntry* const parm = database.findNamed(name);
      const IndexTuple indices = splitName(name).indices;
      const bool isInstance = parm != nullptr && indices.size() == parm->parm.indices().size();
      out.texts(isInstance ? instancesRead(*parm, indices) : std::set<std::string>());
    }
  });
}

void answerGetState(ParametersState& state, MessageReader& in, MessageWriter& out) {
  AskedTransaction transaction(state, in.number());
  const std::vector<const char*> names = in.texts();
  returnSpareMemorySoon();
  InstanceStates states(transaction.get());
  requirePlanned(states.outlook().result());
  out.array("(susa(ii)as)", [&] {
    for (const char* const name : names) writeState(name, states.of(name), out);
  });
}

void answerExplain(ParametersState& state, MessageReader& in, MessageWriter& out) {
  AskedTransaction transaction(state, in.number());
  const std::string name = in.text();
  const Outlook outlook(transaction.get());
  requirePlanned(outlook.result());
  const std::optional<std::vector<ReasonRow>> rows = reasonRows(transaction.get(), outlook, name);
  if (!rows) refuseInstance(state.service().database(), name);
  out.array("(ssusa{ss})", [&] {
    for (const ReasonRow& row : *rows) {
      out.structure([&] {
        out.text(row.question);
        out.text(row.answer);
        out.number(row.reason.line);
        out.text(row.reason.statement);
        out.array("{ss}", [&] {
          for (const UsedName& used : row.reason.names) {
            if (!used.value) continue;
            out.entry([&] {
              out.text(used.name);
              out.text(*used.value);
            });
          }
        });
      });
    }
  });
}

void answerPreview(ParametersState& state, MessageReader& in, MessageWriter& out) {
  AskedTransaction transaction(state, in.number());
  returnSpareMemorySoon();
  Preview found;
  requirePlanned(preview(transaction.get(), found));
  out.array("(sssas)", [&] {
    for (const PreviewedChange& change : found.changes) {
      out.structure([&] {
        out.text(change.name);
        out.text(change.before);
        out.text(change.after);
        out.texts(change.because);
      });
    }
  });
  out.array("(ss)", [&] {
    for (const PreviewedRefusal& refusal : found.refusals) {
      out.structure([&] {
        out.text(refusal.name);
        out.text(refusal.why);
      });
    }
  });
}
