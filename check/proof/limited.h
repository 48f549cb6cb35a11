// Limited: what is asked of the engine ends, however many instances a text has.
#pragma once

#include <cstdint>
#include <functional>

/// What one question may ask of the engine, in units of base/work.h: some tenths of a second.
constexpr uint64_t QUESTION_WORK = 200'000'000;

/// Calls `act`, which may spend `units` of work. Returns false where it was given up because work
/// or memory gave out: values may then be set that nobody takes away. Work has no limit afterwards.
bool doWithin(uint64_t units, const std::function<void()>& act);
