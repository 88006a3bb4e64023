// --- The whole page

let drawn = '';
let listed = null;

/// What is drawn in the middle; another part that is chosen draws nothing anew.
function drawView() {
  const at = state.at === '' ? -1 : partOfKey(state.at);
  if (state.view === 'table') return drawTable();
  if (at < 0) return drawOverview();
  if (wordOf(at) === 'rack') return drawRack(at);
  return wordOf(at) === 'partition' ? drawPartition(at) : drawEnclosure(at);
}

function markChosen() {
  const part = state.part === '' ? -1 : partOfKey(state.part);
  for (const made of document.querySelectorAll('#main [aria-current]')) made.removeAttribute('aria-current');
  for (const made of document.querySelectorAll(`#main [data-part="${part}"]`)) made.setAttribute('aria-current', 'true');
}

function render() {
  const { part, q, by, ...place } = state;
  const where = JSON.stringify(place);
  const looks = JSON.stringify([q, by]);
  const elsewhere = !drawn.startsWith(where);
  if (drawn !== where + looks) {
    const held = document.activeElement;
    drawn = where + looks;
    hideTip();
    byElementId('main').replaceChildren(...drawView());
    if (byElementId('query').value !== q) byElementId('query').value = q;
    if (elsewhere && !held.isConnected) (byElementId('view') ?? byElementId('main')).focus({ preventScroll: true });
    if (elsewhere) scrollTo(0, 0);
  }
  if (listed !== q) {
    listed = q;
    showResults();
  }
  showDetails(part === '' ? -1 : partOfKey(part));
  markChosen();
  const chosen = document.querySelector('#main [aria-current]');
  if (chosen && chosen !== document.activeElement) chosen.scrollIntoView({ block: 'nearest' });
  if (chosen?.matches('#slots a')) {
    for (const other of document.querySelectorAll('#slots a[tabindex="0"]')) other.setAttribute('tabindex', '-1');
    chosen.setAttribute('tabindex', '0');
  }
}

function onKey(event) {
  const typing = /^(INPUT|SELECT|TEXTAREA)$/.test(event.target.tagName) && event.target.type !== 'checkbox';
  if (event.key === '/' && !typing) {
    event.preventDefault();
    byElementId('query').focus();
  } else if (event.key === 'Escape' && state.part !== '') {
    closeDetails();
  }
}

function drawHead() {
  document.title = `Inventory of ${data.system}`;
  const home = linkTo({ view: '', at: '', part: '' }, data.system);
  byElementId('system').replaceChildren(home);
  const when = collected === null ? data.timestamp : `${collected.slice(0, 19).replace('T', ' ')} UTC`;
  const facts = `Storage facility ${value(systemPart, 'facility') ?? ''}, collected ${when}`;
  byElementId('facts').replaceChildren(facts, ' · ', propertiesButton(systemPart));
}

addColourings();
drawHead();
readAddress();
byElementId('query').value = state.q;
render();
listenToQuery();
document.addEventListener('keydown', onKey);
document.querySelector('.skip').addEventListener('click', (event) => {
  event.preventDefault();
  byElementId('main').focus();
});
addEventListener('popstate', () => { readAddress(); render(); });
addEventListener('hashchange', () => { readAddress(); render(); });
addEventListener('beforeprint', fillPaper);
addEventListener('afterprint', () => byElementId('paper').replaceChildren());
