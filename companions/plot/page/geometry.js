// The right-of-way to scale: one unit of the pictures is one metre; heights above ground are
// negative y.

function svg(name, attributes = {}, ...children) {
  const element = document.createElementNS("http://www.w3.org/2000/svg", name);
  for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, value);
  element.append(...children);
  return element;
}

const factsText = (facts) => Object.entries(facts).map(([k, v]) => `${k}: ${v}`).join(", ");

// Facts of the body under the pointer, or with the focus, are shown beside the drawing.
function tells(element, facts) {
  const tip = document.getElementById("tip");
  const show = (x, y) => {
    const rows = Object.entries(facts).flatMap(([k, v]) => [make("dt", {}, k), make("dd", {}, v)]);
    tip.replaceChildren(make("dl", {}, ...rows));
    tip.hidden = false;
    tip.style.left = Math.max(8, Math.min(x + 14, document.documentElement.clientWidth - tip.offsetWidth - 8)) + scrollX + "px";
    tip.style.top = (y + 18 + tip.offsetHeight > innerHeight ? y - tip.offsetHeight - 12 : y + 18) + scrollY + "px";
  };
  const hide = () => { tip.hidden = true; };
  const set = { tabindex: "0", role: "img", "aria-label": factsText(facts) };
  for (const [key, value] of Object.entries(set)) element.setAttribute(key, value);
  element.classList.add("body");
  element.addEventListener("pointermove", (event) => show(event.clientX, event.clientY));
  element.addEventListener("pointerleave", hide);
  element.addEventListener("focus", () => { const b = element.getBoundingClientRect(); show(b.right, b.bottom); });
  element.addEventListener("blur", hide);
  return element;
}

const circuitClass = (wire) => (wire.ground ? "ground" : "circuit" + ((wire.circuit - 1 + 60) % 6));

// Bounds that contain all bodies, the surface, and some space around them.
function boundsOf(way, flat) {
  const xs = [], ys = [0];
  for (const w of way.wires || []) { xs.push(w.x - w.r, w.x + w.r); ys.push(w.y + w.r, w.y - w.sag); }
  for (const c of [...(way.cables || []), ...(way.pipe ? [way.pipe] : [])]) {
    xs.push(c.x - c.r, c.x + c.r);
    ys.push(c.y - c.r, c.y + c.r);
  }
  let [left, right, low, high] = [Math.min(...xs), Math.max(...xs), Math.min(...ys), Math.max(...ys)];
  const size = Math.max(right - left, high - low);
  const wide = Math.max(right - left + 0.2 * size, 0.9 * size, flat * (high - low)), middle = (left + right) / 2;
  low -= (low < 0 ? 0.12 : 0.05) * size;
  high += 0.09 * size;
  const tall = Math.max(high - low, 0.28 * wide);
  return { left: middle - wide / 2, right: middle + wide / 2, low, high: low + tall };
}

// The centre of each bundle; a single wire is its own centre.
function bundles(wires) {
  return [...new Set(wires.map((w) => w.bundle))].map((bundle) => {
    const own = wires.filter((w) => w.bundle === bundle), mean = (key) => own.reduce((sum, w) => sum + w[key], 0) / own.length;
    return { x: mean("x"), y: mean("y"), sag: mean("sag") };
  });
}

