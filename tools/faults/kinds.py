"""The table of all kinds of fault, each a function that lets a point meet it somewhere."""
import os
import time
from dataclasses import dataclass
from typing import Callable

from faults import answers, update
from faults.point import GAMES, TEMPORARY, Point
from faults.site import HOST, MIRROR, REPOSITORY

FULL_DISK, LOCKED_DISK = "C:\\full", "C:\\locked"


def install(point):
    point.attend_installation()
    point.check_installation()


@dataclass
class Kind:
    name: str
    set_up: Callable[[Point], None]
    destroys: bool = False  # what was downloaded, or the chance to go on with it
    no_room: bool = False  # what comes can't be kept, so it is no loss
    may_close: bool = True  # now and then the window is closed in the middle of it
    temporary: str = TEMPORARY
    games: str = GAMES
    run: Callable[[Point], None] = install


# --- The line and the server

def somewhere(point):
    return point.rng.choice(("manifest", "archive", "archive", "plain"))


def trouble(point, target, make, most=3, standing_share=0.3):
    """One or some bad answers, or bad ones until somebody has been asked; of one source or of all."""
    rng = point.rng
    standing = rng.random() < standing_share
    host = HOST if rng.random() < 0.5 else None
    point.fault(target, [make(rng) for _ in range(1 if standing else rng.randint(1, most))], standing, host)


def maybe_close(point):
    if point.rng.random() < 0.4:
        point.after(point.rng.uniform(0, 4), point.close_and_start_again)


def close_in_silence(point):
    """Now and then, once the site has become silent."""
    point.moments.append((lambda: point.site.silences, lambda: maybe_close(point)))


def broken(phase, manner):
    def set_up(point):
        target = somewhere(point)
        # Each silence costs seconds, of which a package bears sixty.
        standing = 0.3 if manner != "silent" or target == "manifest" else 0
        if manner == "silent":
            close_in_silence(point)
        trouble(point, target, lambda rng: answers.cut(phase, manner, rng), 2 if manner == "silent" else 3, standing)

    return Kind(f"{manner}-{'before-answer' if phase == 'before' else 'in-' + phase}", set_up)


def kept_connection(point):
    """The connection is closed or reset when the next request comes on it."""
    point.scheme = "http"
    point.offer()
    manner = point.rng.choice(("closed", "reset"))
    point.fault("plain", [answers.cut("before", manner, point.rng)])


def bad(make, targets=("manifest", "archive", "plain")):
    return lambda point: trouble(point, point.rng.choice(targets), make)


def instead_of_rest(make):
    """A transfer is cut off in the middle, and the request for the rest gets a bad answer."""

    def set_up(point):
        rng = point.rng
        acts = [answers.cut("body", rng.choice(("closed", "reset")), rng)]
        if point.rng.random() < 0.5:
            point.fault(rng.choice(("archive", "plain")), acts + [make(rng)], standing=True)
        else:
            point.fault(rng.choice(("archive", "plain")), acts + [make(rng) for _ in range(rng.randint(1, 3))])

    return set_up


def handshake(point):
    point.scheme = "https"
    point.offer()
    rng = point.rng
    end = answers.HANDSHAKES[rng.choice(sorted(answers.HANDSHAKES))]
    count = rng.choice((1, 2, 3, 1000))
    if rng.random() < 0.5:
        point.site.handshake_faults = [end] * count
        return
    point.when_carried(rng.randint(1, point.package_bytes()), lambda: point.site.handshake_faults.extend([end] * count))


def silent_handshake(point):
    point.scheme = "https"
    point.offer()
    rng = point.rng

    def begin(count):
        point.site.mended.clear()  # the window may have been closed before, and whatever was wrong mended
        point.site.handshake_faults = [answers.hush_in_handshake] * count
        point.site.break_lines()

    close_in_silence(point)
    if rng.random() < 0.5:
        begin(rng.choice((1, 2, 1000)))
    else:
        point.when_carried(rng.randint(1, point.package_bytes()), lambda: begin(rng.randint(1, 2)))


def certificate(name):
    def set_up(point):
        point.scheme = "https"
        point.offer()
        point.site.context = point.site.certificates[name]

    return set_up


