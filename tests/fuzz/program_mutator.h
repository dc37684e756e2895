// Changes host programs so that most still compile: statements are made from a grammar, dropped, repeated,
// moved, put into blocks and carried from one program to another with the blocks that they open, and words
// are replaced by others of their kind.
#pragma once

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

// The names that every program has. Each type's can be told by the first letter.
inline constexpr std::string_view declarations =
    "Dim i0, i1, i2 As Integer\nDim k0, k1 As UInt64\nDim y0 As Byte\nDim l0 As Int32\nDim d0, d1 As Double\n"
    "Dim g0 As Single\nDim n0 As Currency\nDim s0, s1 As String\nDim b0 As Boolean\nDim v0, v1 As Variant\n"
    "Dim a0(3) As Integer\nDim a1() As String\nDim a2() As Variant\nDim a3(3) As Double\n"
    "Dim w0, w1 As Int128QTX\nw0 = New Int128QTX(3)\nDim u0 As New UInt128QTX(5)\nDim c0 As New "
    "AtomicIntegerQTX\n"
    "Dim f0 As New AtomicFlagQTX\nDim q0 As New AtomicQueueQTX\nDim m0 As New MemoryBlock(16)\nDim o0 As "
    "Object\n"
    "Function FI(p As Integer, ByRef r As Integer) As Integer\nr = r + p\nReturn p * 2\nEnd Function\n"
    "Function FS(p As String = \"x\") As String\nReturn p + \"y\"\nEnd Function\n"
    "Sub P0(p As Variant)\nv1 = p\nEnd Sub\n";

