#!/usr/bin/env python3
"""check_docs.py [FOLDER] - holds the documents to what they name.

Every link inside the repository leads to a file, and to a heading if it names one. What a quick start quotes of the
windows stands in settings/interface_texts.cpp or plugin/menu_texts.cpp in that quick start's language, word for word.
Prints every place that is wrong and ends with 1; with 0 when there is none.
"""
import re
import sys
from pathlib import Path

root = Path(sys.argv[1] if len(sys.argv) > 1 else __file__).resolve()
root = root if root.is_dir() else root.parents[1]

LANGUAGES = ["zh-CN", "zh-TW", "en", "ja", "ko", "de", "fr", "es", "ru"]  # in the order of settings/language.h
SKIPPED = {"build", "out", "dist", ".git", "node_modules"}


def documents():
    return sorted(f for f in root.rglob("*.md") if not SKIPPED & set(f.relative_to(root).parts))


def prose(text):
    """The text without blocks of code, whose lines would look like headings and links."""
    text = re.sub(r"^```.*?^```$", "", text, flags=re.M | re.S)
    return re.sub(r"(?:^|(?<=\n\n))(?: {4}[^\n]*\n)+", "\n", text)


def anchors(file):
    """As GitHub makes them of headings: a second heading of the same words gets a number."""
    found = []
    for title in re.findall(r"^#+ (.*)$", prose(file.read_text(encoding="utf-8")), re.M):
        name = re.sub(r"[^\w\- ]", "", re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", title).lower()).replace(" ", "-")
        count = sum(1 for other in found if re.fullmatch(re.escape(name) + r"(-\d+)?", other))
        found.append(f"{name}-{count}" if count else name)
    return found


def wrong_links():
    wrong, count = [], 0
    for file in documents():
        for target in re.findall(r"\]\(([^)\s]+)\)", prose(file.read_text(encoding="utf-8"))):
            if re.match(r"[a-z]+:", target):
                continue
            count += 1
            path, _, anchor = target.partition("#")
            other = (file.parent / path).resolve() if path else file
            if not other.exists():
                wrong.append(f"{file.relative_to(root)}: there is no {target}")
            elif anchor and anchor not in anchors(other):
                wrong.append(f"{file.relative_to(root)}: {target} is no heading there")
    return wrong, count


def window_texts():
    """All texts of windows and menu, a set per language."""
    texts = {language: set() for language in LANGUAGES}
    for name in ("settings/interface_texts.cpp", "plugin/menu_texts.cpp"):
        code = (root / name).read_text(encoding="utf-8")
        row = rf"(?:^ +(?:// [^\n]*\n +)?\"(?:[^\"\\\n]|\\.)*\"[^\n]*,\n){{{len(LANGUAGES)}}}"
        for rows in re.findall(row, code, re.M):
            lines = re.findall(r'^ +"((?:[^"\\\n]|\\.)*)"', rows, re.M)
            for language, text in zip(LANGUAGES, lines, strict=True):
                text = re.sub(r"\\u([0-9A-F]{4})", lambda m: chr(int(m[1], 16)), text)
                texts[language].add(text)
    return texts


def quotes(language, text):
    """What a quick start names of the windows: in bold, in Japanese in corner brackets. Bold words with a full stop or
    with code in them are headings of their own, and the worker is named in the panel's status line."""
    found = re.findall(r"「([^」]+)」" if language == "ja" else r"\*\*([^*`]+)\*\*", text)
    between = "" if language in ("ja", "zh-CN", "zh-TW") else " "
    found = [re.sub(r"\s*\n\s*", between, quote) for quote in found]
    return [quote for quote in found if not quote.endswith((".", "。")) and quote != "worker"]


def wrong_quotes():
    wrong, count = [], 0
    texts = window_texts()
    for language in LANGUAGES:
        file = root / f"docs/quick-start.{language}.md"
        named = quotes(language, file.read_text(encoding="utf-8"))
        count += len(named)
        unknown = [quote for quote in named if quote not in texts[language]]
        wrong += [f"{file.relative_to(root)}: no window says {quote}" for quote in unknown]
        if len(named) < 8:
            wrong.append(f"{file.relative_to(root)}: quotes only {len(named)} texts of the windows")
    return wrong, count


def main():
    links, link_count = wrong_links()
    named, quote_count = wrong_quotes()
    wrong = links + named
    good = f"docs: {link_count} links lead somewhere, {quote_count} quotes are the windows' own"
    print("\n".join(wrong) if wrong else good)
    sys.exit(1 if wrong else 0)


main()
