#!/usr/bin/env python3
"""Runs the Python module with the main loop of python3-gi against the simulator, with a private bus and private shared
memory."""
import ast
import asyncio
import datetime
import json
import os
import signal
import subprocess
import sys
import threading
import time
import unittest
import warnings
import weakref

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))

from private_session import LIMIT, SKIPPED, line_within  # noqa: E402

try:
    from gi.repository import GLib
    from simulator_process import Simulator, begin
except ImportError:
    print("no python3-gi here")
    sys.exit(SKIPPED)


def run_until(condition, seconds=LIMIT):
    """Runs python3-gi's loop until the condition holds or the time is up; returns whether it holds."""
    loop = GLib.MainLoop()

    def look():
        if condition():
            loop.quit()
        return True

    sources = [GLib.timeout_add(2, look), GLib.timeout_add(int(seconds * 1000), loop.quit)]
    loop.run()
    for source in sources:
        if GLib.MainContext.default().find_source_by_id(source):
            GLib.source_remove(source)
    return condition()


class WithoutService(unittest.TestCase):
    def setUp(self):
        self.session = ipodkit.Session(settle=0.005, deadline=5)
        self.addCleanup(self.session.close)

    def test_a_request_fails_without_a_service(self):
        with self.assertRaises(ipodkit.Error) as raised:
            self.session.commands.next().wait()

        self.assertEqual(raised.exception.kind, ipodkit.ErrorKind.NO_SERVICE)
        self.assertIn("NoService: ", str(raised.exception))
        self.assertRegex(raised.exception.name, r"^org\.freedesktop\.DBus\.Error\.(ServiceUnknown|NameHasNoOwner)$")

    def test_a_request_that_is_not_sent_is_a_resource_warning(self):
        with self.assertWarnsRegex(ResourceWarning, r"^a request was dropped without being sent; call start\(\)"):
            self.session.commands.next()

    def test_a_subscription_that_is_dropped_is_a_resource_warning(self):
        with self.assertWarnsRegex(ResourceWarning, "^subscription 'dropped' was dropped; keep a reference"):
            self.session.on_state("dropped", print)

    def test_objects_ended_in_time_cause_no_warning(self):
        with warnings.catch_warnings(record=True) as caught:
            warnings.simplefilter("always")
            self.session.on_connection("ended", print).end()
            request = self.session.commands.next()
            with self.assertRaises(ipodkit.Error):
                request.wait()
            kept = self.session.on_state("kept", print)
            self.session.close()
            del kept, request

        self.assertEqual([str(each.message) for each in caught], [])

    def test_numbers_without_a_name_are_printed_as_numbers(self):
        unknown = ipodkit.PlayStatus(77)

        self.assertEqual((repr(unknown), str(unknown)), ("<PlayStatus: 77>", "PlayStatus(77)"))
        self.assertIsNone(unknown.name)
        self.assertEqual(repr(ipodkit.PlayStatus.PLAYING), "<PlayStatus.PLAYING: 1>")
        self.assertEqual(str(ipodkit.PlayStatus.PLAYING), "PlayStatus.PLAYING")
        self.assertEqual(ipodkit.PlayStatus.PLAYING.name, "PLAYING")

    def test_the_module_has_a_version(self):
        self.assertRegex(ipodkit.__version__, r"^\d+\.\d+\.\d+$")

    def test_invalid_fields_raise_a_type_error(self):
        for wrong in ({"track"}, [None], 1, ipodkit.Field.TRACK):
            with self.subTest(wrong), self.assertRaises(TypeError):
                self.session.on_state("wrong", print, wrong)

    def test_invalid_durations_raise_a_type_or_value_error(self):
        for wrong in ("x", None, [1]):
            with self.subTest(wrong), self.assertRaisesRegex(TypeError, "must be real number"):
                self.session.commands.seek(wrong)
            with self.subTest(wrong), self.assertWarns(ResourceWarning), \
                    self.assertRaisesRegex(TypeError, "must be real number"):
                self.session.commands.next().within(wrong)
        for wrong in (float("nan"), float("inf"), -1e300):
            with self.subTest(wrong), self.assertRaisesRegex(ValueError, "expected a number of seconds"):
                self.session.commands.seek(wrong)

    def test_a_negative_deadline_is_rejected(self):
        for wrong in (-1, datetime.timedelta(seconds=-1), -0.001):
            with self.subTest(wrong), self.assertWarns(ResourceWarning), \
                    self.assertRaisesRegex(ValueError, "expected a non-negative deadline"):
                self.session.commands.next().within(wrong)

    def test_there_is_one_session_at_a_time(self):
        with self.assertRaises(ipodkit.Error) as raised:
            ipodkit.Session()

        self.assertEqual(raised.exception.kind, ipodkit.ErrorKind.BAD_ARGUMENT)

    def test_a_closed_session_raises(self):
        self.session.close()

        with self.assertRaisesRegex(RuntimeError, "closed"):
            self.session.state

    def test_the_state_is_unknown_at_first(self):
        self.assertEqual(self.session.state.phase, ipodkit.Phase.ABSENT)
        self.assertIsNone(self.session.state.track)
        self.assertEqual(self.session.state.calls, {})
        self.assertEqual(repr(self.session.state), "<ipodkit.PlayerState calls={} accessory_sessions={}>")
        self.assertEqual(self.session.state.why(ipodkit.Field.TRACK), ipodkit.Unknown.NOT_REPORTED_YET)

    def test_a_session_ends_with_its_block(self):
        self.session.close()

        with ipodkit.Session() as session:
            self.assertEqual(session.connection.generation, 0)

        with self.assertRaises(RuntimeError):
            session.commands


