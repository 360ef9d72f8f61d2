// ---- Lists below the timeline

function listSection(id, whenEmpty, caption, columns, rows, all, noun) {
  fill(id, !rows.length, whenEmpty, () => {
    const part = element('div', {}, table(caption, columns, rows).element);
    const note = partNote(rows.length, all, noun);
    if (note) part.append(element('p', {class: 'faint'}, note));
    return part;
  });
}

function showRecorded() {
  listSection('recorded-content', 'No command was recorded.', 'Recorded commands, in order', [
    {title: 'Call', kind: 'number', cell: (one) => numberText(one.call)},
    {title: 'Add-on', cell: (one) => one.addOn},
    {title: 'Command', kind: 'main', cell: (one) => element('pre', {title: one.command}, one.command)},
  ], data.recorded, data.counts.recorded, 'command');
  listSection('dialogs-content', 'No dialog was shown.', 'Texts of the dialogs, in order', [
    {title: 'Call', kind: 'number', cell: (one) => numberText(one.call)},
    {title: 'Text', kind: 'main', cell: (one) => element('pre', {title: one.text}, one.text)},
  ], data.dialogs, data.counts.dialogs, 'dialog');
}

function ruleState(rule) {
  const classes = {broken: 'bad', touched: 'good', untouched: 'warn', suppressed: 'faint'};
  const text = rule.findings ? `broken: ${counted(rule.findings, 'finding')}` : rule.coverage;
  return element('span', {class: classes[rule.coverage]}, text);
}

function showFunctions() {
  const neverCalled = data.functions.filter((one) => !one.calls).length;
  byId('functions-content').append(table(
      `${neverCalled} of ${data.functions.length} functions were never called`, [
        {title: 'Function', kind: 'main code', value: (one) => one.name, cell: (one) => one.name},
        {title: 'Calls', kind: 'number', value: (one) => one.calls,
          cell: (one) => (one.calls ? numberText(one.calls) : element('span', {class: 'warn'}, 'never called'))},
        {title: 'Total time', kind: 'number', value: (one) => one.time,
          cell: (one) => (one.calls ? timeText(one.time) : '')},
      ], data.functions).element);
}

function showRules() {
  const untouched = data.rules.filter((rule) => rule.coverage === 'untouched').length;
  byId('rules-content').append(table(
      `${untouched} of ${data.rules.length} rules were not touched by this run`, [
        {title: 'Rule', kind: 'code', value: (rule) => rule.name, cell: (rule) => rule.name},
        {title: 'State', value: (rule) => rule.coverage, cell: ruleState},
        {title: 'Rule text', kind: 'main', cell: (rule) => element('span', {title: rule.summary}, rule.summary)},
        {title: 'Touched by', kind: 'main', cell: (rule) => element('span', {title: rule.touchedBy}, rule.touchedBy)},
      ], data.rules).element);
}
