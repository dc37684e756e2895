// What is not there, by topic, and what to write instead.
#include "language/absent_words.h"

#include <algorithm>
#include <vector>

#include "runtime/name.h"

namespace host {

namespace {

struct Topic {
  std::vector<std::string_view> names;
  std::string_view advice;
};

const std::vector<Topic>& topics() {
  static const std::vector<Topic> all = {
      {{"FolderItem", "TextInputStream", "TextOutputStream", "BinaryStream", "SpecialFolder", "GetFolderItem",
        "GetOpenFolderItem", "GetSaveFolderItem", "StdIn", "StdOut", "StdErr"},
       "this host has no files; put the data into the program or a MemoryBlock, and Print the results"},
      {{"Date", "DateTime", "DateInterval", "TimeZone"},
       "this host's dates are a number of seconds alone (Date.TotalSeconds, DateTime.SecondsFrom1970); "
       "measure "
       "time with Microseconds or Ticks"},
      {{"JSONItem", "ParseJSON", "GenerateJSON", "JSONException"},
       "this host has no JSON; keep values in a Dictionary, and take texts apart with Split and NthField"},
      {{"Input", "InputBox"}, "this host reads no input; give the variables their values in the program"},
      {{"GoTo", "GoSub"}, "this host has no jumps; use a loop with Exit and Continue, or a Sub with Return"},
      {{"RegEx", "RegExMatch"},
       "this host has no regular expressions; use IndexOf, Split, NthField and ReplaceAll"},
      {{"MsgBox", "MessageBox", "Beep"}, "this host has no windows; use Print, or System.DebugLog"},
      {{"Timer", "App", "Window"},
       "this host has no events of its own; use a Thread, or a loop with Thread.Sleep"},
      {{"DictionaryEntry"}, "this host has no entries; go through the Keys of the Dictionary"},
      {{"Iterable", "Iterator"},
       "For Each goes through arrays; give the class a Function that returns an array of its values"},
      {{"WeakRef"},
       "this host has no weak references; keep the object itself, and set it to Nil to break a circle"},
      {{"WeakAddressOf"}, "write AddressOf, which keeps the object alive"},
      {{"RemoveHandler"}, "a Thread keeps its handler; AddHandler puts another in its place"},
      {{"Exception"}, "the class is RuntimeException, and what may raise one stands between Try and Catch"},
      {{"Throw"}, "write Raise"},
      {{"Nothing", "Null"}, "write Nil"},
      {{"AndAlso", "OrElse"}, "write And or Or, which ask the second side only where it matters"},
      {{"IIf"}, "write If(condition, a, b)"},
      {{"LBound"}, "the first index of every array is 0"},
      {{"Erase"}, "write ReDim a(-1)"},
      {{"Let"}, "leave it out"},
      {{"Default"}, "write Case Else"},
      {{"Break"}, "write Exit, which leaves a loop; a Case ends where the next one begins"},
      {{"UCase"}, "write Uppercase"},
      {{"LCase"}, "write Lowercase"},
      {{"Space"}, "this host has no such text; append to one in a loop"},
      {{"With"}, "this host has no With; keep the object in a variable with a short name"},
      {{"IsNot"}, "write Not (a Is b)"},
      {{"Using"}, "what a Module declares is known everywhere; leave Using out"},
      {{"Abstract", "Attributes"}, "leave it out"},
      {{"Introspection", "GetTypeInfo"}, "this host has no introspection; ask with IsA"},
      {{"Color", "RGB", "HSV"}, "this host has no colours; keep them as Integers"},
      {{"Locale"}, "leave it out; numbers look alike everywhere"},
      {{"ComparisonOptions", "EqualOrdering"}, "leave it out; StrComp(a, b, 0) heeds the case"},
      {{"Quit"}, "a program ends with its last line; Return leaves it earlier"},
      {{"CInt", "CLong", "CBool", "CSng", "CCur"},
       "write the type's name, as in Integer(x), or Val(s) for the number in a text"},
      {{"EncodeHex", "DecodeHex", "EncodeBase64", "DecodeBase64", "MD5", "Crypto", "EncodeURLComponent"},
       "this host has no encoders; AscB(s) and Hex(n) show bytes"},
      {{"Math"}, "its functions stand alone, such as Sqrt(2)"},
      {{"This"}, "write Self"},
      {{"Console", "WriteLine", "Println", "Printf", "Echo", "Puts"}, "write Print, which shows one value"},
      {{"Import", "Imports", "Include", "Require"}, "leave it out; all there is is known everywhere"},
      {{"Except"}, "write Catch"},
      {{"Pair"}, "this host has no pairs; use a Dictionary, or a class with two properties"},
  };
  return all;
}

const std::vector<Topic>& typeTopics() {
  static const std::vector<Topic> all = {
      {{"Int", "Long", "Short", "LongInt", "ULong"}, "write Integer, or Int64, Int32, UInt64 and the like"},
      {{"List", "ArrayList", "Vector", "Stack"},
       "an array grows and shrinks: Dim a() As Integer, a.Append(…), a.Remove(…)"},
      {{"HashTable", "HashMap", "Map"}, "write Dictionary"},
      {{"Float", "Real"}, "write Double, or Single"},
      {{"Decimal", "Money"}, "write Currency"},
      {{"Bool"}, "write Boolean"},
      {{"Char", "Character"}, "write String"},
  };
  return all;
}

bool hasName(const std::vector<std::string_view>& names, std::string_view name) {
  return std::any_of(names.begin(), names.end(), [&](std::string_view each) { return sameName(each, name); });
}

struct MemberTopic {
  std::string_view owner;
  Topic members;
};

const std::vector<MemberTopic>& memberTopics() {
  static const std::vector<MemberTopic> all = {
      {"Thread", {{"Run"}, "write Start; AddHandler t.Run, AddressOf … says what it runs"}},
      {"Thread", {{"Priority", "StackSize", "DebugIdentifier"}, "leave it out; all threads are alike"}},
      {"Thread", {{"ThreadStates"}, "write Thread.Running, Thread.NotRunning and the like"}},
      {"Thread", {{"SleepCurrent", "YieldToNext"}, "write Thread.Sleep(milliseconds)"}},
      {"Thread",
       {{"Kill", "Stop", "Pause", "Suspend", "Resume"},
        "a thread ends with its handler; let that look at a variable, or wait for a Semaphore"}},
      {"MemoryBlock",
       {{"CString", "PString", "WString"}, "write StringValue(offset, count), which takes and gives bytes"}},
      {"Dictionary", {{"Add", "Put", "Set"}, "write d.Value(key) = value"}},
      {"Dictionary", {{"Contains", "ContainsKey", "Has", "Exists"}, "write HasKey(key)"}},
      {"Dictionary", {{"Get", "Item"}, "write Value(key), or Lookup(key, default)"}},
      {"Array", {{"SortWith"}, "write Sort(AddressOf …) for an array of a class that holds both"}},
      {"Array", {{"Join"}, "write Join(a, separator)"}},
      {"Array", {{"Clone"}, "append its elements to a new array, one by one"}},
      {"Array", {{"FirstIndex", "FirstRowIndex"}, "the first index is 0"}},
      {"String", {{"Join"}, "write Join(a, separator)"}},
      {"String", {{"StartsWith"}, "write BeginsWith"}},
      {"String", {{"ReplaceLineEndings"}, "write ReplaceAll(s, EndOfLine, …)"}},
      {"String", {{"PadLeft", "PadRight", "Reverse", "Repeat"}, "write a Function of its own with Extends"}},
      {"Variant", {{"TypeInteger"}, "an Integer is a Variant.TypeInt64, an Int32 a Variant.TypeInt32"}},
      {"RuntimeException", {{"Reason"}, "write Message"}},
      {"RuntimeException", {{"Stack", "StackFrames"}, "what nothing catches is reported with its calls"}},
      {"Integer", {{"ToHex"}, "write Hex(value)"}},
      {"Integer", {{"ToBinary"}, "write Bin(value)"}},
      {"Integer", {{"ToOctal"}, "write Oct(value)"}},
      {"Integer", {{"MaxValue"}, "write 9223372036854775807"}},
      {"Integer", {{"MinValue"}, "write -9223372036854775807 - 1"}},
  };
  return all;
}

}  // namespace

namespace {

std::string adviceIn(const std::vector<Topic>& all, std::string_view name) {
  for (const Topic& topic : all) {
    if (hasName(topic.names, name)) return "; " + std::string(topic.advice);
  }
  return "";
}

}  // namespace

std::string absent(std::string_view name) { return adviceIn(topics(), name); }

std::string absentType(std::string_view name) {
  const std::string advice = adviceIn(typeTopics(), name);
  return advice.empty() ? absent(name) : advice;
}

std::string absentMember(std::string_view owner, std::string_view name) {
  for (const auto& [of, members] : memberTopics()) {
    if (sameName(of, owner) && hasName(members.names, name)) return "; " + std::string(members.advice);
  }
  return "";
}

}  // namespace host
