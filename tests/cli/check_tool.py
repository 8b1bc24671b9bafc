"""Checks whole outputs of the command-line tool: results, messages, exit status, files and streams.

check_tool.py TREE TOOL: TREE is the folder of the sources, TOOL the command-line tool.
"""

import fcntl
import json
import os
import shutil
import stat
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

tree, tool = (Path(argument).resolve() for argument in sys.argv[1:3])
data = tree / "tests/data/cli"
mites = str(tree / "examples/oribatid-mites.csv")

# A quota past the attainable coverage leaves nothing to chance.
WARNING = "WARNING: Quota exceeds sum of frequencies: "
NORTH = """Individuals\t22
Richness\t6
Rarefied richness (5)\t3.2
Chao1\t6.5
Alroy SQS (quota: 0.95)\t-
Shannon's H\t1.466
Fisher's alpha\t2.718
Pielou's J\t0.818
Simpson's D\t0.745
Buzas-Gibson's E\t0.722
"""
SOUTH = """Individuals\t3
Richness\t2
Rarefied richness (50)\t2.0
Chao1\t2.0
Alroy SQS (quota: 0.80)\t-
Shannon's H\t0.637
Fisher's alpha\t0.0
Pielou's J\t0.918
Simpson's D\t0.667
Buzas-Gibson's E\t0.945
"""
POOLED = """Individuals\t23
Richness\t3
Chao1\t-
Shannon's H\t0.822
Fisher's alpha\t0.921
Pielou's J\t0.749
Simpson's D\t0.490
Buzas-Gibson's E\t0.759
Rarefied richness (2)\t1.5
Alroy SQS (quota: 1.50)\t-
Average abundance\t7.7
Average richness\t2.3
Average Chao1\t-
Average Shannon's H\t0.746
Average Fisher's alpha\t0.532
Average Pielou's J\t0.881
Average Simpson's D\t0.620
Average Buzas-Gibson's E\t0.923
Average rarefied richness (2)\t1.6
Average Alroy SQS (quota: 1.50)\t-
Censuses with Alroy SQS\t0
Chao2\t3.0
Sample-based rarefied richness (2)\t3.0
"""
CURVE_HEADER = ("sampleSize,estimatedRichness,variance,lower95limit,upper95limit,lower99limit,"
                "upper99limit\n")
CURVE = CURVE_HEADER + "".join(
    ",".join([f"{size:>10}", *(f"{value:>{width}.3f}" for value, width in zip(
        values, (17, 8, 12, 12, 12, 12)))]) + "\n"
    for size, values in ((1, (1, 0, 1, 1, 1, 1)), (2, (5 / 3, 2 / 9, 1, 2.591, 1, 2.883)),
                         (3, (2, 0, 2, 2, 2, 2))))
RECORDS = """[
  {"name": "Bog", "latitude": 47.61, "longitude": -122.33, "notes": "wet, cold\\tand \u201cmossy\u201d", \
"timeStamp": "2016-03-05T15:42:00+01:00", "taxa": [{"name": "Abies alba", "abundance": 4, \
"include": true}]},
  {"name": "Fen", "latitude": 1e-07, "longitude": null, "notes": "", \
"timeStamp": "2016-07-01T00:05:00+02:00", "taxa": [{"name": "Betula nana", "abundance": 7, \
"include": true}]}
]
"""


def run(*command, stdin="", **environment):
    """Exit status, standard output and standard error, run in the folder of the test data."""
    ran = subprocess.run(command, cwd=data, env=dict(os.environ, **environment), timeout=300,
                         input=stdin.encode("utf-8", "surrogateescape"), capture_output=True)
    return (ran.returncode, *(text.decode("utf-8", "surrogateescape")
                              for text in (ran.stdout, ran.stderr)))


def call(arguments, *more, **surroundings):
    return run(tool, *arguments.split(), *more, **surroundings)


def values(arguments, *more):
    status, out, err = call(arguments + " --json", *more)
    assert status == 0, err
    return json.loads(out)


def names_in_order(text):
    names = []
    json.loads(text, object_pairs_hook=lambda pairs: names.append([name for name, _ in pairs]))
    return names


