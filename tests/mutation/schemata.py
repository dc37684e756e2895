"""Writes the mutated copy: every place reads `(mutated(17) ? altered : original)`. Leaves out what does not compile."""
import re
import subprocess
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass

NUMBERS = 4096  # more than the mutants of any file


@dataclass
class Mutant:
    key: str       # file, function, line and mutation: what unrelated edits do not change
    file: str
    line: int
    original: str
    altered: str
    place: object
    number: int = 0
    state: str = ''  # why it is not made: 'not compiled', 'while compiling'; or empty
    constant: bool = False  # its place must work while compiling too


def squeezed(text):
    return ' '.join(text.split())


def mutantsOf(places, texts):
    """One mutant for each alternative, in the order of the sources."""
    mutants, seen = [], Counter()
    for place in sorted(places, key=lambda p: (p.file, p.start, -p.end, p.kind)):
        text = texts[place.file]
        begin = text.rfind(b'\n', 0, place.start) + 1
        line = text[begin:text.find(b'\n', begin)].decode()
        original = squeezed(text[place.start:place.end].decode())
        for alternative in place.alternatives:
            altered = squeezed(alternative) or '(left out)'
            key = f'{place.file} | {place.function} | {squeezed(line)} | {original} => {altered}'
            seen[key] += 1
            if seen[key] > 1:
                key += f' | {seen[key]}'
            mutants.append(Mutant(key, place.file, text.count(b'\n', 0, place.start) + 1, original, altered, place))
            mutants[-1].alternative = alternative
            mutants[-1].constant = place.constant
    return mutants


class Copy:
    """The generated text of one file, and where in it each edit has gone."""

    def __init__(self, name, text, mutants, keywords):
        self.name, self.text = name, text
        self.out, self.size = [], 0
        self.names = []     # (offset, keyword): of what is declared without it
        self.declaredAt = []
        self.altered = []   # (start, end, mutant): its alternative
        self.places = []    # (start, end, mutants): the whole of a place
        self.declared = []  # (line, keyword): where names are whose keyword is removed
        groups = {}
        for mutant in mutants:
            if not mutant.state:
                groups.setdefault(id(mutant.place), []).append(mutant)
        # Each place, and each removed keyword, with those inside it.
        edits = [(g[0].place.start, g[0].place.end, g[0].place, g) for g in groups.values()]
        edits += [(k.start, k.end, k, None) for k in keywords]
        # Of places alike, the condition is outermost: its result is a bool.
        rank = {'statement': 0, 'return': 0, 'condition': 1, 'operator': 2, 'call': 3, 'constant': 4}
        edits.sort(key=lambda e: (e[0], -e[1], rank.get(getattr(e[2], 'kind', ''), 9)))
        self.edits, self.at = edits, 0
        self.emit('#include "mutant.h"\n')
        self.render(0, len(text))
        self.result = b''.join(self.out)
        starts = [0] + [m.end() for m in re.finditer(b'\n', self.result)]
        self.lineStarts = starts
        for position, keyword in self.declaredAt:
            self.declared.append((self.result.count(b'\n', 0, position) + 1, keyword))

    def emit(self, text):
        data = text.encode() if isinstance(text, str) else text
        self.out.append(data)
        self.size += len(data)

    def render(self, start, end):
        while self.at < len(self.edits) and self.edits[self.at][0] < end:
            first, last, what, group = self.edits[self.at]
            self.at += 1
            if last > end:
                continue  # overlaps without lying inside: through a macro
            self.copy(start, first)
            start = last
            if group is None:
                self.emit(what.instead)
                self.names += [(name, what) for name in what.names]
                continue
            begin = self.size
            (self.statement if what.statement else self.expression)(first, last, group)
            self.places.append((begin, self.size, group))
        self.copy(start, end)

    def copy(self, start, end):
        for name, keyword in self.names:
            if start <= name < end:
                self.declaredAt.append((self.size + name - start, keyword))
        self.emit(self.text[start:end])

    def alternative(self, mutant, before, after):
        self.emit(before)
        begin = self.size
        self.emit(mutant.alternative)
        self.altered.append((begin, self.size, mutant))
        self.emit(after)

    @staticmethod
    def test(mutant):
        return f'::{"mutatedAtRunTime" if mutant.constant else "mutated"}({mutant.number})'

    def expression(self, first, last, group):
        self.emit('(')
        place = group[0].place
        type_ = 'bool' if place.kind == 'condition' else place.type
        for mutant in group:
            self.alternative(mutant, f'{self.test(mutant)} ? (', ') : ')
        self.emit(f'static_cast<{type_}>(' if type_ else '(')
        self.render(first, last)
        self.emit('))')

    def statement(self, first, last, group):
        self.emit('{ ')
        for mutant in group:
            self.alternative(mutant, f'if ({self.test(mutant)}) {{ ', ' } else ')
        self.emit('{ ')
        self.render(first, last)
        self.emit(' } }')

    def position(self, line, column):
        return self.lineStarts[line - 1] + column - 1


