"""What the windows say in another language: the tour knows every text in English."""

import gettext
import glob
import os
import re

DOMAIN = "directfax"
LOCALES = {"ja": "ja_JP", "de": "de_DE", "fr": "fr_FR", "es": "es_ES", "it": "it_IT", "nl": "nl_NL", "pt_BR": "pt_BR",
           "zh_CN": "zh_CN", "ko": "ko_KR", "en": "en_US"}
ENTRY = re.compile(r'"((?:[^"\\]|\\.)*)"\s*=\s*"((?:[^"\\]|\\.)*)"\s*;')
COMMENT = re.compile(r"/\*.*?\*/", re.DOTALL)


def read_strings(path):
    """The entries of a string table, keys and texts without escapes; empty where there is no such file."""
    try:
        with open(path, "rb") as file:
            data = file.read()
    except FileNotFoundError:
        return {}
    text = data.decode("utf-16" if data[:2] in (b"\xff\xfe", b"\xfe\xff") else "utf-8-sig")

    def plain(part):
        return re.sub(r"\\(.)", lambda match: {"n": "\n", "t": "\t"}.get(match[1], match[1]), part)

    return {plain(key): plain(value) for key, value in ENTRY.findall(COMMENT.sub("", text))}


def read_ppd(path, language):
    """Pairs of an English text and the other one, of options and their choices."""
    english, other = {}, {}
    code = f"(?:{language}|{language.split('_')[0]})"
    with open(path, encoding="utf-8") as file:
        for line in file:
            if match := re.match(r"\*OpenUI \*(\w+)/([^:]*):", line):
                english[match[1], None] = match[2]
            elif match := re.match(r"\*(\w+) (\w+)/([^:]*):", line):
                english[match[1], match[2]] = match[3]
            elif match := re.match(rf"\*{code}\.Translation (\w+)/([^:]*):", line):
                other[match[1], None] = match[2]
            elif match := re.match(rf"\*{code}\.(\w+) (\w+)/([^:]*):", line):
                other[match[1], match[2]] = match[3]
    return [(text, other[key]) for key, text in english.items() if key in other]


class Texts:
    """One language, out of a build: string tables of the bundle, catalogue of the programs, the sample printer's PPD."""

    def __init__(self, build, language="en"):
        self.language = language
        self.catalogue = gettext.translation(DOMAIN, os.path.join(build, "locale"), [language], fallback=True)
        self.pairs = {}
        if language == "en":
            return
        resources = os.path.join(build, "DirectFax.bundle", "Resources")
        for table in glob.glob(os.path.join(resources, "English.lproj", "*.strings")):
            english = read_strings(table)
            folder = {"zh_CN": "zh-Hans"}.get(language, language.replace("_", "-"))
            other = read_strings(os.path.join(resources, f"{folder}.lproj", os.path.basename(table)))
            for key in english.keys() & other.keys():
                self.add(english[key], other[key])
        for ppd in glob.glob(os.path.join(build, "driver", "*.ppd")):
            for english, other in read_ppd(ppd, language):
                self.add(english, other)

    def add(self, english, other):
        self.pairs.setdefault(english, set()).add(other)

    def forms(self, english):
        """Every text that may stand for the English one: it itself where it has no other, and never none."""
        found = set(self.pairs.get(english, ()))
        for text, end in ((english, ""), (english + ":", ":")):
            if (other := self.catalogue.gettext(text)) != text:
                found.add(other.removesuffix(end).removesuffix("\uff1a" if end else "").strip())
        return found | {english}

    def filled(self, english, *values):
        """A text with places such as {0}, in the language, with the values in them."""
        return self.catalogue.gettext(english).format(*values)

    def says(self, shown, english):
        return shown in self.forms(english)

    def environment(self):
        """What makes a program speak the language."""
        if self.language == "en":
            return {}
        locale = f"{LOCALES[self.language]}.UTF-8"
        return {"LANGUAGE": self.language, "LANG": locale, "LC_ALL": locale}
