#include "check/proof/limited.h"

#include <gtest/gtest.h>

#include <new>

#include "base/work.h"

namespace {

TEST(CheckLimited, EndsWhatTakesTooLong) {
  struct Case {
    const char* name;
    uint64_t units;
    std::function<void()> act;
    bool isDone;
  };
  const Case cases[] = {
      {"all of it", 100, [] { Work::add(100); }, true},
      {"one unit more", 100, [] { Work::add(101); }, false},
      {"in pieces", 100,
       [] {
         Work::add(60);
         Work::add(60);
       },
       false},
      {"no memory", 100, [] { throw std::bad_alloc(); }, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(doWithin(c.units, c.act), c.isDone);
    EXPECT_EQ(Work::budget(), UINT64_MAX);
    EXPECT_NO_THROW(Work::add(1000));
  }
}

}  // namespace
