#!/usr/bin/env python3
"""Runs the Python module inside asyncio, without a GLib main loop, against the simulator, with a private bus and
private shared memory."""
import asyncio
import os
import sys
import tempfile
import time
import unittest
import urllib.parse
import weakref

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))

from private_session import LIMIT, SKIPPED  # noqa: E402

try:
    from simulator_process import Simulator, begin
except ImportError:
    print("no python3-gi here")
    sys.exit(SKIPPED)


class WithSimulator(unittest.IsolatedAsyncioTestCase):
    def setUp(self):
        self.simulator = Simulator(OPTIONS.simulator)
        self.addCleanup(lambda: self.simulator.end())

    async def ready_session(self, **options):
        session = ipodkit.Session(settle=0.005, **options)
        self.addCleanup(session.close)
        await asyncio.wait_for(session.ready(), LIMIT)
        return session


class Asyncio(WithSimulator):
    async def test_requests_can_be_awaited(self):
        async with ipodkit.Session(settle=0.005) as session:
            state = await asyncio.wait_for(session.ready(), LIMIT)
            self.assertEqual(state.phase, ipodkit.Phase.READY)
            self.assertEqual(await session.commands.ipod_name(), "Desk iPod")
            self.assertIsNone(await session.commands.set_shuffle(ipodkit.Shuffle.SONGS).within(LIMIT))
            self.assertEqual(await session.commands.shuffle(), ipodkit.Shuffle.SONGS)

    async def test_many_requests_run_at_the_same_time(self):
        session = await self.ready_session()
        answers = await asyncio.gather(*[session.commands.device_count() for _ in range(200)])
        self.assertEqual(answers, [1] * 200)

    async def test_a_late_answer_is_a_timeout_error(self):
        session = await self.ready_session()
        self.simulator.hang()
        with self.assertRaises(TimeoutError) as raised:
            await session.commands.ipod_name().within(0.05)
        self.assertIsInstance(raised.exception, ipodkit.TimedOut)
        self.assertIsInstance(raised.exception, ipodkit.Error)
        self.assertEqual(raised.exception.kind, ipodkit.ErrorKind.TIMED_OUT)

    async def test_the_loop_continues_while_the_service_hangs(self):
        session = await self.ready_session()
        self.simulator.hang()
        answer = asyncio.ensure_future(session.commands.ipod_name().within(0.3))
        begin = time.monotonic()
        await asyncio.sleep(0.05)
        self.assertLess(time.monotonic() - begin, 0.25)
        self.assertFalse(answer.done())
        with self.assertRaises(ipodkit.TimedOut):
            await answer

    async def test_a_future_is_not_awaited_on_the_thread_of_its_loop(self):
        session = await self.ready_session()
        future = session.commands.ipod_name().future()
        for wait in (future.result, future.exception):
            with self.assertRaises(ipodkit.WouldDeadlock) as raised:
                wait()
        self.assertEqual(raised.exception.kind, ipodkit.ErrorKind.WOULD_DEADLOCK)
        self.assertEqual(await asyncio.wrap_future(future), "Desk iPod")
        self.assertEqual(future.result(), "Desk iPod")
        self.assertEqual(await asyncio.to_thread(session.commands.ipod_name().future().result), "Desk iPod")

    async def test_a_cancelled_task_withdraws_its_request(self):
        session = await self.ready_session()
        self.simulator.hang()
        with self.assertRaises(asyncio.TimeoutError):
            await asyncio.wait_for(session.commands.ipod_name(), 0.05)
        self.simulator.go_on()
        self.assertEqual(await session.commands.ipod_name(), "Desk iPod")

    async def test_a_refresh_returns_the_state_that_was_read(self):
        session = await self.ready_session()
        state = await session.refreshed({ipodkit.Field.SHUFFLE}).within(LIMIT)
        self.assertEqual((state.shuffle, state.version), (ipodkit.Shuffle.OFF, session.state.version))
        with self.assertRaises(TypeError):
            session.refreshed({"shuffle"})

    async def test_states_are_iterated_from_the_present_one(self):
        session = await self.ready_session()
        states = session.states(ipodkit.Field.BATTERY)
        state, changed = await asyncio.wait_for(anext(states), LIMIT)
        self.assertIsNone(state.battery)
        self.assertIn(ipodkit.Field.TRACK, changed)
        self.simulator.battery(42)
        state, changed = await asyncio.wait_for(anext(states), LIMIT)
        self.assertEqual((state.battery.percent, changed), (42, frozenset({ipodkit.Field.BATTERY})))
        states.end()
        with self.assertRaises(StopAsyncIteration):
            await anext(states)

    async def test_a_slow_iteration_gets_the_latest_state_with_all_that_changed(self):
        session = await self.ready_session()
        states = session.states(ipodkit.Field.BATTERY, ipodkit.Field.SHUFFLE)
        await asyncio.wait_for(anext(states), LIMIT)
        await session.commands.set_shuffle(ipodkit.Shuffle.SONGS)
        for percent in range(40, 45):
            self.simulator.battery(percent)
            await asyncio.sleep(0.02)
        state, changed = await asyncio.wait_for(anext(states), LIMIT)
        self.assertEqual(state.battery.percent, 44)
        self.assertEqual(changed, {ipodkit.Field.BATTERY, ipodkit.Field.SHUFFLE})
        states.end()

    async def test_events_are_iterated_in_their_order(self):
        session = await self.ready_session()
        events = session.events()
        for percent in range(10):
            self.simulator.battery(percent)
        seen = [await asyncio.wait_for(anext(events), LIMIT) for _ in range(10)]
        self.assertEqual([each.percent for each in seen], list(range(10)))
        events.end()

    async def test_an_iteration_that_is_left_ends_its_subscription(self):
        session = await self.ready_session()
        streams = []

        async def first(stream):
            streams.append(weakref.ref(stream))
            async for _ in stream:
                return

        self.simulator.battery(1)
        await asyncio.wait_for(first(session.states()), LIMIT)
        await asyncio.gather(asyncio.wait_for(first(session.events()), LIMIT), self.change_battery())
        self.assertEqual([stream() for stream in streams], [None, None])

    async def change_battery(self):
        await asyncio.sleep(0)
        self.simulator.battery(2)

    async def test_closing_the_session_ends_iterations_and_requests(self):
        session = await self.ready_session()

        async def follow():
            return [changed async for _, changed in session.states(ipodkit.Field.PAIRING)]

        following = asyncio.ensure_future(follow())
        await asyncio.sleep(0.05)
        self.simulator.hang()
        answer = asyncio.ensure_future(session.commands.ipod_name())
        await asyncio.sleep(0)
        session.close()
        with self.assertRaises(ipodkit.Cancelled):
            await asyncio.wait_for(answer, LIMIT)
        self.assertEqual(len(await asyncio.wait_for(following, LIMIT)), 1)

    async def test_a_restarted_service_is_followed(self):
        session = await self.ready_session()
        self.simulator.end()
        self.simulator = Simulator(OPTIONS.simulator)
        states = session.states(ipodkit.Field.CONNECTION)
        async for state, _ in states:
            if state.phase == ipodkit.Phase.READY and state.generation == 2:
                break
        states.end()
        self.assertEqual(await session.commands.ipod_name(), "Desk iPod")

    async def test_an_idle_session_keeps_the_loop_idle(self):
        session = await self.ready_session()
        before = time.process_time()
        await asyncio.sleep(0.5)
        self.assertLess(time.process_time() - before, 0.1)
        self.assertEqual(session.state.phase, ipodkit.Phase.READY)

    async def test_the_example_follows_playback(self):
        example = await asyncio.create_subprocess_exec(
            OPTIONS.interpreter, f"{OPTIONS.examples}/now_playing_asyncio.py", stdout=asyncio.subprocess.PIPE)
        try:
            line = b""
            while b" - " not in line or b"READY" not in line:
                line = await asyncio.wait_for(example.stdout.readline(), LIMIT)
                self.assertNotEqual(line, b"")
        finally:
            example.terminate()
            await example.communicate()


