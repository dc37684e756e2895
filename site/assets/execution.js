// A program's run, in a Worker of its own: whatever it does, the page goes on, and it can be ended at any time.

const runner = document.querySelector("meta[name=qtx-runner]")?.content;
export const canRun = Boolean(runner);

// Compiled once for all runs on this page; where that fails, each Worker tries it and says why.
let compiled;
async function compile() {
  const file = await fetch(new URL("qtxhost.wasm", new URL(runner, document.baseURI)));
  // Not streamed: not every server says what kind of file it is.
  return file.ok ? WebAssembly.compile(await file.arrayBuffer()) : undefined;
}

export class Execution {
  // Calls told.output(text), told.message(kind, text, line or null) with what is said of the program or by it beside
  // its output, kind being 'error', 'warning' or 'log', and at the end told.ended(status), or told.broken(why) where what runs
  // programs could not be loaded or has itself failed.
  constructor(program, told) {
    this.worker = new Worker(new URL(runner, document.baseURI));
    this.worker.onmessage = ({ data }) => {
      if (data.output !== undefined) told.output(data.output);
      for (const kind of ["error", "warning", "log"])
        if (data[kind] !== undefined) told.message(kind, data[kind], data.line ?? null);
      if (data.done !== undefined) {
        this.stop();
        told.ended(data.done);
      }
    };
    this.worker.onerror = (event) => {
      event.preventDefault();
      this.stop();
      told.broken(event.message || "it could not be loaded");
    };
    compiled ??= compile().catch(() => undefined);
    compiled.then((module) => this.worker.postMessage(module ? { program, module } : { program }));
  }

  stop() {
    this.worker.onmessage = this.worker.onerror = null;
    this.worker.terminate();
  }
}
