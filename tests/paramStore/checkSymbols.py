#!/usr/bin/env python3
"""Compares what the store library exports with the list that its users may rely on.

    checkSymbols.py LIBRARY LIST            says what differs; exits non-zero when anything does
    checkSymbols.py LIBRARY LIST --write    writes the list anew, after a deliberate addition
"""
import os
import re
import subprocess
import sys

SONAME = "libArithmParamMgr.so.1"
CLASSES = ("ArithmParam", "ArithmParamMgr", "ParamDIB", "ParamGray8", "ParamGray16", "ParamPoints", "ParamLines",
           "ParamPolys", "ParamAreas", "ParamStrings")
MEMBER_OF_OURS = re.compile(rf"^(?:{'|'.join(CLASSES)})::~?\w+\(.*\)(?: const)?$")
HEADER = "# What the store library exports; none of it may disappear while its SONAME stays.\n"


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def exported(library):
    """Mangled name -> kind, as nm names the kinds: T is an ordinary function, W a weak one."""
    lines = output_of(os.environ.get("NM", "nm"), "-D", "--defined-only", library).split("\n")
    return {fields[-1]: fields[-2] for fields in map(str.split, lines) if len(fields) > 1}


def readable(names):
    text = subprocess.run(["c++filt"], input="\n".join(names), capture_output=True, text=True, check=True).stdout
    return dict(zip(names, text.split("\n")))


def listed(path):
    with open(path, encoding="utf-8") as file:
        return {line.split()[0] for line in file if line.strip() and not line.startswith("#")}


def soname(library):
    found = re.search(r"\(SONAME\).*\[(.*)\]", output_of("readelf", "-d", library))
    return found.group(1) if found else ""


def write(path, symbols):
    names = readable(sorted(symbols))
    with open(path, "w", encoding="utf-8") as file:
        file.write(HEADER)
        file.writelines(f"{symbol}  {name}\n" for symbol, name in names.items())


def differences(library, path):
    symbols, expected = exported(library), listed(path)
    names = readable(sorted(symbols.keys() | expected))
    found = [f"disappeared: {names[symbol]} ({symbol})" for symbol in sorted(expected - symbols.keys())]
    found += [f"not listed: {names[symbol]} ({symbol})" for symbol in sorted(symbols.keys() - expected)]
    found += [f"not a member function of a public class: {names[symbol]}" for symbol in sorted(symbols)
              if not MEMBER_OF_OURS.match(names[symbol])]
    found += [f"an inline function or a datum, not an ordinary function: {names[symbol]}"
              for symbol, kind in sorted(symbols.items()) if kind != "T"]
    if soname(library) != SONAME:
        found.append(f"the SONAME is {soname(library)}, not {SONAME}")
    return found


def main():
    library, path = sys.argv[1:3]
    if sys.argv[3:] == ["--write"]:
        write(path, exported(library))
    found = differences(library, path)
    print("\n".join(found) if found else f"{len(listed(path))} symbols, as listed")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
