// Libraries read the elements of arrays from memory, and lock what they find a moment later. What a thread
// takes out of an array is therefore kept while another thread's call of a library may have seen it there.
#pragma once

namespace host {

// For its lifetime, this thread calls a function of a library that is handed an array of references.
class ForeignReads {
 public:
  ForeignReads();
  ~ForeignReads();
  ForeignReads(const ForeignReads&) = delete;
  ForeignReads& operator=(const ForeignReads&) = delete;

 private:
  unsigned epoch_;
};

// Whether somebody may have seen the thing, which has just been taken out of an array: then `drop` will be
// called for it when nobody can any more.
bool keepsWhileRead(void* taken, void (*drop)(void* taken));

}  // namespace host
