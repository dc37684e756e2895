// Colours programs of the host's language.

const keywords = new Set(
  `addressof and array as assigns break byref byval call case catch class const constructor continue declare delegate dim
  do downto each else elseif end enum exit extends false finally for function get goto if implements in inherits interface
  is isa loop me mod module new next nil not of optional or paramarray print private property protected
  public raise redim rem return select self set shared static step sub super then to true try until var wend while with
  xor addhandler removehandler`.split(/\s+/),
);
const types = new Set(
  `boolean byte currency double int8 int16 int32 int64 integer object ptr single string uint8 uint16 uint32 uint64 uinteger
  variant memoryblock thread runtimeexception criticalsection mutex semaphore dictionary datetime color`.split(/\s+/),
);
const token = /('.*|\/\/.*)|("(?:[^"]|"")*"?)|(&[hbo][0-9a-f]+|\b\d+(?:\.\d+)?(?:e[+-]?\d+)?\b)|([a-z_]\w*)|./giu;

function kindOf([, comment, text, number, word]) {
  if (comment) return "comment";
  if (text) return "string";
  if (number) return "number";
  if (!word) return null;
  const name = word.toLowerCase();
  if (keywords.has(name)) return "keyword";
  if (types.has(name)) return "type";
  return name.endsWith("qtx") ? "function" : null;
}

// One element for each line, so that a line can be marked.
export function highlighted(program) {
  return program.split("\n").map((text) => {
    const line = document.createElement("span");
    line.className = "qtx-line";
    for (const match of text.matchAll(token)) {
      const kind = kindOf(match);
      if (!kind) {
        line.append(match[0]);
        continue;
      }
      const part = document.createElement("span");
      part.className = `qtx-${kind}`;
      part.textContent = match[0];
      line.append(part);
    }
    line.append("\n");
    return line;
  });
}
