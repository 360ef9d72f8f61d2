// Tests the functions of the report's page that need no page: node page_test.js FOLDER-OF-THE-PAGE
'use strict';
const assert = require('node:assert');
const fs = require('node:fs');
const path = require('node:path');

// The files are parts of one script, so they are joined before they run.
function loaded(files, names) {
  const source = files.map((file) => fs.readFileSync(path.join(process.argv[2], file), 'utf8')).join('\n');
  return new Function(`'use strict';\n${source}\nreturn {${names.join(', ')}};`)();
}

const page = loaded(['text.js', 'choose.js', 'axis.js'], ['matches', 'chosenFindings', 'groupedByRule', 'sortedBy',
  'visibleRows', 'firstAbove', 'joinedByName', 'axisTimes', 'axisLabel', 'clusters', 'stepPoints', 'rangeWithin',
  'timeText', 'fileName']);
const flame = loaded(['flametree.js'], ['flameNodes', 'flameBoxes', 'pathOf']);

function finding(rule, severity, command, outcome) {
  return {rule, severity, outcome, message: `${rule} was broken`, seen: {command, macroLine: 'm.macro:3'}};
}

const findings = [
  finding('leaked-set', 'warning', 'ONE A', 'succeeded'),
  finding('crash', 'error', 'ONE C', 'did not end'),
  finding('null-handle', 'error', 'ONE B', 'failed'),
  finding('leaked-set', 'warning', 'ONE B', 'failed'),
];

