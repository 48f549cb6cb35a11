// File descriptors: the service receives none, and the bus keeps back messages that bring some.
#pragma once

/// While it lives, connections to a bus are made without the ability to receive descriptors, and
/// they never get it later. Where a call with descriptors is for such a connection, the bus answers
/// with the error org.freedesktop.DBus.Error.NotSupported; it drops other messages with
/// descriptors.
///
/// A connection that can receive descriptors ends where the process has no room for more, and for a
/// message with more than the 16 that the bus library takes, where session buses allow 4096. The
/// library has no setting for it: it takes descriptors on every socket that says that it is a Unix
/// socket. So the program has a getsockname() of its own, which names no kind of socket meanwhile,
/// to whoever asks: keep it to the few lines that connect. One lives at a time.
class WithoutDescriptors {
 public:
  /// From here on sockets do not say that they are Unix sockets.
  WithoutDescriptors();
  /// From here on they say so again.
  ~WithoutDescriptors();
  WithoutDescriptors(const WithoutDescriptors&) = delete;
  WithoutDescriptors& operator=(const WithoutDescriptors&) = delete;
};
