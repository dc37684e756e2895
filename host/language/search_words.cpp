// Texts in texts: where they are, what stands between them, and others in their places. As where texts are
// compared, the case of A to Z makes no difference.
#include <string>
#include <vector>

#include "language/spelling.h"
#include "language/words.h"
#include "runtime/array.h"

namespace host {

namespace {

constexpr std::size_t nowhere = std::string::npos;

RBInteger charactersIn(std::string_view text) {
  RBInteger count = 0;
  for (const char c : text) count += (c & 0xC0) != 0x80;
  return count;
}
// Where so many characters end.
std::size_t behind(std::string_view text, RBInteger count) {
  std::size_t at = 0;
  for (; at < text.size(); ++at) {
    if ((text[at] & 0xC0) == 0x80) continue;
    if (count <= 0) break;
    --count;
  }
  return at;
}

// A text, and the same in the letters that are searched. Their bytes are in the same places.
struct Searched {
  explicit Searched(REALstring s) : text(utf8Of(textOf(s))), folded(lowerCase(text)) {}
  std::size_t find(const Searched& wanted, std::size_t from = 0) const {
    return folded.find(wanted.folded, from);
  }
  std::string text, folded;
};

// From 0; -1: nowhere.
RBInteger positionOf(const Searched& s, std::size_t at) {
  return at == nowhere ? -1 : charactersIn(std::string_view(s.text).substr(0, at));
}
RBInteger indexFrom(REALstring in, RBInteger start, REALstring wanted) {
  const Searched s(in);
  return positionOf(s, s.find(Searched(wanted), behind(s.text, start)));
}
RBInteger indexOf(REALstring s, REALstring wanted) { return indexFrom(s, 0, wanted); }
RBInteger lastIndexOf(REALstring in, REALstring wanted) {
  const Searched s(in);
  return positionOf(s, s.folded.rfind(Searched(wanted).folded));
}
RBInteger inStrFrom(RBInteger start, REALstring s, REALstring wanted) {
  return indexFrom(s, start > 0 ? start - 1 : 0, wanted) + 1;
}
RBInteger inStrOf(REALstring s, RBInteger start, REALstring wanted) { return inStrFrom(start, s, wanted); }
RBInteger inStr(REALstring s, REALstring wanted) { return indexOf(s, wanted) + 1; }

bool contains(REALstring s, REALstring wanted) { return indexOf(s, wanted) >= 0; }
bool beginsWith(REALstring s, REALstring start) {
  return Searched(s).folded.starts_with(Searched(start).folded);
}
bool endsWith(REALstring s, REALstring end) { return Searched(s).folded.ends_with(Searched(end).folded); }

REALstring replaced(REALstring in, REALstring old, REALstring with, bool all) {
  return asPending([&] {
    const Searched s(in), wanted(old);
    const std::string replacement = utf8Of(textOf(with));
    std::string result;
    std::size_t start = 0;
    for (std::size_t at; !wanted.text.empty() && (at = s.find(wanted, start)) != nowhere;) {
      result.append(s.text, start, at - start) += replacement;
      start = at + wanted.text.size();
      if (!all || result.size() > mostTextBytes) break;  // a longer one is refused
    }
    return made(result.append(s.text, start));
  });
}
REALstring replace(REALstring s, REALstring old, REALstring with) { return replaced(s, old, with, false); }
REALstring replaceAll(REALstring s, REALstring old, REALstring with) { return replaced(s, old, with, true); }

// Calls back with each field, until it gives false: what stands between separators, or where those are empty
// each character. An empty text has none.
template <typename Use>
void forEachField(REALstring in, REALstring separator, Use use) {
  const Searched s(in), by(separator);
  if (s.text.empty()) return;
  for (std::size_t start = 0; start <= s.text.size();) {
    const std::size_t end = by.text.empty() ? start + behind(std::string_view(s.text).substr(start), 1)
                                            : std::min(s.find(by, start), s.text.size());
    if (!use(std::string_view(s.text).substr(start, end - start))) return;
    if (end == s.text.size()) return;
    start = end + by.text.size();
  }
}

RBInteger countFields(REALstring s, REALstring separator) {
  RBInteger count = 0;
  forEachField(s, separator, [&](std::string_view) { return ++count > 0; });
  return count;
}
REALstring nthField(REALstring s, REALstring separator, RBInteger number) {
  std::string found;
  if (number < 1) return nullptr;
  forEachField(s, separator, [&](std::string_view field) {
    if (number == 1) found = field;
    return --number > 0;
  });
  return made(found);
}
REALarray split(REALstring s, REALstring separator) {
  return asPending([&] {
    Ref<Array> parts = makeArray({Kind::String}, 0);
    forEachField(s, separator, [&](std::string_view field) {
      parts->append(Slot{.heap = makeText(field).get()});
      return true;
    });
    return reinterpret_cast<REALarray>(parts.detach());
  });
}
REALarray splitAtBlanks(REALstring s) {
  return asPending([&] { return split(s, reinterpret_cast<REALstring>(makeText(" ").get())); });
}
REALarray charactersOf(REALstring s) { return split(s, nullptr); }
REALstring join(REALarray parts, REALstring delimiter) {
  return asPending([&] {
    std::string text;
    auto* array = reinterpret_cast<Array*>(parts);
    for (std::int64_t i = 0; array && i < array->count() && text.size() <= mostTextBytes; ++i) {
      if (i > 0) text += utf8Of(textOf(delimiter));
      const Ref<> part = Ref<>::adopt(array->get(i).heap);
      text += utf8Of(static_cast<const Text*>(part.get()));
    }
    return made(text);
  });
}

REALstring joinAtBlanks(REALarray parts) {
  return asPending([&] { return join(parts, reinterpret_cast<REALstring>(makeText(" ").get())); });
}

RBInteger compare(REALstring a, REALstring b) { return compareText(textOf(a), textOf(b)); }
RBInteger strComp(REALstring a, REALstring b, RBInteger mode) {
  if (mode != 0) return compare(a, b);
  const int order = utf8Of(textOf(a)).compare(utf8Of(textOf(b)));
  return (order > 0) - (order < 0);
}

}  // namespace

void registerSearchWords() {
  static REALmethodDefinition table[] = {
      hostMethod("IndexOf(s as String, find as String) as Integer", &indexOf),
      hostMethod("IndexOf(s as String, start as Integer, find as String) as Integer", &indexFrom),
      hostMethod("LastIndexOf(s as String, find as String) as Integer", &lastIndexOf),
      hostMethod("InStr(s as String, find as String) as Integer", &inStr),
      hostMethod("InStr(start as Integer, s as String, find as String) as Integer", &inStrFrom),
      hostMethod("InStr(s as String, start as Integer, find as String) as Integer", &inStrOf),
      hostMethod("Contains(s as String, find as String) as Boolean", &contains),
      hostMethod("BeginsWith(s as String, find as String) as Boolean", &beginsWith),
      hostMethod("EndsWith(s as String, find as String) as Boolean", &endsWith),
      hostMethod("Replace(s as String, find as String, with as String) as String", &replace),
      hostMethod("ReplaceAll(s as String, find as String, with as String) as String", &replaceAll),
      hostMethod("CountFields(s as String, separator as String) as Integer", &countFields),
      hostMethod("NthField(s as String, separator as String, number as Integer) as String", &nthField),
      hostMethod("Split(s as String) as String()", &splitAtBlanks),
      hostMethod("Split(s as String, delimiter as String) as String()", &split),
      hostMethod("ToArray(s as String, delimiter as String) as String()", &split),
      hostMethod("Characters(s as String) as String()", &charactersOf),
      hostMethod("Join(parts() as String, delimiter as String) as String", &join),
      hostMethod("Join(parts() as String) as String", &joinAtBlanks),
      hostMethod("Compare(s as String, other as String) as Integer", &compare),
      hostMethod("StrComp(s as String, other as String, mode as Integer = 1) as Integer", &strComp),
  };
  registerFunctions(table);
}

}  // namespace host
