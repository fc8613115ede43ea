"""A server on loopback that a test scripts. It prints its port. Then each line of its input is a
list of answers, to be given in order from now on (it prints "ready"), or "seen": it prints the
method, path and body of each request since the list. An answer is an object with "status",
"headers", "body" (a text, or {"base64": text}), "redirects" ([status, path] each, given first), or
{"drop": true}: the connection ends without an answer. It ends with its input."""

import base64
import http.server
import json
import sys
import threading
import time

lock = threading.Lock()
answers, seen = [], []


def content(body):
    return base64.b64decode(body["base64"]) if isinstance(body, dict) else body.encode()


def shown(body):
    try:
        return body.decode()
    except UnicodeDecodeError:
        return {"base64": base64.b64encode(body).decode()}


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    wbufsize = 1 << 16  # head and body in one piece: two would wait for each other's receipt

    def answer(self):
        length = int(self.headers.get("Content-Length") or 0)
        body = self.rfile.read(length)
        with lock:
            seen.append([self.command, self.path, shown(body) if length else None])
            answer = answers.pop(0) if answers else {"status": 599, "body": "nothing is left"}
            redirects = answer.get("redirects", [])
            if redirects:
                answers.insert(0, dict(answer, redirects=redirects[1:]))
        self.close_connection = True
        if answer.get("authorized") not in (None, self.headers.get("Authorization")):
            answer = {"status": 401, "body": "who are you"}
        if answer.get("drop"):
            return
        time.sleep(answer.get("delay", 0))
        if redirects:
            answer = {"status": redirects[0][0], "headers": {"Location": redirects[0][1]}}
        body = content(answer.get("body", ""))
        self.send_response(answer["status"])
        for name, value in answer.get("headers", {}).items():
            self.send_header(name, value)
        if answer["status"] not in (204, 304):
            self.send_header("Content-Length", str(answer.get("length", len(body))))
        self.send_header("Connection", "close")
        self.end_headers()
        if self.command != "HEAD" and answer["status"] not in (204, 304):
            self.wfile.write(body)

    do_GET = do_HEAD = do_POST = do_PUT = do_DELETE = do_PATCH = do_OPTIONS = answer

    def log_message(self, *_):
        pass


server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
threading.Thread(target=server.serve_forever, daemon=True).start()
print(server.server_address[1], flush=True)
for line in sys.stdin:
    with lock:
        if line.strip() == "seen":
            print(json.dumps(seen), flush=True)
        else:
            answers[:], seen[:] = json.loads(line), []
            print("ready", flush=True)
