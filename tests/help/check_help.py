"""Checks the help pages, the transcripts of the README and the examples of docs/file-format.md: links
lead somewhere, and the examples give what is shown.

check_help.py PAGES TREE TOOL: PAGES is the folder of the built pages, TREE that of the sources, TOOL
the command-line tool. In the pages,
  pre data-file="NAME"    is a file that the examples of the page read (data-encoding: in another
                          encoding than UTF-8),
  pre data-run="NAME"     is a transcript: commands after "$ ", and their output,
  table class="faults"    has the text of a file of the kind data-kind in its first column (below
                          the line data-before) and the message of the tool in the second,
  data-value="NAME: ROW"  is the value of that row in the transcript of that name,
  data-working="..."      is the computation that the text shows, which has the result shown.
"""

import math
import os
import re
import sqlite3
import struct
import subprocess
import sys
import tempfile
import textwrap
import unittest
import xml.etree.ElementTree as xml
from pathlib import Path

HTML = "{http://www.w3.org/1999/xhtml}"
pages_folder, tree, tool = (Path(argument).resolve() for argument in sys.argv[1:4])


def text_of(element):
    text = element.text or ""
    for child in element:
        text += "\n" if child.tag == HTML + "br" else text_of(child)
        text += child.tail or ""
    return text


def pages():
    found = {path.name: xml.parse(path).getroot() for path in sorted(pages_folder.glob("*.html"))}
    made_from = {path.name for path in (tree / "docs/help").glob("*.html")} - {"frame.html"}
    assert made_from <= found.keys(), f"not made: {made_from - found.keys()}"
    return {name: found[name] for name in sorted(made_from)}


def with_attribute(page, name):
    return [element for element in page.iter() if name in element.attrib]


class Shell:
    """A folder of its own with the files of a page, the tool on the path."""

    def __init__(self, folder, page=None):
        self.folder = Path(folder)
        self.environment = dict(os.environ, PATH=f"{tool.parent}{os.pathsep}{os.environ['PATH']}")
        for element in with_attribute(page, "data-file") if page is not None else []:
            encoding = element.get("data-encoding", "utf-8")
            (self.folder / element.get("data-file")).write_bytes(text_of(element).encode(encoding))

    def run(self, command):
        ran = subprocess.run(["sh", "-c", command], cwd=self.folder, env=self.environment,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=120)
        return ran.stdout.decode()


def commands_in(transcript):
    return re.findall(r"^\$ (.*)\n", transcript, re.MULTILINE)


class Help(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.pages = pages()

    def test_links_and_pictures_lead_somewhere(self):
        ids = {name: {e.get("id") for e in with_attribute(page, "id")}
               for name, page in self.pages.items()}
        for name, page in self.pages.items():
            self.assertEqual(len(ids[name]), len(with_attribute(page, "id")), f"equal ids in {name}")
            for element in with_attribute(page, "href") + with_attribute(page, "src"):
                link = element.get("href") or element.get("src")
                with self.subTest(page=name, link=link):
                    file, _, anchor = link.partition("#")
                    self.assertTrue((pages_folder / (file or name)).is_file())
                    if anchor:
                        self.assertIn(anchor, ids[file or name])
            for image in page.iter(HTML + "img"):
                self.assertTrue(image.get("alt"), f"a picture without words in {name}")
                header = (pages_folder / image.get("src")).read_bytes()[16:24]
                size = (int(image.get("width")), int(image.get("height")))
                self.assertEqual(size, struct.unpack(">II", header), image.get("src"))

    def test_every_page_can_be_reached_and_runs_nothing(self):
        linked = {link.get("href") for page in self.pages.values() for link in page.iter(HTML + "a")}
        self.assertLessEqual(self.pages.keys(), linked)
        for name, page in self.pages.items():
            self.assertFalse(list(page.iter(HTML + "script")), name)

    def test_every_metric_has_its_section(self):
        table = (tree / "src/metrics/metric_table.h").read_text()
        keys = set(re.findall(r'{M::(\w+), "\1",', table))
        keys |= {"averageRarefiedRichness", "averageAlroySQS"}
        self.assertGreater(len(keys), 12)
        self.assertLessEqual(keys, {e.get("id") for e in self.pages["metrics.html"].iter()})

    def test_the_options_of_the_tool_are_those_told(self):
        commands = set(re.findall(r"<tr><td><code>(\w+)</code>",
                                  (tree / "docs/help/command-line.html").read_text()))
        with tempfile.TemporaryDirectory() as folder:
            shell = Shell(folder)
            overview = shell.run("zorvel-cli --help")
            self.assertEqual(commands, set(re.findall(r"^  (\w+)   ", overview, re.MULTILINE)))
            told = "".join(shell.run(f"zorvel-cli {command} --help") for command in commands)
        page = " ".join(self.pages["command-line.html"].itertext())
        self.assertEqual(set(re.findall(r"--\w[\w-]*", page)), set(re.findall(r"--\w[\w-]*", told)))

    def test_examples_of_the_tool_are_true(self):
        for name, page in self.pages.items():
            with tempfile.TemporaryDirectory() as folder:
                shell = Shell(folder, page)
                (Path(folder) / "examples").symlink_to(tree / "examples")
                for element in with_attribute(page, "data-run"):
                    shown = text_of(element)
                    commands = commands_in(shown)
                    self.assertTrue(commands, f"{name}: a transcript without a command")
                    ran = "".join(f"$ {command}\n{shell.run(command)}" for command in commands)
                    with self.subTest(page=name, command=commands[0]):
                        self.assertEqual(shown, ran)

    def test_transcripts_of_the_readme_are_true(self):
        blocks = re.findall(r"^    \$ .*\n(?:    .*\n)*", (tree / "README.md").read_text(), re.MULTILINE)
        self.assertGreater(len(blocks), 3)
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "examples").symlink_to(tree / "examples")
            shell = Shell(folder)
            for block in blocks:
                shown = textwrap.dedent(block)
                ran = "".join(f"$ {command}\n{shell.run(command)}" for command in commands_in(shown))
                self.assertEqual(shown, ran.expandtabs())

    def test_faults_are_told_in_these_words(self):
        for name, page in self.pages.items():
            for table in (t for t in page.iter(HTML + "table") if t.get("class") == "faults"):
                rows = [row for row in table.iter(HTML + "tr") if row.find(HTML + "td") is not None]
                self.assertTrue(rows)
                for row in rows:
                    text, message = (text_of(cell) for cell in row)
                    if "data-before" in table.attrib:
                        text = f"{table.get('data-before')}\n{text}"
                    with self.subTest(page=name, text=text), tempfile.TemporaryDirectory() as folder:
                        shell = Shell(folder)
                        (shell.folder / "file").write_text(text + "\n")
                        told = shell.run(f"zorvel-cli records file --kind {table.get('data-kind')}")
                        self.assertRegex(told, rf"(?m): {re.escape(message)}$")

    def test_worked_examples_have_the_results_shown(self):
        for name, page in self.pages.items():
            transcripts = {e.get("data-run"): text_of(e) for e in with_attribute(page, "data-run")}
            for element in with_attribute(page, "data-value"):
                transcript, caption = element.get("data-value").split(": ", 1)
                with self.subTest(page=name, value=element.get("data-value")):
                    self.assertIn(f"\n{caption}\t{element.text}\n", transcripts[transcript])
            for element in with_attribute(page, "data-working"):
                with self.subTest(page=name, working=element.get("data-working")):
                    result = eval(element.get("data-working"), dict(vars(math)))
                    digits = len(element.text.partition(".")[2])
                    self.assertEqual(f"{result:.{digits}f}", element.text)


