"""Whether docs/behaviour.md and the tests agree, for scripts/check.

Every row names a test, every named test exists, and every test function is named there or in docs/testing.md.
"""
import re

MAP, TESTING = "docs/behaviour.md", "docs/testing.md"
SET_UP = {"initTestCase", "cleanupTestCase", "init", "cleanup"}
NAME = re.compile(r"`(\w*)::(\w+)`")


def programs_of(root):
    """{test program: its source}; a program is called like its source, but for what a CMakeLists.txt says."""
    sources = {}
    for path in [*(root / "tests").rglob("*.cpp"), *(root / "plugins/tests").glob("*.cpp")]:
        sources[path.stem.removesuffix("Test")] = path
    for cmake in (root / "tests").rglob("CMakeLists.txt"):
        for name, source in re.findall(r"lumivant_add_test\((\w+)\s+SOURCES\s+(\w+\.cpp)", cmake.read_text()):
            sources[name] = cmake.parent / source
    return sources


def slots_of(text):
    """The private slots without arguments that a source of Qt Test declares."""
    found = []
    in_slots = False
    for line in text.split("\n"):
        if re.match(r"\s*(public|protected|private|signals|Q_SIGNALS)\b[^;({]*:\s*$", line):
            in_slots = re.match(r"\s*private\s+(slots|Q_SLOTS)\s*:", line) is not None
        elif line.startswith("};"):
            in_slots = False
        elif in_slots:
            found += re.findall(r"^\s+void (\w+)\(\)", line)
    return found


def is_test_program(text):
    return re.search(r"^QTEST_|QTest::qExec", text, re.M) is not None


def tests_of(text):
    """The slots that are neither a table nor set-up."""
    return [name for name in slots_of(text) if name not in SET_UP and not name.endswith("_data")]


def nameable_in(text):
    """What may be named: the slots; of a program without Qt Test its functions."""
    return set(slots_of(text) if is_test_program(text) else re.findall(r"^void (\w+)\(", text, re.M))


def names_in(text):
    """(line, program, function) of each name; `::function` belongs to the program that was named before it."""
    program = ""
    for match in NAME.finditer(text):
        program = match[1] or program
        yield text.count("\n", 0, match.start()) + 1, program, match[2]


def cells_of(line):
    """The cells of a table's row; "|" between backticks or behind a backslash is text."""
    kept = re.sub(r"`[^`]*`|\\\|", lambda match: match.group().replace("|", "\0"), line.strip())
    return [cell.strip().replace("\0", "|") for cell in kept.strip("|").split("|")]


def rows_of(text):
    """(line number, cells) of every row of the tables, their heads left out."""
    lines = text.split("\n")
    for number, line in enumerate(lines, 1):
        is_head = number < len(lines) and lines[number].startswith("|---")
        if line.startswith("|") and not line.startswith("|---") and not is_head:
            yield number, cells_of(line)


def check_map(text, functions):
    """Complaints about the map itself, and what it names."""
    found, named = [], set()
    for number, cells in rows_of(text):
        names = [name[1:] for name in names_in(cells[-1])]
        if len(cells) != 2:
            found.append(f"behaviour: {MAP}:{number} has {len(cells)} cells, not two")
        if not names:
            found.append(f"behaviour: {MAP}:{number} names no test")
        for program, function in names:
            if function not in functions.get(program, []):
                found.append(f"behaviour: {MAP}:{number} names {program}::{function}, which does not exist")
        named.update(names)
    return found, named


def check_testing(text, functions):
    """The same of the page about testing, which names code as well as tests, anywhere."""
    found, named = [], set()
    for number, program, function in names_in(text):
        named.add((program, function))
        looks_like_a_test = program in functions or re.match(r"tst|test[A-Z_]", program)
        if looks_like_a_test and function not in functions.get(program, []):
            found.append(f"behaviour: {TESTING}:{number} names {program}::{function}, which does not exist")
    return found, named


def check(root):
    sources = programs_of(root)
    texts = {program: source.read_text() for program, source in sources.items()}
    functions = {program: nameable_in(text) for program, text in texts.items()}
    found, named = check_map((root / MAP).read_text(), functions)
    more, named_too = check_testing((root / TESTING).read_text(), functions)
    found += more
    proven = {(sources[program], function) for program, function in named | named_too if program in sources}
    seen = set()
    for program, text in sorted(texts.items()):
        if not is_test_program(text) or sources[program] in seen:
            continue
        seen.add(sources[program])
        tests = tests_of(text)
        if not tests:
            found.append(f"behaviour: no test function is found in {sources[program].relative_to(root)}")
        found += [f"behaviour: {program}::{test} stands neither in {MAP} nor in {TESTING}"
                  for test in tests if (sources[program], test) not in proven]
    return found
