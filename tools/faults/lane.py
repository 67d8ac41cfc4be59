"""One machine on which points are tried one after the other. Runs inside the private network, started by the matrix."""
import dataclasses
import json
import os
import shutil
import sys
import tempfile
from dataclasses import dataclass
from pathlib import Path

from faults import point as points
from faults.kinds import KINDS
from faults.machine import Machine
from faults.packages import Packages
from faults.player import Player
from faults.site import Site


@dataclass
class Equipment:
    machine: Machine
    site: Site
    player: Player
    packages: Packages
    program: bytes
    patience: float  # seconds that a point may take


def serve(build, program, patience):
    """Tries the points that standard input names, "KIND SEED INDEX", and prints what became of each as JSON."""
    machine = Machine(Path(os.environ["WINEPREFIX"]) / "drive_c")
    folder = machine.path(points.PROGRAM_FOLDER)
    folder.mkdir()
    kinds = {kind.name: kind for kind in KINDS}
    work = build.parent / "work"  # ./test removes what a killed lane leaves there
    work.mkdir(exist_ok=True)
    with tempfile.TemporaryDirectory(prefix="lane.", dir=work) as folder_of_lane:
        player = Player(build / "attend_installer.exe", Path(folder_of_lane) / "complaints")
        equipment = Equipment(machine, Site(folder_of_lane), player, Packages(), program.read_bytes(), patience)
        for line in sys.stdin:
            kind, seed, index = line.split()
            shutil.rmtree(folder)
            folder.mkdir()
            machine.path(points.PROGRAM).write_bytes(equipment.program)
            result = points.Point(equipment, kinds[kind], seed, int(index)).run()
            print(json.dumps(dataclasses.asdict(result)), flush=True)
        player.leave()
