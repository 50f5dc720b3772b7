"""Calls of several threads, at the end of the interpreter too, and what calls leave behind."""

import subprocess
import sys
import threading
import time
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest
import undula

WAVELETS = [undula.daublet(6), undula.symmlet(8), undula.coiflet(12), [0.5, 0.5]]


def test_calls_of_several_threads_do_not_disturb_each_other(rng):
    """The pack has one selected filter, so overlapping calls would mix their filters."""
    signals = rng.uniform(-1, 1, (len(WAVELETS), 4096))
    expected = [undula.dwt(x, 6, w) for x, w in zip(signals, WAVELETS)]

    def work(own):
        results = [undula.dwt(signals[own], 6, WAVELETS[own]) for _ in range(100)]
        return all(np.array_equal(result, expected[own]) for result in results)

    with ThreadPoolExecutor(len(WAVELETS)) as pool:
        assert all(pool.map(work, range(len(WAVELETS))))


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


ENDING_DURING_CALLS = """
import sys, threading, time
import numpy as np
import undula

kinds, delay = sys.argv[1].split("+"), float(sys.argv[2])
table = undula.wpt(np.arange(4096.0), 6, undula.daublet(4))
single = np.ones((512, 512), np.float32)

def square(x):
    return x * x

def bell(x):
    return np.sin(np.pi / 2 * np.sqrt(x))

def dawdle():
    for _ in range(300):
        pass

class Array(np.ndarray):
    def item(self):
        dawdle()
        return 4.0

    def __del__(self):
        dawdle()

class Lazy:
    def __getattr__(self, name):
        dawdle()
        if name != "__array__":
            raise AttributeError
        return lambda: np.ones(64).view(Array)

calls = {
    "transform": lambda: undula.dwt(np.ones(2**19), 10, undula.coiflet(30)),
    "points": lambda: undula.father(0.3, "daub4"),
    "cost": lambda: undula.best_basis(table, square),
    "bell": lambda: undula.lct(np.ones(4096), 4, bell),
    "evaluate": lambda: undula.evaluate(undula.father, np.linspace(-1, 2, 300_000), "daub4"),
    "argument": lambda: (undula.dwt(single, 1, undula.daublet(2)), undula.dwt(Lazy(), 1, undula.daublet(2))),
    "number": lambda: undula.daublet(np.array(4.0).view(Array)),
    "packet": lambda: undula.evaltbl([np.ones(60_000)], lambda packet: packet.sum()),
}

def repeat(call, began):
    began.set()
    while True:
        call()

for kind in kinds:
    began = threading.Event()
    threading.Thread(target=repeat, args=(calls[kind], began), daemon=True).start()
    began.wait()
time.sleep(delay)
sys.exit(3)
"""


@pytest.mark.parametrize(
    "kinds",
    "transform points cost bell evaluate argument number packet transform+cost+evaluate+bell".split(),
)
def test_daemon_threads_in_calls_leave_the_end_of_the_process_alone(kinds):
    """The interpreter ends threads that ask for its lock, which must neither abort nor crash."""
    command = [sys.executable, "-c", ENDING_DURING_CALLS, kinds]
    delays = ["0", "0.01", "0.02", "0.04", "0.08"]
    runs = [subprocess.Popen([*command, delay], stderr=subprocess.PIPE) for delay in delays]
    ends = [(run.communicate(timeout=60)[1], run.returncode) for run in runs]
    assert ends == [(b"", 3)] * len(runs)


CALLING_AT_THE_END = """
import os, sys, threading, time
import numpy as np
import undula

class Last:
    def __del__(self, call=undula.father, write=os.write):
        try:
            call(0.5, "haar")
        except RuntimeError as error:
            write(1, str(error).encode())

def wait(x):
    began.set()
    time.sleep(100)

sys.last = Last()
began = threading.Event()
threading.Thread(target=undula.best_basis, args=([np.ones(2)], wait), daemon=True).start()
began.wait()
"""


def test_a_call_while_the_interpreter_ends_does_not_wait_for_a_daemon_thread():
    """The thread has the turn and will never give it back."""
    command = [sys.executable, "-c", CALLING_AT_THE_END]
    run = subprocess.run(command, capture_output=True, timeout=60, check=True)
    assert run.stdout == b"undula: another thread is in a call while the interpreter ends"
    assert run.stderr == b""


def run(source):
    """What a process prints that is not killed and complains about nothing."""
    source = "import os, sys, threading, time\nimport numpy as np\nimport undula\n" + source
    ended = subprocess.run([sys.executable, "-c", source], capture_output=True, timeout=60, check=True)
    assert ended.stderr == b""
    return ended.stdout.decode().split()


FORKING = """
w = undula.coiflet(30)

def work():
    while True:
        undula.dwt(np.ones(2**18), 10, w)
        undula.evaluate(undula.father, np.linspace(-1, 2, 1000), "daub4")

def child():
    undula.lct(np.ones(1536), 2, lambda x: 1.0)
    return np.array_equal(undula.idwt([1, 0], 1, undula.daublet(2)), undula.daublet(2))

def fork(_=0):
    process = os.fork()
    if process == 0:
        threading.Timer(20, os._exit, [2]).start()
        try:
            os._exit(0 if child() else 1)
        finally:
            os._exit(3)
    print(os.waitstatus_to_exitcode(os.waitpid(process, 0)[1]))
    return 0.0

fork()
threading.Thread(target=work, daemon=True).start()
for _ in range(20):
    time.sleep(0.005)
    fork()
undula.best_basis([np.ones(2)], fork)
"""


def test_a_forked_process_can_call_whatever_its_parent_is_doing():
    """Another thread of the parent is in a call, or the forking thread itself in a user function."""
    assert set(run(FORKING)) == {"0"}


WAITING = """
import signal
began, waiting = threading.Event(), time.monotonic()

def block(x):
    began.set()
    time.sleep(1)
    return 0.0

threading.Thread(target=undula.best_basis, args=([np.ones(2)], block)).start()
began.wait()
signal.signal(signal.SIGALRM, signal.default_int_handler)
signal.setitimer(signal.ITIMER_REAL, 0.1)
try:
    undula.daublet(2)
except KeyboardInterrupt:
    print(time.monotonic() - waiting < 1)
"""


def test_an_interrupt_ends_the_wait_for_a_turn():
    assert run(WAITING) == ["True"]


NESTING = """
def nested(x):
    return undula.evaltbl([np.ones(2)], nested)

def listed(x):
    for _ in range(5000):
        x = [x]
    return undula.dwt(x, 1, [1, 1])

def work(function):
    try:
        function(np.ones(2))
    except (RecursionError, undula.Error) as error:
        print(type(error).__name__)

for size in (0, 64, 256, 1024):
    threading.stack_size(size * 1024)
    for function in (nested, listed):
        thread = threading.Thread(target=work, args=[function])
        thread.start()
        thread.join()
"""


def test_nesting_ends_in_an_error_whatever_the_stack():
    assert set(run(NESTING)) == {"RecursionError"}


def test_it_refuses_to_be_imported_in_a_sub_interpreter():
    source = """
import _xxsubinterpreters as interpreters
interpreters.run_string(interpreters.create(), 'try: import undula._host\\nexcept ImportError: print("refused", flush=True)')
"""
    command = [sys.executable, "-c", source]
    ended = subprocess.run(command, capture_output=True, timeout=60, check=True)
    assert ended.stdout == b"refused\n"
