'use strict';

// The page of one inventory document. Values come from a machine's resource manager and may hold anything:
// they are only ever set as text, never parsed as markup.

// --- The document's parts

const data = JSON.parse(document.getElementById('data').textContent);
const parts = [];

/// Makes a part of the data's [kind, list, name, id, shape, values, children].
function load([kind, list, name, id, shape, values, children], parent) {
  const [word, singular, plural, counted] = data.kinds[kind];
  const part = {
    index: parts.length, kind: word, singular, plural, counted, parent,
    list: data.texts[list], name: data.texts[name], id: data.texts[id],
    properties: data.shapes[shape].map(([code, label], i) =>
      ({ code: data.texts[code], label: data.texts[label], value: data.texts[values[i]] })),
    children: [],
  };
  parts.push(part);
  for (const child of children) part.children.push(load(child, part));
  return part;
}

const system = load(data.system, null);

function value(part, code) {
  const property = part.properties.find((one) => one.code === code);
  return property ? property.value : '';
}

function ofKind(...kinds) {
  return parts.filter((part) => kinds.includes(part.kind));
}

/// A part that several partitions see is listed for each of them; it is drawn once.
const listings = new Map();
for (const part of parts) {
  const key = part.id === '' ? `#${part.index}` : `${part.kind} ${part.id}`;
  if (!listings.has(key)) listings.set(key, []);
  const listed = listings.get(key);
  listed.push(part);
  part.listings = listed;
}

function once(list) {
  return list.filter((part) => part.listings[0] === part || !list.includes(part.listings[0]));
}

function distinct(list) {
  const seen = new Set();
  return list.filter((part) => !seen.has(part.listings) && seen.add(part.listings));
}

function inside(part, ...kinds) {
  return part.children.flatMap((child) =>
    (kinds.includes(child.kind) ? [child] : []).concat(inside(child, ...kinds)));
}

function ancestors(part) {
  return part.parent ? [...ancestors(part.parent), part.parent] : [];
}

const order = new Intl.Collator('en', { numeric: true });
const byId = (a, b) => order.compare(a.id, b.id);
const number = new Intl.NumberFormat('en');

// --- Values that hold many

/// "AP=1,AC=6+P,7+P" as a Map; an item without a name belongs to the value before it.
function namedValues(text) {
  const values = new Map();
  let last = null;
  for (const item of text.split(',')) {
    const sign = item.indexOf('=');
    if (sign >= 0) values.set(last = item.slice(0, sign), item.slice(sign + 1));
    else if (last !== null) values.set(last, `${values.get(last)},${item}`);
  }
  return values;
}

/// "description=ports," one after the other; a description may hold commas and equals signs.
function hostsOf(partition) {
  const hosts = [];
  let pending = '';
  for (const item of value(partition, 'U2').split(',')) {
    pending += (pending && ',') + item;
    const found = /^([^]*)=(\d+)$/.exec(pending);
    if (!found) continue;
    hosts.push({ description: found[1], ports: Number(found[2]) });
    pending = '';
  }
  return hosts;
}

function characteristics(part) {
  return namedValues(value(part, 'DP') || value(part, 'LS'));
}

const diskMeanings = {
  DI: 'Name', DM: 'Maker', DC: 'Capacity', DR: 'Speed (rpm)', DS: 'Interface rate', AS: 'Array site',
  AP: 'Position in the array site', IT: 'Interface', ST: 'Service state',
};
const spaceMeanings = {
  AP: 'Array position', DP: 'Device adapter pair', DC: 'Disk capacity', DR: 'Disk speed (rpm)',
  AN: 'Serial number', AC: 'Configuration of its sites', RP: 'Rank position', RT: 'RAID type',
  RN: 'Serial number', ET: 'Segment type', ES: 'Segments', EL: 'Segment limit', VE: 'Virtual segments',
  VL: 'Virtual segment limit', RG: 'Rank group',
};
const countGroups = [
  ['Volumes', 'v'], ['Host adapter ports', 'p'], ['Objects', 'o'], ['Memory and processors', 'h'],
];
const countMeanings = {
  o0: 'Volume groups', o1: 'SCSI host ports', o3: 'CKD subsystems', o4: 'FB subsystems',
};

// --- How parts belong together

const drives = once(ofKind('drive'));

function imageOf(part) {
  const told = [part, ...ancestors(part).reverse()].find((one) => value(one, 'S4'));
  return told ? value(told, 'S4') : '';
}

