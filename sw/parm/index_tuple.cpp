#include "sw/parm/index_tuple.h"

std::string indexSuffix(const IndexTuple& indices) {
  std::string suffix;
  appendSuffix(suffix, indices);
  return suffix;
}

void appendSuffix(std::string& name, const IndexTuple& indices) {
  for (const std::string& value : indices) name.append("[").append(value).append("]");
}
