"use strict";
// Numbers: unpacking, quantities derived from them, texts, and axes.

const DEGREES = 180 / Math.PI;

function unpacked(text) {
  const bytes = Uint8Array.from(atob(text), (c) => c.charCodeAt(0));
  const view = new DataView(bytes.buffer);
  return Float64Array.from({ length: bytes.length / 4 }, (_, i) => view.getFloat32(4 * i, true));
}

const SUPERSCRIPT = "⁰¹²³⁴⁵⁶⁷⁸⁹";
const raised = (n) => (n < 0 ? "⁻" : "") + String(Math.abs(n)).replace(/\d/g, (d) => SUPERSCRIPT[d]);

// The text of a value at a cursor: digits to suit its size, or a power of ten.
function told(value, digits = 5) {
  if (value === null || !Number.isFinite(value)) return "–";
  if (value === 0) return "0";
  const size = Math.abs(value);
  if (size >= 1e-3 && size < 1e6) return minus(String(Number(value.toPrecision(digits))));
  const [mantissa, power] = value.toExponential(digits - 1).split("e");
  return minus(String(Number(mantissa))) + " · 10" + raised(Number(power));
}

const minus = (text) => text.replace("-", "−");

function toldFrequency(f) {
  for (const [size, unit] of [[1e6, " MHz"], [1e3, " kHz"], [0, " Hz"]])
    if (f >= size) return told(f / (size || 1)) + unit;
  return told(f) + " Hz";
}

// ---- quantities drawn of a complex function z over w (rad/s); c holds the length and the function

function unwrapped(angles) {
  let turn = 0, before = NaN;
  return angles.map((a) => {
    if (Number.isFinite(before) && Number.isFinite(a)) turn -= 360 * Math.round((a - before) / 360);
    if (Number.isFinite(a)) before = a;
    return a + turn;
  });
}

// An angle; none where the value is negligible against the size of its function.
const NOTHING = 1e-9;
const angleOf = (re, im, w, c) => (Math.hypot(re, im) < NOTHING * c.reference ? NaN : DEGREES * Math.atan2(im, re));

const VIEWS = {
  R: { title: "Resistance", axis: "R (ohm/km)", scale: "log", of: (re) => 1e3 * re },
  L: { title: "Inductance", axis: "L (mH/km)", scale: "log", of: (re, im, w) => (1e6 * im) / w },
  Zm: { title: "Impedance, magnitude", axis: "|Z| (ohm/km)", scale: "log", of: (re, im) => 1e3 * Math.hypot(re, im) },
  Za: { title: "Impedance, angle", axis: "∠Z (deg)", scale: "linear", of: (re, im) => DEGREES * Math.atan2(im, re) },
  G: { title: "Conductance", axis: "G (nS/km)", scale: "log", of: (re) => 1e12 * re },
  C: { title: "Capacitance", axis: "C (nF/km)", scale: "log", of: (re, im, w) => (1e12 * im) / w },
  Ym: { title: "Admittance, magnitude", axis: "|Y| (µS/km)", scale: "log", of: (re, im) => 1e9 * Math.hypot(re, im) },
  Ya: { title: "Admittance, angle", axis: "∠Y (deg)", scale: "linear", of: (re, im) => DEGREES * Math.atan2(im, re) },
  velocity: { title: "Velocity", axis: "v (m/µs)", scale: "linear", of: (re, im, w) => w / im / 1e6 },
  attenuation: { title: "Attenuation", axis: "α (dB/km)", scale: "log", of: (re) => 8.685889638065037e3 * re },
  travel: { title: "Travel time over the length", axis: "T (ms)", scale: "log", delays: true,
    of: (re, im, w, c) => (1e3 * c.length * im) / w },
  magnitude: { title: "Magnitude", axis: (c) => "|" + c.symbol + "|" + (c.unit && " (" + c.unit + ")"), scale: "log",
    of: (re, im) => Math.hypot(re, im) },
  angle: { title: "Angle", axis: (c) => "∠" + c.symbol + " (deg)", scale: "linear", after: unwrapped, of: angleOf },
  deviation: { title: "Deviation of the model from the line", scale: "log", wide: true, both: true,
    axis: (c) => `deviation (% of ${c.reference > 0 ? told(c.reference, 4) + (c.unit && " " + c.unit) : "the magnitude"})` },
};
const KINDS = {
  series: [["R", "L"], ["Zm", "Za"]],
  shunt: [["G", "C"], ["Ym", "Ya"]],
  propagation: [["velocity", "attenuation", "travel"]],
  impedance: [["magnitude", "angle"]],
  ratio: [["magnitude", "angle"]],
  fit: [["magnitude", "angle", "deviation"]],
};

