// The report as JSON of our own.
#pragma once

#include <span>
#include <string>

#include "check/report.h"

/// One document for all texts, as check/schemas/report-1.json and ostrel-check(1) describe it, with
/// a newline at its end. Lines and columns count from 1, columns in bytes. It is valid UTF-8: a
/// byte of a text that belongs to no character becomes U+FFFD.
std::string jsonReport(std::span<const FileReport> files);
