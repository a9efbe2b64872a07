#!/usr/bin/env python3
"""Changes the protocol, the send queue and the decoders in many small ways, and tells which changes no test
notices. run.sh calls this; mutants.py says how the changes are made."""
import argparse
import collections
import concurrent.futures
import fcntl
import json
import os
import pathlib
import random
import resource
import signal
import subprocess
import sys
import time

import mutants

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
WORK = ROOT / "build" / "mutation"
SOURCES = WORK / "src"
BUILD = WORK / "build"
TEMPORARY = WORK / "tmp"

NEEDED_SHARE = 0.9
CONTROLS = 40  # a run without a mutant after each so many mutants
MEMORY = 4 << 30  # of a test program that a mutant lets grow
SURVIVED, KILLED, TIMED_OUT = "survived", "killed", "timed out"

Result = collections.namedtuple("Result", "mutant outcome test")


def say(text):
    print(f"mutation: {text}", flush=True)


def read_blocks(path):
    """The paragraphs of a file, as lists of lines, without comments."""
    lines = [line for line in path.read_text().splitlines() if not line.startswith("#")]
    return [block.strip("\n").splitlines() for block in "\n".join(lines).split("\n\n") if block.strip()]


def read_table():
    """The test programs of each file, in the order in which they are run."""
    table = {}
    for block in read_blocks(HERE / "tests.txt"):
        files = [line for line in block if not line.startswith(" ")]
        tests = " ".join(line for line in block if line.startswith(" ")).split()
        table.update({file: tests for file in files})
    return table


def read_equivalents():
    """The reasons of the mutants that nothing can tell from the original, by what a mutant is known by."""
    reasons = {}
    for block in read_blocks(HERE / "equivalent.txt"):
        stripped = [line.strip() for line in block]
        file, _, function = stripped[0].partition(" ")
        changed = [line[2:] for line in stripped[2:] if line.startswith("+ ")]
        reason = " ".join(stripped[2 + len(changed):])
        if not stripped[1:] or not stripped[1].startswith("- ") or not changed or not reason:
            sys.exit(f"equivalent.txt: a file and function, a - line, + lines and a reason are expected: {block}")
        reasons.update({(file, function.strip(), stripped[1][2:], after): reason for after in changed})
    return reasons


# --- the mutants and their build ---


def write_if_changed(path, content):
    if not path.exists() or path.read_bytes() != content:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


def write_sources(files):
    """All mutants of the files, numbered, and a copy of src with them in it."""
    flags = mutants.compiler_flags(ROOT / "src", ROOT / "hostsdk" / "include")
    found, switched = [], {}
    for file in files:
        source = mutants.Source(ROOT / file, file, flags)
        for number, mutant in enumerate(source.mutants, len(found) + 1):
            mutant.number = number
        found += source.mutants
        switched[file] = source.with_switches().encode()
    wanted = set()
    for path in (ROOT / "src").rglob("*"):
        if path.is_file():
            name = str(path.relative_to(ROOT))
            wanted.add(WORK / name)
            write_if_changed(WORK / name, switched.get(name) or path.read_bytes())
    for path in SOURCES.rglob("*"):
        if path.is_file() and path not in wanted:
            path.unlink()
    return found


def build(tests, needed, jobs):
    """Configures for all tests, so that it is the same build each time, and compiles those that are needed."""
    configure = ["cmake", "-S", str(HERE), "-B", str(BUILD), "-G", "Ninja", "--log-level=WARNING",
                 "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache", f"-DCANBUS_MUTATED_SOURCES={SOURCES}",
                 f"-DCANBUS_MUTATION_TESTS={';'.join(tests)}"]
    subprocess.run(configure, check=True)
    # Without this nothing that uses a precompiled header is found in the compiler's cache.
    environment = dict(os.environ, CCACHE_SLOPPINESS="pch_defines,time_macros")
    subprocess.run(["cmake", "--build", str(BUILD), "-j", str(jobs), "--target", *needed], check=True, env=environment)