// Masts and crossarms, schematic: the wires are divided into towers at the widest gaps.
function towers(way) {
  const sorted = bundles(way.wires || []).sort((a, b) => a.x - b.x), group = svg("g", { "aria-hidden": "true" });
  const gaps = sorted.slice(1).map((w, i) => [w.x - sorted[i].x, i + 1]).sort((a, b) => b[0] - a[0]);
  const cuts = gaps.slice(0, Math.max(0, (way.towers || 1) - 1)).map((g) => g[1]).sort((a, b) => a - b);
  [0, ...cuts].forEach((from, k) => {
    const own = sorted.slice(from, cuts[k] ?? sorted.length);
    if (own.length === 0) return;
    const middle = (own[0].x + own.at(-1).x) / 2, top = Math.max(...own.map((w) => w.y));
    group.append(svg("line", { class: "tower", x1: middle, y1: 0, x2: middle, y2: -top }));
    for (const y of new Set(own.map((w) => w.y))) {
      const level = own.filter((w) => w.y === y);
      group.append(svg("line", { class: "tower", y1: -y, y2: -y,
        x1: Math.min(middle, level[0].x), x2: Math.max(middle, level.at(-1).x) }));
    }
  });
  for (const w of sorted) if (w.sag > 0) group.append(svg("line", { class: "guide", x1: w.x, x2: w.x, y1: -w.y, y2: w.sag - w.y }));
  return group;
}

function wireMarks(wire, pixel) {
  const r = Math.max(wire.r, (wire.label === "" ? 2.2 : 3.2) * pixel), low = -(wire.y - wire.sag);
  const group = svg("g", { class: circuitClass(wire), "data-bundle": wire.bundle });
  if (wire.sag > 0) {
    group.append(svg("circle", { class: "midspan", cx: wire.x, cy: low, r: Math.max(wire.r, 2.2 * pixel) }));
  }
  group.append(svg("circle", { class: "wire", cx: wire.x, cy: -wire.y, r }));
  group.append(svg("circle", { class: "hit", cx: wire.x, cy: -wire.y, r: r + 3 * pixel }));
  return tells(group, wire.facts);
}

function text(x, y, words, pixel, attributes = {}) {
  return svg("text", { x, y, "font-size": (attributes.size || 12) * pixel, ...attributes }, words);
}

const THIN = ["sheath", "armour", "outside", "pipe"];

// A distance between two points at the same height, or above each other, with its ends marked.
function dimension(x1, y1, x2, y2, pixel) {
  const group = svg("g", { "aria-hidden": "true" }, svg("line", { class: "dimension", x1, y1, x2, y2 })), flat = y1 === y2;
  for (const [x, y] of [[x1, y1], [x2, y2]])
    group.append(svg("line", { class: "dimension", x1: flat ? x : x - 4 * pixel, x2: flat ? x : x + 4 * pixel, y1: flat ? y - 4 * pixel : y, y2: flat ? y + 4 * pixel : y }));
  const words = `${told(Math.hypot(x2 - x1, y2 - y1), 4)} m`;
  group.append(flat ? text((x1 + x2) / 2, y1 - 4 * pixel, words, pixel, { class: "soft halo", "text-anchor": "middle", size: 11 })
    : text(x1 - 6 * pixel, (y1 + y2) / 2 + 4 * pixel, words, pixel, { class: "soft halo", "text-anchor": "end", size: 11 }));
  return group;
}

// Heights of the levels beside the wires, and the distances between neighbours of a level below it.
function heights(way, b, pixel) {
  const group = svg("g"), centres = bundles(way.wires || []), levels = [...new Set(centres.map((w) => w.y))].sort((p, q) => p - q);
  const left = Math.min(...centres.map((w) => w.x));
  levels.forEach((y, k) => {
    const x = left - (24 + 58 * k) * pixel, level = centres.filter((w) => w.y === y).sort((p, q) => p.x - q.x);
    if (x > b.left + 100 * pixel) group.append(dimension(x, 0, x, -y, pixel));
    level.slice(1).forEach((w, i) => {
      if (w.x - level[i].x > ROOM * pixel) group.append(dimension(level[i].x, 20 * pixel - y, w.x, 20 * pixel - y, pixel));
    });
  });
  return group;
}

// Cables in groups within which names and distances would overlap.
const ROOM = 40; // pixels
function groupsOf(cables, pixel) {
  const groups = [];
  for (const c of cables.filter((one) => !one.inside)) {
    const near = groups.filter((g) => g.some((o) => Math.hypot(o.x - c.x, o.y - c.y) < ROOM * pixel));
    for (const g of near) groups.splice(groups.indexOf(g), 1);
    groups.push([...near.flat(), c]);
  }
  return groups.map((g) => g.sort((p, q) => p.x - q.x || q.y - p.y));
}

