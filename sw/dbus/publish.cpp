#include "sw/dbus/publish.h"

#include "sw/dbus/reply.h"

namespace {

void emit(ValueObject* object, TextList& portion) {
  emitTransaction(object, portion.texts());
  portion.clear();
}

}  // namespace

void publish(ValueObject* object, const std::vector<Change>& changes) noexcept {
  if (changes.empty()) return;
  TextList portion("data", changes.size());
  for (const Change& change : changes) {
    const NewText text = newText({change.name, "=", change.held->value.text()});
    const size_t bytes = bytesInMessage(text.length);
    if (bytes > MAX_MESSAGE_BYTES) {
      g_free(text.text);
      continue;
    }
    if (portion.bytes() + bytes > MAX_MESSAGE_BYTES) emit(object, portion);
    portion.take(text);
  }
  if (!portion.empty()) emit(object, portion);
}
