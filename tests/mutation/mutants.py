"""Finds what can be changed in a source, and writes the source with all changes in it, each behind a switch.

A mutant is one small change. All are compiled at once: where the source says `a < b`, what is compiled says
`(canbusMutant(17) ? (a <= b) : (a < b))`, so that a run picks its mutant and nothing is compiled again.
"""
import dataclasses
import re
import subprocess

from clang import cindex
from clang.cindex import CursorKind as Kind

SWAPS = {
    "<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"), "==": ("!=",), "!=": ("==",),
    "&&": ("||",), "||": ("&&",),
    "+": ("-",), "-": ("+",), "*": ("+",), "/": ("*",), "%": ("*",),
    "&": ("|",), "|": ("&",), "^": ("|",), "<<": (">>",), ">>": ("<<",),
    "+=": ("-=",), "-=": ("+=",), "*=": ("+=",), "^=": ("|=",), "|=": ("&=",), "&=": ("|=",),
}
COMPARISONS = {"<", "<=", ">", ">=", "==", "!="}
FUNCTIONS = {Kind.FUNCTION_DECL, Kind.CXX_METHOD, Kind.CONSTRUCTOR, Kind.DESTRUCTOR, Kind.FUNCTION_TEMPLATE}
# Their numbers must be known to the compiler, or are none of the program's.
FIXED = {Kind.ENUM_DECL, Kind.STATIC_ASSERT}
DECLARATIONS = FUNCTIONS | {Kind.VAR_DECL, Kind.FIELD_DECL, Kind.PARM_DECL}
LOOPS_AND_BRANCHES = {Kind.IF_STMT, Kind.WHILE_STMT, Kind.FOR_STMT, Kind.CXX_FOR_RANGE_STMT, Kind.CASE_STMT,
                      Kind.DEFAULT_STMT}


@dataclasses.dataclass
class Mutant:
    file: str  # in the tree
    function: str
    kind: str
    start: int  # what is changed: offsets into the source
    end: int
    changed: str  # the text instead; empty for a call that is left out
    kept: str = "{}"  # how the unchanged text stands beside it
    line: int = 0
    before: str = ""  # the whole line, without and with the change: what a mutant is known by
    after: str = ""
    number: int = 0

    def key(self):
        return (self.file, self.function, self.before, self.after)


def one_line(text):
    return re.sub(r"\s+", " ", re.sub(r"//[^\n]*", "", text)).strip()


def compiler_flags(source_folder, host_folder):
    qt = subprocess.run(["pkg-config", "--cflags", "Qt5Core"], check=True, capture_output=True, text=True).stdout
    folders = [source_folder / name for name in ("", "support", "link", "serial", "player", "groups")]
    return ["-x", "c++", "-std=c++17", "-fPIC", *qt.split(), *(f"-I{folder}" for folder in folders),
            f"-I{host_folder}"]


