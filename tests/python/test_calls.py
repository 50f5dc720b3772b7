"""Calls of several threads, calls that are stopped, and what calls leave behind."""

import signal
import threading
import time

import numpy as np
import pytest
import undula

WAVELETS = [undula.daublet(6), undula.symmlet(8), undula.coiflet(12), [0.5, 0.5]]


def test_calls_of_several_threads_do_not_disturb_each_other(rng):
    """The pack has one selected filter, so overlapping calls would mix their filters."""
    signals = rng.uniform(-1, 1, (len(WAVELETS), 4096))
    expected = [undula.dwt(x, 6, w) for x, w in zip(signals, WAVELETS)]
    wrong = []

    def work(own):
        for _ in range(100):
            result = undula.dwt(signals[own], 6, WAVELETS[own])
            if not np.array_equal(result, expected[own]):
                wrong.append(own)

    threads = [threading.Thread(target=work, args=(own,)) for own in range(len(WAVELETS))]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not wrong


def test_other_threads_run_during_a_call():
    image = np.ones((2048, 2048), order="F")
    began = threading.Event()
    done = threading.Event()

    def work():
        began.set()
        undula.idwt(image, 5, WAVELETS[0])
        done.set()

    thread = threading.Thread(target=work)
    thread.start()
    began.wait()
    steps = 0
    while not done.is_set():
        steps += 1
        time.sleep(0.001)
    thread.join()
    assert steps > 5


def test_an_interrupt_stops_a_long_call(live_values):
    """It is raised by the call itself, before the call would have come to its end."""
    image = np.ones((2048, 2048), order="F")
    w = undula.coiflet(30)
    started = time.perf_counter()
    undula.idwt(image, 5, w)
    whole = time.perf_counter() - started
    before = live_values()

    previous = signal.signal(signal.SIGALRM, signal.default_int_handler)
    try:
        started = time.perf_counter()
        signal.setitimer(signal.ITIMER_REAL, whole / 4)
        with pytest.raises(KeyboardInterrupt):
            undula.idwt(image, 5, w)
        assert time.perf_counter() - started < 0.75 * whole
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, previous)
    assert live_values() == before
    assert np.array_equal(undula.daublet(4), undula.daublet(4))


def test_calls_leave_nothing_behind(live_values):
    before = live_values()
    x = np.arange(64.0)
    for _ in range(20):
        undula.idwt(undula.dwt(x, 3, WAVELETS[1]), 3, WAVELETS[1])
        undula.dwt(x.reshape(8, 8).astype(np.float32), 1, WAVELETS[0], -2, 1)
        for refused in (lambda: undula.dwt(x, 7, WAVELETS[1]), lambda: undula.dwt([x, x], 1, lambda y: y)):
            with pytest.raises(undula.Error):
                refused()
        with pytest.raises(TypeError):
            undula.dwt(x, 1, [x, {}])
    assert live_values() == before