class Schemata:
    """Generates the copies of all files, and finds by compiling them what has to be left out."""

    def __init__(self, texts, mutants, keywords, folder):
        self.texts, self.mutants, self.keywords, self.folder = texts, mutants, keywords, folder
        # Each file has numbers of its own: a change in one leaves the copies of the others as they are.
        following = {name: NUMBERS * i + 1 for i, name in enumerate(sorted(texts))}
        for mutant in mutants:
            mutant.number = following[mutant.file]
            following[mutant.file] += 1
        self.constant = set()  # keywords that stay

    def write(self):
        self.copies = {}
        for name, text in self.texts.items():
            copy = Copy(name, text, [m for m in self.mutants if m.file == name],
                        [k for k in self.keywords if k.file == name and id(k) not in self.constant])
            path = self.folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            if not path.exists() or path.read_bytes() != copy.result:
                path.write_bytes(copy.result)
            self.copies[str(path)] = copy

    def errorsOf(self, command):
        run = subprocess.run(command, capture_output=True, text=True)
        groups = []
        for line in run.stderr.splitlines():
            found = re.match(r'(.*?):(\d+):(\d+): (?:fatal )?(error|note|warning): (.*)', line)
            if not found:
                continue
            file, row, column, kind, message = found.groups()
            if kind == 'error' or not groups:
                groups.append([])
            groups[-1].append((file, int(row), int(column), message))
        if run.returncode and not groups:
            raise SystemExit(f'mutate: {" ".join(command)}\n{run.stderr}')
        return groups

    def settle(self, commands, parallel, say, remember):
        """Compiles until everything does. `commands`: what checks the syntax of each source."""
        unsettled = {i: None for i in range(len(commands))}  # what each has last said
        for attempt in range(1, 100):
            self.write()
            # What many include, they all complain of: one says enough for now.
            said, wanted = set(), []
            for i, errors in unsettled.items():
                new = {(g[0], len(g)) for g in errors or []} - said
                if errors is None or new:
                    wanted.append(i)
                    said |= new
            with ThreadPoolExecutor(parallel) as pool:
                found = dict(zip(wanted, pool.map(self.errorsOf, [commands[i] for i in wanted])))
            groups = [g for errors in found.values() for g in errors]
            say(f'compiling, {attempt}: {len(groups)} errors in {len(wanted)} of {len(unsettled)} sources')
            before = self.progress()
            for group in groups:
                self.remedy(group)
            if groups and self.progress() == before:
                raise SystemExit('mutate: cannot make this compile:\n' + '\n'.join(map(str, groups[0])))
            remember()
            for i, errors in found.items():
                unsettled[i] = errors
                if not errors:
                    del unsettled[i]
            if not groups:  # what the others have said is mended, or they will say it again
                unsettled = dict.fromkeys(unsettled)
            if not unsettled:
                return

    def progress(self):
        return len(self.constant), sum(m.constant + 2 * bool(m.state) for m in self.mutants)

    def remedy(self, group):
        message = ' '.join(m for *_, m in group)
        constantWanted = re.search(r'constant expression|constexpr|constant init|consteval|integral constant|'
                                   r'variable.length|variable-sized|not a constant', message)
        places = [(self.copies[f], self.copies[f].position(row, column), row) for f, row, column, _ in group
                  if f in self.copies]
        if constantWanted:
            # What the notes name; and what the error does, unless it is about a place.
            rows = [(copy, row) for copy, at, row in places
                    if row != group[0][1] or not any(begin <= at < end for begin, end, _ in copy.places)]
            if self.restore([k for copy, row in rows for line, k in copy.declared if line == row]):
                return
        for copy, at, _ in places:
            inner = min((e for e in copy.altered if e[0] <= at < e[1]), key=lambda e: e[1] - e[0], default=None)
            if inner:
                inner[2].state = 'not compiled'
                return
        for copy, at, _ in places:
            inner = min((e for e in copy.places if e[0] <= at < e[1]), key=lambda e: e[1] - e[0], default=None)
            if inner:
                return self.leaveOut(inner[2], constantWanted)
        # The message is about the whole declaration: what stands in its line may have to be constant.
        for copy, at, _ in places:
            begin, end = copy.result.rfind(b'\n', 0, at) + 1, copy.result.find(b'\n', at)
            line = copy.result[begin:end]
            words = re.findall(rb'\w+', line)
            for declaring in [copy, *self.copies.values()]:  # what stands in the same file is the likelier
                if self.restore([k for _, k in declaring.declared if self.nameOf(declaring, k) in words]):
                    return
            for first, _, group in copy.places:
                if begin <= first < end:
                    self.leaveOut(group, constantWanted)

    @staticmethod
    def leaveOut(group, constantWanted):
        for mutant in group:
            if constantWanted and not mutant.constant:
                mutant.constant = True
            else:
                mutant.state = 'while compiling' if constantWanted else 'not compiled'

    @staticmethod
    def nameOf(copy, keyword):
        return re.match(rb'\w*', copy.text[keyword.names[0]:]).group()

    def restore(self, keywords):
        for keyword in keywords:
            self.constant.add(id(keyword))
            # What stands inside is computed while compiling at times.
            for mutant in self.mutants:
                if mutant.file == keyword.file and keyword.start <= mutant.place.start < keyword.extentEnd:
                    mutant.constant = True
        return bool(keywords)
