// Arrays for the host of plain functions: with the memory shape of either host generation, or another one.
#pragma once

#include <algorithm>
#include <bit>
#include <cstring>

#include "frame/fake_host.h"

namespace qtx {

// Offers the array operations to a host. Every array must be gone at its end; those that make() gave are
// given back by release().
class HostArrays {
 public:
  explicit HostArrays(FakeHost& host, bool usualShape = true) : host_(host), usualShape_(usualShape) {
    current = this;
    offerAll();
  }
  ~HostArrays() {
    EXPECT_TRUE(arrays_.empty()) << arrays_.size() << " arrays left";
    current = nullptr;
  }

  REALarrayDouble doubles(const std::vector<double>& values) {
    const REALarray array = make(arrayElement::integer, static_cast<RBInteger>(values.size()) - 1);
    for (std::size_t i = 0; i < values.size(); ++i) {
      at(array).elements[i] = std::bit_cast<std::int64_t>(values[i]);
    }
    return reinterpret_cast<REALarrayDouble>(array);
  }
  REALarrayObject objects(const std::vector<REALobject>& handles) {
    const REALarray array = make(arrayElement::object, -1);
    for (const REALobject handle : handles) insert(array, at(array).elements.size(), handle);
    return reinterpret_cast<REALarrayObject>(array);
  }
  std::vector<REALobject> handlesIn(REALarrayObject array) {
    std::vector<REALobject> handles;
    for (const std::int64_t word : at(array).elements) handles.push_back(std::bit_cast<REALobject>(word));
    return handles;
  }
  template <typename Handle>
  int referencesOf(Handle array) {
    return at(array).references;
  }
  template <typename Handle>
  void release(Handle array) {
    if (array) unlock(reinterpret_cast<REALobject>(array));
  }
  int getterCalls = 0;

 private:
  struct Array {
    std::int32_t type;
    std::vector<std::int64_t> elements;
    int references = 1;
    alignas(8) std::byte object[96] = {};  // the handle is its address
  };
  static inline HostArrays* current = nullptr;

  template <typename Handle>
  static Array& at(Handle handle) {
    return *current->arrays_.at(handle);
  }

  REALarray make(std::int32_t type, RBInteger upperBound) {
    auto array = std::make_unique<Array>();
    array->type = type;
    array->elements.resize(static_cast<std::size_t>(upperBound + 1));
    show(*array);
    const auto handle = reinterpret_cast<REALarray>(array->object);
    arrays_[handle] = std::move(array);
    return handle;
  }

  void show(Array& array) {
    const auto put = [&](std::size_t offset, auto field) {
      std::memcpy(array.object + offset, &field, sizeof field);
    };
    const auto upperBound = static_cast<std::int32_t>(array.elements.size()) - 1;
    put(arrayShape::referenceCount, std::int64_t{array.references});
    put(arrayShape::storage, array.elements.data());
    if (!usualShape_) return;  // leaves no dimensions
    if (host_.version >= arrayShape::widerSinceHostVersion) {
      put(arrayShape::dimensions, std::int64_t{1});
      put(arrayShape::upperBoundSince2021, upperBound);
    } else {
      put(arrayShape::dimensions, std::int32_t{1});
      put(arrayShape::upperBoundBefore2021, upperBound);
    }
  }

  static void insert(REALarray array, std::size_t index, REALobject value) {
    if (value) REALLockObject(value);
    auto& elements = at(array).elements;
    elements.insert(elements.begin() + static_cast<std::ptrdiff_t>(std::min(index, elements.size())),
                    std::bit_cast<std::int64_t>(value));
    current->show(at(array));
  }

  static void unlock(REALobject handle) {
    if (!current || !current->arrays_.contains(handle)) {
      FakeHost::current->unlock(handle);
      return;
    }
    const auto found = current->arrays_.find(handle);
    if (--found->second->references > 0) return;
    if (found->second->type == arrayElement::object) {
      for (const std::int64_t word : found->second->elements) unlock(std::bit_cast<REALobject>(word));
    }
    current->arrays_.erase(found);
  }

  void offerAll() {
    host_.offer("REALUnlockObject", &unlock);
    host_.offer(
        "RuntimeUBound",
        +[](REALarray array) -> RBInteger { return static_cast<RBInteger>(at(array).elements.size()) - 1; });
    host_.offer(
        "RuntimeArrayCreateSingleDimBoundedArray",
        +[](std::int32_t type, RBInteger upperBound) { return current->make(type, upperBound); });
    host_.offer(
        "PluginIntegerArraySetProc", +[](REALarrayInteger) {
          return +[](REALarrayInteger array, std::int64_t value, RBInteger index) {
            at(array).elements.at(static_cast<std::size_t>(index)) = value;
          };
        });
    host_.offer(
        "PluginIntegerArrayGetProc", +[](REALarrayInteger) {
          return +[](REALarrayInteger array, RBInteger index) -> std::int64_t {
            return at(array).elements.at(static_cast<std::size_t>(index));
          };
        });
    host_.offer(
        "PluginDoubleArrayGetProc", +[](REALarrayDouble) {
          return +[](REALarrayDouble array, RBInteger index) -> double {
            ++current->getterCalls;
            return std::bit_cast<double>(at(array).elements.at(static_cast<std::size_t>(index)));
          };
        });
    host_.offer(
        "PluginObjectArrayInsertProc", +[](REALarrayObject) {
          return +[](REALarrayObject array, RBInteger index, REALobject value) {
            insert(reinterpret_cast<REALarray>(array), static_cast<std::size_t>(index), value);
          };
        });
  }

  FakeHost& host_;
  bool usualShape_;
  std::map<void*, std::unique_ptr<Array>> arrays_;
};

}  // namespace qtx
