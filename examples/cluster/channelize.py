# SPDX-License-Identifier: MIT
"""Splits a long recording of many channels into frequency bands, on one machine and on a cluster.

    channelize.py [--channels N] [--seconds S] [--workers N...] [--kill]

The recording is a file that every worker can read, seen as a Dask array of blocks; each block becomes
the power of 33 bands by transforms of 64 samples, 16 apart. Dask's scheduler hands blocks to worker
processes. Their results are compared, bit for bit, with those of this process alone; --kill ends a
worker in the middle by SIGKILL. Prints the throughput for each number of workers.
"""

import argparse
import os
import signal
import tempfile
import threading
import time
from functools import partial
from pathlib import Path

import dask
import dask.array as da
import numpy as np
from dask.distributed import Client, LocalCluster

import orvgen

RATE = 48_000  # samples a second
POINTS, HOP, BANDS = 64, 16, 33
MEAN = 64  # frames that are averaged to one power
BLOCK = HOP * MEAN * 128  # samples of a block, 2.7 seconds
WINDOW = np.hanning(POINTS + 1)[:-1].astype(np.float32)


def write_recording(path, channels, blocks):
    """Noise and a tone that rises from channel to channel, block by block; and what frames of the
    last block reach beyond it."""
    samples = blocks * BLOCK + POINTS
    file = np.lib.format.open_memmap(path, "w+", np.float32, (channels, samples))
    for begin in range(0, samples, BLOCK):
        random = np.random.default_rng(begin)
        t = np.arange(begin, min(begin + BLOCK, samples)) / RATE
        tones = np.sin(2 * np.pi * 500 * np.outer(np.arange(1, channels + 1), t))
        file[:, begin : begin + t.size] = tones + 0.1 * random.standard_normal(tones.shape)
    file.flush()


def powers(samples):
    """(channels, samples) to (channels, means, bands). Frames overlap: a strided view of the samples."""
    frames = np.lib.stride_tricks.sliding_window_view(samples, POINTS, axis=-1)[:, :-1:HOP]
    spectra = orvgen.rfft(frames * WINDOW)
    power = spectra.real**2 + spectra.imag**2
    return power.reshape(len(samples), -1, MEAN, BANDS).mean(axis=2)


def block_of(path, block_info=None):
    """A block of the result from its place: reads what its frames cover."""
    (channels, means, _) = block_info[None]["array-location"]
    step = HOP * MEAN
    samples = np.load(path, mmap_mode="r")
    return powers(samples[slice(*channels), means[0] * step : means[1] * step + POINTS])


def as_dask(path, channels, blocks):
    means = BLOCK // (HOP * MEAN)
    chunks = ((1,) * channels, (means,) * blocks, (BANDS,))
    return da.map_blocks(partial(block_of, str(path)), chunks=chunks, dtype=np.float32, meta=np.empty((0, 0, 0), np.float32))


def alone(path, blocks):
    """The same without Dask: the recording from its beginning to its end in one call each channel."""
    samples = np.load(path, mmap_mode="r")
    return np.concatenate([powers(channel[None]) for channel in samples])


def on_cluster(result, workers, kill_after=None):
    """The result, the seconds that it took, and how many workers were killed before it was there. (Dask
    starts another one in the place of each.)"""
    with LocalCluster(n_workers=workers, threads_per_worker=1, processes=True, dashboard_address=None) as cluster:
        with Client(cluster) as client:
            client.wait_for_workers(workers)
            processes = client.run(os.getpid)
            client.run(orvgen.which)  # the package is loaded
            killed_at = []

            def kill():
                killed_at.append(time.perf_counter())
                os.kill(next(iter(processes.values())), signal.SIGKILL)

            timer = threading.Timer(kill_after or 0, kill)
            begin = time.perf_counter()
            if kill_after is not None:
                timer.start()
            computed = result.compute()
            end = time.perf_counter()
            timer.cancel()
            return computed, end - begin, sum(at < end for at in killed_at)


class Parser(argparse.ArgumentParser):
    """Tells what is wrong in one line."""

    def error(self, message):
        self.exit(2, f"{self.prog}: {message} (see --help)\n")


def positive(kind, most):
    def number(text):
        try:
            value = kind(text)
        except ValueError:
            value = 0
        if not 0 < value <= most:
            raise argparse.ArgumentTypeError(f"takes {'whole ' if kind is int else ''}numbers above 0, up to {most}")
        return value

    return number


def main():
    parser = Parser(description=__doc__.splitlines()[0])
    parser.add_argument("--channels", type=positive(int, 1024), default=16, metavar="N", help="channels of the recording (16)")
    parser.add_argument("--seconds", type=positive(float, 100_000), default=60, metavar="S", help="at least so many seconds of it (60)")
    parser.add_argument("--workers", type=positive(int, 1024), nargs="+", default=[1, 2], metavar="N", help="numbers of workers (1 2)")
    parser.add_argument("--kill", action="store_true", help="end a worker in the middle of the last run")
    options = parser.parse_args()
    blocks = max(1, int(np.ceil(options.seconds * RATE / BLOCK)))

    dask.config.set({"distributed.worker.multiprocessing-method": "spawn", "distributed.logging.distributed": "error"})
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder) / "recording.npy"
        write_recording(path, options.channels, blocks)
        samples = options.channels * blocks * BLOCK
        begin = time.perf_counter()
        exact = alone(path, blocks)
        seconds = time.perf_counter() - begin
        print(f"{options.channels} channels of {blocks * BLOCK / RATE:.0f} s: {samples / 1e6:.0f} million samples, "
              f"{samples // HOP / 1e6:.1f} million transforms")
        print(f"this process alone:  {samples / seconds / 1e6:8.1f} million samples a second")

        failed = False
        result = as_dask(path, options.channels, blocks)
        runs = [(n, None) for n in options.workers]
        if options.kill:
            runs.append((options.workers[-1], seconds / 4))
        for workers, kill_after in runs:
            computed, taken, killed = on_cluster(result, workers, kill_after)
            same = computed.shape == exact.shape and computed.tobytes() == exact.tobytes()
            failed |= not same or (kill_after is not None and killed != 1)
            note = f", {killed} killed meanwhile" if kill_after is not None else ""
            print(f"{workers} worker{'s' if workers > 1 else ' '}:           {samples / taken / 1e6:8.1f} million samples a second, "
                  f"{'the same bits' if same else 'OTHER BITS'}{note}")
    return 1 if failed else 0


if __name__ == "__main__":
    raise SystemExit(main())
