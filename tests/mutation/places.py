"""Finds what can be mutated: walks the syntax trees of the sources and says, for each place, what may stand there instead."""
import re
from dataclasses import dataclass, field

from clang.cindex import Cursor, CursorKind as K, Index, TranslationUnit, TypeKind as T

INTEGERS = {T.CHAR_U, T.UCHAR, T.CHAR16, T.CHAR32, T.USHORT, T.UINT, T.ULONG, T.ULONGLONG, T.UINT128, T.CHAR_S, T.SCHAR,
            T.WCHAR, T.SHORT, T.INT, T.LONG, T.LONGLONG, T.INT128}
FLOATS = {T.FLOAT, T.DOUBLE, T.LONGDOUBLE}
INSTEAD = {
    '+': ['-'], '-': ['+'], '*': ['/'], '/': ['*'], '%': ['/'], '&': ['|'], '|': ['&'], '^': ['&'], '<<': ['>>'], '>>': ['<<'],
    '<': ['<=', '>='], '<=': ['<', '>'], '>': ['>=', '<='], '>=': ['>', '<'], '==': ['!='], '!=': ['=='],
    '&&': ['||'], '||': ['&&'],
    '+=': ['-='], '-=': ['+='], '*=': ['/='], '/=': ['*='], '%=': ['/='], '&=': ['|='], '|=': ['&='], '^=': ['&='],
    '<<=': ['>>='], '>>=': ['<<='], '++': ['--'], '--': ['++'],
}
RELATIONAL = {'<', '<=', '>', '>=', '==', '!='}
FUNCTIONS = {K.FUNCTION_DECL, K.CXX_METHOD, K.CONSTRUCTOR, K.DESTRUCTOR, K.CONVERSION_FUNCTION, K.FUNCTION_TEMPLATE}
JUMPS = {K.BREAK_STMT: 'break', K.CONTINUE_STMT: 'continue'}


@dataclass
class Place:
    """A range of a file, [start, end) in bytes, and the texts that may stand in its stead. Of an expression they are
    expressions; a statement is left out where its one alternative is empty, and otherwise replaced."""
    file: str
    start: int
    end: int
    statement: bool
    alternatives: list
    function: str
    kind: str
    type: str = ''  # of a constant, where it is known
    constant: bool = False  # in a function that works while compiling too


@dataclass
class Keyword:
    """constexpr or constinit in the declaration of a variable: where it is removed, the initialiser works at run time."""
    file: str
    start: int
    end: int
    instead: str
    extentEnd: int = 0
    names: list = field(default_factory=list)  # where what is declared has its name: offsets


