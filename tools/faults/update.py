"""Faults that the self-update meets. Whatever happens, a whole program is there, and in the end it is the new one."""
import hashlib
import os
import time

from faults import answers, point as points
from faults.site import HOST, MIRROR, REPOSITORY


def announce(point):
    """The list announces a new program, the old one with a few bytes more, to whoever has the old one."""
    point.arguments = ""
    point.before_start = lambda: let_an_hour_pass(point)
    point.free_folders.append(points.PROGRAM_FOLDER)
    new = point.program + b"newer"
    addresses = [f"{point.scheme}://{HOST}/new.exe"]
    if point.mirrored:
        addresses.append(f"{point.scheme}://{MIRROR}/mirror/new.exe")
    updater = (f'<updater md5="{hashlib.md5(new).hexdigest()}" filesize="{len(new)}" helpURL="">' +
               "".join(f'<source url="{address}"/>' for address in addresses) + "</updater>")
    for path in ("/new.exe", "/mirror/new.exe"):
        point.site.offer(path, "update", new)

    def manifest():
        return point.packages.manifest(point.scheme, False, "" if installed(point) == new else updater)

    point.site.offer(REPOSITORY, "manifest", manifest)
    point.new_program = new


def installed(point):
    """The program's bytes; nothing when it is missing."""
    try:
        return point.machine.path(points.PROGRAM).read_bytes()
    except FileNotFoundError:
        return None


def expect_whole_program(point):
    if installed(point) not in (point.program, point.new_program):
        backup = point.machine.path(points.PROGRAM + ".backup")
        if installed(point) is not None or not backup.exists() or backup.read_bytes() != point.program:
            raise points.Broken("no whole program is there")
        point.note("only the backup is there")
        backup.rename(point.machine.path(points.PROGRAM))


def follow(point):
    """Until the new program shows its list."""

    def updated(event):
        if event[0] == "exited":
            point.note(f"ended with {event[1]}")
            expect_whole_program(point)
            find_successor(point)
            return False
        return event[0] == "list" and installed(point) == point.new_program

    point.attend(updated)
    folder = point.machine.path(points.PROGRAM_FOLDER)
    deadline = time.monotonic() + points.CLOSE_LIMIT
    while (left := sorted(file.name for file in folder.iterdir())) != [points.PROGRAM_FILE]:
        if time.monotonic() > deadline:
            raise points.Broken(f"left beside the program: {left}")
        time.sleep(0.05)
    point.close()


def find_successor(point):
    """The program has ended: in order to start the new one, or because it can't go on and has said so."""
    deadline = time.monotonic() + (2 if point.warned else point.patience)
    while point.player.step("adopt", points.PROGRAM) != ["ok"]:
        if time.monotonic() > deadline:
            if not point.warned:
                raise points.Broken("it ended without a word")
            point.mend()
            point.start()
            return
    point.note("relaunched")


def let_an_hour_pass(point):
    """So long the list is believed, which was kept without its word of the new program."""
    cache = point.machine.path(point.temporary + "\\manifest.xml")
    if cache.exists():
        os.utime(cache, (0, 0))


def met_by(make, most=3, standing=0.2):
    def set_up(point):
        announce(point)
        rng = point.rng
        host = HOST if rng.random() < 0.5 else None
        point.fault("update", [make(rng) for _ in range(rng.randint(1, most))], rng.random() < standing, host)

    return set_up


def cut(manner):
    return lambda rng: answers.cut(rng.choice(("before", "head", "body", "body")), manner, rng)


def kill(point):
    def at_a_moment():
        point.kill_and_start_again(lambda: expect_whole_program(point))

    announce(point)
    size = len(point.new_program)
    if point.rng.random() < 0.4:
        point.when_carried(point.rng.randint(1, size), at_a_moment)
    else:
        # When the program is being replaced and the new one starts.
        wait = point.rng.uniform(0, 0.8)
        point.when_carried(size, lambda: point.after(wait, at_a_moment))


FAULTS = [
    ("closed", met_by(cut("closed")), True),
    ("reset", met_by(cut("reset")), True),
    ("silent", met_by(cut("silent"), 2, 0), True),
    ("status", met_by(lambda rng: answers.status(rng.choice((404, 500, 503)))), True),
    ("shorter", met_by(answers.shorter), True),
    ("wrong-bytes", met_by(answers.wrong_bytes), True),
    ("killed", kill, False),
]
