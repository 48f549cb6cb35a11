#include "tests/soak/connection.h"

#include <cstdio>
#include <cstdlib>
#include <optional>

#include "tests/harness/bus_methods.h"

namespace {

void orDie(bool isGood, const char* what) {
  if (!isGood) {
    fprintf(stderr, "soak: %s\n", what);
    abort();
  }
}

void appendText(DBusMessageIter* place, const std::string& text) {
  const char* bytes = text.c_str();
  dbus_message_iter_append_basic(place, DBUS_TYPE_STRING, &bytes);
}

void appendTexts(DBusMessageIter* place, const std::vector<std::string>& texts) {
  DBusMessageIter items;
  dbus_message_iter_open_container(place, DBUS_TYPE_ARRAY, DBUS_TYPE_STRING_AS_STRING, &items);
  for (const std::string& text : texts) appendText(&items, text);
  dbus_message_iter_close_container(place, &items);
}

void append(DBusMessageIter* place, const BusArgument& argument, const Call& call) {
  const std::vector<std::string>& texts = argument.name == "parm_value" ? call.values : call.names;
  if (argument.type == "u") {
    const uint32_t number = argument.name == "parm_num" ? call.count : call.id;
    dbus_message_iter_append_basic(place, DBUS_TYPE_UINT32, &number);
  } else if (argument.type == "s") {
    appendText(place, texts.front());
  } else {
    appendTexts(place, texts);
  }
}

std::string written(DBusMessageIter* place);

std::vector<std::string> writtenItems(DBusMessageIter* container) {
  std::vector<std::string> items;
  DBusMessageIter place;
  dbus_message_iter_recurse(container, &place);
  for (; dbus_message_iter_get_arg_type(&place) != DBUS_TYPE_INVALID;
       dbus_message_iter_next(&place)) {
    items.push_back(written(&place));
  }
  return items;
}

// As deep as the type of an out-argument: three at most.
std::string written(DBusMessageIter* place) {
  DBusBasicValue value;
  switch (dbus_message_iter_get_arg_type(place)) {
    case DBUS_TYPE_STRING:
      dbus_message_iter_get_basic(place, &value);
      return quoted(value.str);
    case DBUS_TYPE_UINT32:
      dbus_message_iter_get_basic(place, &value);
      return std::to_string(value.u32);
    case DBUS_TYPE_INT32:
      dbus_message_iter_get_basic(place, &value);
      return std::to_string(value.i32);
    case DBUS_TYPE_BOOLEAN:
      dbus_message_iter_get_basic(place, &value);
      return value.bool_val != 0 ? "true" : "false";
    case DBUS_TYPE_ARRAY:
      return listed(writtenItems(place));
    case DBUS_TYPE_STRUCT:
      return structured(writtenItems(place));
    default:
      return "(a type that the interface does not have)";
  }
}

std::string writtenAnswer(DBusMessage* message) {
  std::string text;
  DBusMessageIter place;
  for (dbus_message_iter_init(message, &place);
       dbus_message_iter_get_arg_type(&place) != DBUS_TYPE_INVALID;
       dbus_message_iter_next(&place)) {
    text += (text.empty() ? "" : BETWEEN_ARGUMENTS) + written(&place);
  }
  return text;
}

std::string writtenError(DBusMessage* message) {
  const char* text = "";
  dbus_message_get_args(message, nullptr, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
  const std::string whole = text;
  if (dbus_message_is_error(message, ERROR_NAME) != 0 && whole.starts_with(ERROR_PREFIX)) {
    return ERROR_MARK + whole.substr(ERROR_PREFIX.size());
  }
  return std::string(dbus_message_get_error_name(message)) + ": " + whole;
}

std::vector<std::string> textsOf(DBusMessage* message) {
  char** texts = nullptr;
  int count = 0;
  if (dbus_message_get_args(message, nullptr, DBUS_TYPE_ARRAY, DBUS_TYPE_STRING, &texts, &count,
                            DBUS_TYPE_INVALID) == 0) {
    return {"(not the signal of the interface)"};
  }
  std::vector<std::string> result(texts, texts + count);
  dbus_free_string_array(texts);
  return result;
}

// What a message tells the client; nullopt for a message of the bus itself.
std::optional<Incoming> incoming(DBusMessage* message) {
  if (dbus_message_has_sender(message, DBUS_SERVICE_DBUS) != 0) return std::nullopt;
  const int type = dbus_message_get_type(message);
  if (type == DBUS_MESSAGE_TYPE_SIGNAL) {
    if (!dbus_message_has_interface(message, INTERFACE_NAME)) return std::nullopt;
    return Incoming{.isSignal = true, .texts = textsOf(message)};
  }
  return Incoming{
      .to = dbus_message_get_destination(message),
      .serial = dbus_message_get_reply_serial(message),
      .answer = type == DBUS_MESSAGE_TYPE_ERROR ? writtenError(message) : writtenAnswer(message)};
}

}  // namespace

Connection::Connection(const std::string& busAddress)
    : connection_(dbus_connection_open_private(busAddress.c_str(), nullptr)) {
  orDie(connection_ != nullptr, "no connection to the private bus");
  orDie(dbus_bus_register(connection_, nullptr) != 0, "the private bus does not take a client");
  listen("type='signal',interface='org.tavrel.transaction'");
}

Connection::~Connection() {
  dbus_connection_close(connection_);
  dbus_connection_unref(connection_);
}

void Connection::listen(const char* rule) {
  DBusError error = DBUS_ERROR_INIT;
  dbus_bus_add_match(connection_, rule, &error);
  orDie(dbus_error_is_set(&error) == 0, "the private bus does not take a match rule");
}

void Connection::observeAnswers() {
  listen("type='method_return',sender='org.tavrel.transaction',eavesdrop='true'");
  listen("type='error',sender='org.tavrel.transaction',eavesdrop='true'");
}

uint32_t Connection::send(const Call& call) {
  DBusMessage* message = dbus_message_new_method_call(INTERFACE_NAME, OBJECT_PATH, INTERFACE_NAME,
                                                      call.method.c_str());
  dbus_message_set_auto_start(message, FALSE);
  DBusMessageIter place;
  dbus_message_iter_init_append(message, &place);
  for (const BusArgument& argument : findBusMethod(call.method)->in) append(&place, argument, call);
  dbus_uint32_t serial = 0;
  orDie(dbus_connection_send(connection_, message, &serial) != 0, "out of memory");
  dbus_message_unref(message);
  return serial;
}

std::vector<Incoming> Connection::exchange() {
  std::vector<Incoming> all;
  dbus_connection_read_write(connection_, 0);
  while (DBusMessage* message = dbus_connection_pop_message(connection_)) {
    if (std::optional<Incoming> one = incoming(message)) all.push_back(std::move(*one));
    dbus_message_unref(message);
  }
  return all;
}

bool Connection::isOpen() const { return dbus_connection_get_is_connected(connection_) != 0; }

int Connection::descriptor() const {
  int descriptor = -1;
  dbus_connection_get_unix_fd(connection_, &descriptor);
  return descriptor;
}

bool Connection::isSending() const {
  return dbus_connection_has_messages_to_send(connection_) != 0;
}
