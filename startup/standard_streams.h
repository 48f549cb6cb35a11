// The standard streams, which whoever starts the program may have closed.
#pragma once

/// Opens the null device for each of the descriptors 0, 1 and 2 that is closed, so that no socket
/// gets one of them: what reads, prints or detaches would take it for a standard stream. It is
/// opened for writing only: what is printed goes nowhere, and reading fails as it does from a
/// closed standard input. To be called before anything else is opened.
void openStandardStreams();