// Distances between neighbours of the same depth.
function spacings(cables, pixel, below) {
  const group = svg("g");
  for (const y of new Set(cables.map((c) => c.y))) {
    const row = cables.filter((c) => c.y === y).sort((p, q) => p.x - q.x);
    row.slice(1).forEach((c, i) => {
      if (c.x - row[i].x > ROOM * pixel) group.append(dimension(row[i].x, below - y, c.x, below - y, pixel));
    });
  }
  return group;
}

// Circles of the layers, outermost first; sectors instead of a core for a four-wire cable. A metal
// layer is at least a pixel wide.
function rings(body, cx, cy, pixel) {
  const group = svg("g");
  for (const ring of [...body.rings].sort((a, b) => b.outer - a.outer)) {
    const sectors = body.sectors && ring.kind === "core";
    const one = svg("g", {}, svg("circle", { class: `ring ${sectors ? "insulator" : ring.kind}`, cx, cy, r: ring.outer }));
    if (sectors) {
      const g = body.gap, far = Math.sqrt(ring.outer ** 2 - g ** 2);
      for (const [sx, sy] of [[1, 1], [-1, 1], [-1, -1], [1, -1]])
        one.append(svg("path", { class: "ring core", d: `M ${cx + sx * g} ${cy + sy * g} L ${cx + sx * far} ${cy + sy * g}` +
          ` A ${ring.outer} ${ring.outer} 0 0 ${sx * sy > 0 ? 1 : 0} ${cx + sx * g} ${cy + sy * far} Z` }));
    } else if (ring.inner > 0 && ring === body.rings[0]) {
      one.append(svg("circle", { class: "ring hollow", cx, cy, r: ring.inner }));
    }
    if (THIN.includes(ring.kind) && ring.inner > 0 && ring.outer - ring.inner < 1.5 * pixel && body.r > 12 * pixel)
      one.append(svg("circle", { class: `thin ${ring.kind}`, cx, cy, r: ring.inner + 0.75 * pixel }));
    group.append(tells(one, { ...body.facts, ...ring.facts }));
  }
  return group;
}

function scales(b, pixel) {
  const group = svg("g", { "aria-hidden": "true" }), left = b.left + 44 * pixel, bottom = -b.low - 22 * pixel;
  for (const v of steps(b.low + 30 * pixel, b.high - 34 * pixel, (b.high - b.low) / pixel / 48)) {
    group.append(svg("line", { class: "tick", x1: left, x2: left + 5 * pixel, y1: -v, y2: -v }));
    group.append(text(left - 4 * pixel, -v + (v === 0 ? -4 : 4) * pixel, told(v, 4), pixel, { class: "soft", "text-anchor": "end", size: 11 }));
  }
  for (const v of steps(left + 30 * pixel, b.right - 56 * pixel, (b.right - b.left) / pixel / 80)) {
    group.append(svg("line", { class: "tick", x1: v, x2: v, y1: bottom, y2: bottom + 5 * pixel }));
    group.append(text(v, bottom + 17 * pixel, told(v, 4), pixel, { class: "soft", "text-anchor": "middle", size: 11 }));
  }
  group.append(text(b.left + 6 * pixel, -b.high + 14 * pixel, "y (m)", pixel, { class: "soft", size: 11 }));
  group.append(text(b.right - 6 * pixel, bottom + 17 * pixel, "x (m)", pixel, { class: "soft", "text-anchor": "end", size: 11 }));
  return group;
}

// Depth lines: one line from the surface for each depth.
function depths(bodies, pixel) {
  const group = svg("g"), seen = new Set();
  for (const c of bodies) {
    if (c.inside || seen.has(c.y)) continue;
    seen.add(c.y);
    const x = c.x - Math.max(c.r, 5 * pixel) - 10 * pixel;
    group.append(dimension(x, 0, x, -c.y, pixel));
  }
  return group;
}

