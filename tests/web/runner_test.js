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
