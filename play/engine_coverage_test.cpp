// Each operation that judges is noted as covered, whatever its form.
#include <gtest/gtest.h>

#include "play/engine_device.h"
#include "vid_std.h"

namespace {

const char* const TEXT = R"(a rw {
  rangeValid { 0..9 }
  default { 5 }
  ctrlRO (b == 1)
  rangeDoc { 3 }
}
b rw { rangeValid { 0..1 } }
p rw {
  index { i }
}
i index {
  rangeValid { 1..2 }
}
)";

// The lines of the statements that a call has chosen.
std::string chosenBy(const Call& call, const std::vector<Call>& before = {}) {
  initVidStdTables();
  TextCoverage coverage(TEXT);
  const std::unique_ptr<Device> device = startEngineDevice(TEXT, {}, &coverage);
  for (const Call& one : before) static_cast<void>(device->call(one));
  for (StatementCoverage& statement : coverage.statements()) statement.chosen = 0;
  static_cast<void>(device->call(call));
  std::string lines;
  for (const StatementCoverage& statement : coverage.statements()) {
    if (statement.chosen > 0) lines += std::to_string(statement.line) + " ";
  }
  return lines;
}

TEST(EngineCoverage, IsOfEachOperation) {
  const Call start = {"start"};
  const struct {
    Call call;
    std::vector<Call> before;
    const char* lines;
  } cases[] = {
      {{"single_set", 0, {"a"}, {"7"}}, {}, "2 4 "},
      {{"single_set", 0, {"a"}, {"77"}}, {}, "2 "},  // what was held is staged instead, and forced
      {{"single_set_status", 0, {"a"}, {"7"}}, {}, "2 "},
      {{"single_set_bulk", 0, {"a", "p[1]"}, {"7", "x"}}, {}, "2 4 9 12 "},
      {{"single_set_status_bulk", 0, {"a", "p[1]"}, {"7", "x"}}, {}, "2 9 12 "},
      {{"single_reset", 0, {"a"}}, {}, "2 4 3 "},
      {{"single_reset_status", 0, {"a"}}, {}, "2 3 "},
      {{"single_reset_bulk", 0, {"a", "p[2]"}}, {}, "2 4 3 9 12 "},
      {{"single_reset_status_bulk", 0, {"a"}}, {}, "2 3 "},
      {{"single_check_set", 0, {"a"}, {"7"}}, {}, "2 4 "},
      {{"single_check_set", 0, {"a"}, {"77"}}, {}, ""},  // nothing is staged
      {{"single_is_valid", 0, {"a"}, {"7"}}, {}, ""},
      {{"single_get", 0, {"a"}}, {}, ""},
      {{"set", 0, {"a"}, {"7"}}, {start}, ""},
      {{"try", 0}, {start, {"set", 0, {"a"}, {"7"}}}, ""},
      {{"commit", 0}, {start, {"set", 0, {"a"}, {"7"}}}, "2 4 "},
      {{"commit", 1}, {start, {"set", 0, {"a"}, {"7"}}}, ""},
      {{"end", 0}, {start, {"set", 0, {"a"}, {"7"}}}, ""},
      {{"get_range", 0, {"a"}}, {start}, "5 "},
      {{"get_range_bulk", 0, {"a", "b"}}, {start}, "5 7 "},
      {{"get_range", 9, {"a"}}, {start}, ""},
      {{"get_idx_range", 0, {"i"}}, {start}, "12 "},
      {{"get_idx_range", 0, {"none"}}, {start}, ""},
      {{"why", 0, {"a"}}, {start}, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.call.method);
    EXPECT_EQ(chosenBy(c.call, c.before), c.lines);
  }
}

}  // namespace
