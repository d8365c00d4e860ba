#!/usr/bin/env python3
"""A stand-in for the maker's report server on 127.0.0.1, for tests.

Prints its port on the first line, then serves until its lifetime (first argument, seconds) is
over. The first path segment picks the behaviour, so one server plays every case:
  /status-NNN/...   answers NNN
  /slow/...         answers 200 after 5 s
  /huge/...         answers 200 with a 10 MB body
  /rules-N/...      GET answers N shared rules; POST answers 200
  /invalid/...      answers 200 with a body that is not JSON
GET /_received lists what was received: [{"method", "path", "body"}].
"""
import json
import os
import sys
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

received = []
lock = threading.Lock()


class Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *args):
        pass

    def reply(self, status, body=b"{}"):
        try:
            self.send_response(status)
            self.send_header("Content-Type", "application/json")
            self.send_header("Content-Length", str(len(body)))
            self.end_headers()
            self.wfile.write(body)
        except (BrokenPipeError, ConnectionResetError):
            pass

    def serve(self, method, body):
        if self.path == "/_received":
            with lock:
                self.reply(200, json.dumps(received).encode())
            return
        with lock:
            received.append({"method": method, "path": self.path,
                             "body": body.decode("utf-8", "replace")})
        scenario = self.path.split("/")[1]
        if scenario.startswith("status-"):
            self.reply(int(scenario[len("status-"):]))
        elif scenario == "slow":
            time.sleep(5)
            self.reply(200)
        elif scenario == "huge":
            self.reply(200, b" " * (10 * 1024 * 1024))
        elif scenario.startswith("rules-") and method == "GET":
            count = int(scenario[len("rules-"):])
            rules = [{"word": "word%d" % i, "sayAs": "say %d" % i} for i in range(count)]
            self.reply(200, json.dumps({"rules": rules}).encode())
        elif scenario == "invalid":
            self.reply(200, b"{\"rules\": [ not json")
        else:
            self.reply(200)

    def do_GET(self):
        self.serve("GET", b"")

    def do_POST(self):
        length = int(self.headers.get("Content-Length", "0"))
        self.serve("POST", self.rfile.read(length))


def main():
    lifetime = float(sys.argv[1]) if len(sys.argv) > 1 else 300
    server = ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    server.daemon_threads = True
    print(server.server_address[1], flush=True)
    threading.Timer(lifetime, lambda: os._exit(0)).start()
    server.serve_forever()


if __name__ == "__main__":
    main()
