"""One point of the matrix: a fault at a random place of an installation, and what must hold once it is over."""
import hashlib
import random
import re
import subprocess
import time
from dataclasses import dataclass, field

from faults import machine as machines, site as sites

ARCHIVE, PLAIN = "a.zip", "b.dat"
TARGETS = ("archive", "plain")
TEMPORARY, GAMES = "C:\\matrix\\temporary", "C:\\matrix\\games"
PROGRAM_FOLDER = "C:\\program"
PROGRAM_FILE = "FaultMatrix.exe"
PROGRAM = PROGRAM_FOLDER + "\\" + PROGRAM_FILE

CLOSE_LIMIT = 5  # seconds that a process may take to end
TWICE_LIMIT = 0.02  # of the bytes; again for each time that the process was killed while they came
CHUNK = 4096  # bytes that the program reads at once; a reset destroys one that is not full
# Bytes that have arrived, and may not yet have been read: in the system's buffer, in one TLS record, in one read.
UNREAD = machines.RECEIVE_BUFFER + sites.PIECE + CHUNK
MOST_BOXES = 10
RETRYABLE = {12002, 12007, 12029, 12030, 12031}


class Broken(Exception):
    """A promise that was not kept."""


@dataclass
class Result:
    kind: str
    index: int
    asked: bool = False  # a box said why, or the player started the program again
    kills: int = 0
    wine: str = ""  # the assertion with which a library of Wine has ended the process
    closings: list = field(default_factory=list)  # seconds from the request to close until the process had ended
    twice: float = 0.0  # share of the packages' bytes that were carried more than once
    failure: str = ""
    story: list = field(default_factory=list)  # what happened, for whoever looks into a failure
    seconds: float = 0.0


