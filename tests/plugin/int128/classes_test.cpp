// Int128QTX and UInt128QTX through their records: every member's result, trace line and errors.
#include <cstring>

#include "int128/division.h"
#include "int128/wide_functions.h"
#include "int128_host.h"

namespace qtx {
namespace {

using Strings = std::vector<std::string>;

Strings declarationsOf(const REALmethodDefinition* records, std::size_t count) {
  Strings found;
  for (std::size_t i = 0; i < count; ++i) {
    found.push_back(records[i].declaration);
    EXPECT_EQ(records[i].flags, 4u);
    EXPECT_NE(records[i].function, nullptr);
  }
  return found;
}
Strings propertiesOf(const REALclassDefinition& record) {
  Strings found;
  for (std::size_t i = 0; i < record.propertyCount; ++i) {
    const REALproperty& property = record.properties[i];
    found.push_back(std::string(property.name) + " " + property.type + (property.setter ? "" : " read-only"));
    EXPECT_EQ(property.flags, 6u);
  }
  return found;
}

TEST(Int128Class, IsRegisteredMemberByMember) {
  FakeHost host;
  host.load();
  const REALclassDefinition& record = *host.findClass("Int128QTX");
  EXPECT_EQ(record.dataSize, 16u);
  EXPECT_EQ(record.flags, 4u);
  EXPECT_EQ(record.constructor, nullptr);
  EXPECT_EQ(record.destructor, nullptr);
  EXPECT_EQ(record.sharedPropertyCount, 0u);
  EXPECT_EQ(propertiesOf(record),
            (Strings{"Data Ptr read-only", "LowValue UInt64", "HighValue Int64", "stringValue String",
                     "Abs Int128QTX read-only", "Sign Integer read-only", "PopCount Integer read-only",
                     "CountLeftZeros Integer read-only", "CountRightZeros Integer read-only",
                     "BitWidth Integer read-only", "doubleValue Double read-only"}));
  EXPECT_EQ(declarationsOf(record.sharedMethods, record.sharedMethodCount),
            (Strings{"supported as Boolean", "zero as Int128QTX", "one as Int128QTX", "two as Int128QTX"}));
  EXPECT_EQ(declarationsOf(record.methods, record.methodCount),
            (Strings{"Sqrt as Int128QTX",
                     "Pow(exp as UInt64) as Int128QTX",
                     "Inc",
                     "Dec",
                     "Inc as Int128QTX",
                     "Dec as Int128QTX",
                     "BitwiseAnd(Value as Int128QTX) as Int128QTX",
                     "BitwiseAnd(Value as Int64) as Int128QTX",
                     "BitwiseOr(Value as Int128QTX) as Int128QTX",
                     "BitwiseOr(Value as Int64) as Int128QTX",
                     "BitwiseXOr(Value as Int128QTX) as Int128QTX",
                     "BitwiseXOr(Value as Int64) as Int128QTX",
                     "Operator_Convert(value as Int64)",
                     "Operator_Convert(value as String)",
                     "Operator_Convert as Int64",
                     "Operator_Convert as String",
                     "Operator_Add(other as Int128QTX) as Int128QTX",
                     "Operator_Add(other as Int64) as Int128QTX",
                     "Operator_AddRight(other as Int128QTX) as Int128QTX",
                     "Operator_Subtract(other as Int128QTX) as Int128QTX",
                     "Operator_Subtract(other as Int64) as Int128QTX",
                     "Operator_SubtractRight(other as Int64) as Int128QTX",
                     "Operator_Multiply(other as Int128QTX) as Int128QTX",
                     "Operator_Multiply(other as Int64) as Int128QTX",
                     "Operator_MultiplyRight(other as Int64) as Int128QTX",
                     "Operator_Divide(other as Int128QTX) as Int128QTX",
                     "Operator_Divide(other as Int64) as Int128QTX",
                     "Operator_DivideRight(other as Int64) as Int128QTX",
                     "Operator_Compare(other as UInt128QTX) as Integer",
                     "Operator_Compare(other as Int128QTX) as Integer",
                     "Operator_Compare(other as Int64) as Integer",
                     "Operator_Modulo(other as Int128QTX) as Int128QTX",
                     "Operator_Modulo(other as Int64) as Int128QTX",
                     "Operator_ModuloRight(other as Int64) as Int128QTX",
                     "Operator_Negate as Int128QTX",
                     "Equals(other as Int64) as Boolean",
                     "Equals(other as Int128QTX) as Boolean",
                     "Equals(other as UInt128QTX) as Boolean",
                     "ShiftLeft(other as Int128QTX) as Int128QTX",
                     "ShiftLeft(other as Int64) as Int128QTX",
                     "ShiftRight(other as Int128QTX) as Int128QTX",
                     "ShiftRight(other as Int64) as Int128QTX",
                     "Constructor(value as Int64)",
                     "Constructor(value as Int128QTX)",
                     "Constructor(value as UInt128QTX)",
                     "Constructor(value as String)",
                     "Constructor(Data as Ptr, Size as Integer, isUnsigned as boolean = false)",
                     "Constructor"}));
  EXPECT_EQ(record.methods[16].function, record.methods[18].function);
  EXPECT_EQ(host.classes.back()->name, std::string("UInt128QTX"));
  EXPECT_EQ(host.classes[host.classes.size() - 2], &record);
}

TEST(UInt128Class, IsRegisteredMemberByMember) {
  FakeHost host;
  host.load();
  const REALclassDefinition& record = *host.findClass("UInt128QTX");
  EXPECT_EQ(record.dataSize, 16u);
  EXPECT_EQ(record.flags, 4u);
  EXPECT_EQ(record.constructor, nullptr);
  EXPECT_EQ(record.destructor, nullptr);
  EXPECT_EQ(record.sharedPropertyCount, 0u);
  EXPECT_EQ(propertiesOf(record),
            (Strings{"Data Ptr read-only", "LowValue UInt64", "HighValue UInt64", "stringValue String",
                     "PopCount Integer read-only", "CountLeftZeros Integer read-only",
                     "CountRightZeros Integer read-only", "BitWidth Integer read-only",
                     "doubleValue Double read-only"}));
  EXPECT_EQ(
      declarationsOf(record.sharedMethods, record.sharedMethodCount),
      (Strings{"supported as Boolean", "zero as UInt128QTX", "one as UInt128QTX", "two as UInt128QTX"}));
  EXPECT_EQ(declarationsOf(record.methods, record.methodCount),
            (Strings{"Sqrt as UInt128QTX",
                     "Pow(exp as UInt64) as UInt128QTX",
                     "Inc",
                     "Dec",
                     "Inc as UInt128QTX",
                     "Dec as UInt128QTX",
                     "BitwiseAnd(Value as UInt128QTX) as UInt128QTX",
                     "BitwiseAnd(Value as UInt64) as UInt128QTX",
                     "BitwiseOr(Value as UInt128QTX) as UInt128QTX",
                     "BitwiseOr(Value as UInt64) as UInt128QTX",
                     "BitwiseXOr(Value as UInt128QTX) as UInt128QTX",
                     "BitwiseXOr(Value as UInt64) as UInt128QTX",
                     "Operator_Convert(value as UInt64)",
                     "Operator_Convert(value as String)",
                     "Operator_Convert as UInt64",
                     "Operator_Convert as String",
                     "Operator_AddRight(other as UInt128QTX) as UInt128QTX",
                     "Operator_Add(other as UInt128QTX) as UInt128QTX",
                     "Operator_Add(other as UInt64) as UInt128QTX",
                     "Operator_Subtract(other as UInt128QTX) as UInt128QTX",
                     "Operator_Subtract(other as UInt64) as UInt128QTX",
                     "Operator_SubtractRight(other as UInt64) as UInt128QTX",
                     "Operator_Multiply(other as UInt128QTX) as UInt128QTX",
                     "Operator_Multiply(other as UInt64) as UInt128QTX",
                     "Operator_MultiplyRight(other as UInt64) as UInt128QTX",
                     "Operator_Divide(other as UInt128QTX) as UInt128QTX",
                     "Operator_Divide(other as UInt64) as UInt128QTX",
                     "Operator_DivideRight(other as UInt64) as UInt128QTX",
                     "Operator_Compare(other as Int128QTX) as Integer",
                     "Operator_Compare(other as UInt128QTX) as Integer",
                     "Operator_Compare(other as UInt64) as Integer",
                     "Operator_Modulo(other as UInt128QTX) as UInt128QTX",
                     "Operator_Modulo(other as UInt64) as UInt128QTX",
                     "Operator_ModuloRight(other as UInt64) as UInt128QTX",
                     "Operator_Negate as Int128QTX",
                     "Equals(other as UInt64) as Boolean",
                     "Equals(other as UInt128QTX) as Boolean",
                     "Equals(other as Int128QTX) as Boolean",
                     "ShiftLeft(other as UInt128QTX) as UInt128QTX",
                     "ShiftLeft(other as UInt64) as UInt128QTX",
                     "ShiftLeft(other as Int64) as UInt128QTX",
                     "ShiftRight(other as UInt128QTX) as UInt128QTX",
                     "ShiftRight(other as UInt64) as UInt128QTX",
                     "ShiftRight(other as Int64) as UInt128QTX",
                     "Constructor(value as UInt64)",
                     "Constructor(value as Int64)",
                     "Constructor(value as UInt128QTX)",
                     "Constructor(value as Int128QTX)",
                     "Constructor(value as String)",
                     "Constructor(Data as Ptr, Size as Integer, isUnsigned as boolean = false)",
                     "Constructor"}));
  EXPECT_EQ(record.methods[16].function, record.methods[17].function);
}

// Everything that both classes have, with what must come out, told by the compiler's own integers.
template <typename Value>
class BothClasses : public testing::Test {
 protected:
  using N = typename Value::Native;
  static constexpr bool isSigned = std::is_signed_v<typename Value::Word>;
  static constexpr const char* wideName = isSigned ? "Int128" : "UInt128";  // in the names of members
  static constexpr const char* wordName = isSigned ? "Int64" : "UInt64";