class Walk:
    """The walk through one file of one translation unit."""

    def __init__(self, path, file, text, macros):
        self.path, self.file, self.text, self.macros = path, file, text, macros
        self.places, self.keywords, self.skipped = {}, {}, 0
        self.discarded = set()  # where calls stand whose results nobody wants
        self.function = ''
        self.constant = False

    def of(self, cursor):
        return self.text[cursor.extent.start.offset:cursor.extent.end.offset].decode()

    def between(self, start, end):
        text = self.text[start:end].decode()
        return re.sub(r'//[^\n]*|/\*.*?\*/', '', text, flags=re.S).strip()

    def add(self, cursor, kind, alternatives, statement=False, end=None, type_=''):
        start, end = cursor.extent.start.offset, end or cursor.extent.end.offset
        original = ' '.join(self.text[start:end].decode().split())
        alternatives = [each for each in dict.fromkeys(alternatives) if ' '.join(each.split()) != original]
        if alternatives:
            self.places.setdefault((start, end, kind),
                                   Place(self.file, start, end, statement, alternatives, self.function, kind, type_,
                                         self.constant))

    def inMacro(self, offset):
        return next((m for m in self.macros if m[0] <= offset < m[1]), None)

    # Declarations.

    def keyword(self, cursor):
        start, name = cursor.extent.start.offset, cursor.location.offset
        # A second declarator shares the first one's keyword.
        found = re.search(rb'\b(constexpr|constinit)\b', self.text[start:name])
        if not found:
            return False
        at = start + found.start()
        word = found.group(1).decode()
        if word == 'constinit':
            instead = ''
        elif cursor.semantic_parent.kind in (K.STRUCT_DECL, K.CLASS_DECL, K.CLASS_TEMPLATE,
                                             K.CLASS_TEMPLATE_PARTIAL_SPECIALIZATION):
            instead = 'inline const'
        else:
            instead = 'const'
        found = self.keywords.setdefault(at, Keyword(self.file, at, at + len(word), instead))
        found.names.append(name)
        found.extentEnd = max(found.extentEnd, cursor.extent.end.offset)
        return True

    def declaration(self, cursor):
        # Where it is declared to work while compiling, it always does.
        head = self.text[cursor.extent.start.offset:cursor.location.offset]
        if cursor.kind in (K.STATIC_ASSERT, K.ENUM_CONSTANT_DECL) or b'consteval' in head:
            self.skipped += 1
            return
        outer, constant = self.function, self.constant
        if cursor.kind in FUNCTIONS or (cursor.kind == K.VAR_DECL and not outer):
            self.function = cursor.spelling.split('<')[0] if cursor.kind == K.FUNCTION_TEMPLATE else cursor.spelling
        if cursor.kind in FUNCTIONS:
            self.constant = b'constexpr' in head
        elif cursor.kind == K.FIELD_DECL:
            self.constant = False
        elif cursor.kind == K.VAR_DECL and self.keyword(cursor):
            self.constant = False
        self.children(cursor)
        self.function, self.constant = outer, constant

    # Expressions and statements.

    def children(self, cursor, within=None):
        for child in cursor.get_children():
            self.visit(child, within)

    def visit(self, cursor, within=None):
        """`within` is the type of the widest expression of the very same extent: what a literal is converted to."""
        kind = cursor.kind
        if kind.is_declaration() or kind == K.FRIEND_DECL:
            return self.declaration(cursor)
        start, end = cursor.extent.start.offset, cursor.extent.end.offset
        if kind.is_expression() or kind.is_unexposed():
            file = cursor.extent.start.file
            if not file or file.name != self.path:  # a default argument, shown where it is left out
                return
            macro = self.inMacro(start)
            if macro or self.inMacro(end - 1):
                if macro == (start, end) and cursor.type.get_canonical().kind in INTEGERS:
                    self.literal(cursor, within or cursor.type)
                return
            if re.search(rb'\b(decltype|sizeof|alignof|noexcept)\s*\(\s*$', self.text[max(0, start - 20):start]):
                return  # not computed
            within = within or cursor.type
        same = lambda child: (child.extent.start.offset, child.extent.end.offset) == (start, end)
        handler = {
            K.BINARY_OPERATOR: self.binary, K.COMPOUND_ASSIGNMENT_OPERATOR: self.binary, K.UNARY_OPERATOR: self.unary,
            K.CALL_EXPR: self.call, K.CONDITIONAL_OPERATOR: self.conditional, K.IF_STMT: self.branch,
            K.WHILE_STMT: self.loop, K.DO_STMT: self.loop, K.FOR_STMT: self.loop, K.CXX_FOR_RANGE_STMT: self.loop,
            K.COMPOUND_STMT: self.block, K.CASE_STMT: self.block, K.DEFAULT_STMT: self.block, K.RETURN_STMT: self.returned,
        }.get(kind)
        if handler:
            handler(cursor)
        elif kind in (K.INTEGER_LITERAL, K.CHARACTER_LITERAL, K.FLOATING_LITERAL, K.CXX_BOOL_LITERAL_EXPR):
            self.literal(cursor, within)
        for child in cursor.get_children():
            # The label of a case is a constant of the language.
            if kind == K.CASE_STMT and child == next(cursor.get_children()):
                self.skipped += 1
                continue
            self.visit(child, within if same(child) else None)

    def literal(self, cursor, within):
        text = self.of(cursor)
        kind = within.get_canonical().kind
        if cursor.kind == K.CXX_BOOL_LITERAL_EXPR:
            return self.add(cursor, 'constant', ['false' if text == 'true' else 'true'])
        if cursor.kind == K.FLOATING_LITERAL:
            try:
                zero = float.fromhex(text) == 0 if text.lower().startswith('0x') else float(text.rstrip('fFlL')) == 0
            except ValueError:
                zero = False
            return self.add(cursor, 'constant', ['1.0'] if zero else ['-' + text, '0.0'])
        type_ = within.get_canonical().spelling if kind in INTEGERS | FLOATS else 'int'
        type_ = type_.replace('const ', '')
        zero = re.fullmatch(r"0[xXbB]?0*[uUlL]*", text) is not None
        values = [f'{text} + 1', f'{text} - 1'] + ([] if zero or text.startswith("'") else ['0'])
        if re.fullmatch(r'1[uUlL]*', text):
            values.remove(f'{text} - 1')  # is 0
        self.add(cursor, 'constant', [f'static_cast<{type_}>({value})' for value in values], type_=type_)

    def operands(self, cursor):
        return [c for c in cursor.get_children() if c.kind.is_expression() or c.kind.is_unexposed()]

    def operatorOf(self, cursor):
        """The operator and its two operands as ranges, or none."""
        parts = self.operands(cursor)
        if len(parts) < 2:
            return None
        left, right = parts[0], parts[-1]
        operator = self.between(left.extent.end.offset, right.extent.start.offset)
        return operator, left, right

    def binary(self, cursor):
        found = self.operatorOf(cursor)
        if not found or found[0] not in INSTEAD:
            return
        operator, left, right = found
        a = self.text[cursor.extent.start.offset:left.extent.end.offset].decode()
        b = self.text[right.extent.start.offset:cursor.extent.end.offset].decode()
        # A comparison with itself turned round is what a negated condition says already.
        self.add(cursor, 'operator', [f'{a} {other} {b}' for other in INSTEAD[operator]])
        if operator in ('&&', '||'):
            # The other constant would decide the whole, as forcing that does.
            for operand in (left, right):
                self.condition(operand, ['true' if operator == '&&' else 'false'])

    def unary(self, cursor):
        inner = self.operands(cursor)
        if len(inner) != 1:
            return
        child = inner[0]
        before = self.between(cursor.extent.start.offset, child.extent.start.offset)
        after = self.between(child.extent.end.offset, cursor.extent.end.offset)
        operand = self.of(child)
        if before in ('-', '~', '!', '+'):
            self.add(cursor, 'operator', [f'static_cast<bool>({operand})' if before == '!' else operand])
        elif before in ('++', '--'):
            self.add(cursor, 'operator', [INSTEAD[before][0] + operand, operand])
        elif after in ('++', '--'):
            self.add(cursor, 'operator', [operand + INSTEAD[after][0], operand])

    def condition(self, cursor, forced=('true', 'false')):
        text = self.of(cursor)
        alternatives = list(forced)
        inner = cursor
        while inner.kind in (K.UNEXPOSED_EXPR, K.PAREN_EXPR) and len(list(inner.get_children())) == 1:
            inner = next(inner.get_children())
        found = self.operatorOf(inner) if inner.kind == K.BINARY_OPERATOR else None
        negatedAlready = (found and found[0] in RELATIONAL) or text.startswith('!') or inner.kind == K.CXX_BOOL_LITERAL_EXPR
        if not negatedAlready and not (found and found[0] in ('&&', '||')):
            alternatives.append(f'!({text})')
        self.add(cursor, 'condition', alternatives)

    def conditional(self, cursor):
        self.condition(self.operands(cursor)[0])

    def branch(self, cursor):
        parts = list(cursor.get_children())
        head = self.text[cursor.extent.start.offset:parts[0].extent.start.offset]
        if b'constexpr' in head:
            self.skipped += 1
            return
        statements = []
        for i, part in enumerate(parts):
            before = self.between(parts[i - 1].extent.end.offset, part.extent.start.offset) if i else ''
            if i and (before.endswith(')') or ')' in before or before.endswith('else') or statements):
                statements.append(part)
        for part in parts:
            if part not in statements and part.kind.is_expression() and part == parts[len(parts) - len(statements) - 1]:
                self.condition(part)
        for part in statements:
            self.statement(part)

    def loop(self, cursor):
        parts = list(cursor.get_children())
        if cursor.kind == K.DO_STMT:
            body, conditions = parts[0], parts[1:]
        else:
            body, conditions = parts[-1], parts[:-1]
        if cursor.kind == K.FOR_STMT:
            conditions = [p for p in conditions if p.kind.is_expression() and
                          self.text[p.extent.end.offset:p.extent.end.offset + 40].lstrip().startswith(b';') and
                          b';' in self.text[cursor.extent.start.offset:p.extent.start.offset]]
        if cursor.kind != K.CXX_FOR_RANGE_STMT:
            for part in conditions[-1:]:
                if part.kind.is_expression() and self.of(part) != 'true':
                    self.condition(part)
        self.statement(body)

    def block(self, cursor):
        parts = list(cursor.get_children())
        for part in parts[1:] if cursor.kind == K.CASE_STMT else parts:
            self.statement(part)

    def statement(self, cursor):
        """Leaves it out where it is one of those that do something."""
        if cursor.kind == K.UNEXPOSED_STMT:  # with an attribute, such as [[unlikely]]
            for child in cursor.get_children():
                self.statement(child)
            return
        inner = cursor
        while inner.kind == K.UNEXPOSED_EXPR and len(list(inner.get_children())) == 1:
            inner = next(inner.get_children())
        text = self.of(cursor)
        end = self.text.find(b';', cursor.extent.end.offset)
        if self.inMacro(cursor.extent.start.offset) or end < 0 or self.between(cursor.extent.end.offset, end):
            return
        leave = inner.kind in JUMPS or inner.kind in (K.CXX_DELETE_EXPR, K.CXX_THROW_EXPR, K.COMPOUND_ASSIGNMENT_OPERATOR)
        if inner.kind == K.CALL_EXPR or (inner.kind == K.RETURN_STMT and text == 'return'):
            leave = True
        if inner.kind == K.BINARY_OPERATOR:
            found = self.operatorOf(inner)
            leave = leave or (found is not None and found[0].endswith('=') and found[0] not in RELATIONAL)
        if inner.kind == K.UNARY_OPERATOR:
            leave = text.startswith(('++', '--')) or text.endswith(('++', '--'))
        if leave:
            self.discarded.add((cursor.extent.start.offset, cursor.extent.end.offset))
            self.add(cursor, 'statement', [''], statement=True, end=end + 1)

    def default(self, cursor):
        """What stands for nothing in the type of an expression."""
        type_ = cursor.type.get_canonical()
        if type_.kind == T.BOOL:
            return 'false'
        if type_.kind in INTEGERS | FLOATS:
            return f'static_cast<{type_.spelling.replace("const ", "")}>(0)'
        if type_.kind == T.POINTER:
            return 'nullptr'
        if type_.kind == T.ENUM or type_.kind in (T.DEPENDENT, T.UNEXPOSED):
            return f'::defaultOf<decltype({self.of(cursor)})>()'
        return None

    def call(self, cursor):
        if cursor.spelling.startswith('operator') and not cursor.spelling[8:9].isalnum():
            found = self.operatorOf(cursor)
            if found and found[0] in INSTEAD:
                return self.binary(cursor)
            return self.unary(cursor) if len(self.operands(cursor)) == 1 else None
        extent = (cursor.extent.start.offset, cursor.extent.end.offset)
        condition = self.places.get((*extent, 'condition'))
        if extent in self.discarded or (condition and 'false' in condition.alternatives):
            return None
        called = cursor.referenced
        if called is not None and called.result_type.kind in (T.LVALUEREFERENCE, T.RVALUEREFERENCE):
            return None
        first = next(cursor.get_children(), None)
        if self.of(cursor).endswith('()') and first is not None and first.kind in (K.TYPE_REF, K.TEMPLATE_REF):
            return None  # the default itself
        if self.of(cursor).endswith('}') or '[' in self.of(cursor).split('(')[0]:
            return None
        default = self.default(cursor)
        if default:
            self.add(cursor, 'call', [default])
        return None

    def returned(self, cursor):
        parts = list(cursor.get_children())
        end = self.text.find(b';', cursor.extent.end.offset)
        if not parts or self.inMacro(cursor.extent.start.offset):
            return
        value = parts[0]
        inner = value
        while inner.kind == K.UNEXPOSED_EXPR and len(list(inner.get_children())) == 1:
            inner = next(inner.get_children())
        text = self.of(value)
        if text in ('0', 'false', 'true', 'nullptr', '{}', '*this'):  # as it is, or mutated as a constant
            return
        default = self.default(value)
        if inner.kind == K.CALL_EXPR and default and not inner.spelling.startswith('operator'):
            return  # replaced as a call
        known = default and not default.startswith('::')
        self.add(cursor, 'return', [f'return {default if known else "{}"};'], statement=True, end=end + 1)


def findPlaces(source, arguments, wanted):
    """The places and keywords of every wanted file (path → name) that the source is made of; and how many parts work
    while compiling alone."""
    unit = Index.create().parse(source, args=arguments, options=TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
    errors = [str(d) for d in unit.diagnostics if d.severity >= 3]
    if errors:
        raise SystemExit('\n'.join(errors))
    macros, tops = {}, {}
    for cursor in unit.cursor.get_children():
        file = cursor.location.file and cursor.location.file.name
        if file in wanted:
            if cursor.kind == K.MACRO_INSTANTIATION:
                extent = (cursor.extent.start.offset, cursor.extent.end.offset)
                macros.setdefault(file, []).append(extent)
            elif not cursor.kind.is_preprocessing():
                tops.setdefault(file, []).append(cursor)
    result = {}
    for file, cursors in tops.items():
        with open(file, 'rb') as stream:
            walk = Walk(file, wanted[file], stream.read(), macros.get(file, []))
        for cursor in cursors:
            walk.visit(cursor)
        result[wanted[file]] = (list(walk.places.values()), list(walk.keywords.values()), walk.skipped)
    return result
