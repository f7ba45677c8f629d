#!/usr/bin/python3
"""Prints the names of the database's current level that match what was typed, in asyncio: browse_and_jump.py zmx"""
import asyncio
import sys

import ipodkit


async def main(query: str) -> None:
    async with ipodkit.Session() as session:
        await session.ready()
        pager = ipodkit.Pager(session, ipodkit.ListKind.DATABASE)
        names = [name async for name in pager]
        index = await asyncio.to_thread(ipodkit.JumpIndex, names)
        for found in index.search(query):
            print(f"{found}\t{names[found]}\t({index.reading(found)})")


if len(sys.argv) != 2:
    sys.exit("usage: browse_and_jump.py QUERY")
ipodkit.log("WARN")  # without a log the library prints a warning for each record
asyncio.run(main(sys.argv[1]))
