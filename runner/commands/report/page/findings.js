// ---- Findings, grouped by rule

const kOpenGroups = 3;
const kCardsAtOnce = 2;
const findingFilter = {rule: '', command: '', outcome: '', severity: '', text: '', order: 'severity'};

function sourceText(source) {
  if (!source) return '';
  const line = source.file ? `${source.file}${source.line ? `:${source.line}` : ''}` : '';
  return [source.function, line].filter(Boolean).join(' at ');
}

function placeText(place, whenNoCall) {
  const parts = [];
  if (place.call) parts.push(`call ${place.call}, ${place.function}`);
  if (place.command) parts.push(parts.length ? `in "${place.command}"` : `${whenNoCall} of "${place.command}"`);
  if (place.macroLine) parts.push(place.macroLine);
  if (place.thread) parts.push(`thread ${place.thread}`);
  return parts.join(', ');
}

function factsOfFinding(finding) {
  const facts = [];
  const addPlace = (name, place, whenNoCall) => {
    facts.push([name, placeText(place, whenNoCall)]);
    if (sourceText(place.source)) facts.push(['Source', element('code', {}, sourceText(place.source))]);
  };
  if (finding.opened) addPlace('First', finding.opened, 'the beginning');
  addPlace('Seen', finding.seen, 'the end');
  if (sourceText(finding.source)) facts.push(['Source', element('code', {}, sourceText(finding.source))]);
  if (finding.fault) facts.push(['Fault', finding.fault]);
  if (finding.stack) facts.push(['Stack', element('pre', {}, finding.stack.join('\n'))]);
  if (finding.problem) facts.push(['Stack', `unknown: ${finding.problem}`]);
  if (finding.addOn) facts.push(['Add-on', finding.addOn]);
  if (finding.count > 1) facts.push(['Count', numberText(finding.count)]);
  facts.push(['Hint', finding.hint]);
  return facts;
}

function findingCard(finding) {
  const card = element('article', {class: finding.severity},
      element('h4', {}, `${finding.severity}: ${finding.message} [${finding.rule}]`),
      listOfFacts(factsOfFinding(finding)),
      button('Show in the timeline', () => showFinding(finding), {'data-finding': data.findings.indexOf(finding)}));
  return card;
}

function findingGroup([rule, findings], isOpenAtFirst) {
  const all = findings.length < data.findings.filter((one) => one.rule === rule).length
    ? findings.length : data.counts.byRule[rule] || findings.length;
  const list = element('div');
  const more = button('', showMore);
  let shown = 0;
  function showMore() {
    const upTo = Math.min(findings.length, shown ? shown + 20 : kCardsAtOnce);
    for (; shown < upTo; ++shown) list.append(findingCard(findings[shown]));
    more.hidden = shown === findings.length;
    more.textContent = `Show more: ${numberText(findings.length - shown)} left`;
  }
  showMore();
  const made = element('details', {class: `group ${findings[0].severity}`},
      element('summary', {}, element('code', {}, rule), ` ${counted(all, 'finding')}`), list, more);
  if (findings.length < all) made.append(element('p', {class: 'faint'}, partNote(findings.length, all, 'finding')));
  made.open = isOpenAtFirst;
  return made;
}

function showFindingGroups() {
  const chosen = chosenFindings(data.findings, findingFilter);
  const groups = groupedByRule(chosen, findingFilter.order, data.counts.byRule);
  byId('finding-groups').replaceChildren(...groups.map((group, i) => findingGroup(group, i < kOpenGroups)));
  byId('finding-count').textContent = chosen.length === data.findings.length ? ''
    : `${numberText(chosen.length)} of ${counted(data.findings.length, 'finding')}`;
}

function choice(label, name, choices, filter, onChange) {
  const select = element('select', {}, ...choices);
  select.addEventListener('change', () => { filter[name] = select.value; onChange(); });
  return element('label', {}, `${label} `, select);
}

function searchField(label, filter, onChange) {
  const field = element('input', {type: 'search', placeholder: 'words'});
  field.addEventListener('input', () => { filter.text = field.value; onChange(); });
  return element('label', {}, `${label} `, field);
}

function showFindings() {
  if (!data.findings.length) {
    byId('findings-content').append(element('p', {class: 'faint'}, 'No findings.'));
    return;
  }
  const distinct = (valueOf) => [...new Set(data.findings.map(valueOf).filter(Boolean))].map((value) =>
    option(value, value.length > 40 ? `${value.slice(0, 39)}\u2026` : value));
  const all = () => option('', 'all');
  const add = (label, name, choices) => choice(label, name, choices, findingFilter, showFindingGroups);
  byId('findings-content').append(
      element('div', {class: 'filters'},
          add('Rule', 'rule', [all(), ...distinct((one) => one.rule)]),
          add('Command', 'command', [all(), ...distinct((one) => one.seen.command)]),
          add('Outcome', 'outcome', [all(), ...distinct((one) => one.outcome)]),
          add('Severity', 'severity', [all(), option('error'), option('warning')]),
          add('Sort by', 'order', [option('severity'), option('count'), option('rule'), option('time')]),
          searchField('Search', findingFilter, showFindingGroups)),
      element('p', {id: 'finding-count', class: 'faint', 'aria-live': 'polite'}),
      element('div', {id: 'finding-groups'}));
  showFindingGroups();
}
