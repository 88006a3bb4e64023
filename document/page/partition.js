// --- A partition: its hosts, its counts, its storage from pools down to array sites

function countTable(partition) {
  const counted = tableOfPart(partition).columns.filter((column) => isCount(column) && valueIn(partition, column) !== null);
  const rows = counted.map((column) => element('tr', {},
    element('th', { scope: 'row' }, capital(column.meaning), element('code', {}, column.name)),
    element('td', {}, shown(column, valueIn(partition, column)))));
  return rows.length === 0 ? [] : [section('Counts', element('table', { class: 'counts' }, element('tbody', {}, ...rows)))];
}

function numbered(part) {
  const number = value(part, 'number');
  return number === null ? titleOf(part) : `${capital(tableOfPart(part).singular)} ${number}`;
}

const toldOfLogical = { array: ['raid_type', 'configuration', 'capacity_mb'], rank: ['segments'], arraySite: ['capacity_mb', 'rpm'] };

function logicalPart(part) {
  const own = (toldOfLogical[wordOf(part)] ?? []).map((name) => shownValue(part, name) + (name === 'segments' ? ' segments' : ''));
  const drives = wordOf(part) === 'arraySite' ? amount(below(part).length, driveTable) : '';
  const made = element('div', { class: `logical ${wordOf(part)}` }, link(part, numbered(part)), element('span', {}, facts(...own, drives)));
  const lower = below(part).filter((one) => wordOf(one) !== 'drive');
  if (lower.length > 0) made.append(longList(lower, logicalPart));
  return made;
}

function poolEntry(partition, pool, open) {
  const drives = drivesByPool.get(partition).get(pool) ?? [];
  const told = facts(`${shownValue(pool, 'segments') || '?'} segments`, `${count(below(pool).length)} ranks`,
    `${capacity(capacityOf(drives))} in ${amount(drives.length, driveTable)}`);
  const entry = element('details', { class: 'pool' }, element('summary', {}, numbered(pool), element('span', {}, told)));
  const draw = () => {
    if (!entry.open || entry.childElementCount > 1) return;
    entry.append(element('p', {}, link(pool, 'Its properties')), longList(below(pool), logicalPart));
    markChosen();
  };
  entry.addEventListener('toggle', draw);
  entry.open = open;
  if (open) draw();
  return entry;
}

function storageOf(partition) {
  const pools = inside(partition, 'segmentPool').filter(isCurrent);
  const chosen = partOfKey(state.part);
  const around = chosen < 0 ? [] : [chosen, ...related(chosen)];
  const stray = inside(partition, 'rank', 'array', 'arraySite').filter((part) => isCurrent(part) && above(part) < 0);
  const content = pools.map((pool) => poolEntry(partition, pool, pools.length <= 1 || around.includes(pool)));
  if (stray.length > 0) {
    content.push(element('h3', {}, 'In no pool', element('span', {}, count(stray.length))), longList(stray, logicalPart));
  }
  return content.length === 0 ? [] : [section('Storage', ...content)];
}

function hostsIn(partition) {
  const hosts = childrenOf(partition, 'host');
  return hosts.length === 0 ? [] : [section('Hosts', longList(hosts, (host) => {
    const made = link(host, nameOf(host), element('span', {}, `${shownValue(host, 'ports')} ports`));
    fill(made, { class: `${changeOf(host)} ${isLit(host) ? '' : 'dim'}` }, []);
    return made;
  }, { class: 'tiles' }))];
}

function drawPartition(partition) {
  const own = ['image', 'firmware', 'wwnn'].map((name) => shownValue(partition, name));
  return [heading(partition, `Partition ${titleOf(partition)}`, ...own), propertiesButton(partition),
    ...(drivesByPool.has(partition) ? [section('Capacity of drives by pool', poolShares(partition))] : []),
    ...storageOf(partition), ...hostsIn(partition), ...countTable(partition)];
}
