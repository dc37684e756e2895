// A program that can be edited, run, stopped and shared.
import { Execution, canRun } from "./execution.js";
import { highlighted } from "./highlight.js";
import { Output } from "./output.js";
import { linkTo } from "./share.js";

function button(label, title, action) {
  const made = document.createElement("button");
  made.type = "button";
  made.className = "qtx-button";
  made.textContent = label;
  made.title = title;
  made.onclick = action;
  return made;
}

export class ProgramView {
  // documented: what it prints as it stands, or null where that is not known. onShared(link) is told of new links.
  constructor({ program, documented = null, onShared = () => {} }) {
    this.onShared = onShared;
    this.element = document.createElement("div");
    this.element.className = "qtx-program";

    this.shown = document.createElement("pre");
    this.shown.ariaHidden = "true";
    this.text = document.createElement("textarea");
    this.text.spellcheck = false;
    this.text.wrap = "off";
    this.text.autocapitalize = "off";
    this.text.setAttribute("autocomplete", "off");
    this.text.ariaLabel = "Program";
    this.text.oninput = () => this.changed();
    this.text.onkeydown = (event) => this.typed(event);
    const editor = document.createElement("div");
    editor.className = "qtx-editor";
    editor.append(this.shown, this.text);

    this.run = button("Run", "Runs the program (Ctrl+Enter)", () => this.start());
    this.stop = button("Stop", "Ends the program", () => this.interrupt());
    this.reset = button("Reset", "Brings back the program as it was", () => this.show(this.original, this.documented));
    this.share = button("Share", "Makes a link that holds the program", () => this.makeLink());
    this.status = document.createElement("span");
    this.status.className = "qtx-status";
    this.status.setAttribute("role", "status");
    const bar = document.createElement("div");
    bar.className = "qtx-bar";
    bar.append(...(canRun ? [this.run, this.stop] : []), this.reset, this.share, this.status);

    this.link = document.createElement("input");
    this.link.className = "qtx-link";
    this.link.readOnly = true;
    this.link.ariaLabel = "Link to this program";
    this.link.onfocus = () => this.link.select();

    this.output = new Output((line) => this.goTo(line));
    this.element.append(editor, bar, this.link, this.output.element);
    this.show(program, documented);
  }

  show(program, documented) {
    this.interrupt();
    this.original = program;
    this.documented = documented;
    this.text.value = program;
    this.changed();
    this.status.textContent = "";
    if (documented === null) this.output.clear();
    else this.output.showDocumented(documented);
  }

  get program() {
    return this.text.value;
  }

  changed() {
    this.shown.replaceChildren(...highlighted(this.program));
    this.reset.hidden = this.program === this.original;
    this.link.hidden = true;
    this.isRunning = Boolean(this.execution);
  }

  set isRunning(running) {
    this.run.disabled = running;
    this.stop.hidden = !running;
  }

  typed(event) {
    if (event.key !== "Enter" || event.isComposing) return;
    if (event.ctrlKey || event.metaKey) {
      event.preventDefault();
      this.start();
    } else if (!event.shiftKey && !event.altKey) {
      // A new line begins where this one does. Only this way it can be undone.
      const before = this.program.slice(0, this.text.selectionStart);
      const indent = before.slice(before.lastIndexOf("\n") + 1).match(/^\s*/)[0];
      if (document.execCommand("insertText", false, "\n" + indent)) event.preventDefault();
    }
  }

  start() {
    if (!canRun || this.execution) return;
    for (const line of this.shown.children) line.classList.remove("qtx-wrong", "qtx-doubtful");
    this.output.clear();
    this.status.textContent = "Running …";
    const program = this.program;
    this.execution = new Execution(program, {
      output: (text) => {
        this.output.print(text);
        if (this.output.isFull) this.end("Stopped: it prints more than a page can show");
      },
      message: (kind, text, line) => {
        this.output.message(kind, text, line);
        this.shown.children[line - 1]?.classList.add(kind === "warning" ? "qtx-doubtful" : "qtx-wrong");
      },
      ended: (status) => this.end(this.outcome(program, status)),
      broken: (why) => this.end(`What runs programs has failed: ${why}`),
    });
    this.isRunning = true;
  }

  outcome(program, status) {
    if (status !== 0) return `Ended with status ${status}`;
    if (this.documented === null || program !== this.original) return "Ended";
    return this.output.text === this.documented ? "Ended; it printed what stood here" : "Ended; it printed something else";
  }

  interrupt() {
    if (this.execution) this.end("Stopped");
  }

  end(status) {
    const wasInStop = document.activeElement === this.stop;
    this.execution.stop();
    this.execution = null;
    this.output.finish();
    this.isRunning = false;
    this.status.textContent = status;
    if (wasInStop) this.run.focus();
  }

  goTo(line) {
    const lines = this.program.split("\n");
    const start = lines.slice(0, line - 1).join("\n").length + (line > 1 ? 1 : 0);
    this.text.focus();
    this.text.setSelectionRange(start, start + (lines[line - 1] ?? "").length);
    this.shown.children[line - 1]?.scrollIntoView({ block: "nearest" });
  }

  async makeLink() {
    const link = await linkTo(this.program);
    this.link.value = link;
    this.link.hidden = false;
    this.onShared(link);
    let copied = true;
    try {
      await navigator.clipboard.writeText(link);
    } catch {
      copied = false;
      this.link.focus();
    }
    this.status.textContent = copied ? "The link is copied" : "The link holds the program";
  }
}
