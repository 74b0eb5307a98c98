"""A unit under test: the machine, hands inside it, and a supervisor on the desk."""

import base64
import os
import socket
import subprocess
import time

from machine import Machine
import picture

AGENT_UNIT = "/etc/systemd/system/try.service"
AGENT_WANTED = "/etc/systemd/system/multi-user.target.wants/try.service"


class Failed(Exception):
    """What a row of the table says when it fails."""


class Absent(Exception):
    """What a row says when this unit has not what it tries."""


def require(holds, message):
    if not holds:
        raise Failed(message)


def wait_for(condition, seconds, message):
    """Asks until the condition holds; returns what it gave."""
    deadline = time.monotonic() + seconds
    while True:
        found = condition()
        if found:
            return found
        require(time.monotonic() < deadline, message() if callable(message) else message)
        time.sleep(0.05)


class Bench:
    """Where units are tried: the image, the disk of the tests and a folder for what is made."""

    def __init__(self, arch, source, patience, folder="try"):
        self.arch = arch
        self.source = source
        self.image = os.path.join(source, "build/unit", arch)
        self.folder = os.path.join(self.image, folder)
        self.patience = patience
        self.stick = os.path.join(self.folder, "stick")
        self.stick_folder = os.path.join(self.folder, "stick.files")
        self.supervisor = os.path.join(source, "build/default/bin/vireo-supervisor")
        os.makedirs(self.folder, exist_ok=True)
        allowed = subprocess.run(["unshare", "-rm", "true"], capture_output=True, check=False).returncode == 0
        require(allowed, "no program may have mounts of its own here (unshare -rm), as a container has to allow")

    def new_disk(self):
        """A copy of the unit's disk with the hands in it."""
        disk = os.path.join(self.folder, "disk")
        subprocess.run(["cp", "--sparse=always", os.path.join(self.image, "disk"), disk], check=True)
        here = os.path.dirname(os.path.abspath(__file__))
        commands = f"write {here}/try.service {AGENT_UNIT}\nsif {AGENT_UNIT} uid 0\n" \
                   f"sif {AGENT_UNIT} mode 0100644\nsymlink {AGENT_WANTED} {AGENT_UNIT}\n"
        subprocess.run(["debugfs", "-w", "-f", "-", disk], input=commands.encode(), check=True, capture_output=True)
        return disk

    def beside_the_unit(self, command, **more):
        """Starts a program of the desk that sees the unit's media under the paths that they have on the unit."""
        return Program(
            ["unshare", "-rm", "sh", "-ec", 'mount -t tmpfs none /srv; mkdir /srv/music /srv/stick; '
             'mount --bind "$1" /srv/music; mount --bind "$2" /srv/stick; shift 2; exec "$@"', "sh",
             os.path.join(self.source, "tools/demo-unit/music"), self.stick_folder, *command], **more)


class Program(subprocess.Popen):
    """A program of the desk. It ends with what it was started for, also when that fails."""

    def __exit__(self, kind, *more):
        if kind:
            self.kill()
        super().__exit__(kind, *more)


class Unit:
    """One boot, or one more life of a unit that was frozen. Ends with the plug pulled."""

    def __init__(self, bench, disk, append="", more=(), frozen=None):
        self.bench = bench
        self._has_hands = False
        self.hands = os.path.join(bench.folder, "hands")
        if os.path.exists(self.hands):
            os.remove(self.hands)
        self.machine = Machine(bench.arch, bench.image, disk, append=append, frozen=frozen, more=[
            "-drive", f"file={bench.folder}/try.disk,format=raw,if=virtio,readonly=on",
            "-device", "virtio-serial-pci", "-chardev", f"socket,id=hands,path={self.hands},server=on,wait=off",
            "-device", "virtserialport,chardev=hands,name=try", *more])

    def __enter__(self):
        self.machine.power_on()
        self._power_on = time.monotonic()
        self._link = socket.socket(socket.AF_UNIX)
        self._link.connect(self.hands)
        self._link.settimeout(120 * self.bench.patience)
        self._answers = self._link.makefile("r")
        return self

    def __exit__(self, *_):
        self.machine.pull_plug()
        self._link.close()

    def wait_for_hands(self):
        """They are there once the unit is up."""
        if self._has_hands:
            return
        try:
            require(self._answers.readline() == "ready\n", "the unit is gone")
        except TimeoutError:
            raise Failed("the unit does not come up") from None
        self._has_hands = True

    def seconds_on(self):
        return time.monotonic() - self._power_on

    def do(self, command):
        """Runs a shell command of root inside; returns (status, output)."""
        self._link.sendall(base64.b64encode(command.encode()) + b"\n")
        try:
            status, _, output = self._answers.readline().rstrip("\n").partition(" ")
        except TimeoutError:
            raise Failed(f"no answer to: {command}") from None
        require(status, "the unit is gone")
        return int(status), base64.b64decode(output)

    def must(self, command):
        status, output = self.do(command)
        text = output.decode(errors="replace").strip()
        require(status == 0, f"{command}: {text}")
        return text

    def show(self, field, service="vireo"):
        return self.must(f"systemctl show -p {field} --value {service}")

    def waits_until(self, command, seconds, message):
        wait_for(lambda: self.do(command)[0] == 0, seconds * self.bench.patience, message)

    def supervisor(self, script, port=None, answers=subprocess.DEVNULL):
        """The stand-in supervisor, started on a script; `answers` takes what it prints."""
        process = self.bench.beside_the_unit([self.bench.supervisor, "--port", str(port or self.machine.port), "script", "-"],
                                             stdin=subprocess.PIPE, stdout=answers, stderr=subprocess.PIPE,
                                             env=dict(os.environ, QT_QPA_PLATFORM="offscreen"))
        process.stdin.write(script.encode() + b"\n")
        process.stdin.close()
        return process

    def say(self, *lines, port=None):
        """Says the lines of a script; returns whether all went well, and what the supervisor says of it."""
        with self.supervisor("\n".join(lines), port) as process:
            error = process.stderr.read()
        return process.returncode == 0, error.decode(errors="replace").strip()

    def told(self, *lines):
        ok, error = self.say(*lines)
        require(ok, f"{' / '.join(lines)}: {error}")

    def picture(self):
        path = os.path.join(self.bench.folder, "camera.ppm")
        self.machine.take_picture(path)
        return picture.read_camera(path)
