#include "play/engine_device.h"

#include <dbus/dbus-glib.h>

#include <algorithm>
#include <cassert>
#include <utility>

#include "base/system_log.h"
#include "base/work.h"
#include "coverage/device_coverage.h"
#include "database/explain.h"
#include "database/trial.h"
#include "deflang/text/definition_grammar.h"
#include "deflang/text/diagnostics.h"
#include "play/explanation_text.h"
#include "play/known_device.h"
#include "sw/dbus/method_frame.h"
#include "sw/dbus/reply.h"
#include "sw/dbus/server_methods.h"
#include "sw/dbus/service_state.h"
#include "sw/parm/build/builder.h"
#include "sw/parm/build/make_definitions.h"

namespace {

// A list of texts as the binding library hands them in.
class TextArray {
 public:
  explicit TextArray(const std::vector<std::string>& texts) {
    // The methods do not change what they are given.
    for (const std::string& text : texts) texts_.push_back(const_cast<char*>(text.c_str()));
    texts_.push_back(nullptr);
  }
  char** texts() { return texts_.data(); }
  [[nodiscard]] const char* first() const { return texts_.front(); }
  [[nodiscard]] guint32 count() const { return static_cast<guint32>(texts_.size() - 1); }

 private:
  std::vector<char*> texts_;
};

// A call that is being served: what goes in, and room for whatever comes out.
struct Serving {
  Serving(ValueObject* valueObject, const Call& call)
      : object(valueObject), id(call.transaction), names(call.names), values(call.values) {}

