// health: whether the service is well, as checks of monitoring systems tell it.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "ctl/service/exit_status.h"
#include "ctl/words/arguments.h"
#include "ctl/words/commits.h"
#include "ctl/words/word.h"

namespace {

// Those of such checks, in place of the program's own.
enum Health : int { HEALTH_OK = 0, HEALTH_WARNING = 1, HEALTH_CRITICAL = 2, HEALTH_UNKNOWN = 3 };
constexpr const char* HEALTH_NAMES[] = {"OK", "WARNING", "CRITICAL", "UNKNOWN"};

// What is known to be wrong counts for more than what is unknown.
constexpr int severityOf(Health health) { return health == HEALTH_UNKNOWN ? 1 : 2 * health; }

constexpr double MIB = 1024.0 * 1024.0;

// The most that a figure may be; without, any.
struct Limit {
  std::optional<double> warning;
  std::optional<double> critical;

  [[nodiscard]] Health judgeUnknown() const {
    return warning || critical ? HEALTH_UNKNOWN : HEALTH_OK;
  }
  [[nodiscard]] Health judge(double figure) const {
    if (critical && figure > *critical) return HEALTH_CRITICAL;
    return warning && figure > *warning ? HEALTH_WARNING : HEALTH_OK;
  }
};

struct HealthArguments {
  Limit latency;       // in seconds
  Limit memory;        // in MiB
  Limit transactions;  // that are open
};

std::string numberText(double number, int digits) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", digits, number);
  return text;
}

// As in "3 d 4 h", "4 h 5 min", "5 min 6 s" or "6 s".
std::string durationText(uint64_t seconds) {
  const uint64_t minutes = seconds / 60;
  const uint64_t hours = minutes / 60;
  const auto both = [](uint64_t one, const char* unit, uint64_t other, const char* smaller) {
    return std::to_string(one) + " " + unit + " " + std::to_string(other) + " " + smaller;
  };
  if (hours >= 24) return both(hours / 24, "d", hours % 24, "h");
  if (hours > 0) return both(hours, "h", minutes % 60, "min");
  if (minutes > 0) return both(minutes, "min", seconds % 60, "s");
  return std::to_string(seconds) + " s";
}

uint64_t secondsSince(uint64_t time) {
  const auto now = static_cast<uint64_t>(g_get_real_time());
  return now > time ? (now - time) / G_USEC_PER_SEC : 0;
}

// A figure for graphs, with its limits: label=value;warning;critical.
std::string performance(const char* label, const std::string& value, const Limit& limit,
                        int digits) {
  const auto text = [&](const std::optional<double>& each) {
    return each ? numberText(*each, digits) : std::string();
  };
  return std::string(label) + "=" + value + ";" + text(limit.warning) + ";" + text(limit.critical);
}

struct Judged {
  Health health = HEALTH_OK;
  std::string why;  // what is not as it should be

  void add(Health each, const std::string& what) {
    if (each == HEALTH_OK) return;
    health = std::ranges::max(health, each, {}, severityOf);
    why += (why.empty() ? "" : ", ") + what;
  }
};

Judged judge(const Vitals& vitals, const HealthArguments& limits) {
  Judged judged;
  judged.add(vitals.isReady ? HEALTH_OK : HEALTH_WARNING, "not ready");
  judged.add(limits.latency.judge(vitals.latency), "slow");
  if (vitals.memory) {
    judged.add(limits.memory.judge(static_cast<double>(*vitals.memory) / MIB), "large");
  } else {
    judged.add(limits.memory.judgeUnknown(), "memory unknown");
  }
  judged.add(limits.transactions.judge(vitals.transactions), "many transactions");
  return judged;
}

// As figures for graphs write what is unknown.
constexpr const char* UNKNOWN_FIGURE = "U";

std::string lineOf(const Vitals& vitals, const Judged& judged, const std::string& lastCommit,
                   const HealthArguments& limits) {
  const std::string latency = numberText(vitals.latency, 6);
  const std::string memory =
      vitals.memory ? numberText(static_cast<double>(*vitals.memory) / MIB, 1) : std::string();
  return std::string(HEALTH_NAMES[judged.health]) + ": " +
         (judged.why.empty() ? "" : judged.why + "; ") + vitals.version + ", up " +
         durationText(secondsSince(vitals.started)) + ", " + std::to_string(vitals.definitions) +
         " definitions, " + std::to_string(vitals.transactions) + " open transactions, " +
         (vitals.memory ? memory + " MiB" : "memory unknown") + ", " + lastCommit + ", answer in " +
         numberText(vitals.latency * 1000, 1) + " ms | " +
         performance("latency", latency + "s", limits.latency, 3) + " " +
         performance("memory", vitals.memory ? memory + "MB" : UNKNOWN_FIGURE, limits.memory, 1) +
         " " +
         performance("transactions", std::to_string(vitals.transactions), limits.transactions, 0);
}

std::string lastCommitText(const Vitals& vitals, const std::vector<PastCommit>& last) {
  if (vitals.commits == 0) return "no commit";
  std::string text = "last commit " + std::to_string(vitals.commits);
  if (!last.empty() && last.back().serial == vitals.commits) {
    text += ", " + durationText(secondsSince(last.back().time)) + " ago";
  }
  return text;
}

int tellSilence(const Output& out, const std::string& why) {
  if (out.isJson()) {
    out.json({{"health", HEALTH_NAMES[HEALTH_CRITICAL]}, {"why", why}});
  } else {
    out.line(std::string(HEALTH_NAMES[HEALTH_CRITICAL]) + ": " + why);
  }
  return HEALTH_CRITICAL;
}

int health(Client& client, const HealthArguments& limits) {
  client.service.bus().doNotWait();  // that it is not ready is an answer
  std::string error;
  const std::optional<Vitals> told = client.service.vitals(error);
  if (!told) return tellSilence(client.out, error);
  const Vitals& vitals = *told;
  const std::vector<PastCommit> last = client.service.history(1);
  const Judged judged = judge(vitals, limits);
  const Json memory = vitals.memory ? Json(*vitals.memory) : Json();
  if (!client.out.isJson()) {
    client.out.line(lineOf(vitals, judged, lastCommitText(vitals, last), limits));
  } else {
    client.out.json({{"health", HEALTH_NAMES[judged.health]},
                     {"why", judged.why},
                     {"version", vitals.version},
                     {"ready", vitals.isReady},
                     {"uptime", secondsSince(vitals.started)},
                     {"definitions", vitals.definitions},
                     {"transactions", vitals.transactions},
                     {"watchers", vitals.watchers},
                     {"memory", memory},
                     {"commits", vitals.commits},
                     {"latency", vitals.latency}});
  }
  return judged.health;
}

void addLimit(CLI::App& word, const std::string& what, Limit& limit, const std::string& unit,
              const std::string& help) {
  const auto add = [&](const std::string& name, std::optional<double>& bound,
                       const std::string& purpose) {
    word.add_option(name, bound, purpose + help)->check(numberFromZero())->type_name(unit);
  };
  add("--warn-" + what, limit.warning, "Warn where ");
  add("--max-" + what, limit.critical, "Critical where ");
}

}  // namespace

RunWord defineHealth(CLI::App& word) {
  const auto arguments = std::make_shared<HealthArguments>();
  addLimit(word, "latency", arguments->latency, "SECONDS", "an answer takes longer");
  addLimit(word, "memory", arguments->memory, "MIB", "the daemon has more memory");
  addLimit(word, "transactions", arguments->transactions, "COUNT", "more are open");
  return [arguments](Client& client) { return health(client, *arguments); };
}
