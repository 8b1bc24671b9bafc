"""What an installation adds to the programs: man pages, completion, icons, and the dates of releases.

check_packaging.py TREE TOOL: TREE is the folder of the sources, TOOL the command-line tool.
"""

import datetime
import email.utils
import re
import shutil
import struct
import subprocess
import sys
import unittest
import zlib
from pathlib import Path

tree, tool = (Path(argument).resolve() for argument in sys.argv[1:3])
packaging = tree / "packaging"


def run(*command):
    ran = subprocess.run(command, cwd=tree / "tests/data/cli", capture_output=True, text=True,
                         timeout=120)
    assert ran.returncode == 0 and not ran.stderr, f"{command}: {ran.returncode} {ran.stderr}"
    return ran.stdout


def options_in(text):
    return set(re.findall(r"--[a-z]+(?:-[a-z]+)*", text))


class Words(unittest.TestCase):
    def test_man_pages_have_no_warnings(self):
        if not shutil.which("groff"):
            self.skipTest("groff is missing")
        for page in ("zorvel-cli.1", "zorvel.1"):
            shown = run("groff", "-man", "-Tutf8", "-ww", "-P-cbou", packaging / "man" / page)
            self.assertIn("\nSEE ALSO\n", shown)

    def test_every_option_of_the_help_is_named_and_no_other(self):
        told = "".join(run(tool, *call, "--help") for call in ((), ("rarefaction",), ("diversity",), ("import",)))
        page = (packaging / "man/zorvel-cli.1").read_text().replace("\\-", "-")
        self.assertEqual(options_in(page), options_in(told))
        completion = (packaging / "bash-completion/zorvel-cli").read_text()
        self.assertEqual(options_in(completion), options_in(told))


class Completion(unittest.TestCase):
    file = packaging / "bash-completion/zorvel-cli"

    def offered(self, words):
        script = ('source "$0"; COMP_WORDS=(zorvel-cli "$@"); COMP_CWORD=$#; _zorvel_cli; '
                  "[[ ${#COMPREPLY[@]} == 0 ]] || printf '%s\\n' \"${COMPREPLY[@]}\"")
        return sorted(run("bash", "-c", script, self.file, *words).split())

    def test_offers_what_may_stand_there(self):
        # The words typed, the last one maybe empty, and what is offered for the last one.
        for typed, replies in (
                ("|", "diversity import long-table matrix metrics project rarefaction records summary"),
                ("m", "matrix metrics"),
                ("--kind|list|su", "summary"),
                ("--kind|=|list|su", "summary"),
                ("--s", "--seed --size"),
                ("--v", "--version"),
                ("rarefaction|--sa", "--same-census --same-species --samples"),
                ("rarefaction|--se", "--seed --separator"),
                ("rarefaction|--sh", "--sheet"),
                ("diversity|--at", "--at-coverage --at-size"),
                ("diversity|--curve|", "coverage size"),
                ("summary|--c", "--census --column"),
                ("summary|--sam", "--same-census --same-species"),
                ("summary|--unnamed|", "above fault row"),
                ("metrics|--layout|", "columns long rows"),
                ("matrix|--j", ""),
                ("metrics|--j", "--json"),
                ("import|a.csv|--p", "--presence --preview"),
                ("import|--into|thr", "three.csv"),
                ("--kind|list|import|--into|m|thr", "three.csv"),
                ("metrics|--kind|", "census ios list matrix table"),
                ("metrics|--kind|=", "census ios list matrix table"),
                ("metrics|--kind|=|m", "matrix"),
                ("metrics|--kind=m", "matrix"),
                ("metrics|--size|", ""),
                ("metrics|thr", "three.csv"),
                ("metrics|--output|thr", "three.csv"),
                ("summary|--census|m|thr", "three.csv")):
            words = [""] if typed == "|" else typed.split("|")
            with self.subTest(words=words):
                self.assertEqual(self.offered(words), replies.split())

    def test_is_registered(self):
        self.assertEqual(run("bash", "-c", 'source "$0"; complete -p zorvel-cli', self.file),
                         "complete -F _zorvel_cli zorvel-cli\n")


class Release(unittest.TestCase):
    def test_all_places_name_the_same_one(self):
        version = run(tool, "--version").split()[-1]
        log = (packaging / "debian/changelog").read_text()
        self.assertEqual(re.search(r"^zorvel \((.*)\) ", log, re.MULTILINE)[1], version)
        dated = email.utils.parsedate_to_datetime(re.search(r"^ -- .*>  (.*)$", log, re.MULTILINE)[1])
        metainfo = (packaging / "zorvel.metainfo.xml.in").read_text()
        release = re.search(r'<release version="(.*?)" date="(.*?)"', metainfo)
        self.assertIn(release[1], (version, "@PROJECT_VERSION@"))
        self.assertEqual(datetime.date.fromisoformat(release[2]), dated.date())

    def test_icons_have_the_size_of_their_name_and_clear_corners(self):
        for name in ("zorvel", "application-x-zorvel"):
            for size in (16, 24, 32, 48, 64, 128, 256):
                with self.subTest(name=name, size=size):
                    png = (packaging / f"icons/{name}-{size}.png").read_bytes()
                    # Width, height, and eight bits each of red, green, blue and alpha.
                    self.assertEqual(struct.unpack(">IIBB", png[16:26]), (size, size, 8, 6))
                    data, place = b"", 8
                    while place < len(png):
                        length, kind = struct.unpack(">I4s", png[place:place + 8])
                        data += png[place + 8:place + 8 + length] if kind == b"IDAT" else b""
                        place += 12 + length
                    # The first pixel has no neighbours: every filter leaves it as it is.
                    self.assertLess(zlib.decompress(data)[4], 128)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