  ValueObject* object;
  guint32 id;
  TextArray names;
  TextArray values;
  guint32 newId = 0;
  gboolean valid = FALSE;
  char* text = nullptr;
  char** texts = nullptr;
  GPtrArray* spans = nullptr;
  GPtrArray* namedTexts = nullptr;
  GPtrArray* namedSpans = nullptr;
  std::vector<TriedChange> tried = {};
  std::vector<std::string> notes = {};
  GError* error = nullptr;
};

// The bus has no such method: what commit would do, in the frame of commit.
gboolean tryCommitOf(Serving& s) {
  return inTransaction({"try", s.object, &s.error}, METHOD_COMMIT, s.id,
                       [&](Transaction& transaction) { return tryCommit(transaction, s.tried); });
}

// Nor this one, which is in the frame of reading.
gboolean explainOf(Serving& s) {
  return inTransaction(
      {"why", s.object, &s.error}, METHOD_GET, s.id, [&](Transaction& transaction) {
        const char* const name = s.names.first();
        s.notes = s.values.count() == 0 ? explanationLines(transaction, name)
                                        : explanationLines(transaction, name, s.values.first());
        Explanation explanation;
        const int result = explain(transaction.database(), transaction.staged(), name, explanation);
        s.valid = result == EXPLAIN_DONE && explanation.exists ? TRUE : FALSE;
        return 0;
      });
}

struct ServedMethod {
  std::string_view name;
  gboolean (*serve)(Serving&);
};

// Of each method its arguments, in the order of org.tavrel.transaction(7).
constexpr ServedMethod METHODS[] = {
    {"start", [](Serving& s) { return value_object_start(s.object, &s.newId, &s.error); }},
    {"commit", [](Serving& s) { return value_object_commit(s.object, s.id, &s.error); }},
    {"try", tryCommitOf},
    {"why", explainOf},
    {"end", [](Serving& s) { return value_object_end(s.object, s.id, &s.error); }},
    {"get",
     [](Serving& s) {
       return value_object_get(s.object, s.id, s.names.first(), &s.text, &s.error);
     }},
    {"get_bulk",
     [](Serving& s) {
       return value_object_get_bulk(s.object, s.id, s.names.count(), s.names.texts(), &s.texts,
                                    &s.error);
     }},
    {"single_get",
     [](Serving& s) {
       return value_object_single_get(s.object, s.names.first(), &s.text, &s.error);
     }},
    {"single_get_bulk",
     [](Serving& s) {
       return value_object_single_get_bulk(s.object, s.names.count(), s.names.texts(), &s.texts,
                                           &s.error);
     }},
    {"get_deps",
     [](Serving& s) {
       return value_object_get_deps(s.object, s.names.first(), &s.texts, &s.error);
     }},
    {"is_valid",
     [](Serving& s) {
       return value_object_is_valid(s.object, s.id, s.names.first(), s.values.first(), &s.valid,
                                    &s.error);
     }},
    {"check_set",
     [](Serving& s) {
       return value_object_check_set(s.object, s.id, s.names.first(), s.values.first(), &s.valid,
                                     &s.error);
     }},
    {"single_is_valid",
     [](Serving& s) {
       return value_object_single_is_valid(s.object, s.names.first(), s.values.first(), &s.valid,
                                           &s.error);
     }},
    {"single_check_set",
     [](Serving& s) {
       return value_object_single_check_set(s.object, s.names.first(), s.values.first(), &s.valid,
                                            &s.error);
     }},
    {"set",
     [](Serving& s) {
       return value_object_set(s.object, s.id, s.names.first(), s.values.first(), &s.error);
     }},
    {"set_status",
     [](Serving& s) {
       return value_object_set_status(s.object, s.id, s.names.first(), s.values.first(), &s.error);
     }},
    {"set_bulk",
     [](Serving& s) {
       return value_object_set_bulk(s.object, s.id, s.names.texts(), s.values.texts(), &s.error);
     }},
    {"set_status_bulk",
     [](Serving& s) {
       return value_object_set_status_bulk(s.object, s.id, s.names.texts(), s.values.texts(),
                                           &s.error);
     }},
    {"reset",
     [](Serving& s) { return value_object_reset(s.object, s.id, s.names.first(), &s.error); }},
    {"reset_status",
     [](Serving& s) {
       return value_object_reset_status(s.object, s.id, s.names.first(), &s.error);
     }},
    {"reset_bulk",
     [](Serving& s) { return value_object_reset_bulk(s.object, s.id, s.names.texts(), &s.error); }},
    {"reset_status_bulk",
     [](Serving& s) {
       return value_object_reset_status_bulk(s.object, s.id, s.names.texts(), &s.error);
     }},
    {"single_set",
     [](Serving& s) {
       return value_object_single_set(s.object, s.names.first(), s.values.first(), &s.error);
     }},
    {"single_set_status",
     [](Serving& s) {
       return value_object_single_set_status(s.object, s.names.first(), s.values.first(), &s.error);
     }},
    {"single_set_bulk",
     [](Serving& s) {
       return value_object_single_set_bulk(s.object, s.names.texts(), s.values.texts(), &s.error);
     }},
    {"single_set_status_bulk",
     [](Serving& s) {
       return value_object_single_set_status_bulk(s.object, s.names.texts(), s.values.texts(),
                                                  &s.error);
     }},
    {"single_reset",
     [](Serving& s) { return value_object_single_reset(s.object, s.names.first(), &s.error); }},
    {"single_reset_status",
     [](Serving& s) {
       return value_object_single_reset_status(s.object, s.names.first(), &s.error);
     }},
    {"single_reset_bulk",
     [](Serving& s) {
       return value_object_single_reset_bulk(s.object, s.names.texts(), &s.error);
     }},
    {"single_reset_status_bulk",
     [](Serving& s) {
       return value_object_single_reset_status_bulk(s.object, s.names.texts(), &s.error);
     }},
    {"get_range",
     [](Serving& s) {
       return value_object_get_range(s.object, s.id, s.names.first(), &s.texts, &s.spans, &s.error);
     }},
    {"get_range_bulk",
     [](Serving& s) {
       return value_object_get_range_bulk(s.object, s.id, s.names.texts(), &s.namedTexts,
                                          &s.namedSpans, &s.error);
     }},
    {"get_parm_idx",
     [](Serving& s) {
       return value_object_get_parm_idx(s.object, s.id, s.names.first(), &s.texts, &s.error);
     }},
    {"get_idx_range",
     [](Serving& s) {
       return value_object_get_idx_range(s.object, s.id, s.names.first(), &s.texts, &s.spans,
                                         &s.error);
     }},
};

std::vector<std::string> takenTexts(char** list) {
  std::vector<std::string> texts(list, list + g_strv_length(list));
  g_strfreev(list);
  return texts;
}

// The types of the structures in replies.
GType spanType() {
  return dbus_g_type_get_struct("GValueArray", G_TYPE_INT, G_TYPE_INT, G_TYPE_INVALID);
}
GType namedSpanType() {
  return dbus_g_type_get_struct("GValueArray", G_TYPE_STRING, G_TYPE_INT, G_TYPE_INT,
                                G_TYPE_INVALID);
}
GType namedTextType() {
  return dbus_g_type_get_struct("GValueArray", G_TYPE_STRING, G_TYPE_STRING, G_TYPE_INVALID);
}

// Calls `visit` with each structure of an array, and frees them.
template <typename Visit>
void takeStructures(GPtrArray* structures, GType type, const Visit& visit) {
  for (guint i = 0; i < structures->len; ++i) {
    GValue structure = G_VALUE_INIT;
    g_value_init(&structure, type);
    g_value_take_boxed(&structure, g_ptr_array_index(structures, i));
    visit(structure);
    g_value_unset(&structure);
  }
  g_ptr_array_free(structures, TRUE);
}

std::string textAt(const GValue& structure, guint member) {
  GValue value = G_VALUE_INIT;
  g_value_init(&value, G_TYPE_STRING);
  dbus_g_type_struct_get_member(&structure, member, &value);
  std::string text = g_value_get_string(&value);
  g_value_unset(&value);
  return text;
}

int numberAt(const GValue& structure, guint member) {
  GValue value = G_VALUE_INIT;
  g_value_init(&value, G_TYPE_INT);
  dbus_g_type_struct_get_member(&structure, member, &value);
  return g_value_get_int(&value);
}

Span spanAt(const GValue& structure, guint first) {
  return {numberAt(structure, first), numberAt(structure, first + 1)};
}

std::vector<NamedRange> takenRanges(GPtrArray* texts, GPtrArray* spans) {
  std::map<std::string, NamedRange> ranges;
  takeStructures(texts, namedTextType(), [&](const GValue& structure) {
    ranges[textAt(structure, 0)].texts.push_back(textAt(structure, 1));
  });
  takeStructures(spans, namedSpanType(), [&](const GValue& structure) {
    ranges[textAt(structure, 0)].spans.push_back(spanAt(structure, 1));
  });
  std::vector<NamedRange> list;
  for (auto& [name, range] : ranges) {
    range.name = name;
    list.push_back(std::move(range));
  }
  return list;
}

Answer takenAnswer(const Serving& served) {
  Answer answer;
  answer.transaction = served.newId;
  answer.isValid = served.valid != FALSE;
  if (served.text != nullptr) {
    answer.texts.emplace_back(served.text);
    g_free(served.text);
  }
  if (served.namedSpans != nullptr) {
    answer.ranges = takenRanges(served.namedTexts, served.namedSpans);
  } else if (served.spans != nullptr) {
    NamedRange range = {{}, takenTexts(served.texts)};
    takeStructures(served.spans, spanType(),
                   [&](const GValue& structure) { range.spans.push_back(spanAt(structure, 0)); });
    answer.ranges.push_back(std::move(range));
  } else if (served.texts != nullptr) {
    answer.texts = takenTexts(served.texts);
  }
  return answer;
}

std::string takenError(GError* error) {
  constexpr std::string_view PREFIX = "dbus_tavrel_transaction: ";
  std::string text(std::string_view(error->message).substr(PREFIX.size()));
  g_error_free(error);
  return text;
}

// As commit would announce it.
std::string textOf(const TriedChange& change) {
  const NewText text = newText({change.name, "=", change.value});
  std::string result(text.text, text.length);
  g_free(text.text);
  return result;
}

// Stages what a "single_" method would commit.
void stageSingle(const Call& call, Transaction& transaction) {
  const bool isForced = call.method.find("_status") != std::string_view::npos;
  const bool isReset = call.method.starts_with("single_reset");
  const bool isChecked = call.method == "single_check_set";
  for (size_t i = 0; i < call.names.size(); ++i) {
    const std::string& name = call.names[i];
    if (isReset) {
      static_cast<void>(transaction.reset(name, isForced));
    } else if (!isChecked || transaction.validate(name, call.values[i])) {
      static_cast<void>(transaction.set(name, call.values[i], isForced));
    }
  }
}

// The service, its state and its object, as the daemon has them beside its bus.
class EngineDevice final : public Device {
 public:
  explicit EngineDevice(const PlayConstants& constants)
      : object_(static_cast<ValueObject*>(g_object_new(value_object_get_type(), nullptr))) {
    for (const auto& [name, value] : constants) {
      // Names differ, and so no constant is refused.
      static_cast<void>(database_.defineConstant(name, value));
    }
    // It is never refused here either, and the methods do without it.
    static_cast<void>(state_.createLock());
    state_.setCaller("session");
    g_signal_connect(object_, "transaction", G_CALLBACK(note), this);
  }
  ~EngineDevice() override { g_object_unref(object_); }
  EngineDevice(const EngineDevice&) = delete;
  EngineDevice& operator=(const EngineDevice&) = delete;

