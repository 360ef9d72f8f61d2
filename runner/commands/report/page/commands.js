// ---- The commands

const commandFilter = {text: '', outcome: '', failedOnly: false};

function chosenEntries() {
  return data.entries.filter((entry) =>
    (!commandFilter.failedOnly || hasFailed(entry)) &&
    (!commandFilter.outcome || outcomeOf(entry) === commandFilter.outcome) &&
    matches(`${nameOf(entry.span)} ${entry.macroLine} ${entry.error}`, commandFilter.text));
}

function commandCell(entry) {
  const name = nameOf(entry.span);
  const show = button(name, () => showSpan(entry.span),
      {class: 'link', title: name, 'aria-label': `${name}: show in the timeline`});
  if (!entry.error) return show;
  const cell = document.createDocumentFragment();
  cell.append(show, element('span', {class: 'message bad', title: entry.error}, entry.error));
  return cell;
}

const placeOfEntry = (entry) => (entry.macroLine ? fileName(entry.macroLine) : entry.kind);

function commandColumns() {
  return [
    {title: 'Place', kind: 'place', value: (entry) => entry.span,
      cell: (entry) => element('span', {title: entry.macroLine}, placeOfEntry(entry))},
    {title: 'Command', kind: 'main', value: (entry) => nameOf(entry.span), cell: commandCell},
    {title: 'Outcome', value: outcomeOf,
      cell: (entry) => element('span', {class: hasFailed(entry) ? 'bad' : 'good'}, outcomeOf(entry))},
    {title: 'Duration', kind: 'number', value: (entry) => durationOf(entry.span),
      cell: (entry) => timeText(durationOf(entry.span))},
    {title: 'Calls', kind: 'number', value: (entry) => entry.calls, cell: (entry) => numberText(entry.calls)},
  ];
}

function showCommands() {
  if (!data.entries.length) {
    byId('commands-content').append(element('p', {class: 'faint'}, 'No add-on was called.'));
    return;
  }
  const count = element('p', {class: 'faint', 'aria-live': 'polite', id: 'command-count'});
  const note = partNote(data.entries.length, data.counts.entries, 'command');
  const made = table('Commands, and loading and unloading of add-ons', commandColumns(), data.entries, {
    isTall: (entry) => entry.error !== '',
    onRows: (rows) => {
      count.textContent = [rows === data.entries.length ? '' : `${numberText(rows)} of ${numberText(data.entries.length)}`,
        note].filter(Boolean).join('. ');
    },
  });
  const update = () => made.setRows(chosenEntries());
  const failedOnly = element('input', {type: 'checkbox', id: 'failed-only'});
  failedOnly.addEventListener('change', () => { commandFilter.failedOnly = failedOnly.checked; update(); });
  const outcomes = ['succeeded', 'failed', 'did not end'].map((one) => option(one));
  byId('commands-content').append(
      element('div', {class: 'filters'},
          searchField('Search', commandFilter, update),
          choice('Outcome', 'outcome', [option('', 'all'), ...outcomes], commandFilter, update),
          element('label', {}, failedOnly, ' Failed only')),
      count, made.element);
}
