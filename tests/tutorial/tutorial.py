"""tutorial.py PROGRAMS PAGE [PICTURES]: carries out the tutorial of the help.

PROGRAMS is the folder of zorvel and zorvel-cli, PAGE the page of the tutorial. After each step, what
the program saved or copied is compared with the page. With PICTURES, the pictures of the page are
also written to that folder.
"""

import subprocess
import sys
import tempfile
from pathlib import Path

from desktop import Desktop, Missing, PATIENCE, lacking, wait_for
from page import Page
from person import Person, check

SKIPPED = 77  # the exit status of a test that cannot run here
PROJECT = r"stands\b.*"
SAVING = r"(Save|Export)\b.*"
OPENING = r"(Open|Import)\b.*"
PREVIEW = r"Table Preview\b.*"
PREFERENCES = r"Preferences\b.*"
INDIVIDUALS = r"Individual-based Rarefaction\b.*"
SAMPLES = r"Sample-based Rarefaction\b.*"
WHOLE = r"Project-wide Metrics\b.*"
DIVERSITY = r"Diversity at Equal Coverage\b.*"
SHANNON = "Shannon's H"
NORTH = {"Abies alba": 10, "Picea abies": 5, "Larix decidua": 3, "Acer pseudoplatanus": 2,
         "Sorbus aucuparia": 1, "Taxus baccata": 1}


def table(text):
    """Of the text of a matrix: the species of each census that are there."""
    head, *lines = (line.split(",") for line in text.splitlines())
    return {name: {species: int(number) for species, number in zip(head[1:], numbers)
                   if number != "0"}
            for name, *numbers in lines}