class ProjectFilePage(unittest.TestCase):
    """docs/file-format.md: its tables are those of a new project, and its examples run."""

    page = (tree / "docs/file-format.md").read_text()

    def block(self, language):
        return re.search(f"```{language}\n(.*?)```", self.page, re.DOTALL).group(1)

    def test_the_tables_and_the_header_are_as_shown(self):
        with tempfile.TemporaryDirectory() as folder:
            shell = Shell(folder)
            (Path(folder) / "counts.csv").write_text("Abies alba,12\n")
            shell.run("zorvel-cli import --into new.zorvel counts.csv")
            with sqlite3.connect(Path(folder) / "new.zorvel") as project:
                made = [sql for (sql,) in project.execute("SELECT sql FROM sqlite_schema")]
                application, = project.execute("PRAGMA application_id").fetchone()
                version, = project.execute("PRAGMA user_version").fetchone()
            project.close()
        self.assertEqual(self.block("sql").split(), " ".join(made).split())
        self.assertIn(f"{application}", self.page)
        self.assertIn(f"`user_version` | {version}", self.page)

    def test_the_examples_print_what_the_project_holds(self):
        trials = {"sh": ("sh", "sqlite3 --version"), "python": (sys.executable, "true"),
                  "r": ("Rscript", "Rscript -e 'library(DBI); library(RSQLite)'")}
        with tempfile.TemporaryDirectory() as folder:
            shell = Shell(folder)
            with sqlite3.connect(Path(folder) / "example.zorvel") as project:
                project.executescript(self.block("sql").replace("CREATE", ";CREATE") + """;
                    INSERT INTO name VALUES(1, 'Abies alba'), (2, 'Quercus'), (3, 'Échinops');
                    INSERT INTO census VALUES(1, 'North', 51.5, -0.25, NULL, NULL),
                                             (5, 'East', 1, 2, NULL, NULL);
                    INSERT INTO taxon VALUES(2, 1, 1, 12, 1), (3, 1, NULL, 3, 1), (4, 1, 2, 5, 0),
                                            (6, 5, 3, 9000000000, 1), (7, 1, 1, 0, 1);""")
            project.close()
            expected = textwrap.dedent("""\
                North\tAbies alba\t12\t1
                North\t\t3\t1
                North\tQuercus\t5\t0
                North\tAbies alba\t0\t1
                East\tÉchinops\t9000000000\t1
                12
                3
                0
                """)
            for language, (program, trial) in trials.items():
                with self.subTest(language=language):
                    if subprocess.run(trial, shell=True, capture_output=True).returncode != 0:
                        continue
                    (Path(folder) / "script").write_text(self.block(language))
                    self.assertEqual(shell.run(f"{program} script"), expected)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
