"""The rules of scripts/check-source that look at the tree as a whole: who includes whom.

`layers` compares what is said in three places: the table MAY_INCLUDE of scripts/house_rules.py, the link
lines of the build files, and the table of the architecture page. `include-circle` finds units of one
folder that include each other. The functions take files as check-source reads them and return faults,
each (path, line, rule, message).
"""

import re

TABLES = "scripts/house_rules.py"
PAGE = "docs/architecture.md"
PAGE_HEADING = "## Who may include whom"

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*"([^"\n]+)"', re.MULTILINE)

# ---- link lines ------------------------------------------------------------------------------------

COMMAND = re.compile(r"\b(add_library|add_executable|target_link_libraries)\s*\(([^()]*)\)")
OBJECTS_OF = re.compile(r"\$<TARGET_OBJECTS:([\w.-]+)>")
SCOPES = ("PUBLIC", "INTERFACE", "PRIVATE")


class Targets:
    """The targets of the build files: where each is made, which it holds, which it links."""

    def __init__(self, files, folders):
        self.folder = {}   # target -> the top folder whose build file makes it
        self.holds = {}    # target -> the targets whose objects are in it
        self.public = {}   # target -> the targets that it links and hands on
        self.private = {}  # target -> those that it keeps to itself
        for source in files:
            if source.is_cmake and source.top in folders:
                for command, arguments in COMMAND.findall(re.sub(r"#[^\n]*", "", source.text)):
                    self.read(command, arguments.split(), source.top)

    def read(self, command, arguments, folder):
        if not arguments:
            return
        name, rest = arguments[0], arguments[1:]
        if command == "target_link_libraries":
            scope = "PUBLIC"
            for word in rest:
                if word in SCOPES:
                    scope = word
                else:
                    links = self.private if scope == "PRIVATE" else self.public
                    links.setdefault(name, set()).add(word)
            return
        self.folder[name] = folder
        self.holds[name] = set(OBJECTS_OF.findall(" ".join(rest)))
        if "ALIAS" in rest:
            self.public.setdefault(name, set()).add(rest[-1])

    def reachable(self, folder):
        """Returns the folders whose headers the link lines of the targets of `folder` give it."""
        own = [name for name, place in self.folder.items() if place == folder]
        found, queue = set(), list(own)
        for name in own:
            queue += self.private.get(name, ())
        while queue:
            name = queue.pop()
            if name not in found:
                found.add(name)
                queue += self.public.get(name, ())
        found.update(*(self.holds.get(name, ()) for name in list(found)))
        return {self.folder[name] for name in found if name in self.folder}


# ---- layers ----------------------------------------------------------------------------------------


def entries(allowed, folder):
    """Yields what a row of MAY_INCLUDE allows beside the folder itself: folders, and single headers."""
    for entry in allowed:
        if isinstance(entry, tuple):
            yield from entry[1]
        elif entry != folder:
            yield entry


def rows_of_page(page):
    """Returns the page's table: folder -> (line, what its row names), and the line of its heading."""
    rows, heading = {}, 0
    for number, line in enumerate(page.lines, 1):
        if line.startswith("## "):
            heading = heading or (number if line.strip() == PAGE_HEADING else 0)
            if heading and heading != number:
                break
        row = re.match(r"\|\s*`(\w+)/`\s*\|(.*)\|\s*$", line) if heading else None
        if row:
            named = {name.rstrip("/") for name in re.findall(r"`([\w./]+)`", row.group(2))}
            rows[row.group(1)] = (number, named)
    return rows, heading


def includes_of(files):
    """Returns for each top folder the headers of this project that its files include."""
    found = {}
    for source in files:
        if source.is_cxx:
            found.setdefault(source.top, set()).update(INCLUDE.findall(source.code))
    return found


def circle_of_folders(table):
    """Returns folders that may include each other, in a circle; empty when there are none."""
    graph = {folder: {entry for entry in entries(allowed, folder) if entry in table}
             for folder, allowed in table.items() if allowed is not None}
    return next(iter(circles(graph)), [])


