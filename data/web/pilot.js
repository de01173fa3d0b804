// The Pilot page: every field of the pilot file, the picture, the
// instructor, and new / load / save. Each change goes to the instructor at
// once; Save writes the file.
'use strict';

const SECTIONS = [
  ['Control setup', [
    ['HaveYokePressure', 'I have a yoke with pressure feedback'],
    ['RudderController', 'I have rudder pedals']]],
  ['Flight settings', [
    ['WantTaxiInWindAdvice', 'Advice on taxiing in wind'],
    ['MonitorUseOfLights', 'Monitor the use of lights'],
    ['WantRandomFailures', 'Random failures'],
    ['WantLooseWireFailures', 'Loose wire failures'],
    ['FailureSlider', 'Reliability (100 never fails)', 'range'],
    ['PausePointsLoss', 'Pausing costs points'],
    ['PauseWarning', 'Warn when the simulator is paused'],
    ['PauseGap', 'Seconds between pause warnings', 'number']]],
  ['Log book', [
    ['Basic', 'Basic log book (instead of the detailed one)']]],
  ['Sound', [
    ['DisableSound', 'Disable sound'],
    ['BackgroundSounds', 'Background sounds'],
    ['Humour', 'Humour'],
    ['Captions', 'Captions'],
    ['MonGT', 'Call out traffic on the ground'],
    ['MonAT', 'Call out traffic in the air'],
    ['AdviceWP', 'Advice on waypoints'],
    ['AdviceVORNDB', 'Advice on VORs and NDBs'],
    ['MonitorVOR', 'Monitor the VOR'],
    ['AutoNearestAirport', 'Announce the nearest airport'],
    ['MonitorTaxiways', 'Monitor taxiways'],
    ['InstructorNoticesFailures', 'The instructor notices failures']]],
  ['Flight modes', [
    ['AutoDetectModeCruise', 'Detect cruise by itself'],
    ['AutoDetectModeLanding', 'Detect landing by itself']]],
  ['Radios', [
    ['AutoTuneILS', 'Tune the ILS'],
    ['AutoTuneATIS', 'Tune the ATIS'],
    ['AutoTuneVOR', 'Tune the VOR']]],
];

let page = null;

async function change(fields) {
  try {
    render(await api('/api/pilot', {record: fields}));
    hideMessage('msg');
  } catch (e) {
    showMessage('msg', e.message, false);
    render(await api('/api/pilot'));
  }
}

function boxFor(key, label, kind) {
  if (kind === 'range') {
    const out = el('b', {id: key + 'Value'});
    const input = el('input', {type: 'range', id: key, min: '0', max: '100',
      onchange: e => change({[key]: Number(e.target.value)}),
      oninput: e => { out.textContent = e.target.value; }});
    return el('label', {}, label, input, out);
  }
  if (kind === 'number') {
    return el('label', {}, label, el('input', {type: 'number', id: key, min: '0', max: '3600',
      style: 'width:6em', onchange: e => change({[key]: parseInt(e.target.value, 10) || 0})}));
  }
  return el('label', {}, el('input', {type: 'checkbox', id: key,
    onchange: e => change({[key]: e.target.checked})}), label);
}

function build() {
  const grid = document.getElementById('sections');
  const picture = el('div', {class: 'picture', id: 'picture'}, 'No picture');
  const file = el('input', {type: 'file', id: 'pictureFile', accept: 'image/png,image/jpeg,image/gif,image/bmp',
    style: 'display:none', onchange: upload});
  grid.append(el('section', {class: 'card'}, el('h2', {}, 'The pilot'),
    el('div', {class: 'field-grid'},
      el('span', {}, 'Name'), el('input', {type: 'text', id: 'name',
        onchange: e => change({name: e.target.value})}),
      el('span', {}, 'Picture'), el('div', {class: 'row'}, picture,
        el('div', {}, el('button', {onclick: () => file.click()}, 'Choose picture...'), file,
          el('div', {class: 'muted small'}, 'At most 80 by 80 pixels'),
          el('button', {onclick: () => change({image: ''})}, 'Remove'))),
      el('span', {}, 'Instructor'), el('div', {class: 'row'},
        el('select', {id: 'lstInstructor', onchange: e => change({Instructor: e.target.value})}),
        el('button', {id: 'cmdListenToInstructor', onclick: listen}, 'Listen to instructor')))));
  for (const [title, fields] of SECTIONS) {
    grid.append(el('section', {class: 'card'}, el('h2', {}, title),
      el('div', {class: 'boxes'}, ...fields.map(([k, l, kind]) => boxFor(k, l, kind)))));
  }
}