function groupBy(list, keyOf) {
  const groups = new Map();
  for (const item of list) {
    const key = keyOf(item);
    if (!groups.has(key)) groups.set(key, []);
    groups.get(key).push(item);
  }
  return groups;
}

const siteKey = (image, site) => `${image}/S${site}`;
const drivesOfSite = groupBy(ofKind('drive'),
  (drive) => siteKey(value(drive, 'S4'), characteristics(drive).get('AS')));
const arraysOfRank = groupBy(ofKind('array'), (array) => value(array, 'A1'));
const ranksOfPool = groupBy(ofKind('rank'), (rank) => value(rank, 'A1'));
const partitionOfImage = new Map(ofKind('partition').map((one) => [value(one, 'S4'), one]));

/// An array's identifier ends in the numbers of its sites, the first of them doubled: "33,4", "1212".
function siteIds(array) {
  const [first, ...further] = array.id.slice(array.id.lastIndexOf('/A') + 2).split(',');
  const half = first.slice(0, first.length / 2);
  return [half, ...further].map((site) => siteKey(value(array, 'S4'), site));
}

const arrayOfSite = new Map(ofKind('array').flatMap((array) => siteIds(array).map((id) => [id, array])));
const byKindAndId = (kind, id) => listings.get(`${kind} ${id}`)?.[0];

function sitesOf(array) {
  return siteIds(array).map((id) => byKindAndId('arraySite', id)).filter(Boolean);
}

/// What a part of the logical configuration stands on: from pools over ranks, arrays and sites to drives.
function below(part) {
  const next = {
    arraySite: () => drivesOfSite.get(part.id) || [],
    array: () => sitesOf(part),
    rank: () => arraysOfRank.get(part.id) || [],
    segmentPool: () => ranksOfPool.get(part.id) || [],
    partition: () => ofKind('drive').filter((drive) => imageOf(drive) === value(part, 'S4'))
      .concat(inside(part, 'arraySite', 'array', 'rank', 'segmentPool')),
  }[part.kind]?.() || [];
  return part.kind === 'partition' ? next : next.flatMap((one) => [one, ...below(one)]);
}

function drivesOf(part) {
  return distinct(below(part).filter((one) => one.kind === 'drive'));
}

/// From a drive to its array site, array, rank and pool.
function related(part) {
  const up = {
    drive: () => byKindAndId('arraySite', siteKey(value(part, 'S4'), characteristics(part).get('AS'))),
    arraySite: () => arrayOfSite.get(part.id),
    array: () => byKindAndId('rank', value(part, 'A1')),
    rank: () => byKindAndId('segmentPool', value(part, 'A1')),
  }[part.kind]?.();
  return up ? [up, ...related(up)] : [];
}

/// What a part of the logical configuration belongs to.
function around(part) {
  return [...related(part), ...ancestors(part).filter((one) => one.kind === 'partition')];
}

// --- Elements

const byElementId = (id) => document.getElementById(id);

function element(tag, attributes = {}, ...content) {
  return fill(document.createElement(tag), attributes, content);
}

function shape(tag, attributes = {}, ...content) {
  return fill(document.createElementNS('http://www.w3.org/2000/svg', tag), attributes, content);
}

function fill(made, attributes, content) {
  for (const [name, text] of Object.entries(attributes)) made.setAttribute(name, text);
  made.append(...content);
  return made;
}

const drawn = new Map(); // from a part's index to its element

/// Makes an element stand for a part: it is chosen with a click or the Enter key.
function stand(made, part) {
  made.classList.add('part');
  made.dataset.part = part.index;
  for (const listed of part.listings) drawn.set(listed.index, made);
  return made;
}

function titleOf(part) {
  return part.kind === 'partition' || part.kind === 'system' ? part.name : part.id || part.name;
}

function partButton(part, ...content) {
  return stand(element('button', { type: 'button' }, ...content), part);
}

/// A link to a part from beside the drawings.
function link(part, text = titleOf(part)) {
  const button = element('button', { type: 'button', class: 'link' }, text);
  button.addEventListener('click', () => choose(part, true));
  return button;
}

function definitions(rows) {
  return element('dl', {}, ...rows.filter(([, text]) => text !== '' && text !== undefined).map(
    ([term, text]) => element('div', {}, element('dt', {}, term), element('dd', {}, text))));
}

// --- Drawings, in millimetres

const unit = 44.45;
const width = 482.6;
const slotsInRow = 16;
const slotWidth = 25.4;
const ear = 30;
const rulerWidth = 74;
const post = 22;
const scale = 0.46; // pixels for each millimetre
const boxes = new WeakMap();

