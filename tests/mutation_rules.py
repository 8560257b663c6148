"""Draws mutants by rule. Each changes one place in a source file, as a programming slip would."""
import random
import re

CODE = re.compile(r"^\s+(?!//|virtual |static_assert|Q_|#)\S")
COMMENT = re.compile(r"\s*//.*$")
COMPARISON = re.compile(r" (<|<=|>|>=|==|!=) ")
CONDITION = re.compile(r"\b(if|while) \((?!const |auto )(.+)\) \{$")
NUMBER = re.compile(r"(?<![\w.'])(\d+)(?![\w.'])")
BYTE = re.compile(r"0x([0-9A-Fa-f]{2})\b|\\x([0-9A-Fa-f]{2})")
ARGUMENTS = re.compile(r"\(([\w.]+), ([\w.]+)\)")
STATEMENT = re.compile(r"^\s+(?!return\b|break;|continue;|delete\b|throw\b|using\b)"
                       r"(emit |[\w.:>-]+(\(| [-+*|&^]?= )).*;$")
OTHER = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
CONTEXT = 4  # maximum number of preceding lines that make a repeated text unique


def replace(line, match, text):
    return line[:match.start()] + text + line[match.end():]


def changed_byte(match):
    digits = match[1] or match[2]
    return match[0].replace(digits, f"{int(digits, 16) ^ 1:02X}")


def changes_of_line(line, following):
    """Yields rules, each with the text that replaces the line, or both lines if they are swapped.

    Both lines must be given without their trailing comments.
    """
    for match in COMPARISON.finditer(line):
        yield "comparison", replace(line, match, f" {OTHER[match[1]]} ")
    for match in re.finditer(" (&&|\\|\\|) ", line):
        yield "and for or", replace(line, match, " || " if match[1] == "&&" else " && ")
    for match in CONDITION.finditer(line):
        yield "negated condition", replace(line, match, f"{match[1]} (!({match[2]})) {{")
    for match in NUMBER.finditer(line):
        yield "constant", replace(line, match, str(int(match[1]) + 1))
    for match in BYTE.finditer(line):
        yield "byte", replace(line, match, changed_byte(match))
    for match in ARGUMENTS.finditer(line):
        yield "swapped arguments", replace(line, match, f"({match[2]}, {match[1]})")
    if STATEMENT.match(line):
        yield "removed emit" if "emit " in line else "removed statement", "{}"
        if STATEMENT.match(following):
            yield "swapped statements", f"{following}\n{line}"


def mutants_of(file, text):
    """Returns the mutants of a file. The text to replace must occur in the file only once."""
    lines = text.split("\n")
    mutants = []
    for number, line in enumerate(lines[:-1]):
        if not CODE.match(line):
            continue
        code = COMMENT.sub("", line)
        following = COMMENT.sub("", lines[number + 1])
        for rule, new in changes_of_line(code, following):
            if file.endswith(".h") and "statement" in rule:
                continue  # in a header it may be a declaration
            # trailing comments are left out, so that the mutant stays usable when they are reworded
            place = [line, following] if rule == "swapped statements" else [code]
            for first in range(number, max(-1, number - CONTEXT - 1), -1):
                old = "\n".join(lines[first:number] + place)
                if text.count(old) == 1:
                    before = "".join(f"{each}\n" for each in lines[first:number])
                    mutants.append({"name": f"{rule}: {code.strip()}", "file": file, "old": old,
                                    "new": before + new,
                                    "tests": rf"^{file.split('/')[0]}\."})
                    break
    return mutants


def draw(files, seed, count):
    """Returns mutants of the files, a dict of texts by name. Each file has the same chance, so that
    small ones are tried too. Within a file each rule has the same chance, and within a rule each
    place.
    """
    generator = random.Random(seed)
    candidates = {}
    for name in sorted(files):
        by_rule = {}
        for mutant in mutants_of(name, files[name]):
            by_rule.setdefault(mutant["name"].split(":")[0], []).append(mutant)
        if by_rule:
            candidates[name] = by_rule
    drawn = []
    while candidates and len(drawn) < count:
        name = generator.choice(sorted(candidates))
        rule = generator.choice(sorted(candidates[name]))
        places = candidates[name][rule]
        drawn.append(places.pop(generator.randrange(len(places))))
        if not places:
            del candidates[name][rule]
        if not candidates[name]:
            del candidates[name]
    return sorted(drawn, key=lambda mutant: mutant["file"])


def as_toml(mutants):
    """Returns the mutants as tables that tests/mutate reads."""
    def text(value):
        escaped = value.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n")
        return f'"{escaped}"'
    return "\n".join("[[mutant]]\n" + "".join(f"{key} = {text(value)}\n"
                                              for key, value in mutant.items())
                     for mutant in mutants)
