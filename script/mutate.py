"""Runs the tests on random changes of the sources; see script/mutate, which calls this."""

import hashlib
import pathlib
import random
import subprocess
import sys
import tempfile

FOLDERS = ("model", "platform", "http", "service")

tree, count, seed = pathlib.Path(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3])
build = tree / "build" / "dev"


def succeeds(*command):
    return subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True).returncode == 0


def builds():
    return succeeds("cmake", "--build", str(build), "--target", *(f"tests/{folder}/all" for folder in FOLDERS))


def tests_pass():
    # The limits end tests that a change makes hang; the second also those with a limit of their own.
    return succeeds("timeout", "--kill-after=10", "180", "ctest", "--test-dir", str(build), "--label-regex",
                    "^(unit|wire)$", "--stop-on-failure", "--timeout", "30", "-j", "6")


def mutants_of(source):
    """Variants of one source file, each of which differs from it in one line."""
    text = source.read_text()
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run((sys.executable, "-m", "universalmutator.genmutants", str(source), "cpp", "--noCheck",
                        "--mutantDir", folder), stdin=subprocess.DEVNULL, capture_output=True, check=True)
        texts = sorted(path.read_text() for path in pathlib.Path(folder).iterdir())
    return [changed for changed in texts if code_lines(changed) != code_lines(text)]


def code_lines(text):
    """The lines without comments and includes, changes of which the tests cannot notice."""
    lines = (line.split("//")[0].rstrip() for line in text.splitlines())
    return [line for line in lines if line and not line.startswith("#include")]


def object_of(source):
    """The source's object file; none if this system does not build it."""
    return next(build.glob(f"src/{source.parent.name}/CMakeFiles/*.dir/{source.name}.o"), None)


def object_code(source):
    """A digest of the source's object code without debug information."""
    with tempfile.NamedTemporaryFile() as stripped:
        subprocess.run(("objcopy", "--strip-debug", str(object_of(source)), stripped.name), check=True)
        return hashlib.sha256(pathlib.Path(stripped.name).read_bytes()).digest()


def difference(before, after):
    """The changed line before and after the change."""
    for number, (old, new) in enumerate(zip(before.splitlines(), after.splitlines()), 1):
        if old != new:
            return f"{number}: {old.strip()}  ->  {new.strip()}"
    return "end of the file"


def main():
    if not tests_pass():
        sys.exit("script/mutate: the tests fail without a change")
    sources = sorted(path for folder in FOLDERS for path in (tree / "src" / folder).glob("*.cpp") if object_of(path))
    candidates = [(source, changed) for source in sources for changed in mutants_of(source)]
    random.Random(seed).shuffle(candidates)
    unchanged = {source: object_code(source) for source in sources}
    tried = noticed = 0
    for source, changed in candidates:
        if tried == count:
            break
        original = source.read_text()
        try:
            source.write_text(changed)
            if not builds() or object_code(source) == unchanged[source]:
                continue
            tried += 1
            passed = tests_pass()
        finally:
            source.write_text(original)
        noticed += not passed
        print(f"{'SURVIVED' if passed else 'noticed '} {source.relative_to(tree)}:{difference(original, changed)}",
              flush=True)
    builds()
    print(f"noticed {noticed} of {tried}")


main()
