// --- A rack, and an enclosure with its slots and cards

function heading(part, title, ...facts) {
  const way = upwards(part).slice(1).filter((one) => isHome.has(wordOf(one))).reverse();
  const rack = rackOfEnclosure.get(part) ?? -1;
  const links = [linkTo({ view: '', at: '', part: '' }, 'Overview'), ...(rack < 0 ? [] : [link(rack, rackTitle(rack))]), ...way.map((one) => link(one))];
  return element('div', { class: 'heading' },
    element('nav', { 'aria-label': 'Where this is' }, ...links.flatMap((one) => [one, ' › '])),
    element('h2', { id: 'view', tabindex: '-1' }, title),
    element('p', {}, facts.filter(Boolean).join(' · ')));
}

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
  const made = link(enclosure, element('b', {}, element('span', { class: 'unseen' }, 'Enclosure '), String(value(enclosure, 'enclosure') ?? '?')),
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

function shelves(enclosures) {
  const made = [];
  enclosures.forEach((enclosure, at) => {
    const gap = gapBefore(enclosures, at);
    if (gap) made.unshift(element('li', { class: 'gap' }, gap[0] === gap[1] ? `No enclosure ${gap[0]}` : `No enclosures ${gap[0]} to ${gap[1]}`));
    made.unshift(shelf(enclosure));
  });
  return element('ol', { id: 'shelves' }, ...made);
}

/// The parts inside that are not drawn already, by kind.
function otherParts(part, ...drawn) {
  const lists = groupBy(childrenOf(part).filter((child) => !drawn.includes(wordOf(child))), wordOf);
  return [...lists].map(([, list]) => element('div', { class: 'parts' },
    element('h3', {}, capital(list.length === 1 ? tableOfPart(list[0]).singular : tableOfPart(list[0]).plural), element('span', {}, count(list.length))),
    longList(list.sort((a, b) => compareTexts(idOf(a), idOf(b))), tile, { class: 'tiles' })));
}

function tile(part) {
  const made = link(part, element('b', {}, titleOf(part)), element('span', {}, [changeOf(part), shownValue(part, 'serial')].filter(Boolean).join(' · ')));
  fill(made, { class: `${changeOf(part)} ${isLit(part) ? '' : 'dim'}` }, []);
  return made;
}

function absentFrom(part) {
  const words = [...groupBy(data.absent.filter(([, around]) => around === part), ([word]) => word)];
  return words.length === 0 ? [] : [element('p', { class: 'note' },
    `The document has places without a part here: ${words.map(([word, places]) => amount(places.length, tablesOf(word)[0])).join(', ')}.`)];
}

function drawRack(rack) {
  const enclosures = enclosuresOf(rack);
  const facts = rack < 0 ? [] : [shownValue(rack, 'type_model'), shownValue(rack, 'serial')];
  const drives = enclosures.flatMap(drivesIn);
  return [heading(rack, rackTitle(rack), ...facts, `${count(enclosures.length)} enclosures`, sharesText(drives)),
    neighbours(racks, rack, rackTitle), tools(drives), element('div', { class: 'cabinet' }, shelves(enclosures)),
    element('p', { class: 'note' }, assumed), ...(rack < 0 ? [] : [...otherParts(rack), ...absentFrom(rack)])];
}

// --- An enclosure

function slotCell(drive, at, slots) {
  const number = at < slots ? String(at + 1) : '–';
  if (drive < 0) return element('li', { class: 'free' }, element('span', {}, number));
  const colours = colouring();
  const group = colours.groups[colours.of(drive)];
  const made = link(drive, element('i', { class: group.mark }), element('span', {}, `${signOf(drive)} ${number}`.trim()));
  fill(made, { class: isLit(drive) ? 'slot' : 'slot dim', tabindex: '-1', 'aria-label': `Slot ${`${signOf(drive)} ${number}`.trim()}, ${describe(drive)}, ${colours.label} ${group.text}` }, []);
  made.addEventListener('pointermove', (event) => showTip(drive, event));
  made.addEventListener('pointerleave', hideTip);
  return element('li', {}, made);
}

function drawSlots(enclosure) {
  const { all, slots } = layoutOf(enclosure);
  if (all.length === 0) return [];
  const most = 2000;
  const list = element('ol', { id: 'slots', 'aria-label': 'Slots' }, ...all.slice(0, most).map((drive, at) => slotCell(drive, at, slots)));
  return [roving(list, 'a'), ...(all.length > most ? [element('p', { class: 'note' }, `The first ${count(most)} of ${count(all.length)} are drawn.`)] : [])];
}

function drawEnclosure(enclosure) {
  const drives = drivesIn(enclosure);
  const rack = rackOfEnclosure.get(enclosure) ?? -1;
  const storage = wordOf(enclosure) === 'storageEnclosure';
  const title = storage ? capital(enclosureTitle(enclosure)) : capital(tableOfPart(enclosure).singular);
  const chooser = button('Its properties', () => go({ part: keyOf(enclosure) }), { class: 'link' });
  return [heading(enclosure, title, titleOf(enclosure), storage ? sharesText(drives) : insideText(enclosure)), chooser,
    ...(storage ? [neighbours(enclosuresOf(rack), enclosure, (one) => `Enclosure ${value(one, 'enclosure') ?? titleOf(one)}`), tools(drives)] : []),
    ...drawSlots(enclosure), ...otherParts(enclosure, 'drive'), ...absentFrom(enclosure)];
}
