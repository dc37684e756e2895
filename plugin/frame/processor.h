// What the processor that the library has been loaded on can do beyond what every one can.
#pragma once

namespace qtx {

struct Processor {
  bool countsBits = false;
  bool hasWideVectors = false;    // of four doubles
  bool hasWidestVectors = false;  // of eight
  bool convertsHalfFloats = false;
};

// Asked once.
const Processor& thisProcessor();

}  // namespace qtx
