// File descriptors: the service takes none, and the bus keeps back messages that bring some.
#pragma once

/// While it lives, connections to a bus are made without the ability to receive descriptors. A bus
/// then answers a call that brings some with the error org.freedesktop.DBus.Error.NotSupported, and
/// drops other messages with them.
///
/// A connection that can receive them ends where the process has no room for more, and for a
/// message with more than the bus library takes, which is 16, where session buses allow 4096. The
/// library has no setting for it: it takes descriptors on every socket that says that it is a Unix
/// socket. So the program has a getsockname() of its own, which names no kind of socket meanwhile.
class WithoutDescriptors {
 public:
  WithoutDescriptors();
  ~WithoutDescriptors();
  WithoutDescriptors(const WithoutDescriptors&) = delete;
  WithoutDescriptors& operator=(const WithoutDescriptors&) = delete;
};
