"""Puts many changes of one file into one source, of which the environment chooses one; used by scripts/mutate.

Compiling costs more than testing. So a function that is changed in several ways becomes a switch over its variants, and
a constant outside of functions a choice between two values. What cannot be put so is compiled alone.
"""
import re
from dataclasses import dataclass

from mutatePoints import Finder

VARIABLE = "LUMIVANT_MUTANT"
LINES = 100_000  # The lines of variant n are counted from n times this, so that an error tells its variant.
PRELUDE = f"""\
#ifndef LUMIVANT_MUTANT_CHOSEN
#define LUMIVANT_MUTANT_CHOSEN
#include <cstdlib>
inline int lumivantMutant()
{{
    static const int chosen = std::getenv("{VARIABLE}") ? std::atoi(std::getenv("{VARIABLE}")) : 0;
    return chosen;
}}
#endif
#line 1
"""


@dataclass(frozen=True)
class Place:
    """A piece of the source that is written once for each of its variants."""
    start: int
    end: int
    body: bool  # The inside of a function; a constant otherwise.


def _is_body(tokens, partner, brace, first):
    """Whether a brace that lies in no other function opens the body of one."""
    if tokens[brace - 1].text not in (")", "const", "override", "noexcept", "final", "}"):
        return False
    j, words = first, []
    while j < brace:
        words.append(tokens[j].text)
        j = partner.get(j, j) + 1 if tokens[j].text in ("(", "[", "{") else j + 1
    return "(" in words and not {"=", "constexpr", "class", "struct", "enum", "union"} & set(words)


def _bodies(finder):
    tokens, partner, found, first, i = finder.tokens, finder.partner, [], 0, 0
    while i < len(tokens):
        text = tokens[i].text
        if text == "{" and i in partner and tokens[i].kind == "operator":
            if _is_body(tokens, partner, i, first):
                found.append(Place(tokens[i].end, tokens[partner[i]].start, True))
            elif _opens_scope(tokens, first, i):
                first = i + 1
                i += 1
                continue
            else:
                i = partner[i] + 1  # The value of a variable, or of a member before a constructor's body.
                continue
            i = partner[i] + 1
            first = i
            continue
        if text in (";", "}") or (text == ":" and tokens[i - 1].text in ("public", "private", "protected", "slots")):
            first = i + 1
        if text == "(" and i in partner:
            i = partner[i]
        i += 1
    return found


def _opens_scope(tokens, first, brace):
    return any(tokens[j].text in ("namespace", "class", "struct", "union", "extern") for j in range(first, brace))


def places(name, text, mutations):
    """{place: its changes}, and the changes that have none"""
    bodies = _bodies(Finder(name, text))
    found, alone = {}, []
    for mutation in mutations:
        place = next((p for p in bodies if p.start <= mutation.start and mutation.end <= p.end), None)
        if not place and mutation.kind in ("constant", "text"):
            place = Place(mutation.start, mutation.end, False)
        if place:
            found.setdefault(place, []).append(mutation)
        else:
            alone.append(mutation)
    return found, alone


def combined(text, found):
    """The source with all variants, and the changes by their numbers."""
    numbers, pieces, done = {}, [PRELUDE], 0
    for place in sorted(found, key=lambda p: p.start):
        pieces.append(_without_constexpr(text[done:place.start], place))
        line, original = text.count("\n", 0, place.start) + 1, text[place.start:place.end]
        variants = []
        for mutation in found[place]:
            numbers[len(numbers) + 1] = mutation
            changed = text[place.start:mutation.start] + mutation.put + text[mutation.end:place.end]
            variants.append((len(numbers), changed))
        pieces.append(_switch(variants, original, line) if place.body else _choice(variants, original, line))
        done = place.end
    return "".join([*pieces, text[done:]]), numbers


def _without_constexpr(before, place):
    if place.body:
        return before
    begin = max(before.rfind(end) for end in ";{}")
    return before[:begin + 1] + re.sub(r"\bconstexpr\b", "const", before[begin + 1:])


def _switch(variants, original, line):
    cases = "".join(f"\ncase {number}: {{\n#line {number * LINES}\n{body}\n}} break;" for number, body in variants)
    return f"\nswitch (lumivantMutant()) {{{cases}\ndefault: {{\n#line {line}\n{original}\n}}\n}}\n#line {line + original.count(chr(10))}\n"


def _choice(variants, original, line):
    value = original
    for number, changed in variants:
        value = f"(lumivantMutant() == {number} ?\n#line {number * LINES}\n({changed}) :\n#line {line}\n({value}))"
    return value


def wrong_variants(errors):
    """Numbers of the variants that a compiler complains about; None when something else is wrong, too."""
    numbers = {int(line) // LINES for line in re.findall(r"^[^\s:][^:\n]*:(\d+):\d+: (?:fatal )?error:", errors, re.M)}
    return numbers if numbers and 0 not in numbers else None
