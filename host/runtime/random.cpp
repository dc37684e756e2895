// The generator, and the class Random around it.
#include "runtime/random.h"

#include <cmath>
#include <iterator>
#include <random>

#include "runtime/exception.h"
#include "runtime/host_record.h"

namespace host {

std::uint64_t Generator::word() {
  constexpr std::uint64_t step = 0x9E3779B97F4A7C15;
  std::uint64_t mixed = state_.fetch_add(step, std::memory_order_relaxed) + step;
  mixed = (mixed ^ mixed >> 30) * 0xBF58476D1CE4E5B9;
  mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EB;
  return mixed ^ mixed >> 31;
}

std::uint64_t Generator::below(std::uint64_t limit) {
  if (limit == 0) return word();
  // The words from here on are a multiple of the limit in number.
  const std::uint64_t first = (0 - limit) % limit;
  std::uint64_t drawn = word();
  while (drawn < first) drawn = word();
  return drawn % limit;
}

namespace {

std::uint64_t anySeed() {
  std::random_device source;
  return std::uint64_t{source()} << 32 ^ source();
}

// Instance data.
struct RandomData {
  Generator* own;
  std::atomic<Generator*> used;  // its own, or the shared one
};
const Class* randomClass;

Generator& generatorOf(REALobject self) {
  return *dataIn<RandomData>(self, *randomClass).used.load(std::memory_order_relaxed);
}

void make(REALobject self) {
  auto& data = dataIn<RandomData>(self, *randomClass);
  data.own = new Generator(anySeed());
  data.used = data.own;
}
void destroy(REALobject self) { delete dataIn<RandomData>(self, *randomClass).own; }

double number(REALobject self) { return generatorOf(self).fraction(); }

RBInteger inRange(REALobject self, RBInteger least, RBInteger most) {
  return asPending([&] {
    if (least > most) {
      throw HostException("OutOfBoundsException", "There is no number from " + std::to_string(least) +
                                                      " to " + std::to_string(most) + ".");
    }
    const auto from = static_cast<std::uint64_t>(least);
    return static_cast<RBInteger>(from +
                                  generatorOf(self).below(static_cast<std::uint64_t>(most) - from + 1));
  });
}
RBInteger lessThan(REALobject self, RBInteger limit) {
  return asPending([&] {
    if (limit <= 0) {
      throw HostException("OutOfBoundsException",
                          "There is no number from 0 to less than " + std::to_string(limit) + ".");
    }
    return static_cast<RBInteger>(generatorOf(self).below(static_cast<std::uint64_t>(limit)));
  });
}

// By the method of G. E. P. Box and M. E. Muller, "A Note on the Generation of Random Normal Deviates"
// (1958).
double gaussian(REALobject self) {
  constexpr double turn = 6.283185307179586;
  Generator& generator = generatorOf(self);
  const double radius = std::sqrt(-2 * std::log(1 - generator.fraction()));
  return radius * std::cos(turn * generator.fraction());
}

RBInteger getSeed(REALobject self, RBInteger) { return static_cast<RBInteger>(generatorOf(self).seed()); }
void setSeed(REALobject self, RBInteger, RBInteger from) {
  generatorOf(self).beginWith(static_cast<std::uint64_t>(from));
}
void randomizeSeed(REALobject self) { generatorOf(self).beginWith(anySeed()); }

}  // namespace

// Leaked on purpose: threads may still draw at the end of the process.
Generator& sharedGenerator() {
  static Generator& shared = *new Generator(anySeed());
  return shared;
}

Ref<Object> makeSharedRandom() {
  Ref<Object> made = makeObject(*randomClass);
  dataIn<RandomData>(reinterpret_cast<REALobject>(made.get()), *randomClass).used = &sharedGenerator();
  return made;
}

void registerRandom(Registry& registry) {
  static REALproperty properties[] = {hostProperty("Seed", "Integer", &getSeed, &setSeed)};
  static REALmethodDefinition methods[] = {
      hostMethod("InRange(least as Integer, most as Integer) as Integer", &inRange),
      hostMethod("LessThan(limit as Integer) as Integer", &lessThan),
      hostMethod("Number as Double", &number),
      hostMethod("Gaussian as Double", &gaussian),
      hostMethod("RandomizeSeed", &randomizeSeed),
  };
  static REALclassDefinition record = hostClass<RandomData>("Random", properties, methods, &destroy, &make);
  randomClass = &registry.addClass(record, false);
}

}  // namespace host
