"""GDB pretty-printers for the types of the Varek runtime, and the flight recorder as text.

    (gdb) source varek_printers.py
    (gdb) print *exception
    (gdb) varek-dump 20

All of it reads memory and runs nothing in the program, so it serves a crashed one as well.

A class here stands for one C++ type and reads it as `self.value`; fields of a type are named in its
class only, and only as `self.value["field"]`.
"""

import functools
import time

import gdb
import gdb.printing
import gdb.types


class Unreadable(gdb.GdbError):
    """What lies there cannot be an object of its type."""


FAILURES = (gdb.error, Unreadable)


def expect(plausible):
    """Raises `Unreadable` for what no sound object shows."""
    if not plausible:
        raise Unreadable("not initialised, or overwritten")


def readable(value):
    """A value that GDB can print, or the reason why it cannot."""
    try:
        if isinstance(value, gdb.Value):
            value.fetch_lazy()
    except gdb.error as reason:
        return f"<{reason}>"
    return value


def signed(number, bits=32):
    """The low bits of a number, as the log prints them."""
    half = 1 << (bits - 1)
    return (int(number) + half) % (2 * half) - half


class View:
    """An object of one type, the type's name being matched by `pattern`."""

    def __init__(self, value):
        self.value = value


class Printer(View):
    """A view that GDB prints as the text of `describe`, or as the reason why it cannot be read."""

    def to_string(self):
        try:
            return self.describe()
        except FAILURES as reason:
            return f"<{reason}>"


class Container(Printer):
    """A printer with children, the pairs of a name and a value that `parts` gives."""

    def children(self):
        try:
            self.describe()
        except FAILURES:
            return  # the text has told
        try:
            for name, value in self.parts():
                yield name, readable(value)
        except FAILURES as reason:
            yield "unreadable", f"<{reason}>"


class List(Container):
    """A container whose parts need no names."""

    def display_hint(self):
        return "array"


# What the framework takes from the standard library


def content(wrapper, contained):
    """What a wrapper of the library holds that is nothing else in memory."""
    expect(wrapper.address is not None)
    return wrapper.address.cast(contained.pointer()).dereference()


def atomic(wrapper):
    """The value of a std::atomic."""
    return content(wrapper, wrapper.type.strip_typedefs().template_argument(0))


def owned(wrapper):
    """The pointer in a std::unique_ptr, to the first element if it owns an array."""
    target = wrapper.type.strip_typedefs().template_argument(0)
    if target.code == gdb.TYPE_CODE_ARRAY:
        target = target.target()
    return content(wrapper, target.pointer())


def behind(node, contained):
    """The content of a library's node, which follows its links."""
    return (node + 1).cast(contained.pointer()).dereference()


class StdString(View):
    pattern = r"std::(__cxx11::)?basic_string<.*>"

    def length(self):
        length = int(self.value["_M_string_length"])
        expect(length <= 0x7FFFFFFF)
        return length

    def start(self):
        return self.value["_M_dataplus"]["_M_p"]

    def literal(self):
        """For GDB to print, with its own limit on the length."""
        return self.start().lazy_string(length=self.length())

    def part(self, start, length):
        """Characters of a wide one, as far as it has them."""
        start = min(max(start, 0), self.length())
        length = min(max(length, 0), self.length() - start)
        return (self.start() + start).string("utf-16-le", "replace", length)


class StdPair(View):
    pattern = r"std::pair<.*>"

    def both(self):
        self.value.fetch_lazy()
        return self.value["first"], self.value["second"]


class StdTreeNode(View):
    pattern = r"std::_Rb_tree_node_base"

    @staticmethod
    def tree(root, levels=64):
        """Pointers to the nodes, in order. A balanced tree has fewer levels than that."""
        expect(levels > 0)
        return StdTreeNode(root.dereference()).walk(levels) if root else ()

    def walk(self, levels):
        self.value.fetch_lazy()
        yield from StdTreeNode.tree(self.value["_M_left"], levels - 1)
        yield self.value.address
        yield from StdTreeNode.tree(self.value["_M_right"], levels - 1)


class StdMap(View):
    pattern = r"std::map<.*>"

    def pairs(self):
        root = self.value["_M_t"]["_M_impl"]["_M_header"]["_M_parent"]
        pair = self.value.type.strip_typedefs().template_argument(3).template_argument(0)
        for node in StdTreeNode.tree(root):
            yield StdPair(behind(node, pair)).both()


class StdListNode(View):
    """A pointer to a node."""

    pattern = r"std::__detail::_List_node_base"

    def next(self):
        return self.value["_M_next"]