class Lists(WithSimulator):
    async def pager(self, kind="DATABASE", **options):
        self.session = await self.ready_session()
        return ipodkit.Pager(self.session, ipodkit.ListKind.__members__[kind], **options)

    async def test_entries_are_counted_read_and_iterated(self):
        pager = await self.pager(page_size=2)
        self.assertIsNone(pager.cached(0))
        count, page = await pager.count(), await pager.at(0)
        names = [name async for name in pager]
        self.assertGreater(count, 2)
        self.assertEqual((len(names), names), (count, await pager.range()))
        self.assertEqual((page.first, len(page), page.names), (0, 2, names[:2]))
        self.assertEqual((page.at(1), page.root, page.folders), (names[1], True, True))
        self.assertTrue(pager.cached(0).holds(0))
        self.assertEqual(await pager.range(1, 2), names[1:3])

    async def test_levels_are_entered_and_left(self):
        pager = await self.pager()
        outdated = []
        watching = pager.on_outdated("level", lambda: outdated.append(True))
        await pager.enter_child(0)
        self.assertFalse((await pager.at(0)).root)
        self.assertTrue(outdated)
        await pager.enter_parent()
        self.assertTrue((await pager.at(0)).root)
        await pager.enter_child(0)
        await pager.enter_root()
        self.assertTrue((await pager.at(0)).root)
        watching.end()

    async def test_an_iteration_ends_with_the_list(self):
        pager = await self.pager(page_size=2)
        with self.assertRaises(ipodkit.Cancelled):
            async for _ in pager:
                await pager.enter_child(0)

    async def test_entries_that_do_not_exist_are_value_errors(self):
        pager = await self.pager()
        for wrong in (pager.at(-1), pager.at(100000), pager.range(2, 1)):
            with self.assertRaises(ValueError) as raised:
                await wrong
            self.assertIsInstance(raised.exception, ipodkit.BadArgument)
        for wrong in (pager.enter_child(-1), pager.enter_child(100000)):
            with self.assertRaises(ipodkit.Refused):
                await wrong
        with self.assertRaises(IndexError):
            (await pager.at(0)).at(-1)
        with self.assertRaises(ipodkit.BadArgument):
            await ipodkit.Pager(self.session, ipodkit.ListKind.UPDATE).count()
        with self.assertRaises(ipodkit.BadArgument):
            await ipodkit.Pager(self.session, ipodkit.ListKind.DATABASE, page_size=0).count()

    async def test_an_invalid_kind_or_index_is_a_type_error(self):
        pager = await self.pager()
        for wrong in (lambda: ipodkit.Pager(self.session, "DATABASE"), lambda: ipodkit.Pager(None, 1),
                      lambda: pager.at("0"), lambda: pager.at(2**40),
                      lambda: ipodkit.Pager(self.session, ipodkit.ListKind.DATABASE, cached_pages=-1)):
            with self.assertRaises(TypeError):
                wrong()

    async def test_a_pager_outlives_its_session(self):
        pager = await self.pager()
        await pager.at(0)
        self.session.close()
        self.assertIsNone(pager.cached(0))
        with self.assertRaises(RuntimeError):
            ipodkit.Pager(self.session, ipodkit.ListKind.DATABASE)

    async def test_the_example_finds_the_query(self):
        name = (await (await self.pager()).range())[0]
        self.session.close()
        example = await asyncio.create_subprocess_exec(
            OPTIONS.interpreter, f"{OPTIONS.examples}/browse_and_jump.py", name[:3], stdout=asyncio.subprocess.PIPE)
        output, _ = await asyncio.wait_for(example.communicate(), LIMIT)
        self.assertIn(f"0\t{name}\t({ipodkit.reading(name)})", output.decode())


