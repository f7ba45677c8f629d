"""Control an attached Apple device and follow its state.

With asyncio:

    async with ipodkit.Session() as session:
        await session.ready()
        await session.commands.next().within(0.5)
        async for state, changed in session.states(ipodkit.Field.TRACK):
            print(state.track.title if state.track else "-")

With callbacks, in a program that runs GLib's default main context through python3-gi:

    session = ipodkit.Session()
    shown = session.on_state("now playing", lambda state, changed: print(state.track))
    session.commands.next().start(lambda value, error: print(error or "done"))
    GLib.MainLoop().run()

A session that is created while asyncio runs belongs to that loop; nothing else has to run GLib. Exceptions of callbacks
go to sys.unraisablehook, a KeyboardInterrupt to the program that runs the loop. A subscription lasts as long as its
object.
"""
import asyncio as _asyncio
import concurrent.futures as _futures
import weakref as _weakref

from . import _native
from ._native import *  # noqa: F401,F403
from ._native import __version__  # noqa: F401


class _Pump:
    """Runs a main context of GLib inside the loop of asyncio."""

    def __init__(self, context):
        self._context = context
        self._loop = _asyncio.get_running_loop()
        self._readers = set()
        self._writers = set()
        self._timer = None
        self._watch()

    def _watch(self):
        timeout, files = self._context.query()
        readers = {file for file, events in files if events & _native._IN}
        writers = {file for file, events in files if events & _native._OUT}
        for file in self._readers - readers:
            self._loop.remove_reader(file)
        for file in self._writers - writers:
            self._loop.remove_writer(file)
        for file in readers - self._readers:
            self._loop.add_reader(file, self._run)
        for file in writers - self._writers:
            self._loop.add_writer(file, self._run)
        self._readers, self._writers = readers, writers
        self._timer = None if timeout < 0 else self._loop.call_later(timeout / 1000, self._run)

    def _run(self):
        if self._timer:
            self._timer.cancel()
        self._context.dispatch()
        if self._context:
            self._watch()

    def stop(self):
        self._context, context = None, self._context
        if self._timer:
            self._timer.cancel()
        for file in self._readers:
            self._loop.remove_reader(file)
        for file in self._writers:
            self._loop.remove_writer(file)
        return context


class _Latest:
    """The latest state, with all fields that changed since the previous one was consumed."""

    def __init__(self):
        self._state = None
        self._changed = frozenset()
        self._arrived = _asyncio.Event()
        self._ended = False

    def put(self, state, changed):
        self._state = state
        self._changed |= changed
        self._arrived.set()

    def end(self):
        self._ended = True
        self._arrived.set()

    async def take(self):
        await self._arrived.wait()
        self._arrived.clear()
        if self._ended:
            raise StopAsyncIteration
        changed, self._changed = self._changed, frozenset()
        return self._state, changed


class _Queue:
    """Values in the order of their arrival."""

    def __init__(self):
        self._queue = _asyncio.Queue()

    def put(self, value):
        self._queue.put_nowait((value,))

    def end(self):
        self._queue.put_nowait(None)

    async def take(self):
        taken = await self._queue.get()
        if taken is None:
            raise StopAsyncIteration
        return taken[0]


class _Stream:
    """An asynchronous iterator over what a subscription delivers, until the session is closed.

    Only the loop that iterates over it holds a reference, so leaving the loop ends the subscription.
    """

    def __init__(self, session, store, subscribe):
        self._session = session
        self._store = store
        self._unsubscribe = _weakref.finalize(self, subscribe(store.put).end)
        session._streams.add(self)

    def __aiter__(self):
        return self

    async def __anext__(self):
        try:
            return await self._store.take()
        except BaseException:
            self.end()
            raise

    def end(self):
        """Ends the subscription, and the iteration."""
        self._session._streams.discard(self)
        self._unsubscribe()
        self._store.end()


class Session(_native.Session):
    __doc__ = _native.Session.__doc__

    def __init__(self, **options):
        self._streams = _weakref.WeakSet()
        self._pump = None
        try:
            _asyncio.get_running_loop()
        except RuntimeError:
            super().__init__(**options)
            return
        context = _native._Context()
        super().__init__(_context=context, **options)
        self._pump = _Pump(context)

    def close(self):
        """Completes the requests that are under way with Cancelled, and ends all subscriptions."""
        for stream in list(self._streams):
            stream.end()
        super().close()
        if self._pump:
            self._pump.stop()
            self._pump = None

    def __exit__(self, *_):
        self.close()

    async def __aenter__(self):
        return self

    async def __aexit__(self, *_):
        self.close()

    def states(self, *fields):
        """Iterates over the states that differ in one of the fields (in any field if none is given).

        Yields (state, changed), first the current state. A slow consumer gets the latest state, with all fields that
        changed meanwhile.
        """
        wanted = set(fields) or None
        return _Stream(self, _Latest(), lambda put: self.on_state("states", put, wanted))

    def events(self):
        """Iterates over the events of the service."""
        return _Stream(self, _Queue(), lambda put: self.on_event("events", put))

    async def ready(self):
        """Waits until the state follows the service's events, and returns it."""
        states = self.states(Field.CONNECTION)  # noqa: F405
        try:
            async for state, _ in states:
                if state.phase == Phase.READY:  # noqa: F405
                    return state
        finally:
            states.end()
        raise Cancelled("the session was closed")  # noqa: F405


