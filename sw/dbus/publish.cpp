#include "sw/dbus/publish.h"

#include "sw/dbus/reply.h"

namespace {

const char* const DATA = "data";  // what messages call the signal's texts

void emit(ValueObject* object, TextList& portion) {
  emitTransaction(object, portion.texts());
  portion.clear();
}

// Each text is in memory twice, as the signal's emission copies it. Beside each are the bytes of
// the allocator and of the list that holds it.
constexpr size_t TEXTS = 2;
constexpr size_t MEMORY_BESIDE_TEXT = 48;

}  // namespace

bool SignalRoom::makeRoom(const Change& change) {
  constexpr size_t MENDED = 3;  // a byte that is not valid becomes so many
  const std::string& value = change.held->value.text();
  const bool isValid = g_utf8_validate_len(value.data(), value.size(), nullptr) == TRUE;
  const size_t length = change.name.size() + 1 + value.size() * (isValid ? 1 : MENDED);
  needed_ += TEXTS * (length + MEMORY_BESIDE_TEXT) + COPIES_IN_MESSAGE * bytesInMessage(length);
  return reserve_.grow(needed_);
}

void publish(ValueObject* object, const std::vector<Change>& changes) noexcept {
  if (changes.empty()) return;
  TextList portion(DATA, changes.size());
  for (const Change& change : changes) {
    fetchAhead(changes, change);
    NewText text{};
    retried(DATA, [&] {
      text = tryNewText({change.name, "=", change.held->value.text()});
      return text.text;
    });
    const size_t bytes = bytesInMessage(text.length);
    if (bytes > MAX_MESSAGE_BYTES) {
      g_free(text.text);
      continue;
    }
    if (portion.bytes() + bytes > MAX_MESSAGE_BYTES) emit(object, portion);
    portion.adopt(text);
  }
  if (!portion.empty()) emit(object, portion);
}