class Source:
    """One source with its mutants."""

    def __init__(self, path, name, flags):
        self.name = name
        self.path = path
        self.bytes = path.read_bytes()
        self.mutants = []
        self.constants = []  # where `constexpr` stands, and what must stand there when it is no constant any more
        unit = cindex.Index.create().parse(str(path), args=flags,
                                           options=cindex.TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
        errors = [str(message) for message in unit.diagnostics if message.severity >= cindex.Diagnostic.Error]
        if errors:
            raise RuntimeError("\n".join(errors))
        own = [cursor for cursor in unit.cursor.get_children() if self.is_own(cursor)]
        self.macros = [cursor.extent for cursor in own if cursor.kind == Kind.MACRO_INSTANTIATION]
        for cursor in own:
            self.walk(cursor, None)
        self.describe()

    # --- the source's text ---

    def is_own(self, cursor):
        """Not in a header, as a default argument is wherever it is used."""
        file = cursor.extent.start.file
        return file is not None and file.name == str(self.path)

    def text(self, start, end):
        return self.bytes[start:end].decode()

    def of(self, cursor):
        return self.text(cursor.extent.start.offset, cursor.extent.end.offset)

    def is_in_macro(self, cursor):
        start = cursor.extent.start.offset
        return any(macro.start.offset <= start < macro.end.offset for macro in self.macros)

    # --- finding ---

    def add(self, kind, cursor, changed, kept="{}", function=None):
        start, end = cursor.extent.start.offset, cursor.extent.end.offset
        self.mutants.append(Mutant(self.name, function or "", kind, start, end, changed, kept))

    def walk(self, cursor, function):
        if cursor.kind in FIXED or not self.is_own(cursor) or self.is_in_macro(cursor):
            return
        if cursor.kind in FUNCTIONS:
            parent = cursor.semantic_parent
            named = parent.kind in (Kind.CLASS_DECL, Kind.STRUCT_DECL)
            function = f"{parent.spelling}::{cursor.spelling}" if named else cursor.spelling
        first = len(self.mutants)
        children = list(cursor.get_children())
        self.look_at(cursor, children, function)
        if cursor.kind == Kind.CASE_STMT:
            children = children[1:]
        for child in children:
            # What stands before a declared name is its type, with the numbers in it.
            if cursor.kind not in DECLARATIONS or child.extent.end.offset > cursor.location.offset:
                self.walk(child, function)
        if cursor.kind == Kind.VAR_DECL and len(self.mutants) > first:
            self.unfreeze(cursor, function)
        if function is None and cursor.kind in (Kind.VAR_DECL, Kind.FIELD_DECL):
            for mutant in self.mutants[first:]:
                mutant.function = cursor.spelling

    def look_at(self, cursor, children, function):
        kind = cursor.kind
        if kind == Kind.INTEGER_LITERAL:
            self.number(cursor, function)
        elif kind == Kind.CHARACTER_LITERAL and self.of(cursor) == r"'\0'":
            self.add("constant", cursor, r"'\1'", function=function)
        elif kind == Kind.CXX_BOOL_LITERAL_EXPR:
            self.add("flag", cursor, "false" if self.of(cursor) == "true" else "true", function=function)
        elif kind in (Kind.BINARY_OPERATOR, Kind.COMPOUND_ASSIGNMENT_OPERATOR):
            self.operator(cursor, children[0], children[1], function)
        elif kind == Kind.CALL_EXPR and cursor.spelling in ("operator==", "operator!="):
            arguments = list(cursor.get_arguments())
            if len(arguments) == 2:
                self.operator(cursor, *arguments, function)
        elif kind == Kind.UNARY_OPERATOR:
            self.unary(cursor, function)
        elif kind == Kind.RETURN_STMT and children and children[0].type.spelling == "bool":
            self.negate("return", children[0], function)
        for condition in self.conditions(cursor, children):
            self.negate("condition", condition, function)
        for statement in self.statements(cursor, children):
            self.removal(statement, function)

    def number(self, cursor, function):
        text = self.of(cursor)
        if not re.fullmatch(r"0x[0-9a-fA-F]+|\d+", text) or self.text(0, cursor.extent.start.offset).endswith("["):
            return
        value = int(text, 0)
        for changed in (value + 1, value - 1):
            self.add("constant", cursor, str(changed), function=function)

    def operator(self, cursor, left, right, function):
        operator = self.sign(left, right)
        pointers = [side.type.get_canonical().kind == cindex.TypeKind.POINTER for side in (left, right)]
        if all(pointers) and operator not in COMPARISONS:
            return
        kind = "comparison" if operator in COMPARISONS else "logic" if operator in ("&&", "||") else "arithmetic"
        others = SWAPS.get(operator, ())
        if len(others) == 2 and Kind.INTEGER_LITERAL in (left.kind, right.kind):
            others = others[1:]  # the other bound is what a changed literal gives
        for other in others:
            changed = f"({self.operand(left)} {other} {self.operand(right)})"
            self.add(kind, cursor, changed, "({})", function)

    def operand(self, cursor):
        text = one_line(self.of(cursor))
        return f"({text})" if self.unwrapped(cursor).kind == Kind.BINARY_OPERATOR else text

    def unary(self, cursor, function):
        text = self.of(cursor)
        other = {"++": "--", "--": "++"}
        if text[:2] in other:
            self.add("arithmetic", cursor, f"({other[text[:2]]}{text[2:]})", "({})", function)
        elif text[-2:] in other:
            self.add("arithmetic", cursor, f"({text[:-2]}{other[text[-2:]]})", "({})", function)
        elif text[0] == "!":
            self.add("condition", cursor, f"bool({one_line(text[1:])})", "bool({})", function)

    def negate(self, kind, cursor, function):
        """Not for what another mutant inverts already."""
        bare = self.unwrapped(cursor)
        text = self.of(bare)
        if bare.kind == Kind.CXX_BOOL_LITERAL_EXPR or bare.kind == Kind.UNARY_OPERATOR and text[0] == "!":
            return
        if bare.kind in (Kind.BINARY_OPERATOR, Kind.CALL_EXPR) and self.compares(bare):
            return
        self.add(kind, cursor, f"!({one_line(self.of(cursor))})", "bool({})", function)

    def compares(self, cursor):
        sides = list(cursor.get_arguments() if cursor.kind == Kind.CALL_EXPR else cursor.get_children())
        if len(sides) != 2 or cursor.kind == Kind.CALL_EXPR and not cursor.spelling.startswith("operator"):
            return False
        return self.sign(*sides) in COMPARISONS

    def sign(self, left, right):
        """The operator between the two."""
        return one_line(self.text(left.extent.end.offset, right.extent.start.offset)).strip(")( ")

    def removal(self, cursor, function):
        bare = self.unwrapped(cursor)
        assigns = bare.kind == Kind.BINARY_OPERATOR and self.sign(*bare.get_children()) == "="
        if (bare.kind == Kind.CALL_EXPR or assigns) and not self.is_in_macro(bare):
            self.add("call" if bare.kind == Kind.CALL_EXPR else "assignment", cursor, "", "void({})", function)

    @staticmethod
    def unwrapped(cursor):
        while cursor.kind in (Kind.UNEXPOSED_EXPR, Kind.PAREN_EXPR):
            children = list(cursor.get_children())
            if len(children) != 1:
                break
            cursor = children[0]
        return cursor

    def conditions(self, cursor, children):
        if cursor.kind in (Kind.IF_STMT, Kind.WHILE_STMT, Kind.CONDITIONAL_OPERATOR):
            found = children[:1]
        elif cursor.kind == Kind.FOR_STMT:
            first, second = self.semicolons(cursor)
            found = [child for child in children if first < child.extent.start.offset < second]
        else:
            found = []
        return [child for child in found if child.kind not in (Kind.DECL_STMT, Kind.VAR_DECL)]

    def semicolons(self, loop):
        """Where the two stand in the head of a `for`."""
        depth, places = 0, []
        start = loop.extent.start.offset
        for offset, character in enumerate(self.of(loop), start):
            depth += {"(": 1, "{": 1, ")": -1, "}": -1}.get(character, 0)
            if character == ";" and depth == 1:
                places.append(offset)
        return places[:2]

    def statements(self, cursor, children):
        """The expressions that stand here as statements."""
        if cursor.kind == Kind.COMPOUND_STMT:
            return children
        if cursor.kind not in LOOPS_AND_BRANCHES or not children:
            return []
        bodies = children[1:] if cursor.kind == Kind.IF_STMT else children[-1:]
        return bodies

    def unfreeze(self, variable, function):
        """A constant that a switch decides is known at run time alone."""
        for token in variable.get_tokens():
            if token.spelling == "constexpr":
                self.constants.append((token.extent.start.offset, token.extent.end.offset,
                                       "const" if function else "inline const"))

    # --- writing ---

    def describe(self):
        # What stands twice in the tree of the compiler (a default argument, a braced list) counts once.
        unique = {(mutant.start, mutant.end, mutant.changed): mutant for mutant in self.mutants}
        self.mutants = sorted(unique.values(), key=lambda mutant: (mutant.start, -mutant.end, mutant.changed))
        seen = {}
        for mutant in self.mutants:
            mutant.line = self.bytes.count(b"\n", 0, mutant.start) + 1
            line_start = self.bytes.rfind(b"\n", 0, mutant.start) + 1
            line_end = self.bytes.find(b"\n", mutant.end)
            shown = mutant.changed or "/* left out */"
            mutant.before = one_line(self.text(line_start, line_end))
            mutant.after = one_line(self.text(line_start, mutant.start) + shown + self.text(mutant.end, line_end))
            seen[mutant.key()] = seen.get(mutant.key(), 0) + 1
            if seen[mutant.key()] > 1:
                mutant.function += f" ({seen[mutant.key()]})"

    def with_switches(self):
        """The source with all its mutants in it, line for line where it was."""
        return self.rendered(0, len(self.bytes), self.mutants)

    def rendered(self, start, end, mutants):
        result, at = [], start
        while mutants:
            outer = mutants[0]
            same = [mutant for mutant in mutants if (mutant.start, mutant.end) == (outer.start, outer.end)]
            inner = [mutant for mutant in mutants[len(same):] if mutant.start < outer.end]
            result += [self.plain(at, outer.start), self.switched(same, inner)]
            at = outer.end
            mutants = mutants[len(same) + len(inner):]
        return "".join(result) + self.plain(at, end)

    def switched(self, same, inner):
        kept = next((mutant.kept for mutant in same if mutant.kept != "{}"), "{}")
        choices = [f"canbusMutant({mutant.number}) ? {mutant.changed or 'void()'} : " for mutant in same]
        return f"({''.join(choices)}{kept.format(self.rendered(same[0].start, same[0].end, inner))})"

    def plain(self, start, end):
        result, at = [], start
        for place, after, instead in self.constants:
            if start <= place < end:
                result += [self.text(at, place), instead]
                at = after
        return "".join(result) + self.text(at, end)
