// qtxhost's command line in node, through the very files that a page uses: what a page is told goes to standard output
// and standard error.
'use strict';
const fs = require('fs');
const {compile, load} = require('./worker_in_node.js');

const site = process.env.QTX_SITE;
const receive = load(site, ({output, error, warning, log, done}) => {
  if (output !== undefined) fs.writeSync(1, output);
  const message = error ?? warning ?? log;
  if (message !== undefined) fs.writeSync(2, message + '\n');
  if (done !== undefined) process.exitCode = done;
});
const words = process.argv.slice(2);
const name = words[words.length - 1];
const program = words[0] === 'run' ? fs.readFileSync(name === '-' ? 0 : name, 'utf8') : '';
receive({program, name, arguments: words, module: compile(site)});