def for_a_while(point, begin, end):
    """From a random moment on, for some time or until somebody has been asked."""
    seconds = point.rng.choice((point.rng.uniform(0.2, 3), None))

    def fail():
        point.note("it begins")
        begin()
        if seconds:
            point.after(seconds, end)

    if point.rng.random() < 0.3:
        fail()
    else:
        point.when_carried(point.rng.randint(1, point.package_bytes()), fail)


def link_down(point):
    for_a_while(point, point.machine.disconnect, point.machine.connect)


def refused(point):
    def begin():
        point.site.refuse()
        point.site.break_lines()

    for_a_while(point, begin, point.site.listen)


def no_name(point):
    def begin():
        point.machine.forget_names()
        point.site.break_lines()

    for_a_while(point, begin, point.machine.name_hosts)


def silent_connect(point):
    def begin():
        point.note("it begins")
        point.site.ignore()
        point.site.break_lines()
        maybe_close(point)

    def for_seconds():
        begin()
        point.after(point.rng.uniform(0.2, 12), point.site.listen)

    if point.rng.random() < 0.5:
        point.when_carried(point.rng.randint(1, point.package_bytes()), for_seconds)
    else:
        # Only the list may be waited for until somebody has been asked.
        point.rng.choice((begin, for_seconds))()


def silent_name(point):
    """Of all hosts, or of that of the packages alone. What has been looked up once stays known."""
    rng = point.rng
    manifest = point.packages.manifest(point.scheme, point.mirrored)
    point.site.offer(REPOSITORY, "manifest", manifest.replace(f"//{HOST}/".encode(), f"//{MIRROR}/".encode()))
    known = rng.choice(("", HOST))
    point.machine.hush_nameserver(known)
    if known or rng.random() < 0.5:
        point.after(rng.uniform(2, 12), point.machine.name_hosts)
    maybe_close(point)


def silent_upload(point):
    """Nobody reads the reports. They name the source, and so are longer than what the systems on both sides hold."""
    key = "main" * 7500
    manifest = point.packages.manifest(point.scheme, point.mirrored)
    point.site.offer(REPOSITORY, "manifest", manifest.replace(b'"main"', f'"{key}"'.encode()))
    point.arguments = point.arguments.replace("source:main", "source:" + key)
    point.site.unread = "report"
    close_in_silence(point)


def circle(point):
    """For some time, since Wine goes round until the program has had enough of it. Windows counts."""
    target = somewhere(point)
    point.fault(target, [answers.redirect_in_circle], standing=True)
    point.after(point.rng.uniform(0.2, 6), point.site.mend)


def report(point):
    manner = point.rng.choice(("silent", "silent", "closed", "reset"))
    point.fault("report", [answers.cut(point.rng.choice(("before", "head")), manner, point.rng)], standing=True)


# --- The machine

def full_temporary(point):
    point.machine.resize_disk(point.rng.randint(100_000, point.package_bytes()))


def full_games(point):
    room = point.packages.unpacked + len(point.packages.file("plain")[1])
    point.machine.resize_disk(point.rng.randint(8_000, room))


def protected(point):
    if point.rng.random() < 0.5 and point.temporary.startswith(LOCKED_DISK):
        point.leave_part("archive", point.rng.random())
    point.machine.protect_disk(True)


def hold(point, path):
    """Somebody has the file open, for some time or until the player has been asked."""
    point.player.must("hold", path)
    if point.rng.random() < 0.5:
        point.after(point.rng.uniform(0.2, 3), lambda: point.player.must("release"))


def held_download(point):
    target = point.rng.choice(("archive", "plain"))
    point.leave_part(target, point.rng.choice((point.rng.random(), 1)))
    hold(point, f"{point.temporary}\\{point.packages.file(target)[0]}")


def held_game(point):
    # An archive is complete without its smallest file: from 99 % on.
    names = [name for name, content in point.packages.expected.items() if len(content) * 50 > point.packages.unpacked]
    name = point.rng.choice(sorted(names)).replace("/", "\\")
    file = point.machine.path(f"{point.games}\\{name}")
    file.parent.mkdir(parents=True)
    file.write_bytes(b"what an older version of the game has here")
    hold(point, f"{point.games}\\{name}")


def killed(meanwhile=None):
    def set_up(point):
        for _ in range(point.rng.choice((1, 1, 2, 3))):
            change = (lambda: meanwhile(point)) if meanwhile else lambda: None
            point.somewhen(lambda change=change: point.kill_and_start_again(change))

    return set_up


