#include "check/jobs.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <new>
#include <set>

namespace {

TEST(Jobs, GiveTheSameInTheSameOrderWhateverTheirNumber) {
  for (const size_t pieces : {0U, 1U, 2U, 7U}) {
    std::vector<std::string> expected;
    for (size_t piece = 0; piece < pieces; ++piece) {
      // More than a pipe holds, none at all, and a byte that ends no text.
      expected.push_back(std::string(piece * 100'000, 'x') + std::string(piece % 2, '\0'));
    }
    for (const uint32_t jobs : {1U, 2U, 5U, 64U}) {
      const JobResults done = runJobs(pieces, jobs, [&](size_t piece) { return expected[piece]; });
      EXPECT_EQ(done.failure, "");
      EXPECT_TRUE(done.results == expected) << pieces << " pieces, " << jobs << " jobs";
    }
  }
}

TEST(Jobs, AreProcessesOfTheirOwn) {
  const auto name = [](size_t) { return std::to_string(getpid()); };
  const std::string own = std::to_string(getpid());
  EXPECT_EQ(runJobs(2, 1, name).results, std::vector<std::string>(2, own));
  const std::vector<std::string> names = runJobs(7, 3, name).results;
  const std::set<std::string> different(names.begin(), names.end());
  EXPECT_EQ(different.size(), 3U);
  EXPECT_FALSE(different.contains(own));
}

TEST(Jobs, ThatEndBadlyAreAFailureWithoutResults) {
  const struct {
    void (*end)();
    const char* failure;
  } cases[] = {
      {[] { static_cast<void>(raise(SIGKILL)); }, "a job was ended by signal 9"},
      {[] { _exit(7); }, "a job ended with status 7"},
      {[] { _exit(0); }, "a job has left something out"},
  };
  for (const auto& c : cases) {
    const JobResults done = runJobs(4, 2, [&](size_t piece) {
      if (piece == 3) c.end();
      return std::string("done");
    });
    EXPECT_EQ(done.failure, c.failure);
    EXPECT_TRUE(done.results.empty());
  }
}

TEST(Jobs, WithoutMemoryRaiseWhatTheWorkDoes) {
  for (const uint32_t jobs : {1U, 2U}) {
    EXPECT_THROW(
        static_cast<void>(runJobs(2, jobs, [](size_t) -> std::string { throw std::bad_alloc(); })),
        std::bad_alloc);
  }
}

}  // namespace
