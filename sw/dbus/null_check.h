// Null checks of what the binding library hands over.
#pragma once

/// Stops the program, as the assertion `expression` in `function` would, when `pointer` is null. A
/// function and no macro, so that a frame that several methods share can name the method.
void assertNotNull(const void* pointer, const char* expression, const char* function);
