// Fuzzes for work: definition texts whose requests cost the most for the bytes that ask for them.
// The more a request costs, counted in units of work for each byte of the text and of the request,
// the further the fuzzer has come: that is its only goal. Each record is printed. What a request
// costs a processor must be in its count: one that takes far longer ends the program.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/system_log.h"
#include "base/value_limit.h"
#include "base/work.h"
#include "database/commit.h"
#include "database/dependencies.h"
#include "database/index_query.h"
#include "database/index_values.h"
#include "database/largest_change.h"
#include "database/range_query.h"
#include "database/transaction.h"
#include "fuzz/built_text.h"
#include "fuzz/demand.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/trace.h"
#include "sw/parm/parm_name.h"

namespace {

// What the fuzzer looks at beside the code that is reached: a place for each eighth of a doubling.
constexpr size_t STEPS_PER_DOUBLING = 8;
constexpr size_t PLACES = 64 * STEPS_PER_DOUBLING;
[[gnu::used, gnu::section("__libfuzzer_extra_counters")]] uint8_t reachedPlaces[PLACES];

// The most units for a byte, of each kind of request.
std::map<std::string_view, double> records;

// The instrumented program is slower than what is counted, and the machine has other things to do.
constexpr double MAX_NANOSECONDS_PER_UNIT = 400;
constexpr double ANY_NANOSECONDS = 50e6;

double processorTime() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

// A request to a device: its bytes, and what becomes of it.
struct Request {
  std::string_view kind;
  std::string what;
  size_t bytes;
  std::function<void()> make;
};

// `sentBytes` are those of the text and of all requests so far: what was stored by an earlier one
// makes a later one dear.
void note(const Request& request, size_t sentBytes) {
  const auto units = static_cast<double>(Work::done());
  const double perByte = units / static_cast<double>(sentBytes);
  if (!(perByte >= 1)) return;
  const auto place = static_cast<size_t>(std::log2(perByte) * STEPS_PER_DOUBLING);
  reachedPlaces[std::min(place, PLACES - 1)] = 1;
  double& record = records[request.kind];
  if (perByte <= record) return;
  record = perByte;
  fprintf(stderr, "RECORD %s: %.0f units a byte, %.0f units for %zu bytes (%s)\n",
          std::string(request.kind).c_str(), perByte, units, sentBytes, request.what.c_str());
}

void make(const Request& request, size_t& sentBytes) {
  sentBytes += request.bytes;
  trace(request.what);
  Work::begin();
  const double before = processorTime();
  try {
    request.make();
  } catch (const WorkExceeded&) {
    // Given up as it should.
  }
  const double taken = processorTime() - before;
  const auto counted = static_cast<double>(Work::done());
  demand(taken < ANY_NANOSECONDS + counted * MAX_NANOSECONDS_PER_UNIT,
         "not counted: ", request.what, ", ", std::to_string(taken / 1e6), " ms for ",
         std::to_string(counted), " units");
  note(request, sentBytes);
}

// An instance of each parameter, by the first values of its indices.
std::vector<std::string> instancesOf(Database& database) {
  std::vector<std::string> names;
  for (const ParmEntry* entry : database.parmsInNameOrder()) {
    IndexTuple values;
    for (const IndexDef* index : entry->parm.indices()) {
      const Spans& spans = index->baseBounds().integers().spans();
      const std::set<std::string>& texts = index->baseBounds().strings().texts();
      values.push_back(!spans.empty()  ? std::to_string(spans.front().first)
                       : texts.empty() ? "any"
                                       : *texts.begin());
    }
    names.push_back(fullName(entry->parm.name(), values));
  }
  return names;
}

void commitOf(Database& database, const std::string& name, const std::string& value) {
  Transaction transaction(database);
  static_cast<void>(transaction.set(name, value, true));
  std::vector<Change> changes;
  static_cast<void>(commit(transaction, changes));
}

void resetOf(Database& database, const std::vector<std::string>& names) {
  Transaction transaction(database);
  for (const std::string& name : names) static_cast<void>(transaction.reset(name, true));
  std::vector<Change> changes;
  static_cast<void>(commit(transaction, changes));
}

Request setOf(Database& database, std::string_view kind, const std::string& name,
              const std::string& value) {
  return {kind, "set " + name + " to " + std::to_string(value.size()) + " bytes",
          name.size() + value.size(),
          [&database, name, value] { commitOf(database, name, value); }};
}

std::vector<Request> requestsFor(Database& database, const std::string& name) {
  std::vector<Request> requests = {setOf(database, "set", name, "1")};
  requests.push_back({"range", "range of " + name, name.size(), [&database, name] {
                        BoundsParm range;
                        static_cast<void>(queryRange(database, StagedValues(), name, range));
                      }});
  requests.push_back({"dependencies", "dependencies of " + name, name.size(), [&database, name] {
                        std::set<std::string> names;
                        static_cast<void>(dependencies(database, name, true, names));
                      }});
  const ParmEntry* const entry = database.findNamed(name);
  for (const IndexDef* index : entry->parm.indices()) {
    requests.push_back(
        {"index values", "index " + index->name(), index->name().size(), [&database, index] {
           std::vector<std::string> texts;
           Spans spans;
           static_cast<void>(indexRange(database, StagedValues(), index->name(), texts, spans));
         }});
  }
  return requests;
}

// A fuzzer has less memory than a device; a million instances are tried elsewhere.
bool isSmall(Database& database) {
  constexpr uint64_t MAX_INSTANCES = 50'000;
  return extentOf(database, database.parmsInNameOrder()).instances <= MAX_INSTANCES;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  BuiltText built(textOf(data, size));
  if (!built.isClean()) return 0;
  const LogRedirection silence([](const std::string&) {});
  Database& database = built.database;
  size_t sentBytes = size;
  make({"largest change", "look for it", 0, [&] { reportLargestChange(database); }}, sentBytes);
  if (!isSmall(database)) return 0;
  const std::vector<std::string> names = instancesOf(database);
  make({"reset", "reset all", names.size(), [&] { resetOf(database, names); }}, sentBytes);
  for (const std::string& name : names) {
    if (database.findNamed(name) == nullptr) continue;
    for (const Request& request : requestsFor(database, name)) make(request, sentBytes);
  }
  // At the end, as the other requests would be cheap for so many bytes.
  const std::string longText(MAX_VALUE_BYTES / 16, 'x');
  for (const std::string& name : names) {
    if (database.findNamed(name) == nullptr) continue;
    make(setOf(database, "set of a long text", name, longText), sentBytes);
  }
  return 0;
}
