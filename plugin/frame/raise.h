// Reports errors to the calling host program as exceptions of its language.
//
// The host does not unwind: it marks the exception pending and throws it when the registered function
// returns. After any of these, release what is held and return a neutral value (0, 0.0, false, nil) at once.
#pragma once

#include <exception>

#include "frame/host_interface.h"

namespace qtx {

// An exception of the named host class, or of "RuntimeException" where the host cannot make one; Message is
// the UTF-8 text, ErrorNumber 0. Where not even that can be made, nothing happens. The last two arguments are
// not used.
void RaiseException(const char* className, const char* message, unsigned int unused = 0,
                    long long unused64 = 0);

// "OutOfBoundsException": value is not in 0 … count − 1. "too small" or "too big" goes by the sign of the
// value alone. (5, 5, "index", "a") → "The parameter index to method a is too big. Range is 0 to 4, but value
// is 5."
void RaiseOutOfBoundsException(long long value, long long count, const char* parameterName,
                               const char* methodName);

// A caught standard exception: its kind decides the host's class and the text in front of what().
void RaiseRuntimeException(const std::exception& exception);

// Whether an object argument named "other" is nil; then that is traced and "NilObjectException" raised.
bool refuseNil(REALobject other, const char* message);

// What was caught and is no std::exception.
void RaiseUnnamedException();

// Runs `body`; what it throws becomes a host exception, and the result is then a neutral value.
template <typename Body>
auto guard(Body&& body) noexcept -> decltype(body()) {
  try {
    return body();
  } catch (const std::exception& exception) {
    RaiseRuntimeException(exception);
  } catch (...) {
    RaiseUnnamedException();
  }
  return decltype(body())();
}

}  // namespace qtx
