// Diagnostic lines in the system log, and the switch that turns most of them on.
#pragma once

#include <atomic>
#include <concepts>
#include <cstdint>

namespace qtx {

// Off until the host program sets the shared property Debugging.
inline constinit std::atomic<bool> debugging{false};

bool getDebugging();
void setDebugging(std::uint8_t value);  // a Boolean whose byte may be other than 0 and 1

// Formats as printf does, cut at 4095 bytes, and writes one line to the system log, whether or not Debugging
// is on.
void LogMessageX(const char* format, ...) __attribute__((format(printf, 1, 2)));

// "QTX Debug: ", which opens every line.
inline constexpr const char* logPrefix = "QTX Debug: ";

// The lines of Trace; kept out of line, so that a switch that is off costs a load and a branch.
namespace trace_line {
void write(const char* text);
void write(const char* text, const char* value);
void write(const char* text, double value);
void write(const char* text, long long value);
void write(const char* text, unsigned long long value);
void write(const char* text, const void* first, const void* second);  // addresses as 0x…, nil as 0x0
}  // namespace trace_line

// Writes a line "QTX Debug: <text>[ <value>]" while Debugging is on.
template <typename... Values>
inline void Trace(const char* text, Values... values) {
  if (debugging.load(std::memory_order_relaxed)) [[unlikely]] {
    trace_line::write(text, values...);
  }
}
template <std::integral Value>
inline void Trace(const char* text, Value value) {
  if (debugging.load(std::memory_order_relaxed)) [[unlikely]] {
    if constexpr (std::signed_integral<Value>) {
      trace_line::write(text, static_cast<long long>(value));
    } else {
      trace_line::write(text, static_cast<unsigned long long>(value));
    }
  }
}

}  // namespace qtx
