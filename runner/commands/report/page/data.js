// ---- The data of the run, which the trace holds

const data = JSON.parse(byId('data').textContent);
const spans = data.spans;
const spanCount = spans.start.length;
const wholeRun = Math.max(data.end, 1);
const kEntry = 0;
const kCall = 1;

const textOf = (index) => spans.texts[index];
const nameOf = (span) => textOf(spans.name[span]);
const isOpen = (span) => spans.duration[span] < 0;
const endOf = (span) => (isOpen(span) ? data.end : spans.start[span] + spans.duration[span]);
const durationOf = (span) => endOf(span) - spans.start[span];

const callSpans = new Map();
for (let span = 0; span < spanCount; ++span) {
  if (spans.kind[span] === kCall) callSpans.set(spans.number[span], span);
}

function outcomeOf(entry) {
  if (isOpen(entry.span)) return 'did not end';
  return entry.succeeded ? 'succeeded' : 'failed';
}

const hasFailed = (entry) => outcomeOf(entry) !== 'succeeded';
const entryOfSpan = new Map(data.entries.map((entry) => [entry.span, entry]));

// Returns the innermost entry that was running at a time.
function entryAt(time) {
  let found = null;
  for (const entry of data.entries) {
    if (spans.start[entry.span] <= time && time <= endOf(entry.span)) found = entry;
  }
  return found;
}

for (const finding of data.findings) {
  const entry = entryAt(finding.time);
  finding.entry = entry;
  finding.outcome = entry ? outcomeOf(entry) : '';
}

// Returns the span where a finding was seen; -1 if the page does not have it.
function spanOfFinding(finding) {
  const call = callSpans.get(finding.seen.call);
  if (call !== undefined) return call;
  return finding.entry ? finding.entry.span : -1;
}
