"""Boots a unit to look at: show.py ARCH SOURCE [FOLDER]. With a folder it takes a picture of each screen into it; without, the
emulator's window is the unit's display and the stand-in supervisor's window stands beside it."""

import os
import subprocess
import sys

from machine import PANEL_PORT, Machine
import picture
import stick
import tour
from unit import Bench, Failed, Unit, wait_for


def take_pictures(bench, folder):
    os.makedirs(folder, exist_ok=True)
    hands = os.path.join(os.path.dirname(os.path.abspath(__file__)), "hands.sh")
    subprocess.run([hands, bench.image, os.path.join(bench.folder, "try.disk")], check=True)
    accepted = tour.Accepted(bench)

    def save_if_right(name, rows):
        picture.write_png(os.path.join(folder, name + ".png"), rows)
        return accepted.is_right(name, rows)
    with Unit(bench, bench.new_disk()) as unit:
        unit.wait_for_hands()
        wait_for(lambda: unit.say("request")[0], 120 * bench.patience, "the panel does not answer")
        print(f"{tour.play(unit, unit.picture, save_if_right)} in {folder}")


def show(bench):
    disk = os.path.join(bench.folder, "disk")
    subprocess.run(["cp", "--sparse=always", os.path.join(bench.image, "disk"), disk], check=True)
    machine = Machine(bench.arch, bench.image, disk, port=PANEL_PORT, display="gtk,zoom-to-fit=off,show-menubar=off")
    machine.power_on()
    print("The unit boots; close a window or press Ctrl-C to pull its plug.")
    with bench.beside_the_unit([bench.supervisor, "--music", "/srv/music"]) as supervisor:
        try:
            while machine.is_on() and supervisor.poll() is None:
                try:
                    supervisor.wait(0.5)
                except subprocess.TimeoutExpired:
                    pass
        except KeyboardInterrupt:
            pass
        supervisor.terminate()
    if machine.is_on():
        machine.pull_plug()


def main(arch, source, folder=None):
    bench = Bench(arch, source, float(os.environ.get("PATIENCE", "1")), "show")
    stick.make_stick(bench)
    if folder:
        take_pictures(bench, folder)
    else:
        show(bench)


if __name__ == "__main__":
    try:
        main(*sys.argv[1:])
    except Failed as reason:
        sys.exit(f"unit: {reason}")