// A letter after '$' stands for anything of that kind: i integer, k UInt64, d Double, s String, b Boolean, v
// Variant, w Int128QTX, u UInt128QTX; I D S B V W are what can be assigned to; x a statement, z a literal or
// an edge number.
struct Rule {
  char kind;
  std::string_view text;
};
inline constexpr Rule grammar[] = {
    {'z', "0"},
    {'z', "1"},
    {'z', "-1"},
    {'z', "2"},
    {'z', "7"},
    {'z', "255"},
    {'z', "64"},
    {'z', "9223372036854775807"},
    {'z', "-9223372036854775807"},
    {'z', "&h8000000000000000"},
    {'z', "4294967296"},
    {'z', "&hFFFFFFFFFFFFFFFF"},
    {'I', "i0"},
    {'I', "i1"},
    {'I', "i2"},
    {'I', "l0"},
    {'I', "y0"},
    {'I', "k0"},
    {'I', "k1"},
    {'I', "a0($i)"},
    {'I', "c0.Value"},
    {'I', "m0.Byte($i)"},
    {'I', "m0.Int32Value($i)"},
    {'I', "m0.Size"},
    {'I', "w0.LowValue"},
    {'I', "w0.HighValue"},
    {'I', "n0"},
    {'D', "d0"},
    {'D', "d1"},
    {'D', "g0"},
    {'D', "a3($i)"},
    {'D', "m0.DoubleValue($i)"},
    {'D', "n0"},
    {'S', "s0"},
    {'S', "s1"},
    {'S', "a1($i)"},
    {'S', "w0.stringValue"},
    {'S', "m0.StringValue($i, $i)"},
    {'B', "b0"},
    {'B', "f0.Value"},
    {'B', "m0.LittleEndian"},
    {'B', "m0.BooleanValue($i)"},
    {'V', "v0"},
    {'V', "v1"},
    {'V', "a2($i)"},
    {'V', "q0.TopValue"},
    {'W', "w0"},
    {'W', "w1"},
    {'i', "$z"},
    {'i', "$z"},
    {'i', "$I"},
    {'i', "$I"},
    {'i', "$i + $i"},
    {'i', "$i - $i"},
    {'i', "$i * $i"},
    {'i', "$i \\ $i"},
    {'i', "$i Mod $i"},
    {'i', "($i And $i)"},
    {'i', "($i Or $i)"},
    {'i', "($i Xor $i)"},
    {'i', "Not $i"},
    {'i', "-($i)"},
    {'i', "a0.Count"},
    {'i', "Ubound(a1)"},
    {'i', "a2.LastIndex"},
    {'i', "Len($s)"},
    {'i', "LenB($s)"},
    {'i', "InStr($s, $s)"},
    {'i', "Asc($s)"},
    {'i', "AscB($s)"},
    {'i', "Encoding($s)"},
    {'i', "VarType($v)"},
    {'i', "q0.Count"},
    {'i', "FI($i, i1)"},
    {'i', "$w.PopCount"},
    {'i', "$w.Sign"},
    {'i', "$w.BitWidth"},
    {'i', "c0.Increment"},
    {'i', "c0.Exchange($i)"},
    {'i', "c0.CompareExchange(i0, $i)"},
    {'i', "BitwiseRotateQTX($k, $i, $i, $i)"},
    {'i', "CompareNumbersQTX($v, $v)"},
    {'i', "LogicalShiftQTX($k, $i)"},
    {'i', "Int32($i)"},
    {'i', "$d"},
    {'i', "a0.Pop"},
    {'i', "s0.Len"},
    {'k', "$i"},
    {'k', "k0"},
    {'d', "$D"},
    {'d', "$D"},
    {'d', "$i"},
    {'d', "$i / $i"},
    {'d', "$d ^ $d"},
    {'d', "$d * $d"},
    {'d', "1.5"},
    {'d', "1e308"},
    {'d', "5e-324"},
    {'d', "Val($s)"},
    {'d', "Abs($d)"},
    {'d', "Sqrt($d)"},
    {'d', "HypotQTX($d, $d)"},
    {'d', "$w.doubleValue"},
    {'d', "Min($d, $d)"},
    {'d', "RoundQTX($d, $i)"},
    {'d', "NormInvQTX($d)"},
    {'d', "ExtendedStrToDoubleQTX($s)"},
    {'d', "Floor($d)"},
    {'d', "-$d"},
    {'d', "PowQTX($d, $d)"},
    {'s', "$S"},
    {'s', "$S"},
    {'s', "\"\""},
    {'s', "\"ab\""},
    {'s', "\"12.5\""},
    {'s', "\"-17\""},
    {'s', "\"h\xC3\xA9\""},
    {'s', "$s + $s"},
    {'s', "Str($i)"},
    {'s', "Str($d)"},
    {'s', "Left($s, $i)"},
    {'s', "Right($s, $i)"},
    {'s', "Mid($s, $i)"},
    {'s', "Mid($s, $i, $i)"},
    {'s', "ReplaceAll($s, $s, $s)"},
    {'s', "Trim($s)"},
    {'s', "Uppercase($s)"},
    {'s', "Chr($i)"},
    {'s', "ChrB($i)"},
    {'s', "Hex($k)"},
    {'s', "Bin($k)"},
    {'s', "Format($d, $s)"},
    {'s', "\"#,##0.00%\""},
    {'s', "\"0e\""},
    {'s', "Join(a1, $s)"},
    {'s', "ConvertEncoding($s, $e)"},
    {'s', "DefineEncoding($s, $e)"},
    {'s', "FS"},
    {'s', "FS($s)"},
    {'s', "DoubleToExtendedStrQTX($d)"},
    {'s', "$v"},
    {'s', "a1.Pop"},
    {'s', "$w"},
    {'s', "m0"},
    {'e', "Encodings.UTF8"},
    {'e', "Encodings.UTF16"},
    {'e', "Encodings.UTF32BE"},
    {'e', "Encodings.ASCII"},
    {'e', "Encodings.MacRoman"},
    {'e', "Encodings.None"},
    {'e', "$i"},
    {'b', "$B"},
    {'b', "True"},
    {'b', "$i < $i"},
    {'b', "$i = $k"},
    {'b', "$d <> $d"},
    {'b', "$s >= $s"},
    {'b', "$s = $s"},
    {'b', "$b And $b"},
    {'b', "$b Or $b"},
    {'b', "Not ($b)"},
    {'b', "$w > $w"},
    {'b', "$w = $u"},
    {'b', "$v Is Nil"},
    {'b', "o0 IsA Int128QTX"},
    {'b', "$v = $v"},
    {'b', "$v < $i"},
    {'b', "f0.TestAndSet"},
    {'b', "IsNANQTX($d)"},
    {'b', "w0 Is w1"},
    {'v', "$V"},
    {'v', "$V"},
    {'v', "$i"},
    {'v', "$d"},
    {'v', "$s"},
    {'v', "$b"},
    {'v', "$w"},
    {'v', "Nil"},
    {'v', "q0"},
    {'v', "a0"},
    {'v', "a2"},
    {'v', "q0.PopFirst"},
    {'v', "a2.Pop"},
    {'v', "a1"},
    {'v', "c0"},
    {'v', "q0.PopLast"},
    {'v', "n0"},
    {'v', "$v + $v"},
    {'v', "-$v"},
    {'v', "g0"},
    {'v', "m0"},
    {'w', "$W"},
    {'w', "$W"},
    {'w', "$w + $w"},
    {'w', "$w - $i"},
    {'w', "$w * $w"},
    {'w', "$w / $w"},
    {'w', "$w Mod $w"},
    {'w', "-$w"},
    {'w', "New Int128QTX($i)"},
    {'w', "New Int128QTX($s)"},
    {'w', "$w.Sqrt"},
    {'w', "$w.Pow($k)"},
    {'w', "Int128QTX.one"},
    {'w', "$w.ShiftLeft($i)"},
    {'w', "-$u"},
    {'u', "u0"},
    {'u', "$u + $k"},
    {'u', "$u * $u"},
    {'u', "New UInt128QTX($w)"},
    {'x', "$I = $i"},
    {'x', "$I = $i"},
    {'x', "$D = $d"},
    {'x', "$S = $s"},
    {'x', "$B = $b"},
    {'x', "$V = $v"},
    {'x', "$W = $w"},
    {'x', "u0 = $u"},
    {'x', "$I += $i"},
    {'x', "$I -= $i"},
    {'x', "$D *= $d"},
    {'x', "$D /= $d"},
    {'x', "$S += $s"},
    {'x', "w0 = $i"},
    {'x', "w0 = $s"},
    {'x', "$V += $v"},
    {'x', "w0 += $w"},
    {'x', "c0 = $i"},
    {'x', "f0 = $b"},
    {'x', "Print $i"},
    {'x', "Print $s"},
    {'x', "Print $d"},
    {'x', "Print $v"},
    {'x', "Print $w"},
    {'x', "Print $b"},
    {'x', "q0.Push($v)"},
    {'x', "q0.Insert $v"},
    {'x', "q0.Clear"},
    {'x', "a2 = q0.Values"},
    {'x', "a0.Append($i)"},
    {'x', "a1.Append $s"},
    {'x', "a2.Append($v)"},
    {'x', "a0.Remove($i)"},
    {'x', "a1.Insert($i, $s)"},
    {'x', "a1 = Split($s, $s)"},
    {'x', "a2 = Array($v, $v)"},
    {'x', "a0.RemoveAll"},
    {'x', "ReDim a0($i)"},
    {'x', "ReDim a3(7)"},
    {'x', "Call w0.Inc"},
    {'x', "w0.Dec"},
    {'x', "P0($v)"},
    {'x', "P0 $s"},
    {'x', "o0 = $w"},
    {'x', "o0 = q0"},
    {'x', "m0.Size = $i"},
    {'x', "v0 = New SplineQTX(a3, a3)"},
    {'x', "Dim t As New SplineQTX(a3, a3)\nPrint t.calc($d)"},
    {'x', "m0 = $s"},
    {'x', "If $b Then\n$x\nElseIf $b Then\n$x\nElse\n$x\nEnd If"},
    {'x', "If $b Then $x"},
    {'x', "For i0 = $i To $i\n$x\nNext"},
    {'x', "For i2 As Integer = $i DownTo $i Step $i\n$x\nNext"},
    {'x', "For d0 = $d To $d Step $d\n$x\nNext"},
    {'x', "For k0 = $k To $k\n$x\nNext k0"},
    {'x', "For y0 = $i To $i\n$x\nNext"},
    {'x', "For Each s1 In a1\n$x\nNext"},
    {'x', "For Each e As Variant In a2\n$x\nNext"},
    {'x', "For Each i1 In a0\n$x\nNext"},
    {'x', "While $b\n$x\nWend"},
    {'x', "Do\n$x\nLoop Until $b"},
    {'x', "Do While $b\n$x\nLoop"},
    {'x', "Do Until $b\n$x\nIf $b Then Exit Do\nLoop"},
    {'x', "Select Case $i\nCase 1, $i\n$x\nCase $i To $i\n$x\nCase Is > $i\n$x\nCase Else\n$x\nEnd Select"},
    {'x', "Select Case $s\nCase $s\n$x\nEnd Select"},
    {'x', "Try\n$x\nCatch e As RuntimeException\nPrint e.Message\nFinally\n$x\nEnd Try"},
    {'x', "Try\n$x\nCatch\n$x\nEnd Try"},
    {'x', "Raise New OutOfBoundsException($s, $i)"},
    {'x', "Dim j As Integer = $i\n$x"},
    {'x', "Const h = \"x\"\nPrint h"},
};

