// --- The first screen: what there is, what is odd, every rack, every partition

/// The whole in a line.
function totals() {
  const drives = partsIn(driveTable).filter(isCurrent);
  const told = ['storageEnclosure', 'rack', 'partition', 'host'].flatMap((word) => {
    const [table] = tablesOf(word);
    return table.rows > table.old ? [amount(table.rows - table.old, table)] : [];
  });
  return element('p', { id: 'totals' }, element('b', {}, amount(drives.length, driveTable)),
    drives.length > 0 ? `, ${capacity(capacityOf(drives))}` : '', told.length > 0 ? `; ${told.join(', ')}` : '');
}

/// Every kind, as the way to its table.
function index() {
  const listed = tables.filter((table) => table.rows > 0 && tablesOf(table.word)[0] === table);
  return section('Index', element('ul', { id: 'index' }, ...listed.map((table) =>
    element('li', {}, linkTo({ view: 'table', kind: table.word, at: '', part: '', sort: '', page: '1' },
      element('b', {}, count(table.rows - table.old)), ` ${table.rows - table.old === 1 ? table.singular : table.plural}`)))));
}

// --- What is odd

const enclosureTitle = (enclosure) => placeOf(enclosure) || titleOf(enclosure);

function mixedFirmware() {
  return partsOf('storageEnclosure').filter(isCurrent).flatMap((enclosure) => {
    const levels = new Map();
    for (const drive of drivesIn(enclosure)) {
      const level = value(drive, 'firmware');
      if (level !== null && isCurrent(drive)) levels.set(level, (levels.get(level) ?? 0) + 1);
    }
    const texts = [...levels].sort(([a], [b]) => compareTexts(a, b)).map(([level, drives]) => `${level} × ${count(drives)}`);
    return levels.size < 2 ? [] : [[enclosure, `${enclosureTitle(enclosure)}: ${texts.join(', ')}`]];
  });
}

/// An array site of fewer drives than most array sites have is short of one, and so is its array.
function shortArrays() {
  const sites = partsOf('arraySite').filter(isCurrent);
  const sizes = [...groupBy(sites, (site) => below(site).length)].sort(([, a], [, b]) => b.length - a.length);
  const most = sizes[0]?.[0] ?? 0;
  return sites.filter((site) => below(site).length < most).map((site) => [above(site) < 0 ? site : above(site),
    `${numbered(site)}: ${amount(below(site).length, driveTable)}, ${count(most)} in most`]);
}

function listedTwice() {
  const twice = [];
  for (const table of tables) {
    if (table.word === 'host') continue;
    const known = new Set();
    for (const part of partsIn(table)) {
      if (isOld(part) || idOf(part) === '') continue;
      if (known.has(idOf(part))) twice.push([part, `${table.singular} ${idOf(part)}`]);
      known.add(idOf(part));
    }
  }
  return twice;
}

/// [what is odd, the parts with what is to be said of each].
function oddities() {
  const drives = partsIn(driveTable).filter(isCurrent);
  const named = (part) => [part, `${tableOfPart(part).singular} ${titleOf(part)}`];
  const absent = groupBy(data.absent, ([word]) => word);
  return [
    ['Drives in no enclosure', drives.filter((drive) => !rackOfEnclosure.has(parentOf(drive))).map(named)],
    ['Drives in a slot that is taken, or in none', [...rackOfEnclosure.keys()].filter(isCurrent)
      .flatMap((enclosure) => layoutOf(enclosure).all.slice(layoutOf(enclosure).slots)).filter(isCurrent).map(named)],
    ['Enclosures in no rack', enclosuresOf(-1).filter(isCurrent).map(named)],
    ['Mixed firmware within an enclosure', mixedFirmware()],
    ['Arrays short of a drive', shortArrays()],
    ['Listed twice, with values that differ', listedTwice()],
    ['Places without a part', [...absent].map(([word, places]) =>
      [Math.max(systemPart, places[0][1]), amount(places.length, tablesOf(word)[0])])],
    ['Lines that the collector would not have written', data.findings.map((text) => [systemPart, text])],
  ].filter(([, found]) => found.length > 0);
}

const nothingOdd = 'Nothing odd: every drive has its slot, no enclosure mixes firmware, no array is short of a drive.';
let knownOddities = null;

function oddityList() {
  knownOddities ??= oddities();
  if (knownOddities.length === 0) return element('p', { id: 'odd', class: 'none' }, nothingOdd);
  return element('div', { id: 'odd' }, ...knownOddities.map(([title, found]) => {
    const entry = element('details', {}, element('summary', {}, title, ' ', element('b', {}, count(found.length))));
    entry.addEventListener('toggle', () => {
      if (entry.childElementCount === 1) entry.append(longList(found, ([part, text]) => link(part, text)));
    });
    return entry;
  }));
}

// --- Racks as small drawings

const rackTitle = (rack) => (rack < 0 ? 'In no rack' : shortTitle(rack));

/// Where the numbers of a rack's enclosures leave some out: the first and the last of those, before an enclosure.
function gapBefore(enclosures, at) {
  const number = value(enclosures[at], 'enclosure');
  const last = at === 0 ? 0 : value(enclosures[at - 1], 'enclosure');
  return number === null || last === null || number <= last + 1 ? null : [last + 1, number - 1];
}

function smallEnclosure(enclosure, tall) {
  const layout = layoutOf(enclosure);
  const drives = drivesIn(enclosure);
  const made = link(enclosure, layout.rows === 1 && tall >= 6 ? drawCells(layout) : drawShares(drives));
  const heard = `${capital(enclosureTitle(enclosure))}: ${sharesText(drives)}`;
  fill(made, { class: 'small', tabindex: '-1', 'aria-label': heard }, []);
  made.style.height = `${tall}px`;
  made.addEventListener('pointermove', (event) => showTip(enclosure, event));
  made.addEventListener('pointerleave', hideTip);
  return made;
}

