"""What is installed: an archive and a plain file that no compression makes smaller."""
import hashlib
import io
import random
import zipfile

from faults.site import HOST, MIRROR

TIME = (2020, 1, 1, 0, 0, 0)
ENTRIES = {"readme.txt": 3_000, "data/one.bin": 2_000_000, "data/two.bin": 1_200_000, "data/deep/er/three.bin": 200_000}
PLAIN_SIZE = 1_600_000


class Packages:
    def __init__(self):
        rng = random.Random(1)
        entries = {name: rng.randbytes(size) for name, size in ENTRIES.items()}
        buffer = io.BytesIO()
        with zipfile.ZipFile(buffer, "w", zipfile.ZIP_DEFLATED) as archive:
            for name, content in entries.items():
                archive.writestr(zipfile.ZipInfo(name, TIME), content, zipfile.ZIP_DEFLATED)
        self.files = {"archive": ("a.zip", buffer.getvalue()), "plain": ("b.dat", rng.randbytes(PLAIN_SIZE))}
        self.unpacked = sum(ENTRIES.values())
        self.expected = {"Archive/" + name: content for name, content in entries.items()}
        self.expected["Plain/b.dat"] = self.files["plain"][1]

    def file(self, target):
        return self.files[target]

    def size(self):
        return sum(len(content) for _, content in self.files.values())

    def manifest(self, scheme, mirrored, updater=""):
        """The packages are on the main source, and on another one, too, when they are `mirrored`."""
        packages = (self.package("archive", "Archive", scheme, mirrored, self.unpacked, "application/x-zip-compressed") +
                    self.package("plain", "Plain", scheme, mirrored, PLAIN_SIZE, ""))
        return (f'<downloader>{updater}<sources default="main"><source key="main" title="Main"/>'
                f'<source key="other" title="Other"/></sources><packages>{packages}</packages></downloader>').encode()

    def package(self, target, name, scheme, mirrored, unpacked, filetype):
        filename, content = self.files[target]
        sources = f'<source key="main" url="{scheme}://{HOST}/packages/{filename}"/>'
        if mirrored:
            sources += f'<source key="other" url="{scheme}://{MIRROR}/mirror/{filename}"/>'
        return (f'<package><title>{name}</title><name value="{name}"/><filename value="{filename}"/>'
                f'<filetype value="{filetype}"/><md5 value="{hashlib.md5(content).hexdigest()}"/>'
                f'<size value="{len(content)}"/><upsize value="{unpacked}"/><sources>{sources}</sources></package>')
