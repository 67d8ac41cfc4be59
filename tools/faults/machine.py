"""The computer that the installer runs on: a Wine prefix in a private network, with disks and a cable that can fail."""
import os
import shutil
import socket
import subprocess
import time
from pathlib import Path

# The private network's own.
HOSTS = Path("/etc/hosts")
RECEIVE_BUFFERS = Path("/proc/sys/net/ipv4/tcp_rmem")
RECEIVE_BUFFER = 8 * 1024
SEND_BUFFERS = Path("/proc/sys/net/ipv4/tcp_wmem")
NAMESERVER = ("127.0.0.1", 53)
# Where the system keeps lists of its own about every request, beside what programs let it keep.
SYSTEM_LISTS = "users/*/AppData/Local/Microsoft/Windows/*/index.dat"
ROOMY = 64 * 1024 * 1024


class Machine:
    def __init__(self, drive):
        self.drive = drive
        self.names = HOSTS.read_bytes()
        user = next(folder.name for folder in (drive / "users").iterdir() if folder.name != "Public")
        self.program_data = f"C:\\users\\{user}\\AppData\\Roaming\\Zendora\\Installer"
        # What is on its way to a process that is ended is lost. It is little on a real line; here it could be megabytes.
        RECEIVE_BUFFERS.write_bytes(b"4096 %d %d" % (RECEIVE_BUFFER, RECEIVE_BUFFER))
        # Whoever sends to somebody who doesn't read has to notice it.
        SEND_BUFFERS.write_bytes(b"4096 4096 4096")
        self.nameserver = None
        subprocess.run(["ip", "link", "set", "lo", "mtu", "1500"], check=True)

    def path(self, windows_path):
        """Where a path such as C:\\folder\\file is here."""
        return self.drive / windows_path[len("C:\\"):].replace("\\", "/")

    def heal(self):
        """Nothing is wrong with it any more."""
        self.connect()
        self.name_hosts()
        self.resize_disk(ROOMY)
        self.protect_disk(False)

    def empty_disks(self):
        for disk in ("full", "locked"):
            for entry in (self.drive / disk).iterdir():
                if entry.is_dir():
                    shutil.rmtree(entry)
                else:
                    entry.unlink()

    def empty(self, folder):
        """Makes a folder, or empties it."""
        shutil.rmtree(self.path(folder), ignore_errors=True)
        self.path(folder).mkdir(parents=True)

    # --- Network

    def switch(self, out):
        link = self.drive / "link"
        if out:
            (link / "down").touch()
        else:
            (link / "down").unlink(missing_ok=True)
        while (link / "is-down").exists() != out:
            time.sleep(0.01)

    def disconnect(self):
        self.switch(True)

    def connect(self):
        self.switch(False)

    def forget_names(self, known=""):
        """All but this one."""
        HOSTS.write_bytes(f"127.0.0.1 localhost {known}\n".encode())

    def hush_nameserver(self, known):
        """Questions for other names than this one arrive, and are never answered."""
        self.nameserver = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.nameserver.bind(NAMESERVER)
        self.forget_names(known)

    def name_hosts(self):
        if self.nameserver:
            self.nameserver.close()
            self.nameserver = None
        if HOSTS.read_bytes() != self.names:
            HOSTS.write_bytes(self.names)

    # --- Disks

    def remount(self, disk, options):
        subprocess.run(["mount", "-o", "remount," + options, self.drive / disk], check=True)

    def resize_disk(self, size):
        """Of C:\\full, in bytes."""
        self.remount("full", f"size={size}")

    def protect_disk(self, protected):
        """Of C:\\locked: whether it can be read only."""
        self.remount("locked", "ro" if protected else "rw")

    # --- What was written

    def snapshot(self, *left_out):
        """Size and time of everything on drive C: outside some folders."""
        skipped = {self.path(folder) for folder in (*left_out, "C:\\link")} | set(self.drive.glob(SYSTEM_LISTS))
        found = {}
        folders = [self.drive]
        while folders:
            with os.scandir(folders.pop()) as entries:
                for entry in entries:
                    path = Path(entry.path)
                    if path in skipped:
                        continue
                    info = entry.stat(follow_symlinks=False)
                    if entry.is_dir(follow_symlinks=False):
                        folders.append(entry.path)
                        found[entry.path] = ()
                    else:
                        found[entry.path] = (info.st_size, info.st_mtime_ns, info.st_ino)
        return found

    def tree(self, folder):
        """The files below a folder, by relative path, with their bytes."""
        top = self.path(folder)
        return {str(file.relative_to(top)): file.read_bytes() for file in sorted(top.rglob("*")) if file.is_file()}
