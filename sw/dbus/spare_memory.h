// Spare memory: what transactions leave behind goes back to the system.
#pragma once

/// To be called by whatever leaves much memory unused when it is done. Within two seconds the main
/// loop gives that back, once for all calls until then: where a client goes on, most of it is
/// needed again at once.
void returnSpareMemorySoon();
