import gc
import signal

import matplotlib
import matplotlib.pyplot as plt
import numpy as np
import pytest
import undula


@pytest.fixture
def rng():
    return np.random.default_rng(7)


matplotlib.use("Agg")


@pytest.fixture
def ax():
    """Axes to draw into, which are the current ones too."""
    yield plt.figure().gca()
    plt.close("all")


@pytest.fixture
def live_values():
    """A function that counts the values of the host that still exist."""
    undula.daublet(2)  # the first call makes what the host keeps for good

    def count():
        gc.collect()
        return undula._host.live_values()

    return count


@pytest.fixture
def alarm():
    """A function that has a signal's handler called after some seconds: usually that of Ctrl-C."""
    previous = signal.getsignal(signal.SIGALRM)

    def set_alarm(seconds, handler=signal.default_int_handler):
        signal.signal(signal.SIGALRM, handler)
        signal.setitimer(signal.ITIMER_REAL, seconds)

    yield set_alarm
    signal.setitimer(signal.ITIMER_REAL, 0)
    signal.signal(signal.SIGALRM, previous)
