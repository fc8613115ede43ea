"""A web server for tests of loading, on a free port of the loopback, which answers by the path.

    server.py [CERTIFICATE KEY]

Prints its port when it listens, and ends with its standard input. Its answers are right, slow,
broken or hostile; the table at the end lists them.
"""
import functools
import json
import os
import socket
import ssl
import struct
import sys
import threading
import time
import urllib.parse
import zlib

log = []
log_lock = threading.Lock()


class Gone(Exception):
    """The other end has closed the connection."""


class Exchange:
    """A request that was read, and the ways to answer it."""

    def __init__(self, connection, method, target, header, body):
        self.connection, self.method, self.header, self.body = connection, method, header, body
        self.target = target
        self.path, _, query = target.partition("?")
        self.query = dict(urllib.parse.parse_qsl(query, keep_blank_values=True))
        self.words = self.path.split("/")[2:]

    def send(self, data):
        self.connection.sendall(data if isinstance(data, bytes) else data.encode("latin-1"))

    def answer(self, status=200, body=b"", header=(), length=True):
        body = body if isinstance(body, bytes) else body.encode()
        lines = [f"HTTP/1.1 {status} text"] + [f"{name}: {value}" for name, value in header]
        if length:
            lines.append(f"Content-Length: {len(body)}")
        head = ("\r\n".join(lines) + "\r\n\r\n").encode("latin-1")
        self.send(head if self.method == "HEAD" else head + body)

    def close(self):
        raise Gone

    def reset(self):
        """Ends the connection at once, so that the other end is told of a reset."""
        self.connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        raise Gone


def echo(e):
    facts = {"method": e.method, "target": e.target, "header": e.header, "length": len(e.body),
             "body": e.body[:1000].decode("latin-1")}
    e.answer(200, json.dumps(facts), [("Content-Type", "application/json; charset=utf-8")])


def status(e):
    e.answer(int(e.words[0]), f"status {e.words[0]}")


