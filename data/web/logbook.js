// The Log book page: the pilot's flights from his flight log (filtered by
// aircraft), plots of his scores and touchdown rates over time, the log book
// as written, and for a recorded flight its approach and touchdown cards.
'use strict';

const charts = {};
const COLUMNS = {date: 'Date', aircraft: 'Aircraft', landing: 'LandingScore', flight: 'FlightScore',
  circuit: 'CircuitScore', duration: 'FlightDuration'};

// "ddmmyyHHMM" as the log writes it, as a date.
function logDate(text) {
  const m = /^(\d\d)(\d\d)(\d\d)(\d\d)(\d\d)$/.exec(text || '');
  if (!m) return null;
  return new Date(2000 + Number(m[3]), Number(m[2]) - 1, Number(m[1]), Number(m[4]), Number(m[5]));
}

function dateText(d) {
  return d ? d.toLocaleDateString(undefined, {day: '2-digit', month: 'short', year: 'numeric'}) + ' ' +
    d.toLocaleTimeString(undefined, {hour: '2-digit', minute: '2-digit'}) : '';
}

// The flight's duration, logged in seconds.
function durationText(seconds) {
  const s = Number(seconds);
  if (!Number.isFinite(s) || seconds === '') return '';
  const h = Math.floor(s / 3600), m = Math.floor((s % 3600) / 60), r = Math.round(s % 60);
  return (h ? h + ' h ' : '') + m + ' min ' + r + ' s';
}

function chart(id, config) {
  if (typeof Chart === 'undefined') return;
  if (charts[id]) charts[id].destroy();
  charts[id] = new Chart(document.getElementById(id), config);
}

function lineChart(id, labels, datasets, yTitle) {
  chart(id, {type: 'line', data: {labels, datasets},
    options: {responsive: true, maintainAspectRatio: false, animation: false,
      scales: {y: {title: {display: true, text: yTitle}}},
      plugins: {legend: {position: 'bottom'}}}});
}

async function loadFlights() {
  const filter = document.getElementById('filter').value;
  let log;
  try {
    log = await api('/api/logbook?aircraft=' + encodeURIComponent(filter));
  } catch (x) {
    showMessage('msg', x.message, false);
    return;
  }
  const select = document.getElementById('filter');
  if (select.options.length === 1) {
    for (const a of log.aircraft) select.append(el('option', {value: a}, a));
  }
  const col = {};
  for (const [k, name] of Object.entries(COLUMNS)) col[k] = log.header.indexOf(name);
  const rows = log.rows.map(r => ({
    date: logDate(r[col.date]), aircraft: r[col.aircraft], landing: Number(r[col.landing]),
    flight: Number(r[col.flight]), circuit: Number(r[col.circuit]), duration: r[col.duration]}));
  const table = document.getElementById('flights');
  const head = el('tr', {}, el('th', {}, 'Date'), el('th', {}, 'Aircraft'),
    el('th', {class: 'num'}, 'Landing'), el('th', {class: 'num'}, 'Flight'),
    el('th', {class: 'num'}, 'Circuit'), el('th', {}, 'Duration'));
  if (rows.length === 0) {
    table.replaceChildren(head, el('tr', {}, el('td', {colspan: '6', class: 'muted'},
      log.message || 'No flights of this aircraft in the log.')));
  } else {
    table.replaceChildren(head, ...rows.slice().reverse().map(r => el('tr', {},
      el('td', {}, dateText(r.date)), el('td', {}, r.aircraft),
      el('td', {class: 'num'}, r.landing.toFixed(1)), el('td', {class: 'num'}, r.flight.toFixed(1)),
      el('td', {class: 'num'}, r.circuit ? r.circuit.toFixed(1) : '-'),
      el('td', {}, durationText(r.duration)))));
  }
  const labels = rows.map(r => dateText(r.date));
  lineChart('scoresChart', labels, [
    {label: 'Landing score', data: rows.map(r => r.landing), borderColor: '#1f5f99', backgroundColor: '#1f5f99'},
    {label: 'Flight score', data: rows.map(r => r.flight), borderColor: '#1e8449', backgroundColor: '#1e8449'},
  ], 'Score');
  hideMessage('msg');
}

