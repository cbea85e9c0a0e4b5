# The Python side of the read benchmark: the same loop over the same query with sqlite3.
import sqlite3
import sys

db = sqlite3.connect(sys.argv[1])
total = 0.0
count = 0
for row in db.execute("SELECT id, name, price, qty, added FROM items"):
    id_, name, price, qty, added = row
    total += price + qty
    count += 1
print(count, total)
