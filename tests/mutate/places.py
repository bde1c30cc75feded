"""Finds what can be changed in a C++ source, and writes the source with every change in it, each behind a switch."""

import re
from collections import Counter
from ctypes import byref, c_uint, c_void_p
from dataclasses import dataclass, field
from functools import cached_property

from clang.cindex import Cursor, CursorKind as K, Index, TranslationUnit, TypeKind as T, conf

RELATIONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "/", "<<": ">>", ">>": "<<", "&": "|", "|": "&", "^": "&"}
ASSIGNMENTS = {f"{old}=": f"{new}=" for old, new in ARITHMETIC.items()}
LOGIC = {"&&": "||", "||": "&&"}
STEPS = {"++": "--", "--": "++"}
BINARY = RELATIONS | ARITHMETIC | ASSIGNMENTS | LOGIC
OVERLOADED = {f"operator{sign}" for sign in BINARY.keys() | STEPS.keys()}

INTEGERS = {T.from_id(kind) for kind in range(T.BOOL.value, T.INT128.value + 1)} | {T.ENUM}
NUMBERS = INTEGERS | {T.FLOAT, T.DOUBLE, T.LONGDOUBLE}
POINTERS = {T.POINTER, T.NULLPTR, T.MEMBERPOINTER}

CLASSES = {K.CLASS_DECL, K.STRUCT_DECL, K.UNION_DECL, K.CLASS_TEMPLATE, K.CLASS_TEMPLATE_PARTIAL_SPECIALIZATION}
SCOPES = CLASSES | {K.NAMESPACE, K.LINKAGE_SPEC, K.FRIEND_DECL, K.UNEXPOSED_DECL}
FUNCTIONS = {K.FUNCTION_DECL, K.CXX_METHOD, K.CONSTRUCTOR, K.DESTRUCTOR, K.CONVERSION_FUNCTION, K.FUNCTION_TEMPLATE}
BLOCKS = {K.COMPOUND_STMT, K.IF_STMT, K.FOR_STMT, K.WHILE_STMT, K.DO_STMT, K.CXX_FOR_RANGE_STMT, K.CASE_STMT,
          K.DEFAULT_STMT}
CLOSED = {K.DECL_REF_EXPR, K.CXX_UNARY_EXPR, K.PARM_DECL, K.TYPE_REF, K.TEMPLATE_REF}  # nothing runs in them
LITERALS = {K.INTEGER_LITERAL, K.FLOATING_LITERAL, K.CHARACTER_LITERAL, K.CXX_BOOL_LITERAL_EXPR}
CONSTANTS = re.compile(r"_MM_SHUFFLE\(|_mm_clmulepi64_si128\(|__builtin_frame_address\(")  # take no variables
LITERAL = re.compile(r"u?8?'.*'|(0[xX][\da-fA-F']+|0[bB][01']+|\d[\d']*)[uUlLzZ]*"
                     r"|[\d.][\d.']*([eE][+-]?\d+)?[fFlL]?")


@dataclass
class Place:
    """A change that can be made. Its parts are texts, where @ asks whether it is chosen, and spans of the source."""
    span: tuple
    change: str
    parts: tuple
    function: str
    line: int
    constant: bool  # perhaps for the compiler alone
    inner: list = field(default_factory=list)
    number: int = 0

    def rendered(self, text):
        asks = f"::zo_mutants::Chosen({self.number})"
        return "".join(part.replace("@", asks) if isinstance(part, str) else render(text, part, self.inner)
                       for part in self.parts)


def render(text, span, places):
    """The span of the source, with the places that lie in it rewritten."""
    written, at = [], span[0]
    for place in sorted(places, key=lambda place: place.span):
        if span[0] <= place.span[0] and place.span[1] <= span[1]:
            written += [text[at:place.span[0]], place.rendered(text)]
            at = place.span[1]
    return "".join(written) + text[at:span[1]]


def offset(location):
    """Of a location in the file; that of a macro's argument is where it was written."""
    file, line, column, at = c_void_p(), c_uint(), c_uint(), c_uint()
    conf.lib.clang_getFileLocation(location, byref(file), byref(line), byref(column), byref(at))
    return at.value