class _Arrivals:
    """The subscriptions to the bytes that all accessory sessions of a port receive."""

    def __init__(self, port, put):
        self._put = put
        self._listening = {}
        self._opened = port.on_opened("chunks", self._listen)
        for accessory in port.sessions():
            self._listen(accessory)

    def _listen(self, accessory):
        replaced = self._listening.pop(accessory.number, None)
        if replaced:
            replaced.end()
        self._listening[accessory.number] = accessory.on_data(
            "chunks", lambda data, error: self._put((accessory, data, error)))

    def end(self):
        self._opened.end()
        for listening in self._listening.values():
            listening.end()


class AccessoryPort(_native.AccessoryPort):
    __doc__ = _native.AccessoryPort.__doc__

    def __init__(self, session, **options):
        super().__init__(session, **options)
        self._session = session

    async def __aiter__(self):
        """Iterates over the chunks that arrive from now on in any accessory session, until the Session is closed.

        Yields (accessory_session, bytes). Raises Ambiguous for bytes that may belong to several sessions.
        """
        chunks = _Stream(self._session, _Queue(), lambda put: _Arrivals(self, put))
        try:
            async for accessory, data, error in chunks:
                if error:
                    raise error
                yield accessory, data
        finally:
            chunks.end()


class _Future(_futures.Future):
    def __init__(self, check_thread):
        super().__init__()
        self._check_thread = check_thread

    def result(self, timeout=None):
        self._check(timeout)
        return super().result(timeout)

    def exception(self, timeout=None):
        self._check(timeout)
        return super().exception(timeout)

    def _check(self, timeout):
        try:
            if not self.done():
                self._check_thread()
        except WouldDeadlock:  # noqa: F405
            # The thread of the loop may have just started.
            grace = 0.2 if timeout is None else min(timeout, 0.2)
            if not _futures.wait([self], grace).done:
                self._check_thread()


def _await(request):
    """Sends the request, and returns its value or raises its Error. Cancelling the task withdraws the request."""
    loop = _asyncio.get_running_loop()
    future = loop.create_future()

    def settle(value, error):
        if future.done():
            return
        if error is None:
            future.set_result(value)
        else:
            future.set_exception(error)

    stop = None
    if not request._has_cancellation:
        stop = Cancellation()  # noqa: F405
        request.cancelled_by(stop)
    request.start(lambda value, error: loop.call_soon_threadsafe(settle, value, error))
    try:
        return (yield from future)
    except _asyncio.CancelledError:
        if stop:
            stop.cancel()
        raise


_native.Request.__await__ = _await
del _await


async def _names(pager):
    """Iterates over the names of all entries. Raises Cancelled when the list changes meanwhile."""
    changed = []
    watching = pager.on_outdated("names", lambda: changed.append(True))
    try:
        index, count = 0, await pager.count()
        while index < count:
            page = await pager.at(index)
            for name in page.names[index - page.first:]:
                if changed:
                    raise Cancelled("the list changed")  # noqa: F405
                yield name
            index = page.first + len(page)
    finally:
        watching.end()


_native.Pager.__aiter__ = _names
del _names


async def _received(accessory):
    """Iterates over the bytes that arrive from now on, until the session is closed. Raises Ambiguous."""
    arrived = _Queue()
    listening = accessory.on_data("bytes", lambda data, error: arrived.put((data, error)))
    ending = accessory.on_closed("end", arrived.end)
    try:
        while accessory.is_open:
            data, error = await arrived.take()
            if error:
                raise error
            yield data
    except StopAsyncIteration:
        pass
    finally:
        listening.end()
        ending.end()


_native.AccessorySession.__aiter__ = _received
del _received


async def _entered(lease):
    return lease


async def _released(lease, *_):
    lease.release()


_native.BrowseLease.__aenter__ = _entered
_native.BrowseLease.__aexit__ = _released
del _entered, _released
