// Makes the system's write take less than it is given, or fail, to reach the code that handles it.
#pragma once

#include <string>
#include <vector>

namespace qtx {

// While alive, write() of this process answers with these one after the other: a number of bytes taken, or an
// error as its negative number. What is taken is kept instead of written. After the last it takes all.
class AnswerWrites {
 public:
  explicit AnswerWrites(std::vector<long> answers);
  ~AnswerWrites();
  AnswerWrites(const AnswerWrites&) = delete;
  AnswerWrites& operator=(const AnswerWrites&) = delete;

  std::string taken;
  int calls = 0;

 private:
  friend long answerWrite(const void* bytes, unsigned long size);
  std::vector<long> answers_;
};

}  // namespace qtx