function drawWay(picture, way) {
  const b = boundsOf(way, picture.clientWidth > 700 ? 2.4 : 1.5), pixel = (b.right - b.left) / Math.max(picture.clientWidth, 200);
  const bodies = [...(way.pipe ? [way.pipe] : []), ...(way.cables || [])], ground = Math.max(-b.low, 0);
  picture.setAttribute("viewBox", `${b.left} ${-b.high} ${b.right - b.left} ${b.high - b.low}`);
  picture.replaceChildren(svg("title", {}, "Cross-section of the right-of-way, to scale"),
    svg("rect", { class: "earth", x: b.left, y: 0, width: b.right - b.left, height: ground }),
    svg("line", { class: "surface", x1: b.left, x2: b.right, y1: 0, y2: 0 }), towers(way), scales(b, pixel), depths(bodies, pixel),
    ...((way.wires || []).length ? [heights(way, b, pixel)] : []));
  for (const body of bodies) {
    const group = svg("g", { class: "cable" }, rings(body, body.x, -body.y, pixel));
    if (!body.inside) group.append(svg("circle", { class: "spot", cx: body.x, cy: -body.y, r: Math.max(body.r, 4 * pixel), "pointer-events": "none" }));
    picture.append(group);
  }
  for (const group of groupsOf(bodies, pixel)) {
    const last = group.at(-1), x = last.x + Math.max(last.r, 4 * pixel) + 6 * pixel;
    picture.append(text(x, -last.y + 4 * pixel, group.map((c) => c.label).join(", "), pixel, { class: "halo" }));
  }
  picture.append(spacings(bodies.filter((c) => !c.inside), pixel, Math.max(...bodies.map((c) => c.r), 0) + 22 * pixel));
  for (const wire of way.wires || []) picture.append(wireMarks(wire, pixel));
  for (const wire of way.wires || []) {
    const near = (way.wires || []).filter((w) => w.bundle === wire.bundle), right = Math.max(...near.map((w) => w.x));
    if (wire.label) picture.append(text(right + 7 * pixel, -wire.y - 5 * pixel, wire.label, pixel, { class: "halo", "font-weight": 600 }));
  }
}

// An enlarged body: the surroundings of a point in true proportion, with a scale beside it.
function lens(title, x, y, r, size, ...content) {
  const decade = 10 ** Math.floor(Math.log10(r)), bar = decade * [5, 2, 1].find((m) => m * decade <= r), pixel = (2.5 * r) / size, side = 1.25 * r;
  const picture = svg("svg", { class: "way lens", role: "group", "aria-label": title, viewBox: `${x - side} ${y - side} ${2 * side} ${2.22 * side}` },
    ...content, svg("line", { class: "tick", x1: x - side + 8 * pixel, x2: x - side + 8 * pixel + bar, y1: y + 1.05 * side, y2: y + 1.05 * side, "stroke-width": 2 }),
    text(x - side + 14 * pixel + bar, y + 1.08 * side, bar < 1 ? `${told(1e3 * bar, 4)} mm` : `${told(bar, 4)} m`, pixel, { class: "soft", size: 11 }));
  return make("div", { class: size > 200 ? "large" : false }, make("h3", {}, title), picture);
}

// Cables that lie too near to each other for the picture above, to scale.
function groupLens(group) {
  const [x, y] = ["x", "y"].map((axis) => (Math.min(...group.map((c) => c[axis])) + Math.max(...group.map((c) => c[axis]))) / 2);
  const r = Math.max(...group.map((c) => Math.hypot(c.x - x, c.y - y) + c.r)), pixel = (2.5 * r) / 300, out = Math.max(...group.map((c) => c.r));
  return lens(`Arrangement of cables ${group.map((c) => c.label).join(", ")}`, x, -y, r, 300, ...group.map((c) => rings(c, c.x, -c.y, pixel)),
    ...group.map((c) => text(c.x, -c.y - c.r - 5 * pixel, c.label, pixel, { class: "halo", "text-anchor": "middle", "font-weight": 600 })),
    spacings(group, pixel, out + 22 * pixel));
}