# Holds the lease until its input ends, or it is killed.
HOLDER = """
import asyncio, sys, ipodkit
ipodkit.log("ERROR:/dev/null")
async def main():
    async with ipodkit.Session() as session:
        await session.ready()
        async with await session.browse():
            print("held", flush=True)
            await asyncio.to_thread(sys.stdin.read)
asyncio.run(main())
"""


class Sharing(WithSimulator):
    async def holder(self):
        holder = await asyncio.create_subprocess_exec(
            OPTIONS.interpreter, "-c", HOLDER, stdin=asyncio.subprocess.PIPE, stdout=asyncio.subprocess.PIPE)
        self.addAsyncCleanup(self.end, holder)
        self.assertEqual(await asyncio.wait_for(holder.stdout.readline(), LIMIT), b"held\n")
        return holder

    @staticmethod
    async def end(holder):
        if holder.returncode is None:
            holder.kill()
        await holder.communicate()

    def browsing(self):
        return [holder.process for holder in ipodkit.lock_holders() if holder.what == "browse"]

    async def test_the_lease_of_another_process_makes_this_one_busy(self):
        session = await self.ready_session(deadline=0.4)
        holder = await self.holder()
        found = [each for each in ipodkit.lock_holders() if each.what == "browse"][0]
        with self.assertRaises(ipodkit.Busy) as raised:
            await session.browse().within(LIMIT)
        self.assertEqual(raised.exception.kind, ipodkit.ErrorKind.BUSY)
        self.assertEqual(raised.exception.reason,
                         f"process {found.process} ({found.program}) browses the database")
        holder.stdin.close()
        await asyncio.wait_for(holder.wait(), LIMIT)
        self.assertEqual(self.browsing(), [])

    async def test_a_lease_is_held_inside_its_block(self):
        session = await self.ready_session()
        pager = ipodkit.Pager(session, ipodkit.ListKind.DATABASE)
        async with await session.browse():
            self.assertEqual(self.browsing(), [os.getpid()])
            await pager.enter_child(0)
            self.assertFalse((await pager.at(0)).root)
        self.assertEqual(self.browsing(), [])
        with await session.browse(ipodkit.Browsing.CHANGING) as lease:
            self.assertEqual(self.browsing(), [os.getpid()])
            lease.release()
            self.assertEqual(self.browsing(), [])

    async def test_an_error_in_the_block_ends_the_lease(self):
        session = await self.ready_session()
        with self.assertRaises(ZeroDivisionError):
            async with await session.browse():
                raise ZeroDivisionError
        self.assertEqual(self.browsing(), [])

    async def test_a_lease_for_reading_keeps_the_level(self):
        session = await self.ready_session(deadline=0.4)
        pager = ipodkit.Pager(session, ipodkit.ListKind.DATABASE)
        async with await session.browse(ipodkit.Browsing.READING):
            self.assertTrue((await pager.at(0)).root)
            with self.assertRaises(ipodkit.Busy):
                await pager.enter_child(0).within(LIMIT)
        await pager.enter_child(0).within(LIMIT)
        with self.assertRaises(TypeError):
            session.browse("reading")


