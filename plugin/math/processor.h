// What the processor that the library has been loaded on can do beyond what every one can.
#pragma once

namespace qtx {

struct Processor {
  bool convertsHalfFloats, countsBits;
};

Processor thisProcessor();

}  // namespace qtx
