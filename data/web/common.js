// What every page of the app shares: the navigation bar, JSON requests and
// the messages under a form.
'use strict';

const PAGES = [
  ['index.html', 'Fly'], ['pilot.html', 'Pilot'], ['aircraft.html', 'Aircraft'],
  ['flightplan.html', 'Flight plan'], ['logbook.html', 'Log book'], ['settings.html', 'Settings'],
];

function buildNav() {
  const nav = document.createElement('nav');
  const brand = document.createElement('span');
  brand.className = 'brand';
  brand.textContent = 'VANTORO';
  nav.appendChild(brand);
  const here = location.pathname.split('/').pop() || 'index.html';
  for (const [href, name] of PAGES) {
    const a = document.createElement('a');
    a.href = href;
    a.textContent = name;
    if (href === here) a.className = 'here';
    nav.appendChild(a);
  }
  const pilot = document.createElement('span');
  pilot.className = 'pilot';
  pilot.id = 'navPilot';
  nav.appendChild(pilot);
  document.body.prepend(nav);
  fetch('/api/state').then(r => r.json()).then(s => {
    if (s.pilot && s.pilot.name) pilot.textContent = 'Pilot: ' + s.pilot.name;
  }).catch(() => {});
}

// A request to the API: the answer's JSON, or an Error carrying the server's message.
async function api(path, body, raw) {
  const options = body === undefined ? {} : {
    method: 'POST',
    headers: {'Content-Type': raw ? 'application/octet-stream' : 'application/json'},
    body: raw ? body : JSON.stringify(body),
  };
  let r;
  try {
    r = await fetch(path, options);
  } catch (e) {
    throw new Error('Vantoro is not answering. Is it still running?');
  }
  let j = {};
  try { j = await r.json(); } catch (e) { /* not JSON */ }
  if (!r.ok) {
    const err = new Error(j.error || ('The request failed (' + r.status + ')'));
    err.answer = j;
    throw err;
  }
  return j;
}

function showMessage(id, text, good) {
  const m = document.getElementById(id);
  m.textContent = text;
  m.className = 'message show ' + (good ? 'ok' : 'bad');
}

function hideMessage(id) { document.getElementById(id).className = 'message'; }

function el(tag, attrs, ...children) {
  const e = document.createElement(tag);
  for (const [k, v] of Object.entries(attrs || {})) {
    if (k === 'class') e.className = v;
    else if (k.startsWith('on')) e.addEventListener(k.slice(2), v);
    else if (k in e && typeof v !== 'string') e[k] = v;
    else e.setAttribute(k, v);
  }
  for (const c of children) e.append(c);
  return e;
}

document.addEventListener('DOMContentLoaded', buildNav);
