#include "sw/dbus/parameters/parameters_object.h"

#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

#include "base/work.h"
#include "sw/dbus/errors.h"
#include "sw/dbus/method_frame.h"
#include "sw/dbus/parameters/bus_error.h"
#include "sw/dbus/parameters/parameter_queries.h"
#include "sw/dbus/parameters/readiness_methods.h"
#include "sw/dbus/parameters/standard_interfaces.h"
#include "sw/dbus/parameters/transaction_methods.h"
#include "sw/dbus/reply.h"

namespace {

constexpr std::string_view PROPERTIES = DBUS_INTERFACE_PROPERTIES;

struct Method {
  std::string_view interface;
  std::string_view member;
  const char* signature;  // of its arguments
  void (*answer)(ParametersState& state, MessageReader& in, MessageWriter& out);
  // Whether a call is answered later, by somebody who has noted it. Null: none is.
  bool (*isLater)(ParametersState& state, DBusMessage* call) = nullptr;
};

constexpr Method METHODS[] = {
    {PARAMETERS_INTERFACE_NAME, "List", "s", answerList},
    {PARAMETERS_INTERFACE_NAME, "ListNames", "sas", answerListNames},
    {PARAMETERS_INTERFACE_NAME, "ListInstances", "uas", answerListInstances},
    {PARAMETERS_INTERFACE_NAME, "GetDefinition", "s", answerGetDefinition},
    {PARAMETERS_INTERFACE_NAME, "GetUses", "as", answerGetUses},
    {PARAMETERS_INTERFACE_NAME, "GetState", "uas", answerGetState},
    {PARAMETERS_INTERFACE_NAME, "Explain", "us", answerExplain},
    {PARAMETERS_INTERFACE_NAME, "Preview", "u", answerPreview},
    {PARAMETERS_INTERFACE_NAME, "Begin", "", answerBegin},
    {PARAMETERS_INTERFACE_NAME, "ListTransactions", "", answerListTransactions},
    {PARAMETERS_INTERFACE_NAME, "Watch", "bb", answerWatch},
    {PARAMETERS_INTERFACE_NAME, "History", "u", answerHistory},
    {PARAMETERS_INTERFACE_NAME, "WaitReady", "", answerWaitReady, isAnsweredLater},
    {PARAMETERS_INTERFACE_NAME, "SetReady", "", answerSetReady},
    {DBUS_INTERFACE_INTROSPECTABLE, "Introspect", "", answerIntrospect},
    {PROPERTIES, "Get", "ss", answerGet},
    {PROPERTIES, "GetAll", "s", answerGetAll},
    {PROPERTIES, "Set", "ssv", answerSet},
};

// The method that a call names; one without an interface means the first with its name. Null where
// there is none.
const Method* methodOf(DBusMessage* call) {
  const char* const member = dbus_message_get_member(call);
  const char* const interface = dbus_message_get_interface(call);
  const auto* const found = std::ranges::find_if(METHODS, [&](const Method& method) {
    return method.member == member && (interface == nullptr || method.interface == interface);
  });
  return found == std::end(METHODS) ? nullptr : found;
}

// Null where the call is answered later.
MessagePointer makeReply(ParametersState& state, const Method& method, DBusMessage* call) {
  if (dbus_message_has_signature(call, method.signature) == 0) {
    throw BusError{DBUS_ERROR_INVALID_ARGS, std::string(method.member) + " takes (" +
                                                method.signature + "), not (" +
                                                dbus_message_get_signature(call) + ")"};
  }
  if (method.isLater != nullptr && method.isLater(state, call)) return nullptr;
  MessagePointer reply(dbus_message_new_method_return(call));
  if (reply == nullptr) throw std::bad_alloc();
  MessageReader in(call);
  MessageWriter out(reply.get());
  method.answer(state, in, out);
  return reply;
}

MessagePointer makeError(DBusMessage* call, const char* name, const std::string& text) {
  const NewText mended = newText({text});
  MessagePointer error(
      retried("error", [&] { return dbus_message_new_error(call, name, mended.text); }));
  g_free(mended.text);
  return error;
}

// All exceptions end here, as the bus library is in C.
MessagePointer answer(ParametersState& state, const Method& method, DBusMessage* call) {
  const ServiceLock lock;
  Work::begin();
  try {
    return makeReply(state, method, call);
  } catch (const BusError& error) {
    return makeError(call, error.name, error.text);
  } catch (const WorkExceeded&) {
    logExceededWork();
    return makeError(call, TOO_LARGE_ERROR,
                     std::string(method.member) + " would take longer than a call may");
  } catch (const MessageTooLong&) {
    return makeError(call, TOO_LARGE_ERROR,
                     "The reply of " + std::string(method.member) + " is too long for a message");
  } catch (const std::bad_alloc&) {
    return MessagePointer(retried("error", [&] {
      return dbus_message_new_error(call, DBUS_ERROR_NO_MEMORY, "The memory is exhausted");
    }));
  }
}

ParametersState* served = nullptr;

}  // namespace

ParametersObject::ParametersObject(DBusConnection* connection, const std::string& path,
                                   ServiceState& service, CallServer& calls,
                                   const std::string& version, bool isReady)
    : connection_(connection),
      path_(path),
      calls_(calls),
      state_(connection, path, service, version, isReady) {
  static constexpr DBusObjectPathVTable HANDLERS = {nullptr, take,    nullptr,
                                                    nullptr, nullptr, nullptr};
  if (dbus_connection_register_object_path(connection, path.c_str(), &HANDLERS, this) == 0) {
    throw std::bad_alloc();
  }
  served = &state_;
}

ParametersObject::~ParametersObject() {
  served = nullptr;
  dbus_connection_unregister_object_path(connection_, path_.c_str());
}

DBusHandlerResult ParametersObject::take(DBusConnection* /*connection*/, DBusMessage* message,
                                         void* self) {
  if (dbus_message_get_type(message) != DBUS_MESSAGE_TYPE_METHOD_CALL) {
    return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
  }
  return static_cast<ParametersObject*>(self)->calls_.take(message, serve);
}

DBusHandlerResult ParametersObject::serve(DBusConnection* connection, DBusMessage* call) {
  const Method* const method = methodOf(call);
  if (method == nullptr || served == nullptr) return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
  const MessagePointer reply = answer(*served, *method, call);
  if (reply == nullptr || dbus_message_get_no_reply(call) != 0) return DBUS_HANDLER_RESULT_HANDLED;
  retried("reply", [&] {
    const bool isSent = dbus_connection_send(connection, reply.get(), nullptr) != 0;
    return isSent ? reply.get() : nullptr;
  });
  return DBUS_HANDLER_RESULT_HANDLED;
}
