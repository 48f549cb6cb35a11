// Clients of the second interface, org.tavrel.parameters1: calls as texts, signals collected.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/harness/client.h"

constexpr const char* PARAMETERS_INTERFACE = "org.tavrel.parameters1";
constexpr const char* PARAMETERS_PATH = "/parameters";

/// Asks for a client, which has to live as long and keeps its own calls of the first interface.
class ParametersClient {
 public:
  explicit ParametersClient(const Client& client, std::string path = PARAMETERS_PATH);
  ~ParametersClient();
  ParametersClient(const ParametersClient&) = delete;
  ParametersClient& operator=(const ParametersClient&) = delete;

  /// As Client::answer(), for a method of this interface: "GetState(4294967295, ['gain'])", or of
  /// the properties: "Get('Watchers')". NONE is 4294967295. In the answer the client's own unique
  /// name is ME, and the interface's name in front of an error is left out.
  [[nodiscard]] std::string answer(const std::string& text) const;
  /// The answer as it comes; null for an error, which fails the test.
  [[nodiscard]] VariantPointer ask(const std::string& text) const;
  /// The signals of the interface that came since the last call, whether they were asked for or
  /// not, as in "Changed (1, 'ME', [('gain', '', '5')])".
  std::vector<std::string> newSignals();
  /// Calls a method and wants no reply.
  void callWithoutReply(const std::string& method, GVariant* arguments) const;

  [[nodiscard]] const Client& client() const { return client_; }

 private:
  static void onSignal(GDBusConnection* connection, const gchar* sender, const gchar* path,
                       const gchar* interface, const gchar* signal, GVariant* parameters,
                       gpointer self);
  [[nodiscard]] Reply call(const std::string& text) const;
  [[nodiscard]] std::string withMe(std::string text) const;

  const Client& client_;
  std::string path_;
  guint subscription_ = 0;
  std::vector<std::string> signals_;
};