class StdList(View):
    pattern = r"std::(__cxx11::)?list<.*>"

    def __len__(self):
        length = int(self.value["_M_impl"]["_M_node"]["_M_size"])
        expect(length <= 0x7FFFFFFF)
        return length

    def __iter__(self):
        element = self.value.type.strip_typedefs().template_argument(0)
        node = self.value["_M_impl"]["_M_node"]["_M_next"]
        for _ in range(len(self)):
            yield behind(node, element)
            node = StdListNode(node).next()


# foundation/


class MString(Printer):
    pattern = r"MString"

    def length(self):
        length = int(self.value["length"])
        expect(0 <= length <= int(self.value["capacity"]))
        return length

    def describe(self):
        return self.value["data"].lazy_string(length=self.length())

    def text(self):
        length = min(self.length(), 1000)
        return self.value["data"].string("utf-16-le", "replace", length) if length else ""


def pointee(pointer):
    """What a pointer points to, or the pointer itself if that is nothing."""
    return pointer.dereference() if pointer else pointer


def actual(pointer):
    """The pointer as one to the class that the object really is, if that can be told."""
    try:
        return pointer.cast(pointer.dynamic_type)
    except gdb.error:
        return pointer


class MTypedPtrArray(List):
    pattern = r"MTypedPtrArray<.*>"

    def count(self):
        count = int(self.value["count"])
        expect(0 <= count <= int(self.value["allocated"]))
        return count

    def describe(self):
        return f"MTypedPtrArray of length {self.count()}, capacity {self.value['allocated']}"

    def parts(self):
        for index in range(self.count()):
            yield f"[{index}]", pointee(self.value["elements"][index])


class MError(Container):
    pattern = r"MError(OutOfMemory)?"

    def describe(self):
        name = gdb.types.get_basic_type(self.value.type).name
        return f"{name} {MString(self.value['code']).text() or 'without a Code'}"

    def parts(self):
        for name, text in StdMap(self.value["parameters"]).pairs():
            yield "name", name
            yield "text", text

    def display_hint(self):
        return "map"


class MException(List):
    pattern = r"MException"

    def chain(self):
        chain = owned(self.value["chain"])
        return StdList(chain.dereference()) if chain else []

    def describe(self):
        return f"MException of length {len(self.chain())}, the failure last"

    def parts(self):
        for index, entry in enumerate(self.chain()):
            yield f"[{index}]", pointee(actual(owned(entry)))


# engine/


class MThreadSafeFifo(Container):
    pattern = r"MThreadSafeFifo<.*>"

    def count(self):
        count = int(self.value["count"])
        expect(0 <= count <= int(self.value["capacity"]))
        return count

    def describe(self):
        capacity = self.value["capacity"]
        return f"MThreadSafeFifo of length {self.count()}, capacity {capacity}, oldest first"

    def parts(self):
        for index in range(self.count()):
            place = (int(self.value["head"]) + index) % int(self.value["capacity"])
            element = actual(self.value["buffer"][place])
            yield f"[{index}] {element.type.target()}", element


# diagnostics/


class KLogName(View):
    """A name, whose text follows it."""

    pattern = r"KLogNames::Name"

    def key(self):
        return int(self.value["key"])

    def older(self):
        return self.value["older"]

    def text(self):
        length = min(int(self.value["length"]), 1000)
        start = (self.value.address + 1).cast(gdb.lookup_type("char").pointer())
        return start.string("latin-1", length=length)


class KLogNames(Container):
    pattern = r"KLogNames"

    MOST = 1000000  # more than a process has

    def __iter__(self):
        """The names, the newest first."""
        name = atomic(self.value["newest"])
        for _ in range(self.MOST):
            if not name:
                return
            found = name.dereference()
            found.fetch_lazy()
            yield KLogName(found)
            name = KLogName(found).older()

    def describe(self):
        return f"KLogNames of length {len(list(self))}, newest first"

    def parts(self):
        for name in self:
            yield f"[{name.key()}]", name.text()


class Names:
    """What a log calls the numbers in its records."""

    def __init__(self, events=(), ids=(), states=(), objects=(), threads=()):
        self.events = Names.read(events)
        self.ids = Names.read(ids)
        self.states = Names.read(states)
        self.objects = Names.read(objects, number=int)
        self.threads = Names.read(threads)

    @staticmethod
    def read(names, number=signed):
        """The names by number, as far as they can be read."""
        texts = {}
        try:
            for name in names:
                texts[number(name.key())] = name.text()
        except FAILURES:
            pass
        return texts

    @staticmethod
    def of_module():
        """Those of the module's own log."""
        try:
            return KLogger.of_module().names
        except FAILURES:
            return Names()