  // "Operator_Add" → "Operator_Add(other as Int128QTX) as Int128QTX" and the like.
  static std::string objectForm(const std::string& name, const char* argument = "other") {
    return name + "(" + argument + " as " + wideName + "QTX) as " + wideName + "QTX";
  }
  static std::string wordForm(const std::string& name, const char* argument = "other") {
    return name + "(" + argument + " as " + wordName + ") as " + wideName + "QTX";
  }
  static std::string computed(const std::string& name) { return name + " as " + wideName + "QTX"; }

  struct Operator {
    const char* name;  // without Operator_, unless it has none
    N (*result)(N, N);
    bool isOperator = true, reflected = true;
    const char* argument = "other";
  };
  static N wrapped(NativeUInt128 bits) { return static_cast<N>(bits); }
  static std::vector<Operator> operators() {
    using U = NativeUInt128;
    std::vector<Operator> all = {
        {"Add", [](N a, N b) { return wrapped(U(a) + U(b)); }, true, false},
        {"Subtract", [](N a, N b) { return wrapped(U(a) - U(b)); }},
        {"Multiply", [](N a, N b) { return wrapped(U(a) * U(b)); }},
        {"Divide", [](N a, N b) { return b == 0                   ? N(0)
                                         : isSigned && b == N(-1) ? wrapped(-U(a))
                                                                  : a / b; }},
        {"Modulo", [](N a, N b) { return b == 0                   ? a
                                         : isSigned && b == N(-1) ? N(0)
                                                                  : a % b; }},
        {"BitwiseAnd", [](N a, N b) { return a & b; }, false, false, "Value"},
        {"BitwiseOr", [](N a, N b) { return a | b; }, false, false, "Value"},
        {"BitwiseXOr", [](N a, N b) { return a ^ b; }, false, false, "Value"},
        {"ShiftLeft", [](N a, N b) { return wrapped(U(a) << (U(b) & 127)); }, false, false},
        {"ShiftRight", [](N a, N b) { return static_cast<N>(a >> (U(b) & 127)); }, false, false},
    };
    return all;
  }
  static std::string full(const Operator& op) {
    return (op.isOperator ? "Operator_" : "") + std::string(op.name);
  }

  NumberHost numbers;

