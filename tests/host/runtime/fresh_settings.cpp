// Whatever a test sets, the next one in the same process finds the settings of a program that starts; but
// memory that one has asked to be kept stays kept.
#include <gtest/gtest.h>

#include "runtime/settings.h"

namespace {

class FreshSettings final : public testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo&) override {
    const bool keepsMemory = host::settings().keepsMemory;
    host::settings() = {};
    host::settings().keepsMemory = keepsMemory;
  }
};

[[maybe_unused]] const bool listens = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new FreshSettings);
  return true;
}();

}  // namespace
