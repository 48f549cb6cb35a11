// Null checks of what the binding library hands over.
#pragma once

/// Stops the program, as the assertion `expression` in `function` would, when `pointer` is null.
void assertNotNull(const void* pointer, const char* expression, const char* function);
