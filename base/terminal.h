// Terminals: what can be shown on one.
#pragma once

/// Whether what is written to the descriptor is coloured: it is a terminal, TERM names one that is
/// not "dumb", and NO_COLOR is not set or empty.
bool isColoured(int descriptor);
