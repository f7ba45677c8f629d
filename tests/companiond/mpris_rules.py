"""Checks a player on a bus against the published rules of MPRIS 2.2, knowing nothing else about it.

Each function returns a list of violations; it is empty if the player complies.
"""
import os
import time
import xml.etree.ElementTree as ElementTree
from urllib.parse import unquote, urlparse

from gi.repository import Gio, GLib

PATH = "/org/mpris/MediaPlayer2"
ROOT, PLAYER = "org.mpris.MediaPlayer2", "org.mpris.MediaPlayer2.Player"
PROPERTIES = "org.freedesktop.DBus.Properties"
UNSIGNALLED = '<annotation name="org.freedesktop.DBus.Property.EmitsChangedSignal" value="false"/>'
IMAGES = (b"\x89PNG", b"\xff\xd8\xff", b"GIF8", b"BM", b"RIFF", b"II*\0", b"MM\0*")

# The published interfaces, version 2.2.
PUBLISHED = f"""<node>
<interface name="org.mpris.MediaPlayer2">
  <method name="Raise"/><method name="Quit"/>
  <property name="CanQuit" type="b" access="read"/>
  <property name="Fullscreen" type="b" access="readwrite"/>
  <property name="CanSetFullscreen" type="b" access="read"/>
  <property name="CanRaise" type="b" access="read"/>
  <property name="HasTrackList" type="b" access="read"/>
  <property name="Identity" type="s" access="read"/>
  <property name="DesktopEntry" type="s" access="read"/>
  <property name="SupportedUriSchemes" type="as" access="read"/>
  <property name="SupportedMimeTypes" type="as" access="read"/>
</interface>
<interface name="org.mpris.MediaPlayer2.Player">
  <method name="Next"/><method name="Previous"/><method name="Pause"/><method name="PlayPause"/><method name="Stop"/>
  <method name="Play"/>
  <method name="Seek"><arg direction="in" name="Offset" type="x"/></method>
  <method name="SetPosition"><arg direction="in" name="TrackId" type="o"/><arg direction="in" name="Position" type="x"/></method>
  <method name="OpenUri"><arg direction="in" name="Uri" type="s"/></method>
  <signal name="Seeked"><arg name="Position" type="x"/></signal>
  <property name="PlaybackStatus" type="s" access="read"/>
  <property name="LoopStatus" type="s" access="readwrite"/>
  <property name="Rate" type="d" access="readwrite"/>
  <property name="Shuffle" type="b" access="readwrite"/>
  <property name="Metadata" type="a{{sv}}" access="read"/>
  <property name="Volume" type="d" access="readwrite"/>
  <property name="Position" type="x" access="read">{UNSIGNALLED}</property>
  <property name="MinimumRate" type="d" access="read"/>
  <property name="MaximumRate" type="d" access="read"/>
  <property name="CanGoNext" type="b" access="read"/>
  <property name="CanGoPrevious" type="b" access="read"/>
  <property name="CanPlay" type="b" access="read"/>
  <property name="CanPause" type="b" access="read"/>
  <property name="CanSeek" type="b" access="read"/>
  <property name="CanControl" type="b" access="read">{UNSIGNALLED}</property>
</interface>
</node>"""

JUMP = 0.7  # seconds; a service that reports the position rarely corrects it by less
OPTIONAL = {"Fullscreen", "CanSetFullscreen", "DesktopEntry", "LoopStatus", "Shuffle"}

METADATA = {"mpris:trackid": "o", "mpris:length": "x", "mpris:artUrl": "s", "xesam:album": "s", "xesam:albumArtist": "as",
            "xesam:artist": "as", "xesam:asText": "s", "xesam:audioBPM": "i", "xesam:autoRating": "d",
            "xesam:comment": "as", "xesam:composer": "as", "xesam:contentCreated": "s", "xesam:discNumber": "i",
            "xesam:firstUsed": "s", "xesam:genre": "as", "xesam:lastUsed": "s", "xesam:lyricist": "as",
            "xesam:title": "s", "xesam:trackNumber": "i", "xesam:url": "s", "xesam:useCount": "i",
            "xesam:userRating": "d"}

