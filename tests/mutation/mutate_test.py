#!/usr/bin/env python3
"""mutate.py on a small source: what it makes of each kind of code, and that its verdicts are right."""
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
import mutate
from places import findPlaces
from schemata import Schemata, mutantsOf

HERE = Path(__file__).resolve().parent


class Sample(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = Path(tempfile.mkdtemp())
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        for name in ('mutant.h', 'mutant.cpp'):
            shutil.copy(HERE / name, cls.folder)
        source = str(HERE / 'sample.cpp')
        places, keywords, cls.skipped = findPlaces(source, ['-std=c++20'], {source: 'sample.cpp'})['sample.cpp']
        text = {'sample.cpp': Path(source).read_bytes()}
        # Of main the conditions alone would be mutants of the tests.
        cls.mutants = mutantsOf([p for p in places if p.function != 'main'], text)
        cls.schemata = Schemata(text, cls.mutants, keywords, cls.folder)
        check = ['clang++', '-std=c++20', f'-I{cls.folder}', *mutate.CHECK, '-Wno-invalid-constexpr', cls.folder / 'sample.cpp']
        cls.schemata.settle([check], 2, lambda text: None, lambda: None)
        program = cls.folder / 'sample'
        subprocess.run(['clang++', '-std=c++20', '-w', '-Wno-invalid-constexpr', cls.folder / 'sample.cpp',
                        cls.folder / 'mutant.cpp', '-o', program], check=True)
        tests = [mutate.Test(name, [program, name]) for name in 'sctnhb']
        made = [m for m in cls.mutants if not m.state]
        mutate.noteReached(tests, cls.mutants, 2)
        cls.results, cls.by = {}, {}

        def record(mutant, status, by):
            cls.results[mutant.key] = status
            cls.by[mutant.key] = by
        mutate.runMutants(made, tests, 2, set(), record)

    def statusOf(self, function, original, altered):
        found = [m for m in self.mutants if (m.original, m.altered) == (original, altered) and f'| {function} |' in m.key]
        self.assertEqual(len(found), 1, f'{function}: {original} => {altered} in ' +
                         '\n'.join(m.key for m in self.mutants))
        return found[0].state or self.results[found[0].key]

    def testVerdicts(self):
        for function, original, altered, expected in [
                ('sum', 'a + b', 'a - b', 'killed'),
                ('isSmall', 'value < limit', 'value <= limit', 'survived'),  # 10 is never tried
                ('isSmall', 'value < limit', 'value >= limit', 'killed'),
                ('limit', '10', 'static_cast<int>(10 + 1)', 'killed'),
                ('clamped', 'value > limit', 'false', 'killed'),
                ('clamped', 'value > limit', 'value >= limit', 'survived'),  # equivalent
                ('clamped', 'value = limit;', '(left out)', 'killed'),
                ('clamped', 'return value;', 'return static_cast<int>(0);', 'killed'),
                ('countTo', '++i', '--i', 'timed out'),
                ('countTo', '++i', 'i', 'timed out'),
                ('countTo', 'count += 1', 'count -= 1', 'killed'),
                ('countTo', 'count += 1;', '(left out)', 'killed'),
                ('countTo', 'i < end', 'true', 'timed out'),
                ('neither', '!a && !b', '!a || !b', 'killed'),
                ('neither', '!a', 'true', 'killed'),
                ('named', 'sum(value, 1)', 'static_cast<int>(0)', 'killed'),
                ('named', 'sum(value, 1) == 2', 'sum(value, 1) != 2', 'killed'),
                ('half', '0.5', '-0.5', 'killed'),
                ('half', 'value * 0.5', 'value / 0.5', 'killed'),
                ('unused', '~value', 'value', 'not reached'),
                # The function works while compiling, as the bound of an array, and at run time.
                ('doubled', 'value * 2', 'value / 2', 'killed'),
                ('size', '4', 'static_cast<int>(0)', 'while compiling'),
        ]:
            with self.subTest(f'{function}: {original} => {altered}'):
                self.assertEqual(self.statusOf(function, original, altered), expected)

    def testCountsWhatWorksWhileCompilingAlone(self):
        self.assertEqual(self.skipped, 2)  # the assertion and the label

    def testRunsOnlyTestsThatReachTheMutant(self):
        for mutant in self.mutants:
            if '| sum |' in mutant.key and self.results.get(mutant.key) == 'killed':
                self.assertIn(self.by[mutant.key], ('s', 'b'))

    def testTheOriginalIsUnchanged(self):
        for name in 'sctnhb':
            self.assertEqual(subprocess.run([self.folder / 'sample', name], check=False).returncode, 0)


class Keys(unittest.TestCase):
    def keysOf(self, text):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / 'a.cpp'
            path.write_text(text)
            places, _, _ = findPlaces(str(path), [], {str(path): 'a.cpp'})['a.cpp']
            return [m.key for m in mutantsOf(places, {'a.cpp': path.read_bytes()})]

    def testStayWhereLinesAreAddedElsewhere(self):
        function = 'int f(int a) {\n  return a - 1;\n}\n'
        self.assertEqual(self.keysOf(function), self.keysOf('// One\n\nint unrelated;\n' + function))

    def testAreAllDifferent(self):
        keys = self.keysOf('int f(int a) {\n  return a * 2 + a * 2;\n}\n')
        self.assertEqual(len(keys), len(set(keys)))


if __name__ == '__main__':
    unittest.main()
