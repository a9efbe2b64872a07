#!/usr/bin/env python3
"""Gathers what proofs have left behind and writes it into README.md: see renew.sh."""
import difflib
import json
import pathlib
import sys

from proofs import PROOFS

ROOT = pathlib.Path(__file__).resolve().parents[2]
RESULTS = ROOT / "build" / "results"
FIGURES = ROOT / "docs" / "figures" / "figures.json"
README = ROOT / "README.md"
BEGIN, END = "<!-- figures -->", "<!-- /figures -->"


class FiguresError(Exception):
    """What cannot be gathered or written, in one line."""


def read_json(path):
    """What a file of ours holds."""
    try:
        return json.loads(path.read_text(encoding="utf-8"))
    except ValueError as error:
        raise FiguresError(f"{path} is no JSON: {error}") from error


def left_behind(folder):
    """The results in the folder by proof."""
    results = {path.stem: read_json(path) for path in sorted(folder.glob("*.json"))}
    for name in results.keys() - PROOFS.keys():
        raise FiguresError(f"{folder / name}.json is of no proof that docs/figures/proofs.py knows")
    return results


# --- which of two results counts ---


def extent(name, result):
    """How much a result has looked at; one that broke off before its figures has looked at nothing."""
    try:
        return (True, *PROOFS[name].extent(result))
    except KeyError:
        return (False,)


def why_kept(name, old, new):
    """Why the old figures stay, or None when the new ones take their place."""
    if "outcome" not in old:
        return None
    if new["begun"] < old["begun"]:
        return "they are newer than what is left in build/results"
    if new["outcome"] == "failed" or extent(name, new) >= extent(name, old):
        return None
    return "the last run was a smaller one, and has found nothing"


def merge(old, left):
    """The figures with what was left behind, and a line about each proof."""
    figures, lines = dict(old), []
    for name in PROOFS:
        new, before = left.get(name), old.get(name, {})
        if new is None:
            lines.append(f"{name}: not run here" + (", keeps its figures" if before else ""))
        elif new["outcome"] == "unfinished":
            lines.append(f"{name}: the run of {new['begun']} has not ended")
            if new["begun"] > before.get("begun", ""):
                figures[name] = {**before, "unfinished": {key: new[key] for key in ("begun", "commit", "clean")}}
        elif why_kept(name, before, new):
            lines.append(f"{name}: keeps its figures, {why_kept(name, before, new)}")
            figures[name] = {key: value for key, value in before.items() if key != "unfinished"}
        else:
            lines.append(f"{name}: {new['outcome']}")
            figures[name] = new
    return figures, lines


# --- the table ---


def origin(result):
    """Day and commit of a run."""
    return f"{result['begun'][:10]}, `{result['commit']}`" + ("" if result["clean"] else " with changes")


def said(name, result):
    """What the result of a proof is, in words."""
    if "outcome" not in result:
        return "none yet"
    try:
        text = PROOFS[name].says(result)
    except KeyError:
        text = "broke off before it had counted anything"
    return f"**FAILED**: {text}" if result["outcome"] == "failed" else text


def command(name, result):
    """What has to be typed for the like of this result."""
    try:
        return f"{PROOFS[name].command} {PROOFS[name].arguments(result)}".strip()
    except KeyError:
        return PROOFS[name].command


def row(name, result):
    """A row of the table."""
    text = said(name, result)
    if "unfinished" in result:
        text += f"; a run of {origin(result['unfinished'])} did not end"
    run = origin(result) if "outcome" in result else ""
    return f"| {PROOFS[name].title} | {text} | `{command(name, result)}` | {run} |"


def table(figures):
    """What stands between the marks in README.md."""
    rows = [row(name, figures[name]) for name in PROOFS if name in figures]
    if not rows:
        return "No proof has left a result yet."
    return "\n".join(["| proof | result | command | run |", "|---|---|---|---|", *rows])


def with_table(text, figures):
    """The text of README.md with these figures."""
    if text.count(BEGIN) != 1 or text.count(END) != 1 or text.index(BEGIN) > text.index(END):
        raise FiguresError(f"README.md needs one {BEGIN} and one {END} behind it")
    before, after = text.split(BEGIN)[0], text.split(END)[1]
    return f"{before}{BEGIN}\n{table(figures)}\n{END}{after}"


# --- what is asked for ---


def check(readme, figures_file):
    """Prints where README.md is something else than its figures, and which are not there yet; 0 when all there are
    are right."""
    is_there, figures = readme.read_text(encoding="utf-8"), read_json(figures_file)
    wanted = with_table(is_there, figures)
    lines = difflib.unified_diff(is_there.splitlines(), wanted.splitlines(), "README.md", "what figures.json says",
                                 lineterm="", n=0)
    for line in lines:
        print(line)
    without = [name for name in PROOFS if "outcome" not in figures.get(name, {})]
    if without:
        print(f"figures: none yet of {', '.join(without)}")
    if is_there != wanted:
        print("figures: README.md has other figures than docs/figures/figures.json: ./dev figures writes them",
              file=sys.stderr)
    return int(is_there != wanted)


def renew(readme, figures_file, results):
    """Takes the results in, and writes both files."""
    old = read_json(figures_file) if figures_file.exists() else {}
    figures, lines = merge(old, left_behind(results))
    text = with_table(readme.read_text(encoding="utf-8"), figures)
    figures_file.write_text(json.dumps(figures, indent=2) + "\n", encoding="utf-8")
    readme.write_text(text, encoding="utf-8")
    for line in lines:
        print(f"figures: {line}")
    return 0


def main(arguments):
    """The exit status."""
    try:
        return check(README, FIGURES) if arguments == ["--check"] else renew(README, FIGURES, RESULTS)
    except (FiguresError, OSError) as error:
        print(f"figures: {error}", file=sys.stderr)
        return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
