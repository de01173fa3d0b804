// The Aircraft page: the aircraft in the simulator, where its figures come
// from, the profile (editable only as the pilot's own), the working values
// and the monitoring boxes of the types the instructor knows.
'use strict';

const LIGHTS = 5;
const WORKING = [
  ['StallCruise', 'Clean stall'], ['StallLanding', 'Landing stall'],
  ['StallLandingPlus10', 'Landing stall + 10'], ['StallLandingPlus15', 'Landing stall + 15'],
  ['StallLandingPlus20', 'Landing stall + 20'], ['GearSpeedLimit', 'Gear speed limit'],
];
const TEXTS = ['IASStallCruise', 'IASStallLanding', 'MaxGearExtension'];
const FLAGS = ['RetractableGear', 'Spoilers', 'FloatPlane', 'FlapsDownDuringTaxi'];

async function post(path, body) {
  try {
    const a = await api(path, body);
    render(a);
    if (a.message) showMessage('msg', a.message, Boolean(a.saved)); else hideMessage('msg');
  } catch (x) {
    showMessage('msg', x.message, false);
    if (x.answer && x.answer.validation) showValidation(x.answer.validation);
  }
}

function showValidation(lines) {
  const v = document.getElementById('validation');
  v.textContent = lines.replace(/\r/g, '');
  v.className = lines ? 'message show bad' : 'message';
}

function buildFlaps() {
  const t = document.getElementById('flaps');
  const head = el('tr', {}, el('th', {}, 'Flap position'));
  const pos = el('tr', {}, el('th', {}, 'Degrees'));
  const spd = el('tr', {}, el('th', {}, 'Speed limit (kt)'));
  for (let i = 0; i < 9; i++) {
    head.append(el('th', {}, String(i + 1)));
    pos.append(el('td', {}, el('input', {type: 'text', id: 'txtFlapPos' + i})));
    spd.append(el('td', {}, el('input', {type: 'text', id: 'txtFlapSpeed' + i})));
  }
  t.append(head, pos, spd);
  const lights = document.getElementById('lights');
  for (let i = 0; i < LIGHTS; i++) lights.append(el('label', {}, el('input', {type: 'checkbox',
    id: 'MonitorLights' + i, onchange: e => post('/api/aircraft/monitoring',
      {key: 'MonitorLights' + i, value: e.target.checked})}), 'Monitor lights ' + (i + 1)));
}

function render(a) {
  document.getElementById('lblCurrentAircraft').textContent = a.title;
  document.getElementById('lblCurrentFSAircraft').textContent = a.sourceFile || 'none';
  document.getElementById('estimated').textContent = a.estimated ?
    'These figures are estimated from the simulator\'s aircraft.cfg.' : '';
  document.getElementById(a.source).checked = true;
  const p = a.profile;
  for (const k of TEXTS) { const e = document.getElementById(k); e.value = p[k]; e.disabled = a.locked; }
  for (const k of FLAGS) { const e = document.getElementById(k); e.checked = p[k]; e.disabled = a.locked; }
  for (let i = 0; i < 9; i++) {
    const fp = document.getElementById('txtFlapPos' + i);
    const fs = document.getElementById('txtFlapSpeed' + i);
    fp.value = p.FlapPos[i]; fs.value = p.FlapSpeed[i];
    fp.disabled = fs.disabled = a.locked;
  }
  document.getElementById('cmdWriteINI').disabled = a.locked;
  document.getElementById('lockNote').textContent = a.locked ?
    'To change these figures choose User Specified Data.' : 'Your own figures: change them and save.';
  const w = a.working;
  const speed = k => (k === 'GearSpeedLimit' && !w[k]) ? 'fixed gear' : w[k] + ' kt';
  const rows = WORKING.map(([k, l]) => el('tr', {}, el('td', {}, l), el('td', {class: 'num'}, speed(k))));
  // Only the flap positions the profile has: "10°: 110 kt".
  const flaps = w.FlapSpeedLimit.map((limit, i) => [Number(p.FlapPos[i]), limit])
    .filter(([degrees]) => degrees > 0)
    .map(([degrees, limit]) => degrees + '\u00b0: ' + limit + ' kt');
  rows.push(el('tr', {}, el('td', {}, 'Flap speed limits'),
    el('td', {class: 'num'}, flaps.length ? flaps.join(', ') : 'no flaps')));
  document.getElementById('working').replaceChildren(...rows);
  document.getElementById('MonitorEngines').checked = a.MonitorEngines;
  document.getElementById('InstructorGPWS').checked = a.InstructorGPWS;
  document.getElementById('InstructorVolume').value = String(a.InstructorVolume);
  a.MonitorLights.forEach((on, i) => { document.getElementById('MonitorLights' + i).checked = on; });
  const types = document.getElementById('types');
  types.replaceChildren(...a.types.map(t => el('div', {class: 'type' + (t.enabled ? '' : ' off')},
    el('h3', {}, t.name + (t.enabled ? '' : ' (not this aircraft)')),
    ...t.boxes.map(b => el('label', {}, el('input', {type: 'checkbox', checked: b.checked,
      disabled: !b.enabled, id: 'chkBoeing' + b.box,
      onchange: e => post('/api/aircraft/monitoring', {box: b.box, value: e.target.checked})}), b.name)))));
  showValidation(a.locked ? '' : a.validation);
}

function profileFromPage() {
  const p = {FlapPos: [], FlapSpeed: []};
  for (const k of TEXTS) p[k] = document.getElementById(k).value.trim();
  for (const k of FLAGS) p[k] = document.getElementById(k).checked;
  for (let i = 0; i < 9; i++) {
    p.FlapPos.push(document.getElementById('txtFlapPos' + i).value.trim());
    p.FlapSpeed.push(document.getElementById('txtFlapSpeed' + i).value.trim());
  }
  return p;
}

async function start() {
  buildFlaps();
  for (const id of ['optFSData', 'optVantoroData', 'optUserData'])
    document.getElementById(id).onchange = () => post('/api/aircraft/source', {source: id});
  document.getElementById('cmdWriteINI').onclick = () =>
    post('/api/aircraft/profile', {profile: profileFromPage()});
  document.getElementById('MonitorEngines').onchange = e =>
    post('/api/aircraft/monitoring', {key: 'MonitorEngines', value: e.target.checked});
  document.getElementById('InstructorGPWS').onchange = e =>
    post('/api/aircraft/monitoring', {key: 'InstructorGPWS', value: e.target.checked});
  document.getElementById('InstructorVolume').onchange = e =>
    post('/api/aircraft/monitoring', {key: 'InstructorVolume', value: Number(e.target.value)});
  try {
    render(await api('/api/aircraft'));
  } catch (x) {
    showMessage('msg', x.message, false);
  }
}

document.addEventListener('DOMContentLoaded', start);