class KLogRecord(Printer):
    """A record, its numbers named by a log: the module's unless told otherwise."""

    pattern = r"KLogRecord"

    ROOT_ERROR, WARNING, STATE_CHANGE, MESSAGE_SEND, TIMING_POINT = -105, -101, -25, -21, 0

    def __init__(self, value, log=None):
        super().__init__(value)
        self.log = log

    @functools.cached_property
    def names(self):
        return self.log.names if self.log else Names.of_module()

    def is_written(self):
        return self.time() != 0

    def time(self):
        return int(self.value["time"])

    def describe(self):
        return self.sentence() if self.is_written() else "KLogRecord never written"

    def sentence(self):
        """The line for people, as a dump has it."""
        names = self.names
        address = int(self.value["object"])
        return (names.events.get(int(self.value["kind"]), "unknown event")
                + self.parameters()
                + f" in_class {names.ids.get(signed(self.value['classId']), '(unknown)')}"
                + self.point()
                + f" for_object {address:016X} ({names.objects.get(address, 'unknown')})"
                + self.thread())

    def parameters(self):
        kind = int(self.value["kind"])
        number = signed(self.value["param1"])
        if self.ROOT_ERROR <= kind <= self.WARNING:
            return f" {self.names.ids.get(number, '(unknown)')}"
        if kind == self.STATE_CHANGE:
            key = signed(int(self.value["classId"]) * 100 + number)
            return f" to {self.names.states.get(key, f'state_{number}')}"
        if kind == self.MESSAGE_SEND:
            return f" {self.names.states.get(number, number)}"
        if kind == self.TIMING_POINT:
            return f" ({number}, {signed(self.value['param2'])})"
        return ""

    def point(self):
        point = signed(self.value["pointId"])
        if point not in self.names.ids and int(self.value["kind"]) == self.TIMING_POINT:
            return f" at_point {point}"
        return f" at {self.names.ids.get(point, '(unknown)')}"

    def thread(self):
        thread = signed(self.value["threadId"])
        return f" in_thread {thread} ({self.names.threads.get(thread, 'unknown')})" if thread else ""

    def numbers(self):
        """What the line for tools has behind the time."""
        words = (self.value["kind"], self.value["param1"], self.value["param2"],
                 self.value["classId"], self.value["pointId"])
        numbers = [signed(word) for word in words]
        return numbers + [signed(self.value["object"], 64), signed(self.value["threadId"])]


class KLogger(Container):
    pattern = r"KLogger"

    MODULE_LOGGER = "(anonymous namespace)::moduleLogger"
    BLOCK = 1024  # records fetched at once, since a fetch costs more than what it brings

    def __init__(self, value):
        super().__init__(value)
        self.blocks = {}

    @staticmethod
    def of_module():
        """The program's own, or that of a module. It needs no debug information to be found."""
        pointer = gdb.parse_and_eval(f"*(KLogger**)&'{KLogger.MODULE_LOGGER}'")
        expect(pointer)
        return KLogger(pointer.dereference())

    @staticmethod
    def named(name):
        """That of a program or module by the name of its file, or what an expression gives."""
        try:
            symbol = gdb.lookup_objfile(name).lookup_static_symbol(KLogger.MODULE_LOGGER)
        except ValueError:
            return KLogger(gdb.parse_and_eval(name))
        if not symbol:
            raise gdb.GdbError(f"{name} has no flight recorder, or is stripped")
        expect(symbol.value())
        return KLogger(symbol.value().dereference())

    @functools.cached_property
    def names(self):
        return Names(events=KLogNames(self.value["eventNames"]),
                     ids=KLogNames(self.value["idNames"]),
                     states=KLogNames(self.value["stateNames"]),
                     objects=KLogNames(self.value["objectNames"]),
                     threads=KLogNames(self.value["threadNames"]))

    def capacity(self):
        capacity = int(self.value["capacity"])
        expect(self.value["records"] and capacity == int(self.value["ringCapacity"]))
        return capacity

    def record(self, slot):
        block, place = divmod(slot, self.BLOCK)
        if block not in self.blocks:
            self.blocks[block] = self.fetch(block * self.BLOCK)
        return KLogRecord(self.blocks[block][place], self)

    def fetch(self, slot):
        first = self.value["records"][slot]
        block = content(first, first.type.array(self.BLOCK - 1))
        block.fetch_lazy()
        return block

    def slots(self):
        """The slots in use, oldest first."""
        capacity = self.capacity()
        following = (int(atomic(self.value["writeIndex"])) + 1) % 0x100000000
        oldest = following % capacity
        if self.record(oldest).is_written():
            return [*range(oldest, capacity), *range(oldest)]
        expect(following <= capacity)
        return range(following)

    @functools.cached_property
    def frequency(self):
        frequency = int(self.value["counterFrequency"])
        expect(frequency > 0)
        return frequency

    def seconds(self, ticks):
        """As a dump has them: rounded down where negative, the digits counting upward."""
        seconds, rest = divmod(abs(ticks), self.frequency)
        micro = rest * 1000000 // self.frequency
        if ticks < 0:
            seconds, micro = -seconds - (micro > 0), -micro % 1000000
        return f"{seconds}.{micro:06}"

    def describe(self):
        return f"KLogger with {len(self.slots())} of {self.capacity()} records, newest first"

    def parts(self):
        slots = self.slots()
        for slot in reversed(slots):
            record = self.record(slot)
            yield self.seconds(record.time() - self.record(slots[0]).time()), record.describe()

    def header(self, reference):
        start = time.localtime(int(self.value["startWallClock"]["time"]))
        return (f"%% Reference time: {self.seconds(int(self.value['startCounter']) - reference)}"
                f" is approximately {self.value['startWallClock']['millitm']}ms past"
                f" {time.asctime(start).replace('  ', ' 0')}\n%%")

    def dump(self, count):
        """The lines of a dump that has the latest `count` records only."""
        slots = self.slots()
        reference = self.record(slots[0] if slots else 0).time()
        yield self.header(reference)
        for slot in slots[-count:]:
            record = self.record(slot)
            if record.is_written():
                numbers = ", ".join(map(str, record.numbers()))
                yield f"% {record.sentence()}\n    {self.seconds(record.time() - reference)}, {numbers}"


