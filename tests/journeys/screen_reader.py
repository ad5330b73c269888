"""A screen reader finds its way: all controls have names and roles wherever one looks, and what happens is told."""

import subprocess

import accessible
from journey import Failure

# What holds other things together needs no name.
STRUCTURE = {"application", "filler", "layered pane", "menu bar", "scroll bar", "separator", "split pane", "panel"}


def git(folder, *arguments):
    return subprocess.run(("git", "-C", folder, "-c", "user.name=A", "-c", "user.email=a@example.org", *arguments),
                          capture_output=True, text=True, check=True).stdout


def faults(nodes):
    """What could not be told of what is to be seen."""
    found, parents = [], []
    for node in nodes:
        role, name = node["role"], node["name"]
        parents[node["depth"]:] = [node]
        # The inner part of a view that has the keyboard has it as well.
        has_keyboard = "focused" in node["states"] and "focused" not in parents[node["depth"] - 1]["states"]
        if "showing" not in node["states"]:
            continue
        if role in ("unknown", "invalid"):
            found.append(f"no role: {node}")
        elif role == "filler" and (name or has_keyboard):
            found.append(f"no more than a filler: {node}")
        elif role not in STRUCTURE and not name:
            found.append(f"no name: {node}")
        elif role not in STRUCTURE | {"label"} and not any(letter.isalnum() for letter in name):
            found.append(f"signs for a name: {node}")
    return found


def look(journey, where, *wanted):
    """Waits for controls, each a role and a name, and for all that is shown by then to be known for what it is."""
    def seen():
        nodes[:] = accessible.nodes(journey)
        shown = {(node["role"], node["name"]) for node in nodes if "showing" in node["states"]}
        return all(each in shown for each in wanted) and not faults(nodes)
    nodes = []
    try:
        journey.until(seen, f"{where}: {wanted}")
    except Failure as missed:
        shown = [(node["role"], node["name"]) for node in nodes if "showing" in node["states"]]
        raise Failure(f"{missed}; {faults(nodes)}; there are {shown}") from missed
    return nodes


def states(nodes, role, name):
    return next(node["states"] for node in nodes if node["role"] == role and node["name"] == name)


def go(journey):
    project = journey.home / "project"
    (project / "folder").mkdir(parents=True)
    (project / "one.txt").write_text("one two\none\n")
    (project / "two.txt").write_text("two\n")
    git(project, "init", "-q")
    git(project, "add", "one.txt")
    git(project, "commit", "-qm", "first")
    (project / "one.txt").write_text("one two\none three\n")

    accessible.start(journey)
    program = journey.start()
    look(journey, "welcome", ("push button", "New File"))
    journey.second_start(project)
    journey.second_start(project / "two.txt")
    journey.second_start(project / "one.txt")
    nodes = look(journey, "the editor", ("text", "Text of one.txt"), ("list item", "folder, folder"),
                 ("list item", "one.txt, file, modified"))
    journey.check("collapsed" in states(nodes, "list item", "folder, folder"), "the folder does not tell its state")
    journey.check("selected" in states(nodes, "page tab", "one.txt"), "the tab does not tell its selection")

    heard = accessible.Listener(journey)
    journey.type("x")
    since = heard.until(lambda kind, role, name, at, text: kind.startswith("object:text-changed:insert")
                        and name == "Text of one.txt" and text == "x", "the letter")
    heard.until(lambda kind, role, name, at, _: kind == "object:text-caret-moved" and at == 1, "the caret", since - 1)
    accessible.find(journey, "one.txt *", "page tab")
    journey.key("BackSpace")
    heard.until(lambda kind, *_: kind.startswith("object:text-changed:delete"), "the letter that went", since)

    overlays_and_bars(journey, heard)
    panels(journey, project)
    settings(journey)
    journey.key("ctrl+q")
    journey.ended(program)


def overlays_and_bars(journey, heard):
    since = len(heard.all())
    journey.key("ctrl+p")
    look(journey, "quick open", ("dialog", "Go to file"), ("text", "Go to file"), ("list item", "two.txt"))
    journey.key("Down")
    heard.until(lambda kind, role, name, at, text: kind.endswith("accessible-description") and name == "Go to file"
                and text.endswith(", 2 of 2"), "the second file", since)
    journey.key("Escape")

    since = len(heard.all())
    journey.key("ctrl+alt+f")
    journey.type("one")
    heard.until(lambda kind, role, name, at, text: kind == "object:state-changed:showing" and role == "notification"
                and name.endswith("of 2"), "the number of matches", since)
    look(journey, "the find bar", ("panel", "Find"), ("check box", "Match case"))
    journey.key("Escape")

    since = len(heard.all())
    journey.second_start(journey.home / "there is none")
    heard.until(lambda kind, role, name, *_: kind == "object:state-changed:showing" and role == "alert" and name,
                "the notice", since)
    look(journey, "the notice")
    accessible.click(journey, "Dismiss")
    journey.until(lambda: not [node for node in accessible.nodes(journey) if node["role"] == "alert"
                               and "showing" in node["states"]], "the notice's end")


def panels(journey, project):
    accessible.click(journey, "Source Control")
    look(journey, "source control", ("radio button", "Changes, 2"), ("list item", "one.txt (modified)"))
    accessible.act(journey, "list item", "one.txt (modified)", "Stage")
    journey.until(lambda: git(project, "diff", "--cached", "--name-only") == "one.txt\n", "the staged file")
    for page in ("History", "Branches, 1", "Stashes", "Tags", "Remotes"):
        accessible.act(journey, "radio button", page, "Toggle")
        look(journey, page)
    accessible.click(journey, "Search")
    look(journey, "search", ("text", "Search in files"))
    accessible.click(journey, "Extensions")
    look(journey, "extensions")
    for page, wanted in (("Terminal", ("terminal", "Terminal")), ("Output", ("text", "Output")),
                         ("Problems", ("panel", "Bottom panel"))):
        if page == "Terminal":
            journey.key("ctrl+grave")
        accessible.find(journey, page)
        accessible.act(journey, "radio button", page, "Toggle")
        look(journey, page, wanted)


def settings(journey):
    accessible.click(journey, "Settings")
    for page, wanted in (("Editor", ("slider", "Line height:")), ("Themes", ("list", "Themes")),
                         ("Keybindings", ("panel", "Keyboard shortcuts")),
                         ("General", ("check box", "Auto save files"))):
        accessible.act(journey, "radio button", page, "Toggle")
        look(journey, page, ("frame", "Settings"), wanted)
    journey.key("Escape")
