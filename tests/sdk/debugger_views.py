"""What the debugger views show of DebuggerSubject.cpp, and whether there is every field they name.

Run by GDB in the root of the repository: ./run test sdk debugger
"""

import ast
import os
import re
import subprocess
import unittest
from contextlib import suppress
from xml.etree import ElementTree

import gdb

PRINTERS = "debugger/varek_printers.py"
NATVIS = "debugger/varek.natvis"
SUBJECT = os.path.abspath("build/release/bin/debugger-subject.exe")
SERVER = "/usr/share/win64/gdbserver.exe"

# Types that have views, and an object of each.
OBJECTS = {
    "MString": "subject.text",
    "MTypedPtrArray<*>": "subject.strings",
    "MError": "subject.error",
    "MErrorOutOfMemory": "subject.outOfMemory",
    "MException": "subject.exception",
    "MThreadSafeFifo<*>": "subject.commands",
    "KLogRecord": "subject.log.records[0]",
    "KLogNames": "subject.log.idNames",
    "KLogger": "subject.log",
    "MXmlElementRecord": "(*(MXmlElementRecord***)&subject.document.index.records.segments)[0][1]",
    "MXmlMarkup": "subject.document",
}


def start_server():
    """A debug server with the subject under Wine, and the port on which it listens. It ends with GDB,
    however that ends."""
    server = subprocess.Popen(
        ["setpriv", "--pdeathsig", "KILL", "cmake/wine-run", os.path.abspath("build/release"),
         SERVER, "--once", "localhost:0", SUBJECT],
        stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    for line in server.stderr:
        if line.startswith("Listening on port"):
            return server, line.split()[-1]
    raise RuntimeError("the debug server did not start")


def command(text):
    return gdb.execute(text, to_string=True)


def run_to_crash(port):
    for text in ("set sysroot /nowhere", "set width 0", "set confirm off",
                 f"file {SUBJECT}", f"target remote localhost:{port}", "continue",
                 f"source {PRINTERS}", f"source {PRINTERS}"):  # twice, as users do
        command(text)


def printed(expression):
    return command(f"output {expression}")


def type_name(expression):
    return gdb.parse_and_eval(expression).type.strip_typedefs().name


def text_of(string):
    return gdb.parse_and_eval(string)["_M_dataplus"]["_M_p"].string()


class Printers(unittest.TestCase):
    """In a program that has crashed."""

    def expect(self, **texts):
        for member, text in texts.items():
            with self.subTest(member):
                self.assertEqual(text, printed(f"subject.{member}"))

    def test_stands_at_the_crash(self):
        self.assertEqual("(anonymous namespace)::Crash", gdb.selected_frame().name())

    def test_text_and_arrays(self):
        self.expect(
            emptyText='L""',
            text='L"\\"Blätter\\" 🍃"',
            noStrings="MTypedPtrArray of length 0, capacity 0",
            strings='MTypedPtrArray of length 2, capacity 4 = {L"two", L"three"}')

    def test_errors(self):
        dry = 'MError Pump.Drain:RunsDry = {[L"level"] = L"00000032h", [L"litres"] = L"80"}'
        self.expect(
            noError="MError without a Code",
            error=dry,
            outOfMemory="MErrorOutOfMemory without a Code",
            noException="MException of length 0, the failure last",
            exception="MException of length 3, the failure last = "
                      f"{{MErrorOutOfMemory without a Code, 0x0, {dry}}}")
        self.assertRegex(printed("(const MError&)subject.error"), f"{re.escape(dry)}$")

    def test_queue(self):
        drain, fill = (int(gdb.parse_and_eval(f"&subject.{name}")) for name in ("drain", "fill"))
        self.expect(
            noCommands="MThreadSafeFifo of length 0, capacity 0, oldest first",
            commands="MThreadSafeFifo of length 2, capacity 2, oldest first = "
                     f"{{[0] (anonymous namespace)::DrainCommand = {drain:#x}, "
                     f"[1] (anonymous namespace)::FillCommand = {fill:#x}}}")

    def test_documents(self):
        self.expect(
            emptyDocument="MXmlMarkup of 0 characters, on no element = "
                          '{text = L"", finding = L"Empty document"}',
            document="MXmlMarkup of 57 characters, on [3] = {"
                     'text = L"<list><item id=\'1\'>first</item><item>second</item></list>", '
                     'finding = L"", '
                     "[1] <list> = level 0, characters 0 to 57, "
                     "parent [0], first child [2], next [0], "
                     "[2] <item id='1'> = level 1, characters 6 to 31, "
                     "parent [1], first child [0], next [3], "
                     "[3] <item> = level 1, characters 31 to 50, "
                     "parent [1], first child [0], next [0]}",
            illFormedDocument="MXmlMarkup of 10 characters, on no element = {"
                              'text = L"<a><b></a>", '
                              'finding = L"End tag \'a\' at offset 7 does not match '
                              'start tag \'b\' at offset 3", '
                              "[1] <a> = level 0, characters 0 to 10, "
                              "parent [0], first child [2], next [0], "
                              "[2] <b> = level 1, characters 3 to 6, "
                              "parent [1], first child [0], next [0], no end tag}")

    def test_log(self):
        sentences = re.findall(r"^% (.*)\n    (.*?),", text_of("subject.dump"), re.M)
        self.assertEqual(6, len(sentences))
        records = ", ".join(f"{time} = {sentence}" for sentence, time in reversed(sentences))
        self.expect(
            emptyLog="KLogger with 0 of 131072 records, newest first",
            log=f"KLogger with 6 of 131072 records, newest first = {{{records}}}")
        self.assertEqual('KLogNames of length 3, newest first = '
                         '{[3] = RunsDry, [2] = Drain, [1] = Pump}', printed("subject.log.idNames"))
        self.assertIn("Message_send 5 in_class (unknown) at ", printed("subject.log.records[2]"))
        self.assertEqual("KLogRecord never written", printed("subject.log.records[6]"))
        newest = command("print -elements 2 -- subject.wrappedLog")
        self.assertEqual(["131073", "131072"], re.findall(r"Timing_point \((\d+), 0\)", newest))
        self.assertIn("KLogger with 131072 of 131072 records", newest)

    def test_dump_is_that_of_the_logger(self):
        lines = text_of("subject.dump").splitlines()
        self.assertEqual(lines, command("varek-dump 0 subject.log").splitlines())
        self.assertEqual(lines[:2] + lines[-4:], command("varek-dump 2 subject.log").splitlines())
        self.assertIn("%% Reference time: ", command("varek-dump"))
        self.assertEqual(command("varek-dump"), command("varek-dump 0 debugger-subject.exe"))
        with self.assertRaisesRegex(gdb.error, 'No symbol "nothing"'):
            command("varek-dump 2 nothing")
        with self.assertRaisesRegex(gdb.error, "COUNT is negative"):
            command("varek-dump -1")

    def test_what_is_no_object_shows_why(self):
        for name in map(type_name, OBJECTS.values()):
            for place in ("zeros", "ones", "overwritten"):
                with self.subTest(name, place=place):
                    text = printed(f"*('{name}'*)subject.{place}")
                    self.assertNotRegex(text, "Traceback|Python")
                    if place == "overwritten" and "Record" not in name:
                        self.assertRegex(text, "^<(not initialised, or|Cannot access)")


def described_types():
    """The types that the subject consists of and leads to, by name."""
    found = {}

    def add(described):
        described = described.strip_typedefs().unqualified()
        if described.code in (gdb.TYPE_CODE_PTR, gdb.TYPE_CODE_ARRAY):
            add(described.target())
        elif described.code == gdb.TYPE_CODE_STRUCT and described.name not in found:
            found[described.name] = described
            for part in [field.type for field in described.fields()] + template_types(described):
                add(part)

    add(gdb.parse_and_eval("subject").type.target())
    return found


def template_types(described):
    """The types among its template arguments."""
    arguments = []
    try:
        while True:
            arguments.append(described.template_argument(len(arguments)))
    except RuntimeError:
        return [argument for argument in arguments if isinstance(argument, gdb.Type)]


def field_type(described, name):
    """The type of a field, which may be a base's; None if there is no such field."""
    if described.code == gdb.TYPE_CODE_PTR:
        described = described.target()
    for field in described.strip_typedefs().fields():
        if field.name == name:
            return field.type
        inherited = field_type(field.type, name) if field.is_base_class else None
        if inherited:
            return inherited
    return None


def has_path(described, path):
    for name in path:
        described = described and field_type(described, name)
    return described is not None


def field_path(node):
    """The names in self.value['a']['b'], or None if it is something else that is subscripted."""
    path = []
    while isinstance(node, ast.Subscript) and isinstance(node.slice, ast.Constant):
        path.insert(0, node.slice.value)
        node = node.value
    return path if ast.unparse(node) == "self.value" else None


def subscripts(tree):
    """The subscripts by a name."""
    return [node for node in ast.walk(tree) if isinstance(node, ast.Subscript)
            and isinstance(node.slice, ast.Constant) and isinstance(node.slice.value, str)]


class Fields(unittest.TestCase):
    """Every field that a view names is one of the type that it names."""

    def test_of_the_printers(self):
        known = described_types()
        with open(PRINTERS, encoding="utf-8") as file:
            named = [(view, subscript) for view in ast.parse(file.read()).body for subscript in subscripts(view)]
        self.assertLess(40, len(named))
        for view, subscript in named:
            with self.subTest(ast.unparse(subscript)):
                path = field_path(subscript)
                self.assertTrue(path, "not a field of self.value")
                pattern = globals()[view.name].pattern
                types = [of for name, of in known.items() if re.fullmatch(pattern, name)]
                self.assertTrue(types, f"no type {pattern}")
                for of in types:
                    self.assertTrue(has_path(of, path), f"{of} has not")


EMBEDDED = "{([^{}]+)}"


def natvis_types():
    """The types of the natvis: elements without their namespace."""
    types = ElementTree.parse(NATVIS).getroot()
    for node in types.iter():
        node.tag = node.tag.rpartition("}")[2]
    return types.findall("Type")


def expressions(node):
    """Those in one element of the natvis, sizes among their format specifiers included."""
    texts = [node.get("Condition", "")] + re.findall(EMBEDDED, node.get("Name", ""))
    if node.tag == "DisplayString":
        texts += re.findall(EMBEDDED, node.text)
    else:
        texts.append(node.text or "")
    for text in texts:
        expression, _, specifier = text.partition(",")
        yield from (part for part in (expression.strip(), *re.findall(r"\[(.+)\]", specifier)) if part)


class NatvisObject:
    """An object on which expressions of the natvis are evaluated, as the other debugger would."""

    KEYWORDS = {"char", "double", "int", "unsigned", "void", "KLogNames", "Name", "MXmlElementRecord"}

    def __init__(self, expression):
        self.expression = expression
        self.variables = {"i"}
        gdb.set_convenience_variable("i", 0)

    def value(self, expression):
        return gdb.parse_and_eval(re.sub(r"(\.|->|\$)?\b[A-Za-z_]\w*", self.in_full, expression))

    def in_full(self, name):
        name = name.group()
        if name in self.KEYWORDS or name[0] in ".-$":
            return name
        if name == "this":
            return f"(&{self.expression})"
        return f"${name}" if name in self.variables else f"{self.expression}.{name}"

    def evaluate_all(self, described):
        """Every expression in the description of a type, variables and steps of a loop included."""
        for node in described.iter():
            for expression in expressions(node):
                self.value(expression)
            if node.tag == "Variable":
                gdb.set_convenience_variable(node.get("Name"), self.value(node.get("InitialValue")))
                self.variables.add(node.get("Name"))


class Natvis(unittest.TestCase):
    """Its expressions evaluated by GDB, which knows the same fields."""

    def test_names_fields_and_types_that_there_are(self):
        types = natvis_types()
        self.assertEqual(set(OBJECTS), {described.get("Name") for described in types})
        for described in types:
            name = described.get("Name")
            with self.subTest(name):
                sample = OBJECTS[name]
                pattern = re.escape(name).replace(r"\*", ".*")
                self.assertRegex(type_name(sample), f"^{pattern}$")
                NatvisObject(sample).evaluate_all(described)

    def test_counts_and_places(self):
        left = next(node for described in natvis_types() for node in described.iter("Variable")
                    if node.get("Name") == "left").get("InitialValue")
        for log, count in (("emptyLog", 0), ("log", 6), ("wrappedLog", 131072)):
            self.assertEqual(count, int(NatvisObject(f"subject.{log}").value(left)))

    def test_kinds_have_the_names_of_the_log(self):
        kinds = {}
        for described in natvis_types():
            for text in described.iter("DisplayString"):
                kind = re.fullmatch(r"kind == (-?\d+)", text.get("Condition", ""))
                if kind:
                    kinds[int(kind.group(1))] = text.text.split()[0]
        names = KLogger(gdb.parse_and_eval("subject.log")).names.events
        self.assertEqual(names, kinds)


def main():
    server, port = start_server()
    try:
        run_to_crash(port)
        return unittest.main(argv=["debugger_views"], exit=False).result.wasSuccessful()
    finally:
        with suppress(gdb.error):
            command("kill")
        server.kill()
        server.wait()


if main():
    gdb.execute("quit 0")  # whatever else becomes of this file, the caller's command counts as failure
