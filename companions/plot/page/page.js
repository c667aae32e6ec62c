// Builds the parts of the page in turn from its embedded data.

const data = JSON.parse(document.getElementById("data").textContent);
const main = document.getElementById("main");

const frequencies = { x: SCALES.frequency(), xAxis: "Frequency (Hz)", tellX: toldFrequency };

function addSection(id, title, words) {
  const section = make("section", { id, "aria-labelledby": id + "-title" }, make("h2", { id: id + "-title" }, title));
  if (words) section.append(make("p", {}, words));
  main.append(section);
  document.getElementById("contents").append(make("a", { href: "#" + id }, title));
  return section;
}

function table(heads, rows, kind = "") {
  const cell = (name) => (value) => {
    const node = value instanceof Node || typeof value === "string" ? value : told(value, 6);
    return make(name, { class: typeof value === "number" ? "number" : false }, node);
  };
  const top = heads.map((head, i) => make("th", { scope: "col", class: rows.length && typeof rows[0][i] === "number" ? "number" : false }, head));
  return make("div", { class: "scroll" }, make("table", { class: kind }, make("thead", {}, make("tr", {}, ...top)),
    make("tbody", {}, ...rows.map((row) => make("tr", {}, ...row.map(cell("td")))))));
}

// Radio buttons select one of several, check boxes select any number.
function choice(name, title, options, many, chosen, changed) {
  const boxes = options.map((option, i) => {
    const id = `${name}-${i}`;
    const box = make("input", { type: many ? "checkbox" : "radio", name, id, onchange: () => {
      const on = boxes.flatMap(([b], k) => (b.checked ? [k] : []));
      changed(on);
    } });
    box.checked = chosen.includes(i);
    return [box, make("label", { for: id }, option)];
  });
  return { boxes, field: make("fieldset", { class: "choice" }, make("legend", {}, title), ...boxes.flat()) };
}

// ---- functions of frequency

function seriesOf(view, c, packed, i, colour) {
  const element = c.elements[i], of = packed[i], both = of.line && of.model;
  const marks = c.kind === "fit" && c.fit.size ? c.fit : undefined;
  if (view.both) return both ? [{ name: element.name, colour, values: deviations(of.line, of.model, c.f, c), marks }] : [];
  const all = [];
  if (of.line) all.push({ name: element.name, colour, style: both ? "under" : "", marks: both ? marks : undefined, values: viewed(view, of.line, c.f, c) });
  if (of.model) all.push({ name: element.name + ", model", colour, style: "model", values: viewed(view, of.model, c.f, c) });
  // Both angles on the same turn.
  if (view.after && both) {
    const turn = 360 * Math.round((all[1].values[0] - all[0].values[0]) / 360);
    all[1].values = all[1].values.map((a) => a - turn);
  }
  return all;
}

const MOSTSHOWN = 8;

