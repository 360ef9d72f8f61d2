// ---- Drawing the timeline

let palette = {};

function readPalette() {
  const style = getComputedStyle(document.documentElement);
  const names = ['paper', 'ink', 'faint', 'line', 'panel', 'link', 'bad', 'warn', 'entry', 'failed', 'call', 'scope',
    'chart', 'found'];
  palette = Object.fromEntries(names.map((name) => [name, style.getPropertyValue(`--${name}`).trim()]));
}

// Sizes a canvas to its element and returns its context, in CSS pixels.
function contextOf(one, tall) {
  const ratio = window.devicePixelRatio || 1;
  one.style.height = `${tall}px`;
  one.width = Math.max(1, Math.round(one.clientWidth * ratio));
  one.height = Math.round(tall * ratio);
  const context = one.getContext('2d');
  context.scale(ratio, ratio);
  context.font = '12px system-ui, sans-serif';
  context.fillStyle = palette.paper;
  context.fillRect(0, 0, one.clientWidth, tall);
  return context;
}

function colourOf(span) {
  if (spans.kind[span] === kCall) return palette.call;
  if (spans.kind[span] !== kEntry) return palette.scope;
  const entry = entryOfSpan.get(span);
  return entry && hasFailed(entry) ? palette.failed : palette.entry;
}

function colourOfRow(track, bins) {
  if (track.isScope) return palette.scope;
  return bins.depth === 0 ? palette.entry : palette.call;
}

function drawText(context, text, x, y, room, colour) {
  if (room < 14) return;
  let shown = text;
  if (context.measureText(shown).width > room) {
    shown = shown.slice(0, Math.floor(room / 5));
    while (shown && context.measureText(`${shown}\u2026`).width > room) shown = shown.slice(0, -1);
    if (shown.length < 2) return;
    shown += '\u2026';
  }
  context.fillStyle = colour;
  context.fillText(shown, x, y);
}

// Draws each interval as tall as it was busy.
function drawBins(context, track, bins, top) {
  const wide = data.bins.width;
  context.fillStyle = colourOfRow(track, bins);
  context.globalAlpha = 0.75;
  for (let i = Math.max(firstAbove(bins.at, view.from / wide - 1) - 1, 0); i < bins.at.length;) {
    const start = bins.at[i] * wide;
    const left = Math.max(xOf(start), gutter());
    if (left > width()) break;
    const pixelEnd = Math.max(timeAt(left + 1), start + wide);
    let busy = 0;
    for (; i < bins.at.length && bins.at[i] * wide < pixelEnd; ++i) busy += bins.busy[i];
    const right = Math.min(xOf(pixelEnd), width());
    const tall = Math.max((kRowHeight - 3) * busyShare(busy, pixelEnd - start), 2);
    context.fillRect(left, top + kRowHeight - 3 - tall, Math.max(right - left, 0.5), tall);
  }
  context.globalAlpha = 1;
}

// Draws neighbouring spans that are narrower than a pixel as one, so that the number of pixels limits the work.
function drawSpans(context, row, top) {
  let count = 0;
  for (let i = firstEndingAfter(row, view.from); i < row.spans.length;) {
    const span = row.spans[i];
    const left = Math.max(xOf(row.starts[i]), gutter());
    if (left > width()) break;
    const right = Math.min(xOf(endOf(span)), width());
    const wide = Math.max(right - left, 1);
    context.fillStyle = foundSpans.has(span) ? palette.found : colourOf(span);
    context.fillRect(left, top, wide > 3 ? wide - 0.5 : wide, kRowHeight - 3);
    if (wide > 30) drawText(context, nameOf(span), left + 4, top + 13, wide - 8, palette.ink);
    ++count;
    i = wide > 1 ? i + 1 : Math.max(firstEndingAfter(row, timeAt(left + 1)), i + 1);
  }
  return count;
}

