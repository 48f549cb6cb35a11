#include "sw/parm/index_tuple.h"

std::string indexSuffix(const IndexTuple& indices) {
  std::string suffix;
  for (const std::string& value : indices) suffix.append("[").append(value).append("]");
  return suffix;
}
