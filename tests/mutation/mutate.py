#!/usr/bin/env python3
"""Mutation testing of plugin/: makes small changes to it, one at a time, and sees whether a test fails.

All mutants are compiled once, behind a switch, in a copy of the project in build/mutate. A first run of every test notes
which mutants it reaches; then each mutant is run against the tests that reach it, those of its folder first, until one
fails. tests/mutation/equivalent.txt lists the mutants that no test can tell from the original, with the reason."""
import argparse
import fcntl
import hashlib
import json
import os
import pickle
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
from collections import Counter, defaultdict
from concurrent.futures import ProcessPoolExecutor, ThreadPoolExecutor
from dataclasses import dataclass, field
from pathlib import Path

sys.dont_write_bytecode = True  # nothing is left beside the sources
from places import findPlaces
from schemata import Schemata, mutantsOf

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent
WORK = ROOT / 'build/mutate'
CHECK = ['-fsyntax-only', '-Wno-everything', '-Werror=vla', '-ferror-limit=0', '-fno-caret-diagnostics',
         '-ftemplate-backtrace-limit=0']
# The host shares it, so that a change in it changes both sides alike.
SHARED = {'plugin/frame/host_interface.h'}
WHITE_BOX = ['frame', 'atomic', 'math', 'int128', 'spline']
WITH_HOST = ['program', 'command_line']
SLOW_SECONDS = 3.0
LEAST_SECONDS, MOST_MEMORY, MOST_WRITTEN = 2.0, 8 << 30, 64 << 20


