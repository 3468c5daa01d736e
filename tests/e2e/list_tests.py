"""Names of all tests in this folder, a line each."""

import unittest


def names(suite):
    for test in suite:
        if isinstance(test, unittest.TestSuite):
            yield from names(test)
        else:
            yield test.id()


for name in names(unittest.defaultTestLoader.discover(".")):
    print(name)
