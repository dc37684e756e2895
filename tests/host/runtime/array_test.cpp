// Arrays: elements, and how they look to a library that reads them from memory.
#include "runtime/array.h"

#include <gtest/gtest.h>

#include <cstring>

#include "frame/host_interface.h"
#include "runtime/exception.h"
#include "runtime/host_classes.h"
#include "runtime/settings.h"
#include "runtime/text.h"

namespace host {
namespace {

template <typename Field>
Field fieldAt(const Array& array, std::size_t offset) {
  Field field;
  std::memcpy(&field, reinterpret_cast<const char*>(&array) + offset, sizeof field);
  return field;
}

class ArrayShapes : public testing::TestWithParam<double> {};

TEST_P(ArrayShapes, FollowTheHostsVersion) {
  startRuntime();
  settings().version = GetParam();
  const Ref<Array> array = makeArray({Kind::Int64}, 3);
  array->set(2, Slot{.integer = 77});
  array->insert(3, Slot{.integer = 78});
  EXPECT_EQ(fieldAt<std::int64_t>(*array, arrayShape::referenceCount), 1);
  const auto* storage = fieldAt<const std::int64_t*>(*array, arrayShape::storage);
  ASSERT_NE(storage, nullptr);
  EXPECT_EQ(storage[2], 77);
  EXPECT_EQ(storage[3], 78);
  if (GetParam() >= 2021.0) {
    EXPECT_EQ(fieldAt<std::int64_t>(*array, arrayShape::dimensions), 1);
    EXPECT_EQ(fieldAt<std::int32_t>(*array, arrayShape::upperBoundSince2021), 3);
  } else {
    EXPECT_EQ(fieldAt<std::int32_t>(*array, arrayShape::dimensions), 1);
    EXPECT_EQ(fieldAt<std::int32_t>(*array, arrayShape::upperBoundBefore2021), 3);
  }
}
INSTANTIATE_TEST_SUITE_P(Versions, ArrayShapes, testing::Values(2013.0, 2020.99, 2021.0, 2024.01));

TEST(ArrayShape, OfAnotherKindShowsNothing) {
  startRuntime();
  settings().otherArrayShape = true;
  const Ref<Array> array = makeArray({Kind::Int64}, 3);
  EXPECT_EQ(fieldAt<const void*>(*array, arrayShape::storage), nullptr);
  EXPECT_EQ(array->count(), 3);
}

TEST(Array, KeepsItsElementsAlive) {
  startRuntime();
  const Ref<Text> text = makeText("kept");
  {
    const Ref<Array> array = makeArray({Kind::String}, 1);
    array->set(0, Slot{.heap = text.get()});
    array->insert(1, Slot{.heap = text.get()});
    EXPECT_EQ(text->references.load(), 3);
    array->remove(0);
    EXPECT_EQ(text->references.load(), 2);
    array->set(0, Slot{});
    EXPECT_EQ(text->references.load(), 1);
    array->insert(0, Slot{.heap = text.get()});
    array->resize(0);
    EXPECT_EQ(text->references.load(), 1);
    array->insert(0, Slot{.heap = text.get()});
  }
  EXPECT_EQ(text->references.load(), 1);
}

std::string classOf(const std::function<void()>& body) {
  try {
    body();
  } catch (const HostException& exception) {
    return exception.exception->objectClass->name;
  }
  return "nothing";
}

TEST(Array, RefusesWhatIsOutside) {
  startRuntime();
  const Ref<Array> array = makeArray({Kind::Int64}, 2);
  for (const std::int64_t index : {INT64_MIN, std::int64_t{-1}, std::int64_t{2}, INT64_MAX}) {
    EXPECT_EQ(classOf([&] { array->get(index); }), "OutOfBoundsException");
    EXPECT_EQ(classOf([&] { array->set(index, Slot{}); }), "OutOfBoundsException");
    EXPECT_EQ(classOf([&] { array->remove(index); }), "OutOfBoundsException");
  }
  EXPECT_EQ(classOf([&] { array->insert(3, Slot{}); }), "OutOfBoundsException");
  EXPECT_EQ(classOf([&] { array->resize(INT64_MAX); }), "OutOfMemoryException");
  EXPECT_EQ(classOf([] { makeArray({Kind::Int64}, std::int64_t{1} << 40); }), "OutOfMemoryException");
  EXPECT_EQ(array->count(), 2);
}

TEST(Array, GrowsByZeros) {
  startRuntime();
  const Ref<Array> array = makeArray({Kind::Double}, 0);
  array->resize(1000);
  for (std::int64_t i = 0; i < 1000; ++i) EXPECT_EQ(array->get(i).word, 0u);
}

TEST(Things, AreNoLargerThanTheSettingsAllow) {
  startRuntime();
  settings().mostBytes = 512;
  EXPECT_EQ(makeArray({Kind::Int64}, 64)->count(), 64);
  EXPECT_THROW(makeArray({Kind::Int64}, 65), HostException);
  EXPECT_EQ(makeText(std::string(512, 'x'))->length, 512u);
  EXPECT_THROW(makeText(std::string(513, 'x')), HostException);
  const Ref<Object> block = makeObject(*hostClasses().memoryBlock);
  const Property& size = *hostClasses().memoryBlock->findProperty("Size");
  const auto resize = [&](std::int64_t bytes) {
    const Slot arguments[] = {{.heap = block.get()}, {.integer = size.parameter}, {.integer = bytes}};
    size.setter(arguments);
  };
  resize(512);
  EXPECT_THROW(resize(513), HostException);
  settings().mostBytes = SIZE_MAX;
}

}  // namespace
}  // namespace host