  REALobject make(NativeUInt128 bits) { return numbers.make(Value::fromBits(bits)); }
  void expectTaken(REALobject result, N expected) {
    EXPECT_EQ(hex(numbers.template take<Value>(result).bits()), hex(static_cast<NativeUInt128>(expected)));
  }
  template <typename Result, typename... Arguments>
  Result call(const std::string& declaration, REALobject self, Arguments... arguments) {
    return numbers.template call<Value, Result>(declaration, self, arguments...);
  }
  // What the call writes to the log while tracing.
  template <typename Body>
  std::string traced(Body body) {
    debugging = true;
    const std::string log = logOf(body);
    debugging = false;
    return log;
  }
  static std::string line(const std::string& text) { return "QTX Debug: " + text + "\n"; }
};
using Values = testing::Types<Int128, UInt128>;
TYPED_TEST_SUITE(BothClasses, Values);

// A few of the corners are enough here: the arithmetic has a test of its own.
std::vector<NativeUInt128> someCorners() {
  const NativeUInt128 one = 1, top = one << 127;
  return {0,
          1,
          2,
          7,
          15,
          16,
          -one,
          one - 3,
          -one * 15,
          one << 63,
          one << 64,
          (one << 64) - 1,
          -(one << 63),
          -(one << 63) - 1,
          top,
          top - 1,
          top + 1,
          one << 100};
}

TYPED_TEST(BothClasses, OperatorsTakeObjects) {
  for (const auto& op : this->operators()) {
    const std::string declaration = this->objectForm(this->full(op), op.argument);
    SCOPED_TRACE(declaration);
    for (const NativeUInt128 a : someCorners()) {
      const REALobject self = this->make(a);
      for (const NativeUInt128 b : someCorners()) {
        const REALobject other = this->make(b);
        this->expectTaken(this->template call<REALobject>(declaration, self, other),
                          op.result(this->wrapped(a), this->wrapped(b)));
        EXPECT_EQ(this->numbers.references(other), 1);
        this->numbers.host.unlock(other);
      }
      // The object itself, and nil, which gives a copy.
      this->expectTaken(this->template call<REALobject>(declaration, self, self),
                        op.result(this->wrapped(a), this->wrapped(a)));
      this->expectTaken(this->template call<REALobject>(declaration, self, REALobject(nullptr)),
                        this->wrapped(a));
      EXPECT_EQ(this->numbers.template value<TypeParam>(self).bits(), a) << "changed by an operator";
      EXPECT_EQ(this->numbers.references(self), 1);
      this->numbers.host.unlock(self);
    }
  }
  EXPECT_TRUE(this->numbers.host.raised.empty());
}

TYPED_TEST(BothClasses, OperatorsTakeWords) {
  using Word = typename TypeParam::Word;
  using Native = typename TypeParam::Native;
  for (const auto& op : this->operators()) {
    const std::string declaration = this->wordForm(this->full(op), op.argument);
    SCOPED_TRACE(declaration);
    for (const NativeUInt128 a : someCorners()) {
      const REALobject self = this->make(a);
      for (const NativeUInt128 b : someCorners()) {
        const auto word = static_cast<Word>(b);
        this->expectTaken(this->template call<REALobject>(declaration, self, word),
                          op.result(this->wrapped(a), static_cast<Native>(word)));
        if (!op.reflected) continue;
        this->expectTaken(
            this->template call<REALobject>(this->wordForm(this->full(op) + "Right"), self, word),
            op.result(static_cast<Native>(word), this->wrapped(a)));
      }
      this->numbers.host.unlock(self);
    }
  }
}

TYPED_TEST(BothClasses, OperatorsTraceTheirNames) {
  using Word = typename TypeParam::Word;
  const REALobject self = this->make(100), other = this->make(3);
  this->numbers.template makeShared<TypeParam>();
  for (const auto& op : this->operators()) {
    const std::string name = this->full(op);
    const auto trace = [&](const std::string& declaration, auto argument) {
      return this->traced(
          [&] { this->numbers.host.unlock(this->template call<REALobject>(declaration, self, argument)); });
    };
    EXPECT_EQ(trace(this->objectForm(name, op.argument), other), this->line(name + "_" + this->wideName));
    EXPECT_EQ(trace(this->objectForm(name, op.argument), REALobject(nullptr)),
              this->line(name + "_" + this->wideName));
    EXPECT_EQ(trace(this->wordForm(name, op.argument), Word{3}), this->line(name + "_" + this->wordName));
    if (!op.reflected) continue;
    EXPECT_EQ(trace(this->wordForm(name + "Right"), Word{1000}),
              this->line(name + "Right_" + this->wordName));
  }
  this->numbers.host.unlock(self);
  this->numbers.host.unlock(other);
}

TYPED_TEST(BothClasses, Compare) {
  using Word = typename TypeParam::Word;
  const std::string compareObject =
      std::string("Operator_Compare(other as ") + this->wideName + "QTX) as Integer";
  const std::string compareWord = std::string("Operator_Compare(other as ") + this->wordName + ") as Integer";
  const std::string equalsObject = std::string("Equals(other as ") + this->wideName + "QTX) as Boolean";
  const std::string equalsWord = std::string("Equals(other as ") + this->wordName + ") as Boolean";
  for (const NativeUInt128 a : someCorners()) {
    const REALobject self = this->make(a);
    for (const NativeUInt128 b : someCorners()) {
      const REALobject other = this->make(b);
      const auto x = this->wrapped(a), y = this->wrapped(b);
      EXPECT_EQ(this->template call<RBInteger>(compareObject, self, other), x < y ? -1 : x > y);
      EXPECT_EQ(this->template call<bool>(equalsObject, self, other), x == y);
      const auto word = static_cast<Word>(b);
      const auto z = static_cast<typename TypeParam::Native>(word);
      EXPECT_EQ(this->template call<RBInteger>(compareWord, self, word), x < z ? -1 : x > z);
      EXPECT_EQ(this->template call<bool>(equalsWord, self, word), x == z);
      this->numbers.host.unlock(other);
    }
    EXPECT_EQ(this->template call<RBInteger>(compareObject, self, self), 0);
    EXPECT_TRUE(this->template call<bool>(equalsObject, self, self));
    this->numbers.host.unlock(self);
  }
}

TYPED_TEST(BothClasses, ComparisonsRefuseNil) {
  const REALobject self = this->make(5);
  for (const char* other : {"Int128", "UInt128"}) {
    const std::string compare = std::string("Operator_Compare(other as ") + other + "QTX) as Integer";
    EXPECT_EQ(this->traced(
                  [&] { EXPECT_EQ(this->template call<RBInteger>(compare, self, REALobject(nullptr)), 0); }),
              this->line(std::string("Operator_Compare_") + other) + this->line("other is nil"));
    RaisedException raised = this->numbers.host.takeRaised();
    EXPECT_EQ(raised.className, "NilObjectException");
    EXPECT_EQ(raised.message, "Other is nil");
    const std::string equals = std::string("Equals(other as ") + other + "QTX) as Boolean";
    EXPECT_EQ(
        this->traced([&] { EXPECT_FALSE(this->template call<bool>(equals, self, REALobject(nullptr))); }),
        this->line(std::string("Equals_") + other) + this->line("other is nil"));
    raised = this->numbers.host.takeRaised();
    EXPECT_EQ(raised.className, "NilObjectException");
    EXPECT_EQ(raised.message, "other is nil");
  }
  // Nil is found before anything is read, an object itself before that.
  for (const char* other : {"Int128", "UInt128"}) {
    const std::string compare = std::string("Operator_Compare(other as ") + other + "QTX) as Integer";
    const std::string equals = std::string("Equals(other as ") + other + "QTX) as Boolean";
    EXPECT_EQ(this->template call<RBInteger>(compare, self, self), 0);
    EXPECT_TRUE(this->template call<bool>(equals, self, self));
    EXPECT_EQ(this->template call<RBInteger>(compare, REALobject(nullptr), REALobject(nullptr)), 0);
  }
  EXPECT_TRUE(this->numbers.host.raised.empty());
  EXPECT_EQ(this->traced([&] {
    using Word = typename TypeParam::Word;
    this->template call<RBInteger>(
        std::string("Operator_Compare(other as ") + this->wordName + ") as Integer", self, Word{1});
    this->template call<bool>(std::string("Equals(other as ") + this->wordName + ") as Boolean", self,
                              Word{1});
  }),
            this->line(std::string("Operator_Compare_") + this->wordName) +
                this->line(std::string("Equals_") + this->wordName));
  this->numbers.host.unlock(self);
}

TYPED_TEST(BothClasses, StepsAndPowers) {
  using Native = typename TypeParam::Native;
  for (const NativeUInt128 a : someCorners()) {
    const REALobject self = this->make(a);
    const std::string inc = this->computed("Inc"), dec = this->computed("Dec"), sqrt = this->computed("Sqrt");
    this->expectTaken(this->template call<REALobject>(inc, self), this->wrapped(a + 1));
    this->expectTaken(this->template call<REALobject>(dec, self), this->wrapped(a - 1));
    const std::string pow = this->computed("Pow(exp as UInt64)");
    Native expected = 1;
    for (std::uint64_t exponent = 0; exponent < 5; ++exponent) {
      this->expectTaken(this->template call<REALobject>(pow, self, exponent), expected);
      expected = this->wrapped(static_cast<NativeUInt128>(expected) * a);
    }
    EXPECT_EQ(this->numbers.template value<TypeParam>(self).bits(), a);
    if (this->wrapped(a) >= 0) {
      this->expectTaken(this->template call<REALobject>(sqrt, self), squareRoot(UInt128::fromBits(a)));
    }
    this->template call<void>("Inc", self);
    EXPECT_EQ(this->numbers.template value<TypeParam>(self).bits(), a + 1);
    this->template call<void>("Dec", self);
    this->template call<void>("Dec", self);
    EXPECT_EQ(this->numbers.template value<TypeParam>(self).bits(), a - 1);
    this->numbers.host.unlock(self);
  }
  this->numbers.template makeShared<TypeParam>();
  const REALobject self = this->make(100);
  const auto traces = [&](const std::string& declaration, const std::string& text) {
    EXPECT_EQ(
        this->traced([&] { this->numbers.host.unlock(this->template call<REALobject>(declaration, self)); }),
        this->line(text));
  };
  traces(this->computed("Inc"), "Inc");
  traces(this->computed("Dec"), "Dec");
  traces(this->computed("Sqrt"), "Sqrt");
  traces("Operator_Negate as Int128QTX", "Operator_Negate");
  EXPECT_EQ(this->traced([&] {
    this->numbers.host.unlock(
        this->template call<REALobject>(this->computed("Pow(exp as UInt64)"), self, ~std::uint64_t{0} - 1));
  }),
            this->line("Pow 18446744073709551614"));
  EXPECT_EQ(this->traced([&] { this->template call<void>("Inc", self); }), this->line("IncMethod"));
  EXPECT_EQ(this->traced([&] { this->template call<void>("Dec", self); }), this->line("DecMethod"));
  this->numbers.host.unlock(self);
}

TYPED_TEST(BothClasses, PropertiesTellOfTheBits) {
  struct Query {
    const char* name;
    int (*expected)(TypeParam);
  };
  const Query queries[] = {
      {"PopCount", [](TypeParam v) { return popCount(v); }},
      {"CountLeftZeros", [](TypeParam v) { return countLeftZeros(v); }},
      {"CountRightZeros", [](TypeParam v) { return countRightZeros(v); }},
      {"BitWidth", [](TypeParam v) { return bitWidth(v); }},
  };
  for (const NativeUInt128 a : someCorners()) {
    const REALobject self = this->make(a);
    const auto value = TypeParam::fromBits(a);
    for (const Query& query : queries) {
      EXPECT_EQ(this->traced([&] {
        const auto found = this->numbers.template get<TypeParam, RBInteger>(self, query.name);
        EXPECT_EQ(found, query.expected(value)) << query.name << " of " << hex(a);
      }),
                this->line(query.name));
    }
    EXPECT_EQ(this->traced([&] {
      EXPECT_EQ((this->numbers.template get<TypeParam, double>(self, "doubleValue")), toDouble(value));
    }),
              this->line("doubleValue"));
    EXPECT_EQ(this->traced([&] {
      EXPECT_EQ((this->numbers.template get<TypeParam, std::uint64_t>(self, "LowValue")), value.low);
      EXPECT_EQ((this->numbers.template get<TypeParam, typename TypeParam::Word>(self, "HighValue")),
                value.high);
    }),
              "");
    this->numbers.host.unlock(self);
  }
}

TYPED_TEST(BothClasses, WordsAreSetOneByOne) {
  using Word = typename TypeParam::Word;
  const REALobject self = this->make(~NativeUInt128{0});
  EXPECT_EQ(
      this->traced([&] { this->numbers.template set<TypeParam>(self, "LowValue", ~std::uint64_t{0} - 4); }),
      this->line("setLowValue 18446744073709551611"));
  EXPECT_EQ(this->numbers.template value<TypeParam>(self),
            TypeParam(~std::uint64_t{0} - 4, static_cast<Word>(-1)))
      << "the high word stays";
  EXPECT_EQ(
      this->traced([&] { this->numbers.template set<TypeParam>(self, "HighValue", static_cast<Word>(-3)); }),
      this->line(this->isSigned ? "setHighValue -3" : "setHighValue 18446744073709551613"));
  EXPECT_EQ(this->numbers.template value<TypeParam>(self),
            TypeParam(~std::uint64_t{0} - 4, static_cast<Word>(-3)));
  this->numbers.host.unlock(self);
}

TYPED_TEST(BothClasses, DataIsTheValueInMemory) {
  const REALobject self = this->make(0x0102);
  void* data = nullptr;
  EXPECT_EQ(this->traced([&] { data = this->numbers.template get<TypeParam, void*>(self, "Data"); }),
            this->line("getData"));
  const unsigned char expected[16] = {2, 1};
  EXPECT_EQ(std::memcmp(data, expected, 16), 0);
  static_cast<unsigned char*>(data)[15] = 0x40;
  EXPECT_EQ(this->numbers.template value<TypeParam>(self).bits(), (NativeUInt128{0x40} << 120) + 0x0102);
  EXPECT_EQ((this->numbers.template get<TypeParam, void*>(nullptr, "Data")), nullptr);
  this->numbers.host.unlock(self);
}

TYPED_TEST(BothClasses, IsAssignedAndConstructed) {
  using Word = typename TypeParam::Word;
  const std::string assign = std::string("Operator_Convert(value as ") + this->wordName + ")";
  const std::string construct = std::string("Constructor(value as ") + this->wordName + ")";
  for (const NativeUInt128 bits : someCorners()) {
    const auto word = static_cast<Word>(bits);
    const REALobject self = this->make(~NativeUInt128{0} / 3);
    EXPECT_EQ(this->traced([&] { this->template call<void>(assign, self, word); }),
              this->line(std::string("Operator_Assign_") + this->wordName));
    EXPECT_EQ(this->numbers.template value<TypeParam>(self), TypeParam(word));
    this->numbers.template set<TypeParam>(self, "HighValue", Word{77});
    EXPECT_EQ(this->traced([&] { this->template call<void>(construct, self, word); }),
              this->line(std::string("Constructor_") + this->wordName + " " + std::to_string(word)));
    EXPECT_EQ(this->numbers.template value<TypeParam>(self), TypeParam(word));

    const std::string copy = std::string("Constructor(value as ") + this->wideName + "QTX)";
    const REALobject other = this->make(bits);
    EXPECT_EQ(this->traced([&] { this->template call<void>(copy, self, other); }),
              this->line(std::string("Constructor_") + this->wideName));
    EXPECT_EQ(this->numbers.template value<TypeParam>(self).bits(), bits);
    this->template call<void>(copy, self, REALobject(nullptr));
    this->template call<void>("Constructor(value as Int128QTX)", self, REALobject(nullptr));
    this->template call<void>("Constructor(value as UInt128QTX)", self, REALobject(nullptr));
    EXPECT_EQ(this->traced([&] { this->template call<void>("Constructor", self); }), "");
    EXPECT_EQ(this->numbers.template value<TypeParam>(self).bits(), bits) << "changed by nil";
    this->numbers.host.unlock(other);
    this->numbers.host.unlock(self);
  }
  EXPECT_TRUE(this->numbers.host.raised.empty());
}

TYPED_TEST(BothClasses, IsReadFromMemory) {
  constexpr const char* declaration =
      "Constructor(Data as Ptr, Size as Integer, isUnsigned as boolean = false)";
  const unsigned char bytes[16] = {0x80, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87,
                                   0x88, 0x89, 0x8A, 0x8B, 0x8C, 0x8D, 0x8E, 0x7F};
  NativeUInt128 all = 0;
  for (int i = 15; i >= 0; --i) all = all << 8 | bytes[i];
  NativeUInt128 last = 0;
  const auto read = [&](const void* data, RBInteger size, bool isUnsigned) {
    return this->traced([&] {
      const REALobject self = this->make(0);
      this->template call<void>(declaration, self, data, size, static_cast<std::uint8_t>(isUnsigned));
      last = this->numbers.template take<TypeParam>(self).bits();
    });
  };
  for (const int size : {1, 2, 4, 8, 16}) {
    const NativeUInt128 low = size == 16 ? all : all & ((NativeUInt128{1} << 8 * size) - 1);
    const NativeUInt128 extended = size == 16 ? low : low | ~NativeUInt128{0} << 8 * size;
    EXPECT_EQ(read(bytes, size, true), "") << "traced";
    EXPECT_EQ(hex(last), hex(low)) << size;
    EXPECT_EQ(read(bytes, size, false), "");
    EXPECT_EQ(hex(last), hex(this->isSigned ? extended : low)) << size;
  }
  for (const RBInteger size : {RBInteger{3}, RBInteger{0}, RBInteger{5}, RBInteger{6}, RBInteger{7},
                               RBInteger{9}, RBInteger{15}, RBInteger{17}, RBInteger{-1}, RBInteger{32},
                               RBInteger{1} << 32, (RBInteger{1} << 32) + 1, INT64_MIN, INT64_MAX}) {
    const REALobject self = this->make(42);
    this->template call<void>(declaration, self, static_cast<const void*>(bytes), size, std::uint8_t{0});
    EXPECT_EQ(this->numbers.template take<TypeParam>(self).bits(), NativeUInt128{42});
    const RaisedException raised = this->numbers.host.takeRaised();
    EXPECT_EQ(raised.className, "UnsupportedOperationException");
    EXPECT_EQ(raised.message, "Invalid size");
  }
  // Sixteen bytes whose top bit is set.
  const NativeUInt128 top = NativeUInt128{1} << 127;
  read(&top, 16, false);
  EXPECT_EQ(hex(last), hex(top));
  read(&top, 16, true);
  if (this->isSigned) {
    EXPECT_EQ(last, NativeUInt128{0}) << "changed by what was refused";
    const RaisedException raised = this->numbers.host.takeRaised();
    EXPECT_EQ(raised.className, "OutOfBoundsException");
    EXPECT_EQ(raised.message, "Unsigned integer is too big!");
  } else {
    EXPECT_EQ(hex(last), hex(top));
  }
}

TYPED_TEST(BothClasses, GoesToTextAndBack) {
  FakeHost& host = this->numbers.host;
  const REALobject self = this->make(0);
  struct Row {
    const char* text;
    long long expected;
  };
  for (const Row& row : {Row{"", 0}, Row{"  ", 0}, Row{"  +42xyz", 42}, Row{"12.9", 12}, Row{"abc", 0}}) {
    const REALstring text = host.makeString(row.text);
    const auto check = [&] {
      EXPECT_EQ(this->numbers.template value<TypeParam>(self), TypeParam(row.expected)) << row.text;
      this->numbers.template set<TypeParam>(self, "LowValue", std::uint64_t{999});
    };
    EXPECT_EQ(this->traced([&] { this->template call<void>("Constructor(value as String)", self, text); }),
              this->line("ConstructorString"));
    check();
    EXPECT_EQ(
        this->traced([&] { this->template call<void>("Operator_Convert(value as String)", self, text); }),
        this->line(std::string("Operator_Assign_String ") + row.text));
    check();
    EXPECT_EQ(this->traced([&] { this->numbers.template set<TypeParam>(self, "stringValue", text); }),
              this->line("setStringValue"));
    check();
    EXPECT_EQ(host.string(text).references, 1);
    host.unlock(text);
  }
  this->template call<void>("Operator_Convert(value as String)", self, REALstring(nullptr));
  EXPECT_EQ(this->numbers.template value<TypeParam>(self), TypeParam(0));
  for (const NativeUInt128 bits : corners()) {
    const auto value = TypeParam::fromBits(bits);
    std::memcpy(host.object(self).data, &value, 16);
    REALstring text = nullptr, again = nullptr;
    EXPECT_EQ(
        this->traced([&] { text = this->template call<REALstring>("Operator_Convert as String", self); }),
        this->line("Operator_Convert_String"));
    EXPECT_EQ(
        this->traced([&] { again = this->numbers.template get<TypeParam, REALstring>(self, "stringValue"); }),
        this->line("stringValue"));
    EXPECT_EQ(host.bytesOf(text), host.bytesOf(again));
    EXPECT_EQ(host.string(text).encoding, encoding::ascii);
    const REALobject parsed = this->make(1);
    this->template call<void>("Constructor(value as String)", parsed, text);
    EXPECT_EQ(hex(this->numbers.template take<TypeParam>(parsed).bits()), hex(bits));
    host.unlock(text);
    host.unlock(again);
  }
  host.unlock(self);
}

TYPED_TEST(BothClasses, IsReadFromMemoryOfExactlyThatSize) {
  constexpr const char* declaration =
      "Constructor(Data as Ptr, Size as Integer, isUnsigned as boolean = false)";
  const NativeUInt128 before = NativeUInt128{0x1234} << 64 | 0x5678;
  // Blocks of the heap that end with the number, so that a read past it is noticed; at an odd address.
  const auto read = [&](RBInteger size, unsigned char fill, std::uint8_t isUnsigned) {
    std::vector<unsigned char> memory(static_cast<std::size_t>(size > 0 ? size : 0) + 1, fill);
    const REALobject self = this->make(before);
    this->template call<void>(declaration, self, static_cast<const void*>(memory.data() + 1), size,
                              isUnsigned);
    return this->numbers.template take<TypeParam>(self).bits();
  };
  for (RBInteger size = -20; size <= 40; ++size) {
    SCOPED_TRACE(size);
    const bool allowed = size == 1 || size == 2 || size == 4 || size == 8 || size == 16;
    // A Boolean's byte may be any but 0 for true.
    for (const auto isUnsigned : std::initializer_list<std::uint8_t>{0, 1, 2, 255}) {
      SCOPED_TRACE(static_cast<int>(isUnsigned));
      for (const auto fill : std::initializer_list<unsigned char>{0x7F, 0xFF}) {
        const NativeUInt128 found = read(size, fill, isUnsigned);
        if (!allowed) {
          EXPECT_EQ(hex(found), hex(before));
          const RaisedException raised = this->numbers.host.takeRaised();
          EXPECT_EQ(raised.className, "UnsupportedOperationException");
          EXPECT_EQ(raised.message, "Invalid size");
          continue;
        }
        if (this->isSigned && isUnsigned && size == 16 && fill == 0xFF) {
          EXPECT_EQ(hex(found), hex(before)) << "changed by what was refused";
          const RaisedException raised = this->numbers.host.takeRaised();
          EXPECT_EQ(raised.className, "OutOfBoundsException");
          EXPECT_EQ(raised.message, "Unsigned integer is too big!");
          continue;
        }
        NativeUInt128 expected = this->isSigned && !isUnsigned && fill == 0xFF ? ~NativeUInt128{0} : 0;
        for (RBInteger i = 0; i < size; ++i) expected = expected << 8 | fill;
        EXPECT_EQ(hex(found), hex(expected));
      }
    }
  }
  EXPECT_TRUE(this->numbers.host.raised.empty());
}

// The text is read in UTF-8, whatever the string's encoding, and to its length, whatever bytes it holds.
TYPED_TEST(BothClasses, ReadsTextOfAnyEncodingAndLength) {
  using namespace std::string_view_literals;
  FakeHost& host = this->numbers.host;
  const REALobject self = this->make(0);
  const auto readsAs = [&](REALstring text, TypeParam expected) {
    const auto check = [&](const char* how) {
      EXPECT_EQ(hex(this->numbers.template value<TypeParam>(self).bits()), hex(expected.bits())) << how;
      this->numbers.template set<TypeParam>(self, "LowValue", std::uint64_t{999});
    };
    this->template call<void>("Constructor(value as String)", self, text);
    check("Constructor");
    this->template call<void>("Operator_Convert(value as String)", self, text);
    check("Operator_Convert");
    this->numbers.template set<TypeParam>(self, "stringValue", text);
    check("stringValue");
    if (!text) return;
    EXPECT_EQ(host.string(text).references, 1);
    host.unlock(text);
  };
  readsAs(nullptr, 0);
  readsAs(host.makeString("12\0"
                          "34"sv),
          12);
  readsAs(host.makeString("\0"
                          "34"sv),
          0);
  for (const char terminator : {'\0', '5'}) {  // the byte behind the text is not part of it
    host.terminator = terminator;
    for (const auto textEncoding : {encoding::utf8, encoding::ascii, encoding::utf16, encoding::none}) {
      SCOPED_TRACE(textEncoding);
      host.conversions.clear();
      readsAs(host.makeString("  17", textEncoding), 17);
      const bool converted = textEncoding == encoding::utf16;
      EXPECT_EQ(host.conversions, converted ? Strings(3, "PluginGetStringData 134217984") : Strings());
      readsAs(host.makeString("", textEncoding), 0);
    }
  }
  host.terminator = '\0';
  // A megabyte; the line that traces it is cut.
  std::string digits(1 << 20, '7');
  NativeUInt128 expected = 0;
  for (std::size_t i = 0; i < digits.size(); ++i) expected = expected * 10 + 7;
  readsAs(host.makeString(digits), TypeParam::fromBits(expected));
  readsAs(host.makeString(std::string(1 << 20, ' ') + "9"), 9);
  const REALstring text = host.makeString(digits);
  const std::string whole = this->line("Operator_Assign_String " + digits);
  EXPECT_EQ(this->traced([&] { this->template call<void>("Operator_Convert(value as String)", self, text); }),
            whole.substr(0, 4095) + "\n");
  EXPECT_EQ(hex(this->numbers.template value<TypeParam>(self).bits()), hex(expected));
  host.unlock(text);
  host.unlock(self);
}

TYPED_TEST(BothClasses, TakesTextThatTheHostDoesNotHandOverForEmpty) {
  FakeHost& host = this->numbers.host;
  host.offer(
      "PluginGetStringData", +[](REALstring, std::uint32_t, REALstringData*) { return false; });
  const REALstring text = host.makeString("17", encoding::utf16);
  const auto becomesZero = [&](auto change) {
    const REALobject self = this->make(~NativeUInt128{0} / 3);
    change(self);
    EXPECT_EQ(hex(this->numbers.template take<TypeParam>(self).bits()), hex(0));
  };
  becomesZero(
      [&](REALobject self) { this->template call<void>("Constructor(value as String)", self, text); });
  becomesZero(
      [&](REALobject self) { this->template call<void>("Operator_Convert(value as String)", self, text); });
  becomesZero([&](REALobject self) { this->numbers.template set<TypeParam>(self, "stringValue", text); });
  EXPECT_EQ(host.string(text).references, 1);
  EXPECT_TRUE(host.raised.empty());
  host.unlock(text);
}

TYPED_TEST(BothClasses, SharedMethodsAreSilentButForNewObjects) {
  FakeHost& host = this->numbers.host;
  EXPECT_EQ(
      this->traced([&] { EXPECT_TRUE(host.function<bool()>(classOf<TypeParam>, "supported as Boolean")()); }),
      "");
  const char* names[] = {"zero", "one", "two"};
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(this->traced([&] {
      EXPECT_EQ(this->numbers.template take<TypeParam>(this->numbers.template shared<TypeParam>(names[i])),
                TypeParam(i));
    }),
              this->line("new constant " + std::to_string(i)));
    EXPECT_EQ(this->traced([&] { host.unlock(this->numbers.template shared<TypeParam>(names[i])); }), "");
  }
}

TYPED_TEST(BothClasses, ResultsAreNilWhereTheHostMakesNone) {
  using Word = typename TypeParam::Word;
  FakeHost& host = this->numbers.host;
  const REALobject self = this->make(100);
  const auto check = [&] {
    for (const auto& op : this->operators()) {
      EXPECT_EQ(this->template call<REALobject>(this->objectForm(this->full(op), op.argument), self, self),
                nullptr);
      EXPECT_EQ(this->template call<REALobject>(this->wordForm(this->full(op), op.argument), self, Word{3}),
                nullptr);
    }
    for (const char* name : {"Inc", "Dec", "Sqrt"}) {
      EXPECT_EQ(this->template call<REALobject>(this->computed(name), self), nullptr);
    }
    EXPECT_EQ(this->template call<REALobject>("Operator_Negate as Int128QTX", self), nullptr);
    EXPECT_EQ(this->template call<REALobject>(this->computed("Pow(exp as UInt64)"), self, std::uint64_t{2}),
              nullptr);
    for (const char* name : {"zero", "one", "two"}) {
      EXPECT_EQ(this->numbers.template shared<TypeParam>(name), nullptr);
    }
    EXPECT_TRUE(host.raised.empty());
  };
  host.withhold("PluginNewInstance");  // never looked up so far: the cache has not got it
  check();
  host.offer(
      "PluginNewInstance", +[](const char*) -> REALobject { return nullptr; });
  check();
  host.unlock(self);
}

TEST(Int128Class, ComparesWithUnsigned) {
  NumberHost numbers;
  const NativeUInt128 one = 1, top = one << 127;
  struct Row {
    NativeInt128 self;
    NativeUInt128 other;
    int expected;
    bool equal = false;
  };
  const Row rows[] = {
      {5, top, 1},
      {5, 10, -1},
      {10, 5, 1},
      {-1, 0, -1},
      {-1, top, -1},
      {-1, ~NativeUInt128{0}, -1},
      {0, ~NativeUInt128{0}, 1},
      {0, 0, 0, true},
      {7, 7, 0, true},
      {static_cast<NativeInt128>(top - 1), top - 1, 0, true},
      {static_cast<NativeInt128>(top), top, -1},
  };
  for (const Row& row : rows) {
    const REALobject self = numbers.make(Int128::fromBits(static_cast<NativeUInt128>(row.self)));
    const REALobject other = numbers.make(UInt128::fromBits(row.other));
    EXPECT_EQ(
        (numbers.call<Int128, RBInteger>("Operator_Compare(other as UInt128QTX) as Integer", self, other)),
        row.expected);
    EXPECT_EQ((numbers.call<Int128, bool>("Equals(other as UInt128QTX) as Boolean", self, other)), row.equal);
    EXPECT_EQ(
        (numbers.call<UInt128, RBInteger>("Operator_Compare(other as Int128QTX) as Integer", other, self)),
        -row.expected);
    EXPECT_EQ((numbers.call<UInt128, bool>("Equals(other as Int128QTX) as Boolean", other, self)), row.equal);
    numbers.host.unlock(self);
    numbers.host.unlock(other);
  }
}

// The odd rule across the classes, told word by word.
TEST(Int128Class, ComparesWithUnsignedAtAllCorners) {
  NumberHost numbers;
  for (const NativeUInt128 a : corners()) {
    for (const NativeUInt128 b : corners()) {
      const bool aIsNegative = static_cast<NativeInt128>(a) < 0, bHasTopBit = b >> 127 != 0;
      const int expected = aIsNegative ? -1 : bHasTopBit ? 1 : (a > b) - (a < b);
      const REALobject self = numbers.make(Int128::fromBits(a)), other = numbers.make(UInt128::fromBits(b));
      SCOPED_TRACE(hex(a) + " and " + hex(b));
      EXPECT_EQ(
          (numbers.call<Int128, RBInteger>("Operator_Compare(other as UInt128QTX) as Integer", self, other)),
          expected);
      EXPECT_EQ(
          (numbers.call<UInt128, RBInteger>("Operator_Compare(other as Int128QTX) as Integer", other, self)),
          -expected);
      const bool equal = a == b && !bHasTopBit;
      EXPECT_EQ((numbers.call<Int128, bool>("Equals(other as UInt128QTX) as Boolean", self, other)), equal);
      EXPECT_EQ((numbers.call<UInt128, bool>("Equals(other as Int128QTX) as Boolean", other, self)), equal);
      numbers.host.unlock(self);
      numbers.host.unlock(other);
    }
  }
}

TEST(Int128Class, AbsSignAndNegate) {
  NumberHost numbers;
  for (const NativeUInt128 bits : corners()) {
    const auto native = static_cast<NativeInt128>(bits);
    const REALobject self = numbers.make(Int128::fromBits(bits));
    const NativeUInt128 abs = native < 0 ? -bits : bits;
    EXPECT_EQ(hex(numbers.take<Int128>(numbers.get<Int128, REALobject>(self, "Abs")).bits()), hex(abs));
    EXPECT_EQ((numbers.get<Int128, RBInteger>(self, "Sign")), native > 0 ? 1 : native < 0 ? -1 : 0);
    EXPECT_EQ(hex(numbers.take<Int128>(numbers.call<Int128, REALobject>("Operator_Negate as Int128QTX", self))
                      .bits()),
              hex(-bits));
    numbers.host.unlock(self);
  }
  debugging = true;
  const REALobject self = numbers.make(Int128(-100));
  EXPECT_EQ(logOf([&] {
              numbers.host.unlock(numbers.get<Int128, REALobject>(self, "Abs"));
              numbers.get<Int128, RBInteger>(self, "Sign");
              numbers.host.unlock(numbers.call<Int128, REALobject>("Operator_Negate as Int128QTX", self));
            }),
            "QTX Debug: Abs\nQTX Debug: Sign\nQTX Debug: Operator_Negate\n");
  numbers.host.unlock(self);
}

TEST(Int128Class, RefusesTheRootOfANegativeNumber) {
  NumberHost numbers;
  for (const Int128 value : {Int128(-1), Int128::fromBits(NativeUInt128{1} << 127)}) {
    const REALobject self = numbers.make(value);
    EXPECT_EQ((numbers.call<Int128, REALobject>("Sqrt as Int128QTX", self)), nullptr);
    const RaisedException raised = numbers.host.takeRaised();
    EXPECT_EQ(raised.className, "UnsupportedOperationException");
    EXPECT_EQ(raised.message, "can't do square root for negative numbers.");
    numbers.host.unlock(self);
  }
  const REALobject largest = numbers.make(Int128::fromBits((NativeUInt128{1} << 127) - 1));
  EXPECT_EQ(numbers.take<Int128>(numbers.call<Int128, REALobject>("Sqrt as Int128QTX", largest)),
            Int128(std::uint64_t{13043817825332782212u}));
  numbers.host.unlock(largest);
}

TEST(Int128Class, ConvertsToInt64) {
  NumberHost numbers;
  const NativeUInt128 one = 1;
  struct Row {
    NativeUInt128 bits;
    std::int64_t expected;
    std::string message = "";
  };
  const Row rows[] = {
      {5, 5},
      {-one * 5, -5},
      {(one << 63) - 1, INT64_MAX},
      {-(one << 63), INT64_MIN},
      {one << 63, INT64_MIN, "Value too big for Int64."},
      {-(one << 63) - 1, INT64_MAX, "Value too small for Int64."},
      {(one << 64) + 7, 7, "Value too big for Int64."},
      {one << 127, 0, "Value too small for Int64."},
      {(one << 127) - 1, -1, "Value too big for Int64."},
  };
  for (const Row& row : rows) {
    const REALobject self = numbers.make(Int128::fromBits(row.bits));
    debugging = true;
    EXPECT_EQ(logOf([&] {
                EXPECT_EQ((numbers.call<Int128, std::int64_t>("Operator_Convert as Int64", self)),
                          row.expected);
              }),
              "QTX Debug: Operator_Convert_Int64\n");
    debugging = false;
    if (row.message.empty()) {
      EXPECT_TRUE(numbers.host.raised.empty());
    } else {
      const RaisedException raised = numbers.host.takeRaised();
      EXPECT_EQ(raised.className, "OutOfBoundsException");
      EXPECT_EQ(raised.message, row.message);
    }
    numbers.host.unlock(self);
  }
}

TEST(Int128Class, IsConstructedFromUnsigned) {
  NumberHost numbers;
  constexpr const char* declaration = "Constructor(value as UInt128QTX)";
  const NativeUInt128 top = NativeUInt128{1} << 127;
  const REALobject self = numbers.make(Int128(-9));
  REALobject other = numbers.make(UInt128::fromBits(top));
  debugging = true;
  EXPECT_EQ(logOf([&] { numbers.call<Int128, void>(declaration, self, other); }),
            "QTX Debug: Constructor_UInt128\n");
  debugging = false;
  const RaisedException raised = numbers.host.takeRaised();
  EXPECT_EQ(raised.className, "OutOfBoundsException");
  EXPECT_EQ(raised.message, "Value too big!");
  EXPECT_EQ(numbers.value<Int128>(self), Int128(-9));
  numbers.host.unlock(other);
  other = numbers.make(UInt128::fromBits(top - 1));
  numbers.call<Int128, void>(declaration, self, other);
  EXPECT_EQ(hex(numbers.value<Int128>(self).bits()), hex(top - 1));
  numbers.host.unlock(other);
  numbers.host.unlock(self);
}

TEST(Int128Class, ReadsTheSignOfText) {
  NumberHost numbers;
  const REALstring text = numbers.host.makeString(" -5");
  const REALobject self = numbers.make(Int128(1));
  numbers.call<Int128, void>("Constructor(value as String)", self, text);
  EXPECT_EQ(numbers.take<Int128>(self), Int128(-5));
  const REALobject other = numbers.make(UInt128(1));
  numbers.call<UInt128, void>("Constructor(value as String)", other, text);
  EXPECT_EQ(numbers.take<UInt128>(other), UInt128(5));
  numbers.host.unlock(text);
}

TEST(UInt128Class, NegatesIntoTheOtherClass) {
  NumberHost numbers;
  const NativeUInt128 top = NativeUInt128{1} << 127;
  constexpr const char* declaration = "Operator_Negate as Int128QTX";
  for (const NativeUInt128 bits : {NativeUInt128{0}, NativeUInt128{5}, top - 1}) {
    const REALobject self = numbers.make(UInt128::fromBits(bits));
    EXPECT_EQ(hex(numbers.take<Int128>(numbers.call<UInt128, REALobject>(declaration, self)).bits()),
              hex(-bits));
    numbers.host.unlock(self);
  }
  for (const NativeUInt128 bits : {top, top + 1, ~NativeUInt128{0}}) {
    const REALobject self = numbers.make(UInt128::fromBits(bits));
    EXPECT_EQ((numbers.call<UInt128, REALobject>(declaration, self)), nullptr);
    const RaisedException raised = numbers.host.takeRaised();
    EXPECT_EQ(raised.className, "OutOfBoundsException");
    EXPECT_EQ(raised.message, "UInt128 is too big to make negative");
    numbers.host.unlock(self);
  }
}

TEST(UInt128Class, ConvertsToUInt64) {
  NumberHost numbers;
  const NativeUInt128 one = 1;
  for (const NativeUInt128 bits :
       {NativeUInt128{7}, (one << 64) - 1, one << 64, (one << 64) + 7, ~NativeUInt128{0}}) {
    const REALobject self = numbers.make(UInt128::fromBits(bits));
    debugging = true;
    EXPECT_EQ(logOf([&] {
                EXPECT_EQ((numbers.call<UInt128, std::uint64_t>("Operator_Convert as UInt64", self)),
                          static_cast<std::uint64_t>(bits));
              }),
              "QTX Debug: Operator_Convert_UInt64\n");
    debugging = false;
    if (bits >> 64 != 0) {
      const RaisedException raised = numbers.host.takeRaised();
      EXPECT_EQ(raised.className, "OutOfBoundsException");
      EXPECT_EQ(raised.message, "Value too big for UInt64.");
    }
    numbers.host.unlock(self);
  }
  EXPECT_TRUE(numbers.host.raised.empty());
}

TEST(UInt128Class, IsConstructedFromSigned) {
  NumberHost numbers;
  const REALobject self = numbers.make(UInt128(9));
  debugging = true;
  EXPECT_EQ(
      logOf([&] { numbers.call<UInt128, void>("Constructor(value as Int64)", self, std::int64_t{-2}); }),
      "QTX Debug: Constructor_Int64 -2\n");
  EXPECT_EQ(hex(numbers.value<UInt128>(self).bits()), hex(~NativeUInt128{0} - 1));
  const REALobject other = numbers.make(Int128(-2));
  EXPECT_EQ(logOf([&] { numbers.call<UInt128, void>("Constructor(value as Int128QTX)", self, other); }),
            "QTX Debug: Constructor_Int128\n");
  const RaisedException raised = numbers.host.takeRaised();
  EXPECT_EQ(raised.className, "OutOfBoundsException");
  EXPECT_EQ(raised.message, "Value is negative!");
  EXPECT_EQ(hex(numbers.value<UInt128>(self).bits()), hex(~NativeUInt128{0} - 1))
      << "changed by what was refused";
  numbers.host.unlock(other);
  numbers.host.unlock(self);
}

TEST(UInt128Class, ShiftsByInt64Too) {
  NumberHost numbers;
  const NativeUInt128 top = NativeUInt128{1} << 127;
  const REALobject self = numbers.make(UInt128::fromBits(top + 1));
  for (const std::int64_t count : {std::int64_t{0}, std::int64_t{1}, std::int64_t{127}, std::int64_t{128},
                                   std::int64_t{-1}, INT64_MIN}) {
    const int shift = static_cast<int>(count & 127);
    const auto shifted = [&](const char* declaration) {
      return hex(numbers.take<UInt128>(numbers.call<UInt128, REALobject>(declaration, self, count)).bits());
    };
    EXPECT_EQ(shifted("ShiftLeft(other as Int64) as UInt128QTX"), hex((top + 1) << shift));
    EXPECT_EQ(shifted("ShiftRight(other as Int64) as UInt128QTX"), hex((top + 1) >> shift));
  }
  numbers.makeShared<UInt128>();
  debugging = true;
  EXPECT_EQ(logOf([&] {
              for (const char* name :
                   {"ShiftLeft(other as Int64) as UInt128QTX", "ShiftRight(other as Int64) as UInt128QTX"})
                numbers.host.unlock(numbers.call<UInt128, REALobject>(name, self, std::int64_t{2}));
            }),
            "QTX Debug: ShiftLeft_Int64\nQTX Debug: ShiftRight_Int64\n");
  numbers.host.unlock(self);
}

}  // namespace
}  // namespace qtx
