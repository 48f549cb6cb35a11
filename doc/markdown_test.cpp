#include "doc/markdown.h"

#include <gtest/gtest.h>

#include "doc/testing.h"

namespace {

TEST(Markdown, HasTheWholeDevice) {
  DocModel model = modelOf(
      "# ---- Picture ----\n"
      "# A *bold* <b>claim</b>.\n"
      "mode rw { rangeValid { \"film\", \"a|b\" } valueChange { \"x\" -> \"film\" } }\n"
      "i index { rangeValid { 1..2 } }\n"
      "gain rw { index { i } rangeValid (mode == \"film\") { -5..9, 20 }\n"
      "  rangeDoc { 0 } ctrlRO (mode == 1) ctrlValid (mode != 2)\n"
      "  default (mode == \"film\") { (mode + 1) } default { 7 } }\n");
  model.standards = {{"mode",
                      {"625i/50", "720p/50"},
                      {{"gain", "[1]", {{true, true, {{0, 9}}, {}, false, "3"}, {}}}}}};
  EXPECT_EQ(markdownText(model),
            "# A device\n\n"
            "2 parameters, from device\\.ostrel\n\n\n"
            "## Parameters\n\n"
            "### Picture\n\n"
            "#### <a id=\"p-mode\"></a>mode\n\n"
            "A \\*bold\\* \\<b\\>claim\\</b\\>\\.\n\n"
            "- rw, level 0\n"
            "- values: “film”, “a\\|b”\n"
            "- “x” becomes “film”\n"
            "- followed by [gain](#p-gain)\n\n"
            "#### <a id=\"p-gain\"></a>gain\n\n"
            "- rw, level 1\n"
            "- indexed by [i](#i-i)\n"
            "- exists while [mode](#p-mode) is not 2\n"
            "- values: \\-5 … 9, 20, while [mode](#p-mode) is “film”\n"
            "- follows [mode](#p-mode)\n"
            "- offered: 0\n"
            "- default: [mode](#p-mode) \\+ 1, while [mode](#p-mode) is “film”\n"
            "- default: 7\n"
            "- read\\-only while [mode](#p-mode) is 1\n\n"
            "## Indices\n\n"
            "#### <a id=\"i-i\"></a>i\n\n"
            "- values: 1 … 2\n"
            "- indexes [gain](#p-gain)\n\n"
            "## Video standards\n\n"
            "By the standard of [mode](#p-mode):\n\n"
            "| Parameter | 625i/50 | 720p/50 |\n"
            "|---|---|---|\n"
            "| [gain](#p-gain) \\[1\\] | 0 … 9; default 3 | absent |\n\n");
}

}  // namespace
