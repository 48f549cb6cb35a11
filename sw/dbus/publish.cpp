#include "sw/dbus/publish.h"

#include "sw/dbus/reply.h"

namespace {

// A portion of the texts; goes out when it is full or complete.
class Portion {
 public:
  explicit Portion(ValueObject* object) : object_(object) {}

  // `change` was made by newText and is given away.
  void add(char* change) {
    const size_t bytes = bytesInMessage(change);
    if (bytes > MAX_MESSAGE_BYTES) {
      g_free(change);
      return;
    }
    if (texts_.bytes() + bytes > MAX_MESSAGE_BYTES) emit();
    texts_.take(change);
  }

  void emit() {
    if (texts_.empty()) return;
    char** changes = texts_.release();
    emitTransaction(object_, changes);
    g_strfreev(changes);
  }

 private:
  ValueObject* object_;
  TextList texts_{"data"};
};

}  // namespace

void publish(ValueObject* object, const std::vector<Change>& changes) {
  Portion portion(object);
  std::string text;
  for (const Change& change : changes) {
    text.assign(change.name).append("=").append(change.held->value.text());
    portion.add(newText(text));
  }
  portion.emit();
}