class Results(unittest.TestCase):
    maxDiff = None

    def test_text_is_whole(self):
        for arguments, more, stdin, out, err in (
                ("summary three.csv --size 5 --quota 0.95", (), "", NORTH,
                 f"three.csv: North: {WARNING}0.9204545454545454\n"),
                ("summary three.csv --census", ("Cafe\u0301 Sud",), "", SOUTH, ""),
                ("summary --kind list - --size 5 --quota 0.95", (), "10 5\t3, 2\r\n1 1", NORTH,
                 f"<stdin>: imported census: {WARNING}0.9204545454545454\n"),
                ("project pooled.csv --size 2 --quota 1.5", (), "", POOLED,
                 f"pooled.csv: {WARNING}1.0\n"),
                ("rarefaction one.csv --kind census", (), "", CURVE, ""),
                ("rarefaction three.csv --census Empty", (), "", CURVE_HEADER, ""),
                ("matrix phone.txt --kind ios", (), "",
                 " , Abies alba, Betula nana\nBog,4,0\nFen,0,7\n", ""),
                ("records --kind ios -", (), 'a",b",c",d",e",f\n', "[]\n", "")):
            with self.subTest(arguments):
                self.assertEqual(call(arguments, *more, stdin=stdin), (0, out, err))
        self.assertEqual(call("records phone.txt --kind ios", TZ="CET-1CEST,M3.5.0,M10.5.0/3"),
                         (0, RECORDS, ""))
        status, out, err = call("metrics three.csv --seed 1 --quota 7")
        self.assertEqual((status, err), (0, ""))
        self.assertRegex(
            out, r"^ , Abundance, Richness, Chao-1, alroySQS, Shannon's H, Fisher's alpha, Pielou's J, "
                 r"Simpson's D, Buzas-Gibson E\n"
                 r"North, 22, 6, 8.0, [3-5]\.\d, 1.466, 2.718, 0.818, 0.745, 0.722\n"
                 r"Empty, 0, 0, -, 0.0, 0.0, 0.0, 0.0, 0.0, -\n"
                 "Caf\u00e9 Sud, 3, 2, 2.5, 0.0, 0.637, 0.0, 0.918, 0.667, 0.945\n$")

    def test_names_of_json_stand_in_order(self):
        census = ("census individuals richness rarefiedRichness chaoOne chaoClassic alroySQS shannonH "
                  "fisherAlpha pielouJ simpsonD buzasE").split()
        indices = ("individuals richness chaoClassic shannonH fisherAlpha pielouJ simpsonD "
                   "buzasE").split()
        averages = [*indices, "averageRarefiedRichness", "averageAlroySQS", "censusesWithAlroySQS"]
        project = [*indices, "rarefiedRichness", "alroySQS", "averages", "chaoTwo",
                   "sampleBasedRarefiedRichness"]
        point = "sampleSize estimate variance lower95 upper95 lower99 upper99".split()
        for arguments, expected in (("summary pooled.csv", [census]),
                                    ("metrics pooled.csv", 3 * [census]),
                                    ("rarefaction one.csv --kind census", 3 * [point]),
                                    ("project pooled.csv", [averages, project])):
            self.assertEqual(names_in_order(call(arguments + " --json")[1]), expected)
        # Each name has its own number.
        second = values("rarefaction three.csv")[1]
        self.assertEqual([f"{second[name]:.3f}" for name in point], [
            "2.000", *(cell.strip() for cell in call("rarefaction three.csv")[1].splitlines()[2]
                       .split(",")[1:])])

    def test_json_has_all_digits(self):
        metrics = values("metrics three.csv --size 5 --quota 0")
        north = metrics[0]
        self.assertEqual((north["census"], north["chaoOne"], north["chaoClassic"]), ("North", 6.5, 8))
        for key, value in (("rarefiedRichness", 3.1591858433963695), ("simpsonD", 172 / 231),
                           ("shannonH", 1.4658073752112626)):
            self.assertAlmostEqual(north[key], value, 12)
        self.assertIsNone(north["alroySQS"], "a quota of 0 gives NaN")
        self.assertEqual((metrics[1]["individuals"], metrics[1]["buzasE"]), (0, None))
        project = values("project pooled.csv --size 2")
        averages = project["averages"]
        self.assertAlmostEqual(project["buzasE"], 0.7586100731011026, 14)
        self.assertAlmostEqual(averages["individuals"], 23 / 3, 14)
        self.assertIsNone(averages["chaoClassic"])
        # Of two specimens: 1 + 60/156, 1 + 20/42 and 2 expected taxa.
        self.assertAlmostEqual(averages["averageRarefiedRichness"], (4 + 60 / 156 + 20 / 42) / 3, 12)
        self.assertEqual(averages["censusesWithAlroySQS"], 1, "A alone has 11 specimens")
        curve = values("rarefaction five.csv --samples")  # over all subsets of censuses
        for size, (point, estimate) in enumerate(zip(curve, (2.4, 3.1, 3.5, 3.8), strict=True), 1):
            self.assertEqual(point["sampleSize"], size)
            self.assertAlmostEqual(point["estimate"], estimate, 12)

    def test_diversity_is_whole(self):
        head = "census,individuals,richness,coverage,coverageAtTwice,q0,q1,q2,"
        estimates = "q0Estimated,q1Estimated,q2Estimated\n"
        self.assertEqual(call("diversity three.csv"), (0, head + estimates + (
            "North,22,6,0.9132,0.9688,6.000,4.331,3.457,7.909,5.173,3.915\n"
            "Empty,0,0,-,-,-,-,-,-,-,-\n"
            'Caf\u00e9 Sud,3,2,0.8333,0.9792,2.000,1.890,1.800,2.333,2.520,3.000\n'), ""))
        self.assertEqual(
            call("diversity five.csv --samples")[1].splitlines()[1],
            "all censuses,5,12,4,0.9444,0.9927,4.000,3.444,3.130,4.400,3.815,3.388")
        self.assertEqual(call("diversity pooled.csv --pooled")[1].splitlines()[1].split(",")[:3],
                         ["all censuses", "23", "3"])
        self.assertEqual(call('diversity - --at-size 2 --replicates 0', stdin=' ,a,b\n"A, ""x""",3,1\n')[1]
                         .splitlines()[1], '"A, ""x""",0.7500,2,rarefied,1.500,-,-,-,-,1.414,-,-,-,-,1.333,-,-,-,-')

    def test_diversity_at_equal_coverage(self):
        rows = values("diversity three.csv --at-coverage 1")
        reasons = [{point.get("reason") for point in row["points"]} for row in rows]
        self.assertEqual(reasons[1], {"There are no species."})
        self.assertRegex(reasons[0].pop(), "^This coverage would need more than any sample")
        self.assertEqual([len(row["points"]) for row in rows], [3, 3, 3])
        common = values("diversity --at-coverage common --seed 3", mites)
        self.assertEqual({round(row["points"][0]["coverage"], 3) for row in common}, {0.892})
        for row in common:
            for point in row["points"]:
                self.assertLessEqual(point["lower99"], point["lower95"])
                self.assertLess(point["lower95"], point["estimate"])
                self.assertEqual(point["beyondTwice"], point["sampleSize"] > 2 * row["individuals"])
        again = values("diversity --at-coverage common --seed 3", "--census", "Core 12", mites)
        self.assertNotEqual(common[11]["points"], again[0]["points"], "alone it reaches further")
        for curve in ("size", "coverage"):
            points = values(f"diversity --curve {curve} --replicates 20", "--census", "Core 1",
                            mites)[0]["points"]
            self.assertEqual(len(points), 123)
            self.assertEqual([points[i]["method"] for i in (0, 20, 40)],
                             ["rarefied", "observed", "extrapolated"])
        profile = values("diversity --profile", "--census", "Core 1", mites)[0]["points"]
        self.assertEqual([profile[i]["order"] for i in (0, 1, 20)], [0, 0.1, 2])
        summary = values("diversity", "--census", "Core 1", mites)[0]
        self.assertEqual(summary["observed"]["q1"], profile[10]["observed"])
        self.assertAlmostEqual(summary["chaoOne"]["estimate"], 22.5, 12)

    def test_a_seed_fixes_sqs(self):
        sqs = lambda *seed: {row["census"]: row["alroySQS"] for row in values("metrics", mites, *seed)}
        seeded = sqs("--seed", "5")
        self.assertEqual(seeded, sqs("--seed", "5"))
        self.assertNotEqual(seeded, sqs("--seed", "6"))
        self.assertNotEqual(seeded, sqs())
        one = values("summary --seed 5", "--census", "Core 60", mites)
        self.assertEqual(one["alroySQS"], seeded["Core 60"], "whatever precedes it in the file")

    def test_a_matrix_reads_back_as_itself(self):
        matrix = call("matrix", mites)[1]
        self.assertEqual(matrix.count("\n"), 71)
        self.assertEqual(call("matrix -", stdin=matrix)[1], matrix)

    def test_numbers_do_not_follow_the_locale(self):
        with tempfile.TemporaryDirectory() as folder:
            if run("localedef", "-i", "de_DE", "-f", "UTF-8", f"{folder}/de_DE.UTF-8")[0] != 0:
                self.skipTest("the German locale cannot be made here")
            german = {"LOCPATH": folder, "LC_ALL": "de_DE.UTF-8"}
            self.assertEqual(run("bash", "-c", "printf %.1f 0,5", **german)[1], "0,5")
            for arguments in ("summary three.csv --size 5 --quota 0.95",
                              "metrics three.csv --json --seed 1", "summary three.csv --quota 0,95"):
                self.assertEqual(call(arguments, **german), call(arguments))

    def test_input_that_cannot_be_used_is_refused(self):
        no_census = 'a",b",c",d",e",f\n'
        for arguments, stdin, message in (
                ("metrics nowhere.csv", "", "nowhere.csv: cannot be opened: No such file or directory"),
                ("metrics .", "", ".: cannot be read: Is a directory"),
                ("metrics -", "", "<stdin>: No censuses could be imported"),
                ("matrix -", " ,a,b\nNorth,1,x\n",
                 "<stdin>:2:3: B: Not an abundance value, or not an integer: x"),
                ("summary --kind ios -", no_census, "<stdin>: holds no census"),
                ("summary three.csv --census Nroth", "",
                 "three.csv: no census is called 'Nroth'; the censuses are 'North', 'Empty', "
                 "'Caf\u00e9 Sud'"),
                ("rarefaction --kind ios -", no_census,
                 "<stdin>: Must have at least one census to calculate individual-based rarefaction"),
                ("rarefaction --samples -", " ,a\nA,1\nB,1\nC,1\nD,1\n",
                 "<stdin>: Must have at least five censuses to calculate sample-based rarefaction"),
                ("rarefaction -", " ,a,b\nA,1000000000000000000,1\n",
                 "<stdin>: There are more than 10^18 specimens, too many to rarefy exactly"),
                ("project -", " ,a\nA,1\nB,1\n",
                 "<stdin>: Must have at least three censuses to calculate project-wide metrics")):
            with self.subTest(arguments):
                self.assertEqual(call(arguments, stdin=stdin), (1, "", message + "\n"))
        status, _, err = call("metrics -", stdin="\udcff\udcfe \0,\0")
        self.assertEqual(status, 1)
        self.assertRegex(err, "^<stdin>: not UTF-8 text: it seems to be UTF-16")


