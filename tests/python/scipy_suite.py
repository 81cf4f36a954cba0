# SPDX-License-Identifier: MIT
"""A plugin for pytest: SciPy's own tests with our backend in front.

    python3 -m pytest -p scipy_suite --pyargs scipy.fft

The backend is set globally, so that tests that start threads meet it, too, and SciPy is asked where it
does not answer. The last line tells how many calls were computed here and how many were handed on.
"""

import collections

import pytest
import scipy.fft

import orvgen

answered, handed_on = collections.Counter(), collections.Counter()


class Counting:
    """The backend, which is a module, with a count."""

    __ua_domain__ = orvgen.scipy_backend.__ua_domain__

    @staticmethod
    def __ua_function__(method, args, kwargs):
        answer = orvgen.scipy_backend.__ua_function__(method, args, kwargs)
        count = handed_on if answer is NotImplemented else answered
        count[method.__name__] += 1
        return answer


@pytest.fixture(autouse=True)
def in_front():
    # Some tests set a global backend of their own.
    scipy.fft.set_global_backend(Counting)
    scipy.fft.register_backend("scipy")


def pytest_terminal_summary(terminalreporter):
    terminalreporter.write_line(
        f"orvgen answered {sum(answered.values())} calls of {len(answered)} functions, "
        f"SciPy {sum(handed_on.values())}"
    )
    for name in sorted(answered):
        terminalreporter.write_line(f"    {name}: {answered[name]}, handed on {handed_on[name]}")


def pytest_sessionfinish(session):
    # Six transforms in three forms and the DCT both ways; else this was not a test of ours.
    if len(answered) < 20:
        session.exitstatus = pytest.ExitCode.TESTS_FAILED
