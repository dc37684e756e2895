// Takes the place of the C library's write.
#include "partial_write.h"

#if !defined(__APPLE__)
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace qtx {

namespace {
AnswerWrites* current = nullptr;
}

AnswerWrites::AnswerWrites(std::vector<long> answers) : answers_(std::move(answers)) { current = this; }
AnswerWrites::~AnswerWrites() { current = nullptr; }

long answerWrite(const void* bytes, unsigned long size) {
  const auto call = static_cast<std::size_t>(current->calls++);
  long answer = static_cast<long>(size);
  if (call < current->answers_.size()) answer = std::min(answer, current->answers_[call]);
  if (answer < 0) {
    errno = static_cast<int>(-answer);
    return -1;
  }
  current->taken.append(static_cast<const char*>(bytes), static_cast<std::size_t>(answer));
  return answer;
}

}  // namespace qtx

extern "C" ssize_t write(int descriptor, const void* bytes, size_t size) {
  if (qtx::current) return qtx::answerWrite(bytes, size);
  return syscall(SYS_write, descriptor, bytes, size);
}
#endif
