# The same work as lists.lsp: build, sort with a comparison function, look
# up, join strings in a loop.
from functools import cmp_to_key


def build(n):
    acc = []
    i = 0
    while i < n:
        acc.append(((i * 7919) % 100003, str(i)))
        i += 1
    acc.reverse()
    return acc


def assoc(key, alist):
    for pair in alist:
        if pair[0] == key:
            return pair
    return None


al = build(100000)
ordered = sorted(al, key=cmp_to_key(lambda a, b: -1 if a[0] < b[0] else (1 if b[0] < a[0] else 0)))
hits = 0
for k in (0, 7919, 15838, 500, 99999):
    if assoc(k, al):
        hits += 1


def join(n):
    s = ""
    i = 0
    while i < n:
        s = s + str(i % 10)
        i += 1
    return s


print((len(ordered), ordered[0][0], hits, len(join(20000))))
