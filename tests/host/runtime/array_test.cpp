// Arrays: elements, and how they look to a library that reads them from memory.
#include "runtime/array.h"

#include <gtest/gtest.h>

#include <cstring>

#include "frame/host_interface.h"
#include "runtime/exception.h"
#include "runtime/host_classes.h"
#include "runtime/settings.h"
#include "runtime/text.h"
#include "runtime/variant.h"

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

// The elements of a grid in their order.
std::string allOf(const Grid& grid) {
  const Array& row = grid;
  std::string all;
  for (std::int64_t i = 0; i < row.count(); ++i) all += std::to_string(row.get(i).integer) + " ";
  return all;
}

// Two dimensions, with elements that count from 1.
Ref<Grid> counting(std::int64_t rows, std::int64_t columns) {
  Ref<Grid> grid = makeGrid({Kind::Int64}, std::vector{rows, columns});
  std::int64_t next = 0;
  for (std::int64_t i = 0; i < rows; ++i) {
    for (std::int64_t j = 0; j < columns; ++j) {
      const Slot indices[] = {{.integer = i}, {.integer = j}};
      grid->set(indices, {.integer = ++next});
    }
  }
  return grid;
}

TEST(Grid, KeepsWhatHasTheSameIndicesInOtherBounds) {
  startRuntime();
  const auto resized = [](std::int64_t rows, std::int64_t columns) {
    const Ref<Grid> grid = counting(2, 3);
    grid->resize(std::vector{rows, columns});
    EXPECT_EQ(grid->upperBound(1), rows - 1);
    EXPECT_EQ(grid->upperBound(2), columns - 1);
    return allOf(*grid);
  };
  EXPECT_EQ(resized(2, 3), "1 2 3 4 5 6 ");
  EXPECT_EQ(resized(3, 3), "1 2 3 4 5 6 0 0 0 ");
  EXPECT_EQ(resized(2, 4), "1 2 3 0 4 5 6 0 ");
  EXPECT_EQ(resized(1, 5), "1 2 3 0 0 ");
  EXPECT_EQ(resized(4, 1), "1 4 0 0 ");
  EXPECT_EQ(resized(0, 7), "");
  EXPECT_EQ(resized(7, 0), "");
}

TEST(Grid, OwnsItsElements) {
  startRuntime();
  const Ref<Text> text = makeText("kept");
  {
    const Ref<Grid> grid = makeGrid({Kind::String}, std::vector<std::int64_t>{2, 2});
    for (std::int64_t i = 0; i < 4; ++i) {
      const Slot indices[] = {{.integer = i / 2}, {.integer = i % 2}};
      grid->set(indices, {.heap = text.get()});
    }
    EXPECT_EQ(text->references.load(), 5);
    grid->resize(std::vector<std::int64_t>{3, 1});
    EXPECT_EQ(text->references.load(), 3);
    grid->resize(std::vector<std::int64_t>{1, 3});
    EXPECT_EQ(text->references.load(), 2);
    const Slot first[] = {{.integer = 0}, {.integer = 0}};
    release(grid->get(first).heap);
    EXPECT_EQ(text->references.load(), 2);
  }
  EXPECT_EQ(text->references.load(), 1);
}

TEST(Grid, RefusesWhatIsOutsideAndStaysAsItIs) {
  startRuntime();
  const Ref<Grid> grid = counting(2, 3);
  constexpr std::int64_t outside[][2] = {{-1, 0}, {2, 0}, {0, -1}, {0, 3}, {INT64_MAX, INT64_MAX}};
  for (const auto& [i, j] : outside) {
    const Slot indices[] = {{.integer = i}, {.integer = j}};
    EXPECT_EQ(classOf([&] { grid->get(indices); }), "OutOfBoundsException");
    EXPECT_EQ(classOf([&] { grid->set(indices, Slot{}); }), "OutOfBoundsException");
  }
  EXPECT_EQ(classOf([&] { grid->upperBound(0); }), "OutOfBoundsException");
  EXPECT_EQ(classOf([&] { grid->upperBound(3); }), "OutOfBoundsException");
  constexpr std::int64_t tooMany[][2] = {{INT64_MAX, INT64_MAX}, {1 << 20, 1 << 20}, {2, INT64_MAX}};
  for (const auto& each : tooMany) {
    EXPECT_EQ(classOf([&] { grid->resize(each); }), "OutOfMemoryException");
  }
  EXPECT_EQ(allOf(*grid), "1 2 3 4 5 6 ");
}

TEST(Grid, SaysHowManyDimensionsItHas) {
  startRuntime();
  const Ref<Grid> grid = makeGrid({Kind::Double}, std::vector<std::int64_t>{2, 3, 4});
  EXPECT_EQ(fieldAt<std::int32_t>(*grid, arrayShape::dimensions), 3);
  EXPECT_EQ(nameOf(typeIn(grid.get())), "Double(,,)");
  EXPECT_EQ(display({.heap = grid.get()}, typeIn(grid.get())), "Double(1, 2, 3)");
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