function box(part, x, y, w, h, label) {
  const rect = shape('rect', {
    x, y, width: w, height: h, rx: 3, class: part.kind, tabindex: -1, role: 'button', 'aria-label': label,
  });
  boxes.set(rect, { x: x + w / 2, y: y + h / 2 });
  return stand(rect, part);
}

function plain(kind, x, y, w, h) {
  return shape('rect', { x, y, width: w, height: h, rx: 3, class: kind });
}

function caption(text, x, y, kind = 'caption') {
  return shape('text', { x, y, class: kind, 'aria-hidden': 'true' }, text);
}

function describe(part) {
  const serial = value(part, 'SN');
  return `${part.singular} ${titleOf(part)}${serial && `, serial number ${serial}`}`;
}

/// The number at the end of a location code: slot 7 of "...-P1-D7".
function slotOf(part, letter) {
  const found = new RegExp(`-${letter}(\\d{1,3})$`).exec(part.id);
  return found ? Number(found[1]) : 0;
}

/// Drives by slot: those whose location code tells none stand in the slots that are left.
function inSlots(list) {
  const slots = new Map();
  const rest = [];
  for (const drive of list) {
    const slot = slotOf(drive, 'D');
    if (slot < 1 || slot > 240 || slots.has(slot)) rest.push(drive);
    else slots.set(slot, drive);
  }
  for (let slot = 1; rest.length > 0; ++slot) if (!slots.has(slot)) slots.set(slot, rest.shift());
  return slots;
}

function enclosureOf(part) {
  const within = part.listings.flatMap((listed) => inside(listed, 'drive'));
  const slots = inSlots(distinct(within).sort(byId));
  const rows = Math.max(1, Math.ceil(Math.max(0, ...slots.keys()) / slotsInRow));
  return { part, slots, rows, units: 3 * rows, number: enclosureNumber(part) };
}

function enclosureNumber(part) {
  const found = /-(\d+)$/.exec(value(part, 'R1'));
  return found ? Number(found[1]) : Infinity;
}

/// An enclosure: its number, its drives in slots, its cards and baffles beside them.
function drawEnclosure({ part, slots, rows, units, number: place }, x, y) {
  const height = units * unit - 2;
  const group = shape('g', {});
  const name = `${describe(part)}, ${slots.size} drives`;
  group.append(box(part, x, y, width, height, name));
  group.append(caption(place === Infinity ? '?' : String(place), x + ear / 2 + 1, y + height / 2, 'place'));
  const slotHeight = (height - 10) / rows - 4;
  for (let slot = 1; slot <= rows * slotsInRow; ++slot) {
    const left = x + ear + 2 + ((slot - 1) % slotsInRow) * slotWidth;
    const top = y + 7 + Math.floor((slot - 1) / slotsInRow) * (slotHeight + 4);
    const drive = slots.get(slot);
    group.append(drive ? box(drive, left, top, slotWidth - 3, slotHeight, `${describe(drive)}, slot ${slot}`)
      : plain('empty', left, top, slotWidth - 3, slotHeight));
  }
  drawCards(group, part, x + ear + 3 + slotsInRow * slotWidth, y + 7, height - 14);
  return group;
}

function drawCards(group, enclosure, x, y, height) {
  const within = enclosure.listings.flatMap((listed) => inside(listed, 'interfaceCard', 'baffle'));
  const cards = distinct(within).sort(byId);
  const step = height / Math.max(3, cards.length);
  cards.forEach((card, i) => group.append(box(card, x, y + i * step, 39, step - 3, describe(card))));
}

/// A row of power or cooling parts across the rack.
function drawRow(list, x, y, units) {
  const step = width / list.length;
  const group = shape('g', {});
  list.forEach((part, i) => {
    group.append(part.id === '' && !value(part, 'SN') ? plain('absent', x + i * step, y, step - 2, units * unit - 2)
      : box(part, x + i * step, y, step - 2, units * unit - 2, describe(part)));
  });
  if (list.length > 0) group.append(caption(`${list.length} ${list.length === 1 ? list[0].singular : list[0].plural}`,
    x + width / 2, y + units * unit / 2, 'row'));
  return group;
}

const rackRowsAbove = [['fanTray', 1], ['fanSenseCard', 1]];
const rackRowsBelow = [['powerController', 1], ['powerSupply', 4], ['battery', 2]];

function rowsOf(rack, kinds) {
  return kinds.map(([kind, units]) => ({ units, list: distinct(inside(rack, kind)).sort(byId) }))
    .filter(({ list }) => list.length > 0);
}

