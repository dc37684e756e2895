// Runs one host program in a Worker. A page posts
//   {program, name, arguments, module}
// of which only the first, a text, has to be there: the name that the program has in messages, the command line, and
// the compiled qtxhost.wasm, which a page that starts many Workers need not have compiled for each. It is told
//   {output: text}         what the program prints, as it is printed
//   {error: text, line: n} each error, and the program's line that it names, or null
//   {warning: text, line: n} what the compiler warns of; the program runs all the same
//   {log: text}            what else goes to standard error, such as the lines of System.DebugLog
//   {done: status}         at the end, what qtxhost's exit status would be
// To stop a program, end the Worker; each runs one program.
'use strict';
importScripts('qtxhost.js');

// Lines that a fast program prints are not worth a message each.
function outputTo(post) {
  const decoder = new TextDecoder();
  const pause = 10, mostAtOnce = 100, mostWaiting = 16384;
  let waiting = '', last = 0, posted = 0;
  function flush() {
    if (waiting) post({output: waiting});
    waiting = '';
  }
  function print(bytes) {
    waiting += decoder.decode(bytes, {stream: true});
    const now = performance.now();
    if (now - last >= pause) posted = 0;
    if (posted >= mostAtOnce && waiting.length < mostWaiting) return;
    flush();
    ++posted;
    last = now;
  }
  return {print, flush};
}

// What a message is, its beginning says: the program's name, its line and 'warning', or the name of who found an error.
function messageOf(text, name) {
  if (text.startsWith('qtxhost: ')) return {error: text, line: null};
  if (!text.startsWith(name + ':')) return {log: text};
  const [, line, warning] = text.slice(name.length).match(/^:(?:(\d+):)?(?:\d+:)?( warning: )?/);
  return {[warning ? 'warning' : 'error']: text, line: line ? Number(line) : null};
}

// A message goes on in the lines behind it that are indented, the compiler's up to the mark below the place. What is printed
// comes behind all of it.
function errorsTo(post, name) {
  let line = [], message = [];
  function flush() {
    if (message.length === 0) return;
    post(messageOf(message.join('\n'), name));
    message = [];
  }
  function endLine() {
    const text = new TextDecoder().decode(new Uint8Array(line));
    line = [];
    if (!text.startsWith(' ')) flush();
    message.push(text);
    if (/^\s+\^$/.test(text) || 'log' in messageOf(message[0], name)) flush();
  }
  function write(byte) {
    if (byte === 10) {
      endLine();
    } else if (byte !== null) {
      line.push(byte);
    }
  }
  function end() {
    if (line.length > 0) endLine();
    flush();
  }
  return {write, flush, end};
}

async function run({program, name = 'program.bas', arguments: words = ['run', name], module}) {
  const output = outputTo(postMessage);
  const errors = errorsTo((message) => {
    output.flush();
    postMessage(message);
  }, name);
  const input = new TextEncoder().encode(program);
  let read = 0;
  const settings = {
    printBytes: (bytes) => {
      errors.flush();
      output.print(bytes);
    },
    stdin: () => (read < input.length ? input[read++] : null),
    stdout: (byte) => output.print(new Uint8Array([byte])),
    stderr: errors.write,
  };
  if (module) {
    settings.instantiateWasm = (imports, receive) => {
      WebAssembly.instantiate(module, imports).then((instance) => receive(instance, module));
      return {};
    };
  }
  const host = await createQtxhost(settings);
  if (name !== '-') host.FS.writeFile(name, input);
  let status;
  try {
    status = host.callMain(words);
  } catch (failure) {
    // The engine's own: what the system would end a process for.
    errors.end();
    const line = host._qtxRunningLine();
    const what = failure instanceof RangeError ? 'the stack is used up' : failure.message;
    output.flush();
    postMessage({error: (line ? `${name}:${line}: ` : 'qtxhost: ') + what, line: line || null});
    status = 139;
  }
  errors.end();
  output.flush();
  postMessage({done: status});
}

self.onmessage = (event) => run(event.data);
