# Run by gdb on an object file, with `expected` and `dump` set. Prints the shape of each class that the expected file
# names at the beginning of a line: the virtual table from the compiler's class dump, then the data members from the
# debug information, in the order of their places. A base class without virtual operations is part of the value, so its
# members count as the class's own. Template arguments that nobody writes are left out.
import re

import gdb


def short(name):
    name = re.sub(r"std::__cxx11::basic_string<char,.*?> >", "std::string", name)
    while default := re.search(r", std::(allocator|less)<", name):
        end, depth = default.end(), 1
        while depth:
            depth += {"<": 1, ">": -1}.get(name[end], 0)
            end += 1
        name = name[: default.start()] + name[end:]
    return re.sub(r"\b(class|struct) ", "", name.replace(" >", ">"))


def virtual_tables(path):
    tables = {}
    for line in open(path):
        if head := re.match(r"Vtable for (.*)", line):
            slots = tables[short(head[1])] = []
        elif entry := re.match(r"\d+ +(?:\(int \(\*\)\(\.\.\.\)\))?(.*)", line):
            slots.append(short(entry[1]))
    # Two words stand in front; an abstract class has no code for its destructor.
    unnamed = {"0": "(destructor)", "__cxa_pure_virtual": "(pure)"}
    return {name: [unnamed.get(slot, slot) for slot in slots[2:]] for name, slots in tables.items()}


def members(cls, tables):
    # Static members and the pointer to the virtual table have no place of their own here.
    placed = [field for field in cls.fields() if hasattr(field, "bitpos") and not field.artificial]
    for field in sorted(placed, key=lambda field: field.bitpos):
        if not field.is_base_class:
            yield f"member  {field.name}: {short(str(field.type.strip_typedefs()))}"
        elif short(field.name) in tables:
            yield f"base    {short(field.name)}"
        else:
            yield from members(field.type, tables)


tables = virtual_tables(dump)
for name in re.findall(r"^\w.*", open(expected).read(), re.M):
    print(name)
    for slot in tables.get(name, []):
        print("    virtual", slot)
    try:
        for member in members(gdb.lookup_type(name), tables):
            print("   ", member)
    except gdb.error as missing:
        print("   ", missing)
