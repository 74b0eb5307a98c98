"""Rows about what is seen: from power-on to the logo, and every screen on the frame buffer."""

import os

from unit import Failed, require, wait_for
import picture
import tour


def accepted(unit):
    return tour.Accepted(unit.bench.source)


def first_light(unit):
    """From power-on: dark, then the logo, and nothing else."""
    logo = accepted(unit).load("start")
    dark = [[(0, 0, 0)] * picture.WIDTH] * picture.HEIGHT

    def logo_shows():
        try:
            rows = unit.picture()
        except ValueError:  # the display is not set up yet
            return False
        if rows not in (dark, logo):
            picture.write_png(os.path.join(unit.bench.folder, "first-light.png"), rows)
            raise Failed("neither dark nor the logo, see first-light.png")
        return rows == logo
    wait_for(logo_shows, 120 * unit.bench.patience, "no logo")
    return f"logo after {unit.seconds_on():.1f} s"


def microseconds(unit, field, service):
    return int(unit.show(field, service))


def boot_times(unit):
    """The panel comes before the network, and its own share of the boot is small."""
    unit.waits_until("systemctl is-system-running | grep -qx running", 120, "the boot does not end")
    started = microseconds(unit, "ExecMainStartTimestampMonotonic", "vireo")
    ready = microseconds(unit, "ActiveEnterTimestampMonotonic", "vireo")
    network = microseconds(unit, "ExecMainStartTimestampMonotonic", "unit-network")
    require(started < network, "the network starts before the panel")
    manager = microseconds(unit, "UserspaceTimestampMonotonic", "")
    return (f"kernel {manager / 1e6:.1f} s, service manager {(started - manager) / 1e6:.1f} s, "
            f"panel {(ready - started) / 1e6:.1f} s, its share {100 * (ready - started) // ready} %")


def frame_buffer(unit):
    pictures = accepted(unit)
    return tour.play(unit, unit.picture, lambda name, rows: pictures.compared(name, rows)
                     == pictures.compared(name, pictures.load(name)))


def wait_notice(unit):
    """While the network restarts, the notice that says so is seen."""
    pictures = accepted(unit)
    wanted = pictures.compared("setup-waiting", pictures.load("setup-waiting"))
    unit.told("device ir", "key long-select", "wait 100", "enc 2", "key select", "wait 4000", "expect setup")
    choice = ("enc 1", "enc -1")["<dhcp>no" in unit.must("cat /opt/orvane/conf/network.xml")]
    with unit.supervisor(f"key select\n{choice}\nkey select"):
        wait_for(lambda: pictures.compared("setup-waiting", unit.picture()) == wanted, 15 * unit.bench.patience,
                 "no notice on the display")


def unload_display(unit):
    unit.must("systemctl stop vireo; for c in /sys/class/vtconsole/*; do "
              "grep -q 'frame buffer' $c/name && echo 0 >$c/bind; done; modprobe -r virtio_gpu")


def late_display(unit):
    """Without a display the panel tries again and again; when one comes, the logo is there."""
    unload_display(unit)
    unit.do("systemctl start --no-block vireo")
    unit.waits_until("journalctl -u vireo -o cat | grep -q 'no display'", 60, "no word about the missing display")
    unit.must("modprobe virtio_gpu")
    logo = accepted(unit).load("start")
    wait_for(lambda: shows(unit, logo), 60 * unit.bench.patience, "no logo after the display came")


def shows(unit, rows):
    try:
        return unit.picture() == rows
    except ValueError:
        return False
