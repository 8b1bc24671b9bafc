"""window_places.py PROGRAMS PROJECT [TIMES]: checks where the preferences and analysis windows appear.

At each opening, also just after the start of the program, the corner of the frame must be at the
place of that window.
"""

import sys
import tempfile
from collections import Counter
from pathlib import Path

from desktop import Desktop, Missing, lacking, wait_for
from person import Person
from tutorial import INDIVIDUALS, PREFERENCES, SAMPLES, SKIPPED, WHOLE

SIZES = ((1280, 900), (800, 480))
WINDOWS = (("ctrl+comma", PREFERENCES, 60), ("ctrl+m", WHOLE, 100),
           ("ctrl+r", INDIVIDUALS, 120), ("ctrl+shift+r", SAMPLES, 120))


def openings(desktop, programs, project, home):
    """The places of the windows, and those that they should have."""
    person = Person(desktop, Path(programs), None, home, None)
    person.start(project)
    for key, title, place in WINDOWS:
        desktop.keys(key)
        window = desktop.window(title)
        try:
            wait_for("its place", lambda: desktop.corner(window) == (place, place), 5)
        except Missing:
            pass
        yield title, (place, place), desktop.corner(window)
        desktop.keys("Escape" if place == 60 else "ctrl+w")
        desktop.gone(title)
    desktop.keys("ctrl+q")
    person.program.wait()


def main(programs, project, times="2"):
    if lacking():
        print(f"Not here: {', '.join(lacking())}")
        return SKIPPED
    found = Counter()
    for width, height in SIZES:
        for _ in range(int(times)):
            with tempfile.TemporaryDirectory(prefix="zorvel-places-") as home, \
                    Desktop(width, height, decor="yes") as desktop:
                for title, wanted, place in openings(desktop, programs, project, Path(home)):
                    found[width, height, title, wanted, place] += 1
    for (*seen, wanted, place), number in sorted(found.items()):
        print(*seen, f"{number} of {times} at {place}, to be at {wanted}")
    return any(wanted != place for *_, wanted, place in found)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
