// The Settings page: every option of settings.ini and the sound device.
// Each change is written at once.
'use strict';

let page = null;

async function save(body) {
  try {
    render(await api('/api/settings', body));
    showMessage('msg', 'Saved', true);
  } catch (x) {
    showMessage('msg', x.message, false);
    render(await api('/api/settings'));
  }
}

function setting(key, value) { return save({settings: {[key]: value}}); }

function build(p) {
  const folders = document.getElementById('folders');
  const rows = p.settings.P3DMode ?
    [['FSXFolder', 'Prepar3D']] :
    [['FS2002Folder', 'Flight Simulator 2002'], ['FS2004Folder', 'Flight Simulator 2004'],
     ['FSXFolder', 'Flight Simulator X']];
  rows.push(['FlightPlanFolder', 'Flight plans']);
  for (const [key, label] of rows) {
    folders.append(el('label', {for: key}, label), el('input', {type: 'text', id: key,
      onchange: e => setting(key, e.target.value)}));
  }
  const end = document.getElementById('endFlight');
  p.endFlightLabels.forEach((label, i) => end.append(el('label', {title: p.endFlightTips[i]},
    el('input', {type: 'radio', name: 'EndFlightWhen', id: 'EndFlightWhen' + i,
      onchange: () => setting('EndFlight', i)}), label)));
  const voice = document.getElementById('VoiceMode');
  p.voiceModes.forEach((m, i) => voice.append(el('option', {value: String(i)}, m)));
  voice.onchange = e => setting('VoiceMode', Number(e.target.value));
  const phrases = document.getElementById('lstVoiceCommand');
  phrases.replaceChildren(...(p.voicePhrases || []).map(list => el('li', {}, list.join(', '))));
  document.getElementById('TransitionAltitude').onchange = e => setting('TransitionAltitude', e.target.value);
  const simNames = {'': 'The computer\'s own (FSUIPC on Windows)', fsuipc: 'FSUIPC (Windows)',
    flightgear: 'FlightGear', xplane: 'X-Plane 11 or 12'};
  const sim = document.getElementById('Simulator');
  p.simulators.forEach(n => sim.append(el('option', {value: n}, simNames[n] || n)));
  sim.onchange = e => setting('Simulator', e.target.value);
  for (const k of ['SimulatorHost', 'SimulatorPort'])
    document.getElementById(k).onchange = e => setting(k, e.target.value.trim());
  for (const k of ['LoadFSXPlanOnConnect', 'GPSOverridesFlightPlan'])
    document.getElementById(k).onchange = e => setting(k, e.target.checked);
  for (let i = 0; i < 4; i++) {
    document.getElementById('tip' + i).onchange = () =>
      setting('SpokenTips', [0, 1, 2, 3].map(j => document.getElementById('tip' + j).checked));
  }
  document.getElementById('optDefaultSound').onchange = () => save({soundCard: -1});
  document.getElementById('optSpecifySoundCard').onchange = () => {
    document.getElementById('lstSoundCard').disabled = false;
    if (page.soundDevices.length > 0) save({soundCard: Number(document.getElementById('lstSoundCard').value)});
  };
  document.getElementById('lstSoundCard').onchange = e => save({soundCard: Number(e.target.value)});
}

function render(p) {
  page = p;
  const s = p.settings;
  for (const k of ['FS2002Folder', 'FS2004Folder', 'FSXFolder', 'FlightPlanFolder']) {
    const e = document.getElementById(k);
    if (e) e.value = s[k];
  }
  document.getElementById('EndFlightWhen' + s.EndFlight).checked = true;
  document.getElementById('TransitionAltitude').value = s.TransitionAltitude;
  document.getElementById('LoadFSXPlanOnConnect').checked = s.LoadFSXPlanOnConnect;
  document.getElementById('GPSOverridesFlightPlan').checked = s.GPSOverridesFlightPlan;
  s.SpokenTips.forEach((on, i) => { document.getElementById('tip' + i).checked = on; });
  document.getElementById('VoiceMode').value = String(s.VoiceMode);
  for (const k of ['Simulator', 'SimulatorHost', 'SimulatorPort'])
    document.getElementById(k).value = s[k];
  const list = document.getElementById('lstSoundCard');
  list.replaceChildren(...p.soundDevices.map((d, i) => el('option', {value: String(i)}, d)));
  if (p.soundDevices.length === 0) list.append(el('option', {value: ''}, 'No sound devices found'));
  const specific = p.soundCard >= 0;
  document.getElementById(specific ? 'optSpecifySoundCard' : 'optDefaultSound').checked = true;
  list.disabled = !specific;
  if (specific) list.value = String(p.soundCard);
}

// The failure choices are the pilot's own, kept in his pilot file.
const FAILURE_BOXES = ['WantRandomFailures', 'WantLooseWireFailures', 'InstructorNoticesFailures'];

function renderFailures(p) {
  const r = p.record;
  for (const k of FAILURE_BOXES) document.getElementById(k).checked = r[k];
  document.getElementById('FailureSlider').value = r.FailureSlider;
  document.getElementById('FailureSliderValue').textContent = r.FailureSlider;
}

async function failure(key, value) {
  try {
    renderFailures(await api('/api/pilot', {record: {[key]: value}}));
    showMessage('msg', 'Saved', true);
  } catch (x) {
    showMessage('msg', x.message, false);
    renderFailures(await api('/api/pilot'));
  }
}

function buildFailures() {
  for (const k of FAILURE_BOXES)
    document.getElementById(k).onchange = e => failure(k, e.target.checked);
  const slider = document.getElementById('FailureSlider');
  slider.oninput = e => { document.getElementById('FailureSliderValue').textContent = e.target.value; };
  slider.onchange = e => failure('FailureSlider', Number(e.target.value));
}

async function start() {
  try {
    const p = await api('/api/settings');
    build(p);
    render(p);
    buildFailures();
    renderFailures(await api('/api/pilot'));
  } catch (x) {
    showMessage('msg', x.message, false);
  }
}

async function closeVantoro() {
  try {
    await api('/api/quit', {});
    showMessage('msg', 'Vantoro has closed. You can close this page.', true);
  } catch (x) {
    showMessage('msg', x.message, false);
  }
}

document.addEventListener('DOMContentLoaded', () => {
  document.getElementById('closeVantoro').addEventListener('click', closeVantoro);
  start();
});