function sum(list) {
  return list.reduce((total, { units }) => total + units, 0);
}

function drawRack(rack, enclosures) {
  const above = rack ? rowsOf(rack, rackRowsAbove) : [];
  const below = rack ? rowsOf(rack, rackRowsBelow) : [];
  const units = Math.max(42, sum(above) + sum(enclosures) + sum(below));
  const x = rulerWidth + post;
  const drawing = frame(units);
  let y = post;
  for (const row of above) { drawing.append(drawRow(row.list, x, y, row.units)); y += row.units * unit; }
  y = post + (units - sum(below) - sum(enclosures)) * unit;
  for (const enclosure of [...enclosures].reverse()) {
    drawing.append(drawEnclosure(enclosure, x, y));
    y += enclosure.units * unit;
  }
  for (const row of below) { drawing.append(drawRow(row.list, x, y, row.units)); y += row.units * unit; }
  return drawing;
}

/// An empty rack with its ruler of units, counted from the bottom.
function frame(units) {
  const w = rulerWidth + 2 * post + width;
  const h = 2 * post + units * unit;
  const drawing = svg(w, h);
  drawing.append(plain('frame', rulerWidth, 0, w - rulerWidth, h), plain('bay', rulerWidth + post, post, width, units * unit));
  let ticks = '';
  for (let at = 0; at <= units; ++at) {
    const y = post + (units - at) * unit;
    ticks += `M${rulerWidth - (at % 5 === 0 ? 16 : 8)} ${y}H${rulerWidth}`;
    if (at % 5 === 0 && at > 0) drawing.append(caption(String(at), rulerWidth - 20, y + unit / 2, 'unit'));
  }
  drawing.append(shape('path', { d: ticks, class: 'tick' }));
  return drawing;
}

function svg(w, h) {
  return shape('svg', { viewBox: `0 0 ${w} ${h}`, width: Math.round(w * scale), height: Math.round(h * scale), role: 'group' });
}

function figure(drawing, title, note) {
  const made = element('figure', {}, element('figcaption', {}, title, element('span', {}, note)), drawing);
  drawing.setAttribute('aria-label', made.firstChild.textContent);
  drawing.querySelector('.part')?.setAttribute('tabindex', 0);
  return made;
}

/// An enclosure names its rack by MTMS and number within it; failing that, by the rack's number.
function rackOf(enclosure, racks) {
  const location = value(enclosure, 'R1');
  return racks.find((rack) => location.startsWith(`${value(rack, 'TM')}-${value(rack, 'SG')}-`) && value(rack, 'SG'))
    || racks.find((rack) => value(rack, 'R2') && value(rack, 'R2') === value(enclosure, 'R2'));
}

function drawRacks() {
  const racks = distinct(ofKind('rack'));
  const enclosures = distinct(ofKind('storageEnclosure')).map(enclosureOf);
  const groups = groupBy(enclosures, ({ part }) => rackOf(part, racks));
  const figures = byElementId('rack-figures');
  for (const rack of [...racks, undefined]) {
    const inRack = (groups.get(rack) || []).sort((a, b) => a.number - b.number || byId(a.part, b.part));
    if (!rack && inRack.length === 0) continue;
    const title = rack ? partButton(rack, `Rack ${value(rack, 'R2') || rack.id}`) : 'In no rack';
    if (rack) title.className = 'part link';
    const count = inRack.reduce((total, { slots }) => total + slots.size, 0);
    figures.append(figure(drawRack(rack, inRack), title,
      `${rack ? `${value(rack, 'TM')} ${value(rack, 'SG')} · ` : ''}${number.format(inRack.length)} enclosures · ${number.format(count)} drives`));
  }
  byElementId('racks').hidden = figures.childElementCount === 0;
}

/// A drawer 4 units high with its cards side by side; consoles, which have none, are flat.
function drawDrawer(part) {
  const kinds = ['controlCard', 'deviceAdapter', 'hostAdapter'];
  const cards = distinct(part.listings.flatMap((listed) => inside(listed, ...kinds))).sort(byId);
  const height = (part.kind === 'console' ? 1 : 4) * unit;
  const drawing = svg(width, height);
  drawing.append(box(part, 0, 0, width, height, `${describe(part)}, ${cards.length} cards`));
  const step = (width - 2 * ear) / Math.max(10, cards.length);
  cards.forEach((card, i) => {
    drawing.append(box(card, ear + i * step, 12, step - 4, height - 24, describe(card)));
    const slot = slotOf(card, 'C');
    if (slot) drawing.append(caption(`C${slot}`, ear + i * step + (step - 4) / 2, height / 2, 'slot'));
  });
  return drawing;
}

