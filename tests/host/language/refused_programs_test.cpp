// What is wrong with a program, and where: one row for each thing that the parser and the compilers refuse.
#include <gtest/gtest.h>

#include "refused.h"

namespace host {
namespace {

TEST(RefusedPrograms, HaveAWrongExpression) {
  expectRefused({
      {"Print 1 +", "1:10 expected an expression, found the end of the line"},
      {"Print (1 + 2", "1:13 expected ')' after the expression, found the end of the line"},
      {"Print )", "1:7 expected an expression, found ')'"},
      {"Print Len(\"a\"", "1:14 expected ')' after the arguments, found the end of the line"},
      {"Print \"a\".5", "1:10 expected the end of the line after the statement, found '.5'"},
      {"Print \"a\".(", "1:11 expected the name of a member, found '('"},
      {"Print 1 \"a\"", "1:9 expected the end of the line after the statement, found a text"},
      {"Print Then", "1:7 expected an expression, found the reserved word 'Then'"},
      {"Print New", "1:10 expected a type, found the end of the line"},
      {"Print New Integer", "1:11 expected a class after New, found Integer"},
      {"Print New Object", "1:11 expected a class after New, found Object"},
      {"Print New Date(5)",
       "1:11 Date has no Constructor; it is made without arguments"
       "; this host's dates are a number of seconds "
       "alone (Date.TotalSeconds, DateTime.SecondsFrom1970); measure time with Microseconds or Ticks"},
      {"Print New Amount(\"a\")",
       "1:11 Amount does not take (String); expected\n  Constructor(value as Int64)"},
      {"Print Nil IsA Integer", "1:15 expected a class after IsA, found Integer"},
      {"Print Nil IsA Object", "1:15 expected a class after IsA, found Object"},
      {"Print 5 IsA Date", "1:13 IsA tests objects; found Integer"},
      {"Print 5 Is Nil", "1:9 Is compares objects; found Integer"},
      {"Print Not \"a\"", "1:7 there is no operator 'Not' for a String"},
      {"Print Not 1.5", "1:7 there is no operator 'Not' for a Double"},
      {"Print -\"a\"", "1:7 there is no operator '-' for a String"},
      {"Print -New Date", "1:7 there is no operator '-' for a Date"},
      {"Print 1.5 And True", "1:11 there is no operator 'and' for Double and Boolean"},
      {"Print 1 Or True", "1:9 there is no operator 'or' for Integer and Boolean"},
      {"Print \"a\" Xor \"b\"", "1:11 there is no operator 'xor' for String and String"},
      {"Print \"a\" \\ 2", "1:11 there is no operator '\\' for String and Integer"},
      {"Print 2 ^ \"a\"", "1:9 there is no operator '^' for Integer and String"},
      {"Print New Date + 1", "1:16 there is no operator '+' for Date and Integer"},
      {"Print \"a\" < 1", "1:11 a String cannot be compared with an Integer"},
      {"Print True = 1", "1:12 a Boolean cannot be compared with an Integer"},
      {"Print New Date < Nil", "1:16 a Date cannot be compared with Nil"},
      {"Print New Amount(1) = New Date", "1:21 an Amount cannot be compared with a Date"},
      {"Print New Date = New Amount(1)", "1:16 a Date cannot be compared with an Amount"},
  });
}

TEST(RefusedPrograms, UseANameThatIsNone) {
  expectRefused({
      {"Dim name As String\nPrint nme", "2:7 unknown name 'nme'; did you mean 'name'?"},
      {"Const five = 5\nPrint fiv", "2:7 unknown name 'fiv'; did you mean 'five'?"},
      {"Sub Work()\nEnd Sub\nWrk", "3:1 unknown name 'Wrk'; did you mean 'Work'?"},
      {"Print Date", "1:7 the class Date is no value; expected a member of it, or New Date"},
      {"Print Encodings", "1:7 the module Encodings is no value; expected a member of it"},
      {"Print Encodings.UTF9", "1:17 the module Encodings has no member 'UTF9'; did you mean 'UTF8'?"},
      {"Print Date.Now",
       "1:12 the class Date has no shared member 'Now'"
       "; this host's dates are a number of seconds "
       "alone (Date.TotalSeconds, DateTime.SecondsFrom1970); measure time with Microseconds or Ticks"},
      {"Print (New Date).Hour",
       "1:18 Date has no member 'Hour'"
       "; this host's dates are a number of seconds "
       "alone (Date.TotalSeconds, DateTime.SecondsFrom1970); measure time with Microseconds or Ticks"},
      {"Print (New Amount(1)).Digits", "1:23 Amount has no member 'Digits'; did you mean 'Digit'?"},
      {"Print (New NilObjectException).Mesage",
       "1:32 NilObjectException has no member 'Mesage'; did you mean 'Message'?"},
      {"Dim o As Object\nPrint o.Name", "2:9 an Object has no member 'Name'"},
      {"Dim v As Variant\nPrint v.Name",
       "2:9 a Variant has no member 'Name'; a member of what is in it follows a view of it, such as "
       "ClassName(v).Name"},
      {"Print Nil.Name", "1:11 Nil has no member 'Name'"},
      {"Sub S()\nEnd Sub\nPrint S.Name", "3:9 a nothing has no member 'Name'"},
      {"Print (5).Name", "1:11 an Integer has no member 'Name'"},
      {"Dim a() As Integer\nPrint a.Length", "2:9 an array has no member 'Length'; did you mean 'Count'?"},
      {"Dim p As Ptr\nPrint p.Name(0)",
       "2:9 a Ptr has no member 'Name'; its members are named after types, such as UInt64(offset)"},
      {"Dim p As Ptr\nPrint p.String(0)",
       "2:9 a Ptr has no member 'String'; its members are named after types, such as UInt64(offset)"},
      {"Dim x As Sting", "1:10 unknown type 'Sting'; did you mean 'String'?"},
      {"Dim x As Threat", "1:10 unknown type 'Threat'; did you mean 'Thread'?"},
      {"Dim x As Qqqqq", "1:10 unknown type 'Qqqqq'"},
      {"Sub S(x As Intger)\nEnd Sub", "1:12 unknown type 'Intger'; did you mean 'Integer'?"},
      {"For Each e As Integer In list\nNext", "1:26 unknown name 'list'"},
      {"For i = 1 To 3\nNext", "1:5 unknown name 'i'; write For i As Integer = …"},
      {"Sub S()\nDim n As Integer\nEnd Sub\nPrint n", "4:7 unknown name 'n'"},
      {"If True Then\nDim n As Integer\nEnd If\nPrint n",
       "4:7 n is declared in line 2, in a block that ends before this; declare it above that block"},
      {"Print n\nDim n As Integer",
       "1:7 n is declared further down, in line 2; declare it above its first use"},
      {"Sub S()\nn = 5\nWhile True\nConst k = 1, N = 2\nWend\nEnd Sub",
       "4:12 a line has one Const; write the next one in a line of its own"},
      {"Sub S()\nn = 5\nTry\nCatch N As RuntimeException\nEnd Try\nEnd Sub",
       "2:1 n is declared further down, in line 4; declare it above its first use"},
      {"Do\nFor Each n As Integer In Array(1)\nNext\nLoop Until n = 1",
       "4:12 n is declared in line 2, in a block that ends before this; declare it above that block"},
      {"Select Case 1\nCase 1\nFor n As Integer = 1 To 2\nNext\nEnd Select\nPrint n",
       "6:7 n is declared in line 3, in a block that ends before this; declare it above that block"},
      {"Dim n As Integer = n", "1:20 unknown name 'n'"},
  });
}

TEST(RefusedPrograms, TakeOrGiveTheWrongArguments) {
  expectRefused({
      {"Print Len()", "1:7 wrong number of arguments for Len: found 0, expected Len(s as String) as Integer"},
      {"Print Left(\"a\")",
       "1:7 wrong number of arguments for Left: found 1, expected Left(s as String, count as Integer) as "
       "String"},
      {"Print Left(\"a\", 1, 2)",
       "1:7 wrong number of arguments for Left: found 3, expected Left(s as String, count as Integer) as "
       "String"},
      {"Print Left(1, 2)",
       "1:7 Left does not take (Integer, Integer); expected\n  Left(s as String, count as Integer) as "
       "String"},
      {"Print New NilObjectException(1)",
       "1:11 NilObjectException does not take (Integer); expected one of\n  Constructor\n"
       "  Constructor(message as String, errorNumber as Integer = 0)"},
      {"Print CStr(1, 2)", "1:7 CStr takes 1 argument, found 2"},
      {"Print VarType()", "1:7 VarType takes 1 argument, found 0"},
      {"Print Ubound(5)", "1:7 Ubound takes an array, found Integer"},
      {"Print Array()", "1:7 Array needs an element to know its type from"},
      {"Dim a() As Integer\nPrint a.Pop(1)", "2:9 expected 0 arguments, found 1"},
      {"Dim a() As Integer\na.Append", "2:3 expected 1 argument, found 0"},
      {"Dim a() As Integer\na.Append(\"x\")", "2:10 expected Integer as the element, found String"},
      {"Dim a() As Integer\na.Insert(\"x\", 1)", "2:10 expected Integer as the index, found String"},
      {"Dim a() As Integer\nPrint a(1, 2)", "2:8 expected 1 index, found 2"},
      {"Dim a(1, 1) As Integer\nPrint a(1)", "2:8 expected 2 indices, found 1"},
      {"Dim a(1, 1, 1) As Integer\na(1, 1, 1, 1) = 1", "2:2 expected 3 indices, found 4"},
      {"Dim a(1, 1) As Integer\nPrint a(1, \"x\")", "2:12 expected Integer as the index, found String"},
      {"Dim a() As Integer\nPrint a()", "2:8 expected 1 index, found 0"},
      {"Print (5)(1)", "1:10 an Integer has no elements"},
      {"Sub S()\nEnd Sub\nPrint S()(1)", "3:10 this has no value to take an element of"},
      {"Dim p As Ptr\nPrint p.Byte", "2:9 expected one offset in bytes after .Byte"},
      {"Dim p As Ptr\nPrint p.Byte(\"a\")", "2:14 expected Integer as the offset, found String"},
      {"Print Date()", "1:7 expected one value in Date(…); New Date makes an object"},
      {"Print Date(5)", "1:12 expected Date as the object, found Integer"},
      {"Sub S(a As Integer)\nEnd Sub\nS", "3:1 the argument a of S is missing"},
      {"Sub S(a As Integer)\nEnd Sub\nS(1, 2)", "3:1 S takes 1 argument, found 2"},
      {"Sub S()\nEnd Sub\nS(1)", "3:1 S takes 0 arguments, found 1"},
      {"Sub S(a As Integer)\nEnd Sub\nS(\"x\")", "3:3 expected Integer as the argument a of S, found String"},
      {"Sub S(ByRef a As Integer)\nEnd Sub\nDim d As Double\nS(d)",
       "4:3 the argument a of S goes by reference; expected a variable As Integer"},
      {"Sub S(ByRef a As Integer)\nEnd Sub\nDim n As Integer\nS((n))",
       "4:3 the argument a of S goes by reference; expected a variable As Integer"},
      {"Sub S()\nEnd Sub\nDim n As Integer = S()",
       "3:20 expected Integer as the value of n, found something without a value"},
  });
}

TEST(RefusedPrograms, DeclareWhatCannotBe) {
  expectRefused({
      {"Dim", "1:4 expected the name of a variable, found the end of the line"},
      {"Dim 5 As Integer", "1:5 expected the name of a variable, found '5'"},
      {"Dim x", "1:6 expected 'As' after the variable x, found the end of the line"},
      {"Dim a(5 As Integer", "1:9 expected ')' after the upper bound of a, found 'As'"},
      {"Dim a(\"x\") As Integer", "1:7 expected Integer as the upper bound, found String"},
      {"Dim x, y As New Date", "1:17 'As New' declares one variable"},
      {"Dim a() As New Date", "1:16 'As New' declares one variable"},
      {"Dim x, y As Integer = 5", "1:23 only one variable can be given a value"},
      {"Dim x As Date = New Thread", "1:17 expected Date as the value, found Thread"},
      {"Dim a() As Integer = 5", "1:22 expected Integer() as the value of a, found Integer"},
      {"Const", "1:6 expected the name of a constant, found the end of the line"},
      {"Const x", "1:8 expected '=' after the constant x, found the end of the line"},
      {"Const x = New Date", "1:11 the value of x is not constant"},
      {"Const x = Nil", "1:11 x is Nil; a constant is a number, a Boolean or a String"},
      {"Const x = Len(\"a\")", "1:11 the value of x is not constant"},
      {"Const x = (1 + Len(\"a\"))", "1:16 the value of x is not constant"},
      {"Const x = -Len(\"a\")", "1:12 the value of x is not constant"},
      {"Const x = Not Len(\"a\")", "1:15 the value of x is not constant"},
      {"Const x = \"a\".Trim", "1:15 the value of x is not constant"},
      {"Const x = Nil Is Nil", "1:15 the value of x is not constant"},
      {"Const x = Nil IsA Date", "1:15 the value of x is not constant"},
      {"Const x As Integer = \"a\"", "1:22 expected Integer as the value of x, found String"},
      {"Const x = 1\nConst X = 2", "2:7 there is another X already"},
      {"Const x = 1\nx = 2", "2:1 x is constant"},
      {"Const x = 1\nx += 2", "2:1 x is constant"},
      {"Sub S()\nConst x = 1\nDim x As Integer\nEnd Sub", "3:5 there is another x already"},
      {"Sub\nEnd Sub", "1:4 expected the name of the Sub, found the end of the line"},
      {"Sub S(\nEnd Sub",
       "1:7 expected the name of a parameter, found the end of the line; a line goes on in the next one "
       "after ' _'"},
      {"Sub S(a)\nEnd Sub", "1:8 expected 'As' after the parameter a, found ')'"},
      {"Sub S(a( As Integer)\nEnd Sub", "1:10 expected ')' after the parameter a, found 'As'"},
      {"Sub S(a As Integer\nEnd Sub",
       "1:19 expected ')' after the parameters of S, found the end of the line"},
      {"Sub S(a As Integer = 1, b As Integer)\nEnd Sub",
       "1:37 the parameter b follows one with a default and needs one too"},
      {"Sub S(a As Integer = \"x\")\nEnd Sub", "1:22 expected Integer as the default of a, found String"},
      {"Sub S(a As Integer, A As Integer)\nEnd Sub", "1:5 two parameters of S are called A"},
      {"Sub S() As Integer\nEnd Sub", "1:9 a Sub gives no value; write Function S(…) As …"},
      {"Function F()\nEnd Function",
       "1:13 expected 'As' and a type after the Function F, found the end of the line"},
      {"Sub S()\nEnd Function", "1:1 'Sub' of line 1 has no 'End Sub'"},
      {"Sub S()\nPrint 1", "1:1 'Sub' of line 1 has no 'End Sub'"},
      {"Function F() As Integer\nReturn 1", "1:1 'Function' of line 1 has no 'End Function'"},
      {"Sub S()\nEnd Sub\nFunction s() As Integer\nEnd Function",
       "3:10 there is another Sub or Function s already"},
  });
}

TEST(RefusedPrograms, HaveAStatementThatIsNotWhole) {
  expectRefused({
      {"5", "1:1 expected a statement; this is a value that nothing is done with"},
      {"Dim n As Integer\nn", "2:1 expected a statement; this is a value that nothing is done with"},
      {"Dim n As Integer\nn 5", "2:1 expected a statement; this is a value that nothing is done with"},
      {"Dim n As Integer\nn IsA Date", "2:7 IsA tests objects; found Integer"},
      {"Dim n As Integer\nn = ", "2:5 expected an expression, found the end of the line"},
      {"Dim n As Integer\nn = \"a\"", "2:5 expected Integer as the value, found String"},
      {"Dim n As Integer\nn += \"a\"",
       "2:1 there is no operator '+' for Integer and String; Str(…) makes a text of a number"},
      {"Dim n As Integer\nn = 1 2", "2:7 expected the end of the line after the statement, found '2'"},
      {"Len(\"a\") = 5", "1:1 this cannot be assigned to"},
      {"Trim(\"a\") )", "1:11 expected the end of the statement, found ')'"},
      {"Dim t As New Thread\nt.IsRunning = True", "2:3 IsRunning can only be read"},
      {"Raise 5", "1:1 expected an exception after Raise, found Integer"},
      {"Raise New Date", "1:1 expected an exception after Raise, found Date"},
      {"Dim o As Object\nRaise o", "2:1 expected an exception after Raise, found Object"},
      {"Return 5", "1:1 only a Function can return a value"},
      {"Sub S()\nReturn 5\nEnd Sub", "2:1 only a Function can return a value"},
      {"Function F() As Integer\nReturn\nEnd Function", "2:1 Return needs an Integer"},
      {"Function F() As Integer\nReturn \"a\"\nEnd Function",
       "2:8 expected Integer as the result of F, found String"},
      {"Exit Sub", "1:1 'Exit' is outside of what it names"},
      {"Function F() As Integer\nExit Sub\nEnd Function", "2:1 'Exit' is outside of what it names"},
      {"Sub S()\nExit Function\nEnd Sub", "2:1 'Exit' is outside of what it names"},
      {"While True\nExit Do\nWend", "2:1 'Exit' is outside of what it names"},
      {"Continue", "1:1 'Continue' is outside of what it names"},
      {"Exit Loop", "1:6 expected For, While, Do, Sub or Function after Exit, found 'Loop'"},
      {"Continue Sub", "1:10 expected For, While, Do after Continue, found 'Sub'"},
      {"ReDim", "1:6 expected the name of an array, found the end of the line"},
      {"ReDim a", "1:8 expected '(' and the upper bounds of the array, found the end of the line"},
      {"Dim a() As Integer\nReDim a(1", "2:10 expected ')' after the arguments, found the end of the line"},
      {"Dim n As Integer\nReDim n(1)", "2:1 n is no array"},
      {"ReDim a(1)", "1:7 unknown name 'a'"},
      {"AddHandler 5, AddressOf S", "1:13 expected the event of a Thread, such as t.Run, found ','"},
      {"Dim t As New Thread\nAddHandler t.Run(1), AddressOf S",
       "2:20 expected the event of a Thread, such as t.Run, found ','"},
      {"Dim t As New Thread\nAddHandler t.Run",
       "2:17 expected ',' after the event, found the end of the line"},
      {"Dim t As New Thread\nAddHandler t.Run, S",
       "2:19 expected 'AddressOf' and the name of a Sub, found 'S'"},
      {"Dim t As New Thread\nAddHandler t.Run, AddressOf S", "2:29 there is no Sub S"},
      {"Dim d As New Date\nSub S()\nEnd Sub\nAddHandler d.Run, AddressOf S", "4:1 a Date has no event Run"},
      {"Dim n As Integer\nSub S()\nEnd Sub\nAddHandler n.Run, AddressOf S",
       "4:1 an Integer has no event Run"},
      {"Dim t As New Thread\nSub S(n As Integer)\nEnd Sub\nAddHandler t.Run, AddressOf S",
       "4:29 a thread runs a Sub without parameters, or with one parameter As Thread; S is not"},
      {"Dim t As New Thread\nSub S(ByRef n As Thread)\nEnd Sub\nAddHandler t.Run, AddressOf S",
       "4:29 a thread runs a Sub without parameters, or with one parameter As Thread; S is not"},
      {"Dim t As New Thread\nSub S(a As Thread, b As Thread)\nEnd Sub\nAddHandler t.Run, AddressOf S",
       "4:29 a thread runs a Sub without parameters, or with one parameter As Thread; S is not"},
      {"Dim t As New Thread\nFunction F() As Integer\nEnd Function\nAddHandler t.Run, AddressOf F",
       "4:29 a thread runs a Sub without parameters, or with one parameter As Thread; F is not"},
  });
}

TEST(RefusedPrograms, HaveABlockThatIsNotWhole) {
  expectRefused({
      {"Else", "1:1 'Else' has nothing that it belongs to"},
      {"Next", "1:1 'Next' has nothing that it belongs to"},
      {"Finally", "1:1 'Finally' has nothing that it belongs to"},
      {"If True Then Print 1 Else", "1:26 expected an expression, found the end of the line"},
      {"If 5 Then Print 1", "1:4 expected Boolean as the condition of If, found Integer"},
      {"If True Then\nElseIf \"a\" Then\nEnd If",
       "2:8 expected Boolean as the condition of ElseIf, found String"},
      {"If True Then\nElseIf True\nEnd If",
       "2:12 expected 'Then' after the condition of ElseIf, found the end of the line"},
      {"If True Then\nElseIf True Then Print 1\nEnd If",
       "2:18 expected the end of the line after Then, found 'Print'"},
      {"If True Then\nElse Print 1\nEnd If", "2:6 expected the end of the line after Else, found 'Print'"},
      {"If True Then\nElse\nElseIf True Then\nEnd If", "3:1 expected 'End If' after Else, found 'ElseIf'"},
      {"If True Then\nEnd While", "1:1 'If' of line 1 has no 'End If'"},
      {"Select 5\nEnd Select", "1:8 expected 'Case' after Select, found '5'"},
      {"Select Case 5 6\nEnd Select",
       "1:15 expected the end of the line after the value of Select Case, found '6'"},
      {"Select Case 5\nPrint 1\nEnd Select", "2:1 expected 'Case' or 'End Select', found 'Print'"},
      {"Select Case 5", "1:1 'Select' of line 1 has no 'End Select'"},
      {"Select Case 5\nCase 1 2\nEnd Select",
       "2:8 expected the end of the line after the values of Case, found '2'"},
      {"Select Case 5\nCase Is 3\nEnd Select", "2:9 expected a comparison such as < or =, found '3'"},
      {"Select Case 5\nCase Is + 3\nEnd Select", "2:9 expected a comparison such as < or =, found '+'"},
      {"Select Case 5\nCase \"a\"\nEnd Select", "2:6 an Integer cannot be compared with a String"},
      {"Select Case 5\nCase Else\nCase 1\nEnd Select",
       "3:1 expected 'End Select' after Case Else, found 'Case'"},
      {"For 5 = 1 To 3\nNext", "1:5 expected the variable of For, found '5'"},
      {"For i As Integer 1 To 3\nNext", "1:18 expected '=' after the variable of For, found '1'"},
      {"For i As Integer = 1, 3\nNext", "1:21 expected 'To' or 'DownTo' after the start of For, found ','"},
      {"For i As Integer = 1 To 3 By 2\nNext",
       "1:27 expected the end of the line after the head of For, found 'By'"},
      {"For i As Integer = 1 To 3\nNext j", "2:6 expected 'Next i', found 'Next j'"},
      {"For i As String = 1 To 3\nNext",
       "1:5 the variable of For is a String; it must be an integer or a Double"},
      {"For i As Integer = \"a\" To 3\nNext", "1:20 expected Integer as the start of For, found String"},
      {"For i As Integer = 1 To \"a\"\nNext", "1:25 expected Integer as the end of For, found String"},
      {"For i As Integer = 1 To 2 Step \"a\"\nNext",
       "1:32 expected Integer as the step of For, found String"},
      {"Const i = 1\nFor i = 1 To 3\nNext", "2:5 i is constant"},
      {"For Each 5 In a\nNext", "1:10 expected the variable of For Each, found '5'"},
      {"For Each e As Integer\nNext",
       "1:22 expected 'In' after the variable of For Each, found the end of the line"},
      {"For Each e As Integer In 5\nNext",
       "1:26 expected Variant() as what For Each goes through, found Integer"},
      {"For Each e As Integer In Array(\"a\")\nNext",
       "1:26 expected Integer as e, found String; Val(…) reads the number in a text"},
      {"For Each e As Integer In Array(1) 2\nNext",
       "1:35 expected the end of the line after the head of For Each, found '2'"},
      {"While True 5\nWend", "1:12 expected the end of the line after the condition of While, found '5'"},
      {"While 1\nWend", "1:7 expected Boolean as the condition of While, found Integer"},
      {"While True", "1:1 'While' of line 1 has no 'Wend'"},
      {"Do 5\nLoop", "1:4 expected the end of the line after Do, found '5'"},
      {"Do Until 5\nLoop", "1:10 expected Boolean as the condition of Do, found Integer"},
      {"Do\nLoop While 5", "2:12 expected Boolean as the condition of Loop, found Integer"},
      {"Try 5\nEnd Try", "1:5 expected the end of the line after Try, found '5'"},
      {"Try\nCatch 5\nEnd Try", "2:7 expected the variable of Catch, found '5'"},
      {"Try\nCatch e As RuntimeException 5\nEnd Try",
       "2:29 expected the end of the line after Catch, found '5'"},
      {"Try\nCatch e As Integer\nEnd Try", "2:12 expected a class of exceptions, found Integer"},
      {"Try\nCatch e As Object\nEnd Try", "2:12 expected a class of exceptions, found Object"},
      {"Try\nCatch e As Date\nEnd Try", "2:12 expected a class of exceptions, found Date"},
      {"Try\nFinally 5\nEnd Try", "2:9 expected the end of the line after Finally, found '5'"},
      {"Try\nFinally\nCatch\nEnd Try", "3:1 'Catch' has nothing that it belongs to"},
  });
}

TEST(RefusedPrograms, AreTooBig) {
  std::string many = "Sub S()\n";
  for (int i = 0; i <= 20000; ++i) many += "Dim v" + std::to_string(i) + " As Integer\n";
  EXPECT_EQ(problemOf(many + "End Sub"), "20002:5 there are more variables than a Sub may have");
  std::string below, above;  // classes that inherit from the one before, and from the one behind
  for (int i = 0; i <= 200; ++i) {
    const std::string heading = "Class C" + std::to_string(i) + "\n";
    below += heading + (i > 0 ? "Inherits C" + std::to_string(i - 1) : "") + "\nEnd Class\n";
    above += heading + (i < 200 ? "Inherits C" + std::to_string(i + 1) : "") + "\nEnd Class\n";
  }
  EXPECT_EQ(problemOf(below), "601:7 more than 200 classes inherit from each other");
  EXPECT_EQ(problemOf(above), "1:7 more than 200 classes inherit from each other");
  std::string ifs;
  for (int i = 0; i < 200000; ++i) ifs += "If True Then ";
  EXPECT_EQ(problemOf(ifs + "Print 1"), "1:2591 blocks or parentheses are nested too deeply");
}

TEST(RefusedPrograms, ViewWhatIsNoNumber) {
  expectRefused({
      {"Print Integer(\"5\")",
       "1:15 a String is not taken for an Integer; Val(…) reads the number in a text"},
      {"Print String(5)", "1:14 an Integer is not taken for a String; Str(…) makes a text of it"},
      {"Print Integer", "1:7 the type Integer is no value; Integer(…) makes one of another"},
      {"Print Integer(1, 2)", "1:7 expected one value in Integer(…)"},
      {"Print CType(5)", "1:7 expected a value and the name of a type in CType(…)"},
  });
}

TEST(RefusedPrograms, LeaveLoopsThatAreNotTheInnermost) {
  expectRefused({
      {"For i As Integer = 1 To 2\nFor j As Integer = 1 To 2\nExit For k\nNext\nNext",
       "3:10 no For around this has the variable k"},
      {"Dim k As Integer\nWhile True\nContinue For k\nWend", "3:14 no For around this has the variable k"},
      {"Select Case 1\nCase 1\nExit Select\nEnd Select",
       "3:6 a Case ends where the next one begins; Exit is for loops, Subs and Functions"},
      {"Select Case 1\nCase IsA Thread\nEnd Select",
       "2:6 a Case compares values; write If … IsA … Then, with ElseIf for the other classes"},
  });
}

TEST(RefusedPrograms, HaveAReadOnlyPropertyWithoutGet) {
  expectRefused({{"Class C\nReadOnly Property X As Integer\nEnd Class",
                  "2:19 a ReadOnly Property has a Get, which computes it"}});
}

}  // namespace
}  // namespace host
