// What a program prints, shown as it comes: text, errors that lead to their lines, and pictures where it prints SVG.

const mostCharacters = 1 << 20;
const mostInBlock = 1 << 13; // so that what is there already need not be laid out anew
const milliseconds = 40; // between two changes of the page

function element(tag, className, ...content) {
  const made = document.createElement(tag);
  made.className = className;
  made.append(...content);
  return made;
}

export class Output {
  // goToLine(n) is called where somebody wants to see the line of an error.
  constructor(goToLine) {
    this.goToLine = goToLine;
    this.element = element("div", "qtx-output");
    this.element.setAttribute("role", "log");
    this.element.setAttribute("aria-label", "Output");
    this.clear();
  }

  clear() {
    clearTimeout(this.timer);
    this.timer = null;
    for (const image of this.element.querySelectorAll("img")) URL.revokeObjectURL(image.src);
    this.element.replaceChildren();
    this.text = "";
    this.waiting = "";
    this.block = null;
    this.hidden = true;
  }

  // What the page says that the program prints.
  showDocumented(text) {
    this.clear();
    this.print(text);
    this.finish();
  }

  set hidden(hidden) {
    this.element.hidden = hidden;
  }

  get isFull() {
    return this.text.length > mostCharacters;
  }

  print(text) {
    this.text += text;
    this.waiting += text;
    this.timer ??= setTimeout(() => this.flush(), milliseconds);
  }

  // kind: 'error', 'warning' or 'log'.
  message(kind, text, line) {
    this.finish();
    const shown = element("pre", `qtx-message qtx-${kind}`, text.replace(/\n$/, ""));
    if (line) {
      const link = element("button", "qtx-go", `line ${line}`);
      link.type = "button";
      link.onclick = () => this.goToLine(line);
      shown.prepend(link, " ");
    }
    this.element.append(shown);
    this.block = null;
    this.hidden = false;
  }

  // Shows all that has come; the rest of a picture that was never finished as text.
  finish() {
    this.flush();
    this.addText(this.waiting);
    this.waiting = "";
  }

  flush() {
    clearTimeout(this.timer);
    this.timer = null;
    for (;;) {
      const start = this.waiting.search(/^<svg[\s>]/m);
      if (start < 0) break;
      this.addText(this.waiting.slice(0, start));
      this.waiting = this.waiting.slice(start);
      const end = this.waiting.indexOf("</svg>");
      if (end < 0) return;
      const after = end + "</svg>".length;
      this.addPicture(this.waiting.slice(0, after));
      this.waiting = this.waiting.slice(after).replace(/^\n/, "");
    }
    // The last line may become the first one of a picture.
    const complete = this.waiting.lastIndexOf("\n") + 1;
    const held = "<svg".startsWith(this.waiting.slice(complete, complete + 4)) ? complete : this.waiting.length;
    this.addText(this.waiting.slice(0, held));
    this.waiting = this.waiting.slice(held);
  }

  addText(text) {
    if (text === "") return;
    if (!this.block || (this.blockLength > mostInBlock && this.endsLine)) {
      this.element.append((this.block = element("pre", "qtx-printed")));
      this.blockLength = 0;
    }
    this.block.append(text);
    this.blockLength += text.length;
    this.endsLine = text.endsWith("\n");
    this.hidden = false;
  }

  // As an image, in which no script runs and from which nothing is loaded.
  addPicture(svg) {
    const image = element("img", "qtx-picture");
    image.src = URL.createObjectURL(new Blob([svg], { type: "image/svg+xml" }));
    image.alt = svg.match(/<title>([^<]*)<\/title>/)?.[1] ?? "The picture that the program prints";
    const source = element("details", "qtx-source", element("summary", "", "SVG"), element("pre", "", svg));
    this.element.append(image, source);
    this.block = null;
    this.hidden = false;
  }
}
