"""Rows about a USB stick with music that comes and goes."""

import os
import subprocess

from service import answers, process
from unit import require, wait_for
import picture

MOUNT = "/srv/stick"


def make_stick(bench):
    """A disk as people bring it, and the same files where the supervisor sees them."""
    image, folder = bench.stick, bench.stick_folder
    music = os.path.join(bench.source, "tools/demo-unit/music")
    subprocess.run(["sh", "-ec", 'rm -rf "$1" "$2"; mkdir -p "$2"; cp "$3"/*.mp3 "$3"/*.flac "$3"/evening/*.ogg "$2"; '
                    'truncate -s 40M "$1"; mkfs.vfat "$1" >/dev/null; mcopy -i "$1" "$2"/* ::',
                    "sh", image, folder, music], check=True)


def plug_in(unit):
    unit.machine.plug_in(unit.bench.stick)
    unit.waits_until("test -b /dev/sda", 30, "the stick is not found")
    unit.must(f"mkdir -p {MOUNT} && mount -o ro,iocharset=ascii /dev/sda {MOUNT}")


def pull_out(unit):
    unit.machine.pull_out()
    unit.waits_until("test ! -b /dev/sda", 30, "the stick is still there")
    unit.do(f"umount -l {MOUNT}")


def pulled_while_playing(unit):
    """The track on the stick shows its tags and cover; without the stick the panel goes on."""
    before = process(unit)
    plug_in(unit)
    wanted = picture.read_png(os.path.join(unit.bench.source, "tests/pictures/expected/unifont-15.0.01/player-playing.png"))
    unit.told("device aoe", "device usb", "disk-state normal", "disk 4 2", "mode all", f"file {MOUNT}/morning-corridor.mp3",
              "time 0:00:07", "level 200")
    wait_for(lambda: unit.picture() == wanted, 20 * unit.bench.patience, "the track does not show")
    pull_out(unit)
    unit.told(f"file {MOUNT}/sunset-walk.flac", "disk-state removed")
    answers(unit)
    require(process(unit) == before, "the panel went")


def pulled_while_reading(unit):
    """The stick becomes slow and goes while the panel reads a file from its first page to its last."""
    before = process(unit)
    plug_in(unit)
    # The folder is read again at once, so that opening the file does not wait for the slow stick.
    unit.must(f"sync; echo 3 >/proc/sys/vm/drop_caches; ls -l {MOUNT}")
    unit.machine.slow_down(bytes_a_second=1024)
    with unit.supervisor(f"device usb\ndisk-state normal\nfile {MOUNT}/quiet-hall.ogg"):
        unit.waits_until(f"ls -l /proc/{before}/fd | grep -q {MOUNT}", 20, "the panel does not read")
        pull_out(unit)
    answers(unit)
    require(process(unit) == before, "the panel went")
