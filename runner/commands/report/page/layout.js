// ---- What the timeline shows: tracks, rows, and the part of the run

const kRowHeight = 20;
const kTrackGap = 10;
const kChartHeight = 44;
const kMarkLane = 20;
const kAxis = 22;
const canvas = byId('canvas');
const view = {from: 0, to: wholeRun};
const selection = {span: -1, finding: null};

const width = () => canvas.clientWidth;
const gutter = () => (width() < 500 ? 76 : 116);
const scale = () => (width() - gutter()) / (view.to - view.from);
const xOf = (time) => gutter() + (time - view.from) * scale();
const timeAt = (x) => view.from + (x - gutter()) / scale();

// Tracks with their rows. A row has the spans of one depth, in the order of time, and the intervals if spans are missing.
function tracksWithRows() {
  const tracks = data.tracks.map((track) => ({...track, rows: []}));
  const rowAt = (track, depth) => {
    const {rows} = tracks[track];
    while (rows.length <= depth) rows.push({spans: [], starts: [], bins: null});
    return rows[depth];
  };
  for (let span = 0; span < spanCount; ++span) {
    const row = rowAt(spans.track[span], spans.depth[span]);
    row.spans.push(span);
    row.starts.push(spans.start[span]);
  }
  for (const bins of data.bins.rows) rowAt(bins.track, bins.depth).bins = bins;
  return tracks.filter((track) => track.rows.length).sort((a, b) => Number(a.isScope) - Number(b.isScope));
}

const drawn = tracksWithRows();
let height = kAxis + (data.findings.length ? kMarkLane : 0);
for (const track of drawn) {
  track.top = height;
  height += track.rows.length * kRowHeight + kTrackGap;
}
const chartTop = height;
if (data.percents.length) height += kChartHeight + kTrackGap;

// Returns the place in a row of the first span that ends after a time. The spans of a row do not overlap.
function firstEndingAfter(row, time) {
  const next = firstAbove(row.starts, time);
  return next > 0 && endOf(row.spans[next - 1]) > time ? next - 1 : next;
}

function spanAt(x, y) {
  for (const track of drawn) {
    const row = track.rows[Math.floor((y - track.top) / kRowHeight)];
    if (!row || y < track.top || x < gutter()) continue;
    const onePixel = 1 / scale();
    const i = firstEndingAfter(row, timeAt(x) - onePixel);
    if (i < row.spans.length && row.starts[i] <= timeAt(x) + onePixel) return row.spans[i];
  }
  return -1;
}

// Returns the interval at a place, as {row, i}; null if there is none.
function binAt(x, y) {
  for (const track of drawn) {
    const row = track.rows[Math.floor((y - track.top) / kRowHeight)];
    if (!row || y < track.top || x < gutter() || !row.bins) continue;
    const i = firstAbove(row.bins.at, Math.floor(timeAt(x) / data.bins.width)) - 1;
    if (i >= 0 && row.bins.at[i] === Math.floor(timeAt(x) / data.bins.width)) return {track, bins: row.bins, i};
  }
  return null;
}

// Draws and describes once for several changes between two frames.
let isDrawingDue = false;
function drawSoon() {
  if (isDrawingDue) return;
  isDrawingDue = true;
  requestAnimationFrame(() => {
    isDrawingDue = false;
    draw();
  });
}

function setView(from, to) {
  Object.assign(view, rangeWithin(from, to, wholeRun));
  drawSoon();
}

function zoom(factor, around = (view.from + view.to) / 2) {
  setView(around - (around - view.from) * factor, around + (view.to - around) * factor);
}

const move = (share) => setView(view.from + (view.to - view.from) * share, view.to + (view.to - view.from) * share);
