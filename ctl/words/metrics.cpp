// metrics: figures of the service in the text form of OpenMetrics, for the directory of text files
// of a node exporter.
#include <cstdio>

#include "ctl/words/word.h"

namespace {

std::string secondsText(double seconds) {
  char text[64];
  std::snprintf(text, sizeof text, "%.6f", seconds);
  return text;
}

// A time in microseconds since 1970.
std::string timeText(uint64_t time) {
  return secondsText(static_cast<double>(time) / G_USEC_PER_SEC);
}

// A text in the quotes of a label.
std::string labelText(const std::string& text) {
  std::string quoted;
  for (const char c : text) {
    if (c == '\\' || c == '"') quoted += '\\';
    quoted += c == '\n' ? std::string("\\n") : std::string(1, c);
  }
  return '"' + quoted + '"';
}

struct Metric {
  const char* name;
  const char* type;
  const char* unit;  // or null
  const char* help;
  std::string value;
  const char* suffix = "";  // of the name, of a sample
  std::string labels = {};
};

void print(const Output& out, const Metric& metric) {
  const std::string name = metric.name;
  out.line("# TYPE " + name + " " + metric.type);
  if (metric.unit != nullptr) out.line("# UNIT " + name + " " + metric.unit);
  out.line("# HELP " + name + " " + metric.help);
  out.line(name + metric.suffix + metric.labels + " " + metric.value);
}

int metrics(Client& client) {
  client.service.bus().doNotWait();  // that it is not ready is a figure
  std::string error;
  const std::optional<Vitals> told = client.service.vitals(error);
  const Output& out = client.out;
  print(out, {"ostrel_up", "gauge", nullptr, "Whether the service answers.", told ? "1" : "0"});
  if (told) {
    const Vitals& vitals = *told;
    const std::vector<PastCommit> last = client.service.history(1);
    const Metric all[] = {
        // The type "info" is unknown to the exporter, which would refuse the whole file for it.
        {"ostrel_build_info", "gauge", nullptr, "The daemon.", "1", "",
         "{version=" + labelText(vitals.version) + "}"},
        {"ostrel_ready", "gauge", nullptr, "Whether the device has been brought up.",
         vitals.isReady ? "1" : "0"},
        {"ostrel_start_time_seconds", "gauge", "seconds",
         "When the daemon began to serve, since 1970.", timeText(vitals.started)},
        {"ostrel_definitions", "gauge", nullptr, "Parameters and indices that are defined.",
         std::to_string(vitals.definitions)},
        {"ostrel_open_transactions", "gauge", nullptr, "Transactions that are open.",
         std::to_string(vitals.transactions)},
        {"ostrel_watchers", "gauge", nullptr, "Clients that get signals.",
         std::to_string(vitals.watchers)},
        {"ostrel_commits", "counter", nullptr, "Commits that have changed something.",
         std::to_string(vitals.commits), "_total"},
        {"ostrel_last_commit_time_seconds", "gauge", "seconds",
         "When the last commit that announced something was made, since 1970; 0 for none.",
         timeText(last.empty() ? 0 : last.back().time)},
        {"ostrel_call_latency_seconds", "gauge", "seconds", "How long one answer took.",
         secondsText(vitals.latency)},
    };
    for (const Metric& metric : all) print(out, metric);
    if (vitals.memory) {
      print(out, {"ostrel_resident_memory_bytes", "gauge", "bytes", "Memory of the daemon.",
                  std::to_string(*vitals.memory)});
    }
  }
  out.line("# EOF");
  return 0;
}

}  // namespace

RunWord defineMetrics(CLI::App& /*word*/) { return metrics; }
