// What a Worker's script has around it, in node: load(site, post) runs site/runner.js, which tells `post` instead of a
// page, and gives what a page's message would be handed to.
'use strict';
const fs = require('fs');
const path = require('path');
const vm = require('vm');

exports.load = function (site, post) {
  globalThis.self = globalThis;
  globalThis.location = {href: path.join(site, 'runner.js')};
  globalThis.crypto ??= require('crypto').webcrypto;
  globalThis.importScripts = (file) => vm.runInThisContext(fs.readFileSync(path.join(site, file), 'utf8'), file);
  globalThis.postMessage = post;
  importScripts('runner.js');
  return (data) => globalThis.onmessage({data});
};

exports.compile = (site) => new WebAssembly.Module(fs.readFileSync(path.join(site, 'qtxhost.wasm')));

// As the script of a thread, it is a Worker itself.
const {isMainThread, parentPort, workerData} = require('worker_threads');
if (!isMainThread) {
  const receive = exports.load(workerData, (message) => parentPort.postMessage(message));
  parentPort.on('message', receive);
}
