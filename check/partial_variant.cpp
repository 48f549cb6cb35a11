#include "check/partial_variant.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "check/proof/references.h"
#include "deflang/text/diagnostics.h"
#include "sw/parm/build/builder.h"
#include "sw/parm/parm_name.h"

namespace {

using Names = std::set<std::string_view>;

// Each further build leaves out what the one before has failed at.
constexpr int MANY_BUILDS = 20;

// Takes in all definitions but some.
class PartialRegistry final : public DefinitionRegistry {
 public:
  PartialRegistry(Database& database, const Names& leftOut)
      : database_(database), leftOut_(leftOut) {}

  [[nodiscard]] const std::string* findConstant(std::string_view name) const override {
    return database_.findConstant(name);
  }
  int registerIndex(std::unique_ptr<IndexDef> index) override {
    return leftOut_.contains(index->name()) ? 0 : database_.registerIndex(std::move(index));
  }
  [[nodiscard]] const IndexDef* findIndex(std::string_view name) const override {
    return database_.findIndex(name);
  }
  int registerParm(std::unique_ptr<ParmDef> parm) override {
    return leftOut_.contains(parm->name()) ? 0 : database_.registerParm(std::move(parm));
  }
  int finish(std::string& name) override {
    finishResult = database_.finish(name);
    finishName = name;
    return finishResult;
  }

  int finishResult = -1;
  std::string finishName;

 private:
  Database& database_;
  const Names& leftOut_;
};

// Which definitions of a text are wrong, and which name them.
class WrongDefinitions {
 public:
  WrongDefinitions(const SourceText& source, const ReadText& text, const NamedValues& constants)
      : text_(text) {
    for (const auto& [name, value] : constants) constants_.insert(name);
    const auto records = text.definitions.records.inNameOrder();
    for (const ParameterRecord* const record : records) noteReferences(*record);
    for (const std::string_view name : undefined_) {
      for (const std::string_view user : users_[name]) add(user);
    }
    for (const ParameterRecord* const record : records) {
      if (record->access == ACCESS_NONE || text.brokenRecords.contains(record)) add(record->name);
    }
    if (text.isBroken) addThoseInUnreadText(source);
  }

  [[nodiscard]] const Names& names() const { return names_; }
  [[nodiscard]] bool areAll() const { return names_.size() >= text_.definitions.records.size(); }

  // Adds a definition, and all that name it.
  void add(std::string_view name) {
    std::vector<std::string_view> open = {name};
    while (!open.empty()) {
      const std::string_view next = open.back();
      open.pop_back();
      if (!names_.insert(next).second) continue;
      const std::vector<std::string_view>& users = users_[next];
      open.insert(open.end(), users.begin(), users.end());
    }
  }

  // Adds what a diagnostic is about. Returns false where that is not known.
  bool add(const Diagnostic& diagnostic) {
    const Position at = diagnostic.at;
    if (at.line == NO_POSITION) return addNamedIn(diagnostic.text);
    const DefinitionLayout* found = nullptr;
    for (const DefinitionLayout& definition : text_.layout.definitions) {
      const Position name = definition.name;
      if (std::pair(name.line, name.column) > std::pair(at.line, at.column)) break;
      found = &definition;
    }
    if (found == nullptr) return false;
    add(found->record->name);
    return true;
  }

 private:
  void noteReferences(const ParameterRecord& record) {
    forEachReference(record, [&](std::string_view name) {
      users_[name].push_back(record.name);
      const bool isDefined =
          text_.definitions.records.find(name) != nullptr || constants_.contains(name);
      if (!isDefined) undefined_.insert(name);
    });
  }

  // The name between quotes.
  bool addNamedIn(std::string_view text) {
    const size_t from = text.find('"');
    const size_t to = text.rfind('"');
    if (from == to) return false;
    const ParameterRecord* const named =
        text_.definitions.records.find(text.substr(from + 1, to - from - 1));
    if (named == nullptr) return false;
    add(named->name);  // the diagnostic does not live as long as the names do
    return true;
  }

  // A definition may have another part in what was not understood.
  void addThoseInUnreadText(const SourceText& source) {
    std::map<std::string_view, size_t> read;
    for (const DefinitionLayout& definition : text_.layout.definitions) {
      ++read[definition.record->name];
    }
    std::map<std::string_view, size_t> written;
    const std::string_view bytes = source.text();
    std::string_view before;
    for (size_t at = 0; at < bytes.size();) {
      const size_t from = bytes.find_first_not_of(" \t\r\n\v\f{}", at);
      if (from == std::string_view::npos) break;
      at = std::min(bytes.find_first_of(" \t\r\n\v\f{}", from), bytes.size());
      const std::string_view word = bytes.substr(from, at - from);
      if (isAccessWord(word)) ++written[before];
      before = word;
    }
    for (const auto& [name, count] : read) {
      if (written[name] != count) add(name);
    }
  }

  static bool isAccessWord(std::string_view word) {
    static constexpr std::string_view WORDS[] = {"rw", "ro", "rostrict", "wo", "index"};
    return std::ranges::find(WORDS, word) != std::end(WORDS);
  }

  const ReadText& text_;
  Names names_;
  Names constants_;
  Names undefined_;  // what is named and is neither defined nor given
  std::map<std::string_view, std::vector<std::string_view>> users_;  // by what they name
};

// Whether all that is not left out has become a definition; leaves out what has not.
bool isComplete(const ReadText& text, Database& database, WrongDefinitions& wrong) {
  bool isWhole = true;
  for (const ParameterRecord* const record : text.definitions.records.inNameOrder()) {
    const bool isBuilt = database.findParm(record->name) != nullptr ||
                         database.findIndexEntry(record->name) != nullptr;
    if (isBuilt || wrong.names().contains(record->name)) continue;
    wrong.add(record->name);
    isWhole = false;
  }
  return isWhole;
}

}  // namespace

std::optional<Variant> buildPartly(const SourceText& source, const ReadText& text,
                                   const NamedValues& constants) {
  if (!text.linesWithNul.empty()) return std::nullopt;
  WrongDefinitions wrong(source, text, constants);
  for (int build = 0; build < MANY_BUILDS && !wrong.areAll(); ++build) {
    Variant variant = {constants, std::make_unique<Database>()};
    for (const auto& [name, value] : constants) {
      static_cast<void>(variant.database->defineConstant(name, value));
    }
    const size_t before = wrong.names().size();
    const Names leftOut = wrong.names();
    PartialRegistry registry(*variant.database, leftOut);
    DiagnosticCollector diagnostics;
    static_cast<void>(buildDefinitions(diagnostics, text.definitions.records,
                                       text.definitions.lines, false, registry));
    for (const Diagnostic& diagnostic : diagnostics.diagnostics()) {
      const bool isError =
          diagnostic.severity == SEVERITY_ERROR || diagnostic.code == DIAG_CONDITION_ZERO;
      if (isError && !wrong.add(diagnostic)) return std::nullopt;
    }
    const bool isWhole = isComplete(text, *variant.database, wrong);
    if (registry.finishResult != 0) {
      const ParameterRecord* const onRing =
          text.definitions.records.find(baseName(registry.finishName));
      if (onRing == nullptr) return std::nullopt;
      wrong.add(onRing->name);
    } else if (isWhole && wrong.names().size() == before) {
      variant.isBuilt = true;
      return variant;
    }
    if (wrong.names().size() == before) return std::nullopt;
  }
  return std::nullopt;
}
