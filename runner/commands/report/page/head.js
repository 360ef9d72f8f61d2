// ---- The outcome of the run

function verdict() {
  const {errors, warnings} = data.counts;
  const total = errors + warnings;
  const findings = total ? `, with ${counted(total, 'finding')}` : '';
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
  const {calls, commands, failedCommands, errors, warnings} = data.counts;
  const called = data.functions.filter((one) => one.calls).length;
  const options = Object.entries(data.options).map(([name, values]) => [name, ...values].join(' '));
  byId('facts').append(...listOfFacts([
    ['Program', data.tool],
    ['Options', options.join('  ') || 'none'],
    ['Duration', timeText(data.end)],
    ['Commands', `${numberText(commands)}, ${numberText(failedCommands)} failed`],
    ['Host calls', `${numberText(calls)}, to ${called} of ${data.functions.length} functions`],
    ['Findings', `${counted(errors, 'error')}, ${counted(warnings, 'warning')}`],
  ]).children);
}
