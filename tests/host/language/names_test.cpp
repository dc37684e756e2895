// What names stand for, and where they end.
#include "language/names.h"

#include "language/spelling.h"
#include "typed.h"

namespace host {
namespace {

syntax::Name named(const std::string& text) { return {text, {1, 1}}; }

TEST(Names, OfAnInnerBlockHideOthersAndEndWithIt) {
  ModuleNames module;
  std::vector<Type> locals;
  Names names(module, locals, false, false);
  names.declare(named("x"), integerType);
  {
    const Names::Inner inner(names);
    names.declare(named("X"), textType);
    EXPECT_EQ(names.find("x")->type, textType);
    names.declare(named("y"), realType);
  }
  EXPECT_EQ(names.find("X")->type, integerType);
  EXPECT_EQ(names.find("y"), nullptr);
  EXPECT_EQ(locals.size(), 3u) << "each has a slot of its own";
}

TEST(Names, AtModuleLevelAreSeenByAllOutsideOfBlocks) {
  ModuleNames module;
  std::vector<Type> locals, others;
  Names main(module, locals, true, false), sub(module, others, false, false);
  main.declare(named("g"), integerType);
  EXPECT_TRUE(sub.find("G"));
  const Names::Inner inner(main);
  main.declare(named("inside"), integerType);
  EXPECT_FALSE(sub.find("inside"));
  EXPECT_EQ(locals.size(), 1u);
}

TEST(Names, MayBeUsedOnce) {
  ModuleNames module;
  std::vector<Type> locals;
  Names names(module, locals, true, false), again(module, locals, true, true);
  names.declare(named("a"), integerType);
  EXPECT_EQ(failureOf([&] { names.declare(named("A"), textType); }), "there is another A already");
  EXPECT_EQ(failureOf([&] {
              names.declareConstant(named("a"), {integerType, {}, nullptr});
            }),
            "there is another a already");
  again.declare(named("a"), textType);
  EXPECT_EQ(again.find("a")->type, textType) << "declared anew";
}

TEST(Names, OfConstantsAreNoPlaces) {
  ModuleNames module;
  std::vector<Type> locals;
  Names names(module, locals, false, false);
  names.declareConstant(named("Five"), {integerType, {.integer = 5}, nullptr});
  const Expr five = names.find("five");
  EXPECT_EQ(five->place(), nullptr);
  EXPECT_EQ(five->literal, 5);
  EXPECT_EQ(module.values.size(), 0u) << "it ends with its Sub";
}

TEST(Names, AreSuggested) {
  ModuleNames module;
  std::vector<Type> locals;
  Names names(module, locals, true, false);
  names.declare(named("counter"), integerType);
  EXPECT_EQ(failureOf([&] { names.failUnknown(named("conter")); }),
            "unknown name 'conter'; did you mean 'counter'?");
  EXPECT_EQ(failureOf([&] { names.expect(named("zzzz")); }), "unknown name 'zzzz'");
  EXPECT_EQ(failureOf([] { typeOf({named("Intger")}); }), "unknown type 'Intger'; did you mean 'Integer'?");
  EXPECT_EQ(typeOf({named("double"), true}), realType.arrayOf());
}

TEST(Nearest, IsWithinAThirdOfTheLetters) {
  EXPECT_EQ(nearest("Prnt", {"Print", "Paint"}), "Print");
  EXPECT_EQ(nearest("ab", {"xy"}), "");
  EXPECT_EQ(nearest("substring", {"ToString", "Middle"}), "Middle") << "as others call it";
  EXPECT_EQ(nearest("", {"Print", "Count"}), "");
  EXPECT_EQ(nearest("PLUGIN", {"plugin"}), "plugin");
}

}  // namespace
}  // namespace host
