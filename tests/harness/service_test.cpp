#include "tests/harness/service_test.h"

#include <csignal>

ServiceTest::ServiceTest(const PrivateBus::Options& options)
    : bus_(options), client_(bus_.address()) {}

void ServiceTest::serve(const std::string& text, const std::vector<std::string>& constants,
                        const std::map<std::string, std::string>& environment) {
  std::vector<std::string> arguments = {"--debug", "--"};
  arguments.insert(arguments.end(), constants.begin(), constants.end());
  daemon_ = std::make_unique<Daemon>(Daemon::Options{.text = text,
                                                     .arguments = arguments,
                                                     .busAddress = bus_.address(),
                                                     .environment = environment});
  if (!client_.waitForService(daemon_->process())) {
    const Ending ending = daemon_->waitForEnd();
    daemon_.reset();
    FAIL() << "no service; status " << ending.status << ", standard error:\n" << ending.err;
  }
}

void ServiceTest::expectFacts(const std::vector<Fact>& facts) {
  ASSERT_NE(daemon_, nullptr);
  for (const Fact& fact : facts) {
    SCOPED_TRACE(fact.call);
    EXPECT_EQ(client_.answer(fact.call), fact.answer);
    std::vector<std::vector<std::string>> expected;
    if (!fact.changed.empty()) expected.push_back(fact.changed);
    EXPECT_EQ(client_.newSignals(), expected);
    EXPECT_EQ(daemon_->newLogLines(), fact.log);
  }
}

void ServiceTest::pause() { ASSERT_EQ(kill(daemon_->process().pid(), SIGSTOP), 0); }

void ServiceTest::resume() { ASSERT_EQ(kill(daemon_->process().pid(), SIGCONT), 0); }

void ServiceTest::expectOrderlyEnd() {
  EXPECT_EQ(client_.answer("die()"), "()");
  const Ending ending = daemon_->waitForEnd();
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.err, expectedErrors_);
  EXPECT_EQ(daemon_->newLogLines(), std::vector<std::string>());
  daemon_.reset();
}

void ServiceTest::TearDown() {
  if (daemon_ != nullptr) expectOrderlyEnd();
}