class Sources(WithSimulator):
    async def test_a_source_is_requested_played_suspended_and_released(self):
        session = await self.ready_session()
        source = ipodkit.AudioSource(session, 0)
        self.addCleanup(source.release)
        seen = []
        watching = source.on_transition("seen", seen.append)
        with self.assertRaises(ipodkit.Refused):
            await source.play()
        source.request()
        source.activated(1)
        await source.play()
        self.assertEqual(source.state, ipodkit.AudioState.PLAYING)
        source.deactivated(1, True)
        self.assertEqual(source.state, ipodkit.AudioState.SUSPENDED)
        source.release()
        states = [each.after.name for each in source.trace()]
        self.assertEqual(states, ["GRANTED", "ACTIVE", "PLAYING", "SUSPENDED", "RELEASED"])
        self.assertEqual([each.after.name for each in seen], states)
        self.assertTrue(all(each.why for each in seen))
        watching.end()

    async def test_there_are_two_sources(self):
        session = await self.ready_session()
        for wrong in (-1, 2):
            with self.assertRaises(ValueError):
                ipodkit.AudioSource(session, wrong).request()
        with self.assertRaises(TypeError):
            ipodkit.AudioSource(session, "0")


class Accessories(WithSimulator):
    async def opened(self):
        self.session = await self.ready_session()
        self.port = ipodkit.AccessoryPort(self.session)
        opened = asyncio.Event()
        watching = self.port.on_opened("opened", lambda accessory: opened.set())
        self.simulator.do("eap-open", 1)
        await asyncio.wait_for(opened.wait(), LIMIT)
        watching.end()
        return self.port.sessions()[0]

    async def test_a_session_has_a_number_and_a_protocol_and_is_closed(self):
        accessory = await self.opened()
        self.assertEqual((accessory.protocol, accessory.is_open, accessory.waiting), (1, True, 0))
        received = asyncio.ensure_future(self.collected(accessory))
        await asyncio.sleep(0.05)
        self.simulator.do("eap-close", accessory.number)
        self.assertEqual(await asyncio.wait_for(received, LIMIT), [])
        self.assertFalse(accessory.is_open)
        with self.assertRaises(ipodkit.Cancelled):
            await accessory.write(b"late")

    @staticmethod
    async def collected(accessory):
        return [data async for data in accessory]

    async def test_bytes_are_sent_and_received(self):
        accessory = await self.opened()
        arriving = aiter(accessory)
        first = asyncio.ensure_future(anext(arriving))
        await asyncio.sleep(0.05)
        self.assertTrue(accessory.has_room_for(5))
        await accessory.write(b"\0\xff123")
        self.simulator.do("eap-data", {"session": accessory.number, "hex": "00ff313233"})
        self.assertEqual(await asyncio.wait_for(first, LIMIT), b"\0\xff123")
        await arriving.aclose()

    async def test_a_port_iterates_over_the_chunks_of_all_its_sessions(self):
        accessory = await self.opened()
        arriving = aiter(self.port)
        first = asyncio.ensure_future(anext(arriving))
        await asyncio.sleep(0.05)
        self.simulator.do("eap-data", {"session": accessory.number, "hex": "01"})
        self.assertEqual(await asyncio.wait_for(first, LIMIT), (accessory, b"\1"))
        self.simulator.do("eap-open", 0)
        async with asyncio.timeout(LIMIT):
            while len(self.port.sessions()) < 2:
                await asyncio.sleep(0.01)
        later = [each for each in self.port.sessions() if each.number != accessory.number][0]
        self.simulator.do("eap-data", {"session": later.number, "hex": "02"})
        self.assertEqual(await asyncio.wait_for(anext(arriving), LIMIT), (later, b"\2"))
        await arriving.aclose()

    async def test_closing_the_session_ends_the_iteration_of_a_port(self):
        await self.opened()
        received = asyncio.ensure_future(self.collected(self.port))
        await asyncio.sleep(0.05)
        self.session.close()
        self.assertEqual(await asyncio.wait_for(received, LIMIT / 6), [])
        with self.assertRaises(TypeError):
            ipodkit.AccessoryPort("session")

    async def test_closing_the_session_ends_the_iteration(self):
        accessory = await self.opened()
        received = asyncio.ensure_future(self.collected(accessory))
        await asyncio.sleep(0.05)
        self.session.close()
        self.assertEqual(await asyncio.wait_for(received, LIMIT / 6), [])

    async def test_bytes_are_sent_to_a_session_by_its_number(self):
        accessory = await self.opened()
        late = ipodkit.AccessoryPort(self.session)
        await late.write_to(accessory.number, b"\1")
        with self.assertRaises(ipodkit.Refused):
            await late.write_to(accessory.number + 1, b"\1")
        for wrong in ((65536, b"\1"), (-1, b"\1"), (accessory.number, "text")):
            with self.assertRaises(TypeError):
                late.write_to(*wrong)

    async def test_only_bytes_can_be_written(self):
        accessory = await self.opened()
        for wrong in ("text", None, 7):
            with self.assertRaises(TypeError):
                accessory.write(wrong)


