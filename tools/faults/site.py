"""A site over http and https whose faults are told, and which counts what of each file has crossed the line."""
import os
import select
import socket
import ssl
import struct
import subprocess
import threading
import time
from collections import Counter

HOST, MIRROR = "zendora.example", "mirror.zendora.example"
REPOSITORY, TELEMETRY = "/play/files/repository.php", "/play/files/telemetry.php"
PIECE = 8 * 1024
REASONS = {200: "OK", 206: "Partial Content", 302: "Found", 404: "Not Found", 416: "Range Not Satisfiable",
           500: "Internal Server Error", 503: "Service Unavailable"}


class Line:
    """One connection, and how it ends."""

    def __init__(self, raw, site):
        # What is sent must not be far ahead of what has arrived.
        raw.setsockopt(socket.SOL_SOCKET, socket.SO_SNDBUF, 16 * 1024)
        raw.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self.socket = raw
        self.site = site
        self.received = b""
        self.target, self.stretch = "", [0, 0]  # first and end of the file bytes sent last
        self.delivers = False  # closed in order: what is still under way arrives

    def secure(self, context):
        self.socket = context.wrap_socket(self.socket, server_side=True)

    def read_head(self):
        """Path and headers of the next request; nothing when the other side has closed."""
        while b"\r\n\r\n" not in self.received:
            more = self.socket.recv(64 * 1024)
            if not more:
                return None
            self.received += more
        head, self.received = self.received.split(b"\r\n\r\n", 1)
        lines = head.decode("latin-1").split("\r\n")
        return lines[0].split(" ")[1], dict(line.lower().split(": ", 1) for line in lines[1:] if ": " in line)

    def skip_body(self, length):
        """Of the request. What is missing when the other side closes is missed with the next head."""
        while len(self.received) < length and (more := self.socket.recv(64 * 1024)):
            self.received += more
        self.received = self.received[length:]

    def undelivered(self):
        """Bytes that the other side's system has not acknowledged."""
        if self.socket.fileno() == -1:
            return 0
        info = self.socket.getsockopt(socket.IPPROTO_TCP, socket.TCP_INFO, 256)
        acknowledged, = struct.unpack_from("<Q", info, 120)
        waiting, = struct.unpack_from("<I", info, 144)
        sent, repeated = struct.unpack_from("<QQ", info, 200)
        return waiting + max(0, sent - repeated - acknowledged)

    def reset(self):
        self.settle()
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        self.socket.close()

    def hush(self):
        """Says nothing until the other side gives up, or the site is mended."""
        self.site.silences += 1
        while not self.site.mended.is_set() and not select.select([self.socket], [], [], 0.05)[0]:
            pass

    def hush_unread(self):
        self.site.silences += 1
        self.site.mended.wait()

    def settle(self):
        """Takes from the count what has not arrived."""
        if not self.delivers:
            self.stretch[1] = max(self.stretch[0], self.stretch[1] - self.undelivered())
        self.stretch = [0, 0]

    def close(self):
        try:
            self.settle()
        except OSError:
            pass
        self.socket.close()