function drawDrawers() {
  const figures = byElementId('drawer-figures');
  for (const part of distinct(ofKind('processorComplex', 'ioEnclosure', 'console'))) {
    const kind = part.singular[0].toUpperCase() + part.singular.slice(1);
    figures.append(figure(drawDrawer(part), kind, titleOf(part)));
  }
  byElementId('drawers').hidden = figures.childElementCount === 0;
}

// --- Partitions and their storage

const fewHosts = 40;

function hostList(partition) {
  const hosts = hostsOf(partition);
  const list = element('ul', { class: 'hosts' });
  const add = (some) => list.append(...some.map(({ description, ports }) =>
    element('li', {}, description, element('span', { title: 'ports' }, `× ${ports}`))));
  add(hosts.slice(0, fewHosts));
  if (hosts.length > fewHosts) {
    const more = element('button', { type: 'button', class: 'link' }, `all ${number.format(hosts.length)} hosts`);
    more.addEventListener('click', () => { more.parentElement.remove(); add(hosts.slice(fewHosts)); });
    list.append(element('li', { class: 'more' }, more));
  }
  return hosts.length === 0 ? element('p', { class: 'none' }, 'No hosts.') : list;
}

function countTable(partition) {
  const values = [...namedValues(value(partition, 'U1'))];
  const groups = countGroups.map(([title, letter]) => {
    const counts = values.filter(([name]) => name.startsWith(letter));
    return counts.length === 0 ? '' : element('div', {}, element('h5', {}, title), element('ul', {},
      ...counts.map(([name, count]) => element('li', countMeanings[name] ? { title: countMeanings[name] } : {},
        element('span', {}, name), count))));
  });
  return element('div', { class: 'counts' }, ...groups);
}

function siteBox(site) {
  const count = drivesOf(site).length;
  return partButton(site, `S${site.id.slice(site.id.lastIndexOf('/S') + 2)}`,
    element('span', {}, count === 1 ? '1 drive' : `${count} drives`));
}

function arrayBox(array) {
  const space = characteristics(array);
  const title = `A${siteIds(array).map((id) => id.slice(id.lastIndexOf('/S') + 2)).join('+')}`;
  return element('div', { class: 'array' },
    partButton(array, title, element('span', {}, [space.get('RT'), space.get('AC')].filter(Boolean).join(' '))),
    ...sitesOf(array).map(siteBox));
}

function rankBox(rank) {
  const segments = characteristics(rank).get('ES');
  return element('div', { class: 'rank' },
    partButton(rank, rank.id.slice(rank.id.lastIndexOf('/') + 1), element('span', {}, `${segments ?? '?'} segments`)),
    ...(arraysOfRank.get(rank.id) || []).map(arrayBox));
}

function poolBox(pool) {
  const segments = characteristics(pool).get('ES');
  return element('div', { class: 'pool' },
    partButton(pool, pool.id.slice(pool.id.lastIndexOf('/') + 1), element('span', {}, `${segments ?? '?'} segments`)),
    ...(ranksOfPool.get(pool.id) || []).map(rankBox));
}

/// What the pools, ranks and arrays above do not lead to.
function strayBoxes(partition) {
  const stray = (kind, leads, make) => inside(partition, kind).filter((part) => !leads(part)).map(make);
  return [
    ...stray('rank', (rank) => byKindAndId('segmentPool', value(rank, 'A1')), rankBox),
    ...stray('array', (array) => byKindAndId('rank', value(array, 'A1')), arrayBox),
    ...stray('arraySite', (site) => arrayOfSite.get(site.id), siteBox),
  ];
}

function storageOf(partition) {
  const pools = inside(partition, 'segmentPool').map(poolBox);
  const strays = strayBoxes(partition);
  if (strays.length > 0) {
    pools.push(element('div', { class: 'pool stray' }, element('p', {}, 'In no pool'), ...strays));
  }
  return pools.length === 0 ? element('p', { class: 'none' }, 'No storage configuration.')
    : element('div', { class: 'pools' }, ...pools);
}