class Tutorial(Person):
    def run(self):
        for name, steps in self.page.sections.items():
            print(f"== {name}", flush=True)
            self.steps = list(steps)
            getattr(self, "do_" + name.replace("-", "_"))()
            check(not self.steps, f"not done: {[step.text for step in self.steps]}")
        check(self.drawn == set(self.page.pictures()), f"drawn are {self.drawn}")

    def do_type(self):
        self.start()
        self.do()
        self.saved({"North": {}})
        self.do()
        self.do()
        self.saved({"North": NORTH})
        shown = self.shown(Richness="6")
        self.says(f"The right side now shows {shown['Individuals']} individuals and "
                  f"{shown['Richness']} species, a Chao1 of {shown['Chao1']} and a Shannon's H of "
                  f"{shown[SHANNON]}")
        self.draw("first-census.png", self.desktop.window(r"Untitled\b.*"))

    def do_ask(self):
        window = self.desktop.window(r"Untitled\b.*")
        self.do()
        check(self.desktop.copied_by("ctrl+c") == "6.5", "the steps do not lead to Chao1")
        before = self.desktop.picture(window)
        self.do()
        wait_for("the explanation", lambda: self.desktop.picture(window) != before)
        self.draw("explanation.png", window)
        # It has the focus.
        text = wait_for("its words", lambda: self.copied_whole("Chao1"))
        inputs = "N = 22, S = 6, f1 = 2, f2 = 1"
        check(inputs in text, f"the explanation says {text!r}")
        self.says(f"into it ({inputs})")
        self.do()
        check(self.desktop.copied_by("ctrl+c") == "6.5", "the focus is not back at Chao1")

    def do_save(self):
        self.do(opens=SAVING, closes=SAVING)
        self.desktop.window(PROJECT)
        wait_for("the file", (self.documents / "stands.zorvel").exists)
        self.saved({"North": NORTH})
        check(not list(self.home.glob(".local/**/untitled/*.zorvel")), "the untitled file is left")

    def do_import(self):
        text = self.page.file("plots.csv")
        (self.documents / "plots.csv").write_text(text)
        self.all = {"North": NORTH, **table(text)}
        self.do(opens=OPENING, closes=OPENING)
        self.saved(self.all)
        self.do(until="North\t")
        east = self.shown(census="East")
        self.says(f"East has {east['Individuals']} individuals, {east['Richness']} species and a "
                  f"Shannon's H of {east[SHANNON]}")
        (self.documents / "plots.csv").write_text(text.replace("West,7,", "West,7.5,"))
        self.do(opens=OPENING, closes=OPENING)
        wait_for("the line of the console", lambda: "integer: 7.5" in self.console())
        self.saved(self.all)
        self.draw("refused.png", self.desktop.window(PROJECT))

    def do_spreadsheet(self):
        (self.documents / "forest.csv").write_text(self.page.file("forest.csv"))
        self.do(opens=OPENING, closes=OPENING)
        window = self.desktop.window(PREVIEW)
        self.desktop.still_picture(window)
        self.draw("preview.png", window)
        self.do(closes=PREVIEW)
        self.saved({**self.all, "Bog": {"Picea abies": 6},
                    "Ridge": {"Abies alba": 4, "Picea abies": 1}})
        self.do()
        self.saved(self.all)

    def do_leave_out(self):
        self.do()
        self.shown(census="North", Richness="6")
        self.do()
        richness = self.shown(Individuals="21")["Richness"]
        self.says(f"Richness falls to {richness}")
        self.saved({**self.all, "North": {**NORTH, "Taxus baccata": None}})
        self.do()
        self.shown(Richness="6")
        self.saved(self.all)

    def do_compare(self):
        self.do(opens=PREFERENCES, closes=PREFERENCES)
        north = self.shown(census="North")
        self.says(f"“Rarefied richness (10)”: North has {north['Rarefied richness (10)']} species")
        self.do(opens=INDIVIDUALS)
        self.draw("rarefaction.png", self.desktop.window(INDIVIDUALS))
        self.do(opens=SAVING, closes=SAVING)
        page = wait_for("the plot", (self.documents / "north.pdf").read_bytes)
        check(page.startswith(b"%PDF-") and b"%%EOF" in page[-16:], f"the plot is {page[:80]}")
        self.do(closes=INDIVIDUALS)
        self.do(opens=WHOLE)
        values = wait_for("Chao2", lambda: self.values("ctrl+shift+c").get("Chao2"))
        self.says(f"Among the project-wide metrics is a Chao2 of {values}")
        self.do(closes=WHOLE)
        self.do(opens=SAMPLES)
        self.do(closes=SAMPLES)
        self.desktop.window(PROJECT)
        self.do(until="North\t")
        self.do(opens=DIVERSITY)
        self.do()
        # There is nothing to copy before the limits are there.
        wait_for("the table", lambda: self.appears("census\t")
                 or self.desktop.keys("ctrl+shift+c"))
        head, *rows = (line.split("\t") for line in self.desktop.clipboard().splitlines())
        found = [f"{row[0]} {float(row[head.index('q0')]):.1f}" for row in rows]
        self.says(f"{', '.join(found[:-1])} and {found[-1]}".replace("North ", "North has ")
                  .replace(",", " species,", 1))
        self.do(closes=DIVERSITY)

    def do_export(self):
        self.desktop.window(PROJECT)
        self.do(opens=SAVING, closes=SAVING)
        exported = wait_for("the table", (self.documents / "metrics.csv").read_text)
        told = self.tool("metrics", self.project())
        check(steady(exported) == steady(told), f"exported is {exported}, zorvel-cli says {told}")

    def do_quit(self):
        self.desktop.window(PROJECT)
        self.do()
        check(self.program.wait(PATIENCE) == 0, f"it ended with {self.program.returncode}")
        self.start()
        self.do()
        self.desktop.window(PROJECT)
        self.saved(self.all)
        self.shown(census="North", Richness="6")
        self.desktop.keys("ctrl+q")
        check(self.program.wait(PATIENCE) == 0, f"it ended with {self.program.returncode}")


def steady(table_of_metrics):
    """Without what is drawn at random."""
    rows = [line.split(", ") for line in table_of_metrics.splitlines()]
    random = rows[0].index("alroySQS")
    return [row[:random] + row[random + 1:] for row in rows]


def main(programs, page, pictures=None):
    if lacking():
        print(f"Not here: {', '.join(lacking())}")
        return SKIPPED
    with tempfile.TemporaryDirectory(prefix="zorvel-tutorial-") as home, Desktop() as desktop:
        tutorial = Tutorial(desktop, Path(programs), Page(Path(page)), Path(home),
                            Path(pictures) if pictures else None)
        try:
            tutorial.run()
        except Missing as missing:
            print(missing)
            print((Path(home) / "zorvel.log").read_text(errors="replace"))
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