// Whether a word of the program could stand for an address or a thread's start.
inline bool usesAddresses(std::string_view text) {
  constexpr std::string_view word = "ptr";
  const auto same = [](char a, char b) { return (a | 0x20) == b; };
  return std::search(text.begin(), text.end(), word.begin(), word.end(), same) != text.end();
}

class ProgramMutator {
 public:
  // `wrongLine` gives the line, from 1, for which a program is refused, or 0.
  ProgramMutator(unsigned seed, std::function<int(const std::string&)> wrongLine)
      : engine_(seed), wrongLine_(std::move(wrongLine)) {}
  std::size_t below(std::size_t limit) { return engine_() % limit; }

  std::string mutated(std::string_view text, std::size_t most) {
    Lines lines = split(text);
    for (std::size_t i = 1 + below(3); i > 0; --i) change(lines);
    return finished(lines, most);
  }

  std::string crossed(std::string_view left, std::string_view right, std::size_t most) {
    Lines lines = split(left);
    const Lines other = split(right);
    for (std::size_t i = 1 + below(3); i > 0 && !other.empty(); --i) insert(lines, someStatement(other));
    return finished(lines, most);
  }

 private:
  using Lines = std::vector<std::string>;

  static Lines split(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
      const std::size_t end = std::min(text.find('\n'), text.size());
      if (end > 0) lines.emplace_back(text.substr(0, end));
      text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
  }
  static std::string join(const Lines& lines) {
    std::string text;
    for (const std::string& each : lines) text += each + '\n';
    return text;
  }

