// Strip charts of one value per joint over the last 30 seconds of the controller's clock.
"use strict";

const kPlotSeconds = 30;
const kJointColours = ["#e53935", "#fb8c00", "#fdd835", "#43a047", "#1e88e5", "#8e24aa", "#6d4c41", "#00acc1", "#546e7a", "#d81b60"];

function StripChart(canvas, key) {
  const samples = [];
  function add(state) {
    if (samples.length && state.time < samples[samples.length - 1].time) samples.length = 0;  // a new simulator
    samples.push({ time: state.time, values: state[key] });
    while (samples.length && samples[0].time < state.time - kPlotSeconds) samples.shift();
  }
  function draw() {
    const scale = window.devicePixelRatio || 1;
    const width = canvas.clientWidth * scale, height = canvas.clientHeight * scale;
    if (canvas.width !== width || canvas.height !== height) {
      canvas.width = width;
      canvas.height = height;
    }
    const g = canvas.getContext("2d");
    g.clearRect(0, 0, width, height);
    if (!samples.length) return;
    let low = Infinity, high = -Infinity;
    samples.forEach(function (s) { s.values.forEach(function (v) { low = Math.min(low, v); high = Math.max(high, v); }); });
    if (high - low < 1e-3) { high += 0.5; low -= 0.5; }
    const end = samples[samples.length - 1].time, margin = 4 * scale;
    const x = function (t) { return width - ((end - t) / kPlotSeconds) * width; };
    const y = function (v) { return margin + (high - v) / (high - low) * (height - 2 * margin); };
    g.font = 10 * scale + "px sans-serif";
    g.fillStyle = "#78909c";
    g.fillText(high.toFixed(2), 2, 10 * scale);
    g.fillText(low.toFixed(2), 2, height - 2);
    g.lineWidth = scale;
    samples[0].values.forEach(function (_, joint) {
      g.strokeStyle = kJointColours[joint % kJointColours.length];
      g.beginPath();
      samples.forEach(function (s, i) { (i ? g.lineTo : g.moveTo).call(g, x(s.time), y(s.values[joint])); });
      g.stroke();
    });
  }
  return { add: add, draw: draw };
}
