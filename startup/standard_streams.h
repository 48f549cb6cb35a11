// The standard streams, which whoever starts the program may have closed.
#pragma once

/// Opens the null device for each of the descriptors 0, 1 and 2 that is closed, so that no socket
/// gets one of these numbers: whatever reads, prints or detaches would take the socket for a
/// standard stream. The device is opened for writing only: what is printed is dropped, and reading
/// fails as it does from a closed standard input. To be called before anything else is opened.
/// Where the device cannot be opened, the descriptors stay closed.
void openStandardStreams();
