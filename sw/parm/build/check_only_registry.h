// The check-only registry: what the builder registers with when only its diagnostics are wanted.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/text_map.h"
#include "sw/parm/build/definition_registry.h"

/// Knows the constants of another registry and keeps everything else from it.
class CheckOnlyRegistry final : public DefinitionRegistry {
 public:
  explicit CheckOnlyRegistry(const DefinitionRegistry& constants) : constants_(constants) {}

  [[nodiscard]] const std::string* findConstant(std::string_view name) const override;
  int registerIndex(std::unique_ptr<IndexDef> index) override;
  [[nodiscard]] const IndexDef* findIndex(std::string_view name) const override;
  /// Drops the parameter.
  int registerParm(std::unique_ptr<ParmDef> parm) override;
  /// Does nothing.
  int finish(std::string& name) override;

 private:
  const DefinitionRegistry& constants_;
  TextMap<std::unique_ptr<IndexDef>> indices_;
};
