"""Runs the tests of the real window, on the display that the environment names.

    window_test.py [--pictures DIR] [NAME...]

A NAME is a part of a test's name; by default all run. With --pictures, the tests leave pictures
to look at in DIR, and a failing test leaves one of the whole screen.
"""

import argparse
import os
import sys
import time
import unittest

from desktop import Desktop

MODULES = ("typing_test", "stepping_test", "strip_test", "hearing_test", "files_test",
           "exchange_test", "clipboard_test", "page_picture_test", "printing_test")


class Report(unittest.TextTestResult):
    """One line a test, with its time; the screen as it was when a test failed."""

    def startTest(self, test):
        super().startTest(test)
        self.began = time.monotonic()

    def line(self, test, word):
        print(f"{word:7} {test.id():60} {time.monotonic() - self.began:5.1f} s", flush=True)

    def addSuccess(self, test):
        super().addSuccess(test)
        self.line(test, "ok")

    def addSkip(self, test, reason):
        super().addSkip(test, reason)
        self.line(test, "skipped")
        print("        " + reason)

    def addFailure(self, test, error):
        super().addFailure(test, error)
        self.line(test, "FAILED")

    def addError(self, test, error):
        super().addError(test, error)
        self.line(test, "FAILED")


def tests_of(suite):
    for part in suite:
        if isinstance(part, unittest.TestSuite):
            yield from tests_of(part)
        else:
            yield part


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--pictures", metavar="DIR", default="")
    parser.add_argument("names", metavar="NAME", nargs="*")
    arguments = parser.parse_args()
    if arguments.pictures:
        os.makedirs(arguments.pictures, exist_ok=True)
    os.environ["PICTURES"] = arguments.pictures
    wanted = unittest.TestSuite(
        test
        for test in tests_of(unittest.defaultTestLoader.loadTestsFromNames(MODULES))
        if not arguments.names or any(name in test.id() for name in arguments.names)
    )
    result = unittest.TextTestRunner(sys.stdout, resultclass=Report, verbosity=0).run(wanted)
    failed = len(result.failures) + len(result.errors)
    skipped = f", {len(result.skipped)} skipped" if result.skipped else ""
    print(f"{result.testsRun - failed - len(result.skipped)} passed, {failed} failed{skipped}")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