  // Not too long, and now and then without the statements that are wrong. Most are right as they are, and to
  // compile each program here as well takes as long as to try it; with one in four, the same time reaches
  // most.
  std::string finished(Lines& lines, std::size_t most) {
    std::string text = join(lines);
    for (; text.size() > most && !lines.empty(); text = join(lines)) drop(lines, below(lines.size()));
    for (std::size_t i = below(4) == 0 ? 2 : 0; i > 0 && !lines.empty(); --i) {
      const int line = wrongLine_(text);
      if (line == 0) break;
      drop(lines, std::min(static_cast<std::size_t>(line), lines.size()) - 1);
      text = join(lines);
    }
    return text;
  }

  void change(Lines& lines) {
    switch (lines.empty() ? 0 : below(10)) {
      case 0:
      case 1:
      case 2:
        return insert(lines, split(made('x', 0)));
      case 3:
        return drop(lines, below(lines.size()));
      case 4:
        return insert(lines, someStatement(lines));
      case 5: {  // moved
        const auto [first, end] = someExtent(lines);
        const auto from = lines.begin() + static_cast<std::ptrdiff_t>(first),
                   to = lines.begin() + static_cast<std::ptrdiff_t>(end);
        const Lines moved(from, to);
        lines.erase(from, to);
        return insert(lines, moved);
      }
      case 6:
        return wrap(lines);
      default:
        return replaceWord(lines[below(lines.size())]);
    }
  }

  // The first word of a line, in lower case.
  static std::string firstWord(const std::string& line, std::size_t after = 0) {
    std::string word;
    std::size_t at = line.find_first_not_of(" \t", after);
    for (; at < line.size() && std::isalpha(static_cast<unsigned char>(line[at])); ++at) {
      word += static_cast<char>(line[at] | 0x20);
    }
    return word;
  }
  static bool opens(const std::string& line) {
    const std::string word = firstWord(line);
    if (word == "if")
      return line.substr(std::min(line.size(), line.find_last_not_of(" \t\r") - 3)).starts_with("Then");
    constexpr std::string_view words[] = {"for", "while", "do", "select", "try", "sub", "function"};
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
  }
  static bool closes(const std::string& line) {
    constexpr std::string_view words[] = {"end", "next", "wend", "loop"};
    return std::find(std::begin(words), std::end(words), firstWord(line)) != std::end(words);
  }
  static bool continues(const std::string& line) {
    constexpr std::string_view words[] = {"else", "elseif", "case", "catch", "finally"};
    return std::find(std::begin(words), std::end(words), firstWord(line)) != std::end(words);
  }

