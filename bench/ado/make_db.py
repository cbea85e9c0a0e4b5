# Builds the benchmark database: 100,000 rows of five columns (integer key, text, real, integer,
# date text), the shape of a list page's query.
import sqlite3
import sys

db = sqlite3.connect(sys.argv[1])
db.execute("DROP TABLE IF EXISTS items")
db.execute("CREATE TABLE items (id INTEGER PRIMARY KEY, name VARCHAR(40), price DOUBLE, "
           "qty INTEGER, added DATETIME)")
db.executemany("INSERT INTO items VALUES (?, ?, ?, ?, ?)",
               ((i, "item %d" % i, i * 0.25, i % 97, "2024-01-%02d 10:00:00" % (i % 28 + 1))
                for i in range(1, 100001)))
db.execute("DROP TABLE IF EXISTS log")
db.execute("CREATE TABLE log (id INTEGER PRIMARY KEY, who VARCHAR(40), amount DOUBLE, at DATETIME)")
db.commit()