# xml/


class MXmlElementRecord(Printer):
    pattern = r"MXmlElementRecord"

    LEVEL, START_TAG = 0xFFFF, 0x2FFFFF
    DELETED = 0x20000
    FLAGS = {DELETED: "deleted", 0x100000: "no end tag", 0x200000: "ill-formed inside",
             0x800000: "document ill-formed"}

    def flags(self):
        return int(self.value["flagsAndLevel"])

    def is_deleted(self):
        return self.flags() & self.DELETED != 0

    def describe(self):
        start = int(self.value["start"])
        words = [f"level {self.flags() & self.LEVEL}",
                 f"characters {start} to {start + int(self.value['length'])}",
                 f"parent [{self.value['parent']}]",
                 f"first child [{self.value['firstChild']}]",
                 f"next [{self.value['nextSibling']}]"]
        return ", ".join(words + [text for flag, text in self.FLAGS.items() if self.flags() & flag])

    def start_tag(self, text):
        length = int(self.value["tagLengths"]) & self.START_TAG
        return text.part(int(self.value["start"]), min(length, 80))


class MXmlRecordStore(View):
    pattern = r"MXmlRecordStore"

    SHIFT = 16

    def __getitem__(self, index):
        expect(0 <= index < int(self.value["recordCapacity"]))
        segment = owned(self.value["segments"])[index >> self.SHIFT]
        return owned(segment)[index % (1 << self.SHIFT)]


class MXmlMarkup(Container):
    pattern = r"MXmlMarkup"

    def describe(self):
        length = StdString(self.value["documentText"]["characters"]).length()
        place = f"[{self.value['mainIndex']}]" if self.value["mainIndex"] else "no element"
        return f"MXmlMarkup of {length} characters, on {place}"

    def parts(self):
        text = StdString(self.value["documentText"]["characters"])
        yield "text", text.literal()
        yield "finding", StdString(self.value["errorText"]).literal()
        records = MXmlRecordStore(self.value["index"]["records"])
        for index in range(1, int(self.value["index"]["nextFreeIndex"])):
            element = MXmlElementRecord(records[index])
            if not element.is_deleted():
                yield f"[{index}] {element.start_tag(text)}", element.value


class VarekDump(gdb.Command):
    """Print the flight recorder as a dump has it.

varek-dump [COUNT [LOGGER]]

Prints the latest COUNT records, all for 0 or without it. LOGGER is the file name of a module, for the
module's own log, or an expression for a KLogger; without it, it is the program's log, or a module's
if the program has none. All records together are a dump, for whatever reads dumps. The wall clock in
the header is that of this machine's time zone."""

    def __init__(self):
        super().__init__("varek-dump", gdb.COMMAND_DATA, gdb.COMPLETE_EXPRESSION)

    def invoke(self, argument, _from_tty):
        try:
            words, _, name = argument.partition(" ")
            count = int(gdb.parse_and_eval(words or "0"))
            if count < 0:
                raise gdb.GdbError("COUNT is negative")
            logger = KLogger.named(name) if name else KLogger.of_module()
            for text in logger.dump(count):
                print(text)
        except gdb.error as reason:
            raise gdb.GdbError(str(reason)) from reason


def register():
    """Makes the printers known, in place of those of an earlier `source`."""
    printers = gdb.printing.RegexpCollectionPrettyPrinter("varek")
    for printer in (MString, MTypedPtrArray, MError, MException, MThreadSafeFifo, KLogNames,
                    KLogRecord, KLogger, MXmlElementRecord, MXmlMarkup):
        printers.add_printer(printer.__name__, f"^{printer.pattern}$", printer)
    gdb.printing.register_pretty_printer(gdb.current_objfile(), printers, replace=True)


VarekDump()
register()
