// The arm in 3D, built from the joint frames the simulator sends: each frame's origin and its
// x and z axes in the base frame (metres). Joint i turns about the z axis of frame i-1, so a
// housing is drawn there; links join consecutive origins. Z is up, as on the controller.
"use strict";

function ArmScene(canvas, note) {
  let renderer;
  try {
    renderer = new THREE.WebGLRenderer({ canvas: canvas, antialias: true });
  } catch (error) {
    note.textContent = "No 3D view: " + (typeof THREE === "undefined" ? "three.js did not load" : "WebGL is unavailable");
    return { draw: function () { return false; } };
  }
  renderer.setClearColor(0xffffff);
  const scene = new THREE.Scene();
  const camera = new THREE.PerspectiveCamera(40, 1, 0.01, 20);
  camera.up.set(0, 0, 1);
  scene.add(new THREE.HemisphereLight(0xffffff, 0x667788, 0.8));
  const sun = new THREE.DirectionalLight(0xffffff, 0.6);
  sun.position.set(1, -2, 3);
  scene.add(sun);
  const grid = new THREE.GridHelper(2, 20, 0x90a4ae, 0xcfd8dc);
  grid.rotation.x = Math.PI / 2;
  scene.add(grid);

  const cylinder = new THREE.CylinderGeometry(1, 1, 1, 24);
  const box = new THREE.BoxGeometry(1, 1, 1);
  const steel = new THREE.MeshStandardMaterial({ color: 0xb0bec5, metalness: 0.3, roughness: 0.5 });
  const blue = new THREE.MeshStandardMaterial({ color: 0x1e88e5, metalness: 0.2, roughness: 0.6 });
  const dark = new THREE.MeshStandardMaterial({ color: 0x37474f });
  function part(geometry, material, radius) {
    const mesh = new THREE.Mesh(geometry, material);
    mesh.userData.radius = radius;
    scene.add(mesh);
    return mesh;
  }
  const housings = [], links = [];
  for (let i = 0; i < 6; i++) {
    housings.push(part(cylinder, blue, 0.055));
    links.push(part(cylinder, steel, 0.04));
  }
  const tool = new THREE.Group();
  const fingers = [0, 1].map(function () {
    const finger = new THREE.Mesh(box, dark);
    finger.scale.set(0.012, 0.03, 0.06);
    tool.add(finger);
    return finger;
  });
  const palm = new THREE.Mesh(box, dark);
  palm.scale.set(0.1, 0.04, 0.02);
  palm.position.z = 0.01;
  tool.add(palm);
  scene.add(tool);

  const up = new THREE.Vector3(0, 1, 0);
  function vector(values) { return new THREE.Vector3(values[0], values[1], values[2]); }
  // Stretches a unit cylinder from `from` to `to`.
  function span(mesh, from, to) {
    const way = to.clone().sub(from);
    const length = way.length();
    mesh.visible = length > 1e-6;
    if (!mesh.visible) return;
    mesh.position.copy(from).add(to).multiplyScalar(0.5);
    mesh.quaternion.setFromUnitVectors(up, way.divideScalar(length));
    mesh.scale.set(mesh.userData.radius, length, mesh.userData.radius);
  }

  // Orbit by dragging, zoom with the wheel.
  const view = { azimuth: -0.9, elevation: 0.4, distance: 1.5 };
  let drag = null;
  canvas.addEventListener("pointerdown", function (e) { drag = { x: e.clientX, y: e.clientY }; });
  window.addEventListener("pointerup", function () { drag = null; });
  canvas.addEventListener("pointermove", function (e) {
    if (!drag) return;
    view.azimuth -= (e.clientX - drag.x) * 0.01;
    view.elevation = Math.max(-0.2, Math.min(1.5, view.elevation + (e.clientY - drag.y) * 0.01));
    drag = { x: e.clientX, y: e.clientY };
    render();
  });
  canvas.addEventListener("wheel", function (e) {
    e.preventDefault();
    view.distance = Math.max(0.5, Math.min(6, view.distance * Math.exp(e.deltaY * 0.001)));
    render();
  });

  function render() {
    const width = canvas.clientWidth, height = canvas.clientHeight;
    if (canvas.width !== width || canvas.height !== height) {
      renderer.setSize(width, height, false);
      camera.aspect = width / Math.max(height, 1);
      camera.updateProjectionMatrix();
    }
    const c = Math.cos(view.elevation);
    camera.position.set(view.distance * c * Math.cos(view.azimuth), view.distance * c * Math.sin(view.azimuth),
      0.3 + view.distance * Math.sin(view.elevation));
    camera.lookAt(0, 0, 0.3);
    renderer.render(scene, camera);
  }
  window.addEventListener("resize", render);

  // Places every part from the state's frames; false when there is no arm to draw.
  let drawn = "";
  function draw(state) {
    const frames = state.frames;
    if (!frames || frames.length < 7) return false;
    const key = JSON.stringify(frames) + state.gripper.closed;
    if (key === drawn) return true;  // nothing moved
    drawn = key;
    for (let i = 0; i < 6; i++) {
      const origin = vector(frames[i].origin), axis = vector(frames[i].z);
      span(housings[i], origin.clone().addScaledVector(axis, -0.06), origin.clone().addScaledVector(axis, 0.06));
      span(links[i], origin, vector(frames[i + 1].origin));
    }
    const flange = frames[6], x = vector(flange.x), z = vector(flange.z);
    tool.matrix.makeBasis(x, z.clone().cross(x), z).setPosition(vector(flange.origin));
    tool.matrixAutoUpdate = false;
    const gap = state.gripper && state.gripper.closed ? 0.008 : 0.035;
    fingers[0].position.set(-gap, 0, 0.05);
    fingers[1].position.set(gap, 0, 0.05);
    render();
    return true;
  }
  return { draw: draw };
}
