// ---- Texts and elements

const byId = (id) => document.getElementById(id);

// Sets texts as text, never as markup, because they come from add-ons.
function element(tag, attributes = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) made.setAttribute(name, value);
  made.append(...children);
  return made;
}

function button(text, action, attributes = {}) {
  const made = element('button', {type: 'button', ...attributes}, text);
  made.addEventListener('click', action);
  return made;
}

function option(value, text = value) {
  return element('option', {value}, text);
}

const numberText = (count) => count.toLocaleString('en');
const counted = (count, noun) => `${numberText(count)} ${noun}${count === 1 ? '' : 's'}`;

const kUnits = [[1e9, 's'], [1e6, 'ms'], [1e3, '\u00b5s'], [1, 'ns']];

function timeText(nanoseconds) {
  const [size, unit] = kUnits.find(([least]) => nanoseconds >= least) || kUnits[3];
  const value = nanoseconds / size;
  return `${unit === 'ns' ? Math.round(value) : unit === 's' ? value.toFixed(2) : Number(value.toPrecision(3))} ${unit}`;
}

const shareText = (part, whole) => `${whole > 0 ? (100 * part / whole).toFixed(1) : '0.0'} %`;

// Leaves out the folders, which a narrow table has no room for.
const fileName = (path) => path.slice(path.lastIndexOf('/') + 1);

function listOfFacts(facts) {
  const list = element('dl');
  for (const [name, value] of facts) list.append(element('dt', {}, name), element('dd', {}, value));
  return list;
}
