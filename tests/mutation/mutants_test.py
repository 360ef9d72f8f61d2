"""What is changed in a source, and what is left alone."""

import unittest

from mutants import mutants_of


def changed(text):
    """What a source becomes, one text for each mutant, without the blanks at its ends."""
    return {mutant.text.strip() for mutant in mutants_of('file.cpp', text + '\n')}


class Mutants(unittest.TestCase):
    def test_leaves_comments_directives_and_raw_strings_alone(self):
        self.assertEqual(changed('#include "a.h"\n#if A == 1\n#endif\n// a < b, "x"\n/* 1 + 2 */\nauto s = R"(1 < 2)";'),
                         set())

    def test_leaves_template_arguments_references_and_pointers_alone(self):
        self.assertEqual(changed('template <int N = 3>\nstd::array<int, 4> f(const T& a, T* b, T&& c);'), set())

    def test_changes_relations_between_operands(self):
        self.assertEqual(changed('bool x = a < b;'), {'bool x = a <= b;', 'bool x = a >= b;'})

    def test_changes_logic(self):
        self.assertEqual(changed('bool x = !a && b;'), {'bool x = a && b;', 'bool x = !a || b;'})

    def test_changes_arithmetic_and_bits(self):
        self.assertEqual(changed('int x = a + b;'), {'int x = a - b;'})
        self.assertEqual(changed('int x = a & b;'), {'int x = a | b;'})
        self.assertEqual(changed('int x = -a;'), {'int x = a;'})

    def test_changes_constants_of_every_kind(self):
        self.assertEqual(changed('int x = 7;'), {'int x = 8;', 'int x = 0;'})
        self.assertEqual(changed('bool x = true;'), {'bool x = false;'})
        self.assertEqual(changed("char x = 'a';"), {"char x = '~';"})
        self.assertEqual(changed('auto x = "ab";'), {'auto x = "";', 'auto x = "ab~";'})

    def test_forces_conditions(self):
        self.assertLessEqual({'void f() { if (true) g(); }', 'void f() { if (false) g(); }'},
                             changed('void f() { if (a) g(); }'))
        self.assertIn('void f() { for (; false; ) g(); }', changed('void f() { for (; a; ) g(); }'))
        self.assertIn('void f() { while (false) g(); }', changed('void f() { while (a) g(); }'))
        self.assertEqual(changed('int x = a ? b : c;'), {'int x = a || true ? b : c;', 'int x = a && false ? b : c;'})

    def test_deletes_and_swaps_statements(self):
        self.assertEqual(changed('void f() { g(); h(); }'),
                         {'void f() { ; h(); }', 'void f() { g(); ; }', 'void f() { h(); g(); }'})

    def test_does_not_swap_what_a_condition_guards(self):
        self.assertNotIn('void f() { h(); if (a) g(); }', changed('void f() { g(); if (a) h(); }'))

    def test_deletes_throws_and_changes_jumps(self):
        self.assertEqual(changed('void f() { throw E(); }'), {'void f() { ; }'})
        self.assertEqual(changed('void f() { break; }'), {'void f() { continue; }', 'void f() { ; }'})

    def test_returns_a_default(self):
        self.assertEqual(changed('int f() { return a; }'), {'int f() { return {}; }'})
        self.assertEqual(changed('T f() { return {}; }'), set())

    def test_keeps_declarations(self):
        self.assertEqual(changed('void f() { const T& a = b; std::vector<T> c; }'), set())

    def test_tells_what_changed_and_where(self):
        mutant, = mutants_of('file.cpp', 'int a;\n  bool   x = a\n    == b;\n')
        self.assertEqual((mutant.line, mutant.above, mutant.before, mutant.after), (3, 'bool x = a', '== b;', '!= b;'))


if __name__ == '__main__':
    unittest.main()