const tests = {
  'a search matches all words in any case'() {
    assert(page.matches('VexaUtilLockStart(ONE)', 'lock one'));
    assert(!page.matches('VexaUtilLockStart(ONE)', 'lock two'));
    assert(page.matches('anything', ''));
  },
  'findings are chosen by rule, command, outcome and words'() {
    const count = (filter) => page.chosenFindings(findings, filter).length;
    assert.strictEqual(count({}), 4);
    assert.strictEqual(count({rule: 'leaked-set'}), 2);
    assert.strictEqual(count({rule: 'leaked-set', command: 'ONE B'}), 1);
    assert.strictEqual(count({outcome: 'failed'}), 2);
    assert.strictEqual(count({severity: 'error', outcome: 'succeeded'}), 0);
    assert.strictEqual(count({text: 'null'}), 1);
  },
  'findings are grouped by rule, the crash first'() {
    const rules = (order) => page.groupedByRule(findings, order, {'leaked-set': 900}).map(([rule]) => rule);
    assert.deepStrictEqual(rules('severity'), ['crash', 'null-handle', 'leaked-set']);
    assert.deepStrictEqual(rules('count'), ['leaked-set', 'crash', 'null-handle']);
    assert.deepStrictEqual(rules('rule'), ['crash', 'leaked-set', 'null-handle']);
    assert.deepStrictEqual(rules('time'), ['leaked-set', 'crash', 'null-handle']);
  },
  'rows are sorted without changing equal ones'() {
    const rows = [{a: 2, b: 1}, {a: 1, b: 2}, {a: 2, b: 3}];
    assert.deepStrictEqual(page.sortedBy(rows, (row) => row.a, false).map((row) => row.b), [2, 1, 3]);
    assert.deepStrictEqual(page.sortedBy(rows, (row) => row.a, true).map((row) => row.b), [1, 3, 2]);
  },
  'a table shows the rows in its scroll area'() {
    const tops = Array.from({length: 1001}, (_, i) => i * 30);
    assert.deepStrictEqual(page.visibleRows(tops, 0, 600), [0, 21]);
    assert.deepStrictEqual(page.visibleRows(tops, 15000, 600), [500, 521]);
    assert.deepStrictEqual(page.visibleRows(tops, 29400, 600), [980, 1000]);
    assert.deepStrictEqual(page.visibleRows([0], 0, 600), [0, 0]);
  },
  'two runs are joined by name'() {
    const joined = page.joinedByName([{name: 'a', n: 1}, {name: 'b', n: 2}], [{name: 'b', n: 3}, {name: 'c', n: 4}]);
    assert.deepStrictEqual(joined.map((row) => [row.name, row.before && row.before.n, row.now && row.now.n]),
        [['a', 1, null], ['b', 2, 3], ['c', null, 4]]);
  },
  'the labels of an axis differ however narrow the view'() {
    for (const [from, to] of [[0, 10], [0, 1e3], [0, 7e9], [5e9, 5e9 + 20], [1.234e9, 1.2345e9], [9e5, 1.1e6], [0, 9e15]]) {
      const {step, times} = page.axisTimes(from, to, 8);
      const labels = times.map((time) => page.axisLabel(time, step));
      assert.strictEqual(new Set(labels).size, labels.length, `${from} to ${to}: ${labels}`);
      assert(times.length >= 2 && times.length <= 10, `${from} to ${to}: ${labels}`);
    }
  },
  'dense marks become clusters'() {
    const marks = Array.from({length: 132}, (_, i) => ({x: i}));
    assert.deepStrictEqual(page.clusters(marks, 22, 66).map((one) => one.marks.length), [66, 66]);
    const apart = page.clusters([{x: 0}, {x: 10}, {x: 100}], 22, 66);
    assert.deepStrictEqual(apart.map((one) => [one.from, one.to]), [[0, 10], [100, 100]]);
  },
  'the percentage goes in steps'() {
    const steps = [[10, 0], [20, 50], [30, 100]];
    const points = page.stepPoints(steps, 0, 40);
    assert.deepStrictEqual(points, [[0, 0], [10, 0], [10, 0], [20, 0], [20, 50], [30, 50], [30, 100], [40, 100]]);
    for (let i = 1; i < points.length; ++i) {
      assert(points[i][0] === points[i - 1][0] || points[i][1] === points[i - 1][1], 'no diagonal');
    }
    assert.deepStrictEqual(page.stepPoints(steps, 22, 28), [[22, 50], [28, 50]]);
  },
  'the view keeps within the run'() {
    assert.deepStrictEqual(page.rangeWithin(-50, 50, 1000), {from: 0, to: 100});
    assert.deepStrictEqual(page.rangeWithin(950, 1050, 1000), {from: 900, to: 1000});
    assert.deepStrictEqual(page.rangeWithin(-500, 5000, 1000), {from: 0, to: 1000});
    assert.deepStrictEqual(page.rangeWithin(5, 6, 1000), {from: 5, to: 15});
  },
  'times have a unit'() {
    assert.deepStrictEqual([0, 999, 1500, 2.5e6, 3e9].map(page.timeText),
        ['0 ns', '999 ns', '1.5 \u00b5s', '2.5 ms', '3.00 s']);
  },
  'the flame view is as wide as its times'() {
    const nodes = flame.flameNodes({parent: [0, 0, 1, 0], name: [0, 1, 2, 3], count: [0, 1, 5, 1],
      total: [100, 30, 20, 70], longest: [0, 30, 9, 70], names: ['run', 'a', 'f', 'b']});
    assert.strictEqual(nodes[1].self, 10);
    assert.strictEqual(flame.pathOf(nodes, nodes[2]), '/a/f');
    const boxes = flame.flameBoxes(nodes[0], 0.01);
    assert.deepStrictEqual(boxes.map(({node, depth, left, share}) => [node.name, depth, left, Number(share.toFixed(3))]),
        [['run', 0, 0, 1], ['b', 1, 0, 0.7], ['a', 1, 0.7, 0.3], ['f', 2, 0.7, 0.2]]);
    assert.deepStrictEqual(flame.flameBoxes(nodes[0], 0.5).map(({node}) => node.name), ['run', 'b']);
    const sought = flame.flameBoxes(nodes[0], 0.5, (node) => node.name === 'a');
    assert.deepStrictEqual(sought.map(({node}) => node.name), ['run', 'b', 'a']);
  },
};

for (const [name, test] of Object.entries(tests)) {
  try {
    test();
  } catch (error) {
    console.error(`FAILED: ${name}\n${error.stack}`);
    process.exitCode = 1;
  }
}
console.log(`${Object.keys(tests).length} tests ran`);
