// ---- The tree of the flame view; nothing here needs the page

// Turns the columns of a flame into nodes with their children, the longest first. The root is the first.
function flameNodes(columns) {
  const nodes = columns.parent.map((parent, index) => ({
    index,
    parent,
    name: columns.names[columns.name[index]],
    count: columns.count[index],
    total: columns.total[index],
    longest: columns.longest[index],
    children: [],
  }));
  for (const node of nodes.slice(1)) nodes[node.parent].children.push(node);
  for (const node of nodes) {
    node.children.sort((a, b) => b.total - a.total);
    node.self = node.total - node.children.reduce((sum, child) => sum + child.total, 0);
  }
  return nodes;
}

// Returns the boxes of a node and its descendants, as {node, depth, left, share}; left and share are parts of the width.
// Leaves out boxes with a share below `least`, unless their nodes are sought.
function flameBoxes(root, least, isSought = () => false) {
  const boxes = [];
  const place = (node, depth, left, share) => {
    if (share >= least || isSought(node)) boxes.push({node, depth, left, share});
    let next = left;
    for (const child of node.children) {
      const part = node.total > 0 ? share * child.total / node.total : 0;
      place(child, depth + 1, next, part);
      next += part;
    }
  };
  place(root, 0, 0, 1);
  return boxes;
}

const pathOf = (nodes, node) => (node.index === 0 ? '' : `${pathOf(nodes, nodes[node.parent])}/${node.name}`);
