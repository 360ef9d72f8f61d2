'use strict';
(() => {
  const data = JSON.parse(document.getElementById('data').textContent);
  const spans = data.spans;
  const kEntry = 0;
  const kCall = 1;
  const spanCount = spans.start.length;
  const wholeRun = Math.max(data.end, 1);

  // ---- Elements and texts

  const byId = (id) => document.getElementById(id);

  // Sets texts as text, never as markup, because they come from add-ons.
  function element(tag, attributes = {}, ...children) {
    const made = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) made.setAttribute(name, value);
    made.append(...children);
    return made;
  }

  function timeText(nanoseconds) {
    if (nanoseconds < 1e3) return `${nanoseconds} ns`;
    if (nanoseconds < 1e6) return `${(nanoseconds / 1e3).toPrecision(3)} \u00b5s`;
    if (nanoseconds < 1e9) return `${(nanoseconds / 1e6).toPrecision(3)} ms`;
    return `${(nanoseconds / 1e9).toFixed(2)} s`;
  }

  const counted = (count, noun) => `${count.toLocaleString('en')} ${noun}${count === 1 ? '' : 's'}`;
  const textOf = (index) => spans.texts[index];
  const isOpen = (span) => spans.duration[span] < 0;
  const endOf = (span) => (isOpen(span) ? data.end : spans.start[span] + spans.duration[span]);

  // A table that creates only its first rows. A button creates more.
  const kRowsAtOnce = 500;
  function table(caption, columns, rows, cellsOf) {
    const body = element('tbody');
    const more = element('button', {type: 'button'});
    let shown = 0;
    const showMore = () => {
      const upTo = Math.min(rows.length, shown + kRowsAtOnce);
      for (; shown < upTo; ++shown) {
        const row = element('tr');
        cellsOf(rows[shown], shown).forEach((cell, i) => {
          const made = element('td', columns[i].kind ? {class: columns[i].kind} : {});
          made.append(cell);
          row.append(made);
        });
        body.append(row);
      }
      more.hidden = shown === rows.length;
      more.textContent = `Show more: ${counted(rows.length - shown, 'row')} left`;
    };
    more.addEventListener('click', showMore);
    showMore();
    const head = element('tr');
    for (const column of columns) {
      head.append(element('th', {scope: 'col', ...(column.kind ? {class: column.kind} : {})}, column.title));
    }
    const made = element('table', {}, element('caption', {}, caption), element('thead', {}, head), body);
    return element('div', {class: 'table'}, made, more);
  }

  function fill(id, isEmpty, whenEmpty, make) {
    byId(id).append(isEmpty ? element('p', {class: 'faint'}, whenEmpty) : make());
  }

  // ---- The outcome of the run

  const failedCommands = data.entries.filter((entry) => entry.kind === 'command' && !entry.succeeded && !isOpen(entry.span));
  const commands = data.entries.filter((entry) => entry.kind === 'command');
  const errors = data.findings.filter((finding) => finding.severity === 'error').length;

  function verdict() {
    const findings = data.findings.length ? `, with ${counted(data.findings.length, 'finding')}` : '';
    if (!data.outcome) return ['bad', `Failed: the trace ends before the run; it may have crashed or been killed${findings}`];
    const {exitStatus, text} = data.outcome;
    if (exitStatus !== 0) return ['bad', `Failed: ${text}, exit status ${exitStatus}${findings}`];
    return [errors ? 'warn' : 'good', `Passed${findings}`];
  }

  function showHead() {
    const title = `Run of ${data.macroFile}`;
    document.title = title;
    byId('title').textContent = title;
    const [kind, text] = verdict();
    byId('verdict').className = kind;
    byId('verdict').textContent = text;
    const calls = data.functions.reduce((sum, one) => sum + one.calls, 0);
    const called = data.functions.filter((one) => one.calls).length;
    const options = Object.entries(data.options).map(([name, values]) => [name, ...values].join(' '));
    const facts = [
      ['Program', data.tool],
      ['Options', options.join('  ') || 'none'],
      ['Duration', timeText(data.end)],
      ['Commands', `${commands.length.toLocaleString('en')}, ${failedCommands.length.toLocaleString('en')} failed`],
      ['Host calls', `${calls.toLocaleString('en')}, to ${called} of ${data.functions.length} functions`],
      ['Findings', `${counted(errors, 'error')}, ${counted(data.findings.length - errors, 'warning')}`],
    ];
    for (const [name, value] of facts) byId('facts').append(element('dt', {}, name), element('dd', {}, value));
  }

  // ---- Sections

  function placeText(place, whenNoCall) {
    const parts = [];
    if (place.call) parts.push(`call ${place.call}, ${place.function}`);
    if (place.command) parts.push(parts.length ? `in "${place.command}"` : `${whenNoCall} of "${place.command}"`);
    if (place.macroLine) parts.push(place.macroLine);
    if (place.thread) parts.push(`thread ${place.thread}`);
    return parts.join(', ');
  }

  function findingCard(finding) {
    const facts = element('dl');
    const add = (name, value) => facts.append(element('dt', {}, name), element('dd', {}, value));
    if (finding.opened) add('First', placeText(finding.opened, 'the beginning'));
    add('Seen', placeText(finding.seen, 'the end'));
    if (finding.addOn) add('Add-on', finding.addOn);
    if (finding.count > 1) add('Count', finding.count);
    add('Hint', finding.hint);
    const show = element('button', {type: 'button'}, 'Show in the timeline');
    show.addEventListener('click', () => showTime(finding.time));
    return element('article', {class: finding.severity},
        element('h3', {}, `${finding.severity}: ${finding.message} [${finding.rule}]`), facts, show);
  }

  function findingCards() {
    const list = element('div');
    const more = element('button', {type: 'button'});
    let shown = 0;
    const showMore = () => {
      const upTo = Math.min(data.findings.length, shown + 100);
      for (; shown < upTo; ++shown) list.append(findingCard(data.findings[shown]));
      more.hidden = shown === data.findings.length;
      more.textContent = `Show more: ${counted(data.findings.length - shown, 'finding')} left`;
    };
    more.addEventListener('click', showMore);
    showMore();
    return element('div', {}, list, more);
  }

  function outcomeOf(entry) {
    if (isOpen(entry.span)) return element('span', {class: 'bad'}, 'did not end');
    return element('span', {class: entry.succeeded ? 'good' : 'bad'}, entry.succeeded ? 'succeeded' : 'failed');
  }

  function entryCells(entry) {
    const show = element('button', {type: 'button', 'aria-label': `Show ${textOf(spans.name[entry.span])} in the timeline`},
        'Show');
    show.addEventListener('click', () => showSpan(entry.span));
    return [entry.macroLine || entry.kind, element('pre', {}, textOf(spans.name[entry.span])), outcomeOf(entry),
      timeText(endOf(entry.span) - spans.start[entry.span]), entry.calls.toLocaleString('en'),
      element('pre', {}, entry.error), show];
  }

  function showSections() {
    fill('findings-content', !data.findings.length, 'No findings.', findingCards);
    fill('commands-content', !data.entries.length, 'No add-on was called.', () => table(
        'Commands, and loading and unloading of add-ons, in order',
        [{title: 'Place'}, {title: 'Command', kind: 'code'}, {title: 'Outcome'}, {title: 'Duration', kind: 'number'},
          {title: 'Host calls', kind: 'number'}, {title: 'Message'}, {title: 'Timeline'}],
        data.entries, entryCells));
    fill('recorded-content', !data.recorded.length, 'No command was recorded.', () => table(
        'Recorded commands, in order',
        [{title: 'Call', kind: 'number'}, {title: 'Add-on'}, {title: 'Command', kind: 'code'}],
        data.recorded, (one) => [String(one.call), one.addOn, element('pre', {}, one.command)]));
    fill('dialogs-content', !data.dialogs.length, 'No dialog was shown.', () => table(
        'Texts of the dialogs, in order', [{title: 'Call', kind: 'number'}, {title: 'Text'}],
        data.dialogs, (one) => [String(one.call), element('pre', {}, one.text)]));
    const neverCalled = data.functions.filter((one) => !one.calls).length;
    byId('functions-content').append(table(
        `${neverCalled} of ${data.functions.length} functions were never called`,
        [{title: 'Function', kind: 'code'}, {title: 'Calls', kind: 'number'}, {title: 'Total time', kind: 'number'}],
        data.functions, (one) => [one.name,
          one.calls ? one.calls.toLocaleString('en') : element('span', {class: 'warn'}, 'never called'),
          one.calls ? timeText(one.time) : '']));
    const untouched = data.rules.filter((rule) => rule.coverage === 'untouched').length;
    byId('rules-content').append(table(
        `${untouched} of ${data.rules.length} rules were not touched by this run`,
        [{title: 'Rule', kind: 'code'}, {title: 'State'}, {title: 'Rule text'}, {title: 'Touched by'}],
        data.rules, (rule) => [rule.name, ruleState(rule), rule.summary, rule.touchedBy]));
  }

  function ruleState(rule) {
    const classes = {broken: 'bad', touched: 'good', untouched: 'warn', suppressed: 'faint'};
    const text = rule.findings ? `broken: ${counted(rule.findings, 'finding')}` : rule.coverage;
    return element('span', {class: classes[rule.coverage]}, text);
  }

  // ---- The timeline

  const canvas = byId('canvas');
  const kRowHeight = 18;
  const kTrackGap = 10;
  const kChartHeight = 44;
  const kGutter = 130;
  const kAxis = 22;
  const kMostTracks = 64;  // a canvas has a limit, and so have readers
  const kDragsFrom = 4;
  const view = {from: 0, to: wholeRun};
  let selected = -1;
  const outcomes = new Map(data.entries.map((entry) => [entry.span, entry.succeeded]));

  // Tracks with their rows. A row has the spans of one depth, in the order of time.
  const tracks = data.tracks.slice(0, kMostTracks).map((track) => ({...track, rows: []}));
  for (let span = 0; span < spanCount; ++span) {
    const track = tracks[spans.track[span]];
    if (!track) continue;
    const depth = spans.depth[span];
    while (track.rows.length <= depth) track.rows.push([]);
    track.rows[depth].push(span);
  }
  const drawn = tracks.filter((track) => track.rows.length);
  drawn.sort((a, b) => Number(a.isScope) - Number(b.isScope));
  let height = kAxis;
  for (const track of drawn) {
    track.top = height;
    height += Math.max(track.rows.length, 1) * kRowHeight + kTrackGap;
  }
  const chartTop = height;
  if (data.percents.length) height += kChartHeight + kTrackGap;

  const width = () => canvas.clientWidth;
  const scale = () => (width() - kGutter) / (view.to - view.from);
  const xOf = (time) => kGutter + (time - view.from) * scale();
  const timeAt = (x) => view.from + (x - kGutter) / scale();

  // Returns the first span of a row that ends after a time.
  function firstEndingAfter(row, time, from = 0) {
    let low = from;
    let high = row.length;
    while (low < high) {
      const middle = (low + high) >> 1;
      if (endOf(row[middle]) > time) high = middle; else low = middle + 1;
    }
    return low;
  }

  function colours() {
    const style = getComputedStyle(document.documentElement);
    const colour = (name) => style.getPropertyValue(`--${name}`).trim();
    return Object.fromEntries(['paper', 'ink', 'faint', 'line', 'panel', 'link', 'bad', 'warn', 'entry', 'failed', 'call',
      'scope', 'chart'].map((name) => [name, colour(name)]));
  }

  function colourOf(span, palette) {
    if (spans.kind[span] === kCall) return palette.call;
    if (spans.kind[span] !== kEntry) return palette.scope;
    return outcomes.get(span) ? palette.entry : palette.failed;
  }

  // Draws neighbouring spans that are narrower than a pixel as one, so that the number of pixels limits the work.
  function drawRow(context, row, top, palette) {
    let count = 0;
    for (let i = firstEndingAfter(row, view.from); i < row.length;) {
      const span = row[i];
      const left = Math.max(xOf(spans.start[span]), kGutter);
      if (left > width()) break;
      const right = Math.min(xOf(endOf(span)), width());
      const wide = Math.max(right - left, 1);
      context.fillStyle = colourOf(span, palette);
      context.fillRect(left, top, wide > 3 ? wide - 0.5 : wide, kRowHeight - 2);
      if (span === selected) {
        context.strokeStyle = palette.link;
        context.lineWidth = 2;
        context.strokeRect(left + 1, top + 1, Math.max(wide - 2, 1), kRowHeight - 4);
      }
      if (wide > 30) drawText(context, textOf(spans.name[span]), left + 4, top + 12, wide - 8, palette.ink);
      ++count;
      i = wide > 1 ? i + 1 : firstEndingAfter(row, timeAt(left + 1), i + 1);
    }
    return count;
  }

  function drawText(context, text, x, y, room, colour) {
    const letters = Math.floor(room / 6.2);
    if (letters < 3) return;
    context.fillStyle = colour;
    context.fillText(text.length > letters ? `${text.slice(0, letters - 1)}\u2026` : text, x, y);
  }

  function drawAxis(context, palette) {
    const span = view.to - view.from;
    const step = 10 ** Math.floor(Math.log10(span / 5));
    const wide = span / step > 25 ? step * 5 : span / step > 10 ? step * 2 : step;
    for (let time = Math.ceil(view.from / wide) * wide; time <= view.to; time += wide) {
      const x = xOf(time);
      context.fillStyle = palette.line;
      context.fillRect(x, kAxis - 6, 1, height);
      context.fillStyle = palette.faint;
      context.fillText(timeText(Math.round(time)), x + 3, 12);
    }
  }

  function drawChart(context, palette) {
    if (!data.percents.length) return;
    drawText(context, 'percent done', 6, chartTop + 14, kGutter - 10, palette.faint);
    const y = (percent) => chartTop + kChartHeight * (1 - percent / 100);
    context.strokeStyle = palette.chart;
    context.lineWidth = 1.5;
    context.beginPath();
    let last = 0;
    let lastX = -1;
    context.moveTo(kGutter, y(0));
    for (const [time, percent] of data.percents) {
      const x = Math.min(Math.max(xOf(time), kGutter), width());
      if (x - lastX >= 0.5) {
        context.lineTo(x, y(last));
        context.lineTo(x, y(percent));
        lastX = x;
      }
      last = percent;
    }
    context.lineTo(width(), y(last));
    context.stroke();
  }

  function drawFindings(context, palette) {
    let lastX = -10;
    for (const finding of data.findings) {
      const x = xOf(finding.time);
      const track = tracks[finding.track];
      if (x < kGutter || x > width() || x - lastX < 0.5 || !track || !track.rows.length) continue;
      lastX = x;
      context.fillStyle = finding.severity === 'error' ? palette.bad : palette.warn;
      context.fillRect(x - 0.75, kAxis, 1.5, height - kAxis);
      context.beginPath();
      context.moveTo(x - 5, track.top - 8);
      context.lineTo(x + 5, track.top - 8);
      context.lineTo(x, track.top);
      context.fill();
    }
  }

  function draw() {
    const ratio = window.devicePixelRatio || 1;
    canvas.style.height = `${height}px`;
    canvas.width = Math.max(1, Math.round(width() * ratio));
    canvas.height = Math.round(height * ratio);
    const context = canvas.getContext('2d');
    context.scale(ratio, ratio);
    context.font = '11px system-ui, sans-serif';
    const palette = colours();
    context.fillStyle = palette.paper;
    context.fillRect(0, 0, width(), height);
    drawAxis(context, palette);
    let count = 0;
    for (const track of drawn) {
      drawText(context, track.name, 6, track.top + 13, kGutter - 10, palette.faint);
      track.rows.forEach((row, depth) => { count += drawRow(context, row, track.top + depth * kRowHeight, palette); });
    }
    drawChart(context, palette);
    drawFindings(context, palette);
    canvas.dataset.drawn = count;
    canvas.dataset.from = Math.round(view.from);
    canvas.dataset.to = Math.round(view.to);
  }

  // Draws once for several changes between two frames.
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
    const span = Math.min(Math.max(to - from, 10), wholeRun);
    view.from = Math.min(Math.max(from, 0), wholeRun - span);
    view.to = view.from + span;
    drawSoon();
  }

  function zoom(factor, around = (view.from + view.to) / 2) {
    setView(around - (around - view.from) * factor, around + (view.to - around) * factor);
  }

  const move = (share) => setView(view.from + (view.to - view.from) * share, view.to + (view.to - view.from) * share);

  function describe(span) {
    const parts = [textOf(spans.name[span])];
    if (spans.kind[span] === kCall) {
      const result = textOf(spans.result[span]);
      parts[0] = `call ${spans.number[span]}: ${parts[0]}(${textOf(spans.arguments[span])})${result && ` = ${result}`}`;
    } else if (textOf(spans.arguments[span])) {
      parts[0] += ` (${textOf(spans.arguments[span])})`;
    }
    parts.push(`on ${data.tracks[spans.track[span]].name}`, `from ${timeText(spans.start[span])}`);
    parts.push(isOpen(span) ? 'not ended' : `for ${timeText(spans.duration[span])}`);
    return parts.join(', ');
  }

  function select(span) {
    selected = span;
    byId('selection').textContent = span < 0 ? 'Nothing is selected.' : describe(span);
    drawSoon();
  }

  // Selects a span and scrolls to it. Zooms in only if the span would be too small to see.
  function reveal(span) {
    const start = spans.start[span];
    const duration = endOf(span) - start;
    const isVisible = start >= view.from && start <= view.to && duration * scale() >= 1;
    if (!isVisible) {
      const room = Math.max(Math.min(view.to - view.from, duration * 20), duration * 1.2, 10);
      setView(start + duration / 2 - room / 2, start + duration / 2 + room / 2);
    }
    select(span);
  }

  function focusTimeline() {
    canvas.focus({preventScroll: true});
    canvas.scrollIntoView({block: 'center'});
  }

  function showSpan(span) {
    const room = Math.max(endOf(span) - spans.start[span], 10);
    setView(spans.start[span] - room * 0.1, spans.start[span] + room * 1.1);
    select(span);
    focusTimeline();
  }

  function showTime(time) {
    const room = Math.max(wholeRun / 50, 1000);
    setView(time - room / 2, time + room / 2);
    focusTimeline();
  }

  function spanAt(x, y) {
    for (const track of drawn) {
      const row = track.rows[Math.floor((y - track.top) / kRowHeight)];
      if (!row || x < kGutter) continue;
      const onePixel = 1 / scale();
      const i = firstEndingAfter(row, timeAt(x) - onePixel);
      if (i < row.length && spans.start[row[i]] <= timeAt(x) + onePixel) return row[i];
    }
    return -1;
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
    n: () => { if (selected + 1 < spanCount) reveal(selected + 1); },
    p: () => { if (selected > 0) reveal(selected - 1); },
  };

  function listen() {
    canvas.addEventListener('keydown', (event) => {
      if (event.ctrlKey || event.altKey || event.metaKey || !(event.key in keys)) return;
      event.preventDefault();
      keys[event.key]();
    });
    for (const button of document.querySelectorAll('[data-key]')) {
      button.addEventListener('click', () => keys[button.dataset.key]());
    }
    canvas.addEventListener('wheel', (event) => {
      event.preventDefault();
      zoom(event.deltaY > 0 ? 1.25 : 0.8, timeAt(Math.max(event.offsetX, kGutter)));
    }, {passive: false});
    let drag = null;
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
      if (drag && !drag.isMoved) select(spanAt(event.offsetX, event.offsetY));
      drag = null;
    });
    window.addEventListener('resize', drawSoon);
    window.addEventListener('beforeprint', draw);
    window.addEventListener('afterprint', drawSoon);
    window.matchMedia('(prefers-color-scheme: dark)').addEventListener('change', drawSoon);
  }

  function describeTimeline() {
    const left = data.tracks.length - tracks.length;
    canvas.setAttribute('aria-label', `Timeline of ${counted(data.entries.length, 'command')} and ` +
        `${(spanCount - data.entries.length).toLocaleString('en')} host calls and scopes on ${counted(drawn.length, 'track')}. ` +
        'The tables of this page have the same data.');
    if (left > 0) canvas.after(element('p', {class: 'faint'}, `${counted(left, 'more track')} are not drawn.`));
  }

  showHead();
  showSections();
  describeTimeline();
  listen();
  draw();
  document.documentElement.dataset.readyAfter = Math.round(performance.now());
})();
