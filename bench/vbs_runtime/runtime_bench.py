# The same work as runtime_bench.cpp, in Python 3 with its own standard library, so that the
# two figures can be set side by side.
import time
import timeit

CALLS = 100000


KEYS = ["key%d" % i for i in range(CALLS)]


def dictionary():
    d = {}
    for i, k in enumerate(KEYS):
        d[k] = i
    total = 0
    for k in KEYS:
        total += d[k]
    return total


TEXT = ""
while len(TEXT) < 1024:
    TEXT += "The quick brown fox jumps over the lazy dog. "


def replace():
    for _ in range(CALLS):
        TEXT.replace("fox", "cat")


def format_number():
    for i in range(CALLS):
        "{:,.2f}".format(i * 1.2345)


for name, fn in [("DictionaryInsertAndLookup", dictionary), ("Replace1KText", replace),
                 ("FormatNumber", format_number)]:
    best = min(timeit.repeat(fn, number=1, repeat=5, timer=time.process_time))
    print("python %-28s %8.1f ms" % (name, best * 1000))
