import os
import signal

import pytest

os.environ["LABSH_EVENTS"] = f"labsh-python-{os.getpid()}"  # a table of its own, taken away at the end
signal.signal(signal.SIGINT, signal.default_int_handler)  # which a shell turns off for what runs in the background

import labshell


@pytest.fixture
def bench():
    with labshell.Bench() as bench:
        yield bench


@pytest.fixture
def in_process():
    """Runs code in a process of its own; yields its exit status and what it wrote."""
    import subprocess
    import sys

    def run(code, **options):
        done = subprocess.run([sys.executable, "-X", "faulthandler", "-c", code], capture_output=True, text=True, timeout=60,
                              errors="replace", **options)
        return done.returncode, done.stdout, done.stderr

    return run


def pytest_sessionfinish():
    path = "/dev/shm/" + os.environ["LABSH_EVENTS"]
    if os.path.exists(path):
        os.unlink(path)
