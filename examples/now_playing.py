#!/usr/bin/python3
"""Shows what is playing, for as long as it runs. Compare with now_playing.cpp."""
import ipodkit
from gi.repository import GLib  # type: ignore[import]


def show(state: ipodkit.PlayerState, changed: frozenset[ipodkit.Field]) -> None:
    sign = ">" if state.status == ipodkit.PlayStatus.PLAYING else "="
    artist, title = (state.track.artist, state.track.title) if state.track else ("", "")
    print(f"[{state.phase.name}] {sign} {artist} - {title}", flush=True)


ipodkit.log("WARN")  # without a log the library prints a warning for each record
session = ipodkit.Session()
fields = {ipodkit.Field.TRACK, ipodkit.Field.STATUS, ipodkit.Field.CONNECTION}
shown = session.on_state("now playing", show, fields)
try:
    GLib.MainLoop().run()
except KeyboardInterrupt:
    pass  # Ctrl-C is how it ends
