// --- The address says what is shown, so that a view can be sent and the way back leads back

const usual = { view: '', at: '', part: '', q: '', by: '', kind: 'drive', columns: '', sort: '', page: '1' };
let state = { ...usual };

function readAddress() {
  const told = new URLSearchParams(location.hash.slice(1));
  state = Object.fromEntries(Object.entries(usual).map(([name, text]) => [name, told.get(name) ?? text]));
}

function addressOf(changes) {
  const told = new URLSearchParams();
  for (const [name, text] of Object.entries({ ...state, ...changes })) if (text !== usual[name]) told.set(name, text);
  return `#${told}`;
}

/// \param replace without a step of the way back, as for every letter that is typed
function go(changes, replace = false) {
  const address = addressOf(changes);
  if (replace) history.replaceState(null, '', address);
  else history.pushState(null, '', address);
  readAddress();
  render();
}

// --- Parts in addresses: by kind and identifier, by their turn where that does not tell them

const partsByKey = new Map();

function keyOf(part) {
  const word = wordOf(part);
  const byId = `${word}:${idOf(part)}`;
  return idOf(part) !== '' && partOfKey(byId) === part ? byId : `${word}:#${part}`;
}

function partOfKey(key) {
  const word = key.split(':', 1)[0];
  if (!partsByKey.has(word)) {
    const known = new Map();
    for (const part of partsOf(word)) {
      const byId = `${word}:${idOf(part)}`;
      if (idOf(part) !== '' && !known.has(byId)) known.set(byId, part);
    }
    partsByKey.set(word, known);
  }
  const found = partsByKey.get(word).get(key);
  if (found !== undefined) return found;
  const turn = /:#(\d{1,9})$/.exec(key);
  return turn && Number(turn[1]) < partCount && wordOf(Number(turn[1])) === word ? Number(turn[1]) : -1;
}

/// Where a part is drawn, with the part chosen where it is not the drawing itself.
function addressOfPart(part) {
  const home = homeOf(part);
  return { view: '', at: home < 0 ? '' : keyOf(home), part: home === part ? '' : keyOf(part), page: '1' };
}

function link(part, ...content) {
  const made = linkTo(addressOfPart(part), ...(content.length > 0 ? content : [titleOf(part)]));
  made.dataset.part = part;
  return made;
}

/// Addresses change while a page is looked at: they are made when somebody comes near.
function linkTo(changes, ...content) {
  const made = element('a', { href: addressOf(changes) }, ...content);
  const renew = () => made.setAttribute('href', addressOf(changes));
  for (const near of ['pointerenter', 'focus']) made.addEventListener(near, renew);
  made.addEventListener('click', (event) => {
    if (event.button !== 0 || event.ctrlKey || event.metaKey || event.shiftKey) return;
    event.preventDefault();
    go(changes);
  });
  return made;
}
