#!/usr/bin/python3
"""Tests of mutate.py and mutations.py, over a source of a few lines in which some mutants survive."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

import mutations

QUALITY = pathlib.Path(__file__).resolve().parent
SIZE = '#include "value/limit.h"\n\nconst char* Size(int n) {\n  return n < Limit ? "small" : "large";\n}\n'
FILES = {
    ".gitignore": "/build*/\n",
    "CMakeLists.txt": """\
cmake_minimum_required(VERSION 3.25)
project(small LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 20)
include_directories(.)
add_library(fernwick_value value/size/size.cc)
link_libraries(fernwick_value)
add_executable(value_test value/size_test.cc)
add_executable(fernwick value/size_test.cc)
""",
    "value/limit.h": "constexpr int Limit = 3;\nconstexpr int Unused = 5;\n",
    "value/size/size.cc": SIZE,
    "value/size_test.cc":
        "const char* Size(int n);\nint main() { return Size(1)[1] != 'm' || Size(3)[0] != 'l'; }\n",
}
SURVIVORS = """\
value/size/size.cc:4: return n < Limit ? "small" : "large";
  "small" becomes "xmall"
value/limit.h:1: constexpr int Limit = 3;
  3 becomes 3 - 1
8 mutants: 4 killed, 0 not compiling, 2 equal, 2 survived, 0 untried
"""


class Mutate(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.root = pathlib.Path(directory.name)
        for path, text in FILES.items():
            (self.root / path).parent.mkdir(parents=True, exist_ok=True)
            (self.root / path).write_text(text)
        subprocess.run("git init -q && git add . && git -c user.name=a -c user.email=a commit -qm Start",
                       shell=True, cwd=self.root, check=True)

    def expect(self, arguments, status, output):
        command = [sys.executable, "-B", QUALITY / "mutate.py", *arguments.split()]
        done = subprocess.run(command, cwd=self.root, capture_output=True, text=True)
        self.assertEqual((done.stdout + done.stderr, done.returncode), (output, status), arguments)

    def test_survivors_are_printed_and_an_ended_run_is_continued(self):
        untried = "8 mutants: 0 killed, 0 not compiling, 0 equal, 0 survived, 8 untried\n"
        self.expect("--all --minutes 0", 0, untried)
        self.expect("--all", 1, SURVIVORS)
        self.expect("--all --minutes 0", 1, SURVIVORS)
        (self.root / "value/size/size.cc").write_text(SIZE + "class C {\n  virtual void F() = 0;\n};\n")
        self.expect("--since HEAD", 0, "1 mutants: 0 killed, 1 not compiling, 0 equal, 0 survived, 0 untried\n")

    def test_wrong_usage_is_refused(self):
        self.expect("--none", 64, "mutate: unrecognized arguments: --none\n")
        self.expect("--file value/size_test.cc", 64, "mutate: value/size_test.cc is not a source file of "
                    "value, platform, registry, personality, plan, driver\n")


class Mutations(unittest.TestCase):
    def test_each_kind_of_change(self):
        for source, *expected in (
                ("return a == b;", "== becomes !="),
                ("return a < b;", "< becomes <=", "< becomes >="),
                ("while (a ||\n    b) F();", "|| becomes &&"),
                ("return !true;", "! dropped", "true becomes false"),
                ("n = 0 / 0x1Fu;", "0 becomes 0 + 1", "0x1Fu becomes 0x1Fu + 1", "0x1Fu becomes 0x1Fu - 1"),
                ("c = 'a';", "'a' becomes static_cast<char>('a' + 1)"),
                ('s = "xy\\n" + "";', '+ becomes -', '"xy\\n" becomes "yy\\n"', '"" becomes "x"'),
                ('s = R"-(a")-" "b";', 'R"-(a")-" "b" becomes R"-(x")-" "b"'),
                ("if (F(a)) return;", "condition negated"),
                ("if (const auto* a = F()) G();", "a negated"),
                ("n = F(a, b) ? c : d;", "condition negated"),
                ('std::vector<T> F(T&& a, T<U>* b);  // a == 1\n#if a == 1 && \\\n  b\nstatic_assert(n == 4);',)):
            found = [mutation.description for mutation in mutations.mutations_of(source)]
            self.assertEqual(sorted(found), sorted(expected), source)

    def test_all_mutations_of_an_expression_can_be_made_together(self):
        source = "return a < b && !F(c, 1);"
        text = mutations.apply(source, dict(enumerate(mutations.mutations_of(source))))
        self.assertEqual(
            text.replace("::mutant::On", "").replace("static_cast<bool>", ""),
            "return ((2) != (((1) != (((2) != (([](auto&& l, auto&& r) -> decltype(auto) { if constexpr "
            "(false || requires { l <= r; }) if ((0)) return l <= r; return l < r; }(a , /*<*/ b)))))) && "
            "((2) != (((3) != (!F(c, ((4) ? 1 + 1 : ((5) ? 1 - 1 : 1)))))))));")


if __name__ == "__main__":
    unittest.main()
