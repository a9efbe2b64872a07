"""The proofs whose figures README.md has: how the result of each reads, and how much it has looked at."""
import dataclasses
import typing

Result = typing.Dict[str, typing.Any]


@dataclasses.dataclass(frozen=True)
class Proof:
    """A row of the table in README.md. `extent` tells which of two runs has looked at more."""

    title: str
    command: str
    says: typing.Callable[[Result], str]
    arguments: typing.Callable[[Result], str] = lambda result: ""
    extent: typing.Callable[[Result], tuple] = lambda result: ()


def number(value):
    """With commas."""
    return f"{value:,}"


def counted(count, noun):
    """So many of them, or none."""
    return f"no {noun}" if count == 0 else f"{number(count)} {noun}{'' if count == 1 else 's'}"


def percent(part, whole):
    """Rounded down: 100 % is all of them."""
    return f"{int(1000 * part / whole) / 10:.1f} %"


def tests(result):
    """What ctest has counted."""
    failed, skipped = result["failed"], result["skipped"]
    passed = number(result["tests"] - skipped - len(failed))
    text = f"all {passed} tests passed" if not failed and not skipped else f"{passed} tests passed"
    text += f", {number(skipped)} skipped" if skipped else ""
    return text + (f", {len(failed)} failed: {', '.join(failed)}" if failed else "")


def coverage(result):
    """Branches, over all and where every one is wanted."""
    core, whole = result["core"], result["src"]
    return (f"{percent(whole['taken'], whole['branches'])} of {number(whole['branches'])} branches of `src/` taken, "
            f"{percent(core['taken'], core['branches'])} in the receive path, the send queue and the decoders")


def mutation(result):
    """Mutants that a test could notice, and that one does."""
    which = "all there are" if result["count"] == "all" else "chosen by chance"
    return (f"{number(result['noticed'])} of {number(result['counted'])} small changes of the code noticed by a test "
            f"({percent(result['noticed'], result['counted'])}; {which})")


def mutation_extent(result):
    """A part of the files is less than any number from all of them."""
    count = float("inf") if result["count"] == "all" else int(result["count"])
    return (not result["only"], count)


def mutation_arguments(result):
    """As it was run."""
    return " ".join([f"--count {result['count']}", *(f"--only {part}" for part in result["only"])])


def fuzzing(result):
    """Executions since these programs were built, over all runs."""
    executions, findings = result["executions"], sum(result["findings"].values())
    least = number(min(executions.values()))
    return (f"{counted(len(executions), 'target')}, {least} executions or more of each in all runs since they were "
            f"built, {counted(findings, 'finding')}")


def fuzzing_extent(result):
    """As many targets as possible, and then the one that has had least."""
    return (len(result["executions"]), min(result["executions"].values()))


def simulation(result):
    """Seeds."""
    if result["broken"]:
        return f"{number(result['broken'])} of {number(result['seeds'])} seeds broke a rule"
    return f"every rule held for {number(result['seeds'])} seeds, a minute of virtual time each"


def races(result):
    """Reports of the thread sanitizer."""
    planted = "the planted races found" if result["planted_found"] else "the planted races NOT found"
    return f"{counted(result['reports'], 'report')}, {tests(result)}, {planted}"


def bench(result):
    """Goals; a goal that is missed is no failure, and is named."""
    missed = result["missed"]
    text = f"{result['met']} goals met" + (f", {len(missed)} missed: {'; '.join(missed)}" if missed else "")
    return text + {True: "; counts as in the baseline", False: "; counts NOT as in the baseline", None: ""}[
        result["as_baseline"]]


def bench_arguments(result):
    """As it was run."""
    only = {"counts": "--counts", "times": "--only times", None: ""}[result["only"]]
    return f"{only} {'--long' if result['long'] else ''}".strip()


def by_outcome(text, good, bad):
    """A text with the figures of the result in it, and how it came out."""
    return lambda result: text.format(**result) + (good if result["outcome"] == "passed" else bad)


PROOFS = {
    "test": Proof("tests", "./dev test", tests),
    "sanitize": Proof("address, leak and undefined-behaviour sanitizers", "./dev sanitize", tests),
    "cross-armhf": Proof("tests on armhf, emulated", "./dev cross armhf", tests),
    "cross-arm64": Proof("tests on arm64, emulated", "./dev cross arm64", tests),
    "races": Proof("thread sanitizer", "./dev races", races, lambda result: "--short" if result["short"] else "",
                   lambda result: (not result["short"],)),
    "simulate": Proof("whole link, simulated", "./dev simulate", simulation, lambda result: str(result["wanted"]),
                      lambda result: (result["wanted"],)),
    "hours": Proof("memory over time", "./dev simulate",
                   by_outcome("{hours} hours of virtual time, memory ", "flat", "NOT flat, or a rule broken"),
                   lambda result: f"--hours {result['hours']}", lambda result: (result["hours"],)),
    "fuzz": Proof("fuzzing", "./dev fuzz", fuzzing,
                  lambda result: f"--runs {result['runs']}" if "runs" in result else str(result["seconds"]),
                  fuzzing_extent),
    "coverage": Proof("branch coverage", "./dev coverage", coverage),
    "mutate": Proof("mutation", "./dev mutate", mutation, mutation_arguments, mutation_extent),
    "exits": Proof("exits in the middle of traffic", "./dev exits",
                   by_outcome("{count:,} exits, ", "none bad", "some bad"),
                   lambda result: f"{result.get('instrument', '')} {result['count']}".strip(),
                   lambda result: (result["count"],)),
    "bench": Proof("what it costs", "./dev bench", bench, bench_arguments,
                   lambda result: (result["only"] is None, result["long"])),
}
