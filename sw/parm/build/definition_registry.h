// The definition registry: what the builder needs of the database.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "sw/parm/index_def.h"
#include "sw/parm/parm_def.h"

class DefinitionRegistry {
 public:
  virtual ~DefinitionRegistry() = default;
  /// The value of a command-line constant, or null.
  [[nodiscard]] virtual const std::string* findConstant(std::string_view name) const = 0;
  /// Takes in an index definition. Returns 0, or 1 for a name that it already holds; nothing is
  /// then changed.
  virtual int registerIndex(std::unique_ptr<IndexDef> index) = 0;
  /// The index definition of a name, or null. It stays where it is.
  [[nodiscard]] virtual const IndexDef* findIndex(std::string_view name) const = 0;
  /// Takes in a parameter definition. Returns 0, or 1 for a name that it already holds; nothing is
  /// then changed.
  virtual int registerParm(std::unique_ptr<ParmDef> parm) = 0;
  /// Resolves the references and gives the definitions their levels. Returns 0; 1 for a reference
  /// cycle, with the name of a parameter on it in `name`; 3 for a referenced name that nothing
  /// defines, with that name.
  virtual int finish(std::string& name) = 0;
};
