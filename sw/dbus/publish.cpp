#include "sw/dbus/publish.h"

#include <algorithm>

#include "sw/dbus/reply.h"

namespace {

// Texts on their way out; they go out when they are as many as fit into one signal, or complete.
// Raises no exceptions: what is committed must be told, also where memory is exhausted.
class Portion {
 public:
  Portion(ValueObject* object, size_t capacity)
      : object_(object), texts_(retried("data", [&] { return g_try_new(char*, capacity + 1); })) {}
  ~Portion() {
    clear();
    g_free(texts_);
  }
  Portion(const Portion&) = delete;
  Portion& operator=(const Portion&) = delete;

  // `change` is given away.
  void add(char* change) {
    const size_t bytes = bytesInMessage(change);
    if (bytes > MAX_MESSAGE_BYTES) {
      g_free(change);
      return;
    }
    if (bytes_ + bytes > MAX_MESSAGE_BYTES) emit();
    texts_[count_++] = change;
    bytes_ += bytes;
  }

  void emit() {
    if (count_ == 0) return;
    texts_[count_] = nullptr;
    emitTransaction(object_, texts_);
    clear();
  }

 private:
  void clear() {
    std::for_each_n(texts_, count_, g_free);
    count_ = 0;
    bytes_ = 0;
  }

  ValueObject* object_;
  char** texts_;
  size_t count_ = 0;
  size_t bytes_ = 0;
};

char* changeText(const Change& change) {
  const std::string& value = change.held->value.text();
  GString* text = g_string_sized_new(change.name.size() + 1 + value.size());
  g_string_append_len(text, change.name.data(), static_cast<gssize>(change.name.size()));
  g_string_append_c(text, '=');
  g_string_append_len(text, value.data(), static_cast<gssize>(value.size()));
  char* valid = newText({text->str, text->len});
  g_string_free(text, TRUE);
  return valid;
}

}  // namespace

void publish(ValueObject* object, const std::vector<Change>& changes) noexcept {
  if (changes.empty()) return;
  Portion portion(object, changes.size());
  for (const Change& change : changes) portion.add(changeText(change));
  portion.emit();
}
