// The classes every program has: RuntimeException and its subclasses, MemoryBlock, Thread, Date, DateTime,
// and the boxes of variants.
#pragma once

namespace host {

// Registers them; to be called before anything else of the runtime is used. Does nothing when called again.
void startRuntime();

}  // namespace host
