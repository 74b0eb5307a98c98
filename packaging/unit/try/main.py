"""Tries the unit and prints a table: main.py ARCH SOURCE [quick] [TIMES] [ROW...]. Status 1 when a row failed."""

import os
import signal
import sys
import time

import network
import power
import screens
import service
import stick
from unit import Absent, Bench, Failed, Unit

# Each row of the table, and whether it belongs to the quick part. All of them see one boot, in this order.
ROWS = (
    ("boot: from dark to the logo", screens.boot, True),
    ("service ready", service.ready, True),
    ("status says mode and supervisor", service.status, True),
    ("screens on the frame buffer", screens.frame_buffer, True),
    ("a foreign address gets no answer", network.foreign_address, True),
    ("DHCP switched on the panel", network.dhcp, False),
    ("wait notice while the network restarts", screens.wait_notice, False),
    ("stick pulled out while it plays", stick.pulled_while_playing, False),
    ("stick pulled out while tags are read", stick.pulled_while_reading, False),
    ("panel killed", service.killed, True),
    ("panel told to end", service.early_stop, True),
    ("panel stopped dead: watchdog", service.stopped_dead, False),
    ("port taken at start", service.port_taken, False),
    ("journal readable", service.journal, True),
    ("memory taken by another process", service.memory_pressure, False),
    ("memory bound reached by a child", service.memory_bound, False),
    ("package upgraded and rolled back", service.upgrade, False),
    ("display loaded late", screens.late_display, False),
    ("screens at 16 bits a pixel", screens.virtual_frame_buffer, False),
    ("screens on DRM alone", screens.direct_rendering, False),
    ("journeys and network restart inside", service.tests, False),
)

# These boot for themselves.
SHARE = "the panel's share of the boot"
POWER = "plug pulled while files are written"
LONGEST_ROW = 3600  # seconds


def give_up(*_):
    raise Failed("not done after an hour, or as many as PATIENCE says")


class Table:
    def __init__(self, patience):
        self.failed = 0
        self.longest = int(LONGEST_ROW * patience)
        signal.signal(signal.SIGALRM, give_up)

    def row(self, name, check, *arguments):
        start = time.monotonic()
        signal.alarm(self.longest)
        try:
            verdict, note = "ok", check(*arguments) or ""
        except Absent as reason:
            verdict, note = "absent", str(reason)
        except Exception as reason:  # whatever it is, the other rows are tried
            verdict, note = "FAILED", str(reason)
            self.failed += 1
        signal.alarm(0)
        print(f"{verdict:6} {time.monotonic() - start:6.0f} s  {name:38} {note}", flush=True)


def wanted(name, only):
    return not only or any(part in name for part in only)


def check_words(only):
    names = [row[0] for row in ROWS] + [SHARE, POWER]
    for word in only:
        if not any(word in name for name in names):
            sys.exit(f"unit: {word!r} is in the name of no row; there are:\n  " + "\n  ".join(names))


def main(arch, source, *words):
    times = next((int(word) for word in words if word.isdigit()), 50)
    only = [word for word in words if word != "quick" and not word.isdigit()]
    check_words(only)
    bench = Bench(arch, source, float(os.environ.get("PATIENCE", "1")))
    stick.make_stick(bench)
    table = Table(bench.patience)
    rows = [row for row in ROWS if wanted(row[0], only) and (row[2] or "quick" not in words)]
    if rows:
        with Unit(bench, bench.new_disk()) as unit:
            if rows[0][1] is screens.boot:
                table.row(*rows.pop(0)[:2], unit)
            unit.wait_for_hands()
            service.ready(unit)
            for name, check, _ in rows:
                table.row(name, check, unit)
    if wanted(SHARE, only):
        table.row(SHARE, screens.share, bench)
    if wanted(POWER, only) and "quick" not in words:
        table.row(POWER, power.rounds, bench, times)
    return table.failed and 1


if __name__ == "__main__":
    try:
        sys.exit(main(*sys.argv[1:]))
    except Failed as reason:
        sys.exit(f"unit: {reason}")
