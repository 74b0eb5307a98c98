"""The plug is pulled again and again while the panel writes."""

import glob
import os
import random
import shutil
import subprocess
import time

import service
from unit import Failed, Unit, require, wait_for

CONF = "/opt/orvane/conf"
WRITTEN = ("oper_mode.xml", "radio.xml", "network.xml")
ASIDE = ".vireo-new"
ASK = "/usr/local/libexec/vireo-ask-network-restart"
# Modes, stations and the choice of DHCP: each line makes the panel write a file. The whole leads back to its beginning.
WRITES = (
    ("device usb", "expect usb"),
    ("device aoe", "expect aoe"),
    ("device ir", "expect radio"),
    ("key select", "enc 1", "key select", "expect radio"),
    ("key select", "enc 1", "key select", "expect radio"),
    ("key select", "enc -2", "key select", "expect radio"),
    ("key long-select", "enc 2", "key select", "expect setup", "key select", "enc -1", "key select", "wait 150", "expect setup"),
    ("key select", "enc 1", "key select", "wait 150", "expect setup"),
)
# Nothing but the panel, the cable to the desk and the hands.
SHORT_BOOT = "systemd.unit=desk-link.service systemd.wants=vireo.service systemd.wants=try.service"
BOOTED = 25  # one cut disk of so many is booted
LONGEST_WRITE = 0.3  # seconds, about; the plug is pulled at any moment of it


def edit(disk, *commands):
    """Runs commands of the file system's debugger on a disk that is not in use."""
    answer = subprocess.run(["debugfs", "-w", "-f", "-", disk], input="\n".join(commands).encode() + b"\n",
                            check=True, capture_output=True)
    require(b": " not in answer.stderr.split(b"\n", 1)[1], answer.stderr.decode())


def prepare(bench):
    """A disk on which the network need not be restarted, for the sake of more writes."""
    disk = bench.new_disk()
    quick = os.path.join(bench.folder, "ask")
    with open(quick, "w", encoding="utf-8") as file:
        file.write("#!/bin/sh\n")
    edit(disk, f"rm {ASK}", f"write {quick} {ASK}", f"sif {ASK} mode 0100755", f"sif {ASK} uid 0", f"sif {ASK} gid 0")
    return disk


def documents(unit):
    """Every whole document that the panel writes into each file, found by letting it write undisturbed."""
    found = {name: set() for name in WRITTEN}
    for lines in WRITES * 2:
        unit.told(*lines)
        for name, texts in found.items():
            texts.add(unit.must(f"cat {CONF}/{name}"))
    require(all(len(texts) > 1 and "" not in texts for texts in found.values()), "the panel does not write every file")
    return found


def configuration(bench, disk):
    """The files of the configuration on a disk that is not in use, by name."""
    folder = os.path.join(bench.folder, "conf")
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    subprocess.run(["debugfs", "-R", f"rdump {CONF} {folder}", disk], check=True, capture_output=True)
    files = {}
    for path in glob.glob(f"{folder}/conf/*"):
        with open(path, encoding="utf-8", errors="replace") as file:
            files[os.path.basename(path)] = file.read().strip()
    return files


def check_disk(disk):
    """As at a mount: the journal is played and files that nobody names any more go. Nothing else may be wrong."""
    for options, accepted in (("-fp", (0, 1)), ("-fn", (0,))):
        answer = subprocess.run(["e2fsck", options, disk], capture_output=True, check=False)
        require(answer.returncode in accepted, f"e2fsck {options}: {answer.stdout.decode(errors='replace')}")


def check_files(files, whole, untouched):
    for name, texts in whole.items():
        require(files.get(name) in texts, f"{name} is no whole document: {files.get(name)!r}")
    for name, text in untouched.items():
        require(files.get(name) == text, f"{name} has changed")
    others = set(left_over(files)) - {name + ASIDE for name in WRITTEN}
    require(not others, f"left over: {others}")


def left_over(files):
    return [name for name in files if not name.endswith(".xml")]


def freeze(bench, disk, frozen):
    """Boots, and leaves a disk and a unit's memory for the pulls to go on from. Returns the whole documents."""
    with Unit(bench, disk) as unit:
        unit.wait_for_hands()
        service.ready(unit)
        whole = documents(unit)
        unit.must("sync")
        unit.machine.freeze(frozen)
    return whole


def without_expecting(line):
    """What is written matters here; a slow unit may still be at the line before when it is asked."""
    return line.replace("expect ", "# expect ")


def pull(bench, disk, frozen):
    """The unit goes on, the panel writes, and the plug is pulled at any moment after any number of answers."""
    beginning = random.randrange(3)
    writes = WRITES[beginning:] + WRITES[:beginning]
    script = "\n".join(line for lines in writes * 100 for line in (*map(without_expecting, lines), "request"))
    with Unit(bench, disk, frozen=frozen) as unit:
        wait_for(lambda: unit.machine.ask("query-status")["running"], 60 * bench.patience, "the unit does not go on")
        with unit.supervisor(script, answers=subprocess.PIPE) as writing:
            for _ in range(random.randint(1, 2 * len(WRITES))):
                if not writing.stdout.readline():
                    raise Failed(f"the panel does not answer: {writing.stderr.read().decode()}")
            time.sleep(random.uniform(0, LONGEST_WRITE))
            unit.machine.pull_plug()
            writing.kill()


def boot_again(bench, disk, whole):
    """What was left half written is gone after the next boot, and the panel is there."""
    half = os.path.join(bench.folder, "half")
    with open(half, "w", encoding="utf-8") as file:
        file.write("<?xml version=\"1.0\"")
    there = left_over(configuration(bench, disk))
    edit(disk, *(f"write {half} {CONF}/{name}{ASIDE}" for name in WRITTEN if name + ASIDE not in there))
    require(len(left_over(configuration(bench, disk))) == len(WRITTEN), "nothing is left over")
    with Unit(bench, disk, append=SHORT_BOOT) as unit:
        unit.wait_for_hands()
        service.ready(unit)
        files = {name: unit.must(f"cat {CONF}/{name}") for name in unit.must(f"ls {CONF}").split()}
        require(not left_over(files), f"left over after a boot: {left_over(files)}")
        check_files(files, whole, {})


def rounds(bench, count):
    """Pulls the plug `count` times, each time on the same unit a moment after it went on from where it was frozen."""
    disk, frozen = prepare(bench), os.path.join(bench.folder, "frozen")
    untouched = {name: text for name, text in configuration(bench, disk).items() if name not in WRITTEN}
    whole = freeze(bench, disk, frozen)
    cut = os.path.join(bench.folder, "cut.disk")

    def found_after(what):
        """The checks mend a disk, so they never see the one that the frozen unit goes on with."""
        subprocess.run(["cp", "--sparse=always", disk, cut], check=True)
        what()
        check_disk(cut)
        files = configuration(bench, cut)
        check_files(files, whole, untouched)
        return files
    before = found_after(lambda: None)
    newer = halves = boots = 0
    for number in range(1, count + 1):
        files = found_after(lambda: pull(bench, cut, frozen))
        newer += any(files[name] != before[name] for name in WRITTEN)
        halves += bool(left_over(files))
        if number % BOOTED == 0 or number == count:
            boot_again(bench, cut, whole)
            boots += 1
    require(newer or count < BOOTED, "nothing was ever written")
    return f"{count} pulls: {newer} disks with newer documents, {halves} with a temporary file; {boots} booted again"
