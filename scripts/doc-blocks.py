#!/usr/bin/python3
"""Keeps the code blocks of the Markdown documents working.

`check` takes every ```cpp and ```python block of the documents it is given:
- a block without a mark is a whole program. C++ is compiled, linked against the library and
  run with one argument, the port of a simulator (tavsim) started for it; Python is run with
  the built module on its path. Each runs in a temporary HOME and must exit with 0.
- a block marked on the line before its fence with `<!-- doc-block: fragment HEADER... -->` is
  C++ compiled (not linked) as the body of a function after including the headers named, or
  Python compiled, not run.
- `<!-- doc-block: declarations HEADER... -->` is C++ compiled at namespace scope.
A failure names the document and the line of the block; compiler messages and tracebacks give
the document's own line numbers.

`show` prints the first block of one language under a heading, for scripts that build it.
"""

import argparse
import os
import re
import signal
import subprocess
import sys
import tempfile
from dataclasses import dataclass
from pathlib import Path

FENCE = re.compile(r"^```\s*([\w+-]*)\s*$")
MARK = re.compile(r"^<!--\s*doc-block:\s*(.*?)\s*-->\s*$")
LANGUAGES = {"cpp": "cpp", "python": "python"}
KINDS = ("fragment", "declarations")
RUN_SECONDS = 30


@dataclass
class Block:
    document: str  # as the reader knows it, e.g. simulator/README.md
    line: int  # of the block's first line of code
    language: str
    kind: str  # "program", "fragment" or "declarations"
    headers: list
    code: str
    section: str
    problem: str = ""  # a mark that could not be read

    def where(self):
        return f"{self.document}:{self.line}"


class BlockError(Exception):
    pass


def read_blocks(path, shown_as):
    """Every cpp and python block of the document, with its mark and section."""
    lines = Path(path).read_text(encoding="utf-8").splitlines()
    blocks, section, index = [], "", 0
    while index < len(lines):
        line = lines[index]
        if line.startswith("#") and not line.startswith("#!"):
            section = line.lstrip("#").strip()
        fence = FENCE.match(line)
        if not fence:
            index += 1
            continue
        start = index + 1
        end = start
        while end < len(lines) and not FENCE.match(lines[end]):
            end += 1
        if end == len(lines):
            raise BlockError(f"{shown_as}:{index + 1}: a code block that never ends")
        language = LANGUAGES.get(fence.group(1))
        if language:
            blocks.append(_block(shown_as, lines, index, start, end, language, section))
        index = end + 1
    return blocks


def _block(shown_as, lines, fence, start, end, language, section):
    kind, headers, problem = "program", [], ""
    mark = MARK.match(lines[fence - 1]) if fence > 0 else None
    if mark:
        words = mark.group(1).split() or [""]
        kind, headers = words[0], words[1:]
        if kind not in KINDS:
            problem = f"{shown_as}:{fence}: unknown doc-block mark {kind!r}; expected one of {KINDS}"
    code = "\n".join(lines[start:end]) + "\n"
    return Block(shown_as, start + 1, language, kind, headers, code, section, problem)


def cxx_source(block):
    """The translation unit of a C++ block, its lines numbered as in the document."""
    includes = "".join(
        f"#include {h}\n" if h.startswith("<") else f'#include "{h}"\n' for h in block.headers
    )
    numbered = f'#line {block.line} "{block.document}"\n{block.code}'
    if block.kind == "fragment":
        return f"{includes}void DocumentedFragment() {{\n{numbered}}}\n"
    return includes + numbered


