// The model of the daemon that serves device.ostrel: it answers every call as the daemon should.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/soak/call.h"
#include "tests/soak/device.h"

/// What a call brings about.
struct Effect {
  std::string answer;  ///< as call.h says
  std::vector<std::string> signal =
      {};  ///< the texts that are announced; empty: there is no signal
};

class Model {
 public:
  Effect answer(const Call& call);
  /// The "commit:" lines that have gone to the system log since the last call.
  std::vector<std::string> takeLog();
  /// The committed value.
  [[nodiscard]] std::string get(const std::string& name) const;

 private:
  struct Instance {
    const Parm* parm = nullptr;
    std::string base;
    Indices at;
  };
  struct Entry {
    Instance instance;
    std::string value;
    bool reset = false;
    bool force = true;
    bool generated = false;  ///< by a commit or a range query, not by a client
  };
  using Staged = std::map<std::string, Entry>;
  enum Verdict { STORED, PASSED_OVER, NO_INSTANCE, REFUSED };
  struct Step;
  using Plan = std::set<Step>;

  static Instance instanceOf(const std::string& name);
  [[nodiscard]] See seeing(const Staged& staged) const;
  Entry& stage(Staged& staged, const std::string& name, bool generated) const;

  std::string serve(const Call& call, std::vector<std::string>& signal);
  std::string serveSingle(const Call& call, std::vector<std::string>& signal);
  std::string serveIn(Staged& staged, const std::string& operation, const Call& call,
                      std::vector<std::string>& signal);
  std::string start();
  std::string end(uint32_t id);

  [[nodiscard]] std::string getAll(const Staged& staged, const Call& call) const;
  std::string setAll(Staged& staged, const Call& call, bool force) const;
  std::string resetAll(Staged& staged, const Call& call, bool force) const;
  std::string set(Staged& staged, const std::string& name, const std::string& value,
                  bool force) const;

  static Verdict judge(const Instance& instance, std::string& value, bool force, const See& see);
  /// Judges an entry and leaves in it what its parameter holds afterwards.
  Verdict evaluate(Entry& entry, const std::string& name, const Staged& staged, bool store);
  void takeCommitted(Entry& entry, const std::string& name) const;
  static bool isRefusal(Verdict verdict) { return verdict == NO_INSTANCE || verdict == REFUSED; }
  static std::string refusalCode(Verdict verdict);
  static std::string commitFailure(Verdict verdict);

  [[nodiscard]] bool isReported(const Step& step, Access access, const std::string& before) const;
  std::string commit(Staged& staged, std::vector<std::string>& signal);
  [[nodiscard]] Plan planCommit(Staged& staged) const;
  void resolveResets(Staged& staged) const;

  std::string rangeAnswer(const Staged& staged, const std::string& name);
  std::string rangesAnswer(const Staged& staged, const std::vector<std::string>& names);
  int range(Staged scratch, const std::string& name, Range& out);
  Plan planQuery(Staged& scratch, const std::set<std::string>& names, int targetLevel) const;
  int evaluateQuery(const Plan& plan, Staged& scratch);
  static int presentRange(const Instance& instance, const See& see, Range& out);
  [[nodiscard]] std::string indices(const Staged& staged, const std::string& name) const;
  [[nodiscard]] std::string indexRange(const Staged& staged, const std::string& index) const;

  std::map<std::string, std::string> committed_;
  std::set<std::string> announced_;
  std::map<uint32_t, Staged> open_;
  uint32_t nextId_ = 0;
  std::vector<std::string> log_;
};
