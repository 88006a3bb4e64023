// --- Drawings: a path for each colour, so that ten thousand drives are a few elements

const cellWidth = 10;
const cellHeight = 24;

function isLit(part) {
  const { hits } = search(state.q);
  return hits === null || hits[part] === 1;
}

/// A drawing that fills the box that its place gives it.
function stretched(width, height, paths) {
  const drawing = shape('svg', { viewBox: `0 0 ${width} ${height}`, preserveAspectRatio: 'none', 'aria-hidden': 'true' });
  for (const [mark, d] of paths) drawing.append(shape('path', { class: mark, d }));
  return drawing;
}

const addTo = (paths, mark, d) => paths.set(mark, (paths.get(mark) ?? '') + d);
const markOf = (drive, { groups, of }) => `${groups[of(drive)].mark}${isLit(drive) ? '' : ' dim'}`;

/// Every slot of an enclosure.
function drawCells({ all, rows, columns }) {
  const colours = colouring();
  const paths = new Map();
  all.forEach((drive, at) => {
    const x = (at % columns) * cellWidth + 1;
    const y = Math.floor(at / columns) * cellHeight + 2;
    const cell = `M${x} ${y}h${cellWidth - 2}v${cellHeight - 4}h${2 - cellWidth}z`;
    addTo(paths, drive < 0 ? 'empty' : markOf(drive, colours), cell);
  });
  return stretched(columns * cellWidth, rows * cellHeight, paths);
}

/// How many of the drives have which colour.
function drawShares(drives) {
  const colours = colouring();
  const counts = new Map();
  for (const group of colours.groups) for (const dim of ['', ' dim']) counts.set(group.mark + dim, 0);
  for (const drive of drives) {
    const mark = markOf(drive, colours);
    counts.set(mark, counts.get(mark) + 1);
  }
  const paths = new Map();
  let x = 0;
  for (const [mark, number] of counts) {
    if (number > 0) paths.set(mark, `M${x} 0h${number}v1h${-number}z`);
    x += number;
  }
  return stretched(Math.max(1, drives.length), 1, paths);
}

/// "16 drives: 12 of T0A4, 4 of T0B1", and how many of them are found.
function sharesText(drives) {
  const colours = colouring();
  const counts = new Map();
  for (const drive of drives) {
    const { text } = colours.groups[colours.of(drive)];
    counts.set(text, (counts.get(text) ?? 0) + 1);
  }
  const found = drives.filter(isLit).length;
  const shares = counts.size > 0 ? `: ${[...counts].map(([text, number]) => `${count(number)} ${text}`).join(', ')}` : '';
  return `${amount(drives.length, driveTable)}${shares}${state.q.trim() ? `; ${count(found)} found` : ''}`;
}

/// Draws what comes into view, when it comes into view.
const watcher = new IntersectionObserver((entries) => {
  for (const { isIntersecting, target } of entries) {
    if (!isIntersecting) continue;
    watcher.unobserve(target);
    target.replaceChildren(waiting.get(target)());
  }
}, { rootMargin: '400px' });
const waiting = new WeakMap();

function drawLater(place, draw) {
  waiting.set(place, draw);
  watcher.observe(place);
  return place;
}

/// The drive under the pointer in a drawing of cells.
function driveAt(place, { all, rows, columns }, event) {
  const box = place.getBoundingClientRect();
  const column = Math.floor((event.clientX - box.left) / box.width * columns);
  const row = Math.floor((event.clientY - box.top) / box.height * rows);
  return column < 0 || column >= columns ? -1 : all[row * columns + column] ?? -1;
}

function showTip(part, event) {
  const tip = byElementId('tip');
  tip.hidden = part < 0;
  if (part < 0) return;
  const told = ['serial', 'capacity_mb', 'firmware'].map((name) => shownValue(part, name));
  tip.replaceChildren(element('b', {}, tableOfPart(part).singular), ` ${placeOf(part) || titleOf(part)}`,
    element('span', {}, facts(changeOf(part), ...told)));
  tip.style.left = `${Math.max(8, Math.min(event.clientX + 14, innerWidth - tip.offsetWidth - 8))}px`;
  const above = event.clientY + tip.offsetHeight + 24 > innerHeight;
  tip.style.top = `${above ? event.clientY - tip.offsetHeight - 12 : event.clientY + 18}px`;
}

const hideTip = () => { byElementId('tip').hidden = true; };
