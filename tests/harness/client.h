// Clients of the service: one connection to the bus each, calls as texts, signals collected.
#pragma once

#include <gio/gio.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "tests/harness/bus_methods.h"
#include "tests/harness/process.h"

struct VariantUnref {
  void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using VariantPointer = std::unique_ptr<GVariant, VariantUnref>;

/// What came back from a call: a value, or an error.
struct Reply {
  VariantPointer value;  ///< a tuple of the out-arguments; null for an error
  std::string errorName;
  std::string errorMessage;
};

class Client {
 public:
  explicit Client(const std::string& busAddress);
  ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  /// Where the calls go: by default to the names without suffixes.
  void setTarget(std::string busName, std::string objectPath);

  /// Waits until the target's name has an owner; false when `daemon` ends before, or time runs out.
  bool waitForService(const Process& daemon);

  /// Calls a method with in-arguments that may be floating.
  [[nodiscard]] Reply call(const std::string& method, GVariant* arguments) const;

  /// Calls a method of any interface of any object of the target.
  [[nodiscard]] Reply callObject(const std::string& path, const std::string& interface,
                                 const std::string& method, GVariant* arguments) const;

  /// Makes the call that `text` spells, as in "set(0, 'gain', '5')", with the arguments in GLib's
  /// text format of values. The answer is as text too: "()" from a method without out-arguments,
  /// the value from one with one, the list of values in brackets from others; an error's message
  /// without the beginning that all have. An error of another name has that name in front.
  [[nodiscard]] std::string answer(const std::string& text) const;

  /// A call that is not waited for; its answer, as of answer(), is given by a later
  /// collectAnswers(), in the order of the calls.
  void send(const std::string& text);
  std::vector<std::string> collectAnswers() { return collectAnswers(pending_.size()); }
  /// Those to the first `count` calls that are not yet collected.
  std::vector<std::string> collectAnswers(size_t count);

  /// The texts of each "transaction" signal that came since the last call.
  std::vector<std::vector<std::string>> newSignals();

  [[nodiscard]] GDBusConnection* connection() const { return connection_; }

 private:
  static void onSignal(GDBusConnection* connection, const gchar* sender, const gchar* path,
                       const gchar* interface, const gchar* signal, GVariant* parameters,
                       gpointer self);
  static void onAnswer(GObject* connection, GAsyncResult* result, gpointer pending);

  struct Pending {
    bool done = false;
    std::string answer;
  };

  GDBusConnection* connection_ = nullptr;
  std::string busName_ = INTERFACE_NAME;
  std::string objectPath_ = OBJECT_PATH;
  std::vector<std::vector<std::string>> signals_;
  std::deque<std::unique_ptr<Pending>> pending_;
};

/// Waits until the bus has passed on what the client has sent.
void waitForBus(const Client& client);

/// A value in GLib's text format, without types.
std::string printed(GVariant* value);
/// What Client::answer() gives for a reply.
std::string textOf(const Reply& reply);
/// Gives out what has come for the connections, and returns when there is nothing more.
void iterateUntilIdle();
/// The texts of an array of strings.
std::vector<std::string> textsOf(GVariant* array);