# Whether a value is valid, given all values of the player.
VALUES = {
    "PlaybackStatus": lambda value, _: value in ("Playing", "Paused", "Stopped"),
    "LoopStatus": lambda value, _: value in ("None", "Track", "Playlist"),
    "Rate": lambda value, all: value != 0 and all["MinimumRate"] <= value <= all["MaximumRate"],
    "MinimumRate": lambda value, _: value <= 1,
    "MaximumRate": lambda value, _: value >= 1,
    "Volume": lambda value, _: value >= 0,
    "Position": lambda value, all: 0 <= value <= all["Metadata"].get("mpris:length", 2**63),
    "CanControl": lambda value, all: value or not any(all[name] for name in all if name.startswith("CanG")
                                                      or name in ("CanPlay", "CanPause", "CanSeek")),
    "CanPause": lambda value, all: value or all["PlaybackStatus"] != "Paused",
}


def described(xml, interface):
    """Returns the members of an interface with their arguments, and whether properties are signalled."""
    node = next(each for each in ElementTree.fromstring(xml) if each.get("name") == interface)
    members = []
    for member in node:
        if member.tag == "annotation":
            continue
        arguments = [(each.get("name"), each.get("type")) for each in member if each.tag == "arg"]
        silent = any(each.get("value") == "false" for each in member if each.tag == "annotation")
        members.append((member.tag, member.get("name"), member.get("type"), member.get("access"), arguments, silent))
    return sorted(members, key=str)


def properties(interface):
    """The published properties as (name, type, access)."""
    return [member[1:4] for member in described(PUBLISHED, interface) if member[0] == "property"]


def metadata_violations(metadata):
    """@param metadata  variants by key"""
    wrong = [f"{key} has type {value.get_type_string()}" for key, value in metadata.items()
             if METADATA.get(key, value.get_type_string()) != value.get_type_string()]
    if metadata and "mpris:trackid" not in metadata:
        wrong.append("mpris:trackid is missing")
    plain = {key: value.unpack() for key, value in metadata.items()}
    if str(plain.get("mpris:trackid", "")).startswith("/org/mpris"):
        wrong.append("mpris:trackid is in the reserved namespace")
    if plain.get("mpris:length", 0) < 0:
        wrong.append("mpris:length is negative")
    return wrong + art_violations(plain.get("mpris:artUrl"))


def art_violations(url):
    if url is None:
        return []
    address = urlparse(url)
    if address.scheme != "file" or address.netloc:
        return [f"mpris:artUrl is not the address of a file: {url}"]
    path = unquote(address.path)
    if not os.path.isfile(path):
        return [f"mpris:artUrl does not exist: {path}"]
    with open(path, "rb") as file:
        return [] if file.read(4).startswith(IMAGES) else [f"mpris:artUrl is not an image: {path}"]


def value_violations(values, interface=PLAYER):
    """@param values  variants by name, as GetAll() returns them"""
    wrong = []
    for name, kind, _ in properties(interface):
        if name not in values and name not in OPTIONAL:
            wrong.append(f"{name} is missing")
        if name in values and values[name].get_type_string() != kind:
            wrong.append(f"{name} has type {values[name].get_type_string()}")
    if wrong or interface == ROOT:
        return wrong
    plain = {name: value.unpack() for name, value in values.items()}
    wrong = [f"{name} is {plain[name]!r}" for name, rule in VALUES.items() if name in plain and not rule(plain[name], plain)]
    metadata = values["Metadata"]
    keys = [metadata.get_child_value(i).get_child_value(0).get_string() for i in range(metadata.n_children())]
    return wrong + metadata_violations({key: metadata.lookup_value(key, None) for key in keys})


