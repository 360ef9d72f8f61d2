// ---- Choosing and ordering rows; nothing here needs the page

// Returns true if all words of a query are in a text, in any case.
function matches(text, query) {
  const lower = text.toLowerCase();
  return query.toLowerCase().split(/\s+/).every((word) => lower.includes(word));
}

// A filter is a text or a choice; an empty one lets all pass.
function chosenFindings(findings, filter) {
  return findings.filter((finding) =>
    (!filter.rule || finding.rule === filter.rule) &&
    (!filter.command || finding.seen.command === filter.command) &&
    (!filter.severity || finding.severity === filter.severity) &&
    (!filter.outcome || finding.outcome === filter.outcome) &&
    matches(`${finding.rule} ${finding.message} ${finding.seen.command} ${finding.seen.macroLine}`, filter.text || ''));
}

// Returns pairs of a rule and its findings. The order within a rule is that of the run.
function groupedByRule(findings, order, counts) {
  const groups = new Map();
  for (const finding of findings) {
    if (!groups.has(finding.rule)) groups.set(finding.rule, []);
    groups.get(finding.rule).push(finding);
  }
  const total = ([rule, list]) => counts[rule] || list.length;
  const rank = ([rule, list]) => (rule === 'crash' ? -1 : list[0].severity === 'error' ? 0 : 1);
  const orders = {
    time: () => 0,
    severity: (a, b) => rank(a) - rank(b),
    count: (a, b) => total(b) - total(a),
    rule: (a, b) => a[0].localeCompare(b[0]),
  };
  return [...groups].sort(orders[order]);
}

// Returns a sorted copy. Equal rows keep their order, also in the descending one.
function sortedBy(rows, value, isDescending) {
  const compare = (a, b) => (typeof a === 'string' ? a.localeCompare(b) : a - b);
  return [...rows].sort((a, b) => (isDescending ? compare(value(b), value(a)) : compare(value(a), value(b))));
}

// Returns the rows in a scrolled area: the index of the first one and of the one after the last.
// tops has the top of each row, and the end of the last one.
function visibleRows(tops, scrolled, height) {
  const rows = tops.length - 1;
  const first = Math.max(firstAbove(tops, scrolled) - 1, 0);
  return [first, Math.min(firstAbove(tops, scrolled + height), rows)];
}

// Returns the index of the first number above a limit, in an ascending list.
function firstAbove(numbers, limit) {
  let low = 0;
  let high = numbers.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (numbers[middle] > limit) high = middle; else low = middle + 1;
  }
  return low;
}

// Joins what two runs have under the same key. A side that has nothing is null.
function joinedByName(before, now) {
  const rows = new Map(before.map((one) => [one.name, {name: one.name, before: one, now: null}]));
  for (const one of now) {
    if (rows.has(one.name)) rows.get(one.name).now = one;
    else rows.set(one.name, {name: one.name, before: null, now: one});
  }
  return [...rows.values()];
}