def choose(found, count, seed):
    """As many of each file as there are, one file after the other, until there are enough."""
    chance = random.Random(seed)
    by_file = collections.defaultdict(list)
    for mutant in found:
        by_file[mutant.file].append(mutant)
    for group in by_file.values():
        chance.shuffle(group)
    chosen = []
    while len(chosen) < count and any(by_file.values()):
        for group in by_file.values():
            if group and len(chosen) < count:
                chosen.append(group.pop())
    return chosen


# --- running ---


class Runner:
    """Runs test programs with a mutant, within limits made from how long they take without."""

    def __init__(self):
        self.limits = {}  # by test: seconds of the processor, and in all

    def run(self, test, number, processor_seconds, seconds):
        """@return whether it passed, or None when it was not through in time"""
        environment = dict(os.environ, CANBUS_MUTANT=str(number), TMPDIR=str(TEMPORARY),
                           LD_LIBRARY_PATH=str(BUILD / "lib"))
        command = ["prlimit", f"--cpu={processor_seconds}", f"--as={MEMORY}", "--core=0", str(BUILD / "tests" / test)]
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, env=environment, start_new_session=True)
        try:
            status = process.wait(seconds)
        except subprocess.TimeoutExpired:
            status = None
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()
        return None if status in (None, -signal.SIGXCPU, -signal.SIGKILL) else status == 0

    def measure(self, test):
        start, before = time.monotonic(), resource.getrusage(resource.RUSAGE_CHILDREN)
        passed = self.run(test, 0, 120, 300)
        taken, after = time.monotonic() - start, resource.getrusage(resource.RUSAGE_CHILDREN)
        processor = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
        self.limits[test] = (int(3 * processor) + 3, 4 * taken + 15)
        return passed, taken

    def judge(self, mutant, tests):
        for test in tests:
            passed = self.run(test, mutant.number, *self.limits[test])
            if not passed:
                return Result(mutant, TIMED_OUT if passed is None else KILLED, test)
        return Result(mutant, SURVIVED, "")

    def control(self, tests):
        """Without a mutant: @return the tests that failed"""
        return [test for test in tests if not self.run(test, 0, *self.limits[test])]


def measure_all(runner, tests):
    failed, total = [], 0
    for test in tests:
        passed, taken = runner.measure(test)
        total += taken
        if not passed:
            failed.append(test)
    if failed:
        sys.exit(f"mutation: without any mutant these fail: {' '.join(failed)}")
    say(f"all {len(tests)} programs pass without a mutant, in {total:.0f} s")


def run_all(runner, chosen, table, jobs):
    results, failed, controls = [], [], 0
    reasons = read_equivalents()
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        waiting = {}
        for index, mutant in enumerate(chosen):
            waiting[pool.submit(runner.judge, mutant, table[mutant.file])] = False
            if index % CONTROLS == CONTROLS - 1:
                waiting[pool.submit(runner.control, table[mutant.file])] = True
        for done in concurrent.futures.as_completed(waiting):
            if waiting[done]:
                controls += 1
                failed += done.result()
                continue
            results.append(done.result())
            if results[-1].outcome == SURVIVED and results[-1].mutant.key() not in reasons:
                tell_mutant(results[-1].mutant)
            if len(results) % 50 == 0:
                say(f"{len(results)} of {len(chosen)}")
    say(f"{controls} times among them without a mutant: "
        + (f"FAILED in {' '.join(sorted(failed))}" if failed else "all passed"))
    return results, failed


# --- telling ---


def tell_mutant(mutant):
    print(f"{mutant.file}:{mutant.line} {mutant.function} ({mutant.kind}, {mutant.number})\n"
          f"  - {mutant.before}\n  + {mutant.after}")


def tell_table(results, equivalent):
    by_file = collections.defaultdict(collections.Counter)
    for result in results:
        outcome = "equivalent" if result.mutant.key() in equivalent else result.outcome
        by_file[result.mutant.file][outcome] += 1
    columns = (KILLED, TIMED_OUT, SURVIVED, "equivalent")
    print(f"{'':36}" + "".join(f"{column:>12}" for column in columns))
    total = collections.Counter()
    for file, counts in sorted(by_file.items()):
        total.update(counts)
        print(f"{file:36}" + "".join(f"{counts[column]:12}" for column in columns))
    print(f"{'all':36}" + "".join(f"{total[column]:12}" for column in columns))
    return total


