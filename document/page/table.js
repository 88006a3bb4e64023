// --- Parts of a kind as a table: filtered by the search, sorted by a column, copied, printed

const rowsOfPage = 100;
const mostPrinted = 20000;

function columnsShown(table) {
  const repeated = (column) => table.word === 'host' && column.name === 'id';
  return table.columns.filter((column) => (state.columns === 'all' || column.shown) && !repeated(column));
}

const keyFor = (one) => (one === null || typeof one === 'number' ? one : orderKey(one));

function tableRows(word) {
  const { hits } = search(state.q);
  const rows = tablesOf(word).flatMap(partsIn).filter((part) => hits === null || hits[part]);
  const name = state.sort.replace(/^-/, '');
  if (name === '' || !columnNames.has(name)) return rows;
  const keyed = rows.map((part) => [keyFor(value(part, name)), part]);
  const sign = state.sort.startsWith('-') ? -1 : 1;
  // Where no value is told, in either order, comes last.
  const compared = (a, b) => (a === null || b === null ? (a === null) - (b === null) : sign * inOrder(a, b));
  keyed.sort(([a, one], [b, other]) => compared(a, b) || one - other);
  return keyed.map(([, part]) => part);
}

function headCell(column) {
  const order = state.sort === column.name ? 'ascending' : state.sort === `-${column.name}` ? 'descending' : 'none';
  const arrow = element('span', { 'aria-hidden': 'true' }, { ascending: ' ▲', descending: ' ▼', none: '' }[order]);
  const sort = button([isCount(column) ? column.name : labelOf(column), arrow], () => {
    go({ sort: order === 'ascending' ? `-${column.name}` : column.name, page: '1' }, true);
    document.querySelector(`#table th[data-column="${column.name}"] button`)?.focus();
  }, { title: column.meaning + (column.unit ? `, in ${column.unit}` : '') });
  return element('th', { scope: 'col', 'aria-sort': order, 'data-column': column.name }, sort);
}

function bodyRow(part, columns) {
  return element('tr', { class: changeOf(part) || null }, ...columns.map((column, at) => {
    const text = shown(column, valueIn(part, column));
    const told = column.unit !== '' && text !== '' ? `${valueIn(part, column)} ${column.unit}` : null;
    const content = at === 0 ? link(part, text || titleOf(part)) : text;
    return element('td', { class: column.type === 'number' ? 'number' : null, title: told }, content);
  }));
}

function csv(parts, columns) {
  const quoted = (text) => (/[",\r\n]|^\s|\s$/.test(text) ? `"${text.replaceAll('"', '""')}"` : text);
  const cell = (one) => (one === null ? '' : Array.isArray(one) ? one.join(' ') : String(one));
  const names = columns.map(({ name }) => name);
  const rows = parts.map((part) => columns.map((column) => quoted(cell(valueIn(part, column)))));
  return [names, ...rows].map((texts) => `${texts.join(',')}\r\n`).join('');
}

/// Without a permission to write into the clipboard a selection of the page's own goes there.
async function copy(text) {
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    const area = element('textarea', { class: 'unseen', 'aria-hidden': 'true' });
    area.value = text;
    document.body.append(area);
    area.select();
    const copied = document.execCommand('copy');
    area.remove();
    return copied;
  }
}

function copyButton(rows, columns) {
  const made = button('Copy as CSV', async () => {
    const done = await copy(csv(rows, columns));
    const good = `${count(rows.length)} rows are in the clipboard.`;
    byElementId('copied').textContent = done ? good : 'The browser does not let the page copy.';
    made.focus();
  });
  return made;
}

function kindChoice() {
  const listed = tables.filter((table) => table.rows > 0 && tablesOf(table.word)[0] === table);
  const options = listed.map((table) => element('option', { value: table.word }, `${table.plural} (${count(table.rows)})`));
  const made = element('select', { id: 'kind' }, ...options);
  made.value = state.kind;
  made.addEventListener('change', () => {
    go({ kind: made.value, sort: '', page: '1' }, true);
    byElementId('kind').focus();
  });
  return element('label', {}, 'Kind ', made);
}

function columnChoice() {
  const box = element('input', { type: 'checkbox', id: 'columns' });
  box.checked = state.columns === 'all';
  box.addEventListener('change', () => { go({ columns: box.checked ? 'all' : '' }, true); byElementId('columns').focus(); });
  return element('label', {}, box, ' all columns');
}

function pages(rows) {
  const last = Math.max(1, Math.ceil(rows.length / rowsOfPage));
  const at = Math.min(last, Math.max(1, Math.floor(Number(state.page)) || 1));
  const turn = (to, text) => {
    const made = button(text, () => { go({ page: String(to) }, true); byElementId('view').focus(); });
    made.disabled = to < 1 || to > last;
    return made;
  };
  const first = (at - 1) * rowsOfPage;
  const onPage = rows.slice(first, first + rowsOfPage);
  const which = `${count(first + 1)} to ${count(first + onPage.length)} of ${count(rows.length)}`;
  const controls = element('p', { class: 'pages' }, turn(at - 1, '‹ Before'), which, turn(at + 1, 'After ›'));
  return { rows: onPage, controls: last === 1 ? '' : controls };
}

function drawTable() {
  const table = tablesOf(state.kind)[0] ?? driveTable;
  const columns = columnsShown(table);
  const rows = tableRows(table.word);
  const { rows: onPage, controls } = pages(rows);
  const found = state.q.trim() ? `, found by ${state.q.trim()}` : '';
  const all = tablesOf(table.word).reduce((sum, one) => sum + one.rows, 0);
  const head = element('thead', {}, element('tr', {}, ...columns.map(headCell)));
  const body = element('tbody', {}, ...onPage.map((part) => bodyRow(part, columns)));
  const region = { class: 'wide', tabindex: '0', role: 'region', 'aria-label': `Table of ${table.plural}` };
  return [heading(systemPart, capital(table.plural), `${count(rows.length)} of ${amount(all, table)}${found}`),
    element('div', { class: 'tools' }, kindChoice(), columnChoice(), copyButton(rows, columns), button('Print', () => print())),
    element('p', { id: 'copied', role: 'status' }), element('div', region, element('table', { id: 'table' }, head, body)), controls];
}

// --- Paper has the table: of the kind that is looked at, or of the drives that are

/// What the view has of a kind.
function partsInView(word) {
  if (state.view === 'table') return tableRows(word);
  const at = state.at === '' ? -1 : partOfKey(state.at);
  const around = at < 0 ? null : new Set(wordOf(at) === 'rack' ? [at, ...enclosuresOf(at)] : [at]);
  if (around === null) return tableRows(word);
  return tableRows(word).filter((part) => upwards(part).some((one) => around.has(one)) || partitionOf(part) === at);
}

function fillPaper() {
  const table = state.view === 'table' ? tablesOf(state.kind)[0] ?? driveTable : driveTable;
  const rows = partsInView(table.word);
  const columns = columnsShown(table);
  const view = byElementId('view')?.textContent ?? 'Overview';
  const cut = rows.length > mostPrinted ? `, of which the first ${count(mostPrinted)} are printed` : '';
  const texts = rows.slice(0, mostPrinted).map((part) => columns.map((column) => shown(column, valueIn(part, column))));
  byElementId('paper').replaceChildren(element('h2', {}, document.title),
    element('p', {}, facts(collected ?? data.timestamp, view, state.q)), element('p', {}, amount(rows.length, table) + cut),
    textTable(columns.map(({ name }) => name), texts));
}