class InFolder(unittest.TestCase):
    """A folder of its own for each test."""
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.file = self.folder / "result"
        self.project = self.folder / "p.zorvel"

    def entries(self):
        return sorted(path.name for path in self.folder.iterdir())

    def imports(self, *files, stdin=""):
        return call("import", *files, "--into", self.project, stdin=stdin)


class Outputs(InFolder):
    def test_a_file_gets_what_standard_output_would(self):
        self.file.write_text("x" * 100000)
        for command in ("matrix", "records", "project", "metrics"):
            shown = call(f"{command} --seed 1", mites)
            self.assertEqual(call(f"{command} --seed 1", mites, "--output", self.file), (0, "", ""))
            self.assertEqual(self.file.read_text(), shown[1])
            self.assertEqual(call(f"{command} --seed 1 --output -", mites), shown)
        # It may be the input.
        self.file.write_bytes(b" ,b,a\r\nNorth,1,2\r\n")
        self.assertEqual(call("matrix", self.file, "--output", self.file)[0], 0)
        self.assertEqual(self.file.read_text(), " , a, b\nNorth,2,1\n")
        self.assertEqual(self.entries(), ["result"])

    def test_a_project_is_not_replaced(self):
        self.assertEqual(self.imports("three.csv")[0], 0)
        before = self.project.read_bytes()
        (self.folder / "damaged.zorvel").write_text("SQL")
        os.link(self.project, self.folder / "other.csv")
        (self.folder / "link.csv").symlink_to("p.zorvel")
        (self.folder / "damaged.csv").symlink_to("damaged.zorvel")
        for name in ("p.zorvel", "other.csv", "link.csv", "damaged.zorvel", "damaged.csv", "new.zorvel",
                     "p.zorvel-journal"):
            status, _, err = call("matrix", self.project, "--output", self.folder / name)
            self.assertEqual(status, 1)
            self.assertTrue(err.startswith(f"{self.folder / name}: is a project or named like one"), err)
        self.assertEqual(self.project.read_bytes(), before)
        self.assertEqual((self.folder / "damaged.zorvel").read_text(), "SQL")
        self.assertFalse((self.folder / "new.zorvel").exists())

    def test_nothing_is_written_on_a_problem(self):
        self.file.write_text("old")
        self.assertEqual(call("project one.csv --kind census --output", self.file)[0], 1)
        self.assertEqual(self.file.read_text(), "old")
        nowhere = self.folder / "none/result"
        self.assertEqual(call("metrics three.csv --output", nowhere),
                         (1, "", f"{nowhere}: cannot be written: No such file or directory\n"))
        self.assertEqual(self.entries(), ["result"])

    def redirected(self, script, arguments, **surroundings):
        return run("bash", "-c", script, "bash", tool, *arguments.split(), **surroundings)

    def test_a_full_device_or_closed_stream_is_a_problem(self):
        full = "cannot be written: No space left on device\n"
        for arguments in ("metrics three.csv", f"records {mites}", "--help"):
            self.assertEqual(self.redirected('"$@" >/dev/full', arguments), (1, "", f"<stdout>: {full}"))
        self.assertEqual(call("metrics three.csv --output /dev/full"), (1, "", f"/dev/full: {full}"))
        self.assertTrue(stat.S_ISCHR(os.stat("/dev/full").st_mode), "it stays what it is")
        self.assertEqual(self.redirected('"$@" >&-', "metrics three.csv"),
                         (1, "", "<stdout>: cannot be written: Bad file descriptor\n"))
        # A file does not get the number of a closed stream, and the warning about the quota.
        arguments = f"summary three.csv --quota 0.95 --output {self.file}"
        self.assertEqual(self.redirected('"$@" <&- >&- 2>&-', arguments)[0], 0)
        self.assertRegex(self.file.read_text(), r"^Individuals\t22\n")
        self.assertNotIn("WARNING", self.file.read_text())

    def test_a_reader_that_goes_away_needs_no_message(self):
        script = '"$@" | head -c 2; exit ${PIPESTATUS[0]}'
        self.assertEqual(self.redirected(script, "records -", stdin=" ,a\n" + 50000 * "North,1\n"),
                         (1, "[\n", ""))

    def test_messages_have_no_control_characters(self):
        """Names and cells must not command the terminal; a result is data and stays as it is."""
        self.assertEqual(call("metrics -", stdin=" ,a\nNorth,\x1b]52;c;QQ==\a\n")[2],
                         "<stdin>:2:2: B: Not an abundance value, or not an integer: "
                         "\\x1b]52;c;QQ==\\x07\n")
        named = ' ,a,b\n"\x1b[2J\n",1,10\n'
        self.assertEqual(call("summary - --quota 5", stdin=named)[2][:32],
                         "<stdin>: \\x1b[2J\\x0a: WARNING: Q")
        self.assertEqual(call("matrix -", stdin=named)[1], " , a, b\n\x1b[2J\n,1,10\n")
        self.assertEqual(call("metrics", "\x1b[2J")[2],
                         "\\x1b[2J: cannot be opened: No such file or directory\n")
        self.assertEqual(call("", "\x1b[2J\n")[2][:45], "zorvel-cli: there is no command '\\x1b[2J\\x0a'")


