"""Faults of a server, a proxy or a line, each as an answer to a request. What is random is drawn when one is made."""
import gzip
import time

from faults.site import HOST, MIRROR


def cut(phase, manner, rng):
    """The connection ends in this phase ("before", "head" or "body") and manner ("closed", "reset" or "silent")."""
    share = rng.uniform(0.05, 1)  # each attempt leads further, and a small step would take hours

    def act(answer):
        head = answer.right_head()
        if phase == "head":
            answer.send(head[:int(1 + share * (len(head) - 2))])
        elif phase == "body":
            rest = len(answer.content) - answer.start
            answer.send(head)
            answer.send_file(answer.start, answer.start + int(share * rest))
        {"closed": answer.hang_up, "reset": answer.reset, "silent": answer.hush}[manner]()

    return act


def drip(rng):
    """A few bytes a time, for a second or two."""
    share, sizes = rng.random(), [rng.randint(1, 7) for _ in range(rng.randint(50, 150))]

    def act(answer):
        whole = len(answer.content)
        place = answer.start + int(share * max(0, whole - answer.start - sum(sizes)))
        answer.send(answer.right_head())
        answer.send_file(answer.start, place)
        for size in sizes:
            end = min(whole, place + size)
            answer.send_file(place, end)
            place = end
            time.sleep(0.01)
        answer.send_file(place, whole)

    return act


def status(code, **headers):
    def act(answer):
        text = b"something went wrong"
        answer.send(answer.head(code, len(text), **headers) + text)

    return act


def whole_again(answer):
    """The range that was asked for is ignored."""
    answer.send(answer.head(200, len(answer.content)))
    answer.send_file(0, len(answer.content))


def from_elsewhere(rng):
    share = rng.random()

    def act(answer):
        whole = len(answer.content)
        first = int(share * (whole - 1))
        if first == answer.start:
            first += 1
        answer.send(answer.head(206, whole - first, Content_Range=f"bytes {first}-{whole - 1}/{whole}"))
        answer.send(answer.content[first:])  # not counted: nobody asked for it

    return act


def other_length(rng):
    """Answers a range with less of it than asked for, or announces more than comes."""
    share, more = rng.random(), rng.choice((0, 1, 5000))

    def act(answer):
        whole = len(answer.content)
        if more:
            answer.send(answer.head(206, whole - answer.start + more,
                                    Content_Range=f"bytes {answer.start}-{whole + more - 1}/{whole + more}"))
            answer.send_file(answer.start, whole)
            answer.hang_up()
            return
        end = answer.start + 1 + int(share * (whole - answer.start - 1))
        answer.send(answer.head(206, end - answer.start, Content_Range=f"bytes {answer.start}-{end - 1}/{whole}"))
        answer.send_file(answer.start, end)

    return act


def redirect_to_mirror(answer):
    if answer.host == MIRROR:
        answer.right()
        return
    scheme = "https" if answer.secure else "http"
    answer.send(answer.head(302, 0, Location=f"{scheme}://{MIRROR}{answer.path}"))


def redirect_to_http(answer):
    if answer.secure:
        answer.send(answer.head(302, 0, Location=f"http://{answer.host}{answer.path}"))
    else:
        answer.right()


def redirect_in_circle(answer):
    scheme = "https" if answer.secure else "http"
    answer.send(answer.head(302, 0, Location=f"{scheme}://{HOST}{answer.path}"))


def portal(rng):
    """A page to sign in, in place of whatever was asked for."""
    page = b"<!DOCTYPE html><html><body><p>Please sign in.<br>" + b"x" * rng.randint(200, 60_000) + b"</body></html>"

    def act(answer):
        answer.send(answer.head(200, len(page), Content_Type="text/html; charset=utf-8") + page)

    return act


def changed(change):
    """Another body than the right one, announced as it is."""

    def act(answer):
        body = change(answer.content)[answer.start:]
        whole = answer.start + len(body)
        if answer.start:
            answer.send(answer.head(206, len(body), Content_Range=f"bytes {answer.start}-{whole - 1}/{whole}") + body)
        else:
            answer.send(answer.head(200, len(body)) + body)

    return act


def wrong_bytes(rng):
    places = [rng.random() for _ in range(rng.choice((1, 3, 1000)))]

    def change(content):
        wrong = bytearray(content)
        for share in places:
            wrong[int(share * len(wrong))] ^= 0x55
        return bytes(wrong)

    return changed(change)


def longer(rng):
    more = rng.randbytes(rng.randint(1, 20_000))
    return changed(lambda content: content + more)


def shorter(rng):
    """A file that was not copied to the server as a whole."""
    share = rng.random()

    def act(answer):
        end = 1 + int(share * (len(answer.content) - 2))
        if answer.start >= end:
            answer.send(answer.head(416, 0, Content_Range=f"bytes */{end}"))
        elif answer.start:
            answer.send(answer.head(206, end - answer.start, Content_Range=f"bytes {answer.start}-{end - 1}/{end}"))
            answer.send_file(answer.start, end)
        else:
            answer.send(answer.head(200, end))
            answer.send_file(0, end)

    return act


def gzip_unasked(answer):
    body = gzip.compress(answer.content[answer.start:], 1)
    if answer.start:
        whole = len(answer.content)
        answer.send(answer.head(206, len(body), Content_Encoding="gzip",
                                Content_Range=f"bytes {answer.start}-{whole - 1}/{whole}") + body)
    else:
        answer.send(answer.head(200, len(body), Content_Encoding="gzip") + body)


def chunked(rng):
    """Without a length, and now and then without an end."""
    share = rng.choice((1, rng.random()))

    def act(answer):
        whole = len(answer.content)
        if answer.start:
            answer.send(answer.head(206, Transfer_Encoding="chunked",
                                    Content_Range=f"bytes {answer.start}-{whole - 1}/{whole}"))
        else:
            answer.send(answer.head(200, Transfer_Encoding="chunked"))
        end = answer.start + int(share * (whole - answer.start))
        for place in range(answer.start, end, 10_000):
            piece = min(10_000, end - place)
            answer.send(b"%x\r\n" % piece)
            answer.send_file(place, place + piece)
            answer.send(b"\r\n")
        if end == whole:
            answer.send(b"0\r\n\r\n")
        else:
            answer.hang_up()

    return act


def hush_in_handshake(line):
    line.socket.recv(64 * 1024)
    line.hush()


# Ends of a TLS handshake; they take the line.
HANDSHAKES = {
    "closed": lambda line: None,
    "reset": lambda line: line.reset(),
    "alert": lambda line: line.socket.sendall(b"\x15\x03\x01\x00\x02\x02\x28"),
    "noise": lambda line: line.socket.sendall(b"HTTP/1.1 400 Bad Request\r\n\r\n"),
}
