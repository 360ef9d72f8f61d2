// ---- The whole run in a strip, with a frame around the part that the timeline shows

const overview = byId('overview');
const kOverviewHeight = 36;

const overviewX = (time) => time / wholeRun * overview.clientWidth;
const overviewTime = (x) => x / overview.clientWidth * wholeRun;

// Returns how busy each pixel is with what the entries and, without them, the first row does.
function overviewShares(pixels) {
  const shares = new Float64Array(pixels);
  const add = (start, end, busy) => {
    const from = start / wholeRun * pixels;
    const to = Math.max(end / wholeRun * pixels, from + 1e-9);
    for (let x = Math.floor(from); x < Math.min(to, pixels); ++x) {
      shares[x] += (Math.min(x + 1, to) - Math.max(x, from)) / (to - from) * busy / wholeRun * pixels;
    }
  };
  const track = drawn.find((one) => !one.isScope);
  const row = track && (track.rows[1] || track.rows[0]);
  if (!row) return shares;
  if (row.bins) row.bins.at.forEach((at, i) => add(at * data.bins.width, (at + 1) * data.bins.width, row.bins.busy[i]));
  else row.spans.forEach((span) => add(spans.start[span], endOf(span), durationOf(span)));
  return shares;
}

let shares = new Float64Array(0);

function drawOverview() {
  const context = contextOf(overview, kOverviewHeight);
  const wide = overview.clientWidth;
  if (shares.length !== wide) shares = overviewShares(wide);
  context.fillStyle = palette.call;
  shares.forEach((share, x) => {
    const tall = share > 0 ? Math.max(Math.min(share, 1) * (kOverviewHeight - 8), 1) : 0;
    context.fillRect(x, kOverviewHeight - tall, 1, tall);
  });
  for (const finding of data.findings) {
    context.fillStyle = finding.severity === 'error' ? palette.bad : palette.warn;
    context.fillRect(Math.min(overviewX(finding.time), wide - 2) - 1, 0, 3, 7);
  }
  context.globalAlpha = 0.55;
  context.fillStyle = palette.panel;
  context.fillRect(0, 0, overviewX(view.from), kOverviewHeight);
  context.fillRect(overviewX(view.to), 0, wide, kOverviewHeight);
  context.globalAlpha = 1;
  context.strokeStyle = palette.link;
  context.lineWidth = 2;
  context.strokeRect(overviewX(view.from) + 1, 1, Math.max(overviewX(view.to) - overviewX(view.from) - 2, 3),
      kOverviewHeight - 2);
}

// A click or a drag moves the frame to the pointer.
function listenToOverview() {
  const moveTo = (event) => {
    const half = (view.to - view.from) / 2;
    setView(overviewTime(event.offsetX) - half, overviewTime(event.offsetX) + half);
  };
  overview.addEventListener('pointerdown', (event) => {
    overview.setPointerCapture(event.pointerId);
    moveTo(event);
  });
  overview.addEventListener('pointermove', (event) => {
    if (overview.hasPointerCapture(event.pointerId)) moveTo(event);
  });
}
