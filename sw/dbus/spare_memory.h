// Spare memory: what transactions leave behind goes back to the system.
#pragma once

/// To be called by whatever leaves much memory unused when it is done: commits, ends of
/// transactions and range queries. Within two seconds the main loop gives that memory back, once
/// for all calls until then: where a client goes on, most of it is needed again at once. Needs a
/// little memory of GLib's, see last_words.h.
void returnSpareMemorySoon();

/// Has the heap keep what is freed until returnSpareMemorySoon(), up to 16 MiB at its end, and take
/// blocks of up to 4 MiB from there. By itself it returns its end to the system as soon as that is
/// twice the largest block so far, which each commit with some hundred dependents may reach, and
/// then gets it back page by page: commits of 1,000 and of 10,000 dependents take 1.1 to 1.2 times
/// as long so (docs/performance.md). To be called once, before the service serves.
void keepSpareMemory();
