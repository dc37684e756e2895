// What is not there, by topic, and what to write instead.
#include "language/absent_words.h"

#include <algorithm>
#include <cctype>
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
      {{"Input"}, "this host reads no input; give the variables their values in the program"},
      {{"GoTo", "GoSub"}, "this host has no jumps; use a loop with Exit and Continue, or a Sub with Return"},
      {{"RegEx", "RegExMatch"},
       "this host has no regular expressions; use IndexOf, Split, NthField and ReplaceAll"},
      {{"MsgBox", "MessageBox", "Beep"}, "this host has no windows; use Print, or System.DebugLog"},
      {{"Timer", "App", "Window"},
       "this host has no events of its own; use a Thread, or a loop with Thread.Sleep"},
      {{"Math"}, "its functions stand alone, such as Sqrt(2)"},
      {{"LBound"}, "the first index of every array is 0"},
      {{"Pair"}, "this host has no pairs; use a Dictionary, or a class with two properties"},
  };
  return all;
}

}  // namespace

std::string absent(std::string_view name) {
  for (const Topic& topic : topics()) {
    if (std::any_of(topic.names.begin(), topic.names.end(),
                    [&](std::string_view each) { return sameName(each, name); })) {
      return "; " + std::string(topic.advice);
    }
  }
  return "";
}

std::string absentDirective(std::string_view text) {
  const bool isOne = text.size() > 1 && text[0] == '#' && std::isalpha(static_cast<unsigned char>(text[1]));
  return isOne ? "; this host has no compiler directives; use Const and If" : "";
}

}  // namespace host
