#!/usr/bin/env python3
"""Check that no state of a module is forgotten between the pictures of a run over a
list: tools/states.py BUILD_DIR

Every variable that the program can write lies in a section .data or .bss of an object.
Its module hands it in by a routine keep_MODULE, or tools/states.txt says why not. The
check fails on a module with neither, and on a row of the file that nothing needs.
"""
import pathlib
import re
import subprocess
import sys

SYMBOL = re.compile(r"^[0-9a-f]+ .{7} (\S+)\t[0-9a-f]+ (.*)$")
PRIVATE = "(anonymous namespace)::"


def main():
    objects = sorted(pathlib.Path(sys.argv[1]).glob("CMakeFiles/zyr.dir/src/*.o"))
    if not objects:
        sys.exit(f"{sys.argv[1]}: no objects of the program")
    rows = {}
    for line in pathlib.Path(__file__).with_name("states.txt").read_text().splitlines():
        words = line.split("#")[0].split()
        if words:
            if "#" not in line:
                sys.exit(f"states.txt: no reason: {line}")
            rows[tuple(words)] = line
    failed, used = [], set()
    for path in objects:
        module = path.name.removesuffix(".cpp.o")
        source = pathlib.Path(__file__).parent.parent / "src" / f"{module}.cpp"
        if not source.exists():
            continue  # a build directory keeps the objects of modules that are gone
        table = subprocess.run(["objdump", "-tC", path], capture_output=True, text=True, check=True)
        keeps, states = False, []
        for line in table.stdout.splitlines():
            found = SYMBOL.match(line)
            if not found:
                continue
            section, name = found.groups()
            keeps |= name.startswith(f"keep_{module}(")
            if " O " in line and re.match(r"\.(data|bss)(?!\.rel\.ro)", section) and PRIVATE in name:
                states.append(name.removeprefix(PRIVATE))
        text = source.read_text()
        for state in states:
            if re.search(rf"^const(expr)? [^;(){{}}=]*\b{state}\b", text, re.MULTILINE):
                continue  # constants that hold addresses lie there, too
            if (module, state) in rows:
                used.add((module, state))
            elif not keeps:
                failed.append(f"{module}: {state} is neither kept (state_keeper.h) nor in states.txt")
    failed += [f"states.txt: needed by nothing: {rows[row]}" for row in rows if row not in used]
    sys.exit("\n".join(failed) if failed else 0)


main()