class Pictures(WithSimulator):
    async def test_the_artwork_can_be_requested(self):
        session = await self.ready_session()
        await session.commands.start_playback()
        artwork = await session.commands.artwork()
        self.assertEqual((artwork.available, artwork.type), (True, "image/png"))
        self.assertTrue(artwork.picture.data.startswith(b"\x89PNG"))
        self.assertEqual(len(artwork.picture.data), artwork.bytes)
        with self.assertRaises(TypeError):
            session.commands.artwork("large")

    async def test_without_artwork_the_picture_is_none(self):
        session = await self.ready_session()
        artwork = await session.commands.artwork()
        self.assertEqual((artwork.available, artwork.picture, artwork.type), (False, None, "none"))

    async def test_artwork_is_kept_as_a_file(self):
        session = await self.ready_session()
        await session.commands.start_playback()
        async for state, _ in session.states(ipodkit.Field.ARTWORK):
            if state.artwork:
                break
        with tempfile.TemporaryDirectory() as directory:
            files = ipodkit.PictureFiles(directory)
            self.assertEqual(files.directory, directory)
            uri = files.uri(state.artwork)
            with open(urllib.parse.unquote(urllib.parse.urlparse(uri).path), "rb") as kept:
                self.assertEqual(kept.read(), state.artwork.data)
            with self.assertRaises(TypeError):
                files.uri(None)
            with open(f"{directory}/file", "w", encoding="utf-8"), self.assertRaises(OSError) as raised:
                ipodkit.PictureFiles(f"{directory}/file/below").uri(state.artwork)
            self.assertIsInstance(raised.exception, ipodkit.NoStorage)
        with self.assertRaises(TypeError):
            ipodkit.PictureFiles(keep=-1)


