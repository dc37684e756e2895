// Arithmetic of 128-bit integers. A result is an object of its own, or one of those that small results share.
#include <boost/multiprecision/cpp_int.hpp>
#include <functional>
#include <memory>
#include <random>

#include "limits.h"
#include "subjects.h"

namespace bench {
namespace {

using BoostInt128 = boost::multiprecision::int128_t;
using BoostUInt128 = boost::multiprecision::uint128_t;
using Binary = REALobject(REALobject, REALobject);
using Operands = Inputs<REALobject, REALobject>;

constexpr std::size_t sampleCount = 1000;

UInt128 random(std::mt19937_64& engine, int width) {
  return ((UInt128{engine()} << 64 | engine()) | UInt128{1} << 127) >> (128 - width);
}
REALobject operand(std::mt19937_64& engine, const char* className, int width, bool negative) {
  const REALobject made = host.newInstance(className);
  const UInt128 value = random(engine, width);
  write(made, negative ? -value : value);
  return made;
}
// Random values of exactly so many bits; of Int128QTX, half of them negative.
Operands operands(const char* className, int width, int otherWidth) {
  std::mt19937_64 engine(1);
  const bool isSigned = className[0] == 'I';
  std::vector<std::tuple<REALobject, REALobject>> all;
  for (std::size_t i = 0; i < sampleCount; ++i) {
    const REALobject first = operand(engine, className, width, isSigned && engine() % 2);
    all.emplace_back(first, operand(engine, className, otherWidth, isSigned && engine() % 2));
  }
  return inputs(std::move(all));
}

// The operation on the numbers of a peer, made from the objects' and given back as one.
template <typename Native, typename Number, template <typename> typename Operation>
REALobject peer(REALobject a, REALobject b) {
  const Number value = Operation<Number>()(Number(read<Native>(a)), Number(read<Native>(b)));
  return result(static_cast<Native>(value));
}

// What an object alone costs in C++.
struct Counted {
  UInt128 value;
};
std::shared_ptr<Counted> fresh(REALobject a, REALobject b) {
  return std::make_shared<Counted>(Counted{read<UInt128>(a) + read<UInt128>(b)});
}
std::string inWords(const std::shared_ptr<Counted>& counted) { return bench::inWords(counted->value); }

// The small results as they would be shared without a host, with its reference for the caller.
REALobject sharedByPointer(REALobject a, REALobject b) {
  static const auto table = [] {
    std::vector<std::shared_ptr<REALobjectStruct>> all;
    for (REALobject each : sharedObjects) all.emplace_back(each, [](REALobject) {});
    return all;
  }();
  const auto shared = table[static_cast<std::size_t>(read<UInt128>(a) + read<UInt128>(b))];
  host.lockObject(shared.get());
  return shared.get();
}

Operands smallOperands() {
  std::mt19937_64 engine(2);
  std::vector<std::tuple<REALobject, REALobject>> all;
  for (std::size_t i = 0; i < sampleCount; ++i) {
    const int width = 1 + static_cast<int>(engine() % 3);
    const REALobject first = operand(engine, "Int128QTX", width, false);
    all.emplace_back(first, operand(engine, "Int128QTX", width, false));
  }
  return inputs(std::move(all));
}

// What stands for the class of one kind of number.
struct Signed {
  using Native = Int128;
  using Boost = BoostInt128;
  static constexpr const char* name = "Int128";
  static constexpr Binary *quotient = &limits::divideSigned, *remainder = &limits::remainderSigned;
};
struct Unsigned {
  using Native = UInt128;
  using Boost = BoostUInt128;
  static constexpr const char* name = "UInt128";
  static constexpr Binary *quotient = &limits::divideUnsigned, *remainder = &limits::remainderUnsigned;
};

// An operator between two objects of a class.
Binary* operatorOf(const std::string& name, const std::string& operation) {
  return method<Binary>(name + "QTX", "Operator_" + operation + "(other as " + name + "QTX)");
}

template <typename Kind, template <typename> typename Operation>
Subject arithmetic(const std::string& what, const std::string& operation, Binary* limit, int width,
                   int otherWidth) {
  const std::string name = Kind::name;
  return {.name = name + " " + what, .contenders = [=] {
            return contendersOf(
                operatorOf(name, operation),
                {{"compiler's __int128", &peer<typename Kind::Native, typename Kind::Native, Operation>},
                 {"Boost", &peer<typename Kind::Native, typename Kind::Boost, Operation>},
                 {"limit", limit}},
                operands((name + "QTX").c_str(), width, otherWidth));
          }};
}

template <typename Kind>
void addDivisions(std::vector<Subject>& all) {
  for (const int divisor : {64, 100}) {
    const std::string bits = " of 126 bits by " + std::to_string(divisor);
    all.push_back(arithmetic<Kind, std::divides>("division" + bits, "Divide", Kind::quotient, 126, divisor));
    all.push_back(
        arithmetic<Kind, std::modulus>("remainder" + bits, "Modulo", Kind::remainder, 126, divisor));
  }
}

}  // namespace

std::vector<Subject> int128Subjects() {
  std::vector<Subject> all = {
      {.name = "Int128 addition, result shared",
       .contenders =
           [] {
             return contendersOf(operatorOf("Int128", "Add"),
                                 {{"std::shared_ptr", &sharedByPointer}, {"limit", &limits::add}},
                                 smallOperands());
           }},
      {.name = "Int128 addition",
       .contenders =
           [] {
             const auto objects = operands("Int128QTX", 125, 125);
             auto contenders = contendersOf(operatorOf("Int128", "Add"),
                                            {{"compiler's __int128", &peer<Int128, Int128, std::plus>},
                                             {"Boost", &peer<Int128, BoostInt128, std::plus>},
                                             {"limit", &limits::add}},
                                            objects);
             contenders.push_back(contender("std::make_shared (less)", opaque(&fresh), objects, objects));
             return contenders;
           }},
      arithmetic<Signed, std::multiplies>("multiplication", "Multiply", &limits::multiply, 63, 62),
  };
  addDivisions<Signed>(all);
  addDivisions<Unsigned>(all);
  return all;
}

}  // namespace bench
