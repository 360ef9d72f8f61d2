// ---- The panel beside the timeline: what is selected

function factsOfSpan(span) {
  const facts = [];
  const entry = entryOfSpan.get(span);
  if (spans.kind[span] === kCall) {
    facts.push(['Arguments', element('pre', {}, textOf(spans.arguments[span]) || 'none')]);
    facts.push(['Result', element('pre', {}, textOf(spans.result[span]) || (isOpen(span) ? 'did not return' : 'none'))]);
  } else if (textOf(spans.arguments[span])) {
    facts.push(['Arguments', element('pre', {}, textOf(spans.arguments[span]))]);
  }
  if (entry) {
    facts.push(['Outcome', outcomeOf(entry)]);
    if (entry.error) facts.push(['Message', element('pre', {}, entry.error)]);
    if (entry.macroLine) facts.push(['Place', entry.macroLine]);
    facts.push(['Host calls', numberText(entry.calls)]);
  }
  facts.push(['Thread', data.tracks[spans.track[span]].name], ['Start', timeText(spans.start[span])]);
  facts.push(['Duration', isOpen(span) ? 'did not end' : timeText(spans.duration[span])]);
  return facts;
}

function titleOfSpan(span) {
  return spans.kind[span] === kCall ? `call ${spans.number[span]}: ${nameOf(span)}` : nameOf(span);
}

function showPanel(title, facts) {
  byId('selection').replaceChildren(element('h3', {}, title), listOfFacts(facts));
}

function select(span) {
  Object.assign(selection, {span, finding: null});
  if (span < 0) byId('selection').replaceChildren(element('p', {}, 'Nothing is selected.'));
  else showPanel(titleOfSpan(span), factsOfSpan(span));
  drawSoon();
}

function selectBin({track, bins, i}) {
  Object.assign(selection, {span: -1, finding: null});
  showPanel(`${counted(bins.count[i], 'span')} in ${timeText(data.bins.width)}`, [
    ['Track', track.name],
    ['Start', timeText(bins.at[i] * data.bins.width)],
    ['Busy', shareText(bins.busy[i], data.bins.width)],
    ['Longest', bins.count[i] ? `${data.bins.names[bins.name[i]]}, ${timeText(bins.longest[i])}` : 'started earlier'],
  ]);
  drawSoon();
}

function selectFinding(finding) {
  Object.assign(selection, {span: spanOfFinding(finding), finding});
  const facts = factsOfFinding(finding);
  if (selection.span >= 0) facts.push(...factsOfSpan(selection.span));
  showPanel(`${finding.severity}: ${finding.message} [${finding.rule}]`, facts);
  drawSoon();
}

function selectCluster({marks}) {
  const findings = marks.map((mark) => mark.finding);
  if (findings.length === 1) return selectFinding(findings[0]);
  Object.assign(selection, {span: -1, finding: null});
  const kMostListed = 20;
  byId('selection').replaceChildren(element('h3', {}, counted(findings.length, 'finding')), element('ul', {},
      ...findings.slice(0, kMostListed).map((finding) =>
        element('li', {}, button(`${finding.message} [${finding.rule}]`, () => showFinding(finding), {class: 'link'})))));
  if (findings.length > kMostListed) byId('selection').append(element('p', {class: 'faint'}, 'Zoom in to see the others.'));
  const times = findings.map((finding) => finding.time);
  const room = Math.max(times[times.length - 1] - times[0], wholeRun / 1e4) * 0.2;
  setView(Math.min(...times) - room, Math.max(...times) + room);
}

function focusTimeline() {
  canvas.focus({preventScroll: true});
  const {top, bottom} = canvas.getBoundingClientRect();
  if (top < 0 || bottom > window.innerHeight) byId('timeline').scrollIntoView({block: 'start'});
}

// Shows a span with some room around it.
function zoomTo(span) {
  const room = Math.max(durationOf(span), 10);
  setView(spans.start[span] - room * 0.1, spans.start[span] + room * 1.1);
}

function showSpan(span) {
  zoomTo(span);
  select(span);
  focusTimeline();
}

// Zooms to the call that a finding is about, and some calls around it; without a call, to its command.
function showFinding(finding) {
  const span = spanOfFinding(finding);
  if (span >= 0 && spans.kind[span] === kCall) {
    const room = Math.max(durationOf(span), 10) * 8;
    setView(spans.start[span] - room, endOf(span) + room);
  } else if (span >= 0) {
    zoomTo(span);
  } else {
    setView(finding.time - wholeRun / 100, finding.time + wholeRun / 100);
  }
  selectFinding(finding);
  focusTimeline();
}

// Selects a span and zooms in only if it would be too small to see.
function reveal(span) {
  const start = spans.start[span];
  const isVisible = start >= view.from && start <= view.to && durationOf(span) * scale() >= 1;
  if (!isVisible) {
    const room = Math.max(Math.min(view.to - view.from, durationOf(span) * 20), durationOf(span) * 1.2, 10);
    setView(start + durationOf(span) / 2 - room / 2, start + durationOf(span) / 2 + room / 2);
  }
  select(span);
}
