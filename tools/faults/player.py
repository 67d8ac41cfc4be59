"""The hands at the installer's window: one Windows program that stays, and takes steps from here."""
import re
import selectors
import subprocess

ANSWER_LIMIT = 60


class Player:
    def __init__(self, attendant, complaints):
        """`complaints` is the path of a file for what Wine has to say about itself."""
        self.complaints = complaints
        self.heard = 0
        with open(complaints, "wb") as errors:
            self.process = subprocess.Popen(["wine", attendant], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                            stderr=errors)
        self.selector = selectors.DefaultSelector()
        self.selector.register(self.process.stdout, selectors.EVENT_READ)

    def step(self, *parts):
        """What the step answered, in its parts."""
        self.process.stdin.write(("\t".join(map(str, parts)) + "\n").encode())
        self.process.stdin.flush()
        if not self.selector.select(ANSWER_LIMIT):
            raise RuntimeError(f"the attendant doesn't answer: {parts}")
        line = self.process.stdout.readline().decode().rstrip("\r\n")
        return [part.replace("\\n", "\n") for part in line.split("\t")]

    def must(self, *parts):
        answer = self.step(*parts)
        if answer != ["ok"]:
            raise RuntimeError(f"{parts}: {answer}")

    def watch(self, milliseconds):
        return self.step("watch", milliseconds)

    def log(self):
        return self.step("log")[0].splitlines()

    def failed_assertion(self):
        """What a library of Wine has asserted in vain since this was last asked; empty when none has."""
        text = self.complaints.read_text("utf-8", "replace")
        found = re.findall(r"Assertion failed: .* file dlls/.*", text[self.heard:])
        self.heard = len(text)
        return found[-1] if found else ""

    def leave(self):
        self.process.stdin.close()
        self.process.wait(10)
