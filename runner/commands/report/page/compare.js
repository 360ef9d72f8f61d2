// ---- This run beside an earlier one

function signedText(change, text) {
  if (change === 0) return element('span', {class: 'faint'}, 'same');
  return element('span', {class: change > 0 ? 'bad' : 'good'}, `${change > 0 ? '+' : '\u2212'}${text(Math.abs(change))}`);
}

const partOf = (side, name) => (side ? side[name] : 0);
const changeOf = (row, name) => partOf(row.now, name) - partOf(row.before, name);

function changeColumns(name, fields) {
  const columns = [{title: name, kind: 'main', value: (row) => row.name,
    cell: (row) => element('span', {title: row.name}, row.name)}];
  for (const [field, title, text] of fields) {
    columns.push({title: `${title} before`, kind: 'number', value: (row) => partOf(row.before, field),
      cell: (row) => (row.before ? text(row.before[field]) : 'absent')});
    columns.push({title: `${title} now`, kind: 'number', value: (row) => partOf(row.now, field),
      cell: (row) => (row.now ? text(row.now[field]) : 'absent')});
    columns.push({title: 'Change', kind: 'number', value: (row) => Math.abs(changeOf(row, field)),
      cell: (row) => signedText(changeOf(row, field), text)});
  }
  return columns;
}

const isCallChange = (row) => !row.before || !row.now || ['runs', 'failed', 'calls'].some((name) => changeOf(row, name) !== 0);

// Returns the rules whose number of findings changed, as {name, before, now}.
function changedRules(before, now) {
  const names = [...new Set([...Object.keys(before), ...Object.keys(now)])];
  return names.map((name) => ({name, before: before[name] || 0, now: now[name] || 0}))
      .filter((one) => one.before !== one.now);
}

function showComparison() {
  if (!data.other) return;
  for (const one of document.querySelectorAll('.comparison')) one.hidden = false;
  const {other} = data;
  const failed = (run) => `${counted(run.counts.commands, 'command')}, ${numberText(run.counts.failedCommands)} failed, ` +
      `${counted(run.counts.calls, 'host call')}, ${counted(run.counts.errors + run.counts.warnings, 'finding')}, ${timeText(run.end)}`;
  const rules = changedRules(other.counts.byRule, data.counts.byRule);
  const commands = joinedByName(other.totals, data.totals);
  const functions = joinedByName(other.functions, data.functions).filter((row) => partOf(row.now, 'calls') || partOf(row.before, 'calls'));
  const changed = commands.filter(isCallChange).length;
  byId('compare-content').append(
      listOfFacts([['Before', `${other.macroFile}: ${failed(other)}`], ['Now', `${data.macroFile}: ${failed(data)}`],
        ['Findings', rules.map(({name, before, now}) => `${name}: ${before} before, ${now} now`).join('; ') || 'as many of each rule'],
        ['Commands', changed ? `${counted(changed, 'command')} differ in runs, failures or host calls` : 'the same runs, failures and host calls']]),
      table('Commands of both runs', changeColumns('Command',
          [['runs', 'Runs', numberText], ['calls', 'Calls', numberText], ['time', 'Time', timeText]]), commands).element,
      table('Host functions of both runs', changeColumns('Function',
          [['calls', 'Calls', numberText], ['time', 'Time', timeText]]), functions).element);
}
