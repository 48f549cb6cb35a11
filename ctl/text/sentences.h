// Sentences: what the service says about an instance, for people.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ctl/service/answers.h"

/// Where a statement stands and what it saw: line 7, rangeValid { 0..(mode) }, where mode is 5.
/// Empty where no statement decided.
std::string statementText(const Reason& reason);

/// "mode, gain and delay": the names of a list, the last one after "and". Of more than `most`, the
/// rest are counted: "mode, gain and 3 more".
std::string namesText(const std::vector<std::string>& names, size_t most = SIZE_MAX);

/// The sentences of a list of reasons: whether it exists, whether it can be written, what it takes,
/// its default; `state` is the instance's. Each line begins a sentence, or goes on with "  and".
std::vector<std::string> reasonLines(const InstanceState& state,
                                     const std::vector<Reason>& reasons);

/// What became of `asked`: "cut from 5000: 0..1000, line 12" or the like; empty where `stored` is
/// what was asked for. `translated` is what the definition makes of `asked`, or `asked` itself.
std::string cutText(const std::string& asked, const std::string& translated,
                    const InstanceState& stored, const std::vector<Reason>& reasons);

/// The answers to one question.
std::vector<Reason> answersTo(const std::vector<Reason>& reasons, const std::string& question);
