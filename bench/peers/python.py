#!/usr/bin/python3
"""dbus-fast for Python, with the proxy object that it makes from introspection. See peer.h for the protocol."""

import asyncio
import statistics
import sys
import time

from dbus_fast.aio import MessageBus
from dbus_fast.constants import BusType

NAME, PATH = "com.zarn.linux.ipod", "/com/zarn/linux/ipod"
BULK_PATH, BULK_INTERFACE = "/bench", "com.zarn.linux.ipod.bench"


class Peer:
    async def connect(self):
        self.bus = await MessageBus(bus_type=BusType.SESSION).connect()
        self.player = await self.interface(PATH, NAME)
        self.bulk = await self.interface(BULK_PATH, BULK_INTERFACE)
        self.arrived = asyncio.Event()
        self.player.on_on_play_status_changed(lambda status: self.arrived.set())
        return self

    async def interface(self, path, name):
        introspection = await self.bus.introspect(NAME, path)
        return self.bus.get_proxy_object(NAME, path, introspection).get_interface(name)

    async def pause(self):
        return await self.player.call_pause()

    async def names(self):
        return len(await self.bulk.call_names())

    async def image(self):
        return len((await self.bulk.call_bytes()).value)

    async def event(self):
        self.arrived.clear()
        await self.player.call_seek(0)
        start = time.process_time_ns()
        await self.arrived.wait()
        return time.process_time_ns() - start


async def timed(call, expected):
    start = time.perf_counter_ns()
    if await call() != expected:
        sys.exit("the service sent an unexpected reply")
    return time.perf_counter_ns() - start


async def measure(peer, work):
    if work == "event":
        return await peer.event()
    call, expected = {"command": (peer.pause, True), "names": (peer.names, 1000), "image": (peer.image, 900000)}[work]
    return await timed(call, expected)


async def main():
    peer = await Peer().connect()
    if sys.argv[1:] == ["start"]:
        return 0 if await peer.pause() else 1
    print("ready", flush=True)
    for line in sys.stdin:
        work, count = line.split()
        costs = [await measure(peer, work) for _ in range(int(count))]
        print(f"figure {work} {statistics.median(costs):.0f}", flush=True)
    return 0


sys.exit(asyncio.run(main()))
