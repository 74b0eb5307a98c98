"""Rows about the unit's network: the panel changes it, and strangers do not get in."""

import os
import re

from unit import require, wait_for
import picture

SETTINGS = "/opt/orvane/conf/network.xml"
FIXED, LEASED = "192.0.2.42", "192.0.2.100"


def box_of(unit, label):
    """Where a label of the setup screen lies."""
    with open(os.path.join(unit.bench.source, "screens/setupform.ui"), encoding="utf-8") as file:
        form = file.read()
    numbers = re.search(rf'name="{label}">.*?<x>(\d+)</x>\s*<y>(\d+)</y>\s*<width>(\d+)</width>\s*<height>(\d+)</height>',
                        form, re.DOTALL)
    return tuple(map(int, numbers.groups()))


def address_is(unit, address):
    return f" {address}/24 " in unit.must("ip -4 -o address show eth0")


def dhcp(unit):
    """Switched on the panel, the unit has the address of the emulator's DHCP server and shows it; switched back, its own."""
    box = box_of(unit, "lb_IPAddr")
    unit.must(f"cp -p {SETTINGS} /run/settings; sed -i 's|<ip>.*</ip>|<ip>{LEASED}</ip>|' {SETTINGS}")
    unit.told("device ir", "key long-select", "wait 100", "enc 2", "key select", "wait 4000", "expect setup")
    leased = picture.part(unit.picture(), box)
    unit.must(f"cat /run/settings >{SETTINGS}")
    wait_for(lambda: picture.part(unit.picture(), box) != leased, 10 * unit.bench.patience, "the file is not read again")
    require(address_is(unit, FIXED), "it does not begin with its own address")
    unit.told("key select", "enc -1", "key select")
    wait_for(lambda: address_is(unit, LEASED), 60 * unit.bench.patience, "no address of the DHCP server")
    require("<dhcp>yes</dhcp>" in unit.must(f"cat {SETTINGS}"), "network.xml says another thing")
    wait_for(lambda: picture.part(unit.picture(), box) == leased, 60 * unit.bench.patience, "the page shows another address")
    wait_for(lambda: unit.say("expect setup")[0], 60 * unit.bench.patience, "the panel waits for ever")
    unit.told("key select", "enc 1", "key select")
    wait_for(lambda: address_is(unit, FIXED), 60 * unit.bench.patience, "its own address does not come back")
    wait_for(lambda: unit.say("expect setup")[0], 60 * unit.bench.patience, "the panel waits for ever")
    return f"{FIXED}, {LEASED}, {FIXED}"


def foreign_address(unit):
    """An address that is not allowed gets no answer, and gets one when it is."""
    unit.must(f"grep -q '<dhcp>no' {SETTINGS}")
    foreign = unit.machine.foreign_port
    require(unit.say("request")[0], "the desk gets no answer")
    require(not unit.say("request", port=foreign)[0], "a stranger gets an answer")
    drop_in = "/run/systemd/system/vireo.service.d/stranger.conf"
    unit.must(f"mkdir -p $(dirname {drop_in}); printf '[Service]\\nIPAddressAllow=192.0.2.1\\n' >{drop_in}; "
              "systemctl daemon-reload; systemctl restart vireo")
    wait_for(lambda: unit.say("request", port=foreign)[0], 40 * unit.bench.patience, "the stranger's way does not lead here")
    unit.must(f"rm {drop_in}; systemctl daemon-reload; systemctl restart vireo")
