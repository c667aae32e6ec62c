// One chart: dygraphs draws the curves; legend, cursor and download buttons are added around it.

const charts = new Map(); // maps a plot element to its chart

// An element with attributes and children; text is inserted as text, never as markup.
function make(name, attributes = {}, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) {
    if (key.startsWith("on")) element.addEventListener(key.slice(2), value);
    else if (value !== false && value !== undefined) element.setAttribute(key, value);
  }
  element.append(...children);
  return element;
}

const DASHES = { model: [6, 4], stepped: [1.5, 3] };
const styleOf = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();
const colourOf = (series) => styleOf("--s" + (series.colour % 8));

function download(name, url) {
  make("a", { href: url, download: name }).click();
}

function extent(spec, shown) {
  let low = Infinity, high = -Infinity;
  spec.series.forEach((s, i) => {
    for (const v of shown[i] ? s.drawn : [])
      if (v !== null) { low = Math.min(low, v); high = Math.max(high, v); }
  });
  for (const line of spec.lines || []) { low = Math.min(low, spec.y.to(line.at)); high = Math.max(high, spec.y.to(line.at)); }
  if (low > high) return [0, 1];
  const least = spec.y.decades ? 0.05 : Math.max(Math.abs(high), Math.abs(low), 1e-30) * 0.02;
  const pad = Math.max((high - low) * 0.06, (least - (high - low)) / 2);
  return [low - pad, high + pad];
}

// Dots at the points of the fit, crosses at poles.
function drawMark(mark) {
  return (g, name, ctx, cx, cy, color, radius, k) => {
    if (mark !== "cross" && !mark.has(k)) return;
    ctx.beginPath();
    if (mark === "cross") {
      ctx.strokeStyle = color;
      ctx.lineWidth = 1.6;
      for (const side of [-4, 4]) { ctx.moveTo(cx - 4, cy - side); ctx.lineTo(cx + 4, cy + side); }
      ctx.stroke();
    } else {
      ctx.fillStyle = color;
      ctx.arc(cx, cy, 1.7, 0, 2 * Math.PI);
      ctx.fill();
    }
  };
}

function seriesOptions(spec) {
  const options = {};
  for (const s of spec.series) {
    options[s.name] = {
      color: colourOf(s), strokeWidth: s.marks === "cross" ? 0 : s.style === "under" ? 4 : 1.7,
      strokePattern: DASHES[s.style] || null,
      drawPoints: Boolean(s.marks), ...(s.marks && { drawPointCallback: drawMark(s.marks) }),
      ...(s.style === "under" && { plotter: pale }),
    };
  }
  return options;
}

function pale(e) {
  e.drawingContext.save();
  e.drawingContext.globalAlpha = 0.38;
  Dygraph.Plotters.linePlotter(e);
  e.drawingContext.restore();
}

function underlay(spec) {
  return (ctx, area, g) => {
    ctx.save();
    ctx.beginPath();
    ctx.rect(area.x, area.y, area.w, area.h);
    ctx.clip();
    for (const band of spec.bands || []) {
      const [from, to] = [band.from, band.to].map((f) => g.toDomXCoord(spec.x.to(f)));
      ctx.fillStyle = styleOf(band.colour);
      ctx.fillRect(from, area.y, Math.max(to - from, 1.5), area.h);
    }
    ctx.font = "11px system-ui, sans-serif";
    const named = []; // positions of the names, so that they do not overlap
    for (const line of spec.lines || []) {
      const y = Math.round(g.toDomYCoord(spec.y.to(line.at))) + 0.5;
      ctx.strokeStyle = ctx.fillStyle = styleOf("--soft");
      ctx.setLineDash([2, 3]);
      ctx.beginPath();
      ctx.moveTo(area.x, y);
      ctx.lineTo(area.x + area.w, y);
      ctx.stroke();
      if (!line.name || named.some((other) => Math.abs(other - y) < 12)) continue;
      named.push(y);
      ctx.fillText(line.name, area.x + area.w - ctx.measureText(line.name).width - 4, y - 4);
    }
    ctx.restore();
  };
}

