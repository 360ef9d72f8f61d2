// ---- A table that stays a screen high: only the rows in its scroll area are elements

// columns: {title, kind, cell(row), value(row)?}; a value makes the column sortable. isTall(row): needs a second line.
function table(caption, columns, allRows, {isTall = () => false, onRows = () => {}} = {}) {
  const body = element('tbody');
  const above = element('tr', {'aria-hidden': 'true', class: 'space'});
  const below = element('tr', {'aria-hidden': 'true', class: 'space'});
  const title = element('caption', {}, caption);
  const grid = element('table', {'aria-rowcount': allRows.length + 1}, title);
  const area = element('div', {class: 'scroll', tabindex: '0', role: 'region', 'aria-label': caption}, grid);
  let rows = allRows;
  let tops = [0];
  let order = null;
  let seenWidth = 0;
  let seenHeight = 0;

  const isNarrow = () => getComputedStyle(grid).getPropertyValue('--stacked').trim() === '1';

  function measure() {
    const line = 1.5 * (parseFloat(getComputedStyle(grid).fontSize) || 15);  // none before the table is in the page
    const lines = isNarrow() ? columns.length : 1;
    tops = [0];
    for (const row of rows) tops.push(tops[tops.length - 1] + (lines + (isTall(row) ? 1 : 0)) * line + 9);
  }

  function rowElement(row, index) {
    const made = element('tr', {'aria-rowindex': index + 2});
    made.style.height = `${tops[index + 1] - tops[index]}px`;
    for (const column of columns) {
      const cell = element('td', {'data-title': column.title, ...(column.kind ? {class: column.kind} : {})});
      cell.append(column.cell(row));
      made.append(cell);
    }
    return made;
  }

  function show(first, last) {
    above.style.height = `${tops[first]}px`;
    below.style.height = `${tops[rows.length] - tops[last]}px`;
    const shown = [];
    for (let i = first; i < last; ++i) shown.push(rowElement(rows[i], i));
    body.replaceChildren(above, ...shown, below);
  }

  const update = () => show(...visibleRows(tops, area.scrollTop, area.clientHeight || 800));

  function setRows(newRows) {
    rows = order ? sortedBy(newRows, order.column.value, order.isDescending) : newRows;
    grid.setAttribute('aria-rowcount', rows.length + 1);
    measure();
    update();
    onRows(rows.length);
  }

  let unsorted = allRows;
  function sortBy(column, heading) {
    const isDescending = order && order.column === column ? !order.isDescending : column.kind === 'number';
    order = {column, isDescending};
    for (const one of grid.querySelectorAll('th')) one.removeAttribute('aria-sort');
    heading.setAttribute('aria-sort', isDescending ? 'descending' : 'ascending');
    setRows(unsorted);
  }

  const head = element('tr', {'aria-rowindex': 1});
  for (const column of columns) {
    const heading = element('th', {scope: 'col', ...(column.kind ? {class: column.kind} : {})});
    heading.append(column.value ? button(column.title, () => sortBy(column, heading), {class: 'sort'}) : column.title);
    head.append(heading);
  }
  grid.append(element('thead', {}, head), body);
  area.addEventListener('scroll', update);
  new ResizeObserver(() => requestAnimationFrame(() => {
    if (area.clientWidth === seenWidth && area.clientHeight === seenHeight) return;
    [seenWidth, seenHeight] = [area.clientWidth, area.clientHeight];
    measure();
    update();
  })).observe(area);
  window.addEventListener('beforeprint', () => show(0, Math.min(rows.length, 1000)));
  window.addEventListener('afterprint', update);
  const setAll = (newRows) => { unsorted = newRows; setRows(newRows); };
  setAll(allRows);
  return {element: area, setRows: setAll};
}

function fill(id, isEmpty, whenEmpty, make) {
  byId(id).append(isEmpty ? element('p', {class: 'faint'}, whenEmpty) : make());
}

// Returns a note if a list of the page is not complete.
function partNote(shown, all, what) {
  if (shown >= all) return '';
  return `The page lists ${numberText(shown)} of ${counted(all, what)}. The trace has them all.`;
}
