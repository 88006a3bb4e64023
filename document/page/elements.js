// --- Elements

const byElementId = (id) => document.getElementById(id);

function fill(made, attributes, content) {
  for (const [name, text] of Object.entries(attributes)) if (text !== null) made.setAttribute(name, text);
  made.append(...content);
  return made;
}

function element(tag, attributes = {}, ...content) {
  return fill(document.createElement(tag), attributes, content);
}

function shape(tag, attributes = {}, ...content) {
  return fill(document.createElementNS('http://www.w3.org/2000/svg', tag), attributes, content);
}

function button(text, action, attributes = {}) {
  const made = element('button', { type: 'button', ...attributes }, ...[text].flat());
  made.addEventListener('click', action);
  return made;
}

function definitions(rows) {
  return element('dl', {}, ...rows.filter(([, text]) => text !== '' && text !== null).map(
    ([term, text, meaning = null]) => element('div', {}, element('dt', { title: meaning }, term), element('dd', {}, text))));
}

const note = (text, kind = 'note') => element('p', { class: kind }, text);
const row = (tag, texts) => element('tr', {}, ...texts.map((text) => element(tag, tag === 'th' ? { scope: 'col' } : {}, text)));

/// A table of texts.
function textTable(headings, rows) {
  const body = element('tbody', {}, ...rows.map((texts) => row('td', texts)));
  return element('table', {}, element('thead', {}, row('th', headings)), body);
}

function section(title, ...content) {
  return element('section', {}, element('h2', {}, title), ...content);
}

/// A list of which only the first are drawn until somebody wants more.
function longList(items, draw, attributes = {}, step = 60) {
  const list = element('ul', attributes);
  const more = (from) => {
    list.append(...items.slice(from, from + step).map((item) => element('li', {}, draw(item))));
    const left = items.length - from - step;
    if (left <= 0) return;
    const next = element('li', { class: 'more' }, button(`${count(Math.min(step, left))} more of ${count(left)}`, () => {
      next.remove();
      more(from + step);
      list.children[from + step].querySelector('a, button')?.focus();
    }, { class: 'link' }));
    list.append(next);
  };
  more(0);
  return list;
}

/// Arrow keys walk through what `items` finds in the element; only one of them is in the order of the Tab key.
function roving(around, selector) {
  around.querySelector(selector)?.setAttribute('tabindex', '0');
  around.addEventListener('focusin', (event) => {
    if (!event.target.matches(selector)) return;
    for (const other of around.querySelectorAll(`${selector}[tabindex="0"]`)) other.setAttribute('tabindex', '-1');
    event.target.setAttribute('tabindex', '0');
  });
  around.addEventListener('keydown', (event) => {
    if (!event.key.startsWith('Arrow') || !event.target.matches(selector)) return;
    event.preventDefault();
    neighbour(around, selector, event.target, event.key)?.focus();
  });
  return around;
}

/// The nearest item in the direction of an arrow key.
function neighbour(around, selector, current, key) {
  const middle = (made) => {
    const box = made.getBoundingClientRect();
    return [box.x + box.width / 2, box.y + box.height / 2];
  };
  const [x, y] = middle(current);
  const vertical = key === 'ArrowUp' || key === 'ArrowDown';
  const sign = key === 'ArrowUp' || key === 'ArrowLeft' ? -1 : 1;
  let best = null;
  let least = Infinity;
  for (const candidate of around.querySelectorAll(selector)) {
    const [atX, atY] = middle(candidate);
    const along = sign * (vertical ? atY - y : atX - x);
    const across = Math.abs(vertical ? atX - x : atY - y);
    if (along > 1 && along + 3 * across < least) [best, least] = [candidate, along + 3 * across];
  }
  return best;
}
