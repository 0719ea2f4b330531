"""What the program says over the accessibility bus."""

import os

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib


def connect(environment):
    """Once, before the first question: the bus is found through the session's."""
    os.environ.update({key: environment[key] for key in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR")})
    Atspi.init()
    Atspi.set_timeout(2000, 5000)


def listen(kind, hear=lambda event: None):
    """As a screen reader does."""
    listener = Atspi.EventListener.new(hear)
    listener.register(kind)
    return listener


def application(pid):
    desktop = Atspi.get_desktop(0)
    desktop.clear_cache()
    for i in range(desktop.get_child_count()):
        try:
            child = desktop.get_child_at_index(i)
            if child and child.get_process_id() == pid:
                return child
        except Exception:  # one that has just ended
            continue
    return None


# The toolkit complains about what is asked of its file lists; the others are big, and nobody asks for them here.
CLOSED = {"table", "tree", "tree table", "list", "menu bar", "tool bar", "status bar"}


def _walk(node):
    yield node
    if node.get_role_name() in CLOSED:
        return
    for i in range(node.get_child_count()):
        child = node.get_child_at_index(i)
        if child:
            yield from _walk(child)


def _windows(pid):
    found = application(pid)
    if not found:
        return []
    found.clear_cache()
    return [found.get_child_at_index(i) for i in range(found.get_child_count())]


def _steady(answer, otherwise):
    """What is looked at may go meanwhile: that is as if it had not been there."""
    try:
        return answer()
    except GLib.GError:
        return otherwise


def _showing(node):
    return node.get_state_set().contains(Atspi.StateType.SHOWING)


def _texts_of(window):
    return [(node.get_role_name(), node.get_name()) for node in _walk(window) if node.get_name()]


def texts(pid):
    return _steady(lambda: [text for window in _windows(pid) if window for text in _texts_of(window)], [])


def _dialog(pid):
    for window in reversed(_windows(pid)):
        if not window or window.get_role_name() not in ("alert", "dialog"):
            continue
        if _showing(window):
            labels = [text for role, text in _texts_of(window) if role == "label"]
            return "\n".join(labels) or window.get_name()
    return None


def dialog(pid):
    """What the labels of the open dialog say; lines end in LF."""
    return _steady(lambda: _dialog(pid), None)


def is_active(pid):
    """One of its windows knows that it has the keyboard."""
    return _steady(lambda: any(window and window.get_state_set().contains(Atspi.StateType.ACTIVE)
                               for window in _windows(pid)), False)


def _documents(pid):
    found = []
    for window in _windows(pid):
        for node in _walk(window) if window and window.get_role_name() == "frame" else []:
            if node is not window and node.get_role_name() in ("frame", "internal frame") and _showing(node):
                found.append(node.get_name())
    return found


def documents(pid):
    """The titles of the document windows."""
    return _steady(lambda: _documents(pid), [])


def _editors(pid):
    found = []
    for window in _windows(pid):
        for node in _walk(window) if window and window.get_role_name() == "frame" else []:
            visible = node.get_state_set().contains(Atspi.StateType.VISIBLE)  # the list of auto-complete is hidden
            if visible and node.get_role_name() in ("text", "document text") and node.get_editable_text_iface():
                found.append(node.get_text_iface().get_text(0, -1))
    return found


def editors(pid):
    """The texts of all documents."""
    return _steady(lambda: _editors(pid), [])


def _selected_lines(pid, name):
    for window in _windows(pid):
        for node in _walk(window) if window else []:
            if node.get_role_name() == "list" and node.get_name() == name:
                return [(line.get_name(), line.get_state_set().contains(Atspi.StateType.SELECTED))
                        for line in _children(node)]
    return []


def list_lines(pid, name):
    """(text, whether it is selected) of each line of the list called so."""
    return _steady(lambda: _selected_lines(pid, name), [])


def _children(node):
    return [child for child in (node.get_child_at_index(i) for i in range(node.get_child_count())) if child]


def _menu_items(pid):
    bars = [node for window in _windows(pid) if window for node in _children(window)
            if node.get_role_name() == "menu bar"]
    menus = [menu for bar in bars for title in _children(bar) for menu in _children(title) if _showing(menu)]
    return [item.get_name().split("\t")[0] for menu in menus for item in _children(menu)
            if item.get_role_name() != "separator" and _showing(item)]


def menu_items(pid):
    """The captions in the open menu of the menu bar."""
    return _steady(lambda: _menu_items(pid), [])


def _extents(pid, role, name):
    for window in _windows(pid):
        for node in _walk(window) if window else []:
            for found in [node, *(_children(node) if node.get_role_name() in ("list", "tool bar") else [])]:
                if found.get_role_name() == role and name in (None, found.get_name()) and _showing(found):
                    return found.get_component_iface().get_extents(Atspi.CoordType.SCREEN)
    return None


def extents(pid, role, name=None):
    """Where on the display the first of that role (and name) is."""
    return _steady(lambda: _extents(pid, role, name), None)


def _in_editor(pid, name, answer):
    for window in _windows(pid):
        for node in _walk(window) if window else []:
            if node.get_role_name() in ("text", "document text") and node.get_name().endswith(name):
                text = node.get_text_iface()
                if text and text.get_n_selections():
                    return answer(text, text.get_selection(0))
    return None


def selection(pid, name):
    """(begin, end) of what is selected in the document, counted in characters."""
    return _steady(lambda: _in_editor(pid, name, lambda _, range: (range.start_offset, range.end_offset)), None)


def selected_rectangle(pid, name):
    """Where on the display what is selected in the document is."""
    def rectangle(text, range):
        return text.get_range_extents(range.start_offset, range.end_offset, Atspi.CoordType.SCREEN)
    return _steady(lambda: _in_editor(pid, name, rectangle), None)


def _tree(pid, name):
    for window in _windows(pid):
        for node in _walk(window) if window else []:
            if node.get_role_name() in ("tree", "tree table") and node.get_name() == name:
                return node
    return None


def steps_to(pid, name, text):
    """How many nodes the last one with that text is below the selected one; nothing when one of them is not there."""
    def steps():
        tree = _tree(pid, name)
        place = selected = None
        for i in range(tree.get_child_count() if tree else 0, 0, -1):
            node = tree.get_child_at_index(i - 1)
            if place is None and node.get_name() == text:
                place = i
            if node.get_state_set().contains(Atspi.StateType.SELECTED):
                selected = i
            if place is not None and selected is not None:
                return place - selected
        return None
    return _steady(steps, None)


def _of_node(pid, name, text, answer):
    tree = _tree(pid, name)
    for i in range(tree.get_child_count() if tree else 0, 0, -1):
        node = tree.get_child_at_index(i - 1)
        if node and node.get_name() == text:
            return answer(node)
    return None


def has_node(pid, name, text):
    return _steady(lambda: _of_node(pid, name, text, lambda node: True), False)


def is_checked(pid, name, text):
    """Whether the last node with that text has a check mark; nothing when there is none."""
    return _steady(lambda: _of_node(pid, name, text,
                                    lambda node: node.get_state_set().contains(Atspi.StateType.CHECKED)), None)


def node_extents(pid, name, text):
    """Where on the display the last node with that text is."""
    return _steady(lambda: _of_node(pid, name, text, lambda node: node.get_component_iface().get_extents(
        Atspi.CoordType.SCREEN)), None)


def selected_node(pid, name):
    """The text of the selected node, or nothing. (The toolkit mixes up the rows of a tree's selection.)"""
    def selected():
        tree = _tree(pid, name)
        for i in range(tree.get_child_count() if tree else 0, 0, -1):
            node = tree.get_child_at_index(i - 1)
            if node and node.get_state_set().contains(Atspi.StateType.SELECTED):
                return node.get_name()
        return None
    return _steady(selected, None)


def tree_has_focus(pid, name):
    """Not while a name is changed in it."""
    def focused():
        tree = _tree(pid, name)
        return bool(tree) and tree.get_state_set().contains(Atspi.StateType.FOCUSED)
    return _steady(focused, False)