class Answer:
    """What a request is about to get. Faults are functions that take one."""

    def __init__(self, site, line, path, headers):
        self.site, self.line, self.path, self.headers = site, line, path, headers
        self.host = headers.get("host", "")
        self.target, self.content = site.find(path)
        asked = headers.get("range", "")
        self.start = int(asked[len("bytes="):].split("-")[0]) if asked.startswith("bytes=") else 0
        self.secure = isinstance(line.socket, ssl.SSLSocket)
        self.goes_on = True  # the connection serves the next request, too
        self.in_body = False

    def head(self, status, length=None, **more):
        fields = {"Content-Type": "application/octet-stream"}
        if length is not None:
            fields["Content-Length"] = length
        fields.update((name.replace("_", "-"), value) for name, value in more.items())
        lines = [f"HTTP/1.1 {status} {REASONS[status]}", *(f"{name}: {value}" for name, value in fields.items())]
        return ("\r\n".join(lines) + "\r\n\r\n").encode()

    def right_head(self):
        """The head of the answer that a good server gives."""
        whole = len(self.content)
        if self.start == 0:
            return self.head(200, whole, Accept_Ranges="bytes")
        if self.start >= whole:
            return self.head(416, 0, Content_Range=f"bytes */{whole}")
        return self.head(206, whole - self.start, Content_Range=f"bytes {self.start}-{whole - 1}/{whole}")

    def send(self, data):
        self.line.socket.sendall(data)

    def send_file(self, first, end):
        """Sends these bytes of the file at the site's rate, and counts them."""
        stretch = [first, first]
        self.in_body = True
        self.site.begin_stretch(self.line, self.target, stretch)
        due = time.monotonic()
        while first < end:
            piece = self.content[first:min(end, first + PIECE)]
            self.send(piece)
            first += len(piece)
            if self.line.stretch is stretch:
                stretch[1] = first
            # A line doesn't get faster to make up for a moment when it was slow.
            now = time.monotonic()
            due = max(due + len(piece) / self.site.rate, now)
            time.sleep(due - now)

    def hang_up(self):
        self.line.delivers = True
        self.goes_on = False

    def reset(self):
        self.site.resets_in_body[self.target] += self.in_body
        self.line.reset()
        self.goes_on = False

    def hush(self):
        self.line.hush()
        self.goes_on = False

    def right(self):
        """What a good server answers."""
        if self.content is None:
            self.send(self.head(404, 0))
            return
        self.send(self.right_head())
        self.send_file(self.start, len(self.content))


class Fault:
    """What happens to requests for a target: one answer after the other, the last one for ever when it is `standing`."""

    def __init__(self, target, acts, standing=False, host=None):
        self.target, self.acts, self.standing, self.host = target, list(acts), standing, host

    def take(self, answer):
        if not self.acts or answer.target != self.target or self.host not in (None, answer.host):
            return None
        return self.acts[0] if self.standing and len(self.acts) == 1 else self.acts.pop(0)


def make_certificate(folder, name, days):
    """A self-signed certificate; with a negative number of days it has expired. Returns a context for servers."""
    key, request, certificate = (os.path.join(folder, f"{name}.{kind}") for kind in ("key", "request", "pem"))
    for command in (
            ["req", "-new", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
             "-subj", "/CN=" + name, "-keyout", key, "-out", request],
            ["x509", "-req", "-in", request, "-signkey", key, "-days", str(days), "-out", certificate]):
        subprocess.run(["openssl", *command], check=True, stderr=subprocess.DEVNULL)
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(certificate, key)
    return context


