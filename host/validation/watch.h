// Watches a library's calls of the host's operations.
#pragma once

#include <atomic>
#include <mutex>
#include <set>
#include <string>

#include "runtime/operations.h"
#include "validation/fault_source.h"

namespace host {

// Which operations a function asks for, and whether what it hands them is still there.
class Watch final : public OperationWatch, public FaultSource {
 public:
  bool refuses(const char* operation, bool answers, std::span<Heap* const> handles) noexcept override;

  // The operations that were called while it was armed, and those among them that have an answer.
  std::set<std::string> called, answered;
  // What was wrong with a call first; empty: nothing was.
  std::string violation();

  // As a source of faults: the calls of one operation, or of all where there is none.
  void choose(const std::string& operation);
  void arm(std::uint64_t n, bool onwards) override;
  std::uint64_t disarm() override;
  const char* name() const override { return name_.c_str(); }

 private:
  std::mutex lock_;
  std::string violation_, operation_, name_;
};

// The one there is; becomes the watch of what resolve gives.
Watch& watch();

}  // namespace host
