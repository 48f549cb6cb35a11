// The report as SARIF 2.1.0, the form in which other tools take in what checkers find.
#pragma once

#include <span>
#include <string>

#include "check/report.h"

/// One document with one run for all texts, with a newline at its end. Lines and columns count from
/// 1, columns in characters. What a comment allows is a suppressed result, an undecided question
/// a result of the kind "open".
std::string sarifReport(std::span<const FileReport> files);
