"""A virtual desktop with real key presses, windows and a clipboard.

Needs Xvfb, openbox, xdotool and xclip. There are no fixed delays: wait_for() polls until a condition
holds, and fails with a message after PATIENCE seconds.
"""

import ctypes
import os
import re
import shutil
import struct
import subprocess
import tempfile
import time
import zlib
from pathlib import Path

PATIENCE = float(os.environ.get("ZORVEL_PATIENCE", 60))  # seconds
PROGRAMS = ("Xvfb", "openbox", "xdotool", "xclip")
# The window manager binds no keys. Bare windows have no frames, so that their place is known.
WINDOWS = """<openbox_config xmlns="http://openbox.org/3.4/rc">
<theme><keepBorder>no</keepBorder></theme>
<applications><application class="*"><decor>{decor}</decor></application></applications>
</openbox_config>"""


class Missing(Exception):
    """What should have come has not come."""


def wait_for(what, ask, patience=PATIENCE):
    """The first true answer of ask(), which may also raise Missing or find a file absent."""
    end = time.monotonic() + patience
    while True:
        said = ""
        try:
            answer = ask()
            if answer:
                return answer
        except (Missing, FileNotFoundError) as missing:
            said = f": {missing}"
        if time.monotonic() > end:
            raise Missing(f"{what} has not come in {patience:.0f} s{said}")
        time.sleep(0.1)


def lacking():
    return [program for program in PROGRAMS if shutil.which(program) is None]