function addFunction(host, c, set) {
  const own = { ...c, f: set.f, fit: set.fit, length: data.length, symbol: c.id.split(" ").at(-1).replace(/-fit$/, "") }, packed = [];
  const state = { shown: c.shown, form: 0 }, box = make("div", { class: "charts" });
  const unpack = (i) => (packed[i] ??= Object.fromEntries(["line", "model"].filter((k) => c.elements[i][k]).map((k) => [k, unpacked(c.elements[i][k])])));
  const draw = () => {
    clearCharts(box);
    state.shown.forEach(unpack);
    for (const name of KINDS[c.kind][state.form]) {
      const view = VIEWS[name], series = state.shown.flatMap((i, k) => seriesOf(view, own, packed, i, k));
      const axis = typeof view.axis === "string" ? view.axis : view.axis(own);
      if (series.length === 0 || (view.delays && !data.length)) continue;
      const delays = view.delays ? (data.delays || []).filter((d) => d.delay > 0).map((d) => ({ at: d.delay, name: d.name })) : [];
      addChart(box, { ...frequencies, id: `${c.id}-${name}`.replace(/ /g, "_"), title: view.title, yAxis: axis, y: SCALES[view.scale](), values: set.f, series,
        wide: view.wide || view.delays, group: c.id, lines: delays, note: delays.length ? "Dotted: delays of the model." : "" });
    }
  };
  const part = make("div", { class: "function", id: c.id.replace(/ /g, "_") }, make("h3", {}, c.title));
  if (c.note) part.append(make("p", {}, c.note));
  if (KINDS[c.kind].length > 1) {
    const forms = c.kind === "series" ? ["R and L", "Magnitude and angle"] : ["G and C", "Magnitude and angle"];
    part.append(choice(c.id + "-form", "Show", forms, false, [0], ([form]) => { state.form = form; draw(); }).field);
  }
  const picked = choice(c.id + "-pick", "Elements", c.elements.map((e) => e.name), true, c.shown, (on) => {
    if (on.length > MOSTSHOWN) { const extra = on.find((i) => !state.shown.includes(i)); picked.boxes[extra][0].checked = false; return; }
    state.shown = on;
    draw();
  });
  const many = c.elements.length > 20;
  if (c.elements.length > 1) part.append(many ? make("details", { class: "pick" }, make("summary", {}, `Elements: ${c.elements.length} to choose from, ${MOSTSHOWN} at a time`), picked.field) : picked.field);
  part.append(box);
  host.append(part);
  part.choose = (name) => {
    const across = (name || "").replace(/\((\d+),(\d+)\)/, "($2,$1)"); // of a symmetric matrix only one half is here
    const i = [name, across].map((n) => c.elements.findIndex((e) => e.name === n)).find((at) => at >= 0) ?? -1;
    if (i < 0 || state.shown.includes(i)) return;
    state.shown = [...state.shown.slice(0, 2), i];
    picked.boxes.forEach(([b], k) => { b.checked = state.shown.includes(k); });
    draw();
  };
  draw();
}

function addFunctions(host, sets) {
  for (const packed of sets || []) {
    const set = { f: unpacked(packed.f), fit: new Set(packed.fit) };
    for (const c of packed.functions) addFunction(host, c, set);
  }
}

// ---- facts beside the curves

function addPoles(host, poles) {
  const rows = poles.flatMap((p, s) => p.re.map((re, k) => ({ re, im: p.im[k], residue: p.residue[k], s }))).sort((a, b) => a.re - b.re || a.im - b.im);
  const sizes = rows.map((p) => Math.hypot(p.re, p.im)).filter((v) => v > 0), least = Math.min(...sizes);
  const scale = SCALES.signed(10 ** Math.floor(Math.log10(least) - 1));
  const tell = (s) => (row) => (rows[row].s === s ? `${told(rows[row].im, 4)}, residue ${told(rows[row].residue, 3)}` : "");
  rows.push({ re: least, im: NaN, s: -1 }); // so that the imaginary axis is visible
  const box = make("div", { class: "charts" });
  host.append(make("div", { class: "function", id: "poles" }, make("h3", {}, "Poles in the s plane"), box));
  addChart(box, { id: "poles-plane", title: `${sizes.length} poles`, yAxis: "Im s (1/s)", xAxis: "Re s (1/s)", x: scale, y: scale, wide: true, marked: true,
    values: rows.map((p) => p.re), tellX: (re) => told(re, 4) + " 1/s", bands: [{ from: 0, to: 1e300, colour: "--band" }],
    series: poles.map((p, s) => ({ name: p.name, colour: s, marks: "cross", values: rows.map((r) => (r.s === s ? r.im : NaN)), tell: tell(s) })),
    note: "Both axes count decades on both sides of 0. Right of the imaginary axis, shaded, a model is unstable." });
}

function addDelays(host, delays) {
  const rows = delays.map((d) => [d.name, d.delay, d.travel, 100 * (d.delay / d.travel - 1)]);
  host.append(make("div", { class: "function", id: "delays" }, make("h3", {}, "Delays beside the travel times"),
    table(["", "Delay of the model (ms)", "Travel time of the line (ms)", "Difference (%)"], rows)));
}

