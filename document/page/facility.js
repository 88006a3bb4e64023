// --- How parts belong together

function groupBy(list, keyOfItem) {
  const groups = new Map();
  for (const item of list) {
    const key = keyOfItem(item);
    if (!groups.has(key)) groups.set(key, []);
    groups.get(key).push(item);
  }
  return groups;
}

/// An enclosure names its rack by type, model and serial number, and its number within it; failing that, by the
/// rack's number.
const rackOfEnclosure = (() => {
  const byLocation = new Map();
  const byNumber = new Map();
  for (const rack of partsOf('rack')) {
    const serial = value(rack, 'serial');
    if (serial !== null) byLocation.set(`${value(rack, 'type_model')}-${serial}-`, rack);
    if (value(rack, 'rack') !== null && !byNumber.has(value(rack, 'rack'))) byNumber.set(value(rack, 'rack'), rack);
  }
  return new Map(partsOf('storageEnclosure').map((enclosure) => {
    const location = property(enclosure, 'R1');
    return [enclosure, byLocation.get(location.slice(0, location.lastIndexOf('-') + 1))
      ?? byNumber.get(value(enclosure, 'rack')) ?? -1];
  }));
})();

const byNumberAndId = (name) => (a, b) => (value(a, name) ?? Infinity) - (value(b, name) ?? Infinity)
  || compareTexts(idOf(a), idOf(b));

/// The enclosures of a rack, or of none (-1), in the order of their numbers.
function enclosuresOf(rack) {
  const inRack = [...rackOfEnclosure].filter(([, of]) => of === rack);
  return inRack.map(([enclosure]) => enclosure).sort(byNumberAndId('enclosure'));
}

const racks = partsOf('rack').sort(byNumberAndId('rack'));
const racksAndNone = enclosuresOf(-1).length > 0 ? [...racks, -1] : racks;

const driveTable = tablesOf('drive')[0];
const drivesIn = (enclosure) => childrenOf(enclosure, 'drive');
const isHome = new Set(['rack', 'storageEnclosure', 'processorComplex', 'ioEnclosure', 'console', 'partition']);

/// The drives of an enclosure by slot, the first at 0; what has no slot, or one that is taken, follows behind.
const layouts = new Map();
function layoutOf(enclosure) {
  if (!layouts.has(enclosure)) layouts.set(enclosure, layOut(enclosure));
  return layouts.get(enclosure);
}

const mostSlots = 1000;

function layOut(enclosure) {
  const slots = [];
  const loose = [];
  const drives = drivesIn(enclosure);
  for (const drive of [...drives.filter(isCurrent), ...drives.filter(isOld)]) {
    const slot = value(drive, 'slot');
    if (!(slot >= 1 && slot <= mostSlots) || slots[slot - 1] !== undefined) loose.push(drive);
    else slots[slot - 1] = drive;
  }
  const all = [...Array.from(slots, (drive) => drive ?? -1), ...loose];
  const rows = all.length <= 24 ? 1 : Math.ceil(all.length / 48);
  return { all, slots: slots.length, rows, columns: Math.max(8, Math.ceil(all.length / rows)) };
}

/// What a part of the logical configuration belongs to: the kind and the column with its number.
const belongsTo = {
  drive: ['arraySite', 'array_site'], arraySite: ['array', 'array'], array: ['rank', 'rank'], rank: ['segmentPool', 'pool'],
};

const { above, below } = (() => {
  const up = new Int32Array(partCount).fill(-1);
  const down = new Map();
  for (const [word, [upper, column]] of Object.entries(belongsTo)) {
    const keyed = (part) => [`${value(part, 'image')} ${value(part, 'number')}`, part];
    const numbers = new Map(partsOf(upper).filter(isCurrent).map(keyed));
    for (const table of tablesOf(word)) join(table, column, numbers, up, down);
  }
  return { above: (part) => up[part], below: (part) => down.get(part) ?? [] };
})();

function join(table, column, numbers, up, down) {
  if (table.rows === 0) return;
  const images = table.byName.get('image').cells;
  const ofColumn = table.byName.get(column).cells;
  const known = new Map();
  for (let row = 0; row < table.rows - table.old; ++row) {
    const key = images.indexOf(row) * ofColumn.values.length + ofColumn.indexOf(row);
    if (!known.has(key)) known.set(key, numbers.get(`${images.of(row)} ${ofColumn.of(row)}`) ?? -1);
    const upper = known.get(key);
    if (upper < 0) continue;
    up[table.first + row] = upper;
    if (!down.has(upper)) down.set(upper, []);
    down.get(upper).push(table.first + row);
  }
}

/// From a drive to its array site, array, rank and pool.
function related(part) {
  const upper = above(part);
  return upper < 0 ? [] : [upper, ...related(upper)];
}

function drivesUnder(part) {
  return wordOf(part) === 'drive' ? [part] : below(part).flatMap(drivesUnder);
}

const partitions = partsOf('partition').filter(isCurrent);
const partitionOfImage = new Map(partitions.map((part) => [value(part, 'image'), part]));
const isPartition = (part) => wordOf(part) === 'partition';
const partitionOf = (part) => upwards(part).find(isPartition) ?? partitionOfImage.get(value(part, 'image'));

/// The capacity of drives; those whose capacity the document does not tell count for none.
function capacityOf(drives) {
  return drives.reduce((total, drive) => total + Number(value(drive, 'capacity_mb') ?? 0), 0);
}

const isPool = (part) => wordOf(part) === 'segmentPool';

/// The drives of each partition by pool; those that lead to no pool go by null.
const drivesByPool = (() => {
  const byPartition = new Map(partitions.map((part) => [part, new Map()]));
  const poolOf = new Map();
  for (const drive of partsIn(driveTable)) {
    if (isOld(drive)) continue;
    const site = above(drive);
    if (!poolOf.has(site)) poolOf.set(site, site < 0 ? null : related(site).find(isPool) ?? null);
    const pools = byPartition.get(partitionOfImage.get(value(drive, 'image')));
    if (!pools) continue;
    const pool = poolOf.get(site);
    if (!pools.has(pool)) pools.set(pool, []);
    pools.get(pool).push(drive);
  }
  return byPartition;
})();

/// The part whose drawing shows a part: itself, or the nearest around it; -1 where none does.
function homeOf(part) {
  const logical = upwards(part).find((one) => isHome.has(wordOf(one)));
  return logical ?? -1;
}