const ticker = (scale, room) => (a, b, pixels) => ticksOf(scale, a, b, Math.max(2, pixels / room));

function graphOptions(chart) {
  const { spec } = chart;
  return {
    labels: ["x", ...spec.series.map((s) => s.name)], legend: "never", series: seriesOptions(spec),
    visibility: chart.shown, gridLineColor: styleOf("--grid"), axisLineColor: styleOf("--faint"),
    highlightCircleSize: 3.5, animatedZooms: false, connectSeparatedPoints: false, xRangePad: spec.marked ? 12 : 0,
    axes: {
      x: { ticker: ticker(spec.x, 62), axisLabelWidth: 60, axisLabelFontSize: 11, pixelsPerLabel: 60 },
      y: { ticker: ticker(spec.y, 34), axisLabelWidth: 54, axisLabelFontSize: 11, valueRange: extent(spec, chart.shown) },
    },
    underlayCallback: underlay(spec),
    highlightCallback: (event, x, points, row) => together(chart, (other) => showCursor(other, row)),
    unhighlightCallback: () => together(chart, hideCursor),
    zoomCallback: (low, high) => together(chart, (other) => {
      if (other !== chart) other.graph.updateOptions({ dateWindow: chart.graph.isZoomed("x") ? [low, high] : null });
    }),
  };
}

// Charts over the same frequencies in one part of the page share cursor and range.
function together(chart, action) {
  for (const other of charts.values())
    if (other === chart || (chart.spec.group && other.spec.group === chart.spec.group)) action(other);
}

function showCursor(chart, row) {
  if (chart.row !== row) { chart.row = row; if (chart.graph.getSelection() !== row) chart.graph.setSelection(row); }
  chart.at.textContent = chart.spec.tellX(chart.spec.values[row]);
  chart.spec.series.forEach((s, i) => { chart.outputs[i].textContent = s.tell ? s.tell(row) : told(s.values[row]); });
}

function hideCursor(chart) {
  chart.row = undefined;
  chart.graph.clearSelection();
  chart.at.textContent = "";
  for (const output of chart.outputs) output.textContent = "";
}

function onKey(chart, event) {
  const last = chart.spec.values.length - 1, step = event.shiftKey ? 10 : 1, row = chart.row;
  const moves = { ArrowRight: (row ?? -step) + step, ArrowLeft: (row ?? last + step) - step, Home: 0, End: last };
  const [low, high] = chart.graph.xAxisRange();
  const middle = row === undefined ? (low + high) / 2 : chart.spec.x.to(chart.spec.values[row]);
  if (event.key in moves) {
    const to = Math.min(last, Math.max(0, moves[event.key]));
    together(chart, (other) => showCursor(other, to));
  } else if (event.key === "+" || event.key === "-") {
    const half = ((high - low) / 2) * (event.key === "+" ? 0.5 : 2);
    together(chart, (other) => other.graph.updateOptions({ dateWindow: [middle - half, middle + half] }));
  } else if (event.key === "0") together(chart, (other) => other.graph.resetZoom());
  else if (event.key === "Escape") together(chart, hideCursor);
  else return;
  event.preventDefault();
}

function swatch(series) {
  const dash = DASHES[series.style] ? `stroke-dasharray='${DASHES[series.style].join(" ")}'` : "", wide = series.style === "under";
  const span = make("span", { "aria-hidden": "true" });
  const mark = series.marks === "cross" ? "<path d='M 6 0 l 8 8 m 0 -8 l -8 8'" : "<path d='M 0 4 h 20'";
  span.innerHTML = `<svg width="20" height="8">${mark} ${dash}
    style="stroke: var(--s${Number(series.colour) % 8}); stroke-width: ${wide ? 4 : 2}; opacity: ${wide ? 0.45 : 1}"/></svg>`;
  return span;
}

