// What a page is told of a program that a Worker runs.
'use strict';
const assert = require('assert');
const path = require('path');
const test = require('node:test');
const {Worker} = require('worker_threads');
const {compile} = require('./worker_in_node.js');

const site = process.env.QTX_SITE;
const module_ = compile(site);
const start = () => new Worker(path.join(__dirname, 'worker_in_node.js'), {workerData: site});

// All that it is told, until the end.
function run(program) {
  const worker = start();
  return new Promise((resolve, reject) => {
    const told = [];
    worker.on('error', reject);
    worker.on('message', (message) => {
      told.push(message);
      if ('done' in message) worker.terminate().then(() => resolve(told));
    });
    worker.postMessage({program, module: module_});
  });
}

test('what is printed comes as it is printed, and then the end', async () => {
  const told = await run('Print "ä"\nPrint FacQTX(5)\n');
  assert.deepStrictEqual(told, [{output: 'ä\n'}, {output: '120\n'}, {done: 0}]);
});

test('many lines come in few messages, whole', async () => {
  const told = await run('For i As Integer = 1 To 100000\nPrint i\nNext\n');
  const printed = told.map((each) => each.output ?? '').join('');
  assert.strictEqual(printed, Array.from({length: 100000}, (_, i) => i + 1 + '\n').join(''));
  assert.ok(told.length < 5000, `${told.length} messages`);
});

test('a mistake is told with its line, and nothing runs', async () => {
  const told = await run('Print 1\nPrint Fa(2)\n');
  assert.strictEqual(told.length, 2);
  assert.strictEqual(told[0].line, 2);
  assert.match(told[0].error, /^program\.bas:2:7: error: /);
  assert.deepStrictEqual(told[1], {done: 1});
});

test('an exception is told with its line, and where it has passed', async () => {
  const told = await run('Sub Fail()\nDim a() As Integer\nPrint a(3)\nEnd Sub\nPrint 1\nFail\n');
  assert.deepStrictEqual(told[0], {output: '1\n'});
  assert.strictEqual(told[1].line, 3);
  assert.match(told[1].error, /^program\.bas:3: OutOfBoundsException: .*\n  at program\.bas:3: Fail\n  at program\.bas:6$/);
  assert.deepStrictEqual(told[2], {done: 1});
});

test('a warning is told as one, with its line, and the program runs', async () => {
  const told = await run('Print "a"\nDim b As Byte = 300\nPrint b\n');
  assert.strictEqual(told[0].line, 2);
  assert.match(told[0].warning, /^program\.bas:2:17: warning: 300 does not fit in UInt8; .*\n {2}Dim b As Byte = 300\n +\^$/);
  assert.deepStrictEqual(told.slice(1), [{output: 'a\n'}, {output: '44\n'}, {done: 0}]);
});

test('a line of the log is told as one, whatever stands in it', async () => {
  const told = await run('System.DebugLog("now: warning: 3")\nPrint 1\n');
  assert.deepStrictEqual(told, [{log: 'now: warning: 3'}, {output: '1\n'}, {done: 0}]);
});

test('threads that wait for each other are an error of no one line', async () => {
  const told = await run('Dim s As New Semaphore(0)\ns.Signal\n');
  assert.strictEqual(told[0].line, null);
  assert.match(told[0].error, /^program\.bas: every thread of the program waits for another\n {2}at program\.bas:2: /);
  assert.deepStrictEqual(told.slice(1), [{done: 1}]);
});

test('a warning of a program that does not end is told', async () => {
  const worker = start();
  const told = await new Promise((resolve) => {
    worker.on('message', resolve);
    worker.postMessage({program: 'Dim b As Byte = 300\nWhile True\nWend\n', module: module_});
  });
  assert.strictEqual(told.line, 1);
  assert.ok(told.warning);
  await worker.terminate();
});

test('what the engine stops is told with its line', async () => {
  const told = await run('Dim m As New MemoryBlock(8)\nDim p As Ptr = m\nPrint p.Int64(2000000000)\n');
  assert.strictEqual(told[0].line, 3);
  assert.match(told[0].error, /^program\.bas:3: /);
  assert.deepStrictEqual(told[1], {done: 139});
});

test('a program that does not end is stopped', async () => {
  const worker = start();
  await new Promise((resolve) => {
    worker.on('message', resolve);
    worker.postMessage({program: 'Print 1\nWhile True\nWend\n', module: module_});
  });
  await worker.terminate();
});
