#!/usr/bin/env python3
"""Pages of corvo-plot in a real browser: the six examples, what must not become markup, curve files.

usage: plot_pages.py CORVO CORVO-PLOT EXAMPLES
"""

import base64
import cmath
import json
import math
import os
import re
import resource
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.error
import urllib.request

CORVO, PLOT, EXAMPLES = (os.path.abspath(p) for p in sys.argv[1:4])
BROWSER, DRIVER = shutil.which("chromium"), shutil.which("chromedriver")
FLAGS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
         "--disable-background-networking", "--disable-component-update", "--disable-sync"]

# Curves of some charts of each example, and how many charts there are.
LINES = {
    "line500kv.cvi": (100000, 21, {"Z-R": 3, "gamma-velocity": 6, "Zc-magnitude": 6, "TI-angle": 3}),
    "line500kv_phase.cvi": (100000, 29, {"Yc-magnitude": 6, "Yc-deviation": 3, "H-angle": 6,
                                         "H-deviation": 3, "poles-plane": 4, "passivity-curve": 1,
                                         "time-energise": 9, "time-ground-deviation": 4}),
    "singlecore.cbi": (10000, 29, {"Yc-angle": 6, "H-deviation": 3, "passivity-curve": 1}),
    "pipetype.cbi": (5000, 21, {"Y-C": 3, "gamma-travel": 6}),
    "manual.cvi": (100000, 21, {"Z-L": 3, "Zc-angle": 6}),
    "fourwire.cbi": (1000, 21, {"Z-R": 3, "gamma-attenuation": 6}),
}
COUNTS = "return Object.fromEntries([...charts.values()].map(c => [c.spec.id, c.graph.numColumns() - 1]))"
CHART = "const chart = [...charts.values()].find(c => c.spec.id === arguments[0]); "


class Browser:
    """One browser at work; every process that it starts ends with it."""

    def __init__(self, folder):
        self.driver = subprocess.Popen([DRIVER, "--port=0"], stdout=subprocess.PIPE, text=True)
        found = next(m for m in (re.search(r"on port (\d+)\.", line) for line in self.driver.stdout) if m)
        self.base = f"http://127.0.0.1:{found[1]}/session"
        options = {"binary": BROWSER, "args": FLAGS + ["--user-data-dir=" + folder, "--window-size=1400,1000"]}
        asked = {"goog:chromeOptions": options, "goog:loggingPrefs": {"browser": "ALL", "performance": "ALL"}}
        self.base += "/" + self.call("", {"capabilities": {"alwaysMatch": asked}})["sessionId"]

    def call(self, path, body=None, method="POST"):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.base + path, data, {"Content-Type": "application/json"}, method=method)
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        try:
            with opener.open(request, timeout=300) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as wrong:
            raise RuntimeError(json.load(wrong)["value"]["message"]) from wrong

    def run(self, script, *arguments):
        return self.call("/execute/sync", {"script": script, "args": arguments})

    def devtools(self, command, **params):
        return self.call("/goog/cdp/execute", {"cmd": command, "params": params})

    def log(self, kind):
        return self.call("/se/log", {"type": kind})

    def point(self, *steps):
        """Moves, presses and releases the mouse: (x, y) or "Down", "Up"."""
        actions = [{"type": "pointerMove", "x": round(s[0]), "y": round(s[1]), "duration": 40} if isinstance(s, tuple)
                   else {"type": "pointer" + s, "button": 0} for s in steps]
        mouse = {"type": "pointer", "id": "mouse", "parameters": {"pointerType": "mouse"}, "actions": actions}
        self.call("/actions", {"actions": [mouse]})

    def close(self):
        try:
            self.call("", method="DELETE")
        finally:
            self.driver.terminate()
            self.driver.wait(20)
            self.driver.stdout.close()


def numbers(text):
    return [float(n) for n in re.findall(r"^ *(-?\d\S*)$", text, re.M)]


def told(text):
    """A number as the page tells it: 5.1 or 5.1 · 10⁻⁴, and what stands behind it."""
    text = text.replace("−", "-").translate(str.maketrans("⁰¹²³⁴⁵⁶⁷⁸⁹⁻", "0123456789-"))
    return float(re.sub(r" · 10", "e", text).split()[0]) * (1000 if "kHz" in text else 1)


def admittance(model, f):
    """Yc(1,1) of a phase model with three conductors, from the numbers of its file."""
    n = numbers(model[model.index("Residues and poles:"):model.index("Fitting parameters for the prop")])
    poles, s = int(n[0]), 2j * math.pi * f
    pairs = [complex(*n[i:i + 2]) for i in range(1, 1 + 8 * poles, 2)]
    rest = n[3 * (1 + 8 * poles):]  # the constants, which are real
    return rest[0] + sum(pairs[4 * m + 1] / (s - pairs[4 * m]) for m in range(poles))


