#!/usr/bin/python3
"""Shows what is playing, for as long as it runs, in asyncio. Compare with now_playing.py."""
import asyncio

import ipodkit


async def main() -> None:
    async with ipodkit.Session() as session:
        fields = (ipodkit.Field.TRACK, ipodkit.Field.STATUS, ipodkit.Field.CONNECTION)
        async for state, _ in session.states(*fields):
            sign = ">" if state.status == ipodkit.PlayStatus.PLAYING else "="
            artist, title = (state.track.artist, state.track.title) if state.track else ("", "")
            print(f"[{state.phase.name}] {sign} {artist} - {title}", flush=True)


ipodkit.log("WARN")  # without a log the library prints a warning for each record
try:
    asyncio.run(main())
except KeyboardInterrupt:
    pass  # Ctrl-C is how it ends