class Point:
    """Kinds set it up: they change the site and the machine, and say when more is to happen."""

    def __init__(self, equipment, kind, seed, index):
        self.machine, self.site, self.player = equipment.machine, equipment.site, equipment.player
        self.packages, self.program, self.patience = equipment.packages, equipment.program, equipment.patience
        self.kind = kind
        self.rng = random.Random(f"{seed}/{kind.name}/{index}")
        self.result = Result(kind.name, index)
        self.temporary, self.games = kind.temporary, kind.games
        self.arguments = f"install:{ARCHIVE},{PLAIN} source:main"
        self.free_folders = [self.machine.program_data]  # where it may write beside them
        self.before_start = lambda: None
        self.moments = []  # (condition, action): what is to happen while the program runs
        self.begin = self.started = 0.0
        self.scheme, self.mirrored = "http", False
        self.warned = False  # by a box, since the program was started
        self.boxes = 0
        self.stored = dict.fromkeys(TARGETS, 0)  # how long each file has been at most

    # --- For the kinds

    def note(self, text):
        self.result.story.append(f"{time.monotonic() - self.begin:6.2f} {text}")

    def fault(self, target, acts, standing=False, host=None):
        self.site.faults.append(sites.Fault(target, acts, standing, host))

    def when_carried(self, count, action):
        """Once so many bytes of files have left the server."""
        self.moments.append((lambda: self.site.total() >= count, action))

    def after(self, seconds, action):
        due = time.monotonic() + seconds
        self.moments.append((lambda: time.monotonic() >= due, action))

    def somewhen(self, action):
        """At a random moment of the run: by the clock, or in the middle of the transfers."""
        if self.rng.random() < 0.3:
            wait = self.rng.uniform(0, 1.5)
            self.moments.append((lambda: time.monotonic() >= self.started + wait, action))
        else:
            self.when_carried(self.rng.randint(1, self.package_bytes()), action)

    def package_bytes(self):
        return self.packages.size()

    def mend(self):
        """The fault is over."""
        self.machine.heal()
        self.site.mend()
        self.player.must("release")

    def leave_part(self, target, share):
        """What an earlier run would have left of a package."""
        name, content = self.packages.file(target)
        length = int(share * len(content))
        file = self.machine.path(f"{self.temporary}\\{name}")
        file.write_bytes(content[:length])
        file.with_name(name + ".stat").write_text(f"{len(content)}|{hashlib.md5(content).hexdigest()}")
        self.site.carried.setdefault(target, []).append([0, length])

    def offer(self):
        self.site.offer(sites.REPOSITORY, "manifest", self.packages.manifest(self.scheme, self.mirrored))
        for target in TARGETS:
            name, content = self.packages.file(target)
            self.site.offer("/packages/" + name, target, content)
            self.site.offer("/mirror/" + name, target, content)

    # --- The story of a point

    def run(self):
        self.begin = time.monotonic()
        try:
            self.set_up()
            before = self.machine.snapshot(*self.own_folders())
            self.start()
            self.kind.run(self)
            self.compare(before)
        except (Broken, OSError, RuntimeError, subprocess.SubprocessError) as broken:
            self.result.failure = f"{'' if isinstance(broken, Broken) else 'the matrix itself: '}{broken}"
            self.tell_more()
        finally:
            self.player.step("kill")
            self.mend()
            self.site.hang_up()
        self.result.seconds = time.monotonic() - self.begin
        return self.result

    def set_up(self):
        self.site.hang_up()
        self.site.clear()
        self.site.listen()
        self.machine.heal()
        self.machine.empty_disks()
        self.scheme = self.rng.choice(("http", "https"))
        self.mirrored = self.rng.random() < 0.4
        for folder in (self.temporary, self.games):
            self.machine.empty(folder)
        self.offer()
        self.player.must("set", "LastInstallPath", self.games)
        self.player.must("set", "LastTmpPath", self.temporary)
        self.kind.set_up(self)
        if self.kind.may_close and self.rng.random() < 0.3:
            self.somewhen(self.close_and_start_again)

    def own_folders(self):
        return self.temporary, self.games, *self.free_folders

    def start(self):
        self.before_start()
        self.note("start")
        self.warned = False
        self.player.must("start", PROGRAM, self.arguments)
        self.started = time.monotonic()

    def do_what_is_due(self):
        for moment in [moment for moment in self.moments if moment[0]()]:
            self.moments.remove(moment)
            moment[1]()

    def attend(self, until):
        """Does what a player does until `until`, which is given each event, is content."""
        deadline = time.monotonic() + self.patience
        while time.monotonic() < deadline:
            self.do_what_is_due()
            self.note_stored()
            event = self.player.watch(25)
            if event[0] == "box":
                self.answer(*event[1:])
            elif event[0] == "exited" and self.ended_by_wine():
                self.start()
            elif until(event):
                return
        raise Broken("it neither ends nor asks")

    def ended_by_wine(self):
        """Whether a library of Wine has given up; to the installation that is one more way to be killed."""
        assertion = self.player.failed_assertion()
        if not assertion:
            return False
        self.note(assertion)
        self.result.wine = assertion
        self.result.kills += 1
        return True

    def attend_installation(self):
        """Until everything is installed."""

        def installed(event):
            if event[0] == "exited":
                raise Broken(f"it ended by itself with {event[1]}")
            if event[0] != "ended":
                return False
            if self.machine.tree(self.games) == self.packages.expected:
                return True
            if not self.warned:
                raise Broken(f"the installation {event[1]} without a word, but what is installed isn't right")
            self.close_and_start_again()
            return False

        self.attend(installed)

    def answer(self, caption, text):
        self.note(f"[{caption}] {text!r}")
        if not text.strip():
            raise Broken("a box without a word")
        self.result.asked = self.warned = True
        self.boxes += 1
        if self.boxes > MOST_BOXES:
            raise Broken("it asks again and again")
        if self.kind.no_room:
            self.forget_unkept({})
        self.mend()
        if "try again?" in text:
            self.player.step("answer", "yes")
        elif "Fix permissions?" in text or "Open?" in text:
            self.player.step("answer", "no")
        else:
            self.player.step("answer", "ok")
        code = re.match(r"Error: (\d+)\n", text)
        if caption == "Manifest" and "Fix" not in text and not (code and int(code[1]) in RETRYABLE):
            # Without a list there is nothing to install until the program is started once more.
            self.close_and_start_again()

    def close_and_start_again(self):
        arrived = {target: self.site.arrived(target) for target in TARGETS}
        self.close()
        self.check_kept(arrived)
        self.forget_unkept({} if self.kind.no_room else arrived)
        self.mend()
        self.start()

    def forget_unkept(self, arrived):
        """What came after that much of the files had arrived counts only if it was stored: Wine reads on when a
        transfer is given up."""
        self.site.hang_up()
        self.site.mended.clear()
        self.note_stored()
        for target in TARGETS:
            self.site.trim(target, max(self.stored[target], arrived.get(target, 0)))

    def note_stored(self):
        for target in TARGETS:
            self.stored[target] = max(self.stored[target], self.size(target))

    def size(self, target):
        """Of what is there of the package."""
        try:
            return self.machine.path(f"{self.temporary}\\{self.packages.file(target)[0]}").stat().st_size
        except FileNotFoundError:
            return 0

    def kill_and_start_again(self, meanwhile=lambda: None):
        self.note("kill")
        self.result.kills += 1
        self.player.must("kill")
        meanwhile()
        self.start()

    def close(self):
        """As a player does: once, and whatever asks meanwhile is answered with no."""
        self.note("close")
        begin = time.monotonic()
        asked = self.player.step("close")[0] == "ok"
        while (event := self.player.watch(10))[0] != "exited":
            if time.monotonic() > begin + 4 * CLOSE_LIMIT:
                raise Broken("it can't be closed")
            if event[0] == "box":
                self.note(f"[{event[1]}] {event[2]!r}")
                self.player.step("answer", "no" if event[2].endswith("?") else "ok")
            if not asked:
                asked = self.player.step("close")[0] == "ok"
        seconds = max(0.0, time.monotonic() - begin - int(event[2]) / 1000)
        self.note(f"closed after {seconds:.2f} s")
        self.result.closings.append(seconds)
        if seconds > CLOSE_LIMIT:
            raise Broken(f"closing took {seconds:.1f} s")

    # --- What must hold

    def check_kept(self, arrived):
        """What had arrived before the program was asked to close is in its files."""
        if self.kind.destroys or self.kind.no_room or self.result.kills:
            return
        for target in TARGETS:
            lost = arrived[target] - self.size(target)
            self.note(f"{target}: {lost} of {arrived[target]} bytes lost")
            if lost > UNREAD:
                raise Broken(f"{lost} bytes of {target} were lost by closing it")

    def check_installation(self):
        if self.machine.tree(self.games) != self.packages.expected:
            raise Broken("what is installed isn't right")
        allowed = {ARCHIVE, PLAIN, ARCHIVE + ".stat", PLAIN + ".stat", "manifest.xml"}
        temporary = self.machine.tree(self.temporary)
        if strange := set(temporary) - allowed:
            raise Broken(f"left in the temporary folder: {strange}")
        for target in TARGETS:
            name, content = self.packages.file(target)
            if temporary.get(name) != content:
                raise Broken(f"{name} isn't right")
        self.close()
        self.site.hang_up()
        self.result.twice = self.site.twice(TARGETS) / self.package_bytes()
        resets = sum(self.site.resets_in_body[target] for target in TARGETS) * CHUNK / self.package_bytes()
        if not self.kind.destroys and self.result.twice > TWICE_LIMIT * max(1, self.result.kills) + resets:
            raise Broken(f"{100 * self.result.twice:.1f} % of the bytes were carried twice")

    def compare(self, before):
        after = self.machine.snapshot(*self.own_folders())
        if before != after:
            changed = [path for path in before.keys() | after.keys() if before.get(path) != after.get(path)]
            raise Broken(f"written elsewhere: {sorted(changed)[:5]}")

    def tell_more(self):
        asked = self.site.requests
        self.result.story += [f"carried: {self.site.carried}"[:1000], f"asked for {len(asked)}: " + ", ".join(asked[-30:]), *self.player.log()[-25:]]