function partitionCard(partition) {
  const total = (kind) => {
    const list = inside(partition, kind);
    return list.length === 0 ? [] : [`${number.format(list.length)} ${list.length === 1 ? list[0].singular : list[0].plural}`];
  };
  const title = partButton(partition, partition.name || '(no name)');
  title.className = 'part plain';
  return element('article', { class: 'card' }, element('h3', {}, title),
    definitions([
      ['Image', value(partition, 'S4')], ['Microcode', value(partition, 'LE')],
      ['Node name', value(partition, 'NN')], ['Interconnect pool', value(partition, 'H1')],
      ['Identifier', partition.id],
    ]),
    element('h4', {}, 'Hosts'), hostList(partition),
    element('h4', {}, 'Logical configuration'), countTable(partition),
    element('h4', {}, 'Storage', element('span', {},
      ['segmentPool', 'rank', 'array', 'arraySite'].flatMap(total).join(', '))),
    storageOf(partition));
}

function drawPartitions() {
  const cards = ofKind('partition').map(partitionCard);
  byElementId('partition-cards').append(...cards);
  byElementId('partitions').hidden = cards.length === 0;
}

// --- Colours

function capacityText(drive) {
  const found = /^(-?\d+)MB$/.exec(characteristics(drive).get('DC') || '');
  return found ? `${number.format(Math.round(Number(found[1]) / 100) / 10)} GB` : 'unknown';
}

const colourings = [
  ['partition', (drive) => partitionOfImage.get(imageOf(drive))?.name || imageOf(drive)],
  ['array site', (drive) => `site ${characteristics(drive).get('AS')} of ${imageOf(drive)}`],
  ['capacity', capacityText],
  ['maker', (drive) => characteristics(drive).get('DM')],
  ['firmware level', (drive) => value(drive, 'LE')],
  ['part number', (drive) => value(drive, 'PN')],
  ['service state', (drive) => `state ${characteristics(drive).get('ST')}`],
];
const namedColours = 8; // --c0 to --c7
const legendLimit = 24;

function colourAt(index, count) {
  return count <= namedColours ? `var(--c${index})` : `hsl(${(index * 137.5) % 360} 52% var(--spread))`;
}

function colourBy(categoryOf) {
  const groups = new Map([...groupBy(drives, (drive) => categoryOf(drive) || 'unknown')]
    .sort(([a], [b]) => order.compare(a, b)));
  const legend = byElementId('legend');
  legend.replaceChildren();
  let index = 0;
  for (const [category, members] of groups) {
    const colour = colourAt(index++, groups.size);
    for (const drive of members) drawn.get(drive.index)?.style.setProperty('fill', colour);
    if (index <= legendLimit) legend.append(legendEntry(category, members, colour));
  }
  if (index > legendLimit) legend.append(element('li', { class: 'more' }, `and ${number.format(index - legendLimit)} more`));
}

function legendEntry(category, members, colour) {
  const swatch = element('i', {});
  swatch.style.background = colour;
  const button = element('button', { type: 'button', 'aria-pressed': 'false' }, swatch, category,
    element('span', {}, number.format(distinct(members).length)));
  button.addEventListener('click', () => {
    const on = button.getAttribute('aria-pressed') !== 'true';
    light(on ? members : null);
    button.setAttribute('aria-pressed', String(on));
  });
  return element('li', {}, button);
}

// --- What is lit, what is chosen

let lit = new Set();

/// Lights some parts and dims the others; null: all are as they were.
function light(some) {
  for (const made of lit) made.classList.remove('hit');
  for (const pressed of document.querySelectorAll('#legend [aria-pressed=true]')) pressed.setAttribute('aria-pressed', 'false');
  lit = new Set((some || []).map((part) => drawn.get(part.index)).filter(Boolean));
  for (const made of lit) made.classList.add('hit');
  document.body.classList.toggle('searching', some !== null);
}

let chosen = null;

function choose(part, bringIntoView = false) {
  drawn.get(chosen?.index)?.classList.remove('chosen');
  chosen = part;
  const made = drawn.get(part.index);
  made?.classList.add('chosen');
  if (bringIntoView) made?.scrollIntoView({ block: 'center', inline: 'center' });
  const ground = below(part);
  if (byElementId('query').value.trim() === '') light(ground.length > 0 ? [part, ...ground, ...around(part)] : null);
  showDetails(part);
}

function leave() {
  drawn.get(chosen?.index)?.classList.remove('chosen');
  const made = drawn.get(chosen?.index);
  chosen = null;
  byElementId('details').hidden = true;
  document.body.classList.remove('detailed');
  if (byElementId('query').value.trim() === '') light(null);
  made?.focus({ preventScroll: true });
}

function propertyTable(part) {
  const rows = part.properties.map(({ code, label, value: text }) => element('tr', {},
    element('th', { scope: 'row' }, code), element('td', {}, label), element('td', { class: 'value' }, text)));
  return element('table', { class: 'properties' },
    element('thead', {}, element('tr', {}, ...['Code', 'Label', 'Value'].map((text) => element('th', { scope: 'col' }, text)))),
    element('tbody', {}, ...rows));
}

