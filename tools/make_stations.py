#!/usr/bin/env python3
"""Makes the station files of etc/ from tables of facts.

    tools/make_stations.py FACTS etc

FACTS is a directory with radar_sites.csv and surface_stations.csv, the second
argument the directory to write rad.cty and sao.cty to. The tables hold "#"
comments, a line of column names and rows without quotes.
"""
import csv
import sys

MAX_LINES = 4000  # the program sizes its table for no more


def rows(path):
    with open(path, newline="", encoding="ascii") as f:
        return list(csv.DictReader(line for line in f if not line.startswith("#")))


def line(row, ident, flags, height, wmo):
    name = row["name"].replace(" ", "_")
    if not 0 < len(name) <= 20 or not 0 < len(ident) <= 9 or ident.startswith("-"):
        sys.exit("bad name or identifier: %s %s" % (name, ident))
    return "%-20s %2s %2s %-5s %-3s %8.4f %9.4f %4d %5d\n" % (
        name, row["state"] or "--", row["country"] or "--", ident, flags,
        float(row["lat"]), float(row["lon"]), int(height), int(wmo))


def radars(path):
    sites = rows(path)
    # Three letters first, the way products and messages name a site; then the
    # same sites by four letters, with a priority that keeps them off the map.
    out = [line(r, r["id3"], r["priority"], r["elevation_m"], 99999) for r in sites]
    return out + [line(r, r["icao"], "7", r["elevation_m"], 99999) for r in sites]


def surface(path):
    out = []
    for r in rows(path):
        short = r["kind"] == "vor" or r["icao"].startswith("K")
        ident = r["id3"] if short and r["id3"] not in ("", "-") else r["icao"]
        flags = r["priority"] + ("*" if r["ua"] == "1" else "")
        out.append(line(r, ident, flags, r["elev_m"], r["wmo"]))
    return out


def write(path, lines):
    # The first match wins: no identifier may name a second place, be it as
    # identifier or as name.
    fields = [text.split() for text in lines]
    ids = {}
    for f in fields:
        if ids.setdefault(f[3].lower(), f[5:7]) != f[5:7]:
            sys.exit("%s: two places called %s" % (path, f[3]))
    for f in fields:
        if ids.get(f[0].lower(), f[5:7]) != f[5:7]:
            sys.exit("%s: the name %s is an identifier" % (path, f[0]))
    if len(lines) > MAX_LINES:
        sys.exit("%s: too many lines" % path)
    with open(path, "w", encoding="ascii") as f:
        f.writelines(lines)
    print("%s %d" % (path, len(lines)))


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    facts, target = sys.argv[1:]
    write(target + "/rad.cty", radars(facts + "/radar_sites.csv"))
    write(target + "/sao.cty", surface(facts + "/surface_stations.csv"))


if __name__ == "__main__":
    main()
