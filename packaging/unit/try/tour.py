"""The tour of the screens, played to the panel over the link."""

import base64
import contextlib
import os

from unit import Failed, require, wait_for
import picture

# In these the menu is turning: the unit's clock does not stand still for them.
MOVING = ("menu-turn",)
# A row of its own looks for this one, which is only there while the network restarts.
PASSING = ("setup-waiting",)
# The texts of these come from the network that the unit is in.
LIVE_TEXTS = ("setup-waiting", "setup-live")

# How far a picture with 16 bits a pixel may be, of 255: two steps of shade, as shades are mixed on them; and the mean of the
# smallest squares of a text that a smoothed line may change.
COARSE_SHADES = 17
SMOOTHED = 36

# On a processor of 32 bits the edges of letters are worked out less finely: a pixel of a text may be so many steps of 255 off.
TEXT_STEPS = {"armhf": 1}

# The version of the face in the unit's release; some pictures are accepted for each.
FACE = "unifont-15.0.01"


class Accepted:
    """The accepted pictures and the places of their texts."""

    def __init__(self, bench):
        self.folder = os.path.join(bench.source, "tests/pictures/expected")
        self.text_steps = TEXT_STEPS.get(bench.arch, 0)
        self.texts = {}
        with open(os.path.join(self.folder, "texts.txt"), encoding="utf-8") as file:
            for line in file:
                name, *box = line.split()
                self.texts.setdefault(name, []).append(tuple(map(int, box)))

    def load(self, name):
        of_face = os.path.join(self.folder, FACE, name + ".png")
        return picture.read_png(of_face if os.path.exists(of_face) else os.path.join(self.folder, name + ".png"))

    def compared(self, name, rows):
        """What of a picture counts."""
        return picture.without(rows, self.texts.get(name, [])) if name in LIVE_TEXTS else rows

    def is_right(self, name, rows):
        """Whether this is the accepted picture, to the pixel."""
        rows, wanted, texts = self.compared(name, rows), self.compared(name, self.load(name)), self.texts.get(name, [])
        return picture.without(rows, texts) == picture.without(wanted, texts) and all(
            picture.farthest(picture.part(rows, box), picture.part(wanted, box)) <= self.text_steps for box in texts)

    def is_coarse(self, name, rows):
        """Whether this is the picture with 16 bits a pixel: the same but for the shades, and for texts, which are smoothed."""
        wanted, texts = picture.in_16_bits(self.load(name)), self.texts.get(name, [])
        if picture.farthest(picture.without(rows, texts), picture.without(wanted, texts)) > COARSE_SHADES:
            return False
        return name in LIVE_TEXTS or all(picture.farthest_cell(picture.part(rows, box), picture.part(wanted, box)) <= SMOOTHED
                                         for box in texts)


def steps_of(path):
    """(lines to say, files to install, picture to take) for each picture of the tour; media lie where the unit has them."""
    lines, installs = [], []
    with open(path, encoding="utf-8") as file:
        for line in map(str.strip, file):
            if line.startswith("picture "):
                yield lines, installs, line.split()[1]
                lines, installs = [], []
            elif line.startswith("install "):
                if lines:
                    yield lines, installs, None
                    lines, installs = [], []
                installs.append(line.split()[1:])
            elif line and not line.startswith("#"):
                lines.append(line.replace("file music/", "file /srv/music/"))
    yield lines, installs, None


def install(unit, source, target):
    with open(os.path.join(unit.bench.source, "tools/demo-unit", source), "rb") as file:
        text = base64.b64encode(file.read()).decode()
    unit.must(f"echo {text} | base64 -d >{target}")


def comes(condition, seconds):
    try:
        return wait_for(condition, seconds, "")
    except Failed:
        return False


@contextlib.contextmanager
def settings_kept(unit):
    """Leaves the unit's settings, and its network, as they were."""
    unit.must("rm -rf /run/before && cp -a /opt/orvane/conf /run/before")
    try:
        yield
    finally:
        unit.must("cp -a /run/before/. /opt/orvane/conf/ && /etc/rc.d/init.d/network restart")


def play(unit, take, check):
    """Plays the tour and leaves the unit's settings as they were. `take` gives the display's picture; `check` (name, rows) says
    whether it is the right one."""
    install(unit, "root/tmp/sampleRate", "/tmp/sampleRate")
    with settings_kept(unit):
        wrong, count = walk(unit, take, check)
    require(not wrong, f"{len(wrong)} of {count} pictures differ, see {unit.bench.folder}: {' '.join(wrong)}")
    return f"{count} pictures"


def walk(unit, take, check):
    """Returns the names of the pictures that never came, and how many were looked at."""
    wrong, count = [], 0
    for lines, installs, name in steps_of(os.path.join(unit.bench.source, "tools/demo-unit/tour.txt")):
        for source, target in installs:
            install(unit, source, target)
        at_rest = name is not None and not name.startswith(MOVING + PASSING)
        with unit.supervisor("\n".join(lines)) as saying:
            came = not at_rest or comes(lambda: check(name, take()), 15 * unit.bench.patience)
        require(saying.returncode == 0, f"the supervisor failed before {name}")
        count += at_rest
        if not came:
            wrong.append(name)
            picture.write_png(os.path.join(unit.bench.folder, name + ".png"), take())
    return wrong, count
