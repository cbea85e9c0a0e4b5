#!/usr/bin/env python3
# Sends COUNT GET requests for PATH over CONNECTIONS keep-alive connections and fails on any
# answer but 200: a fixed number of requests, which wrk cannot do (it always runs for its
# whole duration).
#
#   requests.py PORT PATH COUNT [CONNECTIONS]
import http.client
import sys
import threading

port, path, count = int(sys.argv[1]), sys.argv[2], int(sys.argv[3])
connections = int(sys.argv[4]) if len(sys.argv) > 4 else 8
failures = []


def run(n):
    conn = http.client.HTTPConnection("127.0.0.1", port, timeout=60)
    for _ in range(n):
        conn.request("GET", path)
        reply = conn.getresponse()
        reply.read()
        if reply.status != 200:
            failures.append(reply.status)
            return


threads = [threading.Thread(target=run, args=(count // connections + (i < count % connections),))
           for i in range(connections)]
for t in threads:
    t.start()
for t in threads:
    t.join()
if failures:
    sys.exit(f"{path}: status {failures[0]}")