// Touchdown rates come from the recorded flights: the log keeps no rate.
async function loadTouchdowns() {
  try {
    const t = (await api('/api/touchdowns')).touchdowns;
    const label = x => {
      const d = x.start ? new Date(x.start) : null;
      return d ? dateText(new Date(d.getTime() + x.time * 1000)) : x.file.replace(/^.*\//, '');
    };
    lineChart('rateChart', t.map(label), [
      {label: 'Touchdown rate (recorded flights)', data: t.map(x => x.rate),
        borderColor: '#b03a2e', backgroundColor: '#b03a2e'},
    ], 'ft/min');
  } catch (x) {
    showMessage('msg', x.message, false);
  }
}

async function loadRecordings() {
  const list = document.getElementById('recordings');
  try {
    const r = await api('/api/recordings');
    list.replaceChildren(...r.recordings.map(x => el('option', {value: x.file}, x.file)));
    if (r.recordings.length === 0) list.append(el('option', {value: ''}, 'No recorded flights'));
  } catch (x) {
    showMessage('plotMsg', x.message, false);
  }
}

function approachChart(landing, index) {
  const pts = landing.approach;
  chart('approachChart', {type: 'line',
    data: {datasets: [
      {label: 'Height (ft above ground)', data: pts.map(p => ({x: p.distance, y: p.height})),
        borderColor: '#1f5f99', backgroundColor: '#1f5f99', yAxisID: 'y', pointRadius: 0},
      {label: 'IAS (kt)', data: pts.map(p => ({x: p.distance, y: p.ias})),
        borderColor: '#b9770e', backgroundColor: '#b9770e', yAxisID: 'y1', pointRadius: 0}]},
    options: {responsive: true, maintainAspectRatio: false, animation: false, parsing: false,
      plugins: {title: {display: true, text: 'Approach ' + (index + 1) + ': height and speed to touchdown'},
        legend: {position: 'bottom'}},
      scales: {x: {type: 'linear', reverse: true, title: {display: true, text: 'Distance to touchdown (nm)'}},
        y: {position: 'left', title: {display: true, text: 'ft'}},
        y1: {position: 'right', grid: {drawOnChartArea: false}, title: {display: true, text: 'kt'}}}}});
}

// The touchdown card, drawn on a canvas so that it saves as one picture.
function drawCard(canvas, card, name, index) {
  const W = 560;
  const rows = card.ticks.slice(-14);
  const H = 300 + rows.length * 20;
  canvas.width = W;
  canvas.height = H;
  const g = canvas.getContext('2d');
  g.fillStyle = '#ffffff';
  g.fillRect(0, 0, W, H);
  g.fillStyle = '#17324d';
  g.fillRect(0, 0, W, 52);
  g.fillStyle = '#ffffff';
  g.font = 'bold 20px DejaVu Sans, Arial, sans-serif';
  g.fillText('Touchdown ' + (index + 1) + (card.runway ? ' - runway ' + card.runway : ''), 16, 32);
  g.font = '12px DejaVu Sans, Arial, sans-serif';
  g.fillStyle = '#c9d6e3';
  g.fillText(name, 16, 47);
  const figures = [
    ['Touchdown rate', card.rate + ' ft/min'], ['Load', card.g.toFixed(2) + ' g'],
    ['Crab angle', Math.abs(card.crab).toFixed(1) + '\u00b0' + (card.crab ? (card.crab > 0 ? ' right' : ' left') : '')],
    ['Centre line', card.centreLineOffset === undefined ? 'no runway' :
      Math.abs(card.centreLineOffset) + ' ft ' + (card.centreLineOffset >= 0 ? 'right' : 'left')],
    ['Past threshold', card.pastThreshold === undefined ? 'no runway' : card.pastThreshold + ' ft'],
    ['Bounces', String(card.bounces)],
  ];
  figures.forEach(([label, value], i) => {
    const x = 16 + (i % 3) * 180;
    const y = 80 + Math.floor(i / 3) * 56;
    g.fillStyle = '#5d6d7e';
    g.font = '12px DejaVu Sans, Arial, sans-serif';
    g.fillText(label, x, y);
    g.fillStyle = '#1c2833';
    g.font = 'bold 20px DejaVu Sans, Arial, sans-serif';
    g.fillText(value, x, y + 24);
  });
  const top = 200;
  g.fillStyle = '#1f5f99';
  g.font = 'bold 13px DejaVu Sans, Arial, sans-serif';
  g.fillText('The last 50 feet, tick by tick (half a second)', 16, top);
  const cols = [['Time', 't', v => v.toFixed(1) + ' s'], ['Height', 'height', v => v.toFixed(0) + ' ft'],
    ['IAS', 'ias', v => v + ' kt'], ['Vert. speed', 'vs', v => v + ' fpm'],
    ['Pitch', 'pitch', v => v + '\u00b0'], ['Bank', 'bank', v => v + '\u00b0']];
  g.font = '12px DejaVu Sans, Arial, sans-serif';
  cols.forEach(([h], i) => { g.fillStyle = '#5d6d7e'; g.fillText(h, 16 + i * 88, top + 26); });
  g.strokeStyle = '#d5dde5';
  g.beginPath(); g.moveTo(16, top + 33); g.lineTo(W - 16, top + 33); g.stroke();
  rows.forEach((r, j) => {
    g.fillStyle = j === rows.length - 1 ? '#b03a2e' : '#1c2833';
    cols.forEach(([, k, f], i) => g.fillText(f(r[k]), 16 + i * 88, top + 52 + j * 20));
  });
  g.fillStyle = '#5d6d7e';
  g.font = '11px DejaVu Sans, Arial, sans-serif';
  g.fillText('Vantoro - the last line is the first tick on the ground', 16, H - 12);
}

function cardBox(card, name, index) {
  const canvas = el('canvas', {});
  drawCard(canvas, card, name, index);
  const save = el('button', {onclick: () => canvas.toBlob(blob => {
    const a = el('a', {href: URL.createObjectURL(blob),
      download: name.replace(/^.*\//, '').replace(/\.vrec(\.gz)?$/, '') + '-touchdown-' + (index + 1) + '.png'});
    document.body.append(a);
    a.click();
    a.remove();
  }, 'image/png')}, 'Save as PNG');
  return el('div', {class: 'tdcard'}, canvas, el('div', {}, save));
}

async function plot() {
  const file = document.getElementById('recordings').value;
  if (!file) return;
  const button = document.getElementById('cmdPlot');
  button.disabled = true;
  showMessage('plotMsg', 'Reading the recorded flight...', true);
  try {
    const f = await api('/api/recording?file=' + encodeURIComponent(file));
    const cards = document.getElementById('cards');
    if (f.landings.length === 0) {
      cards.replaceChildren(el('span', {class: 'muted'}, 'This flight has no landing.'));
      hideMessage('plotMsg');
    } else {
      approachChart(f.landings[f.landings.length - 1], f.landings.length - 1);
      cards.replaceChildren(...f.landings.map((l, i) => cardBox(l.card, file, i)));
      hideMessage('plotMsg');
    }
  } catch (x) {
    showMessage('plotMsg', x.message, false);
  }
  button.disabled = false;
}

async function start() {
  if (typeof Chart === 'undefined')
    showMessage('msg', 'The charting library is missing (build Vantoro to copy it beside the app).', false);
  document.getElementById('filter').onchange = loadFlights;
  document.getElementById('cmdPlot').onclick = plot;
  document.getElementById('logBookHtml').src = '/api/logbook/html';
  await loadFlights();
  await loadRecordings();
  await loadTouchdowns();
  followLog();
}

// A flight logged while the page is open shows at once: the live stream's
// state carries the flight log's stamp, which Vantoro looks at every few
// seconds.
function followLog() {
  let stamp;
  const stream = new EventSource('/api/events?after=' + Number.MAX_SAFE_INTEGER);
  stream.addEventListener('state', async e => {
    let s;
    try { s = JSON.parse(e.data); } catch (x) { return; }
    const now = s.app ? s.app.logBook : undefined;
    if (now === undefined || now === stamp) return;
    const first = stamp === undefined;
    stamp = now;
    if (first) return;
    await loadFlights();
    await loadRecordings();
    await loadTouchdowns();
    document.getElementById('logBookHtml').src = '/api/logbook/html?' + Date.now();
  });
}

document.addEventListener('DOMContentLoaded', start);
