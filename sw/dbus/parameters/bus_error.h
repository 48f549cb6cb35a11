// Bus errors: what a method answers in place of its reply.
#pragma once

#include <string>
#include <string_view>

/// Raised by the methods, and answered by the frame of all of them.
struct BusError {
  const char* name;
  std::string text;
};

// The errors of this interface; org.tavrel.parameters1.xml lists them.
inline constexpr const char* UNKNOWN_TRANSACTION_ERROR =
    "org.tavrel.parameters1.Error.UnknownTransaction";
inline constexpr const char* UNKNOWN_PARAMETER_ERROR =
    "org.tavrel.parameters1.Error.UnknownParameter";
inline constexpr const char* INVALID_PATTERN_ERROR = "org.tavrel.parameters1.Error.InvalidPattern";
inline constexpr const char* TOO_LARGE_ERROR = "org.tavrel.parameters1.Error.TooLarge";

/// `text` between quotes, for an error.
inline std::string quoted(std::string_view text) { return '"' + std::string(text) + '"'; }
