#include "check/text/variant.h"

#include <utility>

#include "check/text/build_causes.h"
#include "deflang/text/diagnostics.h"
#include "sw/parm/build/builder.h"

std::vector<NamedValues> variantsOf(const ConstantChoices& choices) {
  std::vector<NamedValues> variants = {{}};
  for (const auto& [name, values] : choices) {
    std::vector<NamedValues> longer;
    for (const NamedValues& variant : variants) {
      for (const std::string& value : values) {
        longer.push_back(variant);
        longer.back().emplace_back(name, value);
      }
    }
    variants = std::move(longer);
  }
  return variants;
}

namespace {

// Remembers how the database has finished.
class WatchedRegistry final : public DefinitionRegistry {
 public:
  explicit WatchedRegistry(Database& database) : database_(database) {}

  [[nodiscard]] const std::string* findConstant(std::string_view name) const override {
    return database_.findConstant(name);
  }
  int registerIndex(std::unique_ptr<IndexDef> index) override {
    return database_.registerIndex(std::move(index));
  }
  void keepSources(const std::shared_ptr<const StatementSources>& sources) override {
    database_.keepSources(sources);
  }
  void keepIndexLines(std::string_view name, const StatementLines& lines) override {
    database_.keepIndexLines(name, lines);
  }
  void keepParmLines(std::string_view name, const StatementLines& lines) override {
    database_.keepParmLines(name, lines);
  }
  [[nodiscard]] const IndexDef* findIndex(std::string_view name) const override {
    return database_.findIndex(name);
  }
  int registerParm(std::unique_ptr<ParmDef> parm) override {
    return database_.registerParm(std::move(parm));
  }
  int finish(std::string& name) override {
    finishResult = database_.finish(name);
    finishName = name;
    return finishResult;
  }

  int finishResult = 0;
  std::string finishName;

 private:
  Database& database_;
};

}  // namespace

Variant buildVariant(const SourceText& source, const ReadText& text, NamedValues constants,
                     Findings& findings) {
  Variant variant = {std::move(constants), std::make_unique<Database>()};
  for (const auto& [name, value] : variant.constants) {
    static_cast<void>(variant.database->defineConstant(name, value));
  }
  DiagnosticCollector diagnostics;
  WatchedRegistry registry(*variant.database);
  const int result = buildDefinitions(diagnostics, text.definitions.records, text.definitions.lines,
                                      false, registry);
  variant.isBuilt = result == 0 && !text.isBroken;
  explainBuild(source, text, variant,
               {diagnostics, result, registry.finishResult, registry.finishName}, findings);
  return variant;
}