def lockFolder(work):
    """Another run in the same folder would build its own mutants over these. Held as long as what is returned."""
    file = open(work / 'lock', 'w')
    try:
        fcntl.flock(file, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        say(f'waiting for another run in {work.relative_to(ROOT)}')
        fcntl.flock(file, fcntl.LOCK_EX)
    return file


def say(text):
    print(text, file=sys.stderr, flush=True)


def progress(text):
    if sys.stderr.isatty():
        print(f'\r\033[K{text}', end='', file=sys.stderr, flush=True)


@dataclass
class Test:
    name: str
    command: list
    folder: str = ''  # whose mutants it is the first to try
    seconds: float = 0
    reached: set = field(default_factory=set)

    def run(self, environment, limit):
        """Whether it passed; None where it took too long."""
        with tempfile.TemporaryDirectory() as scratch:  # programs that are killed leave files
            process = subprocess.Popen(self.command, env={**os.environ, 'TMPDIR': scratch, **environment},
                                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL, start_new_session=True)
            try:
                # Time of its own ends a loop soon, however busy the machine is; what waits for ever does not use any.
                resource.prlimit(process.pid, resource.RLIMIT_CPU, (int(limit) + 1, int(limit) + 2))
                status = process.wait(5 * limit)
                return None if status == -signal.SIGXCPU else status == 0
            except subprocess.TimeoutExpired:
                return None
            finally:
                try:
                    os.killpg(process.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass
                process.wait()


def limitWhatRuns():
    """A mutant may ask for all the memory there is, or write for ever."""
    for what, most in ((resource.RLIMIT_AS, MOST_MEMORY), (resource.RLIMIT_FSIZE, MOST_WRITTEN), (resource.RLIMIT_CORE, 0)):
        resource.setrlimit(what, (most, resource.getrlimit(what)[1]))


def noteReached(tests, mutants, parallel):
    """Runs each test once without a mutant: it has to pass, and tells what it reaches and how long it takes."""
    size = 1 + max(mutant.number for mutant in mutants)

    def one(test):
        with tempfile.NamedTemporaryFile() as file:
            file.write(bytes(size))
            file.flush()
            begin = time.monotonic()
            passed = test.run({'QTX_REACHED': file.name}, 600)
            test.seconds = time.monotonic() - begin
            file.seek(0)
            test.reached = {found.start() for found in re.finditer(rb'\x01', file.read())}
        return None if passed else test.name
    with ThreadPoolExecutor(parallel) as pool:
        failed = [name for name in pool.map(one, tests) if name]
    if failed:
        raise SystemExit('mutate: these fail without a mutant: ' + ', '.join(failed))


def runMutants(mutants, tests, parallel, done, record):
    """Tells of each mutant what became of it: record(mutant, status, test)."""
    reaching = defaultdict(list)
    for test in tests:
        for number in test.reached:
            reaching[number].append(test)
    kills, lock = defaultdict(Counter), threading.Lock()

    def one(mutant):
        if mutant.key in done:
            return
        folder = os.path.dirname(mutant.file)
        # What every test reaches, none of them sees at times: then the slow ones of other folders would be run in vain.
        found = [t for t in reaching[mutant.number] if t.folder == folder or t.seconds < SLOW_SECONDS]
        status, by = ('survived' if reaching[mutant.number] else 'while compiling' if mutant.constant else 'not reached'), ''
        # What has killed its neighbours is likely to kill it as well; what is slow may still come last.
        with lock:
            ordered = sorted(found, key=lambda t: (t.folder != folder, t.seconds / (1 + kills[mutant.file][t.name])))
        for test in ordered:
            passed = test.run({'QTX_MUTANT': str(mutant.number)}, max(LEAST_SECONDS, 10 * test.seconds))
            if not passed:
                status, by = 'killed' if passed is False else 'timed out', test.name
                break
        with lock:
            kills[mutant.file][by] += 1
            record(mutant, status, by)

    with ThreadPoolExecutor(parallel) as pool:
        list(pool.map(one, mutants))


# The project.

def copyProject(source):
    """Copies what the mutated library is built and tested with; what has changed only."""
    for name in subprocess.run(['git', '-C', ROOT, 'ls-files', '-co', '--exclude-standard', 'CMakeLists.txt', 'README.md',
                                'cmake', 'docs', 'examples', 'host', 'plugin', 'tests'],
                               capture_output=True, text=True, check=True).stdout.split('\n'):
        if not name or not (ROOT / name).is_file():
            continue
        data = (ROOT / name).read_bytes()
        if name.startswith('plugin/') and name.endswith(('.cpp', '.h')) and name not in SHARED:
            if (source / name).exists():
                continue
        if name.startswith('tests/plugin/') and name.endswith(('.cpp', '.h')):
            data = assertedAtRunTime(data)
        if name == 'plugin/CMakeLists.txt':
            data += b'target_sources(qtx_plugin PRIVATE mutant.cpp)\n'
        writeChanged(source / name, data)
    for name in ('mutant.h', 'mutant.cpp'):
        writeChanged(source / 'plugin' / name, (HERE / name).read_bytes())


def writeChanged(path, data):
    path.parent.mkdir(parents=True, exist_ok=True)
    if not path.exists() or path.read_bytes() != data:
        path.write_bytes(data)


def assertedAtRunTime(data):
    """What a test asserts while compiling, it asserts when it starts: mutants are chosen then."""
    out, at, number = [b'#include "mutant.h"\n'], 0, 0
    for found in re.finditer(rb'^( *)static_assert\(', data, flags=re.M):
        number += 1
        out += [data[at:found.start()], found.group(1),
                b'[[maybe_unused]] static const bool asserted%d = ::asserted(' % number]
        at = found.end()
    return b''.join(out) + data[at:]


def compileCommands(tree):
    commands = {}
    for entry in json.loads((tree / 'compile_commands.json').read_text()):
        words = shlex.split(entry['command'])
        if words[0].endswith('ccache'):
            words = words[1:]
        at = words.index('-o')
        commands[entry['file']] = [w for w in words[:at] + words[at + 2:] if w != '-c' and w != entry['file']]
    return commands


def quietly(command):
    run = subprocess.run(command, capture_output=True, text=True)
    if run.returncode:
        raise SystemExit(f'mutate: {" ".join(map(str, command))}\n{run.stdout[-4000:]}{run.stderr[-4000:]}')


def testsOf(tree):
    tests = []
    for path in [*(tree / 'tests' / f'{name}_test' for name in WHITE_BOX),
                 *(ROOT / 'build/release/tests' / f'{name}_test' for name in WITH_HOST)]:
        folder = 'plugin/' + path.name.removesuffix('_test')
        suite = ''
        for line in subprocess.run([path, '--gtest_list_tests'], capture_output=True, text=True, check=True).stdout.splitlines():
            name = line.split('#')[0].rstrip()
            if not name.startswith(' '):
                suite = name
            else:
                full = suite + name.strip()
                tests.append(Test(f'{path.name}:{full}', [str(path), f'--gtest_filter={full}'], folder))
    return tests


def digestOf(paths):
    digest = hashlib.sha256()
    for path in sorted(paths):
        digest.update(str(path).encode() + path.read_bytes())
    return digest.hexdigest()


def readEquivalent():
    """Keys, in lines of their own, and after them their reason, indented."""
    listed, keys = {}, []
    for line in (HERE / 'equivalent.txt').read_text().splitlines():
        if line.startswith('plugin/'):
            if listed.get(keys[-1] if keys else '', None):
                keys = []
            keys.append(line)
            listed[line] = ''
        elif line.startswith(' '):
            for key in keys:
                listed[key] += line.strip() + ' '
        else:
            keys = []
    return listed


def evenly(mutants, count):
    return [mutants[i * len(mutants) // count] for i in range(min(count, len(mutants)))]


def placesIn(commands, source, files, work, parallel):
    """Per file its places, keywords and how many parts work while compiling alone; kept until a source changes."""
    kept = work / f'places-{digestOf([*(ROOT / f for f in files), HERE / "places.py"])[:16]}.pickle'
    if kept.exists():
        return pickle.loads(kept.read_bytes())
    say('finding what can be mutated')
    found = {}
    sources = [str(ROOT / 'plugin' / Path(f).relative_to(source / 'plugin')) for f in commands
               if f.startswith(f'{source}/plugin/') and not f.endswith('/mutant.cpp')]
    with ProcessPoolExecutor(parallel) as pool:
        tasks = [pool.submit(findPlaces, f, ['-std=c++20', f'-I{ROOT}/plugin'], {str(ROOT / g): g for g in files}) for f in sources]
        for task in tasks:
            for name, what in task.result().items():
                found.setdefault(name, what)
    for old in work.glob('places-*.pickle'):
        old.unlink()
    kept.write_bytes(pickle.dumps(found))
    return found


def prepare(options, files, work):
    """The copy with its mutants, as far as they compile, built; and the keys of all that there are."""
    source, tree = work / 'source', work / 'tree'
    copyProject(source)
    if not (tree / 'build.ninja').exists():
        quietly(['cmake', '-S', source, '-B', tree, '-G', 'Ninja', '-DCMAKE_BUILD_TYPE=Release', '-DCMAKE_CXX_COMPILER=clang++',
                 '-DCMAKE_CXX_FLAGS_RELEASE=-O1', '-DCMAKE_CXX_FLAGS=-w -Wno-invalid-constexpr -Wno-c++11-narrowing'])
    quietly(['ninja', '-C', tree, 'build.ninja'])  # anew where a CMakeLists.txt has changed
    commands = compileCommands(tree)
    texts = {f: (ROOT / f).read_bytes() for f in files}
    found = placesIn(commands, source, files, work, options.parallel)
    mutants = mutantsOf([p for places, _, _ in found.values() for p in places], texts)
    every = {m.key for m in mutants}
    if options.sample:
        mutants = evenly(mutants, options.sample)
    schemata = Schemata(texts, mutants, [k for _, keywords, _ in found.values() for k in keywords], source)
    # What did not compile the last time will not now.
    memory = work / 'settled.json'
    known = json.loads(memory.read_text()) if memory.exists() else {'states': {}, 'constant': [], 'keywords': []}
    for mutant in mutants:
        mutant.state = known['states'].get(mutant.key, '')
        mutant.constant = mutant.constant or mutant.key in known['constant']
    name = lambda k: f'{k.file}:{texts[k.file][k.start:k.names[0] + 20].decode(errors="replace")}'
    for keyword in schemata.keywords:
        if name(keyword) in known['keywords']:
            schemata.constant.add(id(keyword))
    check = {part: [words + CHECK + ['-Wno-invalid-constexpr', f] for f, words in commands.items()
                    if f.startswith(f'{source}/{part}/')] for part in ('plugin', 'tests/plugin')}

    def remember():
        known['states'].update({m.key: m.state for m in mutants if m.state})
        known['constant'] = sorted({*known['constant'], *(m.key for m in mutants if m.constant)})
        known['keywords'] = sorted({*known['keywords'],
                                    *(name(k) for k in schemata.keywords if id(k) in schemata.constant)})
        memory.write_text(json.dumps(known))

    built = ['qtx', *(f'{name}_test' for name in WHITE_BOX)]
    # That it compiles does not depend on what the tests do.
    compiled = digestOf([*(ROOT / f for f in files), HERE / 'places.py', HERE / 'schemata.py', HERE / 'mutant.h']) + str(options.sample)
    if known.get('compiled') == compiled:
        schemata.write()
    else:
        # What the tests are checked with.
        quietly(['ninja', '-C', tree, 'tests/CMakeFiles/test_headers.dir/cmake_pch.hxx.pch'])
        # What the headers have wrong, the smaller sources say sooner.
        for part in check.values():
            schemata.settle(part, options.parallel, say, remember)
        known['compiled'] = compiled
        memory.write_text(json.dumps(known))
    say(f'building {sum(not m.state for m in mutants)} mutants')
    quietly(['ninja', '-C', tree, f'-j{options.parallel}', *built])
    # The host is as it always is, but for the library that lies beside it.
    shutil.copy2(ROOT / 'build/release/qtxhost', tree / 'qtxhost')
    os.environ['QTX_HOST_COMMAND'] = str(tree / 'qtxhost')
    return mutants, every, sum(skipped for _, _, skipped in found.values()), source, tree


def report(mutants, results, equivalent, skipped):
    table = defaultdict(Counter)
    survivors = []
    for mutant in mutants:
        status = mutant.state or results.get(mutant.key, ('not run', ''))[0]
        if not mutant.state and mutant.key in equivalent:
            status = 'equivalent'
        if status == 'timed out':
            status = 'killed'
        if status in ('survived', 'not reached', 'not run'):
            survivors.append((mutant, status))
            status = 'survived'
        for row in (mutant.file, os.path.dirname(mutant.file) + '/', 'all'):
            table[row][status] += 1
            table[row]['made'] += 1
    columns = ['made', 'killed', 'survived', 'equivalent', 'while compiling', 'not compiled']
    lines = [f'{"":44}' + ''.join(f'{c:>17}' for c in columns)]
    for row in sorted(table, key=lambda r: (r == 'all', r)):
        lines.append(f'{row:44}' + ''.join(f'{table[row][c]:17}' for c in columns))
    for mutant, status in survivors:
        lines.append(f'\n{mutant.file}:{mutant.line}: {status}: {mutant.original} => {mutant.altered}\n  {mutant.key}')
    killed, total = table['all']['killed'], table['all']['killed'] + table['all']['survived']
    lines.append(f'\n{skipped} places work while compiling alone: asserted there, or labels and enumerators.')
    lines.append(f'{killed} of {total} killed ({100 * killed / max(total, 1):.1f} %), {table["all"]["equivalent"]} equivalent')
    return '\n'.join(lines), survivors


def main():
    parser = argparse.ArgumentParser(description=__doc__, prog='qtx mutate', formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('files', nargs='*', metavar='FILE', help='only files or folders with these names, such as plugin/frame')
    parser.add_argument('--sample', type=int, metavar='N', help='N mutants, evenly spread, the same every time')
    parser.add_argument('--survivors', action='store_true', help='run those again that survived the last time')
    parser.add_argument('--parallel', type=int, default=os.cpu_count(), metavar='N', help='processes at once')
    options = parser.parse_args()
    options.files = [os.path.relpath(os.path.abspath(f), ROOT) if os.path.exists(f) else f for f in options.files]
    work = WORK / 'sample' if options.sample else WORK
    work.mkdir(parents=True, exist_ok=True)
    held = lockFolder(work)  # to the end
    begin = time.monotonic()
    files = sorted(str(p.relative_to(ROOT)) for p in (ROOT / 'plugin').rglob('*') if p.suffix in ('.h', '.cpp'))
    mutants, every, skipped, source, tree = prepare(options, [f for f in files if f not in SHARED], work)
    reachable = mutants
    if options.files:
        mutants = [m for m in mutants if m.file.startswith(tuple(options.files))]
    equivalent = readEquivalent()
    made = [m for m in mutants if not m.state and m.key not in equivalent]
    stale = [key for key in equivalent if key not in every]
    say(f'built after {time.monotonic() - begin:.0f} s')

    # Results stay as long as nothing that they come from changes.
    digest = digestOf([p for folder in ('plugin', 'tests', 'host', 'docs', 'examples') for p in (source / folder).rglob('*')
                       if p.is_file()])
    file, results = work / 'results.tsv', {}
    lines = file.read_text().splitlines() if file.exists() else []
    if lines and (lines[0] == digest or options.survivors):
        results = {key: (status, by) for key, status, by in (line.split('\t') for line in lines[1:])}
    if options.survivors:
        results = {key: result for key, result in results.items() if result[0] not in ('survived', 'not reached')}
    with open(file, 'w') as stream:
        for line in [digest] + ['\t'.join((key, *result)) for key, result in results.items()]:
            stream.write(line + '\n')
        stream.flush()
        tests = testsOf(tree)
        say(f'running each of {len(tests)} tests once')
        limitWhatRuns()
        noteReached(tests, reachable, options.parallel)
        counts = Counter()

        def record(mutant, status, by):
            results[mutant.key] = (status, by)
            stream.write(f'{mutant.key}\t{status}\t{by}\n')
            stream.flush()
            counts[status] += 1
            progress(f'{sum(counts.values())} of {left}: ' + ', '.join(f'{n} {s}' for s, n in sorted(counts.items())))

        left = sum(m.key not in results for m in made)
        say(f'running {left} mutants after {time.monotonic() - begin:.0f} s')
        runMutants(made, tests, options.parallel, set(results), record)
    progress('')
    text, survivors = report(mutants, results, equivalent, skipped)
    (work / 'report.txt').write_text(text + '\n')
    print(text)
    for key in stale:
        print(f'\nequivalent.txt: there is no such mutant: {key}')
    say(f'took {time.monotonic() - begin:.0f} s')
    return 1 if survivors or stale else 0


if __name__ == '__main__':
    sys.exit(main())
