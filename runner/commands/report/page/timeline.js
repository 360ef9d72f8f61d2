// ---- Using the timeline: search, keys and the pointer

const kDragsFrom = 4;
let foundSpans = new Set();
let foundList = [];

function search(query) {
  foundList = [];
  if (query.trim()) {
    for (let span = 0; span < spanCount; ++span) {
      const number = spans.kind[span] === kCall ? `call ${spans.number[span]}` : '';
      if (matches(`${nameOf(span)} ${textOf(spans.arguments[span])} ${textOf(spans.result[span])} ${number}`, query)) {
        foundList.push(span);
      }
    }
  }
  foundSpans = new Set(foundList);
  byId('found').textContent = query.trim() ? `${numberText(foundList.length)} found` : '';
  drawSoon();
}

// Selects the next or previous span that was found, or of all.
function step(by) {
  if (!foundList.length) {
    const next = selection.span + by;
    if (next >= 0 && next < spanCount) reveal(next);
    return;
  }
  const after = firstAbove(foundList, selection.span);
  const isFound = foundSpans.has(selection.span);
  const next = by > 0 ? after : after - (isFound ? 2 : 1);
  reveal(foundList[(next + foundList.length) % foundList.length]);
}

const keys = {
  '+': () => zoom(0.5),
  '=': () => zoom(0.5),
  '-': () => zoom(2),
  '0': () => setView(0, wholeRun),
  ArrowLeft: () => move(-0.2),
  ArrowRight: () => move(0.2),
  ArrowUp: () => zoom(0.5),
  ArrowDown: () => zoom(2),
  n: () => step(1),
  p: () => step(-1),
};

function click(x, y) {
  const cluster = y >= kAxis && y < kAxis + kMarkLane
    ? findingClusters().find(({from, to}) => x >= from - 12 && x <= to + 12) : null;
  if (cluster) return selectCluster(cluster);
  const span = spanAt(x, y);
  const bin = span < 0 ? binAt(x, y) : null;
  if (bin) selectBin(bin); else select(span);
}

function listenToPointer() {
  let drag = null;
  canvas.addEventListener('wheel', (event) => {
    if (!event.ctrlKey && Math.abs(event.deltaX) > Math.abs(event.deltaY)) return;
    event.preventDefault();
    zoom(event.deltaY > 0 ? 1.25 : 0.8, timeAt(Math.max(event.offsetX, gutter())));
  }, {passive: false});
  canvas.addEventListener('pointerdown', (event) => {
    drag = {x: event.offsetX, from: view.from, to: view.to, isMoved: false};
    canvas.setPointerCapture(event.pointerId);
  });
  canvas.addEventListener('pointermove', (event) => {
    if (!drag) return;
    drag.isMoved = drag.isMoved || Math.abs(event.offsetX - drag.x) >= kDragsFrom;
    const by = (drag.x - event.offsetX) / scale();
    if (drag.isMoved) setView(drag.from + by, drag.to + by);
  });
  canvas.addEventListener('pointerup', (event) => {
    if (drag && !drag.isMoved) click(event.offsetX, event.offsetY);
    drag = null;
  });
  canvas.addEventListener('pointercancel', () => { drag = null; });
}

function listen() {
  canvas.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.altKey || event.metaKey || !(event.key in keys)) return;
    event.preventDefault();
    keys[event.key]();
  });
  for (const one of document.querySelectorAll('[data-key]')) {
    one.addEventListener('click', () => keys[one.dataset.key]());
  }
  byId('search').addEventListener('input', () => search(byId('search').value));
  byId('search').addEventListener('keydown', (event) => {
    if (event.key === 'Enter') step(event.shiftKey ? -1 : 1);
  });
  listenToPointer();
  listenToOverview();
  new ResizeObserver(drawSoon).observe(canvas);
  window.addEventListener('beforeprint', draw);
  window.addEventListener('afterprint', drawSoon);
  window.matchMedia('(prefers-color-scheme: dark)').addEventListener('change', drawSoon);
}

function describeTimeline() {
  const others = data.counts.spans - data.counts.entries;
  canvas.setAttribute('aria-label', `Timeline of ${counted(data.counts.entries, 'command')} and ` +
      `${numberText(others)} host calls and scopes on ${counted(drawn.length, 'track')}. ` +
      'The tables of this page have the same data.');
  const notes = [];
  const left = data.counts.tracks - data.tracks.length;
  if (left > 0) notes.push(`${counted(left, 'more track')} are not drawn.`);
  if (data.bins.rows.length) {
    notes.push(`The run has ${numberText(data.counts.spans)} spans. ${numberText(spanCount)} of them are exact: the first, ` +
      `the slowest and the failed ones, and those around findings. The height of the others is how busy each interval of ` +
      `${timeText(data.bins.width)} was. A timeline viewer shows all of the trace.`);
  }
  byId('timeline-note').textContent = notes.join(' ');
}