function addPassivity(passivity) {
  const section = addSection("passivity", "Passivity", "Smallest eigenvalue of the real part of the nodal admittance of both ends. Below 0 the model generates power; those bands are shaded.");
  const curves = [["after", passivity.before ? "after the enforcement" : "smallest eigenvalue", 0, "--band"], ["before", "before the enforcement", 1, "--bandbefore"]]
    .filter(([key]) => passivity[key]).map(([key, name, colour, shade]) => ({ name, colour, shade, f: unpacked(passivity[key].f), v: unpacked(passivity[key].value), bands: passivity[key].bands }));
  const f = [...new Set(curves.flatMap((c) => [...c.f]))].sort((a, b) => a - b);
  const series = curves.map((c) => {
    // At the frequencies of both: linear between the points of its own.
    let k = 0;
    const values = f.map((at) => {
      while (k < c.f.length - 2 && c.f[k + 1] < at) k++;
      const share = (Math.log(at) - Math.log(c.f[k])) / (Math.log(c.f[k + 1]) - Math.log(c.f[k]));
      return c.v[k] + share * (c.v[k + 1] - c.v[k]);
    });
    return { name: c.name, colour: c.colour, style: c.colour ? "model" : "", values };
  });
  const sizes = series.flatMap((s) => s.values.map(Math.abs)).filter((v) => v > 0);
  const least = Math.max(Math.min(...sizes), Math.max(...sizes) * 1e-8);
  const box = make("div", { class: "charts" });
  section.append(box);
  addChart(box, { ...frequencies, id: "passivity-curve", title: "Smallest eigenvalue", yAxis: "λ (S)", y: SCALES.signed(10 ** Math.floor(Math.log10(least))), values: f, series, wide: true,
    lines: [{ at: 0 }], bands: curves.flatMap((c) => c.bands.map(([from, to]) => ({ from, to, colour: c.shade }))), note: "The vertical axis counts decades on both sides of 0." });
  for (const c of curves) {
    const rows = c.bands.slice(0, 20).map(([from, to, worst, at]) => [toldFrequency(from), toldFrequency(to), told(worst, 4) + " S", toldFrequency(at)]);
    if (rows.length) section.append(make("h3", {}, `Bands of violation, ${c.name}: ${c.bands.length}`), table(["From", "To", "Smallest eigenvalue", "At"], rows));
    else section.append(make("p", {}, passivity.before ? `No violation ${c.name}.` : "No violation."));
  }
}

// ---- verdicts

const PLACES = [["in time", "time"], ["growth", "time"], ["poles", "poles"], ["delay", "delays"], ["step", "delays"], ["passivity", "passivity"], ["modes", "modes"], ["line", "constants"], ["Yc", "Yc"], ["H", "H"],
  ["Zc", "Zc-fit"], ["Z", "Z-fit"], ["T", "delays"], ["R", "modes"], ["shunt", "constants"], ["series", "constants"]];

const chipOf = (word, text) => make("span", { class: `chip ${word}` }, text);

function placeOf(finding) {
  const simulated = finding.subject === "in time" && document.getElementById("case-" + finding.where.split(",")[0]);
  if (simulated) return simulated.id;
  const found = PLACES.find(([subject, id]) => finding.subject.startsWith(subject) && document.getElementById(id));
  return found ? found[1] : finding.subject === "Zc" ? "Zc" : "constants";
}

function toldFinding(f) {
  const remedy = f.remedy ? `; try ${f.remedy}` : "";
  if (f.words) return f.words + remedy;
  return remedy ? toldFinding({ ...f, remedy: "" }) + remedy : told(f.value, 4) + (f.unit ? " " + f.unit : "") + (f.rms === undefined ? "" : `, rms ${told(f.rms, 3)} ${f.unit || ""}`);
}