def run(command, what, **options):
    try:
        done = subprocess.run(command, capture_output=True, text=True, timeout=RUN_SECONDS, **options)
    except subprocess.TimeoutExpired:
        raise BlockError(f"{what}: still running after {RUN_SECONDS} s")
    if done.returncode != 0:
        raise BlockError(f"{what}: exit code {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


class Simulator:
    """tavsim on a free port of 127.0.0.1, until the block leaves."""

    def __init__(self, program):
        self.process = subprocess.Popen(
            [program, "--port", "0", "--quiet"], stdout=subprocess.PIPE, text=True
        )
        line = self.process.stdout.readline()
        found = re.search(r"listening on 127\.0\.0\.1:(\d+)", line)
        if not found:
            self.close()
            raise BlockError(f"the simulator did not say where it listens: {line!r}")
        self.port = found.group(1)

    def close(self):
        self.process.send_signal(signal.SIGINT)
        self.process.wait(RUN_SECONDS)
        self.process.stdout.close()


def check_cxx(block, options, work):
    source = work / "block.cpp"
    source.write_text(cxx_source(block), encoding="utf-8")
    flags = ["-std=c++17", "-Wall", "-Wextra", "-Wno-unused-variable", "-Wno-unused-but-set-variable"]
    flags += [f"-I{directory}" for directory in options.include.split(":") if directory]
    if block.kind != "program":
        run([options.cxx, *flags, "-fsyntax-only", str(source)], f"{block.where()}: compiling")
        return "compiled"
    if not re.search(r"\bint\s+main\s*\(", block.code):
        raise BlockError(
            f"{block.where()}: C++ without main(): a whole program, or mark it with "
            "<!-- doc-block: fragment HEADER... --> on the line before the fence"
        )
    program = work / "program"
    library = Path(options.library)
    run(
        [options.cxx, *flags, str(source), str(library), f"-Wl,-rpath,{library.parent}", "-o", str(program)],
        f"{block.where()}: compiling and linking",
    )
    simulator = Simulator(options.simulator)
    try:
        run([str(program), simulator.port], f"{block.where()}: running", cwd=work, env=block_env(work))
    finally:
        simulator.close()
    return "compiled and ran"


def check_python(block, options, work):
    # Blank lines before the code, so that a traceback's line numbers are the document's.
    padded = "\n" * (block.line - 1) + block.code
    if block.kind != "program":
        try:
            compile(padded, block.document, "exec")
        except SyntaxError as error:
            raise BlockError(f"{block.where()}: {error}")
        return "compiled"
    script = work / (Path(block.document).name + ".py")
    script.write_text(padded, encoding="utf-8")
    env = block_env(work)
    env["PYTHONPATH"] = options.python_path
    run([options.python, str(script)], f"{block.where()}: running", cwd=work, env=env)
    return "ran"


def block_env(work):
    env = dict(os.environ)
    env["HOME"] = str(work)
    return env


def check(arguments):
    root = Path(arguments.root).resolve()
    failures = 0
    for document in arguments.documents:
        path = Path(document).resolve()
        shown_as = str(path.relative_to(root)) if path.is_relative_to(root) else document
        try:
            blocks = read_blocks(path, shown_as)
        except BlockError as error:
            print(f"FAILED {error}")
            failures += 1
            continue
        for block in blocks:
            with tempfile.TemporaryDirectory() as work:
                checker = check_cxx if block.language == "cpp" else check_python
                try:
                    if block.problem:
                        raise BlockError(block.problem)
                    outcome = checker(block, arguments, Path(work))
                    print(f"ok     {block.where()} ({block.language} {block.kind}): {outcome}")
                except BlockError as error:
                    print(f"FAILED {error}")
                    failures += 1
    return 1 if failures else 0


def show(arguments):
    for block in read_blocks(arguments.document, arguments.document):
        if block.section == arguments.section and block.language == arguments.language:
            sys.stdout.write(block.code)
            return 0
    print(f"no {arguments.language} block under \"{arguments.section}\" in {arguments.document}", file=sys.stderr)
    return 1


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    commands = parser.add_subparsers(dest="command", required=True)
    checking = commands.add_parser("check", help="compile and run the blocks of the documents")
    checking.add_argument("documents", nargs="+")
    checking.add_argument("--root", default=Path(__file__).resolve().parent.parent, help="names documents relative to it")
    checking.add_argument("--cxx", default="c++")
    checking.add_argument("--include", default="", help="include directories, separated by ':'")
    checking.add_argument("--library", required=True, help="the shared library programs link")
    checking.add_argument("--simulator", required=True, help="the tavsim program")
    checking.add_argument("--python", default="/usr/bin/python3")
    checking.add_argument("--python-path", default="", help="where the tavclient module is")
    showing = commands.add_parser("show", help="print the first block of a language under a heading")
    showing.add_argument("document")
    showing.add_argument("--section", required=True, help="the heading's text, without its #")
    showing.add_argument("--language", required=True, choices=sorted(LANGUAGES))
    arguments = parser.parse_args()
    return check(arguments) if arguments.command == "check" else show(arguments)


if __name__ == "__main__":
    sys.exit(main())