class Player:
    """A player under test."""

    def __init__(self, bus, name):
        self.bus, self.name = bus, name

    def call(self, interface, method, arguments=None):
        return self.bus.call_sync(self.name, PATH, interface, method, arguments, None, Gio.DBusCallFlags.NO_AUTO_START,
                                  10000, None)

    def error_of(self, interface, method, arguments=None):
        try:
            self.call(interface, method, arguments)
        except GLib.Error as error:
            return str(error)
        return None

    def values(self, interface=PLAYER):
        all_values = self.call(PROPERTIES, "GetAll", GLib.Variant("(s)", (interface,))).get_child_value(0)
        names = [all_values.get_child_value(i).get_child_value(0).get_string() for i in range(all_values.n_children())]
        return {name: all_values.lookup_value(name, None) for name in names}

    def observed(self):
        """What a method without effect leaves alone; the position moves by itself."""
        return {name: value.unpack() for name, value in self.values().items() if name != "Position"}

    def interface_violations(self):
        xml = self.call("org.freedesktop.DBus.Introspectable", "Introspect").unpack()[0]
        named = [each.get("name") for each in ElementTree.fromstring(xml) if "mpris" in (each.get("name") or "")]
        wrong = [f"{each} is not announced" for each in named if each not in (ROOT, PLAYER)]
        for interface in (ROOT, PLAYER):
            differing = set(map(str, described(xml, interface))) ^ set(map(str, described(PUBLISHED, interface)))
            wrong += [f"{interface}: {member}" for member in sorted(differing)]
        return wrong

    def get_violations(self):
        """Get() must return what GetAll() does."""
        wrong = []
        for interface in (ROOT, PLAYER):
            values = self.values(interface)
            for name in values:
                got = self.call(PROPERTIES, "Get", GLib.Variant("(ss)", (interface, name))).unpack()[0]
                if name != "Position" and got != values[name].unpack():
                    wrong.append(f"Get({name}) differs from GetAll()")
        return wrong

    def read_only_violations(self):
        wrong = []
        for interface in (ROOT, PLAYER):
            for name, _, access in properties(interface):
                value = self.values(interface).get(name, GLib.Variant("s", ""))
                if access == "read" and not self.error_of(PROPERTIES, "Set", GLib.Variant("(ssv)", (interface, name, value))):
                    wrong.append(f"{name} can be set")
        return wrong

    def impossible_calls(self):
        """The methods that must have no effect now."""
        values = {name: value.unpack() for name, value in {**self.values(ROOT), **self.values()}.items()}
        track = values["Metadata"].get("mpris:trackid", "/org/mpris/MediaPlayer2/TrackList/NoTrack")
        calls = [("CanQuit", ROOT, "Quit", None), ("CanRaise", ROOT, "Raise", None),
                 ("CanGoNext", PLAYER, "Next", None), ("CanGoPrevious", PLAYER, "Previous", None),
                 ("CanPlay", PLAYER, "Play", None), ("CanPause", PLAYER, "Pause", None),
                 ("CanSeek", PLAYER, "Seek", GLib.Variant("(x)", (5_000_000,))),
                 ("CanSeek", PLAYER, "SetPosition", GLib.Variant("(ox)", (track, 5_000_000)))]
        calls = [call[1:] for call in calls if not values[call[0]]]
        # A track that does not play now, and positions outside the track.
        calls += [(PLAYER, "SetPosition", GLib.Variant("(ox)", where))
                  for where in (("/other", 5_000_000), (track, -1), (track, 2**62))]
        return calls

    def method_violations(self):
        wrong = []
        for interface, method, arguments in self.impossible_calls():
            before = self.observed()
            since, position = time.monotonic(), self.values()["Position"].unpack()
            if error := self.error_of(interface, method, arguments):
                wrong.append(f"{method} fails: {error}")
            time.sleep(0.03)
            moved = (self.values()["Position"].unpack() - position) / 1e6
            changed = set(map(str, self.observed().items())) ^ set(map(str, before.items()))
            if changed or not -JUMP <= moved <= time.monotonic() - since + JUMP:
                wrong.append(f"{method} has an effect: {sorted(changed) or moved}")
        values = {name: value.unpack() for name, value in self.values().items()}
        possible = values["CanPause"] if values["PlaybackStatus"] == "Playing" else values["CanPlay"]
        if not possible and not self.error_of(PLAYER, "PlayPause"):
            wrong.append("PlayPause does not fail")
        return wrong

    def violations(self):
        """All of the above. The player's state is unchanged afterwards."""
        return (self.interface_violations() + value_violations(self.values()) + value_violations(self.values(ROOT), ROOT) +
                self.get_violations() + self.read_only_violations() + self.method_violations())


def change_violations(changes):
    """@param changes  bodies of PropertiesChanged, unpacked"""
    wrong = []
    for interface, changed, invalidated in changes:
        known = {member[1]: member[5] for member in described(PUBLISHED, interface) if member[0] == "property"}
        wrong += [f"{name} is announced" for name in [*changed, *invalidated] if known.get(name, True)]
        wrong += ["an empty PropertiesChanged"] if not changed and not invalidated else []
    return wrong