function rawProperties(part) {
  const listed = part.listings;
  const tables = listed.map((one, i) => {
    if (listed.length === 1) return one.properties.length === 0 ? element('p', { class: 'none' }, 'None.') : propertyTable(one);
    const around = ancestors(one).map(titleOf).slice(1).join(' › ');
    return element('details', i === 0 ? { open: '' } : {}, element('summary', {}, around), propertyTable(one));
  });
  const note = listed.length > 1 ? `The document lists it ${listed.length} times.` : '';
  return [element('h3', {}, 'Properties'), ...(note ? [element('p', { class: 'none' }, note)] : []), ...tables];
}

function meanings(part) {
  const names = part.kind === 'drive' ? diskMeanings : spaceMeanings;
  const rows = [...characteristics(part)].map(([name, text]) => [names[name] || name, text]);
  return rows.length === 0 ? [] : [element('h3', {}, 'Characteristics'), definitions(rows)];
}

const fewParts = 60;

function partsInside(part) {
  const groups = groupBy(part.listings.flatMap((listed) => listed.children), (child) => child.plural);
  return [...groups].flatMap(([plural, list]) => {
    const links = distinct(list).slice(0, fewParts).map((child) => element('li', {}, link(child)));
    if (distinct(list).length > fewParts) links.push(element('li', { class: 'more' }, 'and more: search for them'));
    return [element('h3', {}, plural[0].toUpperCase() + plural.slice(1), element('span', {}, number.format(distinct(list).length))),
      element('ul', { class: 'links' }, ...links)];
  });
}

function relations(part) {
  const up = related(part).map((one) => [one.singular, link(one)]);
  const image = ['drive', 'storageEnclosure'].includes(part.kind) ? partitionOfImage.get(imageOf(part)) : null;
  if (image) up.push(['partition', link(image)]);
  const count = drivesOf(part).length;
  if (count > 0) up.push(['drives', `${number.format(count)}, lit in the racks`]);
  return up.length === 0 ? [] : [element('h3', {}, 'Belongs to'), definitions(up)];
}

function showDetails(part) {
  const close = element('button', { type: 'button', class: 'close', 'aria-label': 'Close the details' }, '×');
  close.addEventListener('click', leave);
  const path = ancestors(part).flatMap((one) => [link(one), ' › ']);
  const details = byElementId('details');
  details.replaceChildren(close, element('p', { class: 'eyebrow' }, part.singular),
    element('h2', {}, part.name || '(no name)'), element('p', { class: 'id' }, part.id),
    element('nav', { 'aria-label': 'Where it is' }, ...path.slice(0, -1)),
    ...relations(part), ...meanings(part), ...rawProperties(part), ...partsInside(part));
  details.hidden = false;
  details.scrollTop = 0;
  document.body.classList.add('detailed');
}

// --- Search

const resultLimit = 50;
let searchTexts = null;

/// What a part can be found by; what every part repeats of the facility is left out.
function searchText(part) {
  const values = part.properties.filter(({ code }) => !['S3', 'DS', 'YL'].includes(code) || part === system);
  return [part.singular, part.name, part.id, ...values.map((one) => one.value)].join('\n').toLowerCase();
}

const codes = new Set(parts.flatMap((part) => part.properties.map(({ code }) => code.toLowerCase())));

function matcher(query) {
  const words = query.toLowerCase().split(/\s+/).filter(Boolean).map((word) => {
    const [code, ...rest] = word.split(':');
    return rest.length > 0 && codes.has(code) ? { code, text: rest.join(':') } : { text: word };
  });
  return (part) => words.every(({ code, text }) => code === undefined ? searchTexts[part.index].includes(text)
    : part.properties.some((one) => one.code.toLowerCase() === code && one.value.toLowerCase().includes(text)));
}

function search() {
  const query = byElementId('query').value.trim();
  const results = byElementId('results');
  results.hidden = query === '';
  byElementId('hint').hidden = query !== '';
  if (query === '') {
    results.replaceChildren();
    byElementId('found').textContent = '';
    return light(null);
  }
  searchTexts ??= parts.map(searchText);
  const matches = parts.filter(matcher(query));
  const found = distinct(matches);
  light(matches);
  byElementId('found').textContent = found.length === 0 ? 'Nothing found.'
    : `${number.format(found.length)} ${found.length === 1 ? 'part' : 'parts'} found.`;
  const items = found.slice(0, resultLimit).map((part) => element('li', {}, link(part), element('span', {}, part.singular)));
  if (found.length > resultLimit) items.push(element('li', { class: 'more' }, `and ${number.format(found.length - resultLimit)} more`));
  results.replaceChildren(...items);
}