def truncate_records(point):
    for record in point.machine.path(point.temporary).glob("*.stat"):
        os.truncate(record, point.rng.randint(0, max(0, record.stat().st_size - 1)))


def zero_tails(point):
    for name in ("a.zip", "b.dat"):
        file = point.machine.path(point.temporary) / name
        if file.exists() and file.stat().st_size:
            length = file.stat().st_size
            count = point.rng.randint(1, min(length, 200_000))
            with file.open("r+b") as opened:
                opened.seek(length - count)
                opened.write(bytes(count))


def clock(point):
    """A list and files of another time; the list is that of yesterday, and offers something else."""
    rng = point.rng
    point.leave_part(rng.choice(("archive", "plain")), rng.random())
    cache = point.machine.path(f"{point.temporary}\\manifest.xml")
    cache.write_bytes(point.packages.manifest("http", False).replace(b"md5 value=\"", b"md5 value=\"0"))
    now = time.time()
    shift = rng.choice((rng.uniform(60, 3_000_000_000 - now), -rng.uniform(7200, now)))
    os.utime(cache, (now + shift, now + shift))
    for file in cache.parent.iterdir():
        if file != cache:
            when = rng.uniform(0, 4_000_000_000)
            os.utime(file, (when, when))


KINDS = [
    *(broken(phase, manner) for manner in ("closed", "reset", "silent") for phase in ("before", "head", "body")),
    Kind("silent-name", silent_name),
    Kind("silent-connect", silent_connect),
    Kind("silent-handshake", silent_handshake),
    Kind("silent-upload", silent_upload),
    Kind("kept-connection-ends", kept_connection),
    Kind("drip", bad(answers.drip)),
    Kind("no-name", no_name),
    Kind("refused", refused),
    Kind("link-down", link_down),
    Kind("range-ignored", instead_of_rest(lambda rng: answers.whole_again), destroys=True),
    Kind("range-from-elsewhere", instead_of_rest(answers.from_elsewhere)),
    Kind("range-of-other-length", instead_of_rest(answers.other_length)),
    Kind("range-416", instead_of_rest(lambda rng: answers.status(416))),
    Kind("status-404", bad(lambda rng: answers.status(404))),
    Kind("status-500", bad(lambda rng: answers.status(500))),
    Kind("status-503", bad(lambda rng: answers.status(503, Retry_After="1"))),
    Kind("redirect-to-another-host", bad(lambda rng: answers.redirect_to_mirror)),
    Kind("redirect-to-http", bad(lambda rng: answers.redirect_to_http)),
    Kind("redirect-in-circle", circle),
    Kind("portal-instead-of-all", bad(answers.portal)),
    Kind("portal-instead-of-rest", instead_of_rest(answers.portal)),
    Kind("wrong-bytes", bad(answers.wrong_bytes, ("archive", "plain")), destroys=True),
    Kind("longer", bad(answers.longer, ("archive", "plain")), destroys=True),
    Kind("shorter", bad(answers.shorter)),
    Kind("gzip-unasked", bad(lambda rng: answers.gzip_unasked, ("archive", "plain")), destroys=True),
    Kind("chunked", bad(answers.chunked)),
    Kind("tls-refused", handshake),
    Kind("tls-foreign-certificate", certificate("foreign")),
    Kind("tls-expired-certificate", certificate("expired")),
    Kind("report-unanswered", report),
    Kind("full-disk-temporary", full_temporary, no_room=True, temporary=FULL_DISK + "\\temporary"),
    Kind("full-disk-games", full_games, games=FULL_DISK + "\\games"),
    Kind("read-only-temporary", protected, no_room=True, temporary=LOCKED_DISK + "\\temporary"),
    Kind("read-only-games", protected, games=LOCKED_DISK + "\\games"),
    Kind("held-download", held_download, no_room=True),
    Kind("held-game-file", held_game),
    Kind("killed", killed(), may_close=False),
    Kind("record-truncated", killed(truncate_records), destroys=True, may_close=False),
    Kind("tail-zeroed", killed(zero_tails), destroys=True, may_close=False),
    Kind("clock-changed", clock),
    *(Kind("update-" + name, set_up, destroys=True, may_close=may_close, run=update.follow)
      for name, set_up, may_close in update.FAULTS),
]
