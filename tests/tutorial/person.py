"""A user who follows the tutorial: carries out its steps on the desktop and checks their results in
what the program saved or copied.
"""

import json
import subprocess
from pathlib import Path

from desktop import Missing, PATIENCE, wait_for


def check(holds, message):
    if not holds:
        raise Missing(message)


class Person:
    def __init__(self, desktop, programs, page, home, pictures):
        self.desktop, self.programs, self.page, self.pictures = desktop, programs, page, pictures
        self.home = home
        self.documents = home / "Documents"
        self.documents.mkdir()
        self.drawn = set()
        self.steps = []
        self.all = {}
        self.program = None

    # What a person does

    def start(self, project=None):
        environment = dict(self.desktop.environment, HOME=str(self.home))
        for name in ("XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"):
            environment.pop(name, None)
        runtime = self.home / "runtime"
        runtime.mkdir(mode=0o700, exist_ok=True)
        environment["XDG_RUNTIME_DIR"] = str(runtime)
        with open(self.home / "zorvel.log", "ab") as log:
            self.program = subprocess.Popen([self.programs / "zorvel", *([project] if project else [])],
                                            env=environment, cwd=self.documents,
                                            stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        self.desktop.window(rf"{Path(project).stem if project else 'Untitled'}\b.*")

    def do(self, opens=None, closes=None, until=None):
        """The next step. After its first command, or the last letter of its menu, a window of the
        title opens comes; the window closes is gone at the end."""
        step = self.steps.pop(0)
        print("-", step.text, flush=True)
        for number, (word, what) in enumerate(step.actions):
            if word == "type" and opens:
                self.desktop.window(opens)
                opens = None
            if word == "type":
                self.desktop.type(what)
            elif word == "until":
                self.press_until(what, until)
            else:
                self.desktop.keys(what)
        if opens:
            self.desktop.window(opens)
        if closes:
            self.desktop.gone(closes)

    def press_until(self, key, copied):
        """Presses the key until a copy gives that text, since the focus cannot be seen."""
        for _ in range(30):
            self.desktop.keys(key)
            self.desktop.put("nothing")
            self.desktop.keys("ctrl+c")
            if self.appears(copied):
                return
        raise Missing(f"{key} does not lead to {copied!r}")

    def appears(self, copied):
        try:
            return wait_for("", lambda: self.desktop.clipboard().startswith(copied), 1)
        except Missing:
            return False

    # What has come of it

    def tool(self, *words):
        ran = subprocess.run([self.programs / "zorvel-cli", *map(str, words)], text=True,
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=PATIENCE)
        check(ran.returncode == 0, f"zorvel-cli {words}: {ran.stderr}")
        return ran.stdout

    def project(self):
        """The file of the project, named or not."""
        found = [*self.documents.glob("*.zorvel"), *self.home.glob(".local/**/untitled/*.zorvel")]
        check(len(found) == 1, f"the projects are {found}")
        return found[0]

    def records(self):
        """The abundances that the program has saved: census, species, number or none."""
        return {census["name"]: {taxon["name"]: taxon["abundance"] if taxon["include"] else None
                                 for taxon in census["taxa"]}
                for census in json.loads(self.tool("records", self.project()))}

    def saved(self, expected):
        def look():
            records = self.records()
            check(records == expected, f"saved is {records}")
            return True
        wait_for(f"the project {expected}", look)

    def console(self):
        return (self.home / "zorvel.log").read_text(errors="replace")

    def values(self, *keys):
        """What the keys copy, by its captions; of headings the last, as "census"."""
        lines = [line.split("\t") for line in self.desktop.copied_by(*keys).splitlines()]
        return {line[0] if len(line) == 2 else "census": line[-1] for line in lines}

    def copied_whole(self, beginning):
        text = self.desktop.copied_by("ctrl+a", "ctrl+c")
        return text if text.startswith(beginning) else ""

    def shown(self, **wanted):
        """The metrics of the selected census, as they are copied, once the wanted are there."""
        def look():
            metrics = self.values("ctrl+shift+c")
            for caption, value in wanted.items():
                check(metrics.get(caption) == value, f"shown is {metrics}")
            return metrics
        return wait_for(f"the metrics {wanted}", look)

    def says(self, sentence):
        check(sentence in self.page.text, f"the page does not say: {sentence}")

    def draw(self, name, window):
        """The picture of that name, if pictures are wanted; its size is always that of the page."""
        picture = self.desktop.picture(window)
        size = tuple(str(number) for number in self.desktop.place(window)[2:])
        check(self.page.pictures()[name] == size, f"{name} is now {size}")
        self.drawn.add(name)
        if self.pictures:
            (self.pictures / name).write_bytes(picture)
