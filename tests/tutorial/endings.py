"""endings.py PROGRAMS: checks that typed text survives when the program is killed or terminated.

PROGRAMS is the folder of zorvel and zorvel-cli. The program is killed while an editor is open, and
terminated by each of the signals that it handles.
"""

import signal
import sys
import tempfile
from pathlib import Path

from desktop import Desktop, Missing, PATIENCE, lacking
from person import Person, check

SKIPPED = 77  # the exit status of a test that cannot run here


class Endings(Person):
    def type_census(self, name):
        self.start()
        self.desktop.keys("ctrl+shift+n")
        self.desktop.type(name)
        copied = self.desktop.copied_by("ctrl+a", "ctrl+c")
        check(copied == name, f"the open cell holds {copied!r}")

    def end_by(self, number):
        self.program.send_signal(number)
        check(self.program.wait(PATIENCE) == -number, f"it ended with {self.program.returncode}")

    def killed(self):
        self.type_census("North")
        self.saved({"North": {}})
        self.end_by(signal.SIGKILL)
        self.saved({"North": {}})

    def ended(self, number):
        self.type_census("South")
        self.end_by(number)
        self.saved({"South": {}})
        settings = (self.home / ".config/zorvel/zorvel.ini").read_text()
        check("geometry" in settings, "the window has not kept its place")


def main(programs):
    if lacking():
        print(f"Not here: {', '.join(lacking())}")
        return SKIPPED
    with Desktop() as desktop:
        for number in (signal.SIGKILL, signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            print(f"== {signal.Signals(number).name}", flush=True)
            with tempfile.TemporaryDirectory(prefix="zorvel-endings-") as home:
                endings = Endings(desktop, Path(programs), None, Path(home), None)
                try:
                    endings.killed() if number == signal.SIGKILL else endings.ended(number)
                except Missing as missing:
                    print(missing)
                    print(endings.console())
                    return 1
                finally:
                    if endings.program:
                        endings.program.kill()
                        endings.program.wait()
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
