"""One text that holds many changes of a file, each made only in a process that is told its number.

So a file is compiled once for most of its mutants. What mutation_switch.h cannot choose at run time
(`&&` and `||`, whose right side may not be evaluated, and sums) is left as it is, and so is what does
not compile this way.
"""

import collections
import pathlib

from mutations import COMPARISONS, Edit, apply_edits

HEADER = pathlib.Path(__file__).resolve().parent / "mutation_switch.h"
OPERATOR_NAMES = {"==": "=", "!=": "!", "<": "<", "<=": "l", ">": ">", ">=": "g"}


def switched(source, mutations, left_out=frozenset()):
    """The text, and the numbers of the mutations that it holds.

    A number is the mutation's place in the list; mutations of the lines `left_out` are not held.
    """
    edits, held = [], []
    for numbers in group_by_place(mutations):
        first = mutations[numbers[0]]
        found = [] if first.line in left_out else switches(source, mutations, numbers)
        if found:
            edits += found
            held += numbers
    return apply_edits(source, sorted(edits, key=lambda edit: (edit.start, edit.end))), held


def group_by_place(mutations):
    """The numbers of the mutations, those that change the same token together."""
    places = collections.defaultdict(list)
    for number, mutation in enumerate(mutations):
        places[tuple((edit.start, edit.end) for edit in mutation.edits)].append(number)
    return places.values()


def switches(source, mutations, numbers):
    """Edits that put mutations of one place into the text to choose from; none if they cannot be."""
    edits = mutations[numbers[0]].edits
    token = source[edits[0].start:edits[0].end]
    if len(edits) == 2:
        return condition_switch(numbers[0], edits)
    if token in COMPARISONS:
        return [Edit(edits[0].start, edits[0].end, comparison_switch(token, numbers))]
    if token == "!":
        return [Edit(edits[0].start, edits[0].start, f"::mutant::Not<{numbers[0]}>() ->* ")]
    if token and (token[0].isalnum() or token[0] in "'\"."):
        return [Edit(edits[0].start, edits[0].end, literal_switch(token, mutations, numbers))]
    return []


def condition_switch(number, edits):
    return [
        Edit(edits[0].start, edits[0].start, f"::mutant::Flip<{number}>(static_cast<bool>("),
        Edit(edits[1].start, edits[1].start, "))"),
    ]


def comparison_switch(token, numbers):
    first, second = (numbers + [-1])[:2]
    return f"{token} ::mutant::Comparison<'{OPERATOR_NAMES[token]}', {first}, {second}>() {token}"


def literal_switch(token, mutations, numbers):
    choices = (f"::mutant::On({number}) ? {mutations[number].edits[0].text} : "
               for number in numbers)
    return f"({''.join(choices)}{token})"