class Site:
    """Listens on ports 80 and 443 of the private network."""

    def __init__(self, folder):
        self.certificates = {"own": make_certificate(folder, HOST, 30),
                             "foreign": make_certificate(folder, "other.example", 30),
                             "expired": make_certificate(folder, "old." + HOST, -1)}
        self.listeners, self.fillers = [], []
        self.lines = set()
        self.threads = set()
        self.lock = threading.Lock()
        self.faults, self.handshake_faults, self.unread, self.ignored = [], [], "", False
        self.clear()

    def clear(self):
        """As new: whole, fast, and nothing counted."""
        self.files, self.carried, self.requests = {}, {}, []
        self.faults, self.handshake_faults = [], []
        self.unread = ""  # bodies of requests for this target are not taken off the line
        self.resets_in_body = Counter()  # by target
        self.silences = 0
        self.ignored = False  # somebody who wanted to connect
        self.rate = 5_000_000  # bytes a second
        self.context = self.certificates["own"]
        self.mended = threading.Event()

    def find(self, path):
        path = path.split("?")[0]
        if path == TELEMETRY:
            return "report", b""
        target, content = self.files.get(path, (path, None))
        return target, content() if callable(content) else content

    def offer(self, path, target, content):
        """`content` is bytes, or a function that gives them."""
        self.files[path] = (target, content)

    def mend(self):
        """Whatever was wrong with it is over."""
        with self.lock:
            self.faults = []
            self.handshake_faults = []
            self.unread = ""
        self.mended.set()
        self.listen()

    def listen(self):
        if self.fillers:
            self.refuse()
        if self.listeners:
            return
        for port in (80, 443):
            listener = socket.create_server(("", port), backlog=64)
            self.listeners.append(listener)
            threading.Thread(target=self.accept, args=(listener, port), daemon=True).start()

    def refuse(self):
        """From now on new connections are refused; those that are there go on."""
        for listener in self.listeners:
            listener.shutdown(socket.SHUT_RDWR)
            listener.close()
        for filler in self.fillers:
            filler.close()
        self.listeners, self.fillers = [], []

    def ignore(self):
        """From now on whoever wants to connect hears nothing: the system is silent to those who find the queue full."""
        self.refuse()
        self.ignored = True
        for port in (80, 443):
            self.listeners.append(socket.create_server(("", port), backlog=0))
            filler = socket.socket()
            filler.setblocking(False)  # somebody else may have been faster
            filler.connect_ex(("127.0.0.1", port))
            self.fillers.append(filler)

    def accept(self, listener, port):
        try:
            while True:
                raw, _ = listener.accept()
                thread = threading.Thread(target=self.serve, args=(Line(raw, self), port), daemon=True)
                self.threads.add(thread)
                thread.start()
        except OSError:
            pass  # closed

    def serve(self, line, port):
        with self.lock:
            self.lines.add(line)
        try:
            if port == 443 and not self.shake_hands(line):
                return
            while request := line.read_head():
                answer = Answer(self, line, *request)
                if answer.target == self.unread:
                    line.hush_unread()
                    return
                line.skip_body(int(answer.headers.get("content-length", 0)))
                act = self.choose(answer)
                (act or Answer.right)(answer)
                if not answer.goes_on:
                    return
        except OSError:
            pass  # the other side has gone, or this one was told to
        finally:
            line.close()
            with self.lock:
                self.lines.discard(line)
                self.threads.discard(threading.current_thread())

    def shake_hands(self, line):
        with self.lock:
            act = self.handshake_faults.pop(0) if self.handshake_faults else None
        if act:
            act(line)  # pylint: disable=not-callable # it isn't None here
            return False
        line.secure(self.context)
        return True

    def choose(self, answer):
        with self.lock:
            self.requests.append(f"{answer.host}{answer.path.split('?')[0]} {answer.start or ''}".strip())
            return next((act for fault in self.faults if (act := fault.take(answer))), None)

    def break_lines(self):
        """Closes every connection that is there."""
        with self.lock:
            lines = list(self.lines)
        for line in lines:
            line.delivers = True
            self.shut_down(line)

    @staticmethod
    def shut_down(line):
        try:
            line.socket.shutdown(socket.SHUT_RDWR)
        except OSError:
            pass

    def hang_up(self):
        """Ends every connection; when it returns, the counts stand."""
        self.mended.set()
        with self.lock:
            lines, threads = list(self.lines), list(self.threads)
        for line in lines:
            self.shut_down(line)
        for thread in threads:
            thread.join(10)

    def begin_stretch(self, line, target, stretch):
        """Whoever asks for a file has given up the connections on which it came before, although Wine may still take off
        them what comes."""
        with self.lock:
            for other in self.lines:
                if other.target == target:
                    other.settle()
            line.settle()
            line.target, line.stretch = target, stretch
            self.carried.setdefault(target, []).append(stretch)

    def total(self):
        """How many bytes of files have been sent so far."""
        return sum(end - first for stretches in list(self.carried.values()) for first, end in list(stretches))

    def arrived(self, target):
        """How far this file has come."""
        with self.lock:
            under_way = sum(line.undelivered() for line in self.lines if line.target == target and line.stretch[1])
            return max((end for _, end in self.carried.get(target, [])), default=0) - under_way

    def trim(self, target, length):
        """Forgets that anything beyond this length was carried."""
        for stretch in self.carried.get(target, []):
            stretch[:] = [min(place, length) for place in stretch]

    def twice(self, targets):
        """How many bytes of these files were carried more than once."""
        more = 0
        for target in targets:
            reached = 0
            stretches = sorted(map(tuple, self.carried.get(target, [])))
            if self.ignored:
                # Wine sends a request that was given up before there was a connection, once there is one. Of those for
                # the same place the one that came furthest counts.
                stretches = dict(stretches).items()
            for first, end in stretches:
                more += max(0, min(end, reached) - first)
                reached = max(reached, end)
        return more
