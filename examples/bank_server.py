"""A bank for the demo, on a free port of the loopback, which it prints. It gives a statement to those
who have the token."""

import http.server

STATEMENT = b"""{"account":"Checking","iban":"DE02120300000000202051","balance":"1250.00"}
"""


class Bank(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_GET(self):
        knows = self.command == "HEAD" or self.headers.get("Authorization") == "Bearer 4f1c9a77e2"
        body = STATEMENT if knows else b"who are you?\n"
        self.send_response(200 if knows else 401)
        self.send_header("Last-Modified", "Fri, 01 Nov 2024 08:00:00 GMT")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(body)

    do_HEAD = do_GET

    def log_message(self, *_):
        pass


server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Bank)
print(server.server_address[1], flush=True)
server.serve_forever()
