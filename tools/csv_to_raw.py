#!/usr/bin/env python3
"""Makes a raw file, which zyrrad lays over a map, out of a table with commas.

    tools/csv_to_raw.py TABLE.csv FILE.raw [-t TITLE] [-d DATE] [-m MODEL.raw] ID LAT LON COLUMN[:FORMAT]...

ID, LAT and LON name the columns of the identifier and the position (degrees,
east positive); each further COLUMN becomes a value with that plot format, such
as "temp:%1.0f:ul:co=red". Lines that begin with "#" are comments; the first
other line names the columns. An empty field is missing. DATE is a label such
as "1800Z 02 JAN 26". A column without a format takes that of the field of its
name in the header of MODEL.raw: with etc/stations.raw rows become station
models. The radar sites of etc/ are made by

    tools/csv_to_raw.py radar_sites.csv etc/radars.raw -t "Weather radars" \\
        icao lat lon icao:text:tc type:text:bc:hi=.7 elevation_m:%1.0f:lc:hi=.7
"""
import csv
import sys


def word(text):
    """A field as one word: blanks as "_"; what would end or split it goes."""
    text = "_".join(text.split()).replace(":", ";").replace("=", "~")
    return text or "-"


def take_options(args):
    options = {"-t": "", "-d": "", "-m": ""}
    rest = []
    while args:
        arg = args.pop(0)
        if arg in options and args:
            options[arg] = args.pop(0)
        else:
            rest.append(arg)
    return options, rest


def read_model(name):
    """Description and format, "info:format", of each field of a raw file's header."""
    if not name:
        return {}
    with open(name, encoding="utf-8") as f:
        fields = f.read().split("$")[0].split("\n", 3)[-1].split()
    return {field.partition(":")[0]: field.partition(":")[2] for field in fields}


def main():
    options, args = take_options(sys.argv[1:])
    if len(args) < 5:
        sys.exit(__doc__)
    table, out, columns = args[0], args[1], args[2:5]
    values = [arg.partition(":") for arg in args[5:]]
    with open(table, newline="", encoding="utf-8") as f:
        rows = list(csv.DictReader(line for line in f if not line.startswith("#")))
    for name in columns + [v[0] for v in values]:
        if rows and name not in rows[0]:
            sys.exit("%s: no column %s" % (table, name))
    model = read_model(options["-m"])
    with open(out, "w", encoding="utf-8") as f:
        f.write("ZYRRAW\n%s\n!%s\nid lat lon\n" % (options["-d"], options["-t"] or table))
        for name, _, form in values:
            look = word(name) + ":" + form if form else model.get(name, word(name))
            f.write("%s:%s\n" % (word(name), look))
        f.write("$\n")
        for row in rows:
            f.write(" ".join(word(row[name] or "") for name in columns + [v[0] for v in values]) + "\n")


if __name__ == "__main__":
    main()
