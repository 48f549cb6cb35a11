// Completion: how a line of a session may go on.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "play/device.h"

/// So many words are proposed at most.
constexpr size_t MAX_COMPLETIONS = 5000;

/// The words that may come behind the words of `before`, as they are spelled, and begin with
/// `start`, ascending: operations at the beginning of a line, then names, and behind a name the
/// values that are valid for it now, outside of transactions. Spans of more numbers than
/// MAX_COMPLETIONS are left out. Empty where `before` is wrong, or where nobody knows.
std::vector<std::string> completions(Device& device, std::string_view before,
                                     std::string_view start);
