#include "sw/dbus/reporter.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <clocale>

namespace {

TEST(ReportError, WritesMessageAndDetailToStandardError) {
  testing::internal::CaptureStderr();
  reportError("The message.", "the detail", false);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Transaction server: ERROR: The message. (the detail)\n");
}

TEST(ReportErrorDeathTest, EndsTheProcessWithOneWhenFatal) {
  EXPECT_EXIT(reportError("Over", "out", true), testing::ExitedWithCode(1),
              "^Transaction server: ERROR: Over \\(out\\)\n$");
}

TEST(PrintRawBytes, HoldsInEveryLocale) {
  printRawBytes();
  for (const char* locale : {"C", "C.UTF-8"}) {
    SCOPED_TRACE(locale);
    ASSERT_NE(setlocale(LC_ALL, locale), nullptr);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    g_print("Couldn\u2019t, \xff\n");
    reportError("Couldn\u2019t", "\xfe", false);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Couldn\xe2\x80\x99t, \xff\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Transaction server: ERROR: Couldn\xe2\x80\x99t (\xfe)\n");
  }
  setlocale(LC_ALL, "C");
}

}  // namespace
