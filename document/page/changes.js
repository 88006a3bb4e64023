// --- What happened between two documents

const changeSigns = { added: '+', removed: '−', moved: '→', replaced: '⇄', changed: '≠' };
/// What was done to the machine comes before what it did to itself.
const ofWeight = ['replaced', 'removed', 'added', 'moved', 'changed'];
const allChanges = (data.changes?.changes ?? []).sort((a, b) => ofWeight.indexOf(a.change) - ofWeight.indexOf(b.change));

const changesByPart = (() => {
  const known = new Map();
  if (allChanges.length === 0) return known;
  const places = new Map(); // of the parts by kind and identifier, those of either document
  for (let part = 0; part < partCount; ++part) {
    const key = `${wordOf(part)} ${isOld(part)} ${hostKey(part)}${idOf(part)}`;
    if (!places.has(key)) places.set(key, part);
  }
  for (const change of allChanges) {
    const id = change.kind === 'host' ? change.name : change.id;
    const host = change.kind === 'host' ? `${change.partition} ` : '';
    change.part = places.get(`${change.kind} ${change.change === 'removed'} ${host}${id}`) ?? -1;
    if (!known.has(change.part)) known.set(change.part, []);
    known.get(change.part).push(change);
  }
  return known;
})();

function hostKey(part) {
  return wordOf(part) === 'host' ? `${value(part, 'partition')} ` : '';
}

/// What happened to the part, in a word; with a part that came or went, the parts inside it did.
function changeOf(part) {
  if (!data.changes) return '';
  const own = changesByPart.get(part);
  if (own) return own[0].change;
  if (isOld(part)) return 'removed';
  const around = upwards(part).slice(1).find((one) => changesByPart.has(one));
  return around !== undefined && changesByPart.get(around)[0].change === 'added' ? 'added' : '';
}

const signOf = (part) => changeSigns[changeOf(part)] ?? '';

function oldAndNew({ label, item, old, new: now, column }) {
  const text = (one) => (one === null ? '(none)' : one === '' ? '(empty)' : one);
  return element('li', {}, `${column ? column.replaceAll('_', ' ') : label}${item && !column ? ` ${item}` : ''} `,
    element('del', {}, text(old)), ' → ', element('ins', {}, text(now)));
}

function oldPlace(change) {
  const told = ['rack', 'enclosure', 'slot'].filter((name) => change[`old_${name}`] !== undefined);
  const text = told.map((name) => `${name} ${change[`old_${name}`]}`).join(', ');
  return text === '' || change.part < 0 || text === placeOf(change.part) ? change.from : text;
}

function changeFacts(change) {
  const facts = [];
  if (change.change === 'moved') facts.push(element('p', {}, `from ${oldPlace(change)}`));
  if (change.parts > 0) facts.push(element('p', {}, `with ${count(change.parts)} parts`));
  if (change.values.length > 0) facts.push(element('ul', {}, ...change.values.map(oldAndNew)));
  return facts;
}

const signed = (word) => element('b', { class: `sign ${word}` }, `${changeSigns[word]} ${word}`);

function changeEntry(change) {
  const { part } = change;
  const title = change.kind === 'host' ? change.name : part < 0 ? change.id || change.name : titleOf(part);
  const place = part < 0 ? '' : placeOf(part);
  const named = part < 0 ? title : link(part, `${tableOfPart(part).singular} ${place ? `in ${place}` : title}`);
  return element('div', { class: 'change' }, signed(change.change), ' ', named,
    element('p', { class: 'id' }, place ? title : ''), ...changeFacts(change));
}

function changeSection() {
  const counts = [...groupBy(allChanges, (change) => change.change)].map(([word, list]) => `${count(list.length)} ${word}`);
  const all = amount(allChanges.length, { singular: 'change', plural: 'changes' });
  const summary = allChanges.length === 0 ? 'Nothing differs.' : `${all}: ${counts.join(', ')}.`;
  const { missing } = data.changes;
  const file = (name) => name.slice(name.lastIndexOf('/') + 1);
  return element('section', { id: 'changes' }, element('h2', {}, 'What happened'),
    element('p', {}, `From ${file(data.changes.old)} to ${file(data.changes.new)}. ${summary}`),
    missing.length === 0 ? '' : note(`Incomplete: ${missing.join('; ')}. What is missing for that reason is told as no change.`, 'notice'),
    longList(allChanges, changeEntry, {}, 100));
}

function changesOf(part) {
  const own = changesByPart.get(part) ?? [];
  if (own.length === 0 && changeOf(part) === '') return [];
  if (own.length === 0) return [element('p', {}, signed(changeOf(part)), ' with what it is in')];
  return own.map((change) => element('div', { class: 'change' }, signed(change.change), ...changeFacts(change)));
}