class Desktop:
    """An X server of its own with a window manager; a context that ends both."""

    def __init__(self, width=1280, height=900, decor="no"):
        self.decor = decor
        self.folder = tempfile.TemporaryDirectory(prefix="zorvel-desktop-")
        self.started = []
        self.size = f"{width}x{height}x24"

    def __enter__(self):
        try:
            self.start()
        except BaseException:
            self.__exit__()
            raise
        return self

    def start(self):
        # The server picks a free display number and reports it; its frame buffer is a file.
        # Allow every local account to connect, since programs may run under other accounts.
        read, write = os.pipe()
        self.started.append(self.spawn(
            "Xvfb", "-displayfd", str(write), "-screen", "0", self.size, "-dpi", "96", "-ac",
            "-nolisten", "tcp", "-fbdir", self.folder.name, pass_fds=[write]))
        os.close(write)
        with os.fdopen(read) as numbers:
            number = numbers.readline().strip()
        if not number:
            raise Missing("the X server does not start: " + self.said_by("Xvfb"))
        self.environment = dict(os.environ, DISPLAY=f":{number}", LC_ALL="C.UTF-8")
        for name in ("WAYLAND_DISPLAY", "XAUTHORITY", "XDG_CURRENT_DESKTOP", "QT_QPA_PLATFORM",
                     "QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE", "DBUS_SESSION_BUS_ADDRESS"):
            self.environment.pop(name, None)
        settings = Path(self.folder.name) / "openbox.xml"
        settings.write_text(WINDOWS.format(decor=self.decor))
        self.started.append(self.spawn("openbox", "--sm-disable", "--config-file", str(settings),
                                       env=self.environment))
        wait_for("the window manager", lambda: self.ask("get_num_desktops"))
        # The pointer would stand in the pictures.
        self.ask("mousemove", 10000, 10000)

    def __exit__(self, *_):
        for process in reversed(self.started):
            process.terminate()
            process.wait()
        self.folder.cleanup()

    def spawn(self, *command, **settings):
        with open(Path(self.folder.name) / f"{command[0]}.log", "wb") as log:
            return subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=log,
                                    stderr=subprocess.STDOUT, **settings)

    def said_by(self, program):
        return (Path(self.folder.name) / f"{program}.log").read_text(errors="replace")

    def run(self, *command, **settings):
        settings.setdefault("stdout", subprocess.PIPE)
        return subprocess.run(command, env=self.environment, stderr=subprocess.DEVNULL,
                              timeout=PATIENCE, **settings)

    def ask(self, *words):
        """What xdotool says, or nothing where it fails."""
        told = self.run("xdotool", *map(str, words))
        return told.stdout.decode().strip() if told.returncode == 0 else ""

    # Windows

    def title(self, window):
        return self.ask("getwindowname", window)

    def active(self):
        """The window that gets the keys, and its title."""
        window = self.ask("getactivewindow")
        return window, self.title(window) if window else ""

    def titles(self):
        """Of all windows on the screen."""
        windows = self.ask("search", "--onlyvisible", "--name", ".").split()
        return [self.title(window) for window in windows]

    def window(self, title, patience=PATIENCE):
        """Waits until a window whose whole title fits the pattern has the keys."""
        def look():
            window, found = self.active()
            if re.fullmatch(title, found):
                return window
            raise Missing(f"on the screen: {self.titles()}, in front: {found!r}")
        return wait_for(f"the window {title!r}", look, patience)

    def gone(self, title):
        """Waits until no window has a title that fits."""
        def look():
            left = [found for found in self.titles() if re.fullmatch(title, found)]
            if left:
                raise Missing(f"still there: {left}")
            return True
        wait_for(f"the end of the window {title!r}", look)

    # Keys

    def keys(self, *names):
        """Presses keys one after the other, in xdotool's names: "ctrl+shift+n", "Tab"."""
        self.ask("key", "--delay", 30, *names)

    def type(self, text):
        """Tabs and line breaks of the text are those keys."""
        for part in re.split(r"([\t\n])", text):
            if part in ("\t", "\n"):
                self.keys("Tab" if part == "\t" else "Return")
            elif part:
                self.ask("type", "--delay", 15, "--", part)

    # The clipboard

    def put(self, text):
        # What holds the text for others stays behind, and would keep a pipe open.
        self.run("xclip", "-selection", "clipboard", "-in", input=text.encode(),
                 stdout=subprocess.DEVNULL)

    def clipboard(self):
        return self.run("xclip", "-selection", "clipboard", "-out").stdout.decode()

    def copied_by(self, *names):
        """The text that the keys put on the clipboard."""
        before = f"before {time.monotonic()}"
        self.put(before)
        wait_for("the clipboard", lambda: self.clipboard() == before)
        self.keys(*names)
        wait_for("a copy", lambda: self.clipboard() not in (before, ""))
        return self.clipboard()

    # Pictures

    def place(self, window):
        told = self.ask("getwindowgeometry", "--shell", window)
        numbers = dict(line.split("=") for line in told.splitlines())
        return tuple(int(numbers[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))

    def corner(self, window):
        """Of the window's frame: the outermost window around it, below the root."""
        library = ctypes.CDLL("libX11.so.6")
        library.XOpenDisplay.restype = ctypes.c_void_p
        display = ctypes.c_void_p(library.XOpenDisplay(self.environment["DISPLAY"].encode()))
        root, parent, children = ctypes.c_ulong(), ctypes.c_ulong(int(window)), ctypes.c_void_p()
        numbers = [ctypes.c_int() for _ in range(6)]
        frame = int(window)
        while parent.value != root.value:
            frame = parent.value
            library.XQueryTree(display, ctypes.c_ulong(frame), ctypes.byref(root),
                               ctypes.byref(parent), ctypes.byref(children),
                               ctypes.byref(numbers[0]))
            library.XFree(children)
        library.XGetGeometry(display, ctypes.c_ulong(frame), ctypes.byref(root),
                             *map(ctypes.byref, numbers))
        library.XCloseDisplay(display)
        return numbers[0].value, numbers[1].value

    def picture(self, window):
        """The window as it is on the screen, as a PNG: rows of red, green and blue."""
        left, top, width, height = self.place(window)
        dump = (Path(self.folder.name) / "Xvfb_screen0").read_bytes()
        header = struct.unpack(">25I", dump[:100])
        start, stride, colors = header[0], header[12], header[19]
        rows = []
        for y in range(top, top + height):
            at = start + 12 * colors + y * stride + 4 * left
            row = dump[at:at + 4 * width]
            rgb = bytearray(3 * width)
            rgb[0::3], rgb[1::3], rgb[2::3] = row[2::4], row[1::4], row[0::4]
            rows.append(bytes(rgb))
        return png(width, height, rows)

    def still_picture(self, window):
        """The picture once it no longer changes: spinners have stopped, fading has ended."""
        seen = []

        def look():
            seen.append(self.picture(window))
            time.sleep(0.25)
            return len(seen) > 2 and seen[-1] == seen[-2] == seen[-3]
        wait_for("a picture that stands still", look)
        return seen[-1]


def png(width, height, rows):
    def chunk(kind, content):
        return (struct.pack(">I", len(content)) + kind + content +
                struct.pack(">I", zlib.crc32(kind + content)))
    pixels = zlib.compress(b"".join(b"\0" + row for row in rows), 9)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">2I5B", width, height, 8, 2, 0, 0, 0)) +
            chunk(b"IDAT", pixels) + chunk(b"IEND", b""))
