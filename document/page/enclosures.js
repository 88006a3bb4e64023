// --- A rack, and an enclosure with its slots and cards

const overviewLink = () => linkTo({ view: '', at: '', part: '' }, 'Overview');

function heading(part, title, ...told) {
  const way = upwards(part).slice(1).filter((one) => isHome.has(wordOf(one))).reverse();
  const rack = rackOfEnclosure.get(part) ?? -1;
  const links = [overviewLink(), ...(rack < 0 ? [] : [link(rack, rackTitle(rack))]), ...way.map((one) => link(one))];
  return element('div', { class: 'heading' },
    element('nav', { 'aria-label': 'Where this is' }, ...links.flatMap((one) => [one, ' › '])),
    element('h2', { id: 'view', tabindex: '-1' }, title),
    element('p', {}, facts(...told)));
}

const propertiesButton = (part) => button('Its properties', () => go({ part: keyOf(part) }), { class: 'link' });

function neighbours(list, part, title) {
  const at = list.indexOf(part);
  const made = (one, arrow) => (one === undefined ? [] : [link(one, arrow === '‹' ? `‹ ${title(one)}` : `${title(one)} ›`)]);
  return element('p', { class: 'neighbours' }, ...made(list[at - 1], '‹'), ...made(list[at + 1], '›'));
}

const tools = (drives) => element('div', { class: 'tools' }, colourChoice(), legend(drives));

function shelf(enclosure) {
  const layout = layoutOf(enclosure);
  const drives = drivesIn(enclosure);
  const place = element('span', { class: 'cells' });
  place.style.height = `${layout.rows === 1 ? 34 : layout.rows * 14}px`;
  const number = String(value(enclosure, 'enclosure') ?? '?');
  const made = link(enclosure, element('b', {}, element('span', { class: 'unseen' }, 'Enclosure '), number),
    drawLater(place, () => drawCells(layout)), element('span', { class: 'facts' }, sharesText(drives)));
  fill(made, { class: `shelf ${changeOf(enclosure)}` }, []);
  place.addEventListener('click', (event) => {
    const drive = driveAt(place, layout, event);
    if (drive < 0 || event.ctrlKey || event.metaKey || event.shiftKey) return;
    event.preventDefault();
    event.stopPropagation();
    go(addressOfPart(drive));
  });
  place.addEventListener('pointermove', (event) => showTip(driveAt(place, layout, event), event));
  place.addEventListener('pointerleave', hideTip);
  return element('li', {}, made);
}

const gapText = ([from, to]) => (from === to ? `No enclosure ${from}` : `No enclosures ${from} to ${to}`);

function shelves(enclosures) {
  const made = [];
  enclosures.forEach((enclosure, at) => {
    const gap = gapBefore(enclosures, at);
    if (gap) made.unshift(element('li', { class: 'gap' }, gapText(gap)));
    made.unshift(shelf(enclosure));
  });
  return element('ol', { id: 'shelves' }, ...made);
}

function kindHeading(list) {
  const { singular, plural } = tableOfPart(list[0]);
  return element('h3', {}, capital(list.length === 1 ? singular : plural), element('span', {}, count(list.length)));
}

/// The parts inside that are not drawn already, by kind.
function otherParts(part, ...drawn) {
  const lists = groupBy(childrenOf(part).filter((child) => !drawn.includes(wordOf(child))), wordOf);
  return [...lists].map(([, list]) => element('div', { class: 'parts' },
    kindHeading(list),
    longList(list.sort((a, b) => compareTexts(idOf(a), idOf(b))), tile, { class: 'tiles' })));
}

function tile(part) {
  const told = facts(changeOf(part), shownValue(part, 'serial'));
  const made = link(part, element('b', {}, titleOf(part)), element('span', {}, told));
  fill(made, { class: `${changeOf(part)} ${isLit(part) ? '' : 'dim'}` }, []);
  return made;
}

function absentFrom(part) {
  const words = [...groupBy(data.absent.filter(([, around]) => around === part), ([word]) => word)];
  const amounts = words.map(([word, places]) => amount(places.length, tablesOf(word)[0]));
  return words.length === 0 ? [] : [note(`The document has places without a part here: ${amounts.join(', ')}.`)];
}

function drawRack(rack) {
  const enclosures = enclosuresOf(rack);
  const own = rack < 0 ? [] : [shownValue(rack, 'type_model'), shownValue(rack, 'serial')];
  const drives = enclosures.flatMap(drivesIn);
  return [heading(rack, rackTitle(rack), ...own, `${count(enclosures.length)} enclosures`, sharesText(drives)),
    neighbours(racks, rack, rackTitle), tools(drives), element('div', { class: 'cabinet' }, shelves(enclosures)),
    note(assumed), ...(rack < 0 ? [] : [...otherParts(rack), ...absentFrom(rack)])];
}

// --- An enclosure

function slotCell(drive, at, slots) {
  const number = at < slots ? String(at + 1) : '–';
  if (drive < 0) return element('li', { class: 'free' }, element('span', {}, number));
  const colours = colouring();
  const group = colours.groups[colours.of(drive)];
  const text = `${signOf(drive)} ${number}`.trim();
  const made = link(drive, element('i', { class: group.mark }), element('span', {}, text));
  const heard = `Slot ${text}, ${describe(drive)}, ${colours.label} ${group.text}`;
  fill(made, { class: isLit(drive) ? 'slot' : 'slot dim', tabindex: '-1', 'aria-label': heard }, []);
  made.addEventListener('pointermove', (event) => showTip(drive, event));
  made.addEventListener('pointerleave', hideTip);
  return element('li', {}, made);
}

function drawSlots(enclosure) {
  const { all, slots } = layoutOf(enclosure);
  if (all.length === 0) return [];
  const most = 2000;
  const cells = all.slice(0, most).map((drive, at) => slotCell(drive, at, slots));
  const list = roving(element('ol', { id: 'slots', 'aria-label': 'Slots' }, ...cells), 'a');
  return all.length > most ? [list, note(`The first ${count(most)} of ${count(all.length)} are drawn.`)] : [list];
}

function drawEnclosure(enclosure) {
  const drives = drivesIn(enclosure);
  const rack = rackOfEnclosure.get(enclosure) ?? -1;
  const storage = wordOf(enclosure) === 'storageEnclosure';
  const title = storage ? capital(enclosureTitle(enclosure)) : capital(tableOfPart(enclosure).singular);
  const named = (one) => `Enclosure ${value(one, 'enclosure') ?? titleOf(one)}`;
  return [heading(enclosure, title, titleOf(enclosure), storage ? sharesText(drives) : insideText(enclosure)),
    propertiesButton(enclosure), ...(storage ? [neighbours(enclosuresOf(rack), enclosure, named), tools(drives)] : []),
    ...drawSlots(enclosure), ...otherParts(enclosure, 'drive'), ...absentFrom(enclosure)];
}
