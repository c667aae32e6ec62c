#!/usr/bin/env python3
"""corvo-batch as its user starts it: cases that fail, kills and resumes, a full device, Slurm.

usage: batch_test.py CORVO CORVO-BATCH EXAMPLES [sanitized]
"""

import collections
import contextlib
import glob
import os
import pty
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

CORVO, BATCH, EXAMPLES = (os.path.abspath(p) for p in sys.argv[1:4])
CASES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "cases")
SANITIZED = "sanitized" in sys.argv[4:]
LIMIT = 900 if SANITIZED else 300  # seconds of a test
# Notes each start, and does by the name of the description what a run may do.
PROGRAM = """#!/bin/sh
echo "$PWD" >> '{folder}/starts'
case $2 in
crash*) kill -SEGV $$ ;;
narrow*) ulimit -v 40000 ;;
hang*) sleep 60 & wait ;;
esac
exec '{corvo}' "$@"
"""


class Batch(unittest.TestCase):
    def setUp(self):
        signal.signal(signal.SIGALRM, self.out_of_time)
        signal.alarm(LIMIT)
        self.addCleanup(signal.alarm, 0)
        self.folder = os.path.realpath(tempfile.mkdtemp(prefix="corvo-batch-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.line = self.example("line500kv.cvi")
        self.write("base.cvi", self.line)
        self.write("program", PROGRAM.format(folder=self.folder, corvo=CORVO))
        os.chmod(self.path("program"), 0o755)

    def out_of_time(self, *_):
        for process in glob.glob("/proc/[0-9]*/cmdline"):
            with contextlib.suppress(OSError), open(process, encoding="utf-8", errors="replace") as words:
                if self.folder in words.read():
                    os.kill(int(process.split("/")[2]), signal.SIGKILL)
        self.fail(f"it takes more than {LIMIT} seconds")

    def example(self, name):
        with open(os.path.join(EXAMPLES, name), encoding="ascii") as file:
            return file.read()

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8", newline="") as file:
            file.write(text)

    def read(self, *names):
        with open(self.path(*names), encoding="utf-8") as file:
            return file.read()

    def command(self, *words):
        return [BATCH, "--corvo", self.path("program"), *words]

    def start(self, *words, **more):
        return subprocess.Popen(self.command(*words), cwd=self.folder, stdout=subprocess.DEVNULL,
                                stderr=subprocess.PIPE, text=True, **more)

    def batch(self, status, *words, **more):
        """Rows of the summary, by case and column, and the error stream."""
        run = subprocess.run(self.command(*words), cwd=self.folder, capture_output=True, text=True,
                             check=False, **more)
        self.assertEqual(run.returncode, status, run.stdout + run.stderr)
        lines = [line.split("\t") for line in run.stdout.splitlines()]
        return {line[0]: dict(zip(lines[0], line)) for line in lines[1:]}, run.stderr

    def starts(self):
        known = os.path.exists(self.path("starts"))
        return collections.Counter(self.read("starts").splitlines() if known else [])

    def done(self):
        return {os.path.dirname(f) for f in glob.glob(self.path("base.batch/*/batch_status.tsv"))}

    def at_work(self):
        """Processes with this folder in their command lines."""
        found = subprocess.run(["ps", "ax", "-ww", "-o", "args"], capture_output=True, text=True, check=True)
        return [line for line in found.stdout.splitlines() if self.folder in line and "batch_test" not in line]

    def test_each_case_has_its_row_whatever_becomes_of_it(self):
        phase = self.example("line500kv_phase.cvi")
        check = "".join(f"{key} for passivity check: {value}\n" for key, value in
                        (("Lower frequency", 0.5), ("Upper frequency", "1E6"), ("Frequency increments", 100)))
        coarse = phase.replace("Admittance Fit: 20", "Admittance Fit: 2").replace("Interpolate", check + "Interpolate")
        self.write("coarse.cvi", coarse)
        for name in ("crash", "hang", "narrow"):
            self.write(name + ".cvi", self.line)
        wires = "Library : lib/wires of mine.clb\nName : ACSR\n"
        self.write("library.cvi", self.line.replace("Radius: 0.01407 [m]\n", wires))
        os.mkdir(self.path("lib"))
        self.write("lib/wires of mine.clb", "ACSR 0.01407 0.0728 1.0 0.00518\n")
        rows = [("base.cvi", "1e5", "", "its \"b\" 'c' {} $HOME;%"), ("base.cvi", "1e4", "/steps 3 /increment 1e3", "steps"),
                ("coarse.cvi", "1e5"), ("crash.cvi", "1e5"), ("hang.cvi", "1e5"), ("narrow.cvi", "1e5"),
                ("absent.cvi", "1e5"), ("base.cvi", "-1", "", "wrong"), ("library.cvi", "1e5", "", "other/place"),
                ("base.cvi", "1e5", "", "base.cvi")]
        self.write("list.tsv", "file\tlength\targuments\tfolder\r\n# a comment\r\n\r\n"
                   + "".join("\t".join(row) + "\r\n" for row in rows))
        table, words = self.batch(1, "--timeout", "20" if SANITIZED else "5", "list.tsv")
        kinds = [row["status"] for row in table.values()]
        self.assertEqual(kinds[:5] + kinds[6:8], ["ok", "ok", "warning", "crashed", "timeout", "failed", "failed"])
        self.assertEqual(kinds[8:], ["ok", "not run"])
        self.assertIn("9 of 10 cases", words)
        self.assertIn("cannot write " + self.path("base.cvi/"), words)
        if not SANITIZED:
            self.assertIn(kinds[5], ("failed", "crashed"))
        self.assertIn("valid line length", table["wrong"]["message"])
        odd, fitted = list(table.values())[0], list(table.values())[2]
        alone = subprocess.run([CORVO, "/file", "base.cvi", "/length", "1e5"], cwd=self.folder, capture_output=True,
                               text=True, check=True)
        self.assertIn(", ".join(odd[c] for c in ("R [ohm]", "X [ohm]", "B [S]")), alone.stdout)
        self.assertEqual(self.read(odd["case"], "base.cvo"), self.read("base.cvo"))
        self.assertEqual([f for f in sorted(os.listdir(self.path("steps"))) if "_00" in f],
                         [f"base_00{k}.{e}" for k in (1, 2, 3) for e in ("cvo", "out")])
        console = self.read("list.batch", fitted["case"], "batch_console.txt")
        for column, title in (("Yc [%]", " Yc: "), ("H [%]", " Hphase: ")):
            printed = re.search(r"-\n +([0-9.]+) %", console[console.rindex(title):])
            self.assertAlmostEqual(float(fitted[column]), float(printed[1]), delta=1e-3)
        self.assertEqual(fitted["passivity"], "told: " + ("violated" if "violations detected. See" in console else "passive"))
        self.assertGreater(float(odd["CPU [s]"]), 0)
        self.assertGreater(float(odd["memory [MB]"]), 1)
        self.assertFalse(self.at_work())

    def test_lists_and_keys_are_refused_in_plain_words(self):
        for text, words in (("base.cvi\t1\t\ta\nbase.cvi\t2\t\tb/../a/\n", "one folder"), ("base.cvi\n", "line 1 of"),
                            ("base.cvi\t1\t\ta\tb\n", "hold a tab"), ("\t1\n", "file and length"), ("\n# none\n", "no case"),
                            ("base.cvi\t1\t/length 3\n", "/length has a column")):
            self.write("list.tsv", text)
            self.assertIn(words, self.batch(3, "list.tsv")[1])
        for more, words in ((["Resistivity=1"], "has the key Resistivity"), (["Sag@3=1"], "no line 3"), (["Sag="], "expected"),
                            (["Sag=1", "--vary", "sag=2"], "varies twice"), (["Sag=1,,2"], "is empty")):
            self.assertIn(words, self.batch(3, "--vary", *more, "/length", "1", "base.cvi")[1])
        for more, words in ((["--vary", "Sag=1"], "length"), (["--jobs", "0"], "above 0"), (["--what"], "unknown option"),
                            (["--vary", "Sag=1", "/length", "1", "--corvo", "none"], "no program")):
            self.assertIn(words, self.batch(3, *more, "base.cvi")[1])
        for name, row, kept in (("cases.tsv", "base.cvi\t1\n", "cases.tsv"), ("list.tsv", "summary.tsv\t1\n", "summary.tsv"),
                                ("list.tsv", "base.cvi\t1\t\ta\na/base.cvi\t1\t\tb\n", "a/base.cvi")):
            os.makedirs(self.path("a"), exist_ok=True)
            self.write(kept, self.line)
            self.write(name, row)
            before = self.read(kept)
            self.assertIn(self.path(kept) + " would be overwritten: it is an input", self.batch(3, "-o", ".", name)[1])
            self.assertEqual(self.read(kept), before)
        missing = {"env": {"PATH": self.folder}}
        self.assertIn("package parallel", self.batch(3, "list.tsv", **missing)[1])
        self.assertIn("package slurm", self.batch(3, "--slurm", "list.tsv", **missing)[1])
        self.assertFalse(self.starts())

    def test_a_run_without_a_model_has_failed(self):
        words = ("-o", "it's", "--vary", "length=1e4", "base.cvi")
        self.assertEqual([r["status"] for r in self.batch(0, *words)[0].values()], ["ok"])
        told = self.batch(1, "--corvo", "/bin/true", *words)[0]
        self.assertEqual([r["status"] for r in told.values()], ["failed"])

    def test_a_library_with_the_name_of_a_result_is_no_result(self):
        os.mkdir(self.path("x"))
        self.write("x/a.cvi", self.line.replace("Radius: 0.01407 [m]\n", "Library : a.out\nName : ACSR\n"))
        self.write("x/a.out", "ACSR 0.01407 0.0728 1.0 0.00518\n")
        self.write("list.tsv", "x/a.cvi\t1e5\t\tx\n")
        table, _ = self.batch(1, "list.tsv")
        self.assertIn("Output File is an Input File", table["x"]["message"])
        self.assertEqual(self.read("x/a.out"), "ACSR 0.01407 0.0728 1.0 0.00518\n")

    def test_keys_take_their_values_where_they_stand(self):
        place = "P2@" + str(self.line.splitlines().index("P2 : 0.0 28.0") + 1)
        words = ("--vary", "Ground Resistivity=10,1000", "--vary", place + "=0 28,0 30", "--vary", "length=1e4,5e4",
                 "--vary", "Radius=0.006", "/steps", "2", "base.cvi")
        table, told = self.batch(0, *words)
        self.assertIn("Radius is changed in lines", told)
        self.assertEqual([(r["Ground Resistivity"], r[place], r["length [m]"]) for r in table.values()],
                         [(a, b, c) for a in ("10", "1000") for b in ("0 28", "0 30") for c in ("1e4", "5e4")])
        changed = self.read("base.batch", "case_0003", "base.cvi")
        self.assertEqual([line for line in changed.splitlines() if line not in self.line.splitlines()],
                         ["Radius: 0.006 [m]", "P2 : 0 30", "Radius: 0.006 [m]", "GroundResistivity: 10 [ohm*m]"])
        self.assertEqual(len({row["R [ohm]"] for row in table.values()}), 8)

    def test_what_is_done_is_never_started_again(self):
        lengths = "length=" + ",".join(str(1000 + k) for k in range(60))
        words = ("--resume", "--vary", lengths, "base.cvi")
        kept = []
        for kind, status in ((signal.SIGINT, 130), (signal.SIGTERM, 143), (signal.SIGKILL, -9)):
            before = len(self.done())
            run = self.start(*words)
            while len(self.done()) < before + 8:
                self.assertIsNone(run.poll())
                time.sleep(0.02)
            run.send_signal(kind)
            run.communicate()
            self.assertEqual(run.returncode, status)
            if kind == signal.SIGKILL:  # whose children notice only then
                limit = time.monotonic() + 20
                while self.at_work() and time.monotonic() < limit:
                    time.sleep(0.05)
            self.assertFalse(self.at_work())
            kept.append((self.done(), self.starts()))
        self.assertLess(len(self.done()), 60)
        table, _ = self.batch(0, *words)
        self.assertEqual({row["status"] for row in table.values()}, {"ok"})
        self.assertEqual((len(table), len(self.starts())), (60, 60))
        for done, starts in kept:
            self.assertEqual([d for d in done if self.starts()[d] != starts[d]], [])

    def test_a_case_is_done_when_its_files_are_complete(self):
        words = ("--vary", "length=1,2,3,4,5,6", "base.cvi")
        self.batch(0, *words)
        os.remove(self.path("base.batch/case_0002/base.cvo"))
        for name, size in (("case_0003/base.out", 100), ("case_0004/batch_status.tsv", 60)):
            os.truncate(self.path("base.batch", name), size)
        _, told = self.batch(0, "--resume", "--vary", "length=1,2,3,4,5,7", "base.cvi")
        self.assertIn("4 run now", told)
        self.assertEqual([n for _, n in sorted(self.starts().items())], [1, 2, 2, 2, 1, 2])
        self.write("base.cvi", self.line.replace("28.0", "28.5"))
        self.assertIn("6 run now", self.batch(0, "--resume", *words)[1])
        self.write("hang.cvi", self.line)
        run = self.start("--vary", "length=1", "hang.cvi")
        while not any("hang" in folder for folder in self.starts()):
            time.sleep(0.02)
        self.assertIn("another corvo-batch is at work", self.batch(3, "--vary", "length=1", "hang.cvi")[1])
        run.terminate()
        run.communicate()
        self.assertEqual(run.returncode, 143)

    def test_a_full_device_leaves_the_rest_for_later(self):
        disk = self.path("disk")
        os.mkdir(disk)
        self.write("disk.sh", f"""mount -t tmpfs -o size=400k none '{disk}' || exit 77
"$@"; echo "first $?"
mount -o remount,size=100m '{disk}'
"$@" --resume; echo "second $?"
""")
        self.write("list.tsv", "".join(f"base.cvi\t{k + 1}\t\tdisk/{k}\n" for k in range(30)))
        run = subprocess.run(["unshare", "-rm", "sh", self.path("disk.sh"), *self.command("list.tsv")], cwd=self.folder,
                             capture_output=True, text=True, check=False)
        if run.returncode == 77 or "unshare" in run.stderr:
            self.skipTest("no file system of its own can be mounted here: " + run.stderr)
        self.assertIn("first 1\n", run.stdout, run.stderr)
        self.assertIn("No space left on device", run.stderr)
        self.assertIn("second 0\n", run.stdout, run.stderr)
        rest = int(re.findall(r"(\d+) run now", run.stderr)[1])
        self.assertTrue(0 < rest < 30, rest)
        self.assertEqual(len(self.starts()), 30)

    def test_machines_are_those_of_parallel(self):
        self.write("ssh", f"#!/bin/sh\nwhile [ \"$1\" != far ]; do shift; done; shift\n[ \"$1\" = -- ] && shift\necho >> '{self.folder}/calls'\nexec sh -c \"$*\"\n")
        os.chmod(self.path("ssh"), 0o755)
        self.write("machines", "1/far\n")
        environment = dict(os.environ, PARALLEL_SSH=self.path("ssh"))
        for option in (["--sshlogin", "2/far"], ["--sshloginfile", "machines"]):
            table, _ = self.batch(0, *option, "--vary", "length=1,2,3", "base.cvi", env=environment)
            self.assertEqual(len(table), 3)
        self.assertGreaterEqual(len(self.read("calls")), 6)

    def test_a_terminal_sees_a_bar_and_pages_an_index(self):
        self.write("list.tsv", "base.cvi\t1e5\t\ta <b>&\nbase.cvi\t-1\t\tc\n")
        master, slave = pty.openpty()
        run = subprocess.run(self.command("--plot", "list.tsv"), cwd=self.folder, stdout=subprocess.DEVNULL, stderr=slave, check=False)
        os.close(slave)
        self.assertEqual(run.returncode, 1)
        self.assertRegex(os.read(master, 1 << 16).decode(), r"\r\[=+ *\] 2 of 2 cases, 0:00:00 left\x1b\[K\r\n")
        index = self.read("list.batch/index.html")
        self.assertEqual(re.findall(r'<a href="(.*?)">(.*?)</a>', index), [("../a%20%3Cb%3E%26/base.html", "a &lt;b&gt;&amp;")])
        self.assertTrue(os.path.exists(self.path("a <b>&/base.html")))

    def test_verdicts_are_those_of_the_model(self):
        phase = self.example("line500kv_phase.cvi")
        self.write("fine.cvi", phase)
        self.write("coarse.cvi", re.sub(r"(Maximum Fitting Error.*): 0.2", r"\1: 2.0", phase))
        rows = [("fine", "1e5"), ("coarse", "1e5"), ("base", "1e5")]
        for name, length in (("console_modes", "100000"), ("console_series", "25000")):
            shutil.copy(os.path.join(CASES, name, "a.cvi"), self.path(name + ".cvi"))
            rows.append((name, length))
        self.write("list.tsv", "".join(f"{name}.cvi\t{length}\t\t{name}\n" for name, length in rows))
        table, _ = self.batch(2, "--verify", "list.tsv")
        self.assertEqual([table[name]["passivity"] for name, _ in rows], ["good", "BAD", "", "", ""])
        self.assertEqual([table["console_modes"][c] for c in ("Zc [%]", "A [%]", "Z [%]")], ["8.259", "1.298", ""])
        self.assertEqual([table["console_series"][c] for c in ("status", "warnings", "Z [%]")], ["warning", "1", "0.1246"])


class Slurm(Batch):
    """The daemons of a single node, of this test alone."""

    def setUp(self):
        super().setUp()
        if os.geteuid() != 0:
            self.skipTest("a Slurm of its own needs root")
        for program in ("munged", "slurmctld", "slurmd", "sbatch", "scancel"):
            if shutil.which(program) is None:
                self.skipTest(f"{program} is missing: Slurm is not installed")
        host = socket.gethostname().split(".")[0]
        self.write("munge.key", "k" * 64)
        os.chmod(self.path("munge.key"), 0o600)
        ports = []
        for _ in range(2):
            with socket.socket() as free:
                free.bind(("127.0.0.1", 0))
                ports.append(free.getsockname()[1])
        d = self.folder
        self.write("slurm.conf", f"""ClusterName=test
SlurmctldHost={host}(127.0.0.1)
SlurmUser=root
SlurmdUser=root
SlurmctldPort={ports[0]}
SlurmdPort={ports[1]}
AuthType=auth/munge
AuthInfo=socket={d}/munge.sock
StateSaveLocation={d}/state
SlurmdSpoolDir={d}/spool
SlurmctldPidFile={d}/slurmctld.pid
SlurmdPidFile={d}/slurmd.pid
ProctrackType=proctrack/pgid
TaskPlugin=task/none
SwitchType=switch/none
MpiDefault=none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
SchedulerParameters=sched_interval=1
KillWait=2
NodeName={host} NodeAddr=127.0.0.1 CPUs={os.cpu_count()} State=UNKNOWN
PartitionName=all Nodes=ALL Default=YES State=UP
""")
        self.environment = dict(os.environ, SLURM_CONF=self.path("slurm.conf"))
        os.chmod(d, 0o755)
        self.daemon("munged", "--foreground", "--force", f"--key-file={d}/munge.key", f"--socket={d}/munge.sock",
                    f"--pid-file={d}/munge.pid", f"--log-file={d}/munge.log", f"--seed-file={d}/munge.seed")
        self.wait(lambda: os.path.exists(self.path("munge.sock")), "munged")
        self.daemon("slurmctld", "-D")
        self.daemon("slurmd", "-D", "-N", host)
        self.wait(lambda: "idle" in subprocess.run(["sinfo", "-h", "-o", "%t"], env=self.environment, capture_output=True,
                                                   text=True, check=False).stdout, "Slurm")

    def daemon(self, *words):
        with open(self.path("daemons"), "a", encoding="utf-8") as log:
            process = subprocess.Popen(words, env=self.environment, stdout=log, stderr=log)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)

    def wait(self, ready, name):
        limit = time.monotonic() + 30
        while not ready():
            if time.monotonic() > limit:
                self.skipTest(f"{name} does not start here: " + self.read("daemons")[-500:])
            time.sleep(0.1)

    def test_a_job_array_runs_the_cases(self):
        self.write("hang.cvi", self.line)
        self.write("list.tsv", "".join(f"base.cvi\t{k}\t\tbase.batch/{k}\n" for k in range(1, 6)) + "hang.cvi\t1\t\th\n")
        more = {"env": self.environment}
        words = ("--slurm", "--chunk", "2", "-o", "base.batch", "list.tsv")
        run = self.start(*words, **more)
        while len(self.done()) < 5:
            self.assertIsNone(run.poll())
            time.sleep(0.05)
        run.send_signal(signal.SIGINT)
        run.communicate()
        self.assertEqual(run.returncode, 130)
        table, told = self.batch(1, "--resume", "--timeout", "1", *words, **more)
        self.assertEqual([row["status"] for row in table.values()], ["ok"] * 5 + ["timeout"])
        self.assertIn("1 run now", told)
        self.assertEqual(sorted(self.starts().values()), [1] * 5 + [2])


if __name__ == "__main__":
    signal.signal(signal.SIGINT, signal.default_int_handler)  # jobs of a script have it ignored, and so had ours
    for name in [n for n in dir(Batch) if n.startswith("test")]:
        setattr(Slurm, name, None)  # its own test alone
    if SANITIZED:  # what goes through most code in few runs: each start costs
        for suite, name in ((s, n) for s in (Batch, Slurm) for n in dir(s) if n.startswith("test")):
            if "row" not in name and "refused" not in name and "keys" not in name:
                setattr(suite, name, None)
    unittest.main(argv=sys.argv[:1])