function drawOutline(context, span) {
  const track = drawn.find((one) => one.rows.some((row) => row.spans.includes(span)));
  const left = Math.max(xOf(spans.start[span]), gutter());
  const right = Math.min(xOf(endOf(span)), width());
  if (!track || right < gutter() || left > width()) return;
  context.strokeStyle = palette.ink;
  context.lineWidth = 2;
  context.strokeRect(left, track.top + spans.depth[span] * kRowHeight, Math.max(right - left, 2), kRowHeight - 3);
}

function drawAxis(context) {
  const {step, times} = axisTimes(view.from, view.to, Math.max(Math.floor((width() - gutter()) / 96), 2));
  let free = gutter();
  for (const time of times) {
    const x = xOf(time);
    context.fillStyle = palette.line;
    context.fillRect(x, kAxis - 6, 1, height);
    const label = axisLabel(time, step);
    const wide = context.measureText(label).width;
    if (x + 3 < free || x + 3 + wide > width()) continue;
    context.fillStyle = palette.faint;
    context.fillText(label, x + 3, 13);
    free = x + wide + 9;
  }
}

function drawChart(context) {
  if (!data.percents.length) return;
  drawText(context, 'percent done', 6, chartTop + 14, gutter() - 10, palette.faint);
  context.strokeStyle = palette.chart;
  context.lineWidth = 1.5;
  context.beginPath();
  for (const [time, percent] of stepPoints(data.percents, view.from, view.to)) {
    context.lineTo(xOf(time), chartTop + kChartHeight * (1 - percent / 100));
  }
  context.stroke();
}

// The findings in view, joined where they are close.
function findingClusters() {
  const marks = data.findings.map((finding) => ({x: xOf(finding.time), finding}))
      .filter(({x}) => x >= gutter() - 1 && x <= width() + 1).sort((a, b) => a.x - b.x);
  return clusters(marks, 22, 60);
}

function drawFindings(context) {
  const all = findingClusters();
  for (const cluster of all) {
    const findings = cluster.marks.map((mark) => mark.finding);
    const x = Math.min((cluster.from + cluster.to) / 2, width() - 12);
    context.fillStyle = findings.some((one) => one.severity === 'error') ? palette.bad : palette.warn;
    context.beginPath();
    if (findings.length === 1) {
      context.moveTo(x - 6, kAxis + 2);
      context.lineTo(x + 6, kAxis + 2);
      context.lineTo(x, kAxis + 15);
    } else {
      const wide = Math.max(context.measureText(String(findings.length)).width + 10, cluster.to - cluster.from);
      context.roundRect(x - wide / 2, kAxis, wide, 16, 8);
    }
    context.fill();
    if (findings.length > 1) {
      context.fillStyle = palette.paper;
      context.textAlign = 'center';
      context.fillText(String(findings.length), x, kAxis + 12);
      context.textAlign = 'start';
    }
  }
  if (selection.finding) {
    context.fillStyle = selection.finding.severity === 'error' ? palette.bad : palette.warn;
    const x = xOf(selection.finding.time);
    if (x >= gutter() && x <= width()) context.fillRect(x - 0.75, kAxis, 1.5, height - kAxis);
  }
  canvas.dataset.marks = all.length;
}

function draw() {
  readPalette();
  const context = contextOf(canvas, height);
  drawAxis(context);
  let count = 0;
  for (const track of drawn) {
    drawText(context, track.name, 6, track.top + 14, gutter() - 10, palette.faint);
    track.rows.forEach((row, depth) => {
      const top = track.top + depth * kRowHeight;
      if (row.bins) drawBins(context, track, row.bins, top);
      count += drawSpans(context, row, top);
    });
  }
  drawChart(context);
  drawFindings(context);
  if (selection.span >= 0) drawOutline(context, selection.span);
  drawOverview();
  canvas.dataset.drawn = count;
  canvas.dataset.from = Math.round(view.from);
  canvas.dataset.to = Math.round(view.to);
}
