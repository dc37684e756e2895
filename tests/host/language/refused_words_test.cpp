// Words of the language that are refused: with what else can be written.
#include <gtest/gtest.h>

#include "refused.h"

namespace host {
namespace {

const std::string dates =
    "; this host's dates are a number of seconds alone (Date.TotalSeconds, DateTime.SecondsFrom1970); "
    "measure "
    "time with Microseconds or Ticks";
const std::string files =
    "; this host has no files; put the data into the program or a MemoryBlock, and Print the results";
const std::string jumps = "; this host has no jumps; use a loop with Exit and Continue, or a Sub with Return";
const std::string input = "; this host reads no input; give the variables their values in the program";

TEST(RefusedWords, SayWhatThisHostHasInstead) {
  EXPECT_EQ(problemOf("Dim f As FolderItem"), "1:10 unknown type 'FolderItem'" + files);
  EXPECT_EQ(problemOf("Dim f As New TextInputStream"), "1:14 unknown type 'TextInputStream'" + files);
  EXPECT_EQ(problemOf("Print SpecialFolder.Desktop"), "1:7 unknown name 'SpecialFolder'" + files);
  EXPECT_EQ(problemOf("Dim s As String\ns = input"), "2:5 unknown name 'input'" + input);
  EXPECT_EQ(problemOf("Input x"), "1:1 unknown name 'Input'" + input);
  EXPECT_EQ(problemOf("Print 1\nGoTo done"), "2:1 unknown name 'GoTo'" + jumps);
  EXPECT_EQ(problemOf("Print DateTime.Now"), "1:16 the class DateTime has no shared member 'Now'" + dates);
  EXPECT_EQ(problemOf("Print (New Date).Hour"), "1:18 Date has no member 'Hour'" + dates);
  EXPECT_EQ(problemOf("Print New DateTime(2020, 1, 2)"),
            "1:11 DateTime has no Constructor; it is made without arguments" + dates);
  EXPECT_EQ(
      problemOf("Print ParseJSON(\"{}\")"),
      "1:7 unknown name 'ParseJSON'; this host has no JSON; keep values in a Dictionary, and take texts "
      "apart with Split and NthField");
  EXPECT_EQ(
      problemOf("Dim r As New RegEx"),
      "1:14 unknown type 'RegEx'; this host has no regular expressions; use IndexOf, Split, NthField and "
      "ReplaceAll");
  EXPECT_EQ(problemOf("MsgBox \"hello\""),
            "1:1 unknown name 'MsgBox'; this host has no windows; use Print, or System.DebugLog");
}

TEST(RefusedWords, SayThatLinesAreNotNumberedAndNoDirectives) {
  expectRefused({
      {"10 Print 1", "1:1 expected a statement; this host has no line numbers: leave them out"},
      {"5", "1:1 expected a statement; this is a value that nothing is done with"},
      {"5 Mod 2", "1:1 expected a statement; this is a value that nothing is done with"},
      {"If True Then\n20 Print 1\nEnd If",
       "2:1 expected a statement; this host has no line numbers: leave them out"},
      {"#If TargetMacOS Then",
       "1:1 this host has no #If; write Const and If, or leave in what is for this host"},
      {"Print 1\n  #Pragma Warning", "2:3 this host has no compiler directives; leave this line out"},
      {"#Else", "1:1 there is no #If that this belongs to"},
      {"#EndIf", "1:1 there is no #If that this belongs to"},
      {"Print 1 # 2", "1:9 unexpected character '#'"},
  });
}

TEST(RefusedWords, AreOneDirectiveOfABlock) {
  expectRefused({
      {"#If A Then\n#If B Then\nDim x As Integer = 5\n#Else\nDim x As Integer = 6\n#EndIf\n#ElseIf C\n"
       "nonsense (\n#If D\n#EndIf\n#Else\nmore of it\n#EndIf\nPrint x",
       "1:1 this host has no #If; write Const and If, or leave in what is for this host"},
      {"#If A Then\nPrint x\n#Else\nPrint y",
       "1:1 this host has no #If; write Const and If, or leave in what is for this host"},
      {"Print 1\n#If A\n#Else\n#End If\n",
       "2:1 this host has no #If; write Const and If, or leave in what is for this host"},
  });
}

TEST(RefusedWords, SayWhatIsWrittenOtherwise) {
  expectRefused({
      {"For Each e As DictionaryEntry In New Dictionary\nNext",
       "1:15 unknown type 'DictionaryEntry'; this host has no entries; go through the Keys of the "
       "Dictionary"},
      {"Dim s As String\nWith s",
       "2:1 unknown name 'With'; this host has no With; keep the object in a variable with a short name"},
      {"If Nil IsNot Nil Then Print 1",
       "1:8 expected 'Then' after the condition of If, found 'IsNot'; write Not (a Is b)"},
      {"Exception e As RuntimeException",
       "1:13 expected the end of the statement, found 'As'; the class is RuntimeException, and what may "
       "raise one stands between Try and Catch"},
      {"Dim s As String\nPrint s(0)",
       "2:8 a String has no elements; its characters are Middle(s, i, 1), from 0"},
      {"Dim d As New Dictionary\nPrint d.Value(1).Value(2)",
       "2:18 a Variant has no member 'Value'; that of a Dictionary in it is Dictionary(v).Value"},
      {"Print Variant.TypeInteger",
       "1:15 the class Variant has no shared member 'TypeInteger'; an Integer is a Variant.TypeInt64, an "
       "Int32 a "
       "Variant.TypeInt32"},
      {"Dim d As New Dictionary(\"a\" : 1, \"b\" : 2)",
       "1:29 unexpected ':'; this host has no pairs; use a Dictionary, or a class with two properties"},
      {"Dim a() As Integer = (1, 2)",
       "1:24 only one value stands in parentheses; texts are joined with '+', an array is written Array(…)"},
      {"Dim a() As Integer = {1, 2}", "1:22 an array of several values is written Array(…)"},
      {"Dim a() As Integer = [1, 2]", "1:22 an array of several values is written Array(…)"},
      {"Dim a() As Integer\nPrint a[0", "2:8 there is no '['; write '('"},
      {"Dim x As Double = 5.", "1:20 a number ends with a digit; leave out the '.', or write .0"},
      {"Call Print(5)", "1:6 Print is no Sub; leave out Call"},
      {"Select Case 5\nCase >= 5\nEnd Select", "2:6 write Is in front of a comparison, as in Case Is >= 5"},
      {"GoTo done\nPrint 1\ndone:",
       "1:1 unknown name 'GoTo'; this host has no jumps; use a loop with Exit and "
       "Continue, or a Sub with Return"},
      {"Throw New RuntimeException", "1:1 unknown name 'Throw'; write Raise"},
      {"Dim o As Object = Nothing", "1:19 unknown name 'Nothing'; write Nil"},
      {"Print 1; 2", "1:8 unexpected character ';'; texts are joined with '+'"},
      {"Dim x As Double = $5.00", "1:19 unexpected character '$'; an amount has no sign of its currency"},
      {"Dim x As Double = 3,5",
       "1:21 expected the name of a variable, found '5'; a number has no commas, and a point before its "
       "fraction"},
      {"Dim x As Integer\nx = 1,000",
       "2:6 expected the end of the line after the statement, found ','; a number has no commas, and a point "
       "before its fraction"},
      {"Const half = 0,5",
       "1:15 expected the end of the line after the statement, found ','; a number has no commas, and a "
       "point before its fraction"},
      {"Dim x As Integer\nx = 1, 000", "2:6 expected the end of the line after the statement, found ','"},
      {"Dim x As Integer\nx = 1, _\n      000",
       "2:6 expected the end of the line after the statement, found ','"},
      {"Dim x As Integer\nx = (1),2", "2:8 expected the end of the line after the statement, found ','"},
      {"Dim x As Integer\nx = 1,x", "2:6 expected the end of the line after the statement, found ','"},
      {"Print Left$(\"abc\", 2)", "1:11 a name has no mark of its type; leave out the '$'"},
      {"Dim n As Integer\nn% = 5", "2:2 a name has no mark of its type; leave out the '%'"},
      {"Dim x As Double\nx!=5", "2:2 there is no '!='; write '<>'"},
      {"Dim n As Integer\nPrint n%2", "2:8 there is no '%'; write 'Mod'"},
      {"Dim n As Integer = 5\nPrint n#", "2:8 a name has no mark of its type; leave out the '#'"},
      {"Print (New RuntimeException).Reason", "1:30 RuntimeException has no member 'Reason'; write Message"},
      {"Dim c As Color = &cFF0000",
       "1:18 expected an expression, found '&'; this host has no colours; keep them as Integers"},
      {"Print CInt(5)",
       "1:7 unknown name 'CInt'; write the type's name, as in Integer(x), or Val(s) for the number in a "
       "text"},
      {"Print Integer.MaxValue", "1:15 the type Integer has no member 'MaxValue'; write 9223372036854775807"},
      {"Print (5).ToHex", "1:11 an Integer has no member 'ToHex'; write Hex(value)"},
      {"Print \"a\".StartsWith(\"a\")", "1:11 a String has no member 'StartsWith'; write BeginsWith"},
      {"Dim a() As Integer\nPrint a.FirstIndex",
       "2:9 an array has no member 'FirstIndex'; the first index is 0"},
      {"Class T\nInherits Thread\nEnd Class\nDim t As New T\nt.Kill",
       "5:3 T has no member 'Kill'; a thread ends with its handler; let that look at a variable, or wait for "
       "a "
       "Semaphore"},
      {"Class C\nFunction Operator_Lookup(s As String) As Integer\nReturn 1\nEnd Function\nEnd Class",
       "2:10 this host has no Operator_Lookup; write a method with a name of its own"},
      {"Dim v As Variant = AddressOf S\nSub S()\nEnd Sub",
       "1:20 expected Variant as the value of v, found the address of a method; a Delegate's type can hold "
       "it"},
  });
}

TEST(RefusedWords, AreThePrograms) {
  EXPECT_EQ(problemOf("Sub GoTo(n As Integer)\nEnd Sub\nGoTo 5\nDim Input As Integer = 5\nPrint Input"), "");
  EXPECT_EQ(problemOf("Class Pair\n  Property Left As Integer\nEnd Class\nDim p As New Pair"), "");
}

TEST(RefusedWords, AreMembersThatVariantsAndArraysLack) {
  expectRefused({
      {"Dim v As Variant\nPrint v.Integervalu",
       "2:9 a Variant has no member 'Integervalu'; did you mean 'IntegerValue'?"},
      {"Dim v As Variant\nPrint v.Something",
       "2:9 a Variant has no member 'Something'; a member of what is in it follows a view of it, such as "
       "ClassName(v).Something"},
      {"Dim v As Variant\nPrint v.IsNull(1)",
       "2:9 wrong number of arguments for IsNull: found 2, expected IsNull(value as Variant) as Boolean"},
      {"Dim a() As CriticalSection\na.Sort",
       "2:1 Sort orders numbers, texts and Variants, not CriticalSection; Sort(AddressOf …) takes a Function "
       "that compares two"},
      {"Dim a() As Ptr\na.Sort",
       "2:1 Sort orders numbers, texts and Variants, not Ptr; Sort(AddressOf …) takes a Function that "
       "compares two"},
      {"Dim a() As Integer\na.Sort(5)",
       "2:8 Sort takes a Function that compares two elements: (a As Integer, b As Integer) As Integer"},
      {"Function F(a As Integer, ByRef b As Integer) As Integer\nReturn 0\nEnd Function\nDim a() As Integer\n"
       "a.Sort(AddressOf F)",
       "5:8 Sort takes a Function that compares two elements: (a As Integer, b As Integer) As Integer"},
      {"Dim a() As Integer\na.Sort(1, 2)", "2:3 expected 0 to 1 argument, found 2"},
      {"Dim a() As Integer\nPrint a.IndexOf()", "2:9 expected 1 to 2 arguments, found 0"},
      {"Dim a() As Integer\nPrint a.IndexOf(1, 2, 3)", "2:9 expected 1 to 2 arguments, found 3"},
      {"Dim a(1, 1) As Integer\na.Append(1)",
       "2:3 Append is for arrays of one dimension, not for Integer(,)"},
      {"Dim a(1, 1) As Integer\na.Appnd(1)", "2:3 an array has no member 'Appnd'"},
      {"Dim a(1, 1) As Integer\nPrint a.Ubuond",
       "2:9 an array has no member 'Ubuond'; did you mean 'Ubound'?"},
      {"Dim a(1, 1) As Integer\na.Sort", "2:3 Sort is for arrays of one dimension, not for Integer(,)"},
      {"Dim a(1, 1) As Integer\na.Shuffle", "2:3 Shuffle is for arrays of one dimension, not for Integer(,)"},
      {"Dim a(1, 1) As Integer\na.ResizeTo(1)",
       "2:3 ResizeTo is for arrays of one dimension, not for Integer(,)"},
      {"Dim a(1, 1) As Integer\na.RemoveAll",
       "2:3 RemoveAll is for arrays of one dimension, not for Integer(,)"},
      {"Dim a(1, 1) As Integer\na.Insert(0, 1)",
       "2:3 Insert is for arrays of one dimension, not for Integer(,)"},
      {"Dim a(1, 1) As Integer\nPrint a.Pop", "2:9 Pop is for arrays of one dimension, not for Integer(,)"},
      {"Dim a(1, 1) As Integer\nPrint a.IndexOf(1)",
       "2:9 IndexOf is for arrays of one dimension, not for Integer(,)"},
      {"Dim a(1, 1) As Integer\nPrint a.Ubound(1, 2)", "2:9 expected 0 to 1 argument, found 2"},
      {"Dim a(1, 1) As Integer\nPrint Ubound(a, \"x\")",
       "2:17 expected Integer as the dimension, found String"},
      {"Dim a(1, 1) As String\nPrint Join(a, \"x\")",
       "2:7 Join does not take (String(,), String); expected one of\n  Join(parts() as String, delimiter as "
       "String) as String\n  Join(parts() as String) as String"},
      {"Dim a() As Integer\nPrint a.IndexOf(\"x\")", "2:17 expected Integer as the element, found String"},
      {"Dim a() As Integer\nPrint a.IndexOf(1, \"x\")", "2:20 expected Integer as the start, found String"},
      {"Dim d As New Dictionary\nFor Each k As Variant In d\nNext",
       "2:26 For Each goes through arrays, not through a Dictionary; its keys are ….Keys"},
      {"Dim d As New Dictionary\nPrint d.Get(1)",
       "2:9 Dictionary has no member 'Get'; write Value(key), or Lookup(key, default)"},
      {"Dim d As New Dictionary\nd.Add(1, 2)",
       "2:3 Dictionary has no member 'Add'; write d.Value(key) = value"},
      {"Dim d As New Dictionary\nPrint d.Contains(1)",
       "2:9 Dictionary has no member 'Contains'; write HasKey(key)"},
      {"Class C\n  Override Sub S()\n  End Sub\nEnd Class",
       "2:12 leave out 'Override'; a method takes the place of the one above it that has the same "
       "parameters"},
      {"Class C\nEnd Class\nDim a As C = C()", "3:14 expected one value in C(…); New C makes an object"},
  });
}

TEST(RefusedWords, AreGivenWhatTheyDoNotTake) {
  expectRefused({
      {"Print Str(1, \"0\", 2)", "1:7 Str takes 1 argument, found 3"},
      {"Print Str()", "1:7 Str takes 1 argument, found 0"},
      {"Print Str(True, \"0\")",
       "1:7 Str does not take (Boolean, String); expected one of\n"
       "  Format(value as Double, pattern as String) as String\n"
       "  Format(value as Integer, pattern as String) as String\n"
       "  Format(value as UInt64, pattern as String) as String\n"
       "  Format(value as Currency, pattern as String) as String"},
      {"Print CStr(1, \"0\")", "1:7 CStr takes 1 argument, found 2"},
      {"Print Sin(\"a\")", "1:7 Sin does not take (String); expected\n  Sin(angle as Double) as Double"},
      {"Print (New Random).InRange(1)",
       "1:20 wrong number of arguments for InRange: found 1, expected InRange(least as Integer, most as "
       "Integer) "
       "as Integer"},
  });
}

}  // namespace
}  // namespace host
