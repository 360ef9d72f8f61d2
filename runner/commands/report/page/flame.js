// ---- The flame view: commands, the scopes in them, and the calls in these, as wide as the time that they took

const kFlameRow = 24;
const kLeastShare = 0.002;
const flame = {root: 0, query: '', selected: 0};

const nodes = flameNodes(data.flame);
const otherTotals = new Map();
if (data.other) {
  const others = flameNodes(data.other.flame);
  for (const node of others) otherTotals.set(pathOf(others, node), node);
}

// Returns how much longer a node took than in the other run, as a share of this run; null without another run.
function slowerBy(node) {
  if (!data.other) return null;
  const before = otherTotals.get(pathOf(nodes, node));
  return (node.total - (before ? before.total : 0)) / Math.max(nodes[0].total, 1);
}

function colourOfNode(node, depth) {
  const slower = slowerBy(node);
  if (slower !== null) {
    const part = Math.round(Math.min(Math.abs(slower) * 4, 1) * 100);
    return `color-mix(in srgb, var(${slower > 0 ? '--failed' : '--call'}) ${part}%, var(--panel))`;
  }
  if (node.index === 0) return 'var(--panel)';
  if (node.parent === 0) return 'var(--entry)';
  return node.children.length || !node.name.startsWith('Vexa') ? 'var(--scope)' : 'var(--call)';
}

function flameLabel(node) {
  const slower = slowerBy(node);
  const change = slower === null ? '' : `, ${slower >= 0 ? '+' : '\u2212'}${shareText(Math.abs(slower), 1)} of the run`;
  return `${node.name}: ${timeText(node.total)}, ${shareText(node.total, nodes[0].total)}, ${numberText(node.count)} times${change}`;
}

function describeNode(node) {
  const before = otherTotals.get(pathOf(nodes, node));
  const facts = [
    ['Time', `${timeText(node.total)}, ${shareText(node.total, nodes[0].total)} of the run`],
    ['Without what is in it', timeText(node.self)],
  ];
  if (node.count) facts.push(['How often', numberText(node.count)], ['Longest', timeText(node.longest)]);
  if (data.other) facts.push(['In the other run', before ? `${timeText(before.total)}, ${numberText(before.count)} times` : 'absent']);
  byId('flame-selection').replaceChildren(element('h3', {}, node.name), listOfFacts(facts));
}

function flameButton({node, depth, left, share}) {
  const made = button(node.name, () => zoomFlame(node.index),
      {class: 'box', title: flameLabel(node), 'aria-label': flameLabel(node), 'data-node': node.index,
        tabindex: node.index === flame.root ? '0' : '-1'});
  Object.assign(made.style, {left: `${left * 100}%`, width: `${share * 100}%`, top: `${depth * kFlameRow}px`,
    background: colourOfNode(node, depth)});
  if (flame.query.trim()) made.classList.add(matches(node.name, flame.query) ? 'found' : 'dim');
  made.addEventListener('focus', () => describeNode(node));
  made.addEventListener('mouseenter', () => describeNode(node));
  return made;
}

function drawFlame() {
  const isSought = (node) => flame.query.trim() !== '' && matches(node.name, flame.query);
  const boxes = flameBoxes(nodes[flame.root], kLeastShare, isSought);
  const depth = boxes.reduce((most, box) => Math.max(most, box.depth), 0);
  byId('flame-view').replaceChildren(...boxes.map(flameButton));
  byId('flame-view').style.height = `${(depth + 1) * kFlameRow}px`;
  byId('flame-path').textContent = flame.root ? pathOf(nodes, nodes[flame.root]).slice(1).replaceAll('/', ' \u203a ') : '';
  byId('flame-out').disabled = flame.root === 0;
}

function focusNode(index) {
  const box = byId('flame-view').querySelector(`[data-node="${index}"]`);
  if (box) box.focus();
}

function zoomFlame(index) {
  flame.root = index;
  drawFlame();
  focusNode(index);
}

// Arrow keys walk the tree; Enter, which is a click, zooms in; Escape zooms out.
function flameKey(event) {
  const node = nodes[event.target.dataset.node];
  if (!node) return;
  const siblings = nodes[node.parent].children;
  const at = siblings.indexOf(node);
  const goals = {
    ArrowUp: () => nodes[node.parent],
    ArrowDown: () => node.children[0],
    ArrowLeft: () => siblings[at - 1],
    ArrowRight: () => siblings[at + 1],
  };
  if (event.key === 'Escape') zoomFlame(nodes[flame.root].parent);
  if (!(event.key in goals)) return;
  event.preventDefault();
  const goal = goals[event.key]();
  if (goal) focusNode(goal.index);
}

function showFlame() {
  byId('flame-view').addEventListener('keydown', flameKey);
  byId('flame-out').addEventListener('click', () => zoomFlame(nodes[flame.root].parent));
  byId('flame-search').addEventListener('input', () => {
    flame.query = byId('flame-search').value;
    drawFlame();
  });
  if (data.flame.left) byId('flame-note').textContent = `${counted(data.flame.left, 'box')} of short times are left out.`.replace('boxs', 'boxes');
  if (data.other) byId('flame-note').append(' Red took longer than in the other run, green took less time.');
  drawFlame();
  describeNode(nodes[0]);
}
