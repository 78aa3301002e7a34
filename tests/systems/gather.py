"""What the bundle takes from the system: every class, selector, function, constant and type that its rooms name and
that none of them declares, as clang reads the sources."""
import os

from clang import cindex
from clang.cindex import CursorKind

from clang_command import clang_arguments, commands

ROOMS = ("support", "view", "addressbook", "faxsetting", "plugin")

KINDS = {
    CursorKind.ENUM_CONSTANT_DECL: "constant",
    CursorKind.VAR_DECL: "constant",
    CursorKind.FUNCTION_DECL: "function",
    CursorKind.OBJC_INTERFACE_DECL: "class",
    CursorKind.OBJC_PROTOCOL_DECL: "protocol",
    CursorKind.STRUCT_DECL: "type",
    CursorKind.TYPEDEF_DECL: "type",
    CursorKind.OBJC_INSTANCE_METHOD_DECL: "selector",
    CursorKind.OBJC_CLASS_METHOD_DECL: "selector",
}


class Gatherer:
    def __init__(self, root):
        self.root = os.path.realpath(root)
        self.index = cindex.Index.create()
        self.names = {}
        self.own_selectors = set()
        self.mentioned = {}

    def room_of(self, location):
        """The top folder of a file of ours, or None."""
        if location.file is None:
            return None
        path = os.path.relpath(os.path.realpath(location.file.name), self.root)
        return None if path.startswith("..") else path.split(os.sep)[0]

    def add(self, kind, name, where):
        self.names.setdefault((kind, name), set()).add(os.path.relpath(where, self.root))

    def look_at(self, cursor, source):
        if cursor.kind == CursorKind.OBJC_SELECTOR_EXPR:
            self.mentioned["".join(token.spelling for token in cursor.get_tokens())[len("@selector("):-1]] = source
            return
        if cursor.kind in (CursorKind.OBJC_INSTANCE_METHOD_DECL, CursorKind.OBJC_CLASS_METHOD_DECL):
            self.own_selectors.add(cursor.spelling)
            return
        declared = cursor.referenced
        if declared is None or declared.kind not in KINDS or declared.location.file is None:
            return
        if self.room_of(declared.location) not in (None, "platform"):
            return
        if "/c++/" not in os.path.realpath(declared.location.file.name):
            self.add(KINDS[declared.kind], declared.spelling, source)

    def read(self, command, source):
        unit = self.index.parse(source, clang_arguments(command, source))
        faults = [fault for fault in unit.diagnostics if fault.severity >= cindex.Diagnostic.Error]
        if faults:
            raise RuntimeError(f"{source}: {faults[0]}")
        waiting = [cursor for cursor in unit.cursor.get_children() if self.room_of(cursor.location) in ROOMS]
        while waiting:
            cursor = waiting.pop()
            waiting.extend(cursor.get_children())
            if self.room_of(cursor.location) in ROOMS:
                self.look_at(cursor, source)


def system_names(root, build):
    """{(kind, name): sources} of everything that the rooms of the bundle take from the system."""
    gatherer = Gatherer(root)
    for source, command in commands(build):
        if os.path.relpath(source, root).split(os.sep)[0] in ROOMS:
            gatherer.read(command, source)
    for selector, source in gatherer.mentioned.items():
        if selector not in gatherer.own_selectors:
            gatherer.add("selector", selector, source)
    return gatherer.names
