"""The committed drawings against their sources: the same nodes, arrows and texts, whatever the fonts measure."""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import xml.etree.ElementTree as xml


def content(svg):
    """What a drawing shows: the name, kind and texts of each node and arrow, in order."""
    tag = "{http://www.w3.org/2000/svg}"
    shown = []
    for group in xml.fromstring(re.sub(r"<!DOCTYPE[^>]*>", "", svg)).iter(tag + "g"):
        title = group.find(tag + "title")
        texts = [text.text for text in group.findall(tag + "text")]
        shown.append((group.get("class"), None if title is None else title.text, texts))
    return shown


def check(root):
    """The sources without a drawing, and the drawings that show something else than their source."""
    folder = pathlib.Path(root) / "docs/diagrams"
    findings = [f"{source.name}: there is no {source.stem}.svg" for source in sorted(folder.glob("*.dot"))
                if not source.with_suffix(".svg").exists()]
    if shutil.which("neato") is None:
        is_required = os.environ.get("CANBUS_REQUIRE_PROGRAMS")
        return findings + ["there is no neato: it is in the package graphviz"] if is_required else findings
    if findings:
        return findings
    with tempfile.TemporaryDirectory() as drawn:
        subprocess.run([folder / "render.sh", drawn], check=True, stdout=subprocess.DEVNULL)
        for path in sorted(folder.glob("*.svg")):
            fresh = pathlib.Path(drawn) / path.name
            if not fresh.exists():
                findings.append(f"{path.name}: has no source")
            elif content(path.read_text(encoding="utf-8")) != content(fresh.read_text(encoding="utf-8")):
                findings.append(f"{path.name}: is not what its source gives: docs/diagrams/render.sh draws it")
    return findings