class Projects(InFolder):
    """As input: every command reads them and leaves them as they are."""

    def test_they_give_what_their_text_gives(self):
        for file, kind in (("three.csv", "matrix"), ("five.csv", "matrix"), ("one.csv", "census"),
                           ("counts.txt", "list"), ("phone.txt", "ios"), (mites, "matrix")):
            self.project.unlink(missing_ok=True)
            self.imports(file)
            before = self.project.read_bytes()
            for command in ("metrics", "metrics --json", "summary --quota 0.95", "rarefaction",
                            "project", "rarefaction --samples", "matrix", "records"):
                with self.subTest(file=file, command=command):
                    status, out, err = call(f"{command} --seed 1", self.project)
                    self.assertEqual((status, out, err.replace(str(self.project), file)),
                                     call(f"{command} --seed 1 --kind {kind}", file))
            self.assertEqual(self.project.read_bytes(), before)
            self.assertEqual(self.entries(), ["p.zorvel"])

    def test_those_that_cannot_be_read_as_given_are_refused(self):
        self.imports("three.csv")
        self.assertEqual(call("metrics --kind matrix", self.project), (
            1, "", f"{self.project}: is a project, while --kind is for text: leave it out\n"))
        with open(self.project) as bytes_of_project:
            piped = subprocess.run([tool, "metrics", "-"], stdin=bytes_of_project, capture_output=True)
        self.assertEqual((piped.returncode, piped.stderr.decode()), (
            1, "<stdin>: holds a project, which cannot be read from standard input or a pipe: name its "
               "file instead\n"))

    def test_those_that_cannot_be_opened_stay_as_they_are(self):
        self.imports("three.csv")
        whole = self.project.read_bytes()
        size = len(whole)
        with_bytes = lambda at, new: whole[:at] + new + whole[at + len(new):]
        for changed, message in (
                (whole[:16], "The file is damaged"),
                (whole[:size // 2], "The file is damaged"),
                (with_bytes(size - 60, 60 * b"\xff"), "The file is damaged"),
                (with_bytes(68, b"else"), "This database belongs to another program"),  # application_id
                (with_bytes(60, b"\0\1\0\0"), "A later version of Zorvel")):  # user_version
            self.project.write_bytes(changed)
            for arguments in (("records", self.project),
                              ("import three.csv --into", self.project),
                              ("import", self.project, "--into", self.folder / "new.zorvel")):
                status, out, err = call(*arguments)
                self.assertEqual((status, out), (1, ""))
                self.assertIn(f"{self.project}: {message}", err)
            self.assertEqual(self.project.read_bytes(), changed)
            self.assertEqual(self.entries(), ["p.zorvel"])


class Imports(InFolder):
    """All of the files into a project, or nothing."""

    def censuses(self):
        return [census["name"] for census in values("records", self.project)]

    def as_plain_user(self, *arguments):
        """The command for a user whom permissions bind."""
        command = (tool, "import", "three.csv", "--into", self.project, *arguments)
        if os.geteuid() != 0:
            return command
        if not shutil.which("setpriv"):
            self.skipTest("setpriv is missing")
        # The folder of the tool may be closed to others.
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        os.chmod(folder.name, 0o755)
        copy = shutil.copy(tool, folder.name)
        return ("setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", copy, *command[1:])

    def test_a_project_is_made_and_added_to(self):
        self.assertEqual(self.imports("three.csv", "one.csv"), (
            0, "", f"{self.project}: new project created\n"
                   "three.csv: stored 3 censuses with 8 taxa, read as matrix\n"
                   "one.csv: stored 1 census with 2 taxa, read as census\n"))
        self.assertEqual(self.imports("phone.txt")[2],
                         "phone.txt: stored 2 censuses with 2 taxa, read as ios\n")
        self.assertEqual(self.imports("-", "--kind", "list", stdin="7")[2],
                         "<stdin>: stored 1 census with 1 taxon, read as list\n")
        self.assertEqual(self.imports("counts.txt", "--kind", "ios")[0], 1, "--kind precedes content")
        self.assertEqual(self.censuses(), ["North", "Empty", "Caf\u00e9 Sud", "imported census", "Bog",
                                           "Fen", "imported census"])
        self.assertEqual(self.entries(), ["p.zorvel"])

    def test_what_a_format_leaves_out_is_told(self):
        header = 'Name","Date","Notes","Lat","Lon","a","b"\n'
        line = 'Bog","Mar 5, 2016 3:42 PM","",1,2,4,-3'
        for kind, text, told in (
                ("list", "1 2", ""),
                ("census", "a,1\nb,", "1 unfinished last line left out"),
                ("census", "a,1\nb,2", ""),
                ("matrix", " ,a,b\nN,0,0\n", ""),
                ("matrix", " ,a,b\nN,0,1\nimported census,1,2\nS,1,\nimported census,0,0\n",
                 "2 rows called imported census left out; 1 row with fewer cells than names filled up "
                 "with zeros"),
                ("ios", header + line + "\n" + line,
                 "1 unfinished last line left out; 1 negative abundance taken as 0")):
            status, _, err = self.imports("-", "--kind", kind, stdin=text)
            self.assertEqual(status, 0)
            lines = err[err.index("<stdin>: stored"):].splitlines()
            self.assertEqual(lines[1:], [f"<stdin>: {told}"] if told else [])

    def test_a_file_without_taxa_is_a_warning_or_refused(self):
        for text, why in ((" ,a\nN,0\n", "every abundance is 0"),
                          ("a 1\nb 2\n", "there are no abundances, or no commas in front of them")):
            status, _, err = self.imports("-", stdin=text)
            self.assertEqual(status, 0)
            self.assertTrue(err.startswith(
                f"<stdin>: WARNING: none of its censuses has a taxon: {why}\n"), err)
        self.project.unlink()
        status, _, err = self.imports("three.csv", "-", stdin="site;a;b\nNorth;1;2\n")
        self.assertEqual(status, 1)
        self.assertTrue(err.startswith("<stdin>: the cells seem to be separated by semicolons"), err)
        self.assertEqual(self.entries(), [])

    def test_one_bad_file_keeps_out_the_others(self):
        bad, none = self.folder / "bad.csv", self.folder / "none.txt"
        bad.write_text(" ,a,b\nNorth,1,x\n")
        none.write_text('a",b",c",d",e",f\n')
        told = (f"{bad}:2:3: B: Not an abundance value, or not an integer: x\n"
                "nowhere.csv: cannot be opened: No such file or directory\n"
                f"{none}: holds no census\n")
        self.assertEqual(self.imports("three.csv", bad, "nowhere.csv", none), (1, "", told))
        self.assertEqual(self.entries(), ["bad.csv", "none.txt"])
        self.imports("three.csv")
        before = self.project.read_bytes()
        self.assertEqual(self.imports(bad, "three.csv", "nowhere.csv", none)[2], told)
        self.assertEqual(self.project.read_bytes(), before)

    def test_what_is_no_other_project_is_left_alone(self):
        text, empty = self.folder / "text.csv", self.folder / "empty.zorvel"
        link, loop = self.folder / "link", self.folder / "loop"
        text.write_text("Abies,1\n")
        empty.write_text("")
        self.imports("three.csv")
        link.symlink_to(self.project)
        loop.symlink_to(loop)
        before = self.project.read_bytes()
        missing = self.folder / "no/p.zorvel"
        for file, target, message in (
                ("three.csv", text, f"{text}: This is not a project file"),
                ("three.csv", empty, f"{empty}: The file is empty"),
                ("three.csv", self.folder, f"{self.folder}: This is a folder"),
                ("three.csv", missing, f"{missing}: There is no"),
                ("three.csv", loop, f"{loop}: The file cannot be used."),
                ("three.csv", "/dev/null", "/dev/null: This is a folder or a device"),
                (self.project, self.project, f"{self.project}: is the project to import into\n"),
                (link, self.project, f"{link}: is the project to import into\n"),
                (self.project, link, f"{self.project}: is the project to import into\n")):
            status, _, err = call("import", file, "--into", target)
            self.assertEqual(status, 1)
            self.assertTrue(err.startswith(message), err)
        self.assertEqual((text.read_text(), empty.read_text()), ("Abies,1\n", ""))
        self.assertEqual(self.project.read_bytes(), before)
        self.assertEqual(self.entries(), ["empty.zorvel", "link", "loop", "p.zorvel", "text.csv"])

    def test_what_may_not_be_written_is_refused(self):
        self.imports("three.csv")
        before = self.project.read_bytes()
        for file, folder, message in ((0o444, 0o777, "The file may be read but not changed"),
                                      (0o666, 0o555, "The folder of the file may not be written")):
            self.project.chmod(file)
            self.folder.chmod(folder)
            status, _, err = run(*self.as_plain_user())
            self.assertEqual(status, 1)
            self.assertTrue(err.startswith(f"{self.project}: {message}"), err)
            self.assertEqual(self.project.read_bytes(), before)
        self.folder.chmod(0o777)
        self.project.chmod(0o666)
        self.assertEqual(run(*self.as_plain_user())[0], 0, "the permissions alone were in the way")

    def test_no_more_of_the_folder_is_needed_than_to_write_in_it(self):
        folder = os.open(self.folder, os.O_RDONLY | os.O_DIRECTORY)
        self.addCleanup(os.close, folder)
        fcntl.flock(folder, fcntl.LOCK_EX)
        self.folder.chmod(0o333)
        for _ in range(2):
            self.assertEqual(run(*self.as_plain_user())[0], 0)
        self.folder.chmod(0o777)
        self.assertEqual(len(self.censuses()), 6)

    def test_it_is_whole_or_absent_after_a_kill(self):
        self.file.write_text(" ,a,b,c\n" + 1000 * "North,1,2,3\n")
        start = time.monotonic()
        self.imports(self.file)
        whole = time.monotonic() - start
        self.project.unlink()
        kept = killed = 0
        rounds = 20
        for number in range(1, rounds + 1):
            done = run("timeout", "-s", "KILL", f"{whole * number / rounds:.4f}", tool, "import",
                       self.file, "--into", self.project)[0] == 0
            killed += not done
            if not self.project.exists():
                self.assertTrue(not done and kept == 0)
                continue
            now = len(self.censuses())
            self.assertTrue(now == kept + 1000 or (now == kept and not done), f"{now} after {kept}")
            kept = now
        self.assertGreater(killed, rounds / 3)
        self.assertEqual(self.imports(self.file)[0], 0)
        self.assertEqual(len(self.censuses()), kept + 1000)

    def test_two_that_make_the_same_project_lose_nothing(self):
        """The second adds to the project, or is refused while the first has it open."""
        script = '"$@" & first=$!; "$@"; failed=$?; wait $first; exit $((failed + $?))'
        for _ in range(20):
            self.project.unlink(missing_ok=True)
            status, _, err = run("bash", "-c", script, "bash", tool, "import", "three.csv", "--into",
                                 self.project)
            self.assertLessEqual(status, 1, err)
            self.assertEqual(len(self.censuses()), 3 if status else 6, err)


class Tables(InFolder):
    """Tables of any layout, and the options that settle how they are read."""
    text = "Plot;Abies alba;Picea abies\nNord;1.234;2\nSued;NA;2,5\n"

    def records(self, text, *options):
        """What summary says of each census, or the messages."""
        self.file.write_text(text)
        status, out, err = call("records --kind table", self.file, *options)
        if status:
            return status, [line.removeprefix(f"{self.file}:") for line in err.splitlines()]
        return [(census["name"], {taxon["name"]: taxon["abundance"] for taxon in census["taxa"]})
                for census in json.loads(out)]

    def test_options_settle_what_is_in_doubt(self):
        self.assertEqual(self.records(self.text.replace("2,5", "3")), (1, [
            " it is in doubt whether 1.234 or 1,234 is a whole number: give --thousands or --decimal, or "
            "--guess to take it as it seems to be"]))
        # Cells are told by line and cell, and by row and letters.
        self.assertEqual(self.records(self.text, "--thousands", ".", "--missing", "fault"), (1, [
            "3:2: B3: NA is no value.",
            "3:3: C3: 2,5 is not a whole number. Zorvel counts individuals."]))
        both = ("--thousands", ".", "--fractions", "round")
        north = ("Nord", {"Abies alba": 1234, "Picea abies": 2})
        for options, censuses in (
                ((), [north, ("Sued", {"Picea abies": 3})]),
                (("--missing", "leave-out"), [north]),
                (("--rows", "1-2"), [north]),
                (("--column", "Picea abies=ignored"), [("Nord", {"Abies alba": 1234})]),
                (("--column", "A=ignored", "--column", "C=census"),
                 [("2", {"Abies alba": 1234})]),
                (("--layout", "columns"), [("Abies alba", {"Nord": 1234}),
                                           ("Picea abies", {"Nord": 2, "Sued": 3})])):
            with self.subTest(options=options):
                self.assertEqual(self.records(self.text, *both, *options), censuses)
        self.assertEqual(self.records("x,y\n1,2\n", "--column", "z=count"), (1, [" has no column 'z'"]))

    def test_rules_for_merged_names_faulty_counts_and_several_counts(self):
        text = "Plot,Species,Males,Females\nBog,Lasius,2,1\n,Formica,ca. 4,2\n"
        counts = ("--column", "Males=count", "--column", "Females=count")
        self.assertEqual(self.records(text), (1, [
            ' it is in doubt which columns hold the counts (C "Males", D "Females"): give --column '
            "HEADER=count for each of them, or HEADER=ignored, or --guess to take it as it seems to be"]))
        self.assertEqual(self.records(text, *counts, "--zero", "text"), (1, [
            "3:1: A3: The census has no name.",
            " --unnamed above takes the name in the row above, as in merged cells; --unnamed row names a "
            "census by its row"]))
        stages = "Plot,Lasius worker,Lasius queen,Apis A,Apis F\nBog,5,1,0,0\n"
        self.assertEqual(self.records(stages), (1, [
            " it is in doubt whether to add the counts of columns whose headers differ in nothing but a "
            'sex or stage (B "Lasius worker", C "Lasius queen"): give --stages sum or apart, or --guess '
            "to take it as it seems to be"]))
        self.assertEqual(self.records(stages, "--stages", "sum"), [("Bog", {"Lasius": 6})])
        self.assertEqual(self.records(stages, "--stages", "apart"),
                         [("Bog", {"Lasius worker": 5, "Lasius queen": 1})])
        bog = {"Lasius": 3, "Formica": 2}
        rules = ("--zero", "text", "--unnamed", "above")
        self.assertEqual(self.records(text, *counts, *rules), [("Bog", bog)])
        self.assertEqual(self.records(text, *counts[2:], *rules), [("Bog", {"Lasius": 1, "Formica": 2})])
        preview = json.loads(call("import --table --preview --json", self.file, *counts, *rules)[1])[0]
        self.assertEqual({key: preview[key] for key in
                          ("unnamed", "zero", "missing", "sameCensus", "stages")},
                         {"unnamed": "above", "zero": ["text"], "missing": "zero",
                          "sameCensus": "apart", "stages": "apart"})

    def test_wrong_calls_say_what_is_wrong(self):
        for arguments, told in (
                (("summary", mites, "--layout", "rows"), "--layout: is for tables: give --kind table"),
                (("import", mites, "--preview"), "--preview: is for tables: give --table"),
                (("import", mites, "--table"), "--into is required"),
                (("import", mites, "--table", "--kind", "list", "--into", "p"),
                 "--table: and --kind exclude each other"),
                (("summary", mites, "--kind", "table", "--rows", "9"),
                 "--rows: '9' is not of the form FIRST-LAST or FIRST-"),
                (("summary", mites, "--kind", "table", "--column", "a=b"),
                 "--column: 'a=b' is not of the form HEADER=ROLE with a role of census, species, genus, "
                 "count, date, year, month, day, notes, latitude, longitude, status, stage, total, included, "
                 "ignored")):
            with self.subTest(told=told):
                status, _, err = call(*arguments)
                self.assertEqual((status, err.splitlines()[0]), (2, f"zorvel-cli: {told}"))

    def test_include_marks_and_attributes_are_stored(self):
        self.file.write_text("census,date,latitude,longitude,notes,species,count,included\n"
                             'Bog,2016-03-05T15:42:00Z,47.61,-122.33,"wet, cold",Abies alba,4,no\n'
                             "Bog,2016-03-05T15:42:00Z,47.61,-122.33,,Picea abies,7,yes\n"
                             "Fen,,,,,,,\n")
        self.assertEqual(self.imports("--table", self.file)[0], 0)
        bog, fen = values("records", self.project)
        self.assertEqual(bog["taxa"], [{"name": "Abies alba", "abundance": 4, "include": False},
                                       {"name": "Picea abies", "abundance": 7, "include": True}])
        self.assertEqual((bog["latitude"], bog["longitude"], bog["notes"]), (47.61, -122.33, "wet, cold"))
        self.assertEqual((fen["name"], fen["taxa"]), ("Fen", []))
        preview = json.loads(call("import --table --preview --json", self.file)[1])[0]
        self.assertEqual([column["role"] for column in preview["columns"]],
                         ["census", "date", "latitude", "longitude", "notes", "species", "count",
                          "included"])
        self.assertEqual(preview["censuses"][0], {"name": "Bog", "species": 2, "individuals": 11})

    def test_sheets_of_workbooks(self):
        books = tree / "tests/data/workbooks"
        merged, cells, columns = (str(books / f"{name}.xlsx")
                                  for name in ("merged", "cells", "metadata_columns"))
        for arguments, told in (
                ((merged, *"--rows 2- --header 2 --layout rows --column B=count".split()),
                 f'{merged}!m:5:2: B5: "none" is not a number.'),
                ((cells, "--sheet", "north"), f"{cells}: has no sheet 'north'; its sheets are "
                 "'empty', 'cells', 'hidden' (hidden)"),
                ((cells, "--separator", "comma"),
                 f"{cells}: is a workbook, and not a text: leave out --separator"),
                ((mites, "--sheet", "1"),
                 f"{mites}: is a text, which has no sheets: leave out --sheet")):
            with self.subTest(told=told):
                status, _, err = call("import --table --preview", *arguments)
                self.assertEqual((status, err), (1, told + "\n"))
        told = "seems to be a workbook of a spreadsheet program: give"
        self.assertEqual(self.imports(cells), (1, "", f"{cells}: {told} --table\n"))
        self.assertEqual(call("metrics", cells), (1, "", f"{cells}: {told} --kind table\n"))
        preview = call("import --table --preview --guess", cells)[1]
        self.assertIn("\n  of several sheets, 'cells' is taken; --sheet chooses another: "
                      "'hidden' (hidden)\n", preview)
        preview = json.loads(call("import --table --preview --json --guess --sheet 3", cells)[1])[0]
        self.assertEqual((preview["sheet"], preview["sheets"][2]),
                         ("hidden", {"name": "hidden", "hidden": True}))
        self.assertEqual(self.imports("--table", columns)[0], 0)
        self.assertEqual(values("records", self.project), values("records --kind table", columns))
        self.assertEqual([census["name"] for census in values("records", self.project)], ["S1", "S2"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