function render(p) {
  page = p;
  const r = p.record;
  document.getElementById('name').value = r.name;
  for (const [, fields] of SECTIONS) {
    for (const [k, , kind] of fields) {
      const input = document.getElementById(k);
      if (kind) input.value = r[k]; else input.checked = r[k];
    }
  }
  document.getElementById('FailureSliderValue').textContent = r.FailureSlider;
  const list = document.getElementById('lstInstructor');
  list.replaceChildren(...p.instructors.map(i => el('option', {value: i}, i)));
  if (p.instructors.length === 0) list.append(el('option', {value: ''}, 'No instructors installed'));
  list.value = r.Instructor;
  const load = document.getElementById('loadList');
  load.replaceChildren(...p.files.map(f => el('option', {value: f}, f)));
  if (p.file) load.value = p.file;
  document.getElementById('fileLine').textContent = p.file ? 'File: ' + p.file : 'Not saved to a file yet';
  document.getElementById('unsavedLine').textContent = p.unsaved ? 'Changes not saved' : '';
  const picture = document.getElementById('picture');
  if (r.image) picture.replaceChildren(el('img', {src: '/api/pilot/picture?' + Date.now(), alt: 'Pilot'}));
  else picture.replaceChildren('No picture');
  const nav = document.getElementById('navPilot');
  if (nav) nav.textContent = 'Pilot: ' + r.name + (p.unsaved ? ' (not saved)' : '');
}

async function upload(e) {
  const f = e.target.files[0];
  e.target.value = '';
  if (!f) return;
  try {
    render(await api('/api/pilot/picture', await f.arrayBuffer(), true));
    hideMessage('msg');
  } catch (x) {
    showMessage('msg', x.message, false);
  }
}

async function listen() {
  try {
    await api('/api/pilot/listen', {});
  } catch (x) {
    showMessage('msg', x.message, false);
  }
}

async function action(path, body, done) {
  try {
    const p = await api(path, body);
    render(p);
    if (p.message || done) showMessage('msg', p.message || done, true);
    else hideMessage('msg');
  } catch (x) {
    showMessage('msg', x.message, false);
  }
}

function unsavedQuestion() {
  return page && page.unsaved ? page.unsavedQuestion.join('\n') : null;
}

async function start() {
  build();
  document.getElementById('cmdNewPilot').onclick = () => action('/api/pilot/new', {}, 'A new pilot');
  document.getElementById('cmdLoad').onclick = () => {
    const q = unsavedQuestion();
    if (q && !confirm(q.replace('close the program', 'load another pilot'))) return;
    action('/api/pilot/load', {file: document.getElementById('loadList').value});
  };
  document.getElementById('cmdSave').onclick = () => action('/api/pilot/save', {});
  document.getElementById('cmdSaveAs').onclick = () =>
    action('/api/pilot/save', {name: document.getElementById('saveName').value, saveAs: true});
  window.addEventListener('beforeunload', e => {
    const q = unsavedQuestion();
    if (q) { e.preventDefault(); e.returnValue = q; return q; }
  });
  try {
    render(await api('/api/pilot'));
  } catch (x) {
    showMessage('msg', x.message, false);
  }
}

document.addEventListener('DOMContentLoaded', start);
