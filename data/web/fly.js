// The Fly page: the live view of the flight, by server-sent events. The
// stream sends the state document after each tick ("state" events) and the
// instructor's events as numbered lines; a page that reloads gets the kept
// lines again, so it shows what it showed before.
'use strict';

const MODE_NAMES = {Taxiing: 'Taxiing', TakeOff: 'Taking off', Cruise: 'Cruise', Landing: 'Landing',
  none: 'No flight mode'};
const MAX_LINES = 300;
// Pieces of one sentence follow each other within this many ticks.
const JOIN_TICKS = 6;
let lastReports = [];
// The last tick of the state, and the tick the message shown goes out at.
let lastTick = 0;
let messageUntil = Infinity;
// The hot keys the app can press for the pilot: slot, what it does, the key
// in the simulator.
const HOT_KEYS = [
  [7, 'Next flight mode', 'Ctrl+Shift+Z'], [8, 'Previous flight mode', 'Ctrl+Shift+X'],
  [9, 'Airmanship test', 'Ctrl+Shift+C'],
];

function clockOf(tick) {
  const s = Math.max(0, Math.floor(tick / 2));
  return String(Math.floor(s / 60)).padStart(2, '0') + ':' + String(s % 60).padStart(2, '0');
}

function setText(id, v) {
  const e = document.getElementById(id);
  const t = (v === undefined || v === null || v === '') ? '-' : String(v);
  if (e.textContent !== t) e.textContent = t;
}

function renderState(s) {
  lastTick = s.tick || 0;
  if (lastTick > messageUntil) {
    messageUntil = Infinity;
    document.getElementById('simMessage').textContent = '';
  }
  const button = document.getElementById('cmdConnect');
  button.textContent = s.connected ? 'Disconnect' : 'Connect';
  button.className = 'big ' + (s.connected ? 'danger' : 'primary');
  setText('lblFSUIPCStatus', s.statusLine || (s.connected ? 'Connecting...' : 'Not connected'));
  setText('simulator', s.simulator || 'No simulator');
  setText('aircraft', s.aircraft || 'No aircraft');
  const mode = document.getElementById('mode');
  mode.className = 'mode ' + (s.mode || 'none');
  mode.textContent = MODE_NAMES[s.mode] || s.mode;
  const live = s.live || {};
  setText('vIas', live.ias);
  setText('vGs', live.groundSpeed);
  setText('vHeight', live.height);
  setText('vVs', live.verticalSpeed);
  setText('vBank', live.bank);
  setText('vPitch', live.pitch);
  setText('leg', s.leg);
  setText('waypoint', s.waypoint);
  setText('checklist', s.checklist);
  setText('lblReadErrors', s.readErrors || 0);
  setText('linkStatus', s.linkStatus);
  setText('clock', s.clock);
  const world = (s.app || {}).world;
  if (world) {
    setText('world', world.state === 'loaded' ? world.runways.toLocaleString('en') + ' runway ends' :
      world.state === 'loading' ? 'reading the runways...' : 'no runways');
  }
  const scores = s.scores || {};
  setText('landingScore', scores.landing ? scores.landing.toFixed(1) : '');
  setText('flightScore', scores.flight ? scores.flight.toFixed(1) : '');
  setText('circuitScore', scores.circuit ? scores.circuit.toFixed(1) : '');
  const report = s.logBook || lastReports.join('\n\n') || 'No flight has been scored yet.';
  setText('txtLogBook', report);
  const failure = document.getElementById('failure');
  if (s.failure) {
    failure.textContent = s.failure;
    failure.className = 'failure show';
  }
  const nav = document.getElementById('navPilot');
  if (nav && s.pilot) nav.textContent = 'Pilot: ' + s.pilot.name + (s.pilot.unsaved ? ' (not saved)' : '');
}

function addLine(tick, text, cls, file) {
  const list = document.getElementById('captions');
  const li = el('li', {class: cls || ''}, el('span', {class: 'time'}, clockOf(tick)),
    el('span', {class: 'text'}, text));
  if (file) li.dataset.file = file;
  list.prepend(li);
  while (list.children.length > MAX_LINES) list.lastChild.remove();
  return li;
}

