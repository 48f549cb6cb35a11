#include "startup/version.h"

#include "commit_id.h"

// The compiler takes date and time from SOURCE_DATE_EPOCH where the build sets it.
const char VERSION_TEXT[] =
    "ostrel Built on " __DATE__ " " __TIME__ " [" OSTREL_VERSION " ostrel " COMMIT_ID "]";
