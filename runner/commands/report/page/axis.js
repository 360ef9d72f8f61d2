// ---- Places on the time axis; nothing here needs the page

// Returns the times of the marks of an axis: at most `most`, at round numbers.
function axisTimes(from, to, most) {
  const least = (to - from) / Math.max(most, 1);
  const power = 10 ** Math.floor(Math.log10(Math.max(least, 1)));
  const step = [1, 2, 5, 10].map((factor) => factor * power).find((size) => size >= least) || power;
  const times = [];
  for (let time = Math.ceil(from / step) * step; time <= to; time += step) times.push(time);
  return {step, times};
}

// Returns the label of a time with as many decimals as neighbours a step apart need to differ.
function axisLabel(time, step) {
  const [size, unit] = kUnits.find(([least]) => Math.max(time, step) >= least) || kUnits[3];
  const decimals = Math.max(0, Math.min(9, -Math.floor(Math.log10(step / size) + 1e-9)));
  return `${(time / size).toFixed(decimals)} ${unit}`;
}

// Joins marks that are closer than `room`, into clusters at most `most` wide. Marks are {x, ...} in ascending order; a
// cluster has its first and last x.
function clusters(marks, room, most) {
  const joined = [];
  for (const mark of marks) {
    const last = joined[joined.length - 1];
    if (last && mark.x - last.to < room && mark.x - last.from < most) {
      last.to = mark.x;
      last.marks.push(mark);
    } else {
      joined.push({from: mark.x, to: mark.x, marks: [mark]});
    }
  }
  return joined;
}

// Returns the points of a line that goes in steps: level, then up or down.
function stepPoints(steps, from, to) {
  const points = [];
  let level = 0;
  for (const [time, value] of steps) {
    if (time > to) break;
    if (time >= from) {
      if (!points.length) points.push([from, level]);
      points.push([time, level], [time, value]);
    }
    level = value;
  }
  if (!points.length) points.push([from, level]);
  points.push([to, level]);
  return points;
}

// Returns a part of the run that keeps within it.
function rangeWithin(from, to, whole) {
  const size = Math.min(Math.max(to - from, 10), whole);
  const start = Math.min(Math.max(from, 0), whole - size);
  return {from: start, to: start + size};
}

// Returns how busy an interval was, from 0 to 1.
const busyShare = (busy, width) => Math.min(busy / width, 1);
