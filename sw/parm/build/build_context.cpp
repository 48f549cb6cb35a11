#include "sw/parm/build/build_context.h"

#include <utility>

#include "deflang/expression/vid_std_name.h"
#include "sw/parm/parm_name.h"

const ParameterRecord* BuildContext::findRecord(std::string_view name) const {
  const ParameterRecord* const record = records_.find(name);
  return record == nullptr || record->access == ACCESS_NONE ? nullptr : record;
}

const std::string* BuildContext::findConstant(std::string_view name) const {
  const bool isTaken = name == THIS_VALUE || splitVidStdName(name).has_value() ||
                       findRecord(baseName(name)) != nullptr;
  return isTaken ? nullptr : registry_.findConstant(name);
}

void BuildContext::report(Severity severity, uint32_t code, Position at, std::string text) {
  diagnostics_.add(severity, code, at, lines_, std::move(text));
  if (severity == SEVERITY_ERROR) note(-1);
}
