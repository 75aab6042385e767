"""A Debian root that plays the printer: with a virtual display, without or with a running systemd."""
import glob
import os
import re
import shutil
import subprocess
import time
from pathlib import Path

LANGUAGES = ["english", "deutsch", "espanol", "francais", "zhongwen"]
PICTURES = Path("docs/screens")
LANGUAGE_KEY = "42A35D75-EA59-4012-8996-8813760C353A:9F8EE615-2887-4AF9-8A06-37902964D991"
ENVIRONMENT = ["env", "-i", "PATH=/usr/sbin:/usr/bin:/sbin:/bin", "HOME=/", "LC_ALL=C.UTF-8"]
START = time.monotonic()


class Failure(Exception):
    pass


def check(condition, text):
    if not condition:
        raise Failure(text)


def check_equal(actual, expected):
    check(actual == expected, f"{actual!r} instead of {expected!r}")


def wait_for(condition, *arguments):
    deadline = time.monotonic() + 60
    while not condition(*arguments):
        check(time.monotonic() < deadline, f"timeout: {condition.__name__}{arguments}")
        time.sleep(0.1)


def step(text):
    print(f"-- {text} ({time.monotonic() - START:.0f} s)", flush=True)


def property_file(language):
    """Returns a property file: its lines and their CRC-16/MAXIM-DOW."""
    text = f"{LANGUAGE_KEY}|Display Preferences:Language={language}\n".encode()
    crc = 0
    for byte in text:
        crc ^= byte
        for _ in range(8):
            crc = (crc >> 1) ^ 0xA001 if crc & 1 else crc >> 1
    return text + (crc ^ 0xFFFF).to_bytes(2, "little")


