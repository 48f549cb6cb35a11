// Failing function: preloaded into the daemon, it makes the library function that FAILING_FUNCTION
// names fail, as its page says that it can.
#include <dbus/dbus-glib.h>
#include <dbus/dbus.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

bool fails(const char* function) {
  const char* failing = getenv("FAILING_FUNCTION");
  return failing != nullptr && strcmp(failing, function) == 0;
}

// That of the library.
template <typename Function>
Function next(Function /*own*/, const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

int failure(int number) {
  errno = number;
  return -1;
}

}  // namespace

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

int daemon(int nochdir, int noclose) {
  return fails("daemon") ? failure(EAGAIN) : next(daemon, "daemon")(nochdir, noclose);
}

int eventfd(unsigned count, int flags) {
  return fails("eventfd") ? failure(EMFILE) : next(eventfd, "eventfd")(count, flags);
}

// Only of the null device: each process opens some files as it starts.
int open(const char* path, int flags, ...) {
  if (fails("open") && std::string_view(path) == "/dev/null") return failure(ENOENT);
  va_list rest;
  va_start(rest, flags);
  const int descriptor = next(open, "open")(path, flags, va_arg(rest, mode_t));
  va_end(rest);
  return descriptor;
}

int ioctl(int descriptor, unsigned long request, ...) noexcept {
  if (fails("ioctl")) return failure(EBADF);
  va_list rest;
  va_start(rest, request);
  const int result = next(ioctl, "ioctl")(descriptor, request, va_arg(rest, void*));
  va_end(rest);
  return result;
}

// What g_try_new0 becomes for a single piece, without and with optimisation.
gpointer g_try_malloc0_n(gsize pieces, gsize bytes) {
  return fails("g_try_new0") ? nullptr : next(g_try_malloc0_n, "g_try_malloc0_n")(pieces, bytes);
}

gpointer g_try_malloc0(gsize bytes) {
  return fails("g_try_new0") ? nullptr : next(g_try_malloc0, "g_try_malloc0")(bytes);
}

dbus_bool_t dbus_connection_get_unix_fd(DBusConnection* connection, int* descriptor) {
  return fails("dbus_connection_get_unix_fd")
             ? FALSE
             : next(dbus_connection_get_unix_fd, "dbus_connection_get_unix_fd")(connection,
                                                                                descriptor);
}

GMainLoop* g_main_loop_new(GMainContext* context, gboolean isRunning) {
  return fails("g_main_loop_new") ? nullptr
                                  : next(g_main_loop_new, "g_main_loop_new")(context, isRunning);
}

DBusGProxy* dbus_g_proxy_new_for_name(DBusGConnection* connection, const char* name,
                                      const char* path, const char* interface) {
  return fails("dbus_g_proxy_new_for_name")
             ? nullptr
             : next(dbus_g_proxy_new_for_name, "dbus_g_proxy_new_for_name")(connection, name, path,
                                                                            interface);
}

// Only of an object without properties: the binding library makes others.
gpointer g_object_new(GType type, const gchar* property, ...) {
  if (fails("g_object_new") && property == nullptr) return nullptr;
  va_list rest;
  va_start(rest, property);
  GObject* object = g_object_new_valist(type, property, rest);
  va_end(rest);
  return object;
}
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
