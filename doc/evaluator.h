// The evaluator of a page: what answers for a device without the engine.
#pragma once

#include <string_view>

/// The script (evaluator.js), which defines OstrelDevice; valid for good.
std::string_view evaluatorScript();