  // Returns whether the definitions of `text` could be built. What is wrong with them is printed
  // unless that is told otherwise.
  bool define(std::string_view text, TextCoverage* coverage, bool isTold = false) {
    DefinitionText definitions;
    std::FILE* const report = isTold ? nullptr : stderr;
    if (readDefinitionText(piecesIn(text), definitions, report) != PARSE_DONE) return false;
    DiagnosticCollector silent;
    const int result =
        isTold ? buildDefinitions(silent, definitions.records, definitions.lines, false, database_)
               : makeDefinitions(false, definitions, database_);
    if (result != 0) return false;
    if (coverage != nullptr) coverage_.emplace(database_, *coverage);
    return true;
  }

  Answer call(const Call& call) override {
    if (coverage_) noteCoverage(call);
    const auto* const method = std::ranges::find(METHODS, call.method, &ServedMethod::name);
    assert(method != std::end(METHODS));
    Serving serving(object_, call);
    const bool isDone = method->serve(serving) != FALSE;
    state_.finishCall();
    Answer answer = isDone ? takenAnswer(serving) : Answer{.error = takenError(serving.error)};
    for (const TriedChange& change : serving.tried) answer.changes.push_back(textOf(change));
    if (call.method != "try") answer.changes = std::exchange(changes_, {});
    std::vector<std::string> logged = std::exchange(logLines_, {});
    answer.notes = isDone ? std::move(serving.notes) : std::move(logged);
    return answer;
  }
  std::optional<KnownDevice> known() override { return knownDevice(database_); }