// --- Mouse and keyboard

function partAt(target) {
  const made = target instanceof Element ? target.closest('.part') : null;
  return made ? parts[Number(made.dataset.part)] : null;
}

/// The next part in the direction of an arrow key.
function neighbour(current, key) {
  const here = boxes.get(current);
  const vertical = key === 'ArrowUp' || key === 'ArrowDown';
  const sign = key === 'ArrowUp' || key === 'ArrowLeft' ? -1 : 1;
  let best = null;
  let least = Infinity;
  for (const candidate of current.ownerSVGElement.querySelectorAll('.part')) {
    const there = boxes.get(candidate);
    const along = sign * (vertical ? there.y - here.y : there.x - here.x);
    const across = Math.abs(vertical ? there.x - here.x : there.y - here.y);
    const distance = along + 3 * across;
    if (along > 1 && distance < least && candidate !== current) [best, least] = [candidate, distance];
  }
  return best;
}

function moveFocus(event) {
  const current = event.target;
  if (!boxes.has(current) || !event.key.startsWith('Arrow')) return;
  event.preventDefault();
  const next = neighbour(current, event.key);
  if (!next) return;
  current.setAttribute('tabindex', -1);
  next.setAttribute('tabindex', 0);
  next.focus();
}

function onKey(event) {
  if (event.key === '/' && !/^(INPUT|SELECT)$/.test(event.target.tagName)) {
    event.preventDefault();
    byElementId('query').focus();
  } else if (event.key === 'Escape') {
    byElementId('results').hidden = true;
    leave();
  } else if ((event.key === 'Enter' || event.key === ' ') && boxes.has(event.target)) {
    event.preventDefault();
    choose(partAt(event.target));
    byElementId('details').focus({ preventScroll: true });
  } else {
    moveFocus(event);
  }
}

function showTip(event) {
  const tip = byElementId('tip');
  const part = event.target.closest?.('svg .part') ? partAt(event.target) : null;
  tip.hidden = !part;
  if (!part) return;
  const capacity = part.kind === 'drive' ? capacityText(part) : '';
  tip.replaceChildren(element('b', {}, part.singular), ` ${titleOf(part)}`,
    element('span', {}, [value(part, 'SN'), capacity].filter(Boolean).join(' · ')));
  const left = Math.min(event.clientX + 14, innerWidth - tip.offsetWidth - 8);
  const above = event.clientY + tip.offsetHeight + 24 > innerHeight;
  tip.style.left = `${left}px`;
  tip.style.top = `${above ? event.clientY - tip.offsetHeight - 12 : event.clientY + 18}px`;
}

function listen() {
  let waiting = 0;
  byElementId('query').addEventListener('input', () => {
    clearTimeout(waiting);
    waiting = setTimeout(search, 120);
  });
  byElementId('colour').addEventListener('change', (event) => colourBy(colourings[event.target.selectedIndex][1]));
  document.addEventListener('click', (event) => {
    const part = partAt(event.target);
    if (part) choose(part);
    if (!event.target.closest('.field')) byElementId('results').hidden = true;
  });
  byElementId('query').addEventListener('focus', search);
  document.addEventListener('keydown', onKey);
  document.addEventListener('mousemove', showTip);
}

// --- The whole page

function drawHead() {
  document.title = `Inventory of ${system.name}`;
  const title = stand(byElementId('system'), system);
  title.textContent = system.name;
  const time = new Date(Number(data.timestamp.split('.')[0]) * 1000);
  const when = Number.isNaN(time.getTime()) ? data.timestamp : `${time.toISOString().slice(0, 19).replace('T', ' ')} UTC`;
  byElementId('facts').textContent = `Storage facility ${value(system, 'S3')}, collected ${when}`;
  for (const [, list] of groupBy(parts.filter((part) => part.counted), (part) => part.plural)) {
    const count = distinct(list).length;
    byElementId('summary').append(element('li', {}, element('b', {}, number.format(count)),
      count === 1 ? list[0].singular : list[0].plural));
  }
  byElementId('colour').append(...colourings.map(([name]) => element('option', {}, name)));
}

drawHead();
drawRacks();
drawDrawers();
drawPartitions();
colourBy(colourings[0][1]);
listen();
