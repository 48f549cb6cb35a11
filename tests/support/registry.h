// A registry for tests: keeps what the builder registers, and finishes as it is told to.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sw/parm/build/definition_registry.h"

/// A registry without a database: see DefinitionRegistry for what each function promises.
class TestRegistry final : public DefinitionRegistry {
 public:
  using Constants = std::map<std::string, std::string, std::less<>>;

  explicit TestRegistry(Constants constants = {}) : constants_(std::move(constants)) {}

  [[nodiscard]] const std::string* findConstant(std::string_view name) const override {
    const auto found = constants_.find(name);
    return found == constants_.end() ? nullptr : &found->second;
  }
  int registerIndex(std::unique_ptr<IndexDef> index) override {
    registered.push_back("index " + index->name());
    const std::string name = index->name();
    return indices_.emplace(name, std::move(index)).second ? 0 : 1;
  }
  [[nodiscard]] const IndexDef* findIndex(std::string_view name) const override {
    const auto found = indices_.find(name);
    return found == indices_.end() ? nullptr : found->second.get();
  }
  int registerParm(std::unique_ptr<ParmDef> parm) override {
    registered.push_back("parameter " + parm->name());
    const std::string name = parm->name();
    return parms_.emplace(name, std::move(parm)).second ? 0 : 1;
  }
  void keepSources(const std::shared_ptr<const StatementSources>& kept) override { sources = kept; }
  void keepIndexLines(std::string_view name, const StatementLines& kept) override {
    kept.appendTo(lines[std::string(name)]);
  }
  void keepParmLines(std::string_view name, const StatementLines& kept) override {
    kept.appendTo(lines[std::string(name)]);
  }
  int finish(std::string& name) override {
    registered.emplace_back("finish");
    name = finishName;
    return finishResult;
  }

  /// The parameter definition of a name, or null.
  [[nodiscard]] const ParmDef* findParm(std::string_view name) const {
    const auto found = parms_.find(name);
    return found == parms_.end() ? nullptr : found->second.get();
  }

  /// The statements of `definition`, which is registered here.
  template <typename Definition>
  [[nodiscard]] StatementsOfDefinition statementsOf(const Definition& definition) const {
    return {definition, lines.at(definition.name()),
            std::bind_front(&StatementSources::statement, sources.get())};
  }

  std::vector<std::string> registered;              ///< every call that changes something, in order
  std::shared_ptr<const StatementSources> sources;  ///< of the text
  std::map<std::string, std::string> lines;         ///< of each definition
  int finishResult = 0;                             ///< what finish() returns
  std::string finishName;                           ///< the name that finish() gives

 private:
  Constants constants_;
  std::map<std::string, std::unique_ptr<IndexDef>, std::less<>> indices_;
  std::map<std::string, std::unique_ptr<ParmDef>, std::less<>> parms_;
};
