import gc

import numpy as np
import pytest
import undula


@pytest.fixture
def rng():
    return np.random.default_rng(7)


@pytest.fixture
def live_values():
    """A function that counts the values of the host that still exist."""
    undula.daublet(2)  # the first call makes what the host keeps for good

    def count():
        gc.collect()
        return undula._host.live_values()

    return count
