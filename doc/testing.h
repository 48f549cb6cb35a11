// What the tests of the documentation share: a model from a text.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "doc/make_model.h"
#include "vid_std.h"

/// The model of a text without mistakes, with the standards left out.
inline DocModel modelOf(const std::string& text, const NamedValues& constants = {}) {
  initVidStdTables();
  const SourceText source("device.ostrel", text);
  Findings findings;
  ReadText read;
  readText(source, read, findings);
  const Variant variant = buildVariant(source, read, constants, findings);
  for (const Finding& finding : findings.all()) ADD_FAILURE() << finding.text;
  return makeModel(source, read, variant, "A device");
}
