// The definition registry: what the builder needs of the database, which is on a higher floor.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "deflang/text/statement_sources.h"
#include "sw/parm/index_def.h"
#include "sw/parm/parm_def.h"
#include "sw/parm/statement_lines.h"

/// The builder registers all indices of a text, then all parameters, and calls finish() once; it
/// asks for constants and indices at any time in between. Definitions are owned by the registry
/// from the call that registers them, also where it refuses them.
class DefinitionRegistry {
 public:
  virtual ~DefinitionRegistry() = default;
  /// The value of a command-line constant, valid as long as the registry, or null.
  [[nodiscard]] virtual const std::string* findConstant(std::string_view name) const = 0;
  /// Takes in an index definition. Returns 0, or 1 for the name of an index that it already holds;
  /// the registry is then as before.
  virtual int registerIndex(std::unique_ptr<IndexDef> index) = 0;
  /// Keeps the statements as they are written, for whoever tells what has decided. Called before
  /// anything is registered.
  virtual void keepSources(const std::shared_ptr<const StatementSources>& /*sources*/) {}
  /// Keeps the lines of the definition that was just registered under `name`, for whoever tells
  /// what has decided (StatementLines::appendTo()). A registry that nobody asks keeps none.
  virtual void keepIndexLines(std::string_view /*name*/, const StatementLines& /*lines*/) {}
  virtual void keepParmLines(std::string_view /*name*/, const StatementLines& /*lines*/) {}
  /// Keeps what the text's comments say of the definition `name`.
  virtual void keepDescription(std::string_view /*name*/, std::string_view /*text*/) {}
  /// The index definition of a name, or null. It stays where it is as long as the registry: a
  /// parameter definition points to its indices.
  [[nodiscard]] virtual const IndexDef* findIndex(std::string_view name) const = 0;
  /// Takes in a parameter definition. Returns 0, or 1 for the name of a parameter that it already
  /// holds; the registry is then as before.
  virtual int registerParm(std::unique_ptr<ParmDef> parm) = 0;
  /// Resolves the references and gives the definitions their levels. Returns 0; 1 for a reference
  /// cycle, with the name of a parameter on it in `name`; 3 for a name in an expression that no
  /// definition and no constant has, with that name in `name`.
  virtual int finish(std::string& name) = 0;
};
