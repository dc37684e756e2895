// What is wrong with declarations, and where: one row for each thing that is refused of modules, classes,
// interfaces, delegates and parameters.
#include <gtest/gtest.h>

#include "refused.h"

namespace host {
namespace {

TEST(RefusedDeclarations, OfModulesAndEnumerations) {
  expectRefused({
      {"Enum E\nA", "1:1 'Enum' of line 1 has no 'End Enum'"},
      {"Enum E As Double\nEnd Enum", "1:11 the values of an Enum are integers, not Double"},
      {"Enum E\nA = \"x\"\nEnd Enum", "2:5 expected Integer as the value of A, found String"},
      {"Enum E\nA\nA\nEnd Enum", "3:1 there is another A already"},
      {"Enum E\nA B\nEnd Enum", "2:3 expected the end of the line after A, found 'B'"},
      {"Module M", "1:1 'Module' of line 1 has no 'End Module'"},
      {"Module M\n5\nEnd Module", "2:1 expected a declaration or 'End Module', found '5'"},
      {"Module M\nDim x As Integer 5\nEnd Module",
       "2:18 expected the end of the line after the declaration, found '5'"},
      {"Module M\nEnd Module\nModule M\nEnd Module", "3:8 there is another M already"},
      {"Module M\nProperty P As Integer\nGet\nReturn 1\nEnd Get\nEnd Property\nEnd Module\nM.P = 5",
       "8:3 P can only be read"},
      {"Module M\nProperty P As Integer\nGet\nReturn 1\nEnd Get\nEnd Property\nSub P()\nEnd Sub\nEnd Module",
       "2:10 there is another Sub or Function P already"},
      {"Module M\nPrivate Const Five = 5\nEnd Module\nPrint Five", "4:7 unknown name 'Five'"},
      {"Module M\nPrivate Const Five = 5\nEnd Module\nPrint M.Five", "4:9 Five is Private in M"},
      {"Module M\nProtected Const Five = 5\nEnd Module\nPrint Five", "4:7 unknown name 'Five'"},
      {"Module M\nEnd Module\nPrint M", "3:7 M is no value; expected a member of it"},
      {"Module M\nSub Work()\nEnd Sub\nEnd Module\nM.Wrk", "5:3 M has no member 'Wrk'; did you mean 'Work'?"},
      {"Private x", "1:10 expected 'As' after the variable x, found the end of the line"},
      {"Private Print 5",
       "1:9 expected a Sub, Function, Class, Module, Enum, Const or variable, found 'Print'"},
      {"Private x As Integer 5", "1:22 expected the end of the line after the declaration, found '5'"},
      {"Static x, y As Integer = 5", "1:26 only one variable can be given a value"},
      {"Static x As Integer = \"a\"", "1:23 expected Integer as the value of x, found String"},
  });
}

TEST(RefusedDeclarations, OfClasses) {
  expectRefused({
      {"Class", "1:1 unknown name 'Class'"},
      {"Class C", "1:1 'Class' of line 1 has no 'End Class'"},
      {"Class C\nInherits\nEnd Class",
       "2:9 expected 'As' after the variable Inherits, found the end of the line"},
      {"Class C Inherits A Inherits B\nEnd Class", "1:29 C inherits from a class already"},
      {"Class C Inherits Integer\nEnd Class", "1:18 expected a class to inherit from, found Integer"},
      {"Class C Inherits Unknwn\nEnd Class", "1:18 unknown type 'Unknwn'"},
      {"Class A Inherits B\nEnd Class\nClass B Inherits A\nEnd Class", "3:7 B inherits from itself"},
      {"Class C Implements Date\nEnd Class", "1:20 expected an interface, found Date"},
      {"Class C\nProperty X As Integer\nGet\nReturn 1\nEnd Get\nPrivate Set\nEnd Set\nEnd Property\nEnd "
       "Class",
       "6:1 Get and Set are for all who see the Property; leave out Private, and write a Sub of its own, "
       "such as "
       "Private Sub SetX(value As Integer)"},
      {"Class C\nProperty X As Integer\nProtected Get\nReturn 1\nEnd Get\nEnd Property\nEnd Class",
       "3:1 Get and Set are for all who see the Property; leave out Protected, and write a Function of its "
       "own"},
      {"Class C\nSub S() As Integer\nEnd Sub\nEnd Class",
       "2:9 a Sub gives no value; write Function S(…) As …"},
      {"Class C\nDim x As Integer\nDim X As String\nEnd Class", "3:5 there is another X already"},
      {"Class C\nSub S()\nEnd Sub\nSub S()\nEnd Sub\nEnd Class",
       "4:5 there is another Sub or Function S already"},
      {"Class C\nDim S As Integer\nSub S()\nEnd Sub\nEnd Class", "3:5 there is another S already"},
      {"Class C\nFunction F() As Integer\nEnd Function\nEnd Class\nClass D Inherits C\nFunction F() As "
       "String\nEnd Function\nEnd Class",
       "6:10 F gives String, but in the class above it gives Integer"},
      {"Class C\nSub Destructor(n As Integer)\nEnd Sub\nEnd Class",
       "2:5 a class has one Destructor, a Sub without parameters"},
      {"Class C\nFunction Constructor() As Integer\nEnd Function\nEnd Class",
       "2:10 a Constructor is a Sub of an object"},
      {"Class C\nSub S(Extends n As Integer)\nEnd Sub\nEnd Class",
       "2:5 a Sub that Extends a type stands in a module"},
      {"Class C\nProperty P As Integer\nGet\nEnd Get\nGet\nEnd Get\nEnd Property\nEnd Class",
       "5:1 P has this already"},
      {"Class C\nProperty P As Integer\nGet\nEnd Get\nPrint 1\nEnd Property\nEnd Class",
       "5:1 expected Get, Set or 'End Property', found 'Print'"},
      {"Class C\nProperty P As Integer = 5\nGet\nEnd Get\nEnd Property\nEnd Class",
       "2:26 what is computed has neither a value nor elements of its own: P"},
      {"Class C\nProperty P As Integer\nSet(v As String)\nEnd Set\nEnd Property\nEnd Class",
       "2:10 Set takes another type than the property P has"},
      {"Class C\nDim P As Integer\nProperty P As Integer\nGet\nEnd Get\nEnd Property\nEnd Class",
       "3:10 there is another P already"},
      {"Class C\nPrivate x As Integer\nEnd Class\nPrint (New C).x", "4:15 x is Private in C"},
      {"Class C\nProtected Sub S()\nEnd Sub\nEnd Class\nDim c As New C\nc.S", "6:3 S is Protected in C"},
      {"Class C\nPrivate Shared x As Integer\nEnd Class\nPrint C.x", "4:9 x is Private in C"},
      {"Class C\nPrivate Sub Constructor()\nEnd Sub\nEnd Class\nDim c As New C",
       "5:14 Constructor is Private in C"},
      {"Class C\nSub Constructor(n As Integer)\nEnd Sub\nEnd Class\nDim c As New C",
       "5:14 wrong number of arguments for C: found 0, expected Constructor(n As Integer)"},
      {"Class C\nDim x As Integer\nShared Sub S()\nx = 1\nEnd Sub\nEnd Class",
       "4:1 x belongs to an object, which a Shared method does not have"},
      {"Class C\nSub S()\nSuper.S\nEnd Sub\nEnd Class", "3:1 there is no class above C"},
      {"Class C Inherits Date\nSub S()\nPrint Super\nEnd Sub\nEnd Class",
       "3:7 expected a member after Super, such as Super.Constructor"},
      {"Class C Inherits Date\nSub S()\nSuper.T\nEnd Sub\nEnd Class",
       "3:7 Date has no member 'T'; this host's dates are a number of seconds alone (Date.TotalSeconds, "
       "DateTime.SecondsFrom1970); measure time with Microseconds or Ticks"},
      {"Print Self", "1:7 Self stands for an object only in a method of a class"},
      {"Class C\nEnd Class\nPrint C", "3:7 the class C is no value; expected a member of it, or New C"},
      {"Class C\nEnd Class\nC.Work", "3:3 the class C has no shared member 'Work'"},
      {"Class C\nEnd Class\nPrint (New C).Work", "3:15 C has no member 'Work'"},
      {"Class C\nEvent Changed()\nEnd Class",
       "2:1 this host has no events of one's own; a property of a Delegate's type does what one does, and "
       "what a class that inherits from Thread runs is its Sub Run"},
      {"Structure S", "1:1 this host has no structures; use a Class"},
      {"Class C\nSub S()\nEnd Sub\nEnd Class\nDim c As New C\nc.S(1)", "6:3 S takes 0 arguments, found 1"},
      {"Class C\nSub S(n As Integer)\nEnd Sub\nEnd Class\nDim c As New C\nc.S(\"a\")",
       "6:5 expected Integer as the argument n of S, found String"},
  });
}

TEST(RefusedDeclarations, OfArrays) {
  expectRefused({
      {"Dim a() As Integer\nReDim a(1, 2)", "2:1 expected 1 upper bound, found 2"},
      {"Dim a(1, 1) As Integer\nReDim a(1)", "2:1 expected 2 upper bounds, found 1"},
      {"Dim a(,) As Integer\nReDim a(1, 2, 3)", "2:1 expected 2 upper bounds, found 3"},
      {"Dim a(1, \"x\") As Integer", "1:10 expected Integer as the upper bound, found String"},
      {"Dim a(0, 0, 0, 0, 0, 0, 0, 0, 0) As Integer", "1:32 an array has too many dimensions"},
      {"Dim a(,,,,,,,,) As Integer", "1:15 an array has too many dimensions"},
      {"Sub S(a(,,,,,,,,) As Integer)\nEnd Sub", "1:17 an array has too many dimensions"},
      {"Sub S(ParamArray a(,) As Integer)\nEnd Sub", "1:18 a ParamArray is a plain list of values"},
      {"Dim a(1) As Integer()",
       "1:13 the elements of an array are no arrays; it may have several dimensions"},
      {"Dim a() As Integer(,)",
       "1:12 the elements of an array are no arrays; it may have several dimensions"},
      {"Sub S(a() As Integer())\nEnd Sub",
       "1:14 the elements of an array are no arrays; it may have several dimensions"},
      {"Dim a(1, 1) As Integer = Array(1, 2)", "1:26 expected Integer(,) as the value of a, found Integer()"},
      {"Dim a(1, 1) As Integer\nDim b() As Integer = a",
       "2:22 expected Integer() as the value of b, found Integer(,)"},
      {"Dim a(1, 1) As Integer\nDim b(,,) As Integer = a",
       "2:24 expected Integer(,,) as the value of b, found Integer(,)"},
      {"Sub S(a(,) As Integer)\nEnd Sub\nDim b() As Integer\nS(b)",
       "4:3 expected Integer(,) as the argument a of S, found Integer()"},
  });
}

TEST(RefusedDeclarations, OfInterfacesDelegatesAndParameters) {
  expectRefused({
      {"Interface I\nSub Go()\nEnd Interface\nClass C\nSub Go() Implements I.Go\nEnd Sub\nEnd Class",
       "5:21 C does not implement I; write Implements I in a line below that of the Class"},
      {"Interface I\nSub Go()\nEnd Interface\nClass C\nImplements I\nSub Run() Implements I.Go\nEnd Sub\nEnd "
       "Class",
       "6:22 a method implements the one of its own name; call it Go"},
      {"Class C\nSub Go() Implements I\nEnd Sub\nEnd Class",
       "2:21 expected the method of an interface after Implements, such as I.Go"},
      {"Module M\nSub Go() Implements I.Go\nEnd Sub\nEnd Module",
       "2:21 only a method of a class implements that of an interface"},
      {"Class C\nSub Go() Implements C.Go\nEnd Sub\nEnd Class", "2:21 expected an interface, found C"},
      {"Interface I", "1:1 'Interface' of line 1 has no 'End Interface'"},
      {"Interface I\nPrint 1\nEnd Interface",
       "2:1 expected a Sub or Function without a body, or 'End Interface', found 'Print'"},
      {"Interface I\nSub S()\nEnd Interface\nClass C\nImplements I\nEnd Class",
       "4:7 C implements I, but has no public S()"},
      {"Interface I\nInherits I\nEnd Interface", "1:11 I inherits from itself"},
      {"Interface I\nEnd Interface\nDim i As New I", "3:14 an interface has no objects of its own"},
      {"Interface I\nEnd Interface\nClass C Inherits I\nEnd Class",
       "3:18 expected a class to inherit from, found I"},
      {"Delegate D()", "1:10 expected Sub or Function after Delegate, found 'D'"},
      {"Delegate Sub D()\nDim d As D = AddressOf Nobody", "2:24 there is no Sub Nobody"},
      {"Delegate Sub D()\nSub S(n As Integer)\nEnd Sub\nDim d As D = AddressOf S",
       "4:14 expected D as the value, found the address of a method that does not fit"},
      {"Sub S()\nEnd Sub\nDim n As Integer = AddressOf S",
       "3:20 expected Integer as the value of n, found the address of a method; a Delegate's type can hold "
       "it"},
      {"Sub S()\nEnd Sub\nPrint AddressOf S", "3:7 this has no value to print"},
      {"Delegate Sub D(n As Integer)\nSub S(n As Integer)\nEnd Sub\nDim d As D = AddressOf S\nd.Invoke(1, 2)",
       "5:3 D takes 1 argument, found 2"},
      {"Delegate Sub D()\nDim d As D = AddressOf Str(5)",
       "2:24 expected the name of a Sub or method after AddressOf"},
      {"Sub S(ParamArray a As Integer, b As Integer)\nEnd Sub",
       "1:32 no parameter may follow the ParamArray a"},
      {"Sub S(a As Integer, Extends b As Integer)\nEnd Sub",
       "1:29 only the first parameter can be one that is extended"},
      {"Sub S(ByRef ParamArray a As Integer)\nEnd Sub", "1:24 a ParamArray is a plain list of values"},
      {"Sub S(Assigns a As Integer, b As Integer)\nEnd Sub",
       "1:15 what a Sub Assigns is its last parameter, and goes by value"},
      {"Print If(1, 2, 3)", "1:10 expected Boolean as the condition of If, found Integer"},
      {"Print If(True, 2)", "1:17 expected ',' and the value where the condition does not hold, found ')'"},
      {"Print If True", "1:10 expected '(' after If, which is a function here, found 'True'"},
      {"Sub S()\nEnd Sub\nPrint If(True, S, 1)", "3:16 If chooses between values; this has none"},
      {"Function F(a As Integer) As String\nEnd Function\nFunction F(a As String) As String\nEnd "
       "Function\nPrint F(True)",
       "5:7 F does not take (Boolean); expected one of\n  F(a As Integer) As String\n  F(a As String) As "
       "String"},

  });
}

}  // namespace
}  // namespace host