def tell_stale(found, results, reasons):
    """What equivalent.txt says of mutants that are not there any more, or that a test does notice."""
    known = {mutant.key() for mutant in found}
    killed = {result.mutant.key(): result for result in results if result.outcome != SURVIVED}
    for key in reasons:
        if key not in known:
            say(f"stale in equivalent.txt, there is no such mutant: {key[0]} {key[1]}: {key[3]}")
        elif key in killed:
            say(f"stale in equivalent.txt, {killed[key].test} notices it: {key[0]} {key[1]}: {key[3]}")


def verdict(results, found):
    reasons = read_equivalents()
    survivors = [result.mutant for result in results if result.outcome == SURVIVED]
    equivalent = {mutant.key() for mutant in survivors} & reasons.keys()
    open_ones = [mutant for mutant in survivors if mutant.key() not in equivalent]
    total = tell_table(results, equivalent)
    if open_ones:
        print("\nno test notices these:")
        for mutant in sorted(open_ones, key=lambda mutant: mutant.number):
            tell_mutant(mutant)
    tell_stale(found, results, reasons)
    noticed = total[KILLED] + total[TIMED_OUT]
    counted = noticed + len(open_ones)
    return noticed, counted


def result(*arguments):
    """Leaves behind what docs/figures/renew.sh gathers."""
    subprocess.run([sys.executable, str(ROOT / "docs/figures/result.py"), *arguments], check=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--count", default="240", help='how many mutants, or "all"')
    parser.add_argument("--seed", type=int, default=1, help="which ones")
    parser.add_argument("--only", action="append", default=[], metavar="PART",
                        help="those of the files whose names hold this; may be given again")
    parser.add_argument("--list", action="store_true", help="print all mutants and run none")
    arguments = parser.parse_args()
    if arguments.count != "all" and not arguments.count.isdigit():
        parser.error(f'--count takes a number or "all", not "{arguments.count}"')

    table = read_table()
    TEMPORARY.mkdir(parents=True, exist_ok=True)
    lock = open(WORK / "lock", "w")
    fcntl.flock(lock, fcntl.LOCK_EX)  # a second run would change the numbers of the first
    found = write_sources(table)
    only = arguments.only or [""]
    in_question = [mutant for mutant in found if any(part in mutant.file for part in only)]
    if arguments.list:
        for mutant in in_question:
            tell_mutant(mutant)
        return 0
    result("begin", "mutate")
    count = len(in_question) if arguments.count == "all" else int(arguments.count)
    chosen = choose(in_question, count, arguments.seed)
    say(f"{len(chosen)} of {len(in_question)} mutants, seed {arguments.seed}")
    jobs = os.cpu_count() or 1
    start = time.monotonic()
    needed = sorted({test for mutant in chosen for test in table[mutant.file]})
    build(sorted({test for tests in table.values() for test in tests}), needed, jobs)
    say(f"built in {time.monotonic() - start:.0f} s")

    runner = Runner()
    measure_all(runner, needed)
    start = time.monotonic()
    results, failed = run_all(runner, chosen, table, jobs)
    say(f"run in {time.monotonic() - start:.0f} s\n")
    noticed, counted = verdict(results, found)
    passes = counted > 0 and noticed >= NEEDED_SHARE * counted and not failed
    say(f"{'PASSED' if passes else 'FAILED'}: the tests notice {noticed} of {counted} mutants that a test could notice, "
        f"{100 * noticed / max(counted, 1):.1f} %, of at least {100 * NEEDED_SHARE:.0f} %")
    result("end", "mutate", str(int(not passes)), f"noticed={noticed}", f"counted={counted}",
           f"count={arguments.count}", f"only={json.dumps(arguments.only)}")
    return 0 if passes else 1


if __name__ == "__main__":
    sys.exit(main())