 private:
  static void note(ValueObject* /*object*/, char** changes, EngineDevice* device) {
    device->changes_.insert(device->changes_.end(), changes, changes + g_strv_length(changes));
  }

  // Notes what a call is about to judge.
  void noteCoverage(const Call& call) {
    if (call.method.starts_with("single_set") || call.method.starts_with("single_reset") ||
        call.method == "single_check_set") {
      return noteSingle(call);
    }
    Transaction* const transaction = state_.transactions().find(call.transaction);
    if (transaction == nullptr) return;
    if (call.method == "commit") return coverage_->noteCommit(*transaction);
    if (call.method.starts_with("get_range")) {
      for (const std::string& name : call.names) coverage_->noteRange(*transaction, name);
    }
    if (call.method == "get_idx_range") coverage_->noteIndex(*transaction, call.names.front());
  }

  void noteSingle(const Call& call) {
    Work::begin();
    Transaction transaction(database_);
    try {
      stageSingle(call, transaction);
    } catch (const WorkExceeded&) {
      return;  // so will the call itself
    }
    coverage_->noteCommit(transaction);
  }

  std::vector<std::string> logLines_;
  LogRedirection log_{[this](const std::string& line) { logLines_.push_back(line); }};
  Database database_;
  ServiceState state_{database_};
  ValueObject* object_;
  std::vector<std::string> changes_;
  std::optional<DeviceCoverage> coverage_;
};

}  // namespace

std::unique_ptr<Device> startEngineDevice(const std::string& text, const PlayConstants& constants,
                                          TextCoverage* coverage) {
  auto device = std::make_unique<EngineDevice>(constants);
  if (!device->define(text, coverage)) return nullptr;
  return device;
}

std::unique_ptr<Device> startBuiltDevice(const std::string& text, const PlayConstants& constants,
                                         TextCoverage* coverage) {
  auto device = std::make_unique<EngineDevice>(constants);
  if (!device->define(text, coverage, true)) return nullptr;
  return device;
}
