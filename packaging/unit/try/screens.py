"""Rows about what is seen: from power-on to the logo, and every screen on the frame buffer."""

import base64
import contextlib
import os

from machine import is_fast
from service import answers
from unit import Absent, Failed, Unit, require, wait_for
import picture
import tour

LARGEST_SHARE = 0.1  # of the time from the kernel's first moment to where the panel is ready
# The unit's clock goes on by 2^3 ns for each instruction, so that it does not matter what else this machine does.
INSTRUCTIONS_COUNTED = ["-icount", "shift=3", "-smp", "1"]


def accepted(unit):
    return tour.Accepted(unit.bench)


def first_light(unit):
    """From power-on: dark, then the logo, and nothing else. Returns the seconds until then."""
    logo = accepted(unit).load("start")
    dark = [[(0, 0, 0)] * picture.WIDTH] * picture.HEIGHT

    def logo_shows():
        now = unit.seconds_on()
        try:
            rows = unit.picture()
        except ValueError:  # the display is not set up yet
            return None
        if rows not in (dark, logo):
            picture.write_png(os.path.join(unit.bench.folder, "first-light.png"), rows)
            raise Failed("neither dark nor the logo, see first-light.png")
        return now if rows == logo else None
    return wait_for(logo_shows, 120 * unit.bench.patience, "no logo")


def seconds(unit, field, service):
    return int(unit.show(field, service)) / 1e6


def started(unit, service):
    return seconds(unit, "ExecMainStartTimestampMonotonic", service)


def wait_for_boot(unit):
    unit.wait_for_hands()
    unit.waits_until("systemctl is-system-running | grep -qx running", 120, "the boot does not end")


def boot(unit):
    """The logo is the first thing that is seen, and the panel comes before the network."""
    light = first_light(unit)
    wait_for_boot(unit)
    require(started(unit, "vireo") < started(unit, "unit-network"), "the network starts before the panel")
    return f"logo after {light:.1f} s"


def share(bench):
    """Little of a boot is the panel's own: from where the service manager starts it to where it is ready, just before the logo."""
    counted = [] if is_fast(bench.arch) else INSTRUCTIONS_COUNTED
    with Unit(bench, bench.new_disk(), more=counted) as unit:
        wait_for_boot(unit)
        manager, panel = seconds(unit, "UserspaceTimestampMonotonic", ""), started(unit, "vireo")
        ready = seconds(unit, "ActiveEnterTimestampMonotonic", "vireo")
    told = f"kernel {manager:.1f} s, service manager {panel - manager:.1f} s, panel {ready - panel:.1f} s: {1 - panel / ready:.1%}"
    require(ready - panel <= LARGEST_SHARE * ready, told)
    return told


def frame_buffer(unit):
    unit.must(RESTART)
    answers(unit)
    return tour.play(unit, unit.picture, accepted(unit).is_right)


def wait_notice(unit):
    """While the network restarts, the notice that says so is seen."""
    pictures = accepted(unit)
    unit.told("device ir", "key long-select", "wait 100", "enc 2", "key select", "wait 4000", "expect setup")
    choice = ("enc 1", "enc -1")["<dhcp>no" in unit.must("cat /opt/orvane/conf/network.xml")]
    with tour.settings_kept(unit):
        with unit.supervisor(f"key select\n{choice}\nkey select"):
            wait_for(lambda: pictures.is_right("setup-waiting", unit.picture()), 15 * unit.bench.patience,
                     "no notice on the display")
        wait_for(lambda: unit.say("expect setup")[0], 60 * unit.bench.patience, "the panel waits for ever")


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


DROP_IN = "/run/systemd/system/vireo.service.d/try.conf"
# Not all displays have a name that the panel's start could wait for.
RESTART = "systemctl --job-mode=ignore-dependencies restart vireo"


@contextlib.contextmanager
def other_display(unit, *lines):
    """The panel on another display."""
    restart = f"systemctl daemon-reload && {RESTART}"
    unit.must(f"mkdir -p $(dirname {DROP_IN}); printf '%s\\n' '[Service]' {' '.join(map(repr, lines))} >{DROP_IN}; {restart}")
    try:
        yield
    finally:
        unit.must(f"rm {DROP_IN}; {restart}")


def virtual_frame_buffer(unit):
    """16 bits a pixel, on the kernel's frame buffer in memory."""
    if unit.do("modprobe -d /try -n vfb")[0] != 0:
        raise Absent("this kernel has no frame buffer in memory")
    unit.must("modprobe -d /try vfb vfb_enable=1 mode_option=320x240-16@60 videomemorysize=1048576")
    unit.waits_until("test -e /dev/fb1", 30, "no second frame buffer")
    require(unit.must("cat /sys/class/graphics/fb1/bits_per_pixel") == "16", "not 16 bits a pixel")
    stride = int(unit.must("cat /sys/class/graphics/fb1/stride"))
    pictures = accepted(unit)

    def take():
        data = unit.must(f"head -c {stride * picture.HEIGHT} /dev/fb1 | base64 -w0")
        return picture.rows_of_565(base64.b64decode(data), stride)
    with other_display(unit, "Environment=QT_QPA_PLATFORM=linuxfb:fb=/dev/fb1:tty=/dev/null:nographicsmodeswitch"):
        return tour.play(unit, take, pictures.is_coarse)


def load_display(unit, emulation):
    unload_display(unit)
    unit.must(f"modprobe -r drm_kms_helper; modprobe drm_kms_helper fbdev_emulation={emulation}; modprobe virtio_gpu")
    unit.waits_until("test -e /dev/dri/card0", 30, "no display")


def direct_rendering(unit):
    """The kernel's display without the emulation of a frame buffer."""
    load_display(unit, emulation=0)
    require(unit.do("test -e /dev/fb0")[0] != 0, "there is a frame buffer")
    with other_display(unit, "Environment=QT_QPA_FB_DRM=1", "Environment=QT_QPA_PLATFORM=linuxfb", "DeviceAllow=char-drm rw"):
        try:
            return frame_buffer(unit)
        finally:
            load_display(unit, emulation=1)
