#!/usr/bin/env python3
"""Holds docs/words.md to the words that the console knows, docs/messages.md to the texts that it has, and
docs/option-bytes.md to the layouts.

usage: pages.py SOURCE-DIR
"""
import pathlib
import re
import sys

# Jobs that no word starts, as the names of their texts have them.
WITHOUT_WORD = ("FWCRC", "FlashCRC", "WRITESN", "WRITEUSERSYSTEMDATA", "EnableSlib", "DisableSlib")

LITERAL = re.compile(r'"((?:[^"\\\n]|\\.)*)"')


def first_line(literals):
    """What a text looks like on a page: its first line, without the raw bytes at the end of some."""
    whole = "".join(LITERAL.findall(literals)).split("\\n")[0].replace('\\"', '"')
    return re.sub(r"(\\x[0-9A-F]{2})+$", "", whole)


def words_of_code(source):
    """{"-com": {"--pn", ...}, ...}"""
    tables = {name: set(LITERAL.findall(rows))
              for name, rows in re.findall(r"constexpr SubWord (\w+)\[\] = \{(.*?)\};", source, re.S)}
    rows = re.findall(r'\{"(-[^"]*)", OptionId::\w+, (?:std::begin\((\w+)\)|nullptr)', source)
    return {word: tables[table] if table else set() for word, table in rows}


def words_of_page(page):
    sections = re.findall(r"^## `(-[^`]*)`(?: \\\*)?\n(.*?)(?=^## |\Z)", page, re.M | re.S)
    return {word: set(re.findall(r"^\| `(--\w+)`", text, re.M)) for word, text in sections}


def wrong_words(root):
    known = words_of_code((root / "app/Words.cpp").read_text())
    told = words_of_page((root / "docs/words.md").read_text())
    if len(known) < 10:
        yield "app/Words.cpp: no table of words was found"
    for word in sorted(known.keys() | told.keys()):
        for sub in sorted(known.get(word, set()) ^ told.get(word, set())):
            yield f"docs/words.md: {word} {sub}: only {'in the code' if sub in known.get(word, ()) else 'on the page'}"
        if (word in known) != (word in told):
            yield f"docs/words.md: {word}: only {'in the code' if word in known else 'on the page'}"


def texts_of_table(header):
    """{name: what the user sees of it}"""
    texts = {name: first_line(text) for name, text in
             re.findall(r'inline constexpr char (\w+)\[\] =\s*((?:"(?:[^"\\]|\\.)*"\s*)+);', header)}
    texts.update((name, name) for name in re.findall(r"^TEXT_IS_KEY\((\w+)\);", header, re.M))
    return texts


def printed_names(root):
    """The texts of the table that the console can come to: by the name, by a code, or by a library's status."""
    sources = {path: path.read_text() for folder in ("app", "operations", "link", "usersystemdata", "files")
               for path in (root / folder).rglob("*.cpp")}
    result = (root / "foundation/Result.cpp").read_text()
    messages = dict(re.findall(r"\{CResult::(\w+), (\w+)\}", result))
    folded = set(re.findall(r"\{(?:0x)?[0-9A-F]+, CResult::(\w+)\}", result))
    used = set(re.findall(r"CResult::([A-Z_]+)\b", "".join(sources.values())))
    codes = {code for code in folded | used if not code.startswith("SLIB_")} - {"SUCCESS"}
    reached = set(re.findall(r"\b(Info_\w+)", sources[root / "app/Progress.cpp"]))
    reached |= {messages[code] for code in codes if code in messages}
    return {name for name in reached if not any(job in name for job in WITHOUT_WORD)}


def said_by_app(root):
    """Literals of the front end that are a text of their own: what has a blank, or ends in points, and is no word."""
    for path in sorted((root / "app").glob("*.cpp")):
        if path.name == "Usage.cpp":
            continue
        code = re.sub(r"//.*|^#.*", "", path.read_text(), flags=re.M)
        for literals in re.findall(r'(?:"(?:[^"\\\n]|\\.)*"\s*)+', code):
            text = first_line(literals)
            if re.search(r"[A-Za-z]{2,} |[a-z]\.\.\.$", text):
                yield text


def wrong_messages(root):
    page = (root / "docs/messages.md").read_text()
    table, rest = page.split("## Texts that the console does not print")
    rows = re.findall(r"^\| (.+?) \| .+ \|$", table.split("\n## ")[0], re.M)[1:]
    seen = [re.sub(r"[^a-z0-9 ]", "", row.lower()) for row in rows]
    if seen != sorted(seen):
        yield "docs/messages.md: not sorted: " + next(a for a, b in zip(rows, sorted(rows, key=lambda r: seen[rows.index(r)])) if a != b)
    texts = texts_of_table((root / "foundation/ResultMessages.h").read_text())
    if len(texts) < 200:
        yield "foundation/ResultMessages.h: no table of texts was found"
    needed = {texts[name] for name in printed_names(root)} | set(said_by_app(root))
    # What a text leaves open stands in a row as three points.
    closed = {re.sub(r'[ "]*\.\.\.[")]*$', "", row) for row in rows} | set(rows)
    for text in sorted(needed):
        if re.sub(r"%\w+\)$", "", text).rstrip(' "') not in closed and text not in closed:
            yield f"docs/messages.md: no row for what the console prints: {text}"
    for text in sorted(set(texts.values()) - set(rows)):
        if f"`{text}`" not in rest and f"\n- {text}\n" not in rest:
            yield f"docs/messages.md: not there: {text}"


def layouts(root):
    """{"A": "0 FAP, 1 SSB, ..."}"""
    source = (root / "usersystemdata/OptionLayout.cpp").read_text()
    for forms, rows in re.findall(r"constexpr LayoutRow layout([A-F]+)\[\] = \{(.*?)\n\};", source, re.S):
        bytes_ = []
        for item, first, count in re.findall(r"\{OptionItem::(\w+), (\d+), (\w+), \d+\}", rows):
            last = int(first) + int(count) - 1 if count.isdigit() else None
            place = f"{first} and up" if last is None else first if last == int(first) else f"{first}-{last}"
            bytes_.append(f"{place} {item.upper()}")
        yield from ((form, ", ".join(bytes_)) for form in forms)


def wrong_layouts(root):
    rows = re.findall(r"^\| ([A-F]) \| (.*) \| .*?: (.*) \|$", (root / "docs/option-bytes.md").read_text(), re.M)
    told = {form: bytes_ for form, _, bytes_ in rows}
    if told != dict(layouts(root)):
        yield "docs/option-bytes.md: the layouts are " + str(dict(layouts(root)))
    chips = {}
    for chip, form in re.findall(r"\{(ZV32\w+), +\w+, +\w+, +\d, Form::(\w)", (root / "device/Families.cpp").read_text()):
        chips.setdefault(form.upper(), []).append(chip)
    for form, named, _ in rows:
        if form != "A" and sorted(named.split(", ")) != sorted(chips.get(form, [])):
            yield f"docs/option-bytes.md: layout {form} is that of {chips.get(form)}"


def main():
    root = pathlib.Path(sys.argv[1])
    found = [*wrong_words(root), *wrong_messages(root), *wrong_layouts(root)]
    print("\n".join(found) if found else "pages: ok")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
