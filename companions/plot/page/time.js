// Simulations: the exact line, the model's functions, and the model as it is stepped, with the
// deviation of each beside them.

function addCase(host, c) {
  const values = unpacked(c.t), box = make("div", { class: "charts" });
  const all = c.quantities.map((q) => ({ name: q.name, line: unpacked(q.line), model: unpacked(q.model), stepped: unpacked(q.stepped) }));
  const off = (a, b) => Array.from(a, (v, k) => (100 * (v - b[k])) / c.peak);
  const over = { values, x: SCALES.linear(), y: SCALES.linear(), xAxis: "Time (ms)", tellX: (t) => told(t) + " ms", group: "time-" + c.id };
  const step = `${told(c.step, 4)} µs`;
  host.append(make("div", { class: "function", id: "case-" + c.id }, make("h3", {}, c.title[0].toUpperCase() + c.title.slice(1)), box));
  addChart(box, { ...over, id: `time-${c.id}`, title: c.unit === "A" ? "Current" : "Voltage", yAxis: `${c.unit === "A" ? "i" : "v"} (${c.unit}, sources of 1 V)`,
    series: all.flatMap((q, colour) => [{ name: q.name, colour, style: "under", values: q.line }, { name: q.name + ", model", colour, style: "model", values: q.model },
      { name: q.name + ", stepped", colour, style: "stepped", values: q.stepped }]),
    note: c.of > all.length ? `${all.length} of ${c.of}: the first, and those with the largest deviations.` : "" });
  addChart(box, { ...over, id: `time-${c.id}-deviation`, title: "Deviation", yAxis: `deviation (% of ${told(c.peak, 4)} ${c.unit})`,
    series: all.flatMap((q, colour) => [{ name: q.name + ", of the model", colour, values: off(q.model, q.line) },
      { name: q.name + ", of the step", colour, style: "stepped", values: off(q.stepped, q.model) }]), note: `The step is ${step}.` });
}

function addInTime(inTime) {
  const section = addSection("time", "In time");
  if (inTime.note) { section.append(make("p", { class: "none" }, inTime.note)); return; }
  section.append(make("p", {}, "Broad and pale: the line. Dashed: the functions of the model. Dotted: the model as a simulator steps it. A deviation of the model stays however short the step is."));
  const growth = data.verdicts.filter((f) => f.subject === "growth");
  if (growth.length) section.append(table(["Growth without end", "Ends", ""], growth.map((f) => [chipOf(f.verdict || "told", f.verdict || "info"), f.where, toldFinding(f)])));
  for (const c of inTime.cases) addCase(section, c);
}
