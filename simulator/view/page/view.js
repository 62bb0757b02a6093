// Follows the simulator over server-sent events and fills the page. The stream reconnects by
// itself after the simulator restarts; meanwhile the page says "disconnected".
"use strict";

const kFeedShown = 60;
const element = function (id) { return document.getElementById(id); };
const arm = ArmScene(element("scene"), element("scene-note"));
const charts = ["angles", "velocities", "currents"].map(function (key) { return StripChart(element("plot-" + key), key); });
// What the page shows, for tools that look at it from outside; a "viewchange" event on the
// window follows every change.
window.tavView = { live: false, drawnAngles: null, gripperClosed: false, updates: 0 };
function viewChanged() { window.dispatchEvent(new Event("viewchange")); }

function fixed(value, digits) { return Number(value).toFixed(digits); }
// Rebuilding the same rows would cost the browser a layout for nothing.
const shownHtml = {};
function setHtml(id, html) {
  if (shownHtml[id] !== html) element(id).innerHTML = shownHtml[id] = html;
}

function showJoints(state) {
  let rows = "<tr><th>motor</th><th>deg</th><th>deg/s</th><th>A</th></tr>";
  state.angles.forEach(function (angle, i) {
    const limp = state.released[i] ? " class=limp" : "";
    rows += "<tr><th style='color:" + kJointColours[i % kJointColours.length] + "'>" + (i + 1) + (state.released[i] ? " (limp)" : "") +
      "</th><td" + limp + ">" + fixed(angle, 2) + "</td><td" + limp + ">" + fixed(state.velocities[i], 2) + "</td><td" + limp + ">" +
      fixed(state.currents[i], 3) + "</td></tr>";
  });
  setHtml("joints", rows);
}

function lamps(label, levels) {
  return label + " " + levels.map(function (level, i) { return "<span class='lamp" + (level ? " on" : "") + "'>" + (i + 1) + "</span>"; }).join("");
}

function showTool(state) {
  const p = state.pose;
  element("pose").textContent = p ? "x " + fixed(p.x, 4) + "  y " + fixed(p.y, 4) + "  z " + fixed(p.z, 4) + " m,  roll " + fixed(p.roll, 3) +
    "  pitch " + fixed(p.pitch, 3) + "  yaw " + fixed(p.yaw, 3) + " rad" : "no arm: fewer than six motors";
  element("gripper").textContent = "gripper " + (state.gripper.closed ? "closed" : "open") + ",  vacuum " + (state.gripper.vacuum ? "holding" : "off");
  setHtml("io", "<p>" + lamps("out", state.outputs) + "</p><p>" + lamps("in", state.inputs) + "</p>");
}

function showFeed(entries) {
  const list = element("feed");
  entries.forEach(function (entry) {
    const item = document.createElement("li");
    item.className = entry.kind;
    item.textContent = entry.text;
    list.insertBefore(item, list.firstChild);
  });
  while (list.children.length > kFeedShown) list.removeChild(list.lastChild);
}

// Every state goes into the plots and the feed; the rest shows the newest one at the next frame.
let newest = null;

function receive(state) {
  charts.forEach(function (chart) { chart.add(state); });
  showFeed(state.feed);
  newest = state;
  window.tavView.updates++;
}

function drawNewest() {
  if (newest) {
    const state = newest;
    newest = null;
    if (arm.draw(state)) window.tavView.drawnAngles = state.angles;
    window.tavView.gripperClosed = state.gripper.closed;
    element("mode").textContent = state.mode;
    showJoints(state);
    showTool(state);
    charts.forEach(function (chart) { chart.draw(); });
    viewChanged();
  }
  requestAnimationFrame(drawNewest);
}

function setLink(up) {
  element("link").textContent = up ? "live" : "disconnected";
  element("link").className = up ? "up" : "down";
  window.tavView.live = up;
  viewChanged();
}

function follow() {
  const events = new EventSource("events");
  events.onopen = function () {
    setLink(true);
    element("feed").textContent = "";  // the stream starts with the whole feed again
  };
  events.onmessage = function (message) { receive(JSON.parse(message.data)); };
  events.onerror = function () {
    setLink(false);
    // A stream that the browser gave up on (an unexpected answer) is opened anew.
    if (events.readyState === EventSource.CLOSED) setTimeout(follow, 1000);
  };
}

let counted = 0;
setInterval(function () {
  element("rate").textContent = (window.tavView.updates - counted) + " updates/s";
  counted = window.tavView.updates;
}, 1000);
follow();
requestAnimationFrame(drawNewest);
