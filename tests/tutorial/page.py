"""Reads the steps of the tutorial from its help page.

These elements of each item of a list of steps are carried out in their order:
  span class="menu"    a command: by the keys in the parentheses that follow it, or else its menu
  kbd                  a key; class="until": as often as it takes
  code                 text to type
The other texts of the page describe the results.
"""

import re
import xml.etree.ElementTree as xml

# The mnemonics of the menus.
LETTERS = {"File": "alt+f", "Import": "i", "Census Matrix...": "m", "Table...": "t",
           "Export": "e", "Metrics...": "t", "Open Recent": "r"}
# Their names in xdotool.
KEYS = {",": "comma", "Escape": "Escape", "Space": "space"}


def key_name(shown):
    """Of "Ctrl+Shift+N"."""
    *modifiers, key = shown.split("+")
    return "+".join([modifier.lower() for modifier in modifiers] +
                    [KEYS.get(key, key.lower() if len(key) == 1 else key)])


class Step:
    """One item: its actions, pairs of a word for what is done ("keys", "until", "type") and what."""

    def __init__(self, item):
        self.text = re.sub(r"\s+", " ", "".join(item.itertext()))
        self.actions = []
        menu = None
        for element in item:
            text = "".join(element.itertext())
            in_parentheses = menu is not None
            if menu is not None and element.tag != "kbd":
                raise ValueError(f"keys are missing in: {self.text}")
            if element.tag == "span" and element.get("class") == "menu":
                menu = text if (element.tail or "").startswith(" (") else None
                if menu is None:
                    self.add_menu(text)
                continue
            menu = None
            if element.tag == "kbd":
                word = element.get("class", "keys") if not in_parentheses else "keys"
                self.actions.append((word, key_name(text)))
            elif element.tag == "code":
                self.actions.append(("type", text))

    def add_menu(self, path):
        self.actions += [("keys", LETTERS[title]) for title in path.split(" > ")]


class Page:
    def __init__(self, path):
        self.root = xml.fromstring(f"<main>{path.read_text()}</main>")
        self.text = re.sub(r"\s+", " ", "".join(self.root.itertext()))
        self.sections = {}
        for element in self.root:
            if element.tag == "h2":
                steps = self.sections.setdefault(element.get("id"), [])
            elif element.tag == "ol":
                steps += [Step(item) for item in element]

    def file(self, name):
        return self.root.find(f".//pre[@data-file='{name}']").text

    def pictures(self):
        return {image.get("src").rpartition("/")[2]: (image.get("width"), image.get("height"))
                for image in self.root.iter("img")}
