// --- The search field: what it finds is listed below it, and Enter goes there

const mostListed = 50;
let active = -1;

function resultItem(part, at) {
  const place = placeOf(part) || (parentOf(part) > 0 ? titleOf(parentOf(part)) : '');
  const made = element('li', { role: 'option', id: `result-${at}`, 'aria-selected': 'false' },
    element('b', {}, titleOf(part)), element('span', {}, facts(tableOfPart(part).singular, place, changeOf(part))));
  made.addEventListener('click', () => goToResult(at));
  return made;
}

function tableItem(found, at) {
  const made = element('li', { role: 'option', id: `result-${at}`, 'aria-selected': 'false' },
    element('b', {}, 'All as a table'), element('span', {}, count(found.length)));
  made.addEventListener('click', () => goToResult(at));
  return made;
}

function showResults() {
  const { hits, found } = search(state.q);
  const results = byElementId('results');
  active = -1;
  byElementId('query').removeAttribute('aria-activedescendant');
  const all = found.length === 0 ? 'Nothing' : amount(found.length, { singular: 'part', plural: 'parts' });
  byElementId('found').textContent = hits === null ? '' : `${all} found.`;
  byElementId('hint').hidden = hits !== null;
  const listed = found.slice(0, mostListed);
  results.replaceChildren(...listed.map(resultItem), ...(found.length > 1 ? [tableItem(found, listed.length)] : []));
  openResults(found.length > 0 && document.activeElement === byElementId('query'));
}

function openResults(open) {
  byElementId('results').hidden = !open;
  byElementId('query').setAttribute('aria-expanded', String(open));
}

function activate(at) {
  const items = byElementId('results').children;
  items[active]?.setAttribute('aria-selected', 'false');
  active = (at + items.length) % items.length;
  items[active].setAttribute('aria-selected', 'true');
  items[active].scrollIntoView({ block: 'nearest' });
  byElementId('query').setAttribute('aria-activedescendant', items[active].id);
}

/// The drawing with the hit comes into view; the focus stays in the field, so that the next hit is a key away.
function goToResult(at) {
  const { found } = search(state.q);
  const listed = Math.min(found.length, mostListed);
  openResults(false);
  if (at < listed) return go(addressOfPart(found[at]));
  const kinds = new Set(found.map(wordOf));
  go({ view: 'table', kind: kinds.has(state.kind) ? state.kind : wordOf(found[0]), at: '', part: '', page: '1' });
}

function onQueryKey(event) {
  const items = byElementId('results').children;
  if (items.length > 0 && (event.key === 'ArrowDown' || event.key === 'ArrowUp')) {
    event.preventDefault();
    openResults(true);
    activate(event.key === 'ArrowDown' ? active + 1 : active < 0 ? items.length - 1 : active - 1);
  } else if (event.key === 'Enter' && items.length > 0) {
    event.preventDefault();
    takeQuery();
    if (byElementId('results').children.length > 0) goToResult(Math.max(active, 0));
  } else if (event.key === 'Escape' && !byElementId('results').hidden) {
    event.preventDefault();
    event.stopPropagation();
    openResults(false);
  }
}

let waitingQuery = 0;

/// What is typed becomes the search now.
function takeQuery() {
  clearTimeout(waitingQuery);
  const typed = byElementId('query').value;
  if (typed !== state.q) go({ q: typed, page: '1' }, true);
}

function listenToQuery() {
  const query = byElementId('query');
  query.addEventListener('input', () => {
    clearTimeout(waitingQuery);
    waitingQuery = setTimeout(takeQuery, partCount > 20000 ? 250 : 100);
  });
  query.addEventListener('keydown', onQueryKey);
  query.addEventListener('focus', () => openResults(byElementId('results').childElementCount > 0));
  document.addEventListener('click', (event) => {
    if (!event.target.closest('.search')) openResults(false);
  });
}