def short(text):
    text = " ".join(text.split())
    return text if len(text) <= 60 else f"{text[:28]} ... {text[-27:]}"


class Node:
    """A node of the syntax tree, with its span of the text."""

    def __init__(self, source, cursor):
        self.source, self.cursor, self.kind = source, cursor, cursor.kind
        end = offset(cursor.extent.end)
        # A macro at the end of another's argument counts by where it starts.
        self.span = offset(cursor.extent.start), source.macros.get(end, end)

    text = cached_property(lambda self: self.source.text[slice(*self.span)])
    type = cached_property(lambda self: self.cursor.type.get_canonical().kind)
    children = cached_property(lambda self: [Node(self.source, child) for child in self.cursor.get_children()])
    in_macro = property(lambda self: self.span[0] in self.source.macros or self.span[1] in self.source.macro_ends)
    beside = property(lambda self: (self.source.text[:self.span[0]].rstrip()[-1:],
                                    self.source.text[self.span[1]:].lstrip()[:1]))

    @cached_property
    def core(self):
        """Without conversions and parentheses."""
        if self.kind in (K.UNEXPOSED_EXPR, K.PAREN_EXPR) and len(self.children) == 1:
            inner = self.children[0]
            if self.kind == K.PAREN_EXPR or inner.span[0] <= self.span[0]:  # not in a != b for !(a == b)
                return inner.core
        return self

    @cached_property
    def operator(self):
        """The text of a unary or binary operator, or what stands there with it."""
        spans, text = [child.span for child in self.children], self.source.text
        if len(spans) == 2:
            return text[spans[0][1]:spans[1][0]].strip()
        return (text[self.span[0]:spans[0][0]] + text[spans[0][1]:self.span[1]]).strip() if spans else ""

    def initialiser(self):
        """Of a variable."""
        conf.lib.clang_Cursor_getVarDeclInitializer.restype = Cursor
        found = conf.lib.clang_Cursor_getVarDeclInitializer(self.cursor)
        found._tu = self.cursor._tu
        return None if found.kind.is_invalid() else Node(self.source, found)


