#!/usr/bin/env python3
"""Runs the Python module inside asyncio, without a loop of GLib, against the simulator on a bus and in a shared memory
of its own."""
import argparse
import asyncio
import os
import sys
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))

from private_session import LIMIT, SKIPPED, Bus, enter_private_namespace  # noqa: E402

try:
    from simulator_process import Simulator
except ImportError:
    print("no python3-gi here")
    sys.exit(SKIPPED)


class Asyncio(unittest.IsolatedAsyncioTestCase):
    def setUp(self):
        self.simulator = Simulator(OPTIONS.simulator)
        self.addCleanup(lambda: self.simulator.end())

    async def ready_session(self, **options):
        session = ipodkit.Session(settle=0.005, **options)
        self.addCleanup(session.close)
        await asyncio.wait_for(session.ready(), LIMIT)
        return session

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
        try:
            with self.assertRaises(TimeoutError) as raised:
                await session.commands.ipod_name().within(0.05)
        finally:
            self.simulator.go_on()
        self.assertIsInstance(raised.exception, ipodkit.TimedOut)
        self.assertIsInstance(raised.exception, ipodkit.Error)
        self.assertEqual(raised.exception.kind, ipodkit.ErrorKind.TIMED_OUT)

    async def test_the_loop_goes_on_while_the_service_hangs(self):
        session = await self.ready_session()
        self.simulator.hang()
        try:
            answer = asyncio.ensure_future(session.commands.ipod_name().within(0.3))
            begin = time.monotonic()
            await asyncio.sleep(0.05)
            self.assertLess(time.monotonic() - begin, 0.25)
            self.assertFalse(answer.done())
            with self.assertRaises(ipodkit.TimedOut):
                await answer
        finally:
            self.simulator.go_on()

    async def test_a_cancelled_task_withdraws_its_request(self):
        session = await self.ready_session()
        self.simulator.hang()
        try:
            with self.assertRaises(asyncio.TimeoutError):
                await asyncio.wait_for(session.commands.ipod_name(), 0.05)
        finally:
            self.simulator.go_on()
        self.assertEqual(await session.commands.ipod_name(), "Desk iPod")

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

    async def test_closing_the_session_ends_iterations_and_requests(self):
        session = await self.ready_session()

        async def follow():
            return [changed async for _, changed in session.states(ipodkit.Field.PAIRING)]

        following = asyncio.ensure_future(follow())
        await asyncio.sleep(0.05)
        self.simulator.hang()
        try:
            answer = asyncio.ensure_future(session.commands.ipod_name())
            await asyncio.sleep(0)
            session.close()
            with self.assertRaises(ipodkit.Cancelled):
                await asyncio.wait_for(answer, LIMIT)
        finally:
            self.simulator.go_on()
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


    async def test_the_example_follows_what_plays(self):
        example = await asyncio.create_subprocess_exec(OPTIONS.interpreter, OPTIONS.example,
                                                       stdout=asyncio.subprocess.PIPE)
        try:
            line = b""
            while b" - " not in line or b"READY" not in line:
                line = await asyncio.wait_for(example.stdout.readline(), LIMIT)
                self.assertNotEqual(line, b"")
        finally:
            example.terminate()
            await example.communicate()


class WithoutService(unittest.IsolatedAsyncioTestCase):
    async def test_a_request_raises_a_connection_error(self):
        async with ipodkit.Session() as session:
            with self.assertRaises(ConnectionError) as raised:
                await session.commands.next()
        self.assertIsInstance(raised.exception, ipodkit.NoService)


class Errors(unittest.TestCase):
    def test_each_kind_has_a_type(self):
        for kind in ipodkit.ErrorKind.__members__.values():
            name = "".join(word.capitalize() for word in kind.name.split("_"))
            self.assertTrue(issubclass(getattr(ipodkit, name), ipodkit.Error), name)
            self.assertTrue(getattr(ipodkit, name).__doc__)


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--example", required=True)
    parser.add_argument("--interpreter", default=sys.executable, help="starts scripts of this architecture")
    OPTIONS, rest = parser.parse_known_args()
    enter_private_namespace(OPTIONS.interpreter)
    import ipodkit
    ipodkit.log("ERROR:/dev/null")
    BUS = Bus()
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = BUS.environment["DBUS_SESSION_BUS_ADDRESS"]
    try:
        unittest.main(argv=[sys.argv[0], *rest], verbosity=1)
    finally:
        BUS.stop()
