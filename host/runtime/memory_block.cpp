// Reads, writes and resizes MemoryBlocks.
#include "runtime/memory_block.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "runtime/exception.h"
#include "runtime/host_record.h"
#include "runtime/settings.h"
#include "runtime/sharing.h"
#include "runtime/wording.h"

namespace host {

namespace {

// In front of the bytes: those that threads may still read, where they were before.
struct alignas(16) Former {
  Former* former;
};
Former* headOf(std::byte* bytes) { return bytes ? reinterpret_cast<Former*>(bytes) - 1 : nullptr; }

// Threads may share it: the bytes move before the size grows.
struct MemoryData {
  std::atomic<std::byte*> bytes;
  std::atomic<std::int64_t> size;
  std::int64_t capacity;
  std::atomic<bool> bigEndian;
};
constexpr std::int64_t mostBytes =
    static_cast<std::int64_t>(std::min(std::uint64_t{1} << 32, std::uint64_t{PTRDIFF_MAX} / 2));

MemoryData& memoryIn(REALobject self) { return dataIn<MemoryData>(self, *hostClasses().memoryBlock); }

void resize(MemoryData& memory, std::int64_t size) {
  if (size < 0) throw HostException("OutOfBoundsException", "The size of a MemoryBlock is less than 0.");
  const Changing change(&memory);
  Former* const head = headOf(memory.bytes);
  if (!head || size > memory.capacity || !threadsShare()) {
    // What is kept for other threads is half of what is used, at most.
    const bool keeps = threadsShare() && head;
    const std::int64_t larger = keeps ? std::max(size, 2 * memory.capacity) : size;
    const std::size_t needed = sizeof(Former) + static_cast<std::size_t>(larger) + 1;
    const bool isTooLarge = size > mostBytes || static_cast<std::size_t>(size) > settings().mostBytes;
    auto* const made = static_cast<Former*>(isTooLarge ? nullptr
                                            : keeps    ? std::malloc(needed)
                                                       : std::realloc(head, needed));
    if (!made) {
      throw HostException("OutOfMemoryException",
                          "There is no memory for a MemoryBlock of " + counted(size, "byte") + ".");
    }
    auto* const bytes = reinterpret_cast<std::byte*>(made + 1);
    if (keeps) copyFromShared(bytes, memory.bytes, static_cast<std::size_t>(memory.size));
    if (keeps || !head) made->former = head;
    memory.bytes = bytes;
    memory.capacity = larger;
  }
  if (size > memory.size)
    clearShared(memory.bytes + memory.size, static_cast<std::size_t>(size - memory.size));
  memory.size = size;
}

std::byte* locate(REALobject self, std::int64_t offset, std::int64_t count) {
  const MemoryData& memory = memoryIn(self);
  const std::int64_t size = memory.size;
  if (offset < 0 || count < 0 || offset > size || count > size - offset) {
    throw HostException("OutOfBoundsException", counted(count, "byte") + " at offset " +
                                                    std::to_string(offset) + (count == 1 ? " is" : " are") +
                                                    " outside of the MemoryBlock of " +
                                                    counted(size, "byte") + ".");
  }
  return memory.bytes + offset;
}

void make(REALobject self, RBInteger size) {
  asPending([&] { resize(memoryIn(self), size); });
}
void destroy(REALobject self) {
  for (Former* head = headOf(memoryIn(self).bytes); head;) std::free(std::exchange(head, head->former));
}

RBInteger getSize(REALobject self, RBInteger) { return memoryIn(self).size; }
void setSize(REALobject self, RBInteger, RBInteger size) {
  asPending([&] { resize(memoryIn(self), size); });
}
bool getLittleEndian(REALobject self, RBInteger) { return !memoryIn(self).bigEndian; }
void setLittleEndian(REALobject self, RBInteger, bool value) { memoryIn(self).bigEndian = !value; }

template <typename Value>
Value get(REALobject self, RBInteger offset) {
  return asPending([&] {
    std::byte bytes[sizeof(Value)];
    copyFromShared(bytes, locate(self, offset, sizeof(Value)), sizeof(Value));
    if (memoryIn(self).bigEndian != (std::endian::native == std::endian::big))
      std::reverse(bytes, bytes + sizeof(Value));
    Value value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
  });
}
template <typename Value>
void set(REALobject self, RBInteger offset, Value value) {
  asPending([&] {
    const Using use(&memoryIn(self));  // so that the bytes do not move meanwhile
    std::byte* to = locate(self, offset, sizeof(Value));
    std::byte bytes[sizeof(Value)];
    std::memcpy(bytes, &value, sizeof value);
    if (memoryIn(self).bigEndian != (std::endian::native == std::endian::big))
      std::reverse(bytes, bytes + sizeof(Value));
    copyToShared(to, bytes, sizeof value);
  });
}
bool getBoolean(REALobject self, RBInteger offset) { return get<std::uint8_t>(self, offset) != 0; }
void setBoolean(REALobject self, RBInteger offset, bool value) { set<std::uint8_t>(self, offset, value); }

REALstring getString(REALobject self, RBInteger offset, RBInteger length) {
  return asPending([&] {
    const std::byte* from = locate(self, offset, length);
    std::string bytes(static_cast<std::size_t>(length), '\0');
    copyFromShared(bytes.data(), from, bytes.size());
    const Ref<Text> made = makeText(bytes, encoding::none);
    retain(made.get());
    return reinterpret_cast<REALstring>(made.get());
  });
}
void setString(REALobject self, RBInteger offset, RBInteger length, REALstring value) {
  asPending([&] {
    const Using use(&memoryIn(self));
    std::byte* to = locate(self, offset, length);
    std::string bytes(bytesOf(reinterpret_cast<Text*>(value)));
    bytes.resize(static_cast<std::size_t>(length));
    copyToShared(to, bytes.data(), bytes.size());
  });
}

void* toPointer(REALobject self) { return memoryIn(self).bytes; }
REALstring toString(REALobject self) { return getString(self, 0, memoryIn(self).size); }
void fromString(REALobject self, REALstring value) {
  asPending([&] {
    const std::string_view bytes = bytesOf(reinterpret_cast<Text*>(value));
    const auto size = static_cast<std::int64_t>(bytes.size());
    resize(memoryIn(self), size);
    const Using use(&memoryIn(self));
    copyToShared(locate(self, 0, size), bytes.data(), bytes.size());
  });
}

}  // namespace

const Class& registerMemoryBlock(Registry& registry) {
  static REALproperty properties[] = {
      hostProperty("Size", "Integer", &getSize, &setSize),
      hostProperty("LittleEndian", "Boolean", &getLittleEndian, &setLittleEndian),
  };
  static REALmethodDefinition methods[] = {
      hostMethod("Constructor(size as Integer)", &make),
      hostMethod("Byte(offset as Integer) as UInt8", &get<std::uint8_t>, &set<std::uint8_t>),
      hostMethod("Int8Value(offset as Integer) as Int8", &get<std::int8_t>, &set<std::int8_t>),
      hostMethod("UInt8Value(offset as Integer) as UInt8", &get<std::uint8_t>, &set<std::uint8_t>),
      hostMethod("Int16Value(offset as Integer) as Int16", &get<std::int16_t>, &set<std::int16_t>),
      hostMethod("UInt16Value(offset as Integer) as UInt16", &get<std::uint16_t>, &set<std::uint16_t>),
      hostMethod("Int32Value(offset as Integer) as Int32", &get<std::int32_t>, &set<std::int32_t>),
      hostMethod("UInt32Value(offset as Integer) as UInt32", &get<std::uint32_t>, &set<std::uint32_t>),
      hostMethod("Int64Value(offset as Integer) as Int64", &get<std::int64_t>, &set<std::int64_t>),
      hostMethod("UInt64Value(offset as Integer) as UInt64", &get<std::uint64_t>, &set<std::uint64_t>),
      hostMethod("SingleValue(offset as Integer) as Single", &get<float>, &set<float>),
      hostMethod("DoubleValue(offset as Integer) as Double", &get<double>, &set<double>),
      hostMethod("CurrencyValue(offset as Integer) as Currency", &get<std::int64_t>, &set<std::int64_t>),
      hostMethod("BooleanValue(offset as Integer) as Boolean", &getBoolean, &setBoolean),
      hostMethod("StringValue(offset as Integer, length as Integer) as String", &getString, &setString),
      hostMethod("Operator_Convert as Ptr", &toPointer),
      hostMethod("Operator_Convert as String", &toString),
      hostMethod("Operator_Convert(value as String)", &fromString),
  };
  static REALclassDefinition record = hostClass<MemoryData>("MemoryBlock", properties, methods, &destroy);
  return registry.addClass(record, false);
}

}  // namespace host
