"""Who may include whom, as the table of docs/architecture.md says it; for scripts/check.

A row names folders of src, or single sources of it without their ends; what it may include are folders, root headers
without their ends, or single headers. "helpers" stands for what the row that begins with this word names. A folder and a
source may always include their own.
"""
import re

PAGE = "docs/architecture.md"
HEADING = "## Who may include whom"
OWN_PLUGINS = "plugins/*"  # their own CMake project, looked at apart


def names_in(cell):
    return re.findall(r"`([^`]+)`", cell)


def table_of(page):
    """{who: the names that it may include}"""
    section = page.split(HEADING + "\n", 1)[1].split("\n## ", 1)[0]
    rows = [line.strip("| ").split(" | ") for line in section.split("\n") if line.startswith("| ")][1:]
    helpers = next(set(names_in(who)) for who, _ in rows if who.startswith("helpers"))
    table = {}
    for who, what in rows:
        allowed = set(names_in(what)) | (helpers if re.search(r"\bhelpers\b", what) else set())
        for name in names_in(who):
            table.setdefault(name, set()).update(allowed)
    return table


def own_name(source):
    """"taskMgr/taskInfo.cpp" is "taskMgr/taskInfo"."""
    return source.rsplit(".", 1)[0]


def is_allowed(table, source, include):
    """Whether a source below src may include this header of src."""
    name, target = own_name(source), own_name(include)
    folder = source.split("/")[0] if "/" in source else None
    if name == target or (folder and include.startswith(folder + "/")):
        return True
    rules = table.get(name, set()) | table.get(folder, set())
    return bool({target, include, include.split("/")[0]} & rules)


def check(root, files):
    table = table_of((root / PAGE).read_text())
    src = root / "src"
    headers = {str(path.relative_to(src)) for path in src.rglob("*.h")}
    present = {OWN_PLUGINS} | {own_name(str(path.relative_to(src))) for path in src.rglob("*") if path.is_file()} | {
        path.name for path in src.iterdir() if path.is_dir()}
    found = [f"layers: {PAGE} has a row of {who}, which is not there" for who in sorted(table) if who not in present]
    for path in files:
        name = str(path.relative_to(root))
        includes = re.findall(r'^#include ["<]([^">]+)[">]', path.read_text(), re.M)
        if name.startswith("src/"):
            source = name[4:]
            who = source.split("/")[0] if "/" in source else own_name(source)
            if who not in table:
                found.append(f"layers: {PAGE} has no row of {who}")
            # The store's headers name each other plainly, so that they work once installed flat.
            full = [include if include in headers else f"{source.split('/')[0]}/{include}" for include in includes]
            found += [f"layers: {name} may not include {include}" for include in full
                      if include in headers and not is_allowed(table, source, include)]
        elif name.startswith("plugins/"):
            found += [f"layers: {name} may not include src/{include}" for include in
                      re.findall(r'^#include ["<](?:\.\./)+src/([^">]+)', path.read_text(), re.M)]
    return found
