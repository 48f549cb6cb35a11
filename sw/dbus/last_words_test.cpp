#include "sw/dbus/last_words.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "base/system_log.h"

// Not every build has it from its header.
// NOLINTNEXTLINE(readability-*,bugprone-reserved-identifier)
extern "C" int __vasprintf_chk(char** ptr, int flag, const char* fmt, va_list arg);

namespace {

// What `act` leads to, with the lines of the system log on standard error.
template <typename Act>
void afterPreparation(const Act& act) {
  const LogRedirection log([](const std::string& line) { fprintf(stderr, "%s\n", line.c_str()); });
  endInOrderWithoutMemory();
  act();
}

constexpr const char* LAST_LINES =
    "Transaction server: ERROR: Out of memory \\(the service cannot go on\\)\n"
    "service: ERROR: out of memory, ended\n";

TEST(LastWordsDeathTest, AreSaidWhereALibraryHasNoMemory) {
  const char* const errors[] = {"../glib/gmem.c:136: failed to allocate 24 bytes", "Out of memory",
                                "dbus_connection_send failed: out of memory?", "no memory",
                                "Not enough memory to set up DBusConnection for use with GLib"};
  for (const char* error : errors) {
    SCOPED_TRACE(error);
    EXPECT_EXIT(afterPreparation([error] { g_error("%s", error); }), testing::ExitedWithCode(1),
                LAST_LINES);
  }
}

TEST(LastWordsDeathTest, AreSaidWhereAMessageIsGivenUp) {
  const char* const warnings[] = {"failed to marshal parameter 1 for signal transaction",
                                  "unable to append OUT arg of type gchararray for get: \"1\"",
                                  "unable to append retval of type gchararray for get: \"1\"",
                                  "Unable to marshal string (not UTF-8 or OOM?): \"1\""};
  for (const char* warning : warnings) {
    SCOPED_TRACE(warning);
    EXPECT_EXIT(afterPreparation([warning] { g_warning("%s", warning); }),
                testing::ExitedWithCode(1), LAST_LINES);
  }
}

TEST(LastWordsDeathTest, AreSaidWhereALibraryAbortsWithoutMemory) {
  const auto abortWithoutMemory = [] {
    errno = ENOMEM;
    abort();
  };
  EXPECT_EXIT(afterPreparation(abortWithoutMemory), testing::ExitedWithCode(1), LAST_LINES);
}

TEST(Texts, OfGLibAreAsLongAsTheyHaveToBe) {
  for (const std::string& text : {std::string(), std::string("a"), std::string(5000, 'b')}) {
    SCOPED_TRACE(text.size());
    char* const made = g_strdup_printf("%s", text.c_str());
    EXPECT_EQ(made, text);
    g_free(made);
  }
}

[[gnu::format(printf, 2, 3)]] int format(char** text, const char* pattern, ...) {
  va_list arguments;
  va_start(arguments, pattern);
  const int length = __vasprintf_chk(text, 1, pattern, arguments);
  va_end(arguments);
  return length;
}

TEST(Texts, AreThereAlsoWhereTheyAreEmpty) {
  char* text = nullptr;
  EXPECT_EQ(format(&text, "%s", ""), 0);
  EXPECT_STREQ(text, "");
  free(text);
}

TEST(Texts, AreNoneWhereAFormatFails) {
  char empty = '\0';
  char* text = &empty;
  EXPECT_EQ(format(&text, "%ls", L"\u20ac"), -1);  // not in the C locale
  EXPECT_EQ(text, nullptr);
}

// GLib has none for a message that cannot be put together.
TEST(LastWordsDeathTest, AreSaidWhereThereIsNoMessage) {
  const auto warnWithoutMessage = [] { g_warning("%ls", L"\u20ac"); };  // not in the C locale
  EXPECT_EXIT(afterPreparation(warnWithoutMessage), testing::ExitedWithCode(1), LAST_LINES);
}

TEST(LastWordsDeathTest, AreSaidOnce) {
  const auto failOnTheWay = [] {
    const LogRedirection log([](const std::string& line) {
      fprintf(stderr, "%s\n", line.c_str());
      endWithLastWords();
    });
    endWithLastWords();
  };
  EXPECT_EXIT(failOnTheWay(), testing::ExitedWithCode(1), std::string("^") + LAST_LINES + "$");
}

TEST(LastWordsDeathTest, AbortEndsTheProcessAlsoWhereItsSignalIsIgnored) {
  const auto abortUnheard = [] {
    std::signal(SIGABRT, SIG_IGN);
    errno = 0;
    abort();
  };
  EXPECT_EXIT(abortUnheard(), testing::ExitedWithCode(1), "");
}

TEST(LastWordsDeathTest, AreNotSaidOfAnythingElse) {
  const auto abortOtherwise = [] {
    errno = 0;
    abort();
  };
  EXPECT_EXIT(afterPreparation(abortOtherwise), testing::KilledBySignal(SIGABRT), "");
  EXPECT_EXIT(afterPreparation([] { g_error("Failed to daemonize."); }),
              testing::KilledBySignal(SIGTRAP), "Failed to daemonize");
  const auto goOn = [] {
    g_warning("memory is low");
    exit(7);
  };
  EXPECT_EXIT(afterPreparation(goOn), testing::ExitedWithCode(7), "memory is low");
}

}  // namespace