class Pages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        if not BROWSER or not DRIVER:
            raise RuntimeError("chromium and chromedriver are needed (chromium, chromium-driver)")
        cls.scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.scratch.cleanup)
        cls.browser = Browser(cls.path("profile"))
        cls.addClassCleanup(cls.browser.close)

    @classmethod
    def path(cls, name):
        return os.path.join(cls.scratch.name, name)

    def plot(self, *arguments, status=0):
        run = subprocess.run([PLOT, *arguments], capture_output=True, text=True, check=False, cwd=self.scratch.name)
        self.assertEqual(run.returncode, status, run.stdout + run.stderr)
        return run

    def open(self, page):
        for kind in ("browser", "performance"):
            self.browser.log(kind)
        self.browser.call("/url", {"url": "file://" + self.path(page)})
        self.assertEqual(self.browser.log("browser"), [])
        events = [json.loads(e["message"])["message"] for e in self.browser.log("performance")]
        asked = [e["params"]["request"]["url"] for e in events if e["method"] == "Network.requestWillBeSent"]
        # The browser's own first page may still be on its way.
        self.assertEqual([u for u in asked if not u.startswith(("data:", "chrome:"))], ["file://" + self.path(page)])

    def open_example(self, name):
        length, count, curves = LINES[name]
        self.plot(os.path.join(EXAMPLES, name), "/length", str(length), "-o", self.path(name + ".html"))
        self.open(name + ".html")
        counts = self.browser.run(COUNTS)
        self.assertEqual(len(counts), count, counts)
        self.assertEqual({k: counts.get(k) for k in curves}, curves)

    def model_of(self, name):
        """The model file that the program writes itself."""
        shutil.copy(os.path.join(EXAMPLES, name), self.scratch.name)
        subprocess.run([CORVO, "/file", name, "/length", str(LINES[name][0])], cwd=self.scratch.name,
                       capture_output=True, check=False)
        ending = ".cvo" if name.endswith(".cvi") else ".cbo"
        with open(self.path(os.path.splitext(name)[0] + ending), encoding="utf-8") as file:
            return file.read()

    def place(self, chart):
        """The rectangle of a chart in the window, scrolled to its middle."""
        return self.browser.run(CHART + "document.documentElement.style.scrollBehavior = 'auto';"
                                "chart.plot.scrollIntoView({block: 'center'});"
                                "return chart.plot.getBoundingClientRect().toJSON()", chart)

    def cursor(self, chart, f):
        """What the cursor tells near a frequency: the frequency, and each series."""
        box = self.place(chart)
        x = self.browser.run(CHART + "return chart.graph.toDomXCoord(Math.log10(arguments[1]))", chart, f)
        self.browser.point((box["left"] + x, box["top"] + 60))
        at, values = self.browser.run(CHART + "return [chart.at.textContent, Object.fromEntries("
                                      "chart.spec.series.map((s, i) => [s.name, chart.outputs[i].textContent]))]", chart)
        return told(at), {name: told(v) for name, v in values.items()}

    def test_examples_are_drawn_as_described(self):
        for name in LINES:
            with self.subTest(name):
                self.open_example(name)
                with open(os.path.join(EXAMPLES, name), encoding="utf-8") as file:
                    wanted = [tuple(map(float, p.split()[:2])) for p in re.findall(r"^P\d+ ?:(.*?)(?:\[m\])?$", file.read(), re.M)]
                drawn = self.browser.run("""const sums = new Map(), of = (c) => [c.cx.baseVal.value, -c.cy.baseVal.value];
                    for (const w of document.querySelectorAll('[data-bundle] .wire')) {
                      const all = sums.get(w.parentNode.dataset.bundle) || [];
                      sums.set(w.parentNode.dataset.bundle, [...all, of(w)]);
                    }
                    const mean = (all, k) => all.reduce((s, p) => s + p[k], 0) / all.length;
                    const cables = [...document.querySelectorAll('figure > .way > .cable')].map((c) => of(c.querySelector('.ring')));
                    return [...[...sums.values()].map((all) => [mean(all, 0), mean(all, 1)]), ...cables]""")
                if name.endswith(".cbi"):  # depths; in the pipe from its centre
                    centre = -wanted[0][1] if "pipe" in name else None
                    wanted = [(x, centre + y if centre and k else -y) for k, (x, y) in enumerate(wanted)]
                self.assertEqual(len(drawn), len(wanted))
                for a, b in zip(sorted(map(tuple, drawn)), sorted(wanted)):
                    self.assertLess(math.dist(a, b), 1e-6, (drawn, wanted))
                model = self.model_of(name)
                if "Fre-Phase" in model:
                    continue  # of it another test
                values = self.cursor("Zc-magnitude", 1000)[1]
                for mode, Zc in re.findall(r"^ +(\d+) +\1 +\S+ +(\S+)", model, re.M):
                    self.assertLess(abs(values.get(f"mode {mode}, model", float(Zc)) / float(Zc) - 1), 1e-4)

    def test_cursor_tells_the_model(self):
        self.open_example("line500kv_phase.cvi")
        f, values = self.cursor("Yc-magnitude", 60)
        model = admittance(self.model_of("line500kv_phase.cvi"), f)
        self.assertLess(abs(math.log(f / 60)), 0.05)
        self.assertLess(abs(values["(1,1), model"] / abs(model) - 1), 1e-4)
        self.assertLess(abs(values["(1,1)"] / abs(model) - 1), 1e-2)
        angle = self.cursor("Yc-angle", f)[1]["(1,1), model"]
        self.assertLess(abs(angle - math.degrees(cmath.phase(model))), 1e-2)

    def test_zoom_keys_files_dark_and_paper(self):
        self.open_example("line500kv_phase.cvi")
        box, window = self.place("H-magnitude"), CHART + "return chart.graph.xAxisRange()"
        whole = self.browser.run(window, "H-magnitude")
        spots = [(box["left"] + box["width"] * share, box["top"] + 100) for share in (0.4, 0.7)]
        self.browser.point(spots[0], "Down", spots[1], "Up")
        for chart in ("H-magnitude", "H-deviation"):  # one range for all of a function
            low, high = self.browser.run(window, chart)
            self.assertLess(abs((high - low) / (whole[1] - whole[0]) - 0.3), 0.1)
        self.browser.point(spots[0], "Down", "Up", "Down", "Up")
        for chart in ("H-magnitude", "H-deviation"):
            self.assertLess(math.dist(self.browser.run(window, chart), whole), 1e-9)
        self.browser.run(CHART + "chart.plot.focus()", "Z-R")
        keys = [{"type": kind, "value": "\uE014"} for kind in ("keyDown", "keyUp")]
        self.browser.call("/actions", {"actions": [{"type": "key", "id": "keys", "actions": keys}]})
        self.assertAlmostEqual(told(self.browser.run(CHART + "return chart.at.textContent", "Z-R")), 0.24206)
        csv, png = self.browser.run(CHART + "return [asCsv(chart.spec), asPicture(chart)]", "Yc-deviation")
        self.assertRegex(csv, r'^"Frequency \(Hz\)","\(1,1\), deviation \(% of 0.003651 S\)"')
        self.assertEqual(csv.count("\r\n"), 1 + self.browser.run(CHART + "return chart.graph.numRows()", "Yc-deviation"))
        self.assertGreater(len(base64.b64decode(png.split(",")[1])), 5000)

        colours = "return [getComputedStyle(document.body).backgroundColor, chart.graph.getColors()[0]]"
        light = self.browser.run(CHART + colours, "Z-R")
        self.browser.devtools("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": "dark"}])
        limit = time.monotonic() + 10  # the page hears of it as an event
        while True:
            dark = self.browser.run(CHART + colours, "Z-R")
            if dark[1] != light[1] or time.monotonic() > limit:
                break
            time.sleep(0.05)
        self.assertLess(max(map(int, re.findall(r"\d+", dark[0]))), 60)
        self.assertNotEqual(light[1], dark[1])

        sheets = self.browser.devtools("Page.printToPDF", preferCSSPageSize=True)["data"]
        self.assertGreater(len(base64.b64decode(sheets)), 100000)
        self.browser.devtools("Emulation.setEmulatedMedia", media="print")
        self.browser.devtools("Emulation.setDeviceMetricsOverride", width=703, height=1032, deviceScaleFactor=1, mobile=False)
        sheet = self.browser.run("""dispatchEvent(new Event('beforeprint'));
            return [...document.querySelectorAll('figure')].map((f) => [f.id, f.getBoundingClientRect().right, f.offsetHeight,
              getComputedStyle(f).breakInside, ...[...f.querySelectorAll('.plot')].flatMap((p) =>
                [p.clientWidth - p.querySelector('img').offsetWidth, p.clientHeight - p.querySelector('img').offsetHeight])])""")
        for name, right, height, inside, *rests in sheet:
            self.assertTrue(right <= 703 and height < 1032 and inside == "avoid" and not any(rests), name)
        self.browser.run("dispatchEvent(new Event('afterprint'))")
        self.browser.devtools("Emulation.clearDeviceMetricsOverride")
        self.browser.devtools("Emulation.setEmulatedMedia", media="", features=[])

    def test_names_are_text(self):
        with open(os.path.join(EXAMPLES, "line500kv.cvi"), encoding="utf-8") as file:
            text = file.read().replace("Line Name: LINE500", "Line Name: <script>document.title=1<b>")
        with open(self.path("<b>a<!--<script>.cvi"), "w", encoding="latin-1") as file:
            file.write(text.replace("Circuit\n{", "Circuit\n{\n</script><script>document.title = 2\xe9</script>", 1))
        self.plot("<b>a<!--<script>.cvi", "/length", "1000", "-o", self.path("names.html"))
        self.open("names.html")
        title, head, console, extra = self.browser.run(
            "return [document.title, document.getElementById('head').textContent, document.querySelector('pre').textContent,"
            "document.querySelectorAll('b, body > :not(#data) script').length]")
        self.assertIn("<script>document.title=1<b>: Bergeron", title)
        self.assertIn("<b>a<!--<script>.cvi", head)
        self.assertIn("</script><script>document.title = 2", console)
        self.assertEqual(extra, 0)

    def test_curve_files(self):
        with open(os.path.join(EXAMPLES, "line500kv_phase.cvi"), encoding="utf-8") as file:
            text = file.read().replace("Interpolate Travel Times", "Write Detailed Output Files: 1\nInterpolate Travel Times")
        os.mkdir(self.path("curves"))
        with open(self.path("curves/a.cvi"), "w", encoding="utf-8") as file:
            file.write(text)
        subprocess.run([CORVO, "/file", "a.cvi", "/length", "100000"], cwd=self.path("curves"), capture_output=True, check=True)
        self.plot("--curves", "curves")
        self.open("curves/curves.html")
        counts = self.browser.run(COUNTS)
        self.assertEqual([counts.get(k) for k in ("Z-R", "Yc-magnitude", "H-deviation", "gamma-velocity", "gdis-magnitude")], [3, 6, 3, 3, 3])
        f, values = self.cursor("H-magnitude", 1000)
        with open(self.path("curves/LINE500_hmp.out"), encoding="utf-8") as file:
            rows = [[float(n) for n in line.split()] for line in file.readlines()[1:]]
        row = min(rows, key=lambda r: abs(r[1] - f))
        for name, wanted in zip(("(1,1)", "(1,1), model", "(1,2)", "(1,2), model"), row[2:6]):
            self.assertLess(abs(values[name] / wanted - 1), 1e-4)

    def test_enforcement_is_seen_before_and_after(self):
        more = ("Lower frequency for passivity check: 0.5", "Upper frequency for passivity check: 1.0E6",
                "Frequency increments for passivity check: 1000", "Maximum iterations for passivity: 10",
                "Maximum relative error for passivity: 5.0", "Eigenvalue tolerence: 1.0E-9", "Interpolate Travel Times")
        with open(os.path.join(EXAMPLES, "line500kv_phase.cvi"), encoding="utf-8") as file:
            text = re.sub(r"(Fitting Error .*: )0.2", r"\g<1>2.0", file.read())
        with open(self.path("enforced.cvi"), "w", encoding="utf-8") as file:
            file.write(text.replace(more[-1], "\n".join(more)))
        self.plot("enforced.cvi", "/length", "100000")
        with open(self.path("enforced.html"), encoding="utf-8") as file:
            data = json.loads(re.search(r'id="data">(.*?)</script>', file.read(), re.S)[1])
        self.assertEqual(data["passivity"]["after"]["bands"], [])
        self.assertEqual([round(band[0]) for band in data["passivity"]["before"]["bands"]], [24, 68])

    def test_command_line_and_speed(self):
        phase = os.path.join(EXAMPLES, "line500kv_phase.cvi")
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        self.plot(phase, "/length", "100000", "-o", self.path("speed.html"))
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        self.assertLess(after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, 2.0)
        self.assertLess(os.path.getsize(self.path("speed.html")), 700000)
        self.assertIn("usage", self.plot("--help").stdout)
        for wrong in (["--nonsense"], [phase], [phase, "/length", "-1"], [phase, "--curves", "."], ["--curves", EXAMPLES],
                      ["missing.cvi", "/length", "1"]):
            self.plot(*wrong, status=2)
        self.plot(phase, "/length", "100000", "-o", "/dev/full", status=1)
        self.plot(phase, "/length", "100000", "-o", self.path("nowhere/a.html"), status=1)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
