// Spare memory: what transactions leave behind goes back to the system.
#pragma once

/// To be called by whatever leaves much memory unused when it is done: commits, ends of
/// transactions and range queries. Within two seconds the main loop gives that memory back, once
/// for all calls until then: where a client goes on, most of it is needed again at once. Needs a
/// little memory of GLib's, see last_words.h.
void returnSpareMemorySoon();
