"""The package in use: check_installed.py ROOT installs ROOT/root/zorvel.deb into the bare root ROOT
and uses the programs there. See scripts/check_package.

Windows and keys come from outside the root, so that the root holds what the package asks for and
nothing besides: first by itself, then with what every desktop has.
"""

import re
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tutorial"))
from desktop import Desktop, Missing, PATIENCE, wait_for  # noqa: E402

ACCOUNT = "field"
HOME = f"/home/{ACCOUNT}"
DOCUMENTS = "/usr/share/doc/zorvel"
EXAMPLE = f"{DOCUMENTS}/examples/oribatid-mites.csv"
PROJECT = f"{HOME}/mites.zorvel"
# What a desktop brings that knows types of files and opens them; what shows manuals.
DESKTOP_PACKAGES = ("shared-mime-info", "desktop-file-utils", "xdg-utils", "libglib2.0-bin",
                    "man-db")


def check(holds, message):
    if not holds:
        raise Missing(message)


def passed(message):
    print(f"ok: {message}", flush=True)


class Root:
    def __init__(self, folder):
        self.folder = Path(folder)

    def command(self, words, account=None, **environment):
        user = ["--userspec", f"{account}:{account}"] if account else []
        settings = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C.UTF-8",
                    "HOME": f"/home/{account}" if account else "/root", **environment}
        return ["chroot", *user, str(self.folder), "env", "-i",
                *(f"{name}={value}" for name, value in settings.items()), *words]

    def run(self, *words, account=None, patience=PATIENCE, **environment):
        """What the command writes; it must succeed."""
        ran = subprocess.run(self.command(words, account, **environment), text=True,
                             stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE, timeout=patience)
        check(ran.returncode == 0, f"{' '.join(words)} ended with {ran.returncode}:\n"
                                   f"{ran.stdout[-2000:]}{ran.stderr[-2000:]}")
        return ran.stdout

    def install(self, *packages):
        self.run("apt-get", "-q", "-y", "-o", "Acquire::Retries=3", "install",
                 "--no-install-recommends", *packages, patience=1200,
                 DEBIAN_FRONTEND="noninteractive")

    def files(self, pattern):
        return sorted(self.folder.glob(pattern.lstrip("/")))


def check_tool(root):
    for program in ("zorvel", "zorvel-cli"):
        libraries = root.run("ldd", f"/usr/bin/{program}")
        check("not found" not in libraries, f"{program} lacks libraries:\n{libraries}")
    version = root.run("dpkg-query", "-W", "-f", "${Version}", "zorvel")
    for program in ("zorvel", "zorvel-cli"):
        told = root.run(program, "--version").strip()
        check(told.endswith(f" {version}"), f"{program} says {told!r} in the package {version}")
    lines = root.run("zorvel-cli", "metrics", EXAMPLE, account=ACCOUNT).splitlines()
    censuses = (root.folder / EXAMPLE.lstrip("/")).read_text().splitlines()
    check(len(lines) == len(censuses) and "Shannon's H" in lines[0],
          f"the metrics of the example are odd: {lines[:2]}")
    passed(f"zorvel-cli measures the {len(lines) - 1} censuses of the installed example")
    root.run("zorvel-cli", "import", EXAMPLE, "--into", PROJECT, account=ACCOUNT)


def check_window(root, desktop, start):
    """Starts the program by the words of start and compares what it shows with the tool."""
    display = {"DISPLAY": desktop.environment["DISPLAY"], "XDG_CURRENT_DESKTOP": "GNOME"}
    log = Path(desktop.folder.name) / "zorvel.log"
    with open(log, "w") as output:
        starter = subprocess.Popen(root.command(start, ACCOUNT, **display),
                                   stdin=subprocess.DEVNULL, stdout=output, stderr=output)
    try:
        desktop.window(r"mites\b.*")
        name, shown = copied_metrics(desktop)
        desktop.keys("ctrl+q")
        desktop.gone(r"mites\b.*")
        wait_for("the end of the program", lambda: starter.poll() is not None)
        check(starter.returncode == 0, f"it ended with {starter.returncode}")
    except Missing as missing:
        raise Missing(f"{' '.join(start)}: {missing}\n{log.read_text()}") from None
    finally:
        starter.kill()
    check_metrics(root, name, shown)


def copied_metrics(desktop):
    """The name of the census that the window shows, and the value of each caption."""
    name, *lines = desktop.copied_by("ctrl+shift+c").splitlines()
    return name, dict(line.split("\t") for line in lines)


def check_metrics(root, name, shown):
    """By the table of metrics, and by the summary of the census, whose captions are the window's."""
    head, *lines = root.run("zorvel-cli", "metrics", PROJECT, account=ACCOUNT).splitlines()
    table = {line.split(", ")[0]: line.split(", ") for line in lines}
    told = table[name][head.split(", ").index("Shannon's H")]
    check(shown["Shannon's H"] == told,
          f"Shannon's H of {name} is {shown} in the window, {told} in the table of metrics")
    summary = root.run("zorvel-cli", "summary", "--census", name, PROJECT, account=ACCOUNT)
    by_tool = dict(line.split("\t") for line in summary.splitlines())
    # Drawn at random, and maybe still being drawn.
    late = [caption for caption in shown if "SQS" in caption or "Rarefied" in caption]
    differing = {caption: (value, by_tool.get(caption)) for caption, value in shown.items()
                 if caption not in late and value != by_tool.get(caption)}
    check(not differing, f"window and zorvel-cli differ: {differing}")
    passed(f"the window copies what zorvel-cli tells of {name}, as Shannon's H {told}")


def check_desktop(root, desktop):
    entry = root.run("xdg-mime", "query", "filetype", PROJECT, account=ACCOUNT,
                     XDG_CURRENT_DESKTOP="GNOME").strip()
    check(entry == "application/x-zorvel", f"the type of a project is {entry!r}")
    program = root.run("xdg-mime", "query", "default", entry, account=ACCOUNT,
                       XDG_CURRENT_DESKTOP="GNOME").strip()
    check(program == "zorvel.desktop", f"projects are opened by {program!r}")
    passed("a project is of the type application/x-zorvel, and zorvel opens it")
    check_window(root, desktop, ["gio", "open", PROJECT])


def check_documents(root):
    for page in ("zorvel", "zorvel-cli"):
        text = root.run("man", "-P", "cat", page, account=ACCOUNT, MANWIDTH="80")
        check("SYNOPSIS" in text and page in text, f"man {page} shows {text[:200]!r}")
    help_folder = root.folder / DOCUMENTS.lstrip("/") / "help"
    index = (help_folder / "index.html").read_text()
    linked = set(re.findall(r'(?:href|src)="([^"#:]+)', index))
    check("tutorial.html" in linked, "the help does not begin with the tutorial")
    absent = [name for name in linked if not (help_folder / name).is_file()]
    check(not absent, f"the help lacks {absent}")
    passed(f"both manuals, and the help with {len(root.files(DOCUMENTS + '/help/*.html'))} pages")


def main(folder):
    root = Root(folder)
    root.run("apt-get", "-q", "update", patience=600)
    root.install("/root/zorvel.deb")
    passed("the package installs with its dependencies")
    root.run("useradd", "--create-home", ACCOUNT)
    check_tool(root)
    with Desktop() as desktop:
        check_window(root, desktop, ["zorvel", PROJECT])
        root.install(*DESKTOP_PACKAGES)
        check_desktop(root, desktop)
    check_documents(root)


if __name__ == "__main__":
    try:
        main(sys.argv[1])
    except Missing as missing:
        sys.exit(str(missing))