class Printer:
    def __init__(self, work, package):
        self.work = work
        self.package = package
        self.root = work / "root"
        self.display = None
        self.leader = None

    # --- Commands ---

    def in_root(self, *command):
        return ["chroot", str(self.root), *ENVIRONMENT, f"DISPLAY={self.display}", *command]

    def in_system(self, *command):
        """Returns the command that runs @p command in the booted system."""
        return ["nsenter", "-t", self.leader, "-a", *ENVIRONMENT, *command]

    def as_member(self, *command):
        """Returns the command that runs @p command there as a member of the group that may take part in the link."""
        group = self.output(self.in_system("getent", "group", "upgradeui")).split(":")[2]
        return self.in_system("setpriv", "--reuid", "4711", "--regid", "4711", "--groups", group, *command)

    def spawn(self, log, command):
        with open(self.work / f"{log}.log", "ab") as output:
            return subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output, stderr=output)

    def execute(self, log, command):
        check(self.spawn(log, command).wait() == 0, f"fails: {' '.join(command)}")

    def succeeds(self, command):
        return self.spawn("other", command).wait() == 0

    def output(self, command):
        with open(self.work / "other.log", "ab") as errors:
            return subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=errors,
                                  text=True).stdout.rstrip("\n")

    # --- The root ---

    def make_root(self):
        # The first of alternatives; dpkg checks the versions at the installation.
        depends = self.output(["dpkg-deb", "-f", self.package, "Depends"])
        needed = sorted({re.sub(r"\||\(.*", "", part.split("|")[0]).strip() for part in depends.split(",")})
        sources = [name for pattern in ("/etc/apt/sources.list", "/etc/apt/sources.list.d/*.list",
                                        "/etc/apt/sources.list.d/*.sources")
                   for name in sorted(glob.glob(pattern)) if os.path.getsize(name)]
        codename = re.search("^VERSION_CODENAME=(.*)$", Path("/etc/os-release").read_text(), re.M)[1]
        self.execute("root", ["mmdebstrap", "--quiet", "--mode=root", "--variant=minbase",
                              "--include=" + ",".join([*needed, "systemd-sysv", "udev"]), codename, str(self.root),
                              *sources])
        shutil.copy(self.package, self.root / "upgradeui.deb")

    def snapshot(self):
        """Returns the entries of the root with their rights, except what the package tools and the system write."""
        left_out = ["./proc", "./sys", "./dev", "./tmp", "./var/log", "./var/tmp", "./etc/*-", "./etc/.pwd.lock",
                    "./var/lib/dpkg/triggers", "./run/systemd"]
        pruned = " -o ".join(f"-path '{path}'" for path in left_out)
        return set(self.output(["sh", "-c", f"""cd '{self.root}'
            find . -xdev \\( {pruned} \\) -prune -o -printf '%p %y %m %U:%G %l\\n'
            find etc -type f ! -name '*-' ! -name .pwd.lock -exec sha256sum {{}} +"""]).splitlines())

    # --- The display ---

    def start_display(self):
        os.makedirs("/tmp/.X11-unix", exist_ok=True)
        # Its files are only visible here; clients find the display by its abstract name.
        self.execute("root", ["mount", "-t", "tmpfs", "none", "/tmp/.X11-unix"])
        reader, writer = os.pipe()
        with open(self.work / "display.log", "wb") as log:
            subprocess.Popen(["Xvfb", "-displayfd", str(writer), "-screen", "0", "480x272x24", "-nolisten", "tcp"],
                             pass_fds=[writer], stdout=log, stderr=log)
        os.close(writer)
        number = os.read(reader, 16).decode().strip()
        check(number, "no virtual display")
        self.display = os.environ["DISPLAY"] = ":" + number

    def popup_is_up(self):
        return self.succeeds(["xdotool", "search", "--onlyvisible", "--class", "^UpgradeUI$"])

    def press_enter(self):
        self.execute("other", ["xdotool", "key", "Return"])

    def distance_to(self, screen, language):
        """Returns the distance of the display from a picture of the documents, 0 to 1."""
        folder = PICTURES if language == "english" else PICTURES / language
        result = subprocess.run(["compare", "-metric", "RMSE", self.work / "screen.png",
                                 folder / f"{screen}-480x272.png", "null:"], stderr=subprocess.PIPE, text=True)
        distance = re.search(r"\((.*)\)", result.stderr)
        return float(distance[1]) if distance else 1

    def screen_is(self, screen, language):
        """Returns whether the nearest picture is that of the language, and is near."""
        self.execute("other", ["import", "-window", "root", str(self.work / "screen.png")])
        distances = {name: self.distance_to(screen, name) for name in LANGUAGES}
        return min(distances, key=distances.get) == language and distances[language] < 0.1

    # --- An upgrade ---

    def upgrader_prints(self, text):
        return text in (self.work / "upgrader.log").read_text()

    def start_upgrader(self, inside, *arguments):
        (self.work / "upgrader.log").write_text("")
        return self.spawn("upgrader", inside("timeout", "120", "upgrader-sim", *arguments))

    def play(self, inside):
        upgrader = self.start_upgrader(inside, "play", "success", "--speed", "20")
        wait_for(self.upgrader_prints, "-> ")
        return upgrader

    def take_part(self, upgrader, language):
        """The person at the display accepts the offer and reboots."""
        wait_for(self.popup_is_up)
        wait_for(self.screen_is, "file-found", language)
        self.press_enter()
        wait_for(self.upgrader_prints, "MsgCompleted")
        wait_for(self.screen_is, "completed", language)
        self.press_enter()
        check_equal(upgrader.wait(), 0)

    # --- The booted system ---

    def boot(self):
        nspawn = self.spawn("boot", ["systemd-nspawn", "--quiet", f"--directory={self.root}", "--register=no",
                                     "--keep-unit", "--link-journal=no", "--boot"])

        def has_booted():
            # At first the child of systemd-nspawn is another process than the first of the system.
            self.leader = self.output(["pgrep", "-P", str(nspawn.pid)]).partition("\n")[0]
            return self.output(self.in_system("systemctl", "is-system-running")) in ("running", "degraded")

        wait_for(has_booted)

    def systemctl(self, *arguments):
        self.execute("systemctl", self.in_system("systemctl", *arguments))

    def property_of(self, unit, name):
        return self.output(self.in_system("systemctl", "show", "-P", name, unit))

    def shows(self, unit, name, value):
        return self.property_of(unit, name) == value

    def wait_until_application_runs(self):
        wait_for(self.shows, "upgradeui.service", "SubState", "running")

    def starts(self):
        return len(self.output(self.in_system("journalctl", "-q", "-u", "upgradeui.service", "--grep", "^Started", "-o",
                                              "cat")).splitlines())

    def process(self, name):
        return self.output(self.in_system("pidof", name))

    def lists_language(self):
        """Returns whether the property server lists the language of the application."""
        return self.output(self.in_system("picl", "list", "--program", "Upgrade UI", "/language")) == (
            "PROGRAM     GROUP                NAME      TYPE  VALUE\n"
            "Upgrade UI  Display Preferences  Language  text  zhongwen")

    def in_sandbox(self, unit, script):
        """Runs a script in the sandbox of a unit, instead of its program. Returns what the script prints."""
        drop_in = self.root / f"etc/systemd/system/{unit}.d/sandboxed.conf"
        drop_in.parent.mkdir(exist_ok=True)
        drop_in.write_text("[Service]\nType=oneshot\nRemainAfterExit=yes\nRestart=no\nExecStartPre=\nExecStop=\nExecStart=\n"
                           "ExecStart=-/bin/bash /sandboxed\nStandardOutput=truncate:/sandboxed.out\n")
        (self.root / "sandboxed").write_text("exec 2>/dev/null\n" + script)
        self.systemctl("daemon-reload")
        self.systemctl("restart", unit)
        drop_in.unlink()
        self.systemctl("daemon-reload")
        return (self.root / "sandboxed.out").read_text()