function legendOf(chart) {
  chart.at = make("output", { class: "at", "aria-live": "polite" });
  chart.outputs = chart.spec.series.map(() => make("output"));
  const below = make("div", { class: "axis x" }, chart.spec.xAxis, chart.at);
  return [below, make("div", { class: "legend" }, ...chart.spec.series.map((s, i) =>
    make("button", { type: "button", "aria-pressed": "true", title: "Show or hide", onclick: (event) => {
      chart.shown[i] = !chart.shown[i];
      event.currentTarget.setAttribute("aria-pressed", chart.shown[i]);
      chart.graph.updateOptions({ visibility: chart.shown, axes: { y: { valueRange: extent(chart.spec, chart.shown) } } });
    } }, swatch(s), make("span", {}, s.name), chart.outputs[i])))];
}

function asCsv(spec) {
  const quoted = (text) => '"' + text.replaceAll('"', '""') + '"';
  const head = [spec.xAxis, ...spec.series.map((s) => s.name + ", " + spec.yAxis)].map(quoted).join(",");
  const rows = Array.from(spec.values, (x, k) => [x, ...spec.series.map((s) => (Number.isFinite(s.values[k]) ? s.values[k] : ""))].join(","));
  return [head, ...rows].join("\r\n") + "\r\n";
}

// Draws with this many dots per pixel; null: as many as the screen has.
function sharpen(chart, dots) {
  chart.graph.updateOptions({ pixelRatio: dots }, true);
  for (const height of [chart.plot.clientHeight - 1 + "px", ""]) { // it redraws only at another size
    chart.plot.style.height = height;
    chart.graph.resize();
  }
}

// The chart as shown, with title, axes and legend, at twice the resolution of the screen.
function asPicture(chart) {
  const { plot, spec } = chart, box = plot.getBoundingClientRect(), top = 44;
  const rows = Math.ceil(spec.series.length / 3), canvas = make("canvas");
  canvas.width = 2 * box.width;
  canvas.height = 2 * (box.height + top + 26 + 18 * rows);
  const ctx = canvas.getContext("2d");
  ctx.scale(2, 2);
  ctx.fillStyle = styleOf("--card");
  ctx.fillRect(0, 0, canvas.width, canvas.height);
  const write = (text, x, y, font = "12px", colour = "--ink", align = "left") => {
    ctx.font = font + " system-ui, sans-serif";
    ctx.fillStyle = styleOf(colour);
    ctx.textAlign = align;
    ctx.fillText(text, x, y);
  };
  write(spec.title, 8, 18, "600 14px");
  write(spec.yAxis, 8, 36, "12px", "--soft");
  sharpen(chart, 2);
  ctx.drawImage(plot.querySelector("canvas"), 0, top, box.width, box.height);
  sharpen(chart, null);
  for (const label of plot.querySelectorAll(".dygraph-axis-label")) {
    const at = label.getBoundingClientRect(), right = label.classList.contains("dygraph-axis-label-y");
    write(label.textContent, (right ? at.right - 2 : (at.left + at.right) / 2) - box.left, at.bottom - 3 - box.top + top,
      "11px", "--soft", right ? "right" : "center");
  }
  write(spec.xAxis, box.width / 2, box.height + top + 12, "12px", "--soft", "center");
  spec.series.forEach((s, i) => {
    const x = 12 + ((i % 3) * (box.width - 12)) / 3, y = box.height + top + 32 + 18 * Math.floor(i / 3);
    ctx.strokeStyle = colourOf(s);
    ctx.lineWidth = 2;
    ctx.globalAlpha = chart.shown[i] ? 1 : 0.3;
    ctx.setLineDash(DASHES[s.style] || []);
    ctx.beginPath();
    ctx.moveTo(x, y - 4);
    ctx.lineTo(x + 20, y - 4);
    ctx.stroke();
    write(s.name, x + 26, y);
    ctx.globalAlpha = 1;
  });
  return canvas.toDataURL("image/png");
}