function addVerdicts(section) {
  const count = (word) => data.verdicts.filter((f) => f.verdict === word).length;
  const order = { bad: 0, doubtful: 1, good: 2, undefined: 3 };
  section.append(make("div", { class: "sum" }, ...["bad", "doubtful", "good"].map((word) => chipOf(word, `${count(word)} ${word}`))));
  const rows = [...data.verdicts].sort((a, b) => order[a.verdict] - order[b.verdict]).map((f) => {
    const id = placeOf(f), element = (f.where.match(/\(\d+,\d+\)|mode \d+/) || [])[0];
    const link = make("a", { href: "#" + id, onclick: () => document.getElementById(id).choose?.(element) }, f.subject);
    return [chipOf(f.verdict || "told", f.verdict || "info"), link, f.where, toldFinding(f), f.frequency ? toldFrequency(f.frequency) : ""];
  });
  const listOf = (some) => {
    const list = table(["Verdict", "Quantity", "Where", "Value", "At"], some, "verdicts");
    for (const row of list.querySelectorAll("tr")) row.children[2].classList.add("where");
    return list;
  };
  const wrong = count("bad") + count("doubtful");
  if (wrong) section.append(listOf(rows.slice(0, wrong)));
  section.append(make("details", { class: "rest" }, make("summary", {}, `${rows.length - wrong} that are good or for information`), listOf(rows.slice(wrong))));
}

function addSequences(host) {
  if (!data.sequences || data.sequences.length === 0) return;
  host.append(make("div", { class: "function", id: "sequences" }, make("h3", {}, `Sequence values at ${toldFrequency(data.reported)}`),
    table(["", "R (ohm)", "X (ohm)", "B (S)", "Zc (ohm)", "R (ohm/km)", "L (mH/km)", "C (nF/km)"], data.sequences)));
}

// ---- the page

function addHead() {
  document.title = data.curves ? `${data.title}: detail curves` : `${data.title}: ${data.model}, ${data.facts.Length}`;
  const facts = Object.entries(data.facts).map(([k, v]) => make("div", {}, make("dt", {}, k), make("dd", {}, v)));
  document.getElementById("head").append(make("h1", {}, data.title), make("dl", { class: "facts" }, ...facts));
}

function addLine() {
  const verdicts = addSection("verdicts", "Verdicts", "The model in the file against the line computed directly. Each leads to its picture.");
  addGeometry(addSection("geometry", "Right-of-way"), data.geometry);
  const constants = addSection("constants", "Constants", "Per length, over frequency. Drag to zoom, double click to see all again.");
  addSequences(constants);
  addFunctions(constants, data.constants);
  addFunctions(addSection("modes", "Modes"), data.modes);
  if (data.fit || data.poles.length || data.delays.length) {
    const fit = addSection("fit", "Fit", data.fit ? "Broad and pale: the line. Dashed: the model in the file. Dots: the points of the fit." : "The model has no fits: its data are those of the modes.");
    addFunctions(fit, data.fit);
    if (data.poles.length) addPoles(fit, data.poles);
    if (data.delays.length) addDelays(fit, data.delays);
  }
  if (data.passivity) addPassivity(data.passivity);
  addInTime(data.inTime);
  addVerdicts(verdicts);
  addSection("console", "Console").append(make("details", { class: "console" }, make("summary", {}, "What the run printed"), make("pre", {}, data.console)));
}

function addCurves() {
  for (const [id, title] of [["constants", "Constants"], ["modes", "Modes"], ["fit", "Fit"], ["ends", "Ends"]])
    if (data[id]) addFunctions(addSection(id, title, id === "fit" ? "Broad and pale: computed. Dashed: fitted." : ""), data[id]);
}

addHead();
if (data.curves) addCurves();
else addLine();

matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => redrawCharts(false));
for (const [event, on] of [["beforeprint", true], ["afterprint", false]])
  addEventListener(event, () => { document.documentElement.classList.toggle("printing", on); redrawCharts(on); });
