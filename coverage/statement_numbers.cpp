#include "coverage/statement_numbers.h"

#include <memory>
#include <vector>

#include "deflang/text/diagnostics.h"
#include "sw/parm/build/builder.h"

namespace {

// Keeps the numbers, and of the definitions only the indices, which parameters are built with.
class NumberRegistry final : public DefinitionRegistry {
 public:
  explicit NumberRegistry(const DefinitionRegistry& constants) : constants_(constants) {}

  [[nodiscard]] const std::string* findConstant(std::string_view name) const override {
    return constants_.findConstant(name);
  }
  int registerIndex(std::unique_ptr<IndexDef> index) override {
    const std::string& name = index->name();
    return indices_.emplace(name, std::move(index)).second ? 0 : 1;
  }
  [[nodiscard]] const IndexDef* findIndex(std::string_view name) const override {
    const auto found = indices_.find(name);
    return found == indices_.end() ? nullptr : found->second.get();
  }
  int registerParm(std::unique_ptr<ParmDef> /*parm*/) override { return 0; }
  void keepIndexLines(std::string_view name, const StatementLines& lines) override {
    numbers_.emplace(name, lines);
  }
  void keepParmLines(std::string_view name, const StatementLines& lines) override {
    numbers_.emplace(name, lines);
  }
  int finish(std::string& /*name*/) override { return 0; }

  [[nodiscard]] StatementNumbers takeNumbers() { return std::move(numbers_); }

 private:
  const DefinitionRegistry& constants_;
  std::map<std::string, std::unique_ptr<IndexDef>, std::less<>> indices_;
  StatementNumbers numbers_;
};

}  // namespace

StatementNumbers statementNumbers(const TextCoverage& coverage,
                                  const DefinitionRegistry& constants) {
  NumberRegistry registry(constants);
  // Whoever has made the device was told what there is to tell.
  DiagnosticCollector untold;
  const DefinitionText& text = coverage.numbered();
  static_cast<void>(buildDefinitions(untold, text.records, text.lines, false, registry));
  return registry.takeNumbers();
}