// The newest of the last few lines of `file` that `test` accepts.
function recentLine(file, test) {
  return [...document.querySelectorAll('#captions li')].slice(0, 12)
    .find(li => li.dataset.file === file && test(li));
}

function onEvent(e) {
  let ev;
  try { ev = JSON.parse(e.data); } catch (x) { return; }
  switch (ev.type) {
    case 'spoken': {
      // A remark already shows this caption, coloured: it is now being said.
      const remark = recentLine(ev.file, li => li.classList.contains('remark') && !li.dataset.spoken);
      const text = ev.caption || ev.file;
      const last = document.querySelector('#captions li');
      if (remark) {
        remark.dataset.spoken = '1';
      } else if (last && last.dataset.plain && !/[.!?]$/.test(last.dataset.text) &&
                 ev.tick - Number(last.dataset.tick) <= JOIN_TICKS) {
        // A sentence spoken in pieces (numbers, names) reads as one line.
        last.dataset.text += ' ' + text;
        last.querySelector('.text').textContent = last.dataset.text;
      } else {
        const li = addLine(ev.tick, text, ev.missing ? 'missing' : '', ev.file);
        li.dataset.plain = '1';
        li.dataset.text = text;
        li.dataset.tick = String(ev.tick);
      }
      break;
    }
    case 'remark': {
      const li = addLine(ev.tick, ev.caption || ev.file, 'remark', ev.file);
      li.classList.add(ev.level >= 2 ? 'red' : 'amber');
      break;
    }
    case 'mode':
      addLine(ev.tick, 'Flight mode: ' + (MODE_NAMES[ev.mode] || ev.mode), 'event');
      break;
    case 'message': {
      // The simulator shows a message for its seconds (two ticks a second);
      // one already gone when the page (re)loads is not shown.
      const until = ev.tick + 2 * Number(ev.seconds || 0);
      if (ev.seconds > 0 && until < lastTick) break;
      setText('simMessage', ev.text);
      messageUntil = ev.seconds > 0 ? until : Infinity;
      break;
    }
    case 'landing':
      addLine(ev.tick, 'Landing scored ' + Number(ev.score).toFixed(1) +
        (ev.rating ? ' (' + ev.rating + ')' : ''), 'event');
      lastReports = [ev.report];
      break;
    case 'flight':
      addLine(ev.tick, 'Flight ' + ev.index + ' scored ' + Number(ev.score).toFixed(1), 'event');
      lastReports.push(ev.report);
      break;
    case 'disconnect':
      addLine(ev.tick, 'Disconnected: ' + ev.reason, 'event');
      break;
    case 'error': {
      const failure = document.getElementById('failure');
      failure.textContent = ev.text;
      failure.className = 'failure show';
      break;
    }
    default:
      break;
  }
}

function hotKeyButtons() {
  const box = document.getElementById('hotKeys');
  for (const [slot, name, key] of HOT_KEYS) {
    const b = el('button', {id: 'hotKey' + slot, title: 'As ' + key + ' in the simulator',
      onclick: async () => {
        b.disabled = true;
        try {
          await api('/api/key', {key: slot});
          setText('hotKeyMessage', name + ': the instructor takes it at the next tick');
        } catch (x) {
          setText('hotKeyMessage', x.message);
        }
        b.disabled = false;
      }}, name, el('kbd', {}, key));
    box.append(b);
  }
}

function start() {
  hotKeyButtons();
  const stream = new EventSource('/api/events');
  stream.addEventListener('state', e => {
    try { renderState(JSON.parse(e.data)); } catch (x) { /* a torn document: the next one comes */ }
  });
  stream.onmessage = onEvent;
  stream.onerror = () => setText('lblFSUIPCStatus', 'Vantoro is not answering - reconnecting...');
  document.getElementById('cmdConnect').addEventListener('click', async (e) => {
    const connect = e.target.textContent === 'Connect';
    e.target.disabled = true;
    try {
      await api(connect ? '/api/connect' : '/api/disconnect', {});
    } catch (x) {
      setText('lblFSUIPCStatus', x.message);
    }
    e.target.disabled = false;
  });
}

document.addEventListener('DOMContentLoaded', start);