class Source:
    """A file: all its places, the outermost of them, and what was skipped, as pairs of line and reason."""

    def __init__(self, root, name):
        self.name = name
        # One character for each byte, as the compiler counts.
        self.text = (root / name).read_bytes().decode("latin-1")
        self.all, self.outermost, self.skipped = [], [], []
        self.around, self.function, self.constant = [], "", False  # of what is visited
        self.marked = {}  # the spans of conditions and of calls that are statements
        self.seen, self.changes = set(), Counter()
        self.macros, self.macro_ends = {}, set()  # starts of the uses of macros with their ends; ends
        options = ["-x", "c++", "-std=c++20", f"-I{root}/cpp", f"-I{root}/public/include", "-DZO_BUILDING_LIBRARY"]
        unit = Index.create().parse(str(root / name), options,
                                    options=TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
        errors = [str(message) for message in unit.diagnostics if message.severity >= message.Error]
        if errors:
            raise SystemExit("\n".join(errors))
        nodes = [Node(self, top) for top in unit.cursor.get_children()
                 if top.location.file and top.location.file.name == unit.spelling]
        self.macros = dict(node.span for node in nodes if node.kind == K.MACRO_INSTANTIATION)
        self.macro_ends = set(self.macros.values())
        for node in nodes:
            self.declaration(Node(self, node.cursor))

    def rewritten(self):
        return render(self.text, (0, len(self.text)), self.outermost).encode("latin-1")

    def line_of(self, at):
        return self.text.count("\n", 0, at) + 1

    def line_text(self, line):
        return " ".join(self.text.split("\n")[line - 1].split()).encode("latin-1").decode("utf-8")

    # Declarations

    def declaration(self, node):
        if node.kind in FUNCTIONS:
            self.body(node)
        elif node.kind == K.VAR_DECL:
            self.variable(node, at_start=True)
        elif node.kind in SCOPES:
            for child in node.children:
                if child.kind.is_declaration():
                    self.declaration(child)

    def body(self, node):
        """The statements of a function, and the initialisers of a constructor."""
        parts = [child for child in node.children
                 if child.kind in (K.COMPOUND_STMT, K.CXX_TRY_STMT)
                 or node.kind in (K.CONSTRUCTOR, K.FUNCTION_TEMPLATE) and child.kind.is_expression()]
        if parts and parts[-1].text[0] in "{t":  # else it is only declared, or defaulted
            scope = node.cursor.semantic_parent
            name = f"{scope.spelling}::{node.cursor.spelling}" if scope.kind in CLASSES else node.cursor.spelling
            self.within(name, self.text[node.span[0]:parts[-1].span[0]], False, parts, node)

    def variable(self, node, at_start=False):
        value, start = node.initialiser(), offset(node.cursor.location)
        if value is not None and value.span[0] >= start:
            head = self.text[node.span[0]:start]
            fixed = at_start or "static " in head or node.cursor.type.is_const_qualified() and node.type in INTEGERS
            self.within(node.cursor.spelling, head, fixed, [value], node)

    def within(self, name, head, constant, parts, parent):
        """Visits parts of what is declared, unless only the compiler evaluates it."""
        words = set(re.findall(r"\w+", head))
        if "consteval" in words or parent.kind == K.VAR_DECL and words & {"constexpr", "constinit"}:
            return
        before = self.function, self.constant
        self.function = self.function or name
        self.constant = self.constant or constant or "constexpr" in words
        for part in parts:
            self.visit(part, parent)
        self.function, self.constant = before

    # Statements and expressions

    def visit(self, node, parent):
        if node.kind == K.VAR_DECL:
            if parent.kind != K.CXX_FOR_RANGE_STMT:
                self.variable(node)
        elif node.kind.is_declaration():
            self.declaration(node)
        elif node.kind not in CLOSED and node.cursor.location.file is not None:
            self.mark_condition(node)
            self.mark_calls(node)
            depth = len(self.around)
            self.find(node, parent)
            for child in node.children[node.kind == K.CASE_STMT:]:
                self.visit(child, node)
            del self.around[depth:]

    def mark_condition(self, node):
        """Marks the condition of a statement or of ?: for `find`."""
        expressions = [child for child in node.children if child.kind.is_expression()]
        if node.kind in (K.IF_STMT, K.WHILE_STMT, K.DO_STMT) and not re.match(r"if\s+constexpr\b", node.text):
            found = [child for child in expressions if child.beside[1] == ")"]
            if not found:
                self.skip(node, "a declaration is the condition")
        elif node.kind == K.FOR_STMT:
            found = [child for child in expressions if child.beside == (";", ";")]
        else:
            found = node.children[:node.kind == K.CONDITIONAL_OPERATOR]
        core = found[0].core if found else node
        # These have a change of their own that does the same.
        same = core.kind == K.CXX_BOOL_LITERAL_EXPR or core.operator in ("==", "!=", "!")
        if found and (not same or core.kind == K.CALL_EXPR):
            self.marked[core.span] = "condition"

    def mark_calls(self, node):
        """Marks calls whose result is not used for `find`."""
        for child in node.children if node.kind in BLOCKS else ():
            kind = child.core.kind
            if kind == K.CALL_EXPR or kind == K.CXX_STATIC_CAST_EXPR and child.core.type == T.VOID:
                if child.beside[1] == ";":
                    self.marked.setdefault(child.span, "call")

    def find(self, node, parent):
        """The changes of the node itself."""
        mark, text = self.marked.pop(node.span, None), short(node.text)
        if mark == "condition":
            self.add(node, f"{text} -> !({text})", "(@ != static_cast<bool>(", node.span, "))")
        elif mark == "call":
            self.add(node, f"{text}; -> left out", "(@ ? static_cast<void>(0) : static_cast<void>(", node.span, "))")
        if node.kind in LITERALS:
            # Between < and > stands an argument of a template.
            if parent.kind == K.BINARY_OPERATOR or node.beside[0] != "<" and node.beside[1] != ">":
                self.literal(node, node.text)
        elif node.kind in (K.BINARY_OPERATOR, K.COMPOUND_ASSIGNMENT_OPERATOR):
            self.binary(node, *node.children)
        elif node.kind == K.UNARY_OPERATOR:
            self.unary(node, node.children[0])
        elif node.kind == K.CALL_EXPR and node.cursor.spelling in OVERLOADED:
            self.skip(node, "overloaded operator")

    def literal(self, node, text):
        if CONSTANTS.search(self.text[:node.span[0]].rsplit("\n", 1)[-1]):
            self.skip(node, "an intrinsic that takes no variable")
        elif text in ("true", "false"):
            other = "false" if text == "true" else "true"
            self.add(node, f"{text} -> {other}", f"(@ ? {other} : {text})")
        elif LITERAL.fullmatch(text):
            other = f"{text} * 2 + 1" if node.kind == K.FLOATING_LITERAL else f"{text} + 1"
            self.add(node, f"{text} -> {other}", f"(@ ? static_cast<decltype({text})>({other}) : {text})")
        else:
            self.skip(node, "literal of another form")

    def binary(self, node, left, right):
        old, new = node.operator, BINARY.get(node.operator)
        between = self.text[left.span[1]:right.span[0]]
        types = {left.type, right.type}
        change = f"{short(left.text)} {old} {short(right.text)} -> {short(left.text)} {new} {short(right.text)}"
        if new is None:
            if old not in ("=", ",", "<=>", ".*", "->*"):
                self.skip(node, "operator that does not stand alone")
        elif old in LOGIC:
            # The other one, by De Morgan's rule, is this one of the negated operands, negated.
            middle = between.replace(old, f")) {old} (@ != static_cast<bool>(")
            self.add(node, change, "(@ != ((@ != static_cast<bool>(", left.span, middle, right.span, "))))")
        elif not types <= NUMBERS | POINTERS and old not in RELATIONS:
            self.skip(node, "type that depends on a template")
        elif right.type in POINTERS and old not in RELATIONS:
            self.skip(node, "arithmetic of pointers")
        elif old in ASSIGNMENTS or not types <= NUMBERS | POINTERS:
            self.add(node, change, "(@ ? (", left.span, f") {new} (", right.span, ") : (", left.span, ")", between, "(",
                     right.span, "))")
        else:
            both = ", ".join(f"[](auto a, auto b) {{ return a {sign} b; }}" for sign in (new, old))
            self.add(node, change, "(::zo_mutants::Operands{", left.span, between.replace(old, ","), right.span,
                     "}.Apply(@, ", both, "))")

    def unary(self, node, operand):
        old, name = node.operator, short(operand.text)
        if operand.span[0] < node.span[0] or old in ("*", "&", "+"):
            return  # the former is a != b for !(a == b), an overloaded operator
        if old == "!":
            self.add(node, f"!{name} -> {name}", "(@ != ", node.span, ")")
        elif operand.type not in NUMBERS | POINTERS:
            self.skip(node, "type that depends on a template")
        elif old in ("-", "~"):
            self.add(node, f"{old}{name} -> {name}", f"(@ ? {old}(", node.span, ") : (", node.span, "))")
        elif old in STEPS:
            new, prefix = STEPS[old], node.text.startswith(old)
            changed = (new, operand.span) if prefix else (operand.span, new)
            change = f"{old}{name} -> {new}{name}" if prefix else f"{name}{old} -> {name}{new}"
            self.add(node, change, "(@ ? ", *changed, " : ", node.span, ")")
        else:
            self.skip(node, "operator that does not stand alone")

    def add(self, node, change, *parts):
        if node.in_macro:
            self.skip(node, "")
        elif (node.span, change) not in self.seen:  # a macro may repeat its argument
            self.seen.add((node.span, change))
            line, change = self.line_of(node.span[0]), change.encode("latin-1").decode("utf-8", "replace")
            same = self.function, self.line_text(line), change
            self.changes[same] += 1
            if self.changes[same] > 1:
                change += f" #{self.changes[same]}"
            place = Place(node.span, change, parts, self.function, line, self.constant)
            (self.around[-1].inner if self.around else self.outermost).append(place)
            self.around.append(place)
            self.all.append(place)

    def skip(self, node, reason):
        line, reason = self.line_of(node.span[0]), "in a macro" if node.in_macro else reason
        if (node.span[0], reason) not in self.seen:
            self.seen.add((node.span[0], reason))
            self.skipped.append((line, reason))