class Names(unittest.TestCase):
    NAMES = ["周明轩", "Abra", "The Bellows", "周和建"]

    def test_names_are_found_by_their_initials(self):
        index = ipodkit.JumpIndex(self.NAMES, articles=["The"])
        self.assertEqual(index.search("zmx"), [0])
        self.assertEqual(sorted(index.search("zhou")), [0, 3])
        self.assertEqual(len(index.search("zhou", limit=1)), 1)
        self.assertEqual((index.search(""), len(index)), ([], 4))
        self.assertEqual((index.reading(0), ipodkit.reading("周明轩")), ("zhou ming xuan", "zhou ming xuan"))

    def test_sections_are_where_letters_begin(self):
        index = ipodkit.JumpIndex(self.NAMES, articles=["The"])
        self.assertEqual([(each.label, each.position) for each in index.sections], [("A", 0), ("B", 1), ("Z", 2)])
        self.assertEqual(index.order[:2], [1, 2])

    def test_invalid_input_is_an_error_of_its_kind(self):
        index = ipodkit.JumpIndex(self.NAMES, subject=ipodkit.Subject.PERSON)
        for wrong in (-1, 4):
            with self.assertRaises(IndexError):
                index.reading(wrong)
        for wrong in (lambda: index.search("z", limit=-1), lambda: ipodkit.JumpIndex("names"),
                      lambda: ipodkit.JumpIndex([1]), lambda: ipodkit.JumpIndex(self.NAMES, subject=1)):
            with self.assertRaises(TypeError):
                wrong()


class WithoutService(unittest.IsolatedAsyncioTestCase):
    async def test_a_request_raises_a_connection_error(self):
        async with ipodkit.Session() as session:
            with self.assertRaises(ConnectionError) as raised:
                await session.commands.next()
        self.assertIsInstance(raised.exception, ipodkit.NoService)
        self.assertEqual(raised.exception.remedy, "start the iPod service")

    async def test_an_error_without_a_remedy(self):
        async with ipodkit.Session() as session:
            with self.assertRaises(ipodkit.Cancelled) as raised:
                stop = ipodkit.Cancellation()
                stop.cancel()
                await session.commands.next().cancelled_by(stop)
        self.assertIsNone(raised.exception.remedy)


class Errors(unittest.TestCase):
    def test_each_kind_has_a_type(self):
        for kind in ipodkit.ErrorKind.__members__.values():
            name = "".join(word.capitalize() for word in kind.name.split("_"))
            self.assertTrue(issubclass(getattr(ipodkit, name), ipodkit.Error), name)
            self.assertTrue(getattr(ipodkit, name).__doc__)


if __name__ == "__main__":
    OPTIONS = begin("--examples")
    import ipodkit
    ipodkit.log("ERROR:/dev/null")
    unittest.main(verbosity=1)
