"""The rule `namespace` of scripts/check-source: a file's namespace says the folder that it stands in.

A file opens only the namespaces that NAMESPACES of scripts/house_rules.py lists for its folder; a header
declares nothing outside them but the names that GLOBAL_NAMES lists. Faults are (path, line, rule, message).
"""

import fnmatch
import re

OPENING = re.compile(r"(?:inline\s+)?namespace\b\s*([\w:]*)(?:\s*\[\[[^\]]*\]\])?\s*$")
# What a declaration may begin with and that names nothing.
PREFIX = re.compile(r"(?:template\s*<.*?>(?!\s*[>,])\s*|\[\[[^\]]*\]\]\s*|extern\b\s*|inline\b\s*|"
                    r"constexpr\b\s*|static\b\s*|alignas\([^)]*\)\s*)+", re.DOTALL)
TYPE = re.compile(r"(?:class|struct|union|enum(?:\s+(?:class|struct))?)\s+(?:[A-Z_]+(?:\([^)]*\))?\s+)?"
                  r"([\w:]+)")


def without_directives(code):
    """Returns C++ code with its preprocessor lines blanked, every line in its place."""
    return re.sub(r"^[ \t]*#(?:\\\n|[^\n])*", lambda m: re.sub(r"[^\n]", " ", m.group()), code,
                  flags=re.MULTILINE)


def statements(code):
    """Yields what stands outside of all braces but those of namespaces.

    Each is (offset, text, end, namespaces): the text up to a ";" or "{", which `end` is, and the names of
    the namespaces round it ("" for an unnamed one).
    """
    code = without_directives(code)
    namespaces, depth, begin = [], 0, 0
    for match in re.finditer(r"[{};]", code):
        end = match.group()
        if depth:
            depth += {"{": 1, "}": -1, ";": 0}[end]
        elif end == "}":
            if namespaces:
                namespaces.pop()
        else:
            text = code[begin:match.start()]
            offset = begin + len(text) - len(text.lstrip())
            yield offset, text.strip(), end, tuple(namespaces)
            opening = OPENING.match(text.strip())
            if end == "{" and opening:
                namespaces.append(opening.group(1))
            elif end == "{" and not re.fullmatch(r'extern\s*', text.strip()):
                depth = 1
            elif end == "{":
                namespaces.append("")  # a linkage block: what is in it stands where the block does
        if not depth:
            begin = match.end()


def declared_name(text):
    """Returns the name that a declaration outside of braces declares; None when it declares none."""
    text = PREFIX.sub("", text, count=1) if PREFIX.match(text) else text
    if not text or re.match(r"(?:using\s+namespace|static_assert|namespace)\b", text):
        return None
    for pattern in (r"using\s+(\w+)\s*=", r"using\s+[\w:]*?(\w+)\s*$"):
        match = re.match(pattern, text)
        if match:
            return match.group(1)
    match = TYPE.match(text)
    if match and not re.search(r"\(", text[match.end():]):
        return match.group(1)
    match = re.search(r"([\w:~]+|operator\W+)\s*(?:\(|=|\[|$)", text)
    return match.group(1) if match else None


def rooms_of(path, table):
    """Returns the row of `table` for the longest folder that holds `path`; None when it has none."""
    folder = path
    while "/" in folder:
        folder = folder.rsplit("/", 1)[0]
        if folder in table:
            return table[folder]
    return None


def namespace_faults(source, namespaces, global_names):
    """Checks one C++ file."""
    allowed = rooms_of(source.path, namespaces)
    if allowed is None:
        return []
    faults = []
    globally = [pattern for pattern, _ in rooms_of(source.path, global_names) or ()]
    for offset, text, end, inside in statements(source.code):
        line = source.line_of(offset)
        opening = OPENING.match(text) if end == "{" else None
        if opening:
            name = opening.group(1).split("::")[0]
            if not inside and name and name not in allowed:
                faults.append((source.path, line, "namespace",
                               f"opens namespace {name}; the folder's is {' or '.join(allowed)}"))
            continue
        if inside or not source.is_header:
            continue
        name = declared_name(text)
        if name and "::" not in name and not any(fnmatch.fnmatch(name, p) for p in globally):
            faults.append((source.path, line, "namespace",
                           f"{name} is declared outside of all namespaces; the folder's is "
                           f"{' or '.join(allowed)}"))
    return faults
