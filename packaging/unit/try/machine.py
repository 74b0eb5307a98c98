"""The emulator: a unit with a 320x240 display, two networks and one disk, and the hands that plug and pull."""

import json
import os
import platform
import shutil
import socket
import subprocess
import time

# What differs between processors: emulator, processor model and whether this machine can run it by itself.
MACHINES = {
    "amd64": ("qemu-system-x86_64", ["-M", "q35", "-vga", "none"], "x86_64"),
    "arm64": ("qemu-system-aarch64", ["-M", "virt"], "aarch64"),
    "armhf": ("qemu-system-arm", ["-M", "virt,highmem=off"], "armv7l"),
}
EMULATED_PROCESSOR = {"amd64": "max", "arm64": "max,pauth-impdef=on", "armhf": "cortex-a15"}

# Quiet from the first line: the picture is the first thing that people see.
QUIET = "quiet loglevel=0 systemd.show_status=false vt.global_cursor_default=0 consoleblank=0 net.ifnames=0"

# The unit's own network, where its address is what network.xml says, and the cable to the desk.
UNIT_NETWORK = "user,id=unit,restrict=on,net=192.0.2.0/24,host=192.0.2.1,dns=192.0.2.53,dhcpstart=192.0.2.100"
DESK_NETWORK = "user,id=desk,restrict=on,net=198.51.100.0/24,host=198.51.100.1,dhcpstart=198.51.100.50"
PANEL_PORT = 5000
LONGEST_ANSWER = 300  # seconds; an emulator that takes longer hangs


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def is_fast(arch):
    """Whether this machine's own processor runs the unit. It does when it is told to, as not every /dev/kvm holds what
    it promises."""
    return platform.machine() == MACHINES[arch][2] and os.environ.get("ACCEL") == "kvm"


class Machine:
    """A unit's hardware. `folder` holds kernel and initrd; `port` of this desk leads to the panel. With `frozen` it does not
    boot but goes on where freeze() left the same hardware."""

    def __init__(self, arch, folder, disk, port=None, append="", more=(), display="none", frozen=None):
        self.port = port or free_port()
        self.foreign_port = free_port()
        self.control = os.path.join(os.path.dirname(disk), "control")
        self.arch = arch
        self.process = None
        emulator, machine, _ = MACHINES[arch]
        processor = "host" if is_fast(arch) else EMULATED_PROCESSOR[arch]
        forward = f",hostfwd=tcp:127.0.0.1:{self.port}-198.51.100.2:{PANEL_PORT}"
        foreign = f",hostfwd=tcp:127.0.0.1:{self.foreign_port}-192.0.2.42:{PANEL_PORT}"
        self.command = [
            emulator, *machine, "-accel", "kvm" if is_fast(arch) else "tcg", "-cpu", processor,
            "-smp", "2", "-m", "512", "-nodefaults", "-no-reboot", "-display", display,
            "-kernel", f"{folder}/kernel", "-initrd", f"{folder}/initrd",
            "-append", f"root=/dev/vda {QUIET} {append}",
            "-device", "virtio-gpu-pci,xres=320,yres=240",
            "-drive", f"file={disk},format=raw,if=none,id=disk", "-device", "virtio-blk-pci,drive=disk",
            "-netdev", UNIT_NETWORK + foreign, "-device", "virtio-net-pci,netdev=unit,romfile=,mac=02:00:5e:10:00:2a",
            "-netdev", DESK_NETWORK + forward, "-device", "virtio-net-pci,netdev=desk,romfile=,mac=02:00:5e:10:00:2b",
            "-device", "qemu-xhci,id=usb", "-qmp", f"unix:{self.control},server=on,wait=off", *more,
            *(["-incoming", f"exec:cat '{frozen}'"] if frozen else []),
        ]

    def power_on(self):
        if not shutil.which(self.command[0]):
            raise SystemExit(f"unit: {self.command[0]} is missing; tools/setup.sh unit installs it")
        self.process = subprocess.Popen(self.command, stdin=subprocess.DEVNULL)
        try:
            self._link = self._connect(self.control)
            self._link.settimeout(LONGEST_ANSWER)
            self._lines = self._link.makefile("r")
            self._lines.readline()
            self.ask("qmp_capabilities")
        except BaseException:
            self.process.kill()
            raise

    def pull_plug(self):
        """Nothing that the unit has in memory is left; the disk is as the emulator has written it."""
        self.process.kill()
        self.process.wait()
        self._link.close()

    def is_on(self):
        return self.process is not None and self.process.poll() is None

    def ask(self, command, **arguments):
        request = {"execute": command, "arguments": arguments}
        self._link.sendall(json.dumps(request).encode() + b"\n")
        while True:
            answer = json.loads(self._lines.readline())
            if "error" in answer:
                raise RuntimeError(f"{command}: {answer['error']['desc']}")
            if "return" in answer:
                return answer["return"]

    def freeze(self, path):
        """Stands still and leaves what the unit has in memory in a file. The disk stays as it is."""
        self.ask("migrate-set-parameters", **{"downtime-limit": LONGEST_ANSWER * 1000, "max-bandwidth": 1 << 40})
        self.ask("migrate", uri=f"exec:cat >'{path}'")
        deadline = time.monotonic() + LONGEST_ANSWER
        while (status := self.ask("query-migrate")["status"]) != "completed":
            if status == "failed" or time.monotonic() > deadline:
                raise RuntimeError(f"the unit cannot be frozen: {status}")
            time.sleep(0.1)

    def take_picture(self, path):
        self.ask("screendump", filename=os.path.abspath(path))

    def plug_in(self, image):
        self.ask("object-add", **{"qom-type": "throttle-group", "id": "pace", "limits": {"bps-total": 0}})
        self.ask("blockdev-add", driver="throttle", **{"throttle-group": "pace", "node-name": "stick", "read-only": True,
                 "file": {"driver": "file", "filename": os.path.abspath(image), "read-only": True}})
        self.ask("device_add", driver="usb-storage", drive="stick", id="stick", bus="usb.0")

    def slow_down(self, bytes_a_second):
        """From now on the stick is as slow as is said."""
        self.ask("qom-set", path="/objects/pace", property="limits", value={"bps-total": bytes_a_second})

    def pull_out(self):
        self.ask("device_del", id="stick")
        deadline = time.monotonic() + 20
        while time.monotonic() < deadline:
            try:
                self.ask("blockdev-del", **{"node-name": "stick"})
                self.ask("object-del", id="pace")
                return
            except RuntimeError:
                time.sleep(0.1)
        raise RuntimeError("the stick is stuck")

    def _connect(self, path):
        deadline = time.monotonic() + 30
        while True:
            try:
                link = socket.socket(socket.AF_UNIX)
                link.connect(path)
                return link
            except OSError:
                link.close()
                if self.process.poll() is not None or time.monotonic() > deadline:
                    raise SystemExit("unit: the emulator did not start") from None
                time.sleep(0.05)