  // The line behind the statement that starts there, with the block that it opens.
  static std::size_t endOf(const Lines& lines, std::size_t first) {
    std::size_t depth = 0;
    for (std::size_t i = first; i < lines.size(); ++i) {
      if (opens(lines[i])) ++depth;
      if (closes(lines[i]) && depth > 0) --depth;
      if (depth == 0) return i + 1;
    }
    return lines.size();
  }
  static std::pair<std::size_t, std::size_t> extentAround(const Lines& lines, std::size_t first) {
    while (first > 0 && (closes(lines[first]) || continues(lines[first]))) --first;
    return {first, endOf(lines, first)};
  }
  std::pair<std::size_t, std::size_t> someExtent(const Lines& lines) {
    return extentAround(lines, below(lines.size()));
  }
  static void drop(Lines& lines, std::size_t line) {
    const auto [first, end] = extentAround(lines, line);
    lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(first),
                lines.begin() + static_cast<std::ptrdiff_t>(end));
  }
  Lines someStatement(const Lines& lines) {
    const auto [first, end] = someExtent(lines);
    return {lines.begin() + static_cast<std::ptrdiff_t>(first),
            lines.begin() + static_cast<std::ptrdiff_t>(end)};
  }

  void insert(Lines& lines, const Lines& statement) {
    std::size_t at = below(lines.size() + 1);
    while (at > 0 && at < lines.size() && firstWord(lines[at]) == "case") --at;  // before the Select
    const std::string word = statement.empty() ? "" : firstWord(statement.front());
    if (word == "sub" || word == "function") at = lines.size();
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at), statement.begin(), statement.end());
  }

  void wrap(Lines& lines) {
    const auto [first, end] = someExtent(lines);
    const std::string word = firstWord(lines[first]);
    if (word == "sub" || word == "function") return;
    static constexpr std::pair<std::string_view, std::string_view> blocks[] = {
        {"If $b Then", "End If"},        {"For i0 = $z To $z", "Next"},
        {"For Each s0 In a1", "Next"},   {"While $b", "Wend"},
        {"Do", "Loop Until $b"},         {"Try", "Catch\nEnd Try"},
        {"Try", "Finally\n$x\nEnd Try"}, {"For i1 = 1 To 3", "Next"}};
    const auto& [head, foot] = blocks[below(std::size(blocks))];
    const Lines closing = split(filled(foot, 1));
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(end), closing.begin(), closing.end());
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(first), filled(head, 1));
  }

  // Something of the kind, from the grammar.
  std::string made(char kind, int depth) {
    std::vector<std::string_view> choices;
    for (const Rule& rule : grammar) {
      if (rule.kind == kind && (depth < 4 || rule.text.find('$') == rule.text.npos))
        choices.push_back(rule.text);
    }
    if (choices.empty()) return kind == 'x' ? "i0 = 1" : "0";
    // The deeper, the more often the first ones, which are the shortest.
    const std::size_t limit = depth > 1
                                  ? std::max<std::size_t>(choices.size() / static_cast<std::size_t>(depth), 1)
                                  : choices.size();
    return filled(choices[below(limit)], depth + 1);
  }
  std::string filled(std::string_view text, int depth) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == '$' && i + 1 < text.size()) {
        result += made(text[++i], depth);
      } else {
        result += text[i];
      }
    }
    return result;
  }

  // A name, a number or an operator becomes another of its kind.
  void replaceWord(std::string& line) {
    static constexpr std::string_view operators[] = {" + ",   " - ",   " * ",  " / ",   " \\ ",
                                                     " Mod ", " And ", " Or ", " Xor ", " = ",
                                                     " < ",   " >= ",  " <> ", " ^ ",   " Is "};
    std::size_t at = below(line.size());
    const auto isWord = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
    if (isWord(line[at])) {
      std::size_t end = at;
      while (at > 0 && isWord(line[at - 1])) --at;
      while (end < line.size() && isWord(line[end])) ++end;
      const std::string word = line.substr(at, end - at);
      const bool isNumber = std::isdigit(static_cast<unsigned char>(word[0])) != 0;
      line.replace(at, end - at, isNumber ? made(below(3) == 0 ? 'i' : 'z', 2) : another(word));
      return;
    }
    for (const std::string_view each : operators) {
      if (const std::size_t found = line.find(each, at > 2 ? at - 2 : 0); found != line.npos) {
        line.replace(found, each.size(), operators[below(std::size(operators))]);
        return;
      }
    }
  }
  std::string another(const std::string& word) {
    constexpr std::string_view kinds = "IDSBVidsbvwwvv";
    if (word.size() == 2 && std::isdigit(static_cast<unsigned char>(word[1]))) {
      switch (word[0]) {
        case 'i':
          return made('I', 3);
        case 'd':
          return made('D', 3);
        case 's':
          return made('S', 3);
        case 'v':
          return made('v', 3);
        case 'w':
          return made('W', 3);
        default:
          break;
      }
    }
    return made(kinds[below(kinds.size())], 3);
  }

  std::minstd_rand engine_;
  std::function<int(const std::string&)> wrongLine_;
};

}  // namespace fuzz