def layer_faults(files, table):
    """Compares the table, the link lines and the page; nothing where the tables are not in the tree."""
    by_path = {source.path: source for source in files}
    if TABLES not in by_path:
        return []  # another tree: the tables describe the one that they stand in
    faults = []
    table_lines = by_path[TABLES].lines

    def fault_in_table(folder, message):
        beginning = f'"{folder}":'
        line = next((number for number, line in enumerate(table_lines, 1)
                     if line.strip().startswith(beginning)), 1)
        faults.append((TABLES, line, "layers", f"MAY_INCLUDE: {message}"))

    folders = {folder: allowed for folder, allowed in table.items() if allowed is not None}
    targets = Targets(files, folders)
    includes = includes_of(files)
    for folder, allowed in folders.items():
        linked = targets.reachable(folder)
        used = includes.get(folder, set())
        for entry in entries(allowed, folder):
            if entry.endswith(".h"):
                # A header that stands alone needs no library, and so no link line.
                source = entry[:-len(".h")] + ".cpp"
                if source in by_path and entry.split("/")[0] not in linked:
                    fault_in_table(folder, f"{folder}/ may include {entry}, but links no target of "
                                           f"{entry.split('/')[0]}/, where {source} defines it")
                if entry not in used:
                    fault_in_table(folder, f"no file of {folder}/ includes {entry}; delete the entry")
                continue
            if entry not in linked:
                fault_in_table(folder, f"{folder}/ may include {entry}/, but no target of {folder}/ "
                                       "links one of it; add the link line or delete the entry")
            if not any(header.startswith(entry + "/") for header in used):
                fault_in_table(folder, f"no file of {folder}/ includes a header of {entry}/; delete "
                                       "the entry")
    circle = circle_of_folders(table)
    if circle:
        fault_in_table(circle[0], f"{', '.join(circle)} may include each other in a circle")
    return faults + page_faults(by_path.get(PAGE), folders)


def page_faults(page, folders):
    if page is None:
        return [(TABLES, 1, "layers", f"{PAGE}, which shows MAY_INCLUDE, does not exist")]
    rows, heading = rows_of_page(page)
    if not heading:
        return [(PAGE, 1, "layers", f'there is no "{PAGE_HEADING}" with a row for each folder')]
    faults = []
    for folder, allowed in folders.items():
        expected = set(entries(allowed, folder))
        line, named = rows.get(folder, (heading, None))
        if named is None:
            faults.append((PAGE, line, "layers", f"{folder}/ has no row"))
            continue
        for name in sorted(expected - named):
            faults.append((PAGE, line, "layers", f"the row of {folder}/ lacks {shown(name)}"))
        for name in sorted(named - expected):
            faults.append((PAGE, line, "layers",
                           f"the row of {folder}/ names {shown(name)}, which MAY_INCLUDE does not allow"))
    for folder in sorted(set(rows) - set(folders)):
        faults.append((PAGE, rows[folder][0], "layers", f"MAY_INCLUDE has no folder {folder}/"))
    return faults


def shown(name):
    return f"`{name}`" if name.endswith(".h") else f"`{name}/`"


# ---- circles ---------------------------------------------------------------------------------------


def circles(graph):
    """Returns the strongly connected components of more than one node, each sorted."""
    index, low, stack, found = {}, {}, [], []

    def visit(root):
        # Iterative: a chain of includes may be longer than Python's stack.
        work = [(root, iter(sorted(graph.get(root, ()))))]
        index[root] = low[root] = len(index)
        stack.append(root)
        while work:
            node, successors = work[-1]
            for successor in successors:
                if successor not in index:
                    index[successor] = low[successor] = len(index)
                    stack.append(successor)
                    work.append((successor, iter(sorted(graph.get(successor, ())))))
                    break
                if successor in stack:
                    low[node] = min(low[node], index[successor])
            else:
                work.pop()
                if work:
                    low[work[-1][0]] = min(low[work[-1][0]], low[node])
                if low[node] == index[node]:
                    component = stack[stack.index(node):]
                    del stack[stack.index(node):]
                    if len(component) > 1:
                        found.append(sorted(component))

    for node in sorted(graph):
        if node not in index:
            visit(node)
    return found


def unit_of(path):
    """Returns the unit of a file: X.h and X.cpp are one."""
    return path.rsplit(".", 1)[0]


def include_circle_faults(files):
    """Finds the units of one folder that include each other."""
    graph, places = {}, {}
    for source in files:
        if not source.is_cxx:
            continue
        unit = unit_of(source.path)
        for line, match in source.find(INCLUDE.pattern, source.code):
            included = unit_of(match.group(1))
            if included != unit and included.split("/")[0] == source.top:
                graph.setdefault(unit, set()).add(included)
                places.setdefault((unit, included), (source.path, line))
    faults = []
    for circle in circles(graph):
        path, line = min(place for (unit, included), place in places.items()
                         if unit in circle and included in circle)
        faults.append((path, line, "include-circle",
                       f"{', '.join(circle)} include each other in a circle; move what they share "
                       "into a header of its own"))
    return faults