function smallRack(rack, tall) {
  const enclosures = enclosuresOf(rack);
  const drives = enclosures.flatMap(drivesIn);
  const stack = element('div', { class: 'stack', role: 'group', 'aria-label': `Enclosures of ${rackTitle(rack)}` });
  enclosures.forEach((enclosure, at) => {
    const gap = gapBefore(enclosures, at);
    if (gap) stack.prepend(element('div', { class: 'gap', title: `no enclosure ${gap.join(' to ')}` }));
    stack.prepend(smallEnclosure(enclosure, tall));
  });
  const heading = element('h3', {}, rack < 0 ? rackTitle(rack) : link(rack, rackTitle(rack)));
  const all = amount(drives.filter(isCurrent).length, driveTable);
  const found = state.q.trim() ? `${count(drives.filter(isLit).length)} found` : all;
  return element('li', { class: 'rack' }, heading, element('p', {}, found), roving(stack, 'a'));
}

/// All racks are to be seen at once: the more there are, the smaller each is drawn.
function rackOverview() {
  if (racksAndNone.length === 0) return section('Racks', note('The document tells of no rack.', 'none'));
  const most = Math.max(1, ...racksAndNone.map((rack) => enclosuresOf(rack).length));
  const room = Math.max(300, (byElementId('main').clientWidth || innerWidth) - 16);
  const wide = Math.max(room < 500 ? 64 : 92, Math.min(300, room / Math.max(1, racksAndNone.length) - 14));
  const lines = Math.ceil(racksAndNone.length / Math.max(1, Math.floor(room / (wide + 14))));
  const gap = 440 / lines / most < 6 ? 1 : 2;
  const tall = Math.max(2, Math.min(34, Math.floor(440 / lines / most) - gap));
  const list = element('ul', { id: 'racks' }, ...racksAndNone.map((rack) => smallRack(rack, tall)));
  list.style.setProperty('--wide', `${Math.floor(wide)}px`);
  list.style.setProperty('--gap', `${gap}px`);
  return section('Racks', tools(partsIn(driveTable)), list, note(assumed));
}

const assumed = 'Enclosures stand in the order of their numbers, the first at the bottom, and drives in the order of '
  + 'their slots. That much the document tells; heights, rack units and what stands between it does not.';

// --- Processor complexes, I/O enclosures, consoles

function otherEnclosures() {
  const parts = partsOf('processorComplex', 'ioEnclosure', 'console');
  return parts.length === 0 ? [] : [section('Processor complexes, I/O enclosures, consoles',
    longList(parts, (part) => link(part, element('b', {}, capital(tableOfPart(part).singular)), titleOf(part),
      element('span', {}, insideText(part))), { class: 'tiles' }))];
}

function insideText(part) {
  const lists = [...groupBy(childrenOf(part).filter(isCurrent), wordOf)];
  return lists.map(([, list]) => amount(list.length, tableOfPart(list[0]))).join(', ');
}

// --- Partitions

/// The capacity of a partition's drives by the pool that they lead to.
function poolShares(partition) {
  const numberOf = (pool) => (pool === null ? Infinity : value(pool, 'number') ?? Infinity);
  const pools = [...drivesByPool.get(partition)].sort(([a], [b]) => inOrder(numberOf(a), numberOf(b)));
  const sizes = pools.map(([pool, drives]) => ({ pool, drives, megabytes: capacityOf(drives) }));
  const all = Math.max(1, sizes.reduce((sum, one) => sum + one.megabytes, 0));
  const paths = new Map();
  let x = 0;
  sizes.forEach(({ pool, megabytes }, at) => {
    const width = megabytes / all * 1000;
    const filled = Math.max(0, width - 3);
    addTo(paths, pool === null ? 'rest' : `c${at % mostColours}`, `M${x} 0h${filled}v1h${-filled}z`);
    x += width;
  });
  return element('div', { class: 'pools' }, sizes.length === 0 ? '' : stretched(1000, 1, paths),
    longList(sizes, ({ pool, drives, megabytes }) => element('span', { class: 'entry' },
      element('i', { class: pool === null ? 'rest' : `c${sizes.findIndex((one) => one.pool === pool) % mostColours}` }),
      pool === null ? 'in no pool' : link(pool, `Pool ${value(pool, 'number') ?? titleOf(pool)}`),
      element('span', {}, `${capacity(megabytes)}, ${amount(drives.length, driveTable)}`)), {}, 12));
}

function partitionOverview() {
  if (partitions.length === 0) return [];
  return [section('Partitions', element('ul', { class: 'cards' }, ...partitions.map((partition) => {
    const drives = [...drivesByPool.get(partition).values()].flat();
    return element('li', {}, element('h3', {}, link(partition, titleOf(partition))),
      element('p', {}, `${capacity(capacityOf(drives))} of drives by pool`), poolShares(partition));
  })))];
}

const beside = (...sections) => element('div', { class: 'beside' }, ...sections);

function drawOverview() {
  const odd = section('What is odd', oddityList());
  const first = data.changes ? [beside(rackOverview(), changeSection()), odd, ...partitionOverview()]
    : [odd, beside(rackOverview(), ...partitionOverview())];
  return [...missingNotice(), totals(), ...first, ...otherEnclosures(), index()];
}

function missingNotice() {
  return data.missing.length === 0 ? [] : [element('p', { class: 'notice', id: 'missing' },
    element('b', {}, 'This document is incomplete. '), `It lacks ${data.missing.join(', ')}.`)];
}
