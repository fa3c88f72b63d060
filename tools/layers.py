#!/usr/bin/env python3
"""Check that calls between modules go down: tools/layers.py BUILD_DIR [-v]

Edges between modules are what the linker sees: a symbol that one object of the
program needs and another one defines. tools/layers.txt lists the layers from the
bottom up and what is excepted. The check fails on an edge that goes up, on a
module that no layer names, and on a circle, be it of two modules in one layer.
-v prints every edge of a circle with its symbols.
"""
import collections
import fnmatch
import pathlib
import subprocess
import sys

# Weak symbols are left out: every object may have a copy of an inline routine.
DEFINED = set("TDBRGSC")


def read_layers(path):
    """Layer number of each module, names of the layers, edges and circles allowed."""
    level, names, allowed, circles = {}, [], set(), []
    for number, line in enumerate(path.read_text().splitlines(), 1):
        words = line.split("#")[0].split()
        if not words:
            continue
        if words[0] in ("allow", "circle"):
            if "#" not in line or words[0] == "allow" and len(words) != 3:
                sys.exit(f"{path}:{number}: allow FROM TO # reason, or circle MODULE... # reason")
            if words[0] == "allow":
                allowed.add((words[1], words[2]))
            else:
                circles.append(words[1:])
            continue
        if not words[0].endswith(":"):
            sys.exit(f"{path}:{number}: a layer is NAME: MODULE...")
        names.append(words[0][:-1])
        for module in words[1:]:
            if module in level:
                sys.exit(f"{path}:{number}: {module} is listed twice")
            level[module] = len(names) - 1
    return level, names, allowed, circles


def is_named(module, names):
    return any(fnmatch.fnmatchcase(module, name) for name in names)


def place(modules, level):
    """Layer of each module: its own name counts before a pattern, the longest pattern first."""
    out, used = {}, set()
    for module in modules:
        fits = [name for name in level if fnmatch.fnmatchcase(module, name)]
        if fits:
            best = max(fits, key=lambda name: ("*" not in name, len(name)))
            out[module] = level[best]
            used.add(best)
    return out, set(level) - used


def read_objects(build):
    """For each module the symbols it defines and those it needs."""
    sources = pathlib.Path(__file__).parent.parent / "src"
    # A build directory keeps the objects of modules that are gone.
    objects = sorted(o for o in build.glob("CMakeFiles/zyr.dir/src/*.cpp.o") if (sources / o.stem).exists())
    objects += sorted(build.glob("CMakeFiles/zyrrad.dir/zyrrad.cpp.o"))
    if not objects:
        sys.exit(f"layers: no objects in {build}")
    text = subprocess.run(["nm", "-P", *map(str, objects)], check=True, capture_output=True, text=True).stdout
    defines, needs, module = {}, {}, ""
    for line in text.splitlines():
        if line.endswith(".cpp.o:"):
            module = pathlib.Path(line).name[: -len(".cpp.o:")]
            defines[module], needs[module] = set(), set()
            continue
        symbol, kind = line.split()[:2]
        if kind == "U":
            needs[module].add(symbol)
        elif kind in DEFINED:
            defines[module].add(symbol)
    return defines, needs


def find_edges(defines, needs):
    owner = {}
    for module, symbols in defines.items():
        for symbol in symbols:
            owner[symbol] = module
    edges = collections.defaultdict(set)
    for module, symbols in needs.items():
        for symbol in symbols:
            if owner.get(symbol, module) != module:
                edges[module, owner[symbol]].add(symbol)
    return edges


def find_circles(modules, edges):
    """Strongly connected components of more than one module (Tarjan)."""
    after = collections.defaultdict(list)
    for a, b in edges:
        after[a].append(b)
    index, low, on_stack, stack, out = {}, {}, set(), [], []

    def visit(v):
        index[v] = low[v] = len(index)
        stack.append(v)
        on_stack.add(v)
        for w in after[v]:
            if w not in index:
                visit(w)
                low[v] = min(low[v], low[w])
            elif w in on_stack:
                low[v] = min(low[v], index[w])
        if low[v] == index[v]:
            circle = []
            while True:
                w = stack.pop()
                on_stack.discard(w)
                circle.append(w)
                if w == v:
                    break
            if len(circle) > 1:
                out.append(sorted(circle))

    sys.setrecursionlimit(10000)
    for v in sorted(modules):
        if v not in index:
            visit(v)
    return out


def readable(symbols):
    text = subprocess.run(["c++filt"], input="\n".join(sorted(symbols)), capture_output=True, text=True).stdout
    return ", ".join(line.split("(")[0] for line in text.splitlines())


def main():
    arguments = [a for a in sys.argv[1:] if a != "-v"]
    if len(arguments) != 1:
        sys.exit(__doc__)
    listed, names, allowed, circles = read_layers(pathlib.Path(__file__).with_name("layers.txt"))
    defines, needs = read_objects(pathlib.Path(arguments[0]))
    edges = find_edges(defines, needs)
    level, unused = place(defines, listed)
    faults = [f"{m}: no layer names it" for m in sorted(defines) if m not in level]
    faults += [f"{m}: a layer names it, but there is no such module" for m in sorted(unused)]
    faults += [f"{a} {b}: allowed, but there is no such edge" for a, b in sorted(allowed - set(edges))]
    kept = {edge: symbols for edge, symbols in edges.items() if edge not in allowed}
    for (a, b), symbols in sorted(kept.items()):
        if a in level and b in level and level[a] < level[b]:
            faults.append(f"{a} ({names[level[a]]}) calls up to {b} ({names[level[b]]}): {readable(symbols)}")
    for circle in find_circles(defines, kept):
        if not any(all(is_named(m, row) for m in circle) for row in circles):
            faults.append("circle of " + " ".join(circle))
        if "-v" in sys.argv:
            for (a, b), symbols in sorted(kept.items()):
                if a in circle and b in circle:
                    print(f"  {a} -> {b}: {readable(symbols)}")
    for fault in faults:
        print(fault)
    print(f"layers: {len(defines)} modules, {len(edges)} edges, {len(allowed)} allowed, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
