"""The plug is pulled again and again while the panel writes."""

import glob
import os
import random
import shutil
import subprocess

import service
from unit import Unit, require, wait_for

CONF = "/opt/orvane/conf"
WRITTEN = ("oper_mode.xml", "radio.xml", "network.xml")
ASK = "/usr/local/libexec/vireo-ask-network-restart"
# Modes, stations and the choice of DHCP: each line ends with a file written.
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
# Nothing but the panel and the cable to the desk: a boot costs half of a whole one.
SHORT_BOOT = "systemd.unit=desk-link.service systemd.wants=vireo.service"
LEFT_OVER = 20


def edit(disk, *commands):
    """Runs commands of the file system's debugger on a disk that is not in use."""
    subprocess.run(["debugfs", "-w", "-f", "-", disk], input="\n".join(commands).encode(), check=True, capture_output=True)


def prepare(bench):
    """A disk on which the network need not be restarted, for the sake of more writes."""
    disk = bench.new_disk()
    quick = os.path.join(bench.folder, "ask")
    with open(quick, "w", encoding="utf-8") as file:
        file.write("#!/bin/sh\n")
    edit(disk, f"rm {ASK}", f"write {quick} {ASK}", f"sif {ASK} mode 0100755", f"sif {ASK} uid 0")
    return disk


def documents(bench, disk):
    """Every whole document that the panel writes into each file, found by letting it write undisturbed."""
    found = {name: set() for name in WRITTEN}
    with Unit(bench, disk) as unit:
        unit.wait_for_hands()
        service.answers(unit)
        for lines in WRITES * 3:
            unit.told(*lines)
            for name, texts in found.items():
                texts.add(unit.must(f"cat {CONF}/{name} 2>/dev/null || true"))
        unit.must("sync")
    require(all(len(texts) > 1 for texts in found.values()), "the panel does not write")
    return found


def configuration(bench, disk):
    """The files of the configuration on a disk that is not in use, by name."""
    folder = os.path.join(bench.folder, "conf")
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    subprocess.run(["debugfs", "-R", f"rdump {CONF} {folder}", disk], check=True, capture_output=True)
    files = {}
    for path in glob.glob(f"{folder}/conf/*"):
        with open(path, encoding="utf-8") as file:
            files[os.path.basename(path)] = file.read().strip()
    return files


def check_disk(disk):
    answer = subprocess.run(["e2fsck", "-fp", disk], capture_output=True, check=False)
    require(answer.returncode in (0, 1), f"e2fsck: {answer.stdout.decode(errors='replace')}")


def check_files(files, whole, untouched):
    for name, texts in whole.items():
        require(files.get(name) in texts, f"{name} is no whole document: {files.get(name)!r}")
    for name, text in untouched.items():
        require(files.get(name) == text, f"{name} has changed")


def left_over(files):
    return [name for name in files if not name.endswith(".xml")]


def pull(bench, disk):
    """Boots, lets the panel write and pulls the plug at any moment."""
    with Unit(bench, disk, append=SHORT_BOOT) as unit:
        wait_for(lambda: unit.say("request")[0], 120 * bench.patience, "the unit does not come up")
        script = "\n".join(line for lines in WRITES * 100 for line in lines)
        with unit.supervisor(script) as writing:
            try:
                writing.wait(random.uniform(0, 4) * bench.patience)
            except subprocess.TimeoutExpired:
                pass
            require(writing.returncode is None, "the panel does not write")
            unit.machine.pull_plug()
            writing.kill()


def rounds(bench, count, say):
    """Pulls the plug `count` times."""
    disk = prepare(bench)
    untouched = {name: text for name, text in configuration(bench, disk).items() if name not in WRITTEN}
    whole = documents(bench, disk)
    check_disk(disk)
    empty = os.path.join(bench.folder, "ask")
    edit(disk, *(f"write {empty} {CONF}/{WRITTEN[i % 3]}.left{i:02}" for i in range(LEFT_OVER)))
    require(len(left_over(configuration(bench, disk))) == LEFT_OVER, "nothing was left over")
    seen = 0
    for number in range(count):
        pull(bench, disk)
        check_disk(disk)
        files = configuration(bench, disk)
        check_files(files, whole, untouched)
        require(len(left_over(files)) <= len(WRITTEN), f"left over: {left_over(files)}")
        seen += len(left_over(files))
        say(f"plug pulled {number + 1} times")
    return f"{count} times; {seen} temporary files were left over and gone after the next boot"
