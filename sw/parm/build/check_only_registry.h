// The check-only registry: what the builder registers with when only its diagnostics are wanted.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/text_map.h"
#include "sw/parm/build/definition_registry.h"

/// Knows the constants of another registry and keeps everything else from it, so that a text can be
/// checked while the other registry goes on as it is. buildDefinitions() makes one where it is told
/// `checkOnly`.
class CheckOnlyRegistry final : public DefinitionRegistry {
 public:
  /// `constants` has to outlive this registry.
  explicit CheckOnlyRegistry(const DefinitionRegistry& constants) : constants_(constants) {}

  /// The constant of the other registry, or null.
  [[nodiscard]] const std::string* findConstant(std::string_view name) const override;
  /// Keeps the index, so that the index lists of parameters can be checked. Returns 0, or 1 for a
  /// name that this registry already holds; the first definition is then kept.
  int registerIndex(std::unique_ptr<IndexDef> index) override;
  /// The index that was registered here, or null; those of the other registry are not found.
  [[nodiscard]] const IndexDef* findIndex(std::string_view name) const override;
  /// Drops the parameter. Returns 0.
  int registerParm(std::unique_ptr<ParmDef> parm) override;
  /// Returns 0 and leaves `name` alone: checkReferences() has checked the references, and cycles
  /// are not looked for.
  int finish(std::string& name) override;

 private:
  const DefinitionRegistry& constants_;
  TextMap<std::unique_ptr<IndexDef>> indices_;
};
