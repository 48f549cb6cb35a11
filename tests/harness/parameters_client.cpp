#include "tests/harness/parameters_client.h"

#include <gtest/gtest.h>

#include <map>
#include <utility>

namespace {

constexpr const char* PROPERTIES = "org.freedesktop.DBus.Properties";

// The types of the arguments of each method. Those of the properties get the interface in front.
const std::map<std::string, std::string>& argumentTypes() {
  static const std::map<std::string, std::string> types = {
      {"List", "(s)"},          {"ListNames", "(sas)"}, {"ListInstances", "(uas)"},
      {"GetDefinition", "(s)"}, {"Explain", "(us)"},    {"GetState", "(uas)"},
      {"Preview", "(u)"},       {"Begin", "()"},        {"ListTransactions", "()"},
      {"Watch", "(bb)"},        {"History", "(u)"},     {"WaitReady", "()"},
      {"SetReady", "()"},       {"Get", "(ss)"},        {"GetAll", "(s)"},
      {"Set", "(ssv)"},         {"GetUses", "(as)"}};
  return types;
}

std::string replaced(std::string text, const std::string& what, const std::string& with) {
  for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
    text.replace(at, what.size(), with);
  }
  return text;
}

}  // namespace

ParametersClient::ParametersClient(const Client& client, std::string path)
    : client_(client), path_(std::move(path)) {
  subscription_ = g_dbus_connection_signal_subscribe(
      client_.connection(), nullptr, PARAMETERS_INTERFACE, nullptr, nullptr, nullptr,
      G_DBUS_SIGNAL_FLAGS_NONE, &ParametersClient::onSignal, this, nullptr);
}

ParametersClient::~ParametersClient() {
  g_dbus_connection_signal_unsubscribe(client_.connection(), subscription_);
}

Reply ParametersClient::call(const std::string& text) const {
  const size_t open = text.find('(');
  const std::string method = text.substr(0, open);
  const auto type = argumentTypes().find(method);
  if (type == argumentTypes().end() || open == std::string::npos) {
    ADD_FAILURE() << "no method: " << text;
    return {};
  }
  const bool isOfProperties = method == "Get" || method == "GetAll" || method == "Set";
  std::string arguments = replaced(text.substr(open), "NONE", "4294967295");
  if (isOfProperties && type->second.size() > 3) {
    arguments.insert(1, "'" + std::string(PARAMETERS_INTERFACE) + "', ");
  }
  const bool isAlone = type->second.size() == 3 || type->second == "(as)";
  if (isAlone) arguments.insert(arguments.size() - 1, ",");
  GError* error = nullptr;
  GVariant* const tuple = g_variant_parse(G_VARIANT_TYPE(type->second.c_str()), arguments.c_str(),
                                          nullptr, nullptr, &error);
  if (error != nullptr) {
    ADD_FAILURE() << text << ": " << error->message;
    g_error_free(error);
    return {};
  }
  return client_.callObject(path_, isOfProperties ? PROPERTIES : PARAMETERS_INTERFACE, method,
                            tuple);
}

std::string ParametersClient::withMe(std::string text) const {
  const std::string name = g_dbus_connection_get_unique_name(client_.connection());
  return replaced(std::move(text), "'" + name + "'", "'ME'");
}

std::string ParametersClient::answer(const std::string& text) const {
  const std::string prefix = std::string(PARAMETERS_INTERFACE) + ".Error.";
  std::string answer = textOf(call(text));
  if (answer.starts_with(prefix)) answer.erase(0, prefix.size());
  return withMe(std::move(answer));
}

VariantPointer ParametersClient::ask(const std::string& text) const {
  Reply reply = call(text);
  EXPECT_NE(reply.value, nullptr) << text << ": " << reply.errorName << ": " << reply.errorMessage;
  return std::move(reply.value);
}

void ParametersClient::callWithoutReply(const std::string& method, GVariant* arguments) const {
  g_dbus_connection_call(client_.connection(), INTERFACE_NAME, path_.c_str(), PARAMETERS_INTERFACE,
                         method.c_str(), arguments, nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, -1,
                         nullptr, nullptr, nullptr);
}

// Signals come behind the answer to the call that caused them, and before the next one.
std::vector<std::string> ParametersClient::newSignals() {
  static_cast<void>(answer("Get('Version')"));
  iterateUntilIdle();
  return std::exchange(signals_, {});
}

void ParametersClient::onSignal(GDBusConnection* /*connection*/, const gchar* /*sender*/,
                                const gchar* /*path*/, const gchar* /*interface*/,
                                const gchar* signal, GVariant* parameters, gpointer self) {
  auto* const client = static_cast<ParametersClient*>(self);
  client->signals_.push_back(client->withMe(std::string(signal) + " " + printed(parameters)));
}
