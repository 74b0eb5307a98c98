"""Rows about the panel as a service: it comes up, comes back and stays up."""

import contextlib
import os
import re

from unit import require, wait_for

ANSWERS = ("request",)
LINK = 40  # seconds until the panel answers again after it was started anew
STAYS = 600 * 1000  # milliseconds, the longest wait of a script


def process(unit):
    return int(unit.show("MainPID"))


def answers(unit):
    wait_for(lambda: unit.say(*ANSWERS)[0], LINK * unit.bench.patience, "the panel does not answer")


def comes_back(unit, before, seconds=LINK):
    wait_for(lambda: process(unit) not in (0, before), seconds * unit.bench.patience, "it was not started again")
    unit.waits_until("systemctl is-active -q vireo", LINK, "it is not ready")
    answers(unit)


def ready(unit):
    unit.waits_until("systemctl is-active -q vireo", LINK, "it is not ready")
    answers(unit)
    require(unit.show("User") == "vireo", "it has rights")
    return f"{int(unit.show('MemoryCurrent')) // 1024 // 1024} MiB"


def status(unit):
    """What the service manager tells of the panel without asking it: mode and supervisor, and who took the link from whom."""
    def says(text):
        pattern = f'Status: "Mode {text}"'
        found = wait_for(lambda: re.search(pattern, unit.must("systemctl status --no-pager vireo")), LINK * unit.bench.patience,
                         lambda: f"{pattern} is missing in: " + unit.must("systemctl status --no-pager vireo"))
        return found.groups()
    peer = r"supervisor (198\.51\.100\.1:\d+)"
    with served(unit, "device usb"):
        first, = says(f"usb; {peer}")
        with served(unit, "device aoe"):
            second, = says(f"aoe; {peer}")
            unit.must(f"journalctl -u vireo -o cat | grep -qx 'Supervisor {second} connected; {first} is no longer served'")
    says("aoe; no supervisor")
    return f"usb with {first}, aoe with {second}, aoe with nobody"


@contextlib.contextmanager
def served(unit, line):
    """A supervisor that has said a line and stays connected."""
    with unit.supervisor(f"{line}\nwait {STAYS}") as process:
        try:
            yield
        finally:
            process.kill()


def killed(unit):
    before = process(unit)
    unit.must(f"kill -9 {before}")
    comes_back(unit, before)


def stopped_dead(unit):
    """The watchdog notices a panel whose event loop stands still."""
    before = process(unit)
    require(unit.show("WatchdogUSec") == "1min 30s", "another watchdog")
    unit.must(f"kill -STOP {before}")
    comes_back(unit, before, 180)
    unit.must("journalctl -u vireo -o cat | grep -q 'Watchdog timeout'")


def port_taken(unit):
    """While another program has the port the panel is not ready; it is when the port is free."""
    unit.must("systemctl stop vireo; systemd-run -q --unit=thief busybox nc -l -p 5000")
    unit.waits_until("grep -q ':1388 ' /proc/net/tcp /proc/net/tcp6", 20, "nobody has the port")
    unit.do("systemctl start --no-block vireo")
    unit.waits_until("journalctl -u vireo -o cat -n 20 | grep -q 'tcp server error'", LINK, "no word about the port")
    require(unit.show("ActiveState") == "activating", "it says it is ready")
    give_back_port(unit)


def give_back_port(unit):
    unit.must("systemctl stop thief")
    unit.waits_until("systemctl is-active -q vireo", 120, "it does not get its port")
    answers(unit)


def memory_pressure(unit):
    """Another process takes all the memory there is: it goes, the panel stays. Meanwhile nobody asks for anything, because
    each question would bring back what was thrown out of the memory."""
    before = process(unit)
    unit.do("systemd-run -q --collect --unit=glutton -p Type=oneshot tail /dev/zero")
    unit.must("journalctl -k -o cat | grep 'Out of memory: Killed process .*(tail)'")
    require(process(unit) == before, "the panel went")
    answers(unit)


def memory_bound(unit):
    """What the panel starts may reach the bound of the service: it goes, the panel stays."""
    before = process(unit)
    group = "/sys/fs/cgroup" + unit.show("ControlGroup")
    unit.do(f"sh -c 'echo $$ >{group}/cgroup.procs; exec tail /dev/zero'")
    require("oom_kill 0" not in unit.must(f"cat {group}/memory.events").splitlines(), "the bound was not reached")
    require(process(unit) == before, "the panel went")
    answers(unit)


def version(unit):
    return unit.must("dpkg-query -W -f '${Version}' vireo")


def upgrade(unit):
    """A newer package goes in while the panel runs; the older one goes back in after it."""
    first = version(unit)
    for package in ("newer", "older"):
        before = process(unit)
        unit.must(f"dpkg -i /try/{package}.deb")
        comes_back(unit, before)
        require((version(unit) == first) == (package == "older"), f"the {package} package is not there")
        require(unit.must("stat -c %U /opt/orvane/conf") == "vireo", "the folder has changed hands")
    return f"{first} and back"


def journal(unit):
    """Lines without colours, and errors told from the rest."""
    escape = unit.do("journalctl -u vireo --no-pager -o cat | grep -c \"$(printf '\\033')\"")[1]
    require(escape.strip() == b"0", f"{escape.decode().strip()} lines with colour codes")
    unit.must("systemctl stop vireo; systemd-run -q --unit=thief busybox nc -l -p 5000")
    unit.do("systemctl start --no-block vireo")
    unit.waits_until("journalctl -u vireo -p err -o cat | grep -q 'tcp server error'", LINK, "errors are not errors")
    give_back_port(unit)


def early_stop(unit):
    """Ends when it is told to."""
    unit.must("systemctl stop vireo")
    require(unit.show("Result") == "success", unit.show("Result"))
    unit.must("systemctl start vireo")
    answers(unit)


def tests(unit):
    """The journeys and the tests of the network restart, built for this processor."""
    source = unit.bench.source
    unit.must("systemctl stop vireo")
    unit.must(f"mkdir -p {source} && mount --bind /try/source {source}")
    names = unit.must("ls /try/source/build/*/tests").split()
    wrong = []
    for name in names:
        status, output = unit.do(
            f"cd /tmp; QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 QTEST_DISABLE_STACK_DUMP=1 "
            f"LD_LIBRARY_PATH=/try/lib timeout 1500 {source}/build/*/tests/{name}")
        with open(os.path.join(unit.bench.folder, name + ".log"), "wb") as log:
            log.write(output)
        if status != 0:
            wrong.append(name)
    unit.must("systemctl start vireo")
    require(names and not wrong, f"{' '.join(wrong)}: see {unit.bench.folder}")
    return f"{len(names)} programs"
