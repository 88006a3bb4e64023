// --- Everything that the document tells of one part

function propertyTable(part) {
  const properties = propertiesOf(part);
  if (properties.length === 0) return element('p', { class: 'none' }, 'None.');
  const head = ['Code', 'Label', 'Value'].map((text) => element('th', { scope: 'col' }, text));
  return element('table', { class: 'properties' }, element('thead', {}, element('tr', {}, ...head)),
    element('tbody', {}, ...properties.map(({ code, label, text }) => element('tr', {},
      element('th', { scope: 'row' }, code), element('td', {}, label), element('td', { class: 'value' }, text)))));
}

function columnList(part) {
  const told = tableOfPart(part).columns.filter((column) => !toldByOthers.has(column.name) && column.name !== 'id');
  return definitions(told.map((column) => [labelOf(column), shown(column, valueIn(part, column)), column.meaning]));
}

function relations(part) {
  const partition = partitionOf(part);
  const rows = [...related(part), ...(partition === undefined || partition === part ? [] : [partition])]
    .map((one) => [tableOfPart(one).singular, link(one, numbered(one))]);
  const drives = wordOf(part) === 'drive' ? [] : drivesUnder(part);
  if (drives.length > 0) {
    const query = `under:"${keyOf(part).replaceAll('"', '')}"`;
    rows.push(['stands on', linkTo({ view: '', at: '', q: query }, `${amount(drives.length, driveTable)}: light them in the racks`)]);
  }
  return rows.length === 0 ? [] : [element('h3', {}, 'Belongs to'), definitions(rows)];
}

function listedNote(part) {
  const times = timesListed(part);
  const text = `The document lists it ${count(times)} times: once for each partition that sees it.`;
  return times > 1 ? [note(text, 'none')] : [];
}

function showDetails(part) {
  const details = byElementId('details');
  details.hidden = part < 0;
  document.body.classList.toggle('detailed', part >= 0);
  if (part < 0) return details.replaceChildren();
  const close = button('×', closeDetails, { class: 'close', 'aria-label': 'Close the details' });
  const way = upwards(part).slice(1, -1).reverse().flatMap((one) => [link(one, shortTitle(one)), ' › ']);
  details.replaceChildren(close, element('p', { class: 'eyebrow' }, capital(tableOfPart(part).singular)),
    element('h2', {}, placeOf(part) ? capital(placeOf(part)) : titleOf(part)), element('p', { class: 'id' }, idOf(part)),
    element('p', { class: 'none' }, nameOf(part)),
    element('nav', { 'aria-label': 'What it is in' }, ...way.slice(0, -1)),
    ...changesOf(part), columnList(part), ...relations(part), ...listedNote(part),
    element('h3', {}, 'As the document has it'), propertyTable(part), ...insideList(part));
  details.scrollTop = 0;
}

function insideList(part) {
  const lists = groupBy(childrenOf(part).filter(isCurrent), wordOf);
  return [...lists].flatMap(([, list]) => [
    element('h3', {}, capital(tableOfPart(list[0]).plural), element('span', {}, count(list.length))),
    longList(list, (child) => link(child), { class: 'links' })]);
}

function closeDetails() {
  const part = state.part;
  go({ part: '' }, true);
  const drawn = part === '' ? null : document.querySelector(`#main [data-part="${partOfKey(part)}"]`);
  (drawn ?? byElementId('view') ?? byElementId('main')).focus({ preventScroll: true });
}