function viewed(view, packed, f, c) {
  const values = Array.from(f, (at, k) => view.of(packed[2 * k], packed[2 * k + 1], 2 * Math.PI * at, c));
  return view.after ? view.after(values) : values;
}

function deviations(line, model, f, c) {
  return Array.from(f, (_, k) => {
    const off = Math.hypot(model[2 * k] - line[2 * k], model[2 * k + 1] - line[2 * k + 1]);
    return (100 * off) / (c.reference > 0 ? c.reference : Math.hypot(line[2 * k], line[2 * k + 1]));
  });
}

// ---- axes: dygraphs draws scaled values on linear axes

const SCALES = {
  linear: () => ({ to: (v) => v, from: (y) => y }),
  log: () => ({ to: (v) => (v === 0 ? NaN : Math.log10(Math.abs(v))), from: (y) => 10 ** y, decades: true }),
  frequency: () => ({ ...SCALES.log(), name: prefixed }),
  // Linear near 0, within t of it, and logarithmic beyond on both sides.
  signed: (t) => ({
    to: (v) => Math.sign(v) * Math.log10(1 + Math.abs(v) / t),
    from: (y) => Math.sign(y) * t * (10 ** Math.abs(y) - 1),
    signed: t,
  }),
};

function steps(low, high, count) {
  const rough = (high - low) / Math.max(count, 1), size = 10 ** Math.floor(Math.log10(rough));
  const step = size * [1, 2, 5, 10].find((m) => m * size >= rough * 0.999);
  const values = [];
  for (let k = Math.ceil(low / step - 1e-9); k * step <= high + 1e-9 * step; k++) values.push(k * step);
  return values;
}

function power(k, sign = "") {
  const plain = k >= -2 && k <= 3 ? String(Number((10 ** k).toPrecision(3))) : "10" + raised(k);
  return sign + plain;
}

// Frequencies in steps of a thousand.
function prefixed(k) {
  const group = Math.max(-1, Math.min(3, Math.floor(k / 3)));
  return group < 0 ? told(10 ** k, 3) : Number((10 ** (k - 3 * group)).toPrecision(3)) + ["", " k", " M", " G"][group];
}

function decadeTicks(a, b, count, name = power) {
  const low = Math.ceil(a - 1e-9), high = Math.floor(b + 1e-9);
  if (b - a < 2.2) {
    const values = b - a < 0.5 ? steps(10 ** a, 10 ** b, count) : [1, 2, 5].flatMap((m) =>
      Array.from({ length: high - low + 3 }, (_, i) => m * 10 ** (low - 1 + i)));
    return values.filter((v) => v > 0).map((v) => ({ v: Math.log10(v), label: told(v, 6) }))
      .filter((t) => t.v >= a && t.v <= b);
  }
  const every = Math.max(1, Math.ceil((high - low) / count)), ticks = [];
  for (let k = low; k <= high; k++)
    ticks.push({ v: k, label: (((k % every) + every) % every) === 0 ? name(k) : "" });
  return ticks;
}

function signedTicks(a, b, count, t) {
  const lowest = Math.ceil(Math.log10(t) - 1e-9) + 1, scale = SCALES.signed(t);
  const highest = Math.floor(Math.log10(Math.max(Math.abs(scale.from(a)), Math.abs(scale.from(b)))) + 1e-9);
  const sides = (a < 0 ? 1 : 0) + (b > 0 ? 1 : 0);
  const every = Math.max(1, Math.ceil(((highest - lowest + 1) * sides) / count)), ticks = [{ v: 0, label: "0" }];
  for (let k = lowest; k <= highest; k++) {
    const label = (highest - k) % every === 0;
    for (const sign of [1, -1])
      ticks.push({ v: scale.to(sign * 10 ** k), label: label ? power(k, sign < 0 ? "−" : "") : "" });
  }
  return ticks.filter((tick) => tick.v >= a && tick.v <= b);
}

function ticksOf(scale, a, b, count) {
  if (scale.decades) return decadeTicks(a, b, count, scale.name);
  if (scale.signed) return signedTicks(a, b, count, scale.signed);
  return steps(a, b, count).map((v) => ({ v, label: told(v, 6) }));
}
