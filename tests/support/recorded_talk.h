// Recorded talks, for tests: what the engine answers to random writes, for the evaluator of a page
// to answer once more.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "play/device.h"

/// A definition text and what is written to it.
struct TalkSubject {
  std::string what;  ///< for messages
  std::string text;
  PlayConstants constants = {};
  std::vector<std::string> values = {};  ///< to choose from
  std::vector<std::string> names = {};   ///< to write to; empty for all
};

/// What was recorded of one subject.
struct RecordedTalk {
  /// The subject, its data (device_data.h), the names that are looked at, and the steps: each with
  /// what is written, the answer, and for each name that has changed what it is now. As JSON that
  /// may stand in a script (script_json.h); empty where the text cannot be built.
  std::string json = {};
  size_t looks = 0;  ///< how often a name was looked at
};

/// Plays `steps` random writes on the engine; the same ones for the same `seed`.
RecordedTalk recordTalk(const TalkSubject& subject, uint32_t seed, size_t steps);
