# SPDX-License-Identifier: MIT
"""Threads, memory, examples in docstrings."""

import concurrent.futures
import doctest
import gc
import importlib
import inspect
import os
import pkgutil
import resource
import threading
import time
import warnings

import numpy as np
import pytest
from conftest import numbers, same_bits

import orvgen


def modules():
    yield orvgen
    for module in pkgutil.iter_modules(orvgen.__path__):
        if module.name != "_batch":
            yield importlib.import_module(f"orvgen.{module.name}")


def test_examples_in_docstrings():
    tried = 0
    for module in modules():
        result = doctest.testmod(module)
        assert result.failed == 0, module
        tried += result.attempted
    assert tried > 50


def test_every_public_function_has_an_example():
    for name in orvgen.__all__:
        thing = getattr(orvgen, name)
        if inspect.isfunction(thing):
            assert ">>>" in thing.__doc__, name
            assert thing.__annotations__["return"], name


@pytest.mark.parametrize("name,char,shape,axis", [
    ("fft", "F", (3000, 16), 1), ("rfft", "d", (64, 3000), 0), ("wht", "f", (500, 128), 1),
    ("dct4", "f", (700, 128), 1), ("rotate", "f", (100, 384), 1), ("fft", "f", (30, 9, 80), 1),
])
def test_any_number_of_workers_gives_the_same(random, name, char, shape, axis):
    function = getattr(orvgen, name)
    x = numbers(random, shape, char)
    exact = function(x, axis=axis)
    for workers in (1, 2, 3, 7, -1):
        assert same_bits(function(x, axis=axis, workers=workers), exact)
        assert same_bits(function(x[None], axis=axis + 1, workers=workers)[0], exact)


def test_no_more_threads_than_processors(monkeypatch):
    monkeypatch.setattr(os, "cpu_count", lambda: 3)
    orvgen._threads._forget()
    try:
        for function, shape in ((orvgen.fft, (5000, 16)), (orvgen.fft2, (5000, 4, 4))):
            function(np.zeros(shape, "F"), workers=1_000_000)
            assert orvgen._threads._size == 2
    finally:
        orvgen._threads._forget()


def test_calls_from_many_threads(random):
    """Each with plans of its own, the lengths taking turns."""
    x = {n: numbers(random, (20, n), "f") for n in (16, 64, 128, 256, 1024)}
    exact = {n: orvgen.dct4(x[n]) for n in x}

    def work(seed):
        order = np.random.default_rng(seed).permutation(list(x) * 20)
        return all(same_bits(orvgen.dct4(x[n]), exact[n]) for n in order)

    with concurrent.futures.ThreadPoolExecutor(6) as pool:
        assert all(pool.map(work, range(12)))


def test_other_threads_run_during_a_call(random):
    x = numbers(random, (200_000, 64), "F")
    out = np.empty_like(x)
    ticks, done = [], threading.Event()

    def tick():
        while not done.is_set():
            ticks.append(time.perf_counter())
            time.sleep(0.0005)

    thread = threading.Thread(target=tick)
    thread.start()
    begin = time.perf_counter()
    for _ in range(5):
        orvgen.fft(x, out=out)
    end = time.perf_counter()
    done.set()
    thread.join()
    # With the lock held there would be five chances at most, between the calls.
    assert sum(begin < t < end for t in ticks) > 10


def test_a_child_of_fork_can_use_threads(random):
    x = numbers(random, (4000, 16), "F")
    exact = orvgen.fft(x, workers=2)
    child = os.fork()
    if child == 0:
        os._exit(0 if same_bits(orvgen.fft(x, workers=2), exact) else 1)
    assert os.waitpid(child, 0)[1] == 0


def resident():
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * resource.getpagesize()


def test_a_million_calls_leak_nothing():
    x, y, h = np.ones(4, "F"), np.empty(4, "F"), np.ones((2, 8))[:, ::2]
    d = np.ones(64, "f")

    def calls(count):
        for _ in range(count // 5):
            orvgen.fft(x, out=y)
            orvgen.irfft(x)
            orvgen.rfft(h, 7, 0)
            orvgen.dct4(d)
            try:
                orvgen.fft(x, 100)
            except ValueError:
                pass

    calls(50_000)
    gc.collect()
    before = resident()
    calls(1_000_000)
    gc.collect()
    # A leak of one small object in each call would be 16 MB at least.
    assert resident() - before < 2 << 20


def test_plans_end_with_their_threads():
    x = np.ones(1 << 14, "f")

    def once():
        thread = threading.Thread(target=orvgen.dct4, args=(x,))
        thread.start()
        thread.join()

    for _ in range(10):
        once()
    before = resident()
    for _ in range(200):
        once()
    assert resident() - before < 4 << 20


def test_no_warnings_of_floating_point():
    huge = np.full((20, 16), 3e38, "f")
    with warnings.catch_warnings(), np.errstate(all="raise"):
        warnings.simplefilter("error")
        for name in ("fft", "rfft", "ihfft", "dht", "wht", "dct4", "rotate"):
            getattr(orvgen, name)(huge)
            getattr(orvgen, name)(np.full(16, np.nan))
        orvgen.fft(np.full((3, 7), np.inf + 0j, "F"))
        orvgen.dct4(np.full((3, 128), 1e38, "f"), norm="ortho")


def test_which_runs():
    w = orvgen.which()
    assert w.release == orvgen.__version__
    assert w.interface.startswith("6.1")
    assert os.path.samefile(os.path.dirname(w.kernels), os.path.dirname(w.batch))
    assert w.targets[0] == "SSE2" and w.target == w.targets[-1]
    with pytest.raises(ValueError, match="possible are SSE2"):
        orvgen.use("MMX")
    assert orvgen.which() == w
