#include "sw/dbus/publish.h"

#include "sw/dbus/reply.h"

namespace {

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

void emit(ValueObject* object, TextList& portion) {
  emitTransaction(object, portion.texts());
  portion.clear();
}

}  // namespace

void publish(ValueObject* object, const std::vector<Change>& changes) noexcept {
  if (changes.empty()) return;
  TextList portion("data", changes.size());
  for (const Change& change : changes) {
    char* const text = changeText(change);
    const size_t bytes = bytesInMessage(text);
    if (bytes > MAX_MESSAGE_BYTES) {
      g_free(text);
      continue;
    }
    if (portion.bytes() + bytes > MAX_MESSAGE_BYTES) emit(object, portion);
    portion.take(text);
  }
  if (!portion.empty()) emit(object, portion);
}