class Interrupted(Exception):
    """Raised by a signal handler."""


class WithSimulator(unittest.TestCase):
    def setUp(self):
        self.simulator = Simulator(OPTIONS.simulator)
        self.addCleanup(lambda: self.simulator.end())
        self.session = ipodkit.Session(settle=0.005, deadline=5)
        self.addCleanup(self.session.close)
        self.assertTrue(run_until(lambda: self.session.connection.phase == ipodkit.Phase.READY))

    def completed(self, request):
        """Starts a request and returns the (value, error) that its callback receives."""
        given = []
        request.start(lambda value, error: given.append((value, error, threading.get_ident())))
        self.assertEqual(given, [])
        self.assertTrue(run_until(lambda: given))
        self.assertEqual(len(given), 1)
        self.assertEqual(given[0][2], threading.get_ident())
        return given[0][:2]

    def test_reads_the_state_and_follows_it(self):
        self.assertEqual(self.session.state.device_name, "Desk iPod")
        self.assertIsInstance(self.session.state.position.now(), datetime.timedelta)
        seen = []
        watching = self.session.on_state("battery", lambda state, changed: seen.append((state, changed)),
                                         {ipodkit.Field.BATTERY})

        self.assertTrue(run_until(lambda: seen))
        self.simulator.battery(42)
        self.assertTrue(run_until(lambda: len(seen) == 2))

        self.assertIn(ipodkit.Field.TRACK, seen[0][1])
        self.assertEqual(seen[1][1], frozenset({ipodkit.Field.BATTERY}))
        self.assertEqual(seen[1][0].battery.percent, 42)
        self.assertEqual(self.session.state.battery.percent, 42)
        watching.end()

    def test_values_have_a_repr(self):
        commands = self.session.commands
        commands.start_playback(ipodkit.PlayOption.START).wait()
        self.assertTrue(run_until(lambda: self.session.state.status == ipodkit.PlayStatus.PLAYING))
        track = self.session.state.track

        self.assertRegex(repr(track), f"^<ipodkit.Track title='{track.title}' artist='{track.artist}' album='.* number=")
        self.assertRegex(repr(self.session.state),
                         r"^<ipodkit\.PlayerState track=<ipodkit\.Track .*> track_index=\d+ status=<PlayStatus.PLAYING: 1> ")
        self.assertRegex(repr(self.session.state.position),
                         r"^<ipodkit\.Position position=datetime.* length=datetime.* advancing=True>$")
        self.assertRegex(repr(self.session.state.artwork),
                         r"^<ipodkit\.Picture type='image/png' bytes=\d+ width=300 height=300>$")
        self.assertEqual(len(self.session.state.artwork.data), self.session.state.artwork.bytes)
        self.assertRegex(repr(commands.position().wait()), r"^<ipodkit\.PlayPosition position=datetime.* length=datetime.*>$")
        self.assertEqual(repr(commands.carplay_status().wait()),
                         "<ipodkit.CarPlayDevice status=<DeviceStatus.NOT_DETECTED: 1> serial=''>")
        self.simulator.battery(42)
        self.assertTrue(run_until(lambda: self.session.state.battery is not None))
        self.assertEqual(repr(self.session.state.battery), "<ipodkit.Battery percent=42>")

    def test_calls_without_an_identifier_have_an_empty_key(self):
        for status in ("ringing", "active"):
            self.simulator.do("call", {"status": status, "display-name": "Anna"})
            named = getattr(ipodkit.CallStatus, status.upper())
            self.assertTrue(run_until(lambda: [(key, call.name, call.status) for key, call in
                                               self.session.state.calls.items()] == [("", "Anna", named)]))
        self.simulator.do("call", {"status": "disconnected"})
        self.assertTrue(run_until(lambda: not self.session.state.calls))

    def test_a_refreshed_field_and_events_arrive(self):
        events = []
        following = self.session.on_event("events", events.append)
        self.session.refresh({ipodkit.Field.SHUFFLE})
        self.simulator.battery(77)
        self.assertTrue(run_until(lambda: [each for each in events if isinstance(each, ipodkit.BatteryChanged)]))
        battery = [each for each in events if isinstance(each, ipodkit.BatteryChanged)][0]
        self.assertEqual(battery.percent, 77)
        self.assertEqual(repr(battery), "<ipodkit.BatteryChanged <ipodkit.Battery percent=77>>")
        following.end()

    def test_every_field_of_the_json_events_is_an_attribute_of_the_event(self):
        with open(OPTIONS.schema, encoding="utf-8") as schema_file:
            definitions = json.load(schema_file)["$defs"]
        events = {name.removeprefix("event-"): schema["properties"] for name, schema in definitions.items()
                  if name.startswith("event-") and name != "event-service"}
        self.assertEqual(set(events), set(ipodkit.EVENTS))
        for name, fields in events.items():
            attributes = dir(ipodkit.EVENTS[name])
            for field in fields.keys() - {"time", "event"}:
                attribute = "data" if field == "hex" else field.removesuffix("_ms")
                self.assertIn(attribute, attributes, name)
                self.assertTrue(getattr(ipodkit.EVENTS[name], attribute).__doc__, f"{name}.{attribute}")

    def test_the_stub_has_the_names_of_the_module(self):
        with open(os.path.join(os.path.dirname(ipodkit.__file__), "__init__.pyi"), encoding="utf-8") as stub_file:
            tree = ast.parse(stub_file.read())
        classes = {node.name: node for node in tree.body if isinstance(node, ast.ClassDef)}
        module = {name: value for name, value in vars(ipodkit).items() if isinstance(value, type)}
        public = [name for name in module if not name.startswith("_")]
        self.assertEqual(sorted(name for name in classes if not name.startswith("_")), sorted(public))
        for name in public:
            stated = {node.name for node in classes[name].body if isinstance(node, (ast.FunctionDef, ast.AsyncFunctionDef))}
            stated |= {node.target.id for node in classes[name].body if isinstance(node, ast.AnnAssign)}
            inherited = dir(Exception) + dir(ConnectionError) if issubclass(module[name], Exception) else ["name", "value"]
            there = {each for each in dir(module[name]) if not each.startswith("_")} - set(inherited)
            self.assertEqual({each for each in stated if not each.startswith("_")} - {"kind", "reason", "name", "remedy"},
                             there - {"name"}, name)

    def test_values_and_refusals_reach_the_completion(self):
        value, error = self.completed(self.session.commands.device_count())
        self.assertEqual((value, error), (1, None))

        value, error = self.completed(self.session.commands.enter_child(9999))
        self.assertIsNone(value)
        self.assertEqual(error.kind, ipodkit.ErrorKind.REFUSED)
        self.assertIsNone(error.name)

    def test_the_blocking_form_returns_the_value(self):
        commands = self.session.commands
        self.assertEqual(commands.ipod_name().wait(), "Desk iPod")
        self.assertEqual(commands.shuffle().within(1.5).wait(), ipodkit.Shuffle.OFF)
        self.assertIsNone(commands.set_shuffle(ipodkit.Shuffle.SONGS).wait())
        self.assertEqual(commands.shuffle().wait(), ipodkit.Shuffle.SONGS)

    def test_a_request_is_sent_once(self):
        request = self.session.commands.device_count()
        request.wait()

        with self.assertRaisesRegex(RuntimeError, "already sent"):
            request.wait()

    def test_other_threads_run_while_one_waits(self):
        self.simulator.hang()
        ticks = []
        ending = threading.Event()

        def tick():
            while not ending.wait(0.01):
                ticks.append(time.monotonic())

        ticker = threading.Thread(target=tick)
        ticker.start()
        with self.assertRaises(ipodkit.Error) as raised:
            self.session.commands.next().within(datetime.timedelta(milliseconds=300)).wait()
        count = len(ticks)
        ending.set()
        ticker.join()

        self.assertEqual(raised.exception.kind, ipodkit.ErrorKind.TIMED_OUT)
        self.assertGreater(count, 5)

    def interrupted_in(self, seconds):
        """Schedules a signal whose handler raises Interrupted."""
        def interrupt(*_):
            raise Interrupted
        self.addCleanup(signal.signal, signal.SIGALRM, signal.signal(signal.SIGALRM, interrupt))
        self.addCleanup(signal.setitimer, signal.ITIMER_REAL, 0)
        signal.setitimer(signal.ITIMER_REAL, seconds)

    def test_a_signal_ends_the_waiting_at_once(self):
        self.simulator.hang()
        request = self.session.commands.next().within(LIMIT)
        begin = time.monotonic()

        self.interrupted_in(0.3)
        with self.assertRaises(Interrupted):
            request.wait()

        self.assertLess(time.monotonic() - begin, LIMIT / 2)

    def test_a_signal_does_not_cancel_other_requests(self):
        self.simulator.hang()
        stop = ipodkit.Cancellation()

        self.interrupted_in(0.3)
        with self.assertRaises(Interrupted):
            self.session.commands.next().within(LIMIT).cancelled_by(stop).wait()

        self.assertFalse(stop.cancelled)

    def test_another_thread_can_cancel_a_pending_wait(self):
        self.simulator.hang()
        stop = ipodkit.Cancellation()
        withdrawing = threading.Timer(0.2, stop.cancel)
        withdrawing.start()
        self.addCleanup(withdrawing.join)

        with self.assertRaises(ipodkit.Error) as raised:
            self.session.commands.next().within(LIMIT).cancelled_by(stop).wait()

        self.assertEqual(raised.exception.kind, ipodkit.ErrorKind.CANCELLED)

    def test_the_shortest_deadline_is_a_millisecond(self):
        self.simulator.hang()
        with self.assertRaises(ipodkit.TimedOut):
            self.session.commands.next().within(1e-9).wait()
        with self.assertRaises(ipodkit.BadArgument):
            self.session.commands.next().within(0).wait()

    def test_a_future_is_fulfilled_by_the_loop_for_another_thread(self):
        names = []
        asking = threading.Thread(
            target=lambda: names.append(self.session.commands.ipod_name().future().result(LIMIT)))
        asking.start()

        self.assertTrue(run_until(lambda: names))
        asking.join()
        self.assertEqual(names, ["Desk iPod"])

    def reported_as_unraisable(self):
        """Returns a list that collects unraisable exceptions from now on."""
        reported = []
        self.addCleanup(setattr, sys, "unraisablehook", sys.unraisablehook)
        sys.unraisablehook = lambda what: reported.append((type(what.exc_value), what.object))
        return reported

    def test_the_answer_to_an_abandoned_future_causes_no_warning(self):
        reported = self.reported_as_unraisable()
        self.simulator.hang()
        future = self.session.commands.ipod_name().within(LIMIT).future()

        self.assertTrue(future.cancel())
        self.simulator.go_on()
        self.assertEqual(self.completed(self.session.commands.device_count()), (1, None))

        self.assertTrue(future.cancelled())
        self.assertEqual(reported, [])

    def test_a_future_that_asyncio_abandons_causes_no_warning(self):
        reported = self.reported_as_unraisable()
        self.simulator.hang()

        async def ask():
            await asyncio.wait_for(asyncio.wrap_future(self.session.commands.ipod_name().future()), 0.1)

        with self.assertRaises(asyncio.TimeoutError):
            asyncio.run(ask())
        self.simulator.go_on()
        self.assertEqual(self.completed(self.session.commands.device_count()), (1, None))

        self.assertEqual(reported, [])

    def test_an_abandoned_future_does_not_trigger_its_cancellation(self):
        stop = ipodkit.Cancellation()
        future = self.session.commands.ipod_name().cancelled_by(stop).future()

        future.cancel()

        self.assertFalse(stop.cancelled)

    def test_an_abandoned_future_withdraws_its_request(self):
        self.simulator.hang()
        future = self.session.commands.ipod_name().within(LIMIT).future()
        held_by_its_request = weakref.ref(future)

        future.cancel()
        del future

        self.assertTrue(run_until(lambda: held_by_its_request() is None, LIMIT / 2))

    def test_a_cancelled_request_completes_at_once(self):
        self.simulator.hang()
        stop = ipodkit.Cancellation()
        given = []
        self.session.commands.next().cancelled_by(stop).start(lambda value, error: given.append(error))

        stop.cancel()

        self.assertTrue(run_until(lambda: given, 1))
        self.assertEqual(given[0].kind, ipodkit.ErrorKind.CANCELLED)

    def test_the_end_of_the_session_completes_open_requests(self):
        self.simulator.hang()
        given = []
        self.session.commands.next().start(lambda value, error: given.append(error.kind))

        self.session.close()

        self.assertEqual(given, [ipodkit.ErrorKind.CANCELLED])

    def test_restarts_are_survived(self):
        phases = []
        watching = self.session.on_connection("phases", lambda connection: phases.append(connection.phase.name))
        run_until(lambda: phases)

        self.simulator.end()
        self.assertTrue(run_until(lambda: phases[-1] == "LOST"))
        self.simulator = Simulator(OPTIONS.simulator)
        self.assertTrue(run_until(lambda: phases[-1] == "READY"))

        self.assertEqual(phases, ["READY", "LOST", "CONNECTING", "READY"])
        watching.end()

    def test_a_subscription_ends_with_its_object(self):
        calls = []
        watching = self.session.on_state("watching", lambda state, changed: calls.append(changed))
        run_until(lambda: calls)

        with self.assertWarns(ResourceWarning):
            del watching
        self.session.commands.set_repeat(ipodkit.Repeat.ONE).wait()
        self.assertTrue(run_until(lambda: self.session.state.repeat == ipodkit.Repeat.ONE))

        self.assertEqual(len(calls), 1)

    def test_a_subscription_may_end_itself(self):
        calls = []

        def once(state, changed):
            calls.append(state)
            self.watching.end()

        self.watching = self.session.on_state("once", once)
        run_until(lambda: calls)
        self.session.commands.set_repeat(ipodkit.Repeat.ALL).wait()
        self.assertTrue(run_until(lambda: self.session.state.repeat == ipodkit.Repeat.ALL))

        self.assertEqual(len(calls), 1)

    def test_an_exception_of_a_callback_is_reported_and_ends_nothing(self):
        reported = self.reported_as_unraisable()

        watching = self.session.on_state("broken", lambda state, changed: 1 / 0)

        self.assertTrue(run_until(lambda: reported))
        self.assertEqual(reported, [(ZeroDivisionError, "broken")])
        self.assertEqual(self.completed(self.session.commands.device_count())[0], 1)
        watching.end()

    def iterate_until_interrupted(self):
        """Iterates the context directly, like a program without a main loop, until Ctrl-C or a time limit."""
        giving_up = time.monotonic() + LIMIT
        while time.monotonic() < giving_up:
            GLib.MainContext.default().iteration(False)
            time.sleep(0.002)

    def test_ctrl_c_in_a_callback_reaches_a_program_that_iterates_the_context_itself(self):
        reported = self.reported_as_unraisable()

        def be_interrupted(state, changed):
            os.kill(os.getpid(), signal.SIGINT)
            time.sleep(0.01)

        watching = self.session.on_state("interrupted", be_interrupted)
        with self.assertRaises(KeyboardInterrupt):
            self.iterate_until_interrupted()

        watching.end()
        self.assertEqual(reported, [])

    def test_an_unhandled_interrupt_is_reported(self):
        self.addCleanup(signal.signal, signal.SIGINT, signal.signal(signal.SIGINT, signal.SIG_IGN))
        reported = self.reported_as_unraisable()

        def be_interrupted(state, changed):
            raise KeyboardInterrupt

        watching = self.session.on_state("interrupted", be_interrupted)
        self.assertTrue(run_until(lambda: reported))

        watching.end()
        self.assertEqual(reported, [(KeyboardInterrupt, "interrupted")])

    def test_a_token_may_be_ended_while_its_callback_runs_in_another_thread(self):
        entered = threading.Event()
        watching = self.session.on_state("slow", lambda state, changed: (entered.set(), time.sleep(0.2)))
        ended = []

        def end():
            entered.wait(LIMIT)
            watching.end()
            ended.append(True)

        ending = threading.Thread(target=end)
        ending.start()

        self.assertTrue(run_until(lambda: ended))
        ending.join()

    def test_the_example_shows_the_playing_track(self):
        example = subprocess.Popen([OPTIONS.interpreter, OPTIONS.example], stdout=subprocess.PIPE, text=True)
        self.addCleanup(example.stdout.close)
        self.addCleanup(example.wait)
        self.addCleanup(example.kill)

        giving_up = threading.Timer(LIMIT, example.kill)
        giving_up.start()
        self.addCleanup(giving_up.cancel)
        shown = next((line for line in example.stdout if line.startswith("[READY]")), "")
        self.assertRegex(shown, r"^\[READY\] [>=] .* - .*\n$")

    def test_the_example_ends_quietly(self):
        example = subprocess.Popen([OPTIONS.interpreter, OPTIONS.example], stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, text=True)
        self.addCleanup(example.kill)
        self.assertNotEqual(line_within(example.stdout, LIMIT), "")

        example.send_signal(signal.SIGINT)

        errors = example.communicate(timeout=LIMIT)[1]
        # On a slow machine, the log may report a slow callback.
        self.assertEqual([line for line in errors.splitlines() if "over its budget of" not in line], [])
        self.assertEqual(example.returncode, 0)


if __name__ == "__main__":
    OPTIONS = begin("--example", "--schema")
    import ipodkit
    ipodkit.log("ERROR:/dev/null")
    unittest.main(verbosity=1)