def sized(e):
    """So many bytes that count up, of a body that is told of or not."""
    size = int(e.words[0])
    e.answer(200, (bytes(range(256)) * (size // 256 + 1))[:size])


def headed(e):
    """A status with the header that the query names."""
    e.answer(int(e.words[0]), "headed", list(e.query.items()))


def raw(e):
    """The very bytes of the query, and the end."""
    e.send(e.query["bytes"].encode("latin-1"))
    e.close()


def silent(e):
    time.sleep(30)
    e.close()


def late(e):
    time.sleep(float(e.words[0]))
    e.answer(200, "late")


def stalls(e):
    """Half of a body, and nothing more."""
    e.send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf ")
    time.sleep(30)
    e.close()


def trickle(e):
    """So many bytes, each after so many seconds."""
    count, pause = int(e.words[0]), float(e.words[1])
    e.send(f"HTTP/1.1 200 OK\r\nContent-Length: {count}\r\n\r\n")
    for _ in range(count):
        time.sleep(pause)
        e.send("x")


def short(e):
    e.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nshort")
    e.close()


def resets(e):
    e.send("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n" + "x" * 1000)
    time.sleep(0.05)
    e.reset()


def drop(e):
    e.close()


def redirect(e):
    """So many redirects, then an answer."""
    left = int(e.words[0])
    if left == 0:
        return echo(e)
    e.answer(int(e.query.get("status", 302)), "elsewhere",
             [("Location", f"/redirect/{left - 1}?" + urllib.parse.urlencode(e.query))])


def leads(e):
    e.answer(int(e.words[0]), "elsewhere", [("Location", e.query["to"])])


def leads_with_body(e):
    """A redirect with a body of so many bytes."""
    e.answer(302, b"x" * int(e.words[0]), [("Location", "/echo")])


def packed(e):
    """An encoded body of a kind; without the query's count of bytes at its end, and with its others."""
    text = b"packed text " * 1000
    kind = e.words[0]
    packer = zlib.compressobj(wbits={"deflate": 15, "bare": -15}.get(kind, 31))
    data = packer.compress(text) + packer.flush()
    if kind == "broken":
        data = data[:10] + b"\xff" * 20
    data = data[:len(data) - int(e.query.get("cut", 0))] + e.query.get("more", "").encode("latin-1")
    name = e.query.get("named", {"deflate": "deflate", "bare": "deflate"}.get(kind, "gzip"))
    e.answer(int(e.query.get("status", 200)), data if kind != "nothing" else b"",
             [("Content-Encoding", name)])


@functools.lru_cache
def packed_zeros():
    packer = zlib.compressobj(wbits=31)
    piece = b"\0" * 1_000_000
    return b"".join(packer.compress(piece) for _ in range(20)) + packer.flush()


def bomb(e):
    """Twenty megabytes in twenty kilobytes."""
    e.answer(200, packed_zeros(), [("Content-Encoding", "gzip")])


def endless(e):
    """A body, a header, interim answers or the extension of a chunk without end."""
    kind = e.words[0]
    if kind == "body":
        e.send("HTTP/1.1 200 OK\r\n\r\n")
        piece = b"x" * 65536
    elif kind == "header":
        e.send("HTTP/1.1 200 OK\r\n")
        piece = b"".join(b"X-Field-%d: %s\r\n" % (i, b"v" * 900) for i in range(60))
    elif kind == "line":
        e.send("HTTP/1.1 200 OK\r\nX-Long: ")
        piece = b"x" * 65536
    elif kind == "extension":
        e.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n5;x=")
        piece = b"x" * 65536
    else:
        piece = b"HTTP/1.1 103 Early Hints\r\nLink: </x>\r\n\r\n" * 1000
    while True:
        e.send(piece)


def chunked(e):
    e.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n")
    e.send("5\r\nhello\r\n6\r\n world\r\n0\r\nX-Trailer: t\r\n\r\n")


def interim(e):
    e.send("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 103 Early Hints\r\nX-Early: 1\r\n\r\n")
    e.answer(200, "after", [("X-Late", "1")])


def requests(e):
    """What was asked for since the last time, a line each."""
    with log_lock:
        lines, log[:] = list(log), []
    e.answer(200, "\n".join(lines))


ANSWERS = {"echo": echo, "status": status, "bytes": sized, "headed": headed, "raw": raw,
           "silent": silent, "late": late, "stalls": stalls, "trickle": trickle, "short": short,
           "resets": resets, "drop": drop, "redirect": redirect, "leads": leads,
           "leads-with-body": leads_with_body, "packed": packed, "bomb": bomb, "endless": endless,
           "chunked": chunked, "interim": interim, "requests": requests}


def read_body(e, reader, header):
    length = int(header.get("content-length", 0))
    if e.startswith("/upload/"):
        # Reads so many bytes of the body only, then does as the last word says.
        return reader.read(min(length, int(e.split("/")[2])))
    if e.startswith("/stuck-reader"):
        time.sleep(30)
        raise Gone
    if e.startswith("/slow-reader"):
        while length > 0:
            piece = reader.read(min(length, 1 << 18))
            if not piece:
                raise Gone
            length -= len(piece)
            time.sleep(0.003)
        return piece
    return reader.read(length)


def upload(e):
    if e.words[1] == "reset":
        e.reset()
    if e.words[1] == "answer":
        e.send("HTTP/1.1 413 Too Large\r\nContent-Length: 3\r\nConnection: close\r\n\r\nbig")
    e.close()


ANSWERS["upload"] = upload
ANSWERS["slow-reader"] = echo


def serve(connection):
    connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
    reader = connection.makefile("rb")
    is_last = False
    try:
        while True:
            line = reader.readline(65536)
            if not line or is_last:
                return
            method, target, _ = line.decode("latin-1").split(" ", 2)
            if target.startswith("http://"):  # As a proxy is asked.
                target = "/" + target.split("/", 3)[3]
            elif method == "CONNECT":
                target = "/" + target
            header = {}
            while (field := reader.readline(1 << 20)) not in (b"\r\n", b""):
                name, _, value = field.decode("latin-1").partition(":")
                name = name.lower()
                header[name] = header[name] + " | " + value.strip() if name in header else value.strip()
            is_last = "?once" in target  # The next request is met with the connection's end.
            body = read_body(target, reader, header)
            if not target.startswith("/requests"):
                with log_lock:
                    log.append(f"{method} {target}")
            name = target.partition("?")[0].split("/")[1]
            ANSWERS.get(name, lambda e: e.answer(404, "nothing here"))(
                Exchange(connection, method, target, header, body))
    except (Gone, OSError, ValueError):
        pass
    finally:
        reader.close()
        connection.close()


def accept(listener, context):
    while True:
        connection, _ = listener.accept()
        if context:
            try:
                connection = context.wrap_socket(connection, server_side=True)
            except OSError:
                continue
        threading.Thread(target=serve, args=(connection,), daemon=True).start()


def main():
    listener = socket.create_server(("127.0.0.1", 0), backlog=512)
    context = None
    if len(sys.argv) == 3:
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(sys.argv[1], sys.argv[2])
    print(listener.getsockname()[1], flush=True)
    threading.Thread(target=accept, args=(listener, context), daemon=True).start()
    sys.stdin.buffer.read()
    os._exit(0)


main()