function lenses(way, pixel) {
  const all = groupsOf(way.cables || [], pixel).filter((g) => g.length > 1).map((g) => groupLens(g));
  if (way.pipe) {
    const inside = (way.cables || []).filter((c) => c.inside);
    all.push(lens("The pipe", way.pipe.x, -way.pipe.y, way.pipe.r, 300, rings(way.pipe, way.pipe.x, -way.pipe.y, way.pipe.r / 120), ...inside.map((c) => rings(c, c.x, -c.y, way.pipe.r / 120))));
  }
  for (const c of way.cables || []) all.push(lens(c.sectors ? "Four-wire cable" : `Cable ${c.label}`, c.x, -c.y, c.r, c.sectors ? 300 : 196, rings(c, c.x, -c.y, c.r / 78)));
  const shown = new Set();
  for (const main of way.wires || []) {
    const own = way.wires.filter((w) => w.bundle === main.bundle), kind = circuitClass(main);
    if (own.length < 2 || shown.has(kind)) continue;
    shown.add(kind);
    const [x, y] = ["x", "y"].map((axis) => own.reduce((sum, w) => sum + w[axis], 0) / own.length);
    const r = Math.max(...own.map((w) => Math.hypot(w.x - x, w.y - y) + w.r));
    const discs = own.map((w) => tells(svg("g", { class: kind }, svg("circle", { class: "wire", cx: w.x, cy: -w.y, r: w.r }),
      svg("circle", { class: "hit", cx: w.x, cy: -w.y, r: Math.max(w.r, 0.08 * r) })), w.facts));
    all.push(lens(`Bundle of node ${main.label || own[0].label}`, x, -y, r, 196, ...discs));
  }
  return all;
}

function keyOf(way) {
  const entries = [], add = (name, kind, mark) => entries.push(make("span", { class: kind }, make("i", { class: mark }), name));
  const wires = way.wires || [];
  for (const circuit of [...new Set(wires.filter((w) => !w.ground).map((w) => w.circuit))].sort((a, b) => a - b))
    add(`circuit ${circuit}`, circuitClass({ circuit }), "");
  if (wires.some((w) => w.ground)) add("ground wire", "ground", "");
  if (wires.some((w) => w.sag > 0)) add("at mid-span", "circuit0", "open");
  const kinds = new Map();
  for (const body of [...(way.cables || []), ...(way.pipe ? [way.pipe] : [])])
    for (const ring of body.rings) if (!kinds.has(ring.kind)) kinds.set(ring.kind, ring.facts.Layer.replace(/ \d$/, ""));
  const entry = ([kind, name]) => make("span", { style: `--k: var(--${kind})` }, make("i", { class: "square" }), name);
  return make("div", { class: "key" }, ...entries, ...[...kinds].map(entry));
}

function addGeometry(host, way) {
  if (way.note) return host.append(make("p", { class: "none" }, way.note));
  const picture = svg("svg", { class: "way", role: "group", "aria-label": "Cross-section of the right-of-way, to scale" });
  const b = boundsOf(way, 2.4), enlarged = lenses(way, (b.right - b.left) / 1200);
  host.append(make("figure", {}, picture, keyOf(way),
    ...(enlarged.length ? [make("div", { class: "lenses" }, ...enlarged)] : []),
    make("figcaption", {}, "To scale. Pointing at a body, or moving to it by the tabulator key, tells what it is.")));
  let drawn = 0;
  const draw = () => { if (picture.clientWidth !== drawn) { drawn = picture.clientWidth; drawWay(picture, way); } };
  draw();
  new ResizeObserver(draw).observe(picture);
}
