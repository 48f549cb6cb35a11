// Spare memory: what transactions leave behind goes back to the system.
#pragma once

/// To be called after whatever may leave much memory unused. Within two seconds the main loop gives
/// it back, once for all calls until then: most of it is needed again at once where a client goes
/// on.
void returnSpareMemorySoon();
