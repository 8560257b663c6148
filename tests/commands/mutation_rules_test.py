"""Tests the rules by which tests/mutate draws mutants."""

import pathlib
import sys
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
import mutation_rules  # noqa: E402 (the path is set above)

SOURCE = """int f(int a, int b)
{
    if (a < 9 && b != 0) { // 5 of them
        emit done(a, b);
        count = 0x4F;
    }
    return 1;
    return 1;
}
"""


class MutationRules(unittest.TestCase):
    def setUp(self):
        self.mutants = mutation_rules.mutants_of("card/F.cpp", SOURCE)

    def changed(self, rule):
        """Returns the replacements by a rule, without their indentation."""
        return sorted(mutant["new"].strip() for mutant in self.mutants
                      if mutant["name"].startswith(f"{rule}:"))

    def test_each_rule(self):
        for rule, expected in {
                "comparison": ["if (a <= 9 && b != 0) {", "if (a < 9 && b == 0) {"],
                "and for or": ["if (a < 9 || b != 0) {"],
                "negated condition": ["if (!(a < 9 && b != 0)) {"],
                "constant": ["if (a < 10 && b != 0) {", "if (a < 9 && b != 1) {",
                             "}\n    return 2;", "return 1;\n    return 2;"],
                "byte": ["count = 0x4E;"],
                "swapped arguments": ["emit done(b, a);"],
                "removed emit": ["{}"],
                "removed statement": ["{}"],
                "swapped statements": ["count = 0x4F;\n        emit done(a, b);"]}.items():
            with self.subTest(rule):
                self.assertEqual(sorted(expected), self.changed(rule))

    def test_each_text_occurs_once_and_changes(self):
        for mutant in self.mutants:
            with self.subTest(mutant["name"]):
                self.assertEqual(1, SOURCE.count(mutant["old"]))
                self.assertNotEqual(mutant["old"], mutant["new"])

    def test_draw_is_repeatable_and_has_no_mutant_twice(self):
        files = {"card/F.cpp": SOURCE, "link/G.cpp": SOURCE}
        drawn = mutation_rules.draw(files, 7, 12)
        self.assertEqual(drawn, mutation_rules.draw(files, 7, 12))
        self.assertNotEqual(drawn, mutation_rules.draw(files, 8, 12))
        self.assertEqual(12, len({(mutant["file"], mutant["old"], mutant["new"])
                                  for mutant in drawn}))
        self.assertEqual(2 * len(self.mutants), len(mutation_rules.draw(files, 7, 1000)))

    def test_table_escapes_texts(self):
        mutant = {"name": 'a "b"', "old": "x\\0\n  y"}
        self.assertEqual('[[mutant]]\nname = "a \\"b\\""\nold = "x\\\\0\\n  y"\n',
                         mutation_rules.as_toml([mutant]))


if __name__ == "__main__":
    unittest.main()