function toldChart(spec) {
  const of = spec.series.map((s) => {
    let low = Infinity, high = -Infinity;
    for (const v of s.values) if (Number.isFinite(v)) { low = Math.min(low, v); high = Math.max(high, v); }
    return low > high ? s.name : `${s.name} between ${told(low, 3)} and ${told(high, 3)}`;
  });
  return `Chart of ${spec.title}, ${spec.yAxis} over ${spec.xAxis}: ${of.join("; ")}. Arrow keys move the cursor, plus and minus zoom, 0 shows all.`;
}

// spec: id, title, yAxis, xAxis, values (of x), x and y (scales), tellX, series [{name, values,
// colour, style, marks}], group, bands, lines, note.
function addChart(host, spec) {
  for (const s of spec.series)
    s.drawn = Array.from(s.values, (v) => { const y = spec.y.to(v); return Number.isFinite(y) ? y : null; });
  const chart = { spec, shown: spec.series.map(() => true) };
  chart.plot = make("div", { class: "plot", tabindex: "0", role: "img", "aria-label": toldChart(spec),
    onkeydown: (event) => onKey(chart, event), onblur: () => together(chart, hideCursor) });
  const file = (spec.id + (spec.file || "")).replace(/[^\w-]+/g, "_");
  const button = (text, hint, act) => make("button", { type: "button", title: hint, "aria-label": `${hint}: ${spec.title}`, onclick: act }, text);
  const negative = spec.y.decades && spec.series.some((s) => s.values.some((v) => v < 0));
  const nothing = spec.series.filter((s) => s.values.every((v) => v === 0)).map((s) => s.name);
  const note = [spec.note, nothing.length && `${nothing.join(", ")}: 0 throughout.`, negative && "Values below 0 are drawn by their size; the cursor tells the sign."].filter(Boolean).join(" ");
  const legend = legendOf(chart);
  host.append(make("figure", { id: spec.id, class: spec.wide ? "wide" : "" },
    make("header", {}, make("h3", {}, spec.title),
      button("CSV", "Download the data as CSV", () => download(file + ".csv", URL.createObjectURL(new Blob([asCsv(spec)], { type: "text/csv" })))),
      button("PNG", "Download the picture as PNG", () => download(file + ".png", asPicture(chart)))),
    make("div", { class: "axis" }, spec.yAxis), chart.plot, legend[0], legend[1],
    ...(note ? [make("figcaption", {}, note)] : [])));
  const rows = Array.from(spec.values, (x, k) => [spec.x.to(x), ...spec.series.map((s) => s.drawn[k])]);
  chart.graph = new Dygraph(chart.plot, rows, graphOptions(chart));
  charts.set(chart.plot, chart);
}

function clearCharts(host) {
  for (const plot of host.querySelectorAll(".plot")) {
    charts.get(plot)?.graph.destroy();
    charts.delete(plot);
  }
  host.replaceChildren();
}

// Colours and sizes of the medium: another colour scheme, or paper, where pictures replace what is
// drawn on the screen.
function redrawCharts(paper) {
  for (const { graph, plot, spec, shown } of charts.values()) {
    // Setting the visibility too makes dygraphs read the colours again.
    const looks = { visibility: shown, series: seriesOptions(spec), gridLineColor: styleOf("--grid"), axisLineColor: styleOf("--faint"), pixelRatio: paper ? 2 : null };
    const { width, height } = graph.size(), same = width === plot.clientWidth && height === plot.clientHeight;
    graph.updateOptions(looks, !same);
    if (!same) graph.resize();
    plot.querySelector("img")?.remove();
    const canvas = plot.querySelector("canvas");
    if (paper) plot.append(make("img", { src: canvas.toDataURL(), alt: "", style: `width: ${canvas.style.width}; height: ${canvas.style.height}` }));
  }
}
