// --- Parts of a kind as a table: filtered by the search, sorted by a column, copied, printed

const rowsOfPage = 100;
const mostPrinted = 20000;

function columnsShown(table) {
  return table.columns.filter((column) => (state.columns === 'all' || column.shown) && !(table.word === 'host' && column.name === 'id'));
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
  keyed.sort(([a, one], [b, other]) => (a === null || b === null ? (a === null) - (b === null) : sign * inOrder(a, b)) || one - other);
  return keyed.map(([, part]) => part);
}

function headCell(column) {
  const order = state.sort === column.name ? 'ascending' : state.sort === `-${column.name}` ? 'descending' : 'none';
  const sort = button([labelOf(column).length > 24 ? column.name : labelOf(column), element('span', { 'aria-hidden': 'true' }, { ascending: ' ▲', descending: ' ▼', none: '' }[order])],
    () => {
      go({ sort: order === 'ascending' ? `-${column.name}` : column.name, page: '1' }, true);
      document.querySelector(`#table th[data-column="${column.name}"] button`)?.focus();
    }, { title: column.meaning + (column.unit ? `, in ${column.unit}` : '') });
  return element('th', { scope: 'col', 'aria-sort': order, 'data-column': column.name }, sort);
}

function bodyRow(part, columns) {
  return element('tr', { class: changeOf(part) || null }, ...columns.map((column, at) => {
    const text = shown(column, valueIn(part, column));
    return element('td', { class: column.type === 'number' ? 'number' : null }, at === 0 ? link(part, text || titleOf(part)) : text);
  }));
}

function csv(parts, columns) {
  const quoted = (text) => (/[",\r\n]|^\s|\s$/.test(text) ? `"${text.replaceAll('"', '""')}"` : text);
  const cell = (one) => (one === null ? '' : Array.isArray(one) ? one.join(' ') : String(one));
  return `${[columns.map(({ name }) => name), ...parts.map((part) => columns.map((column) => quoted(cell(valueIn(part, column)))))]
    .map((row) => row.join(',')).join('\r\n')}\r\n`;
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
    byElementId('copied').textContent = done ? `${count(rows.length)} rows are in the clipboard.` : 'The browser does not let the page copy.';
    made.focus();
  });
  return made;
}

function kindChoice() {
  const made = element('select', { id: 'kind' }, ...tables.filter((table) => table.rows > 0 && tablesOf(table.word)[0] === table)
    .map((table) => element('option', { value: table.word }, `${table.plural} (${count(table.rows)})`)));
  made.value = state.kind;
  made.addEventListener('change', () => { go({ kind: made.value, sort: '', page: '1' }, true); byElementId('kind').focus(); });
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
  return { rows: rows.slice(first, first + rowsOfPage), controls: last === 1 ? '' : element('p', { class: 'pages' },
    turn(at - 1, '‹ Before'), `${count(first + 1)} to ${count(Math.min(rows.length, first + rowsOfPage))} of ${count(rows.length)}`, turn(at + 1, 'After ›')) };
}

function drawTable() {
  const table = tablesOf(state.kind)[0] ?? driveTable;
  const columns = columnsShown(table);
  const rows = tableRows(table.word);
  const { rows: onPage, controls } = pages(rows);
  const found = state.q.trim() ? `, found by ${state.q.trim()}` : '';
  return [heading(systemPart, capital(table.plural), `${count(rows.length)} of ${amount(tablesOf(table.word).reduce((sum, one) => sum + one.rows, 0), table)}${found}`),
    element('div', { class: 'tools' }, kindChoice(), columnChoice(), copyButton(rows, columns), button('Print', () => print())),
    element('p', { id: 'copied', role: 'status' }),
    element('div', { class: 'wide', tabindex: '0', role: 'region', 'aria-label': `Table of ${table.plural}` }, element('table', { id: 'table' },
      element('thead', {}, element('tr', {}, ...columns.map(headCell))), element('tbody', {}, ...onPage.map((part) => bodyRow(part, columns))))),
    controls];
}

// --- Paper has the table: of the kind that is looked at, or of the drives that are

/// What the view has of a kind.
function partsInView(word) {
  if (state.view === 'table') return tableRows(word);
  const at = state.at === '' ? -1 : partOfKey(state.at);
  const around = at < 0 ? null : new Set(wordOf(at) === 'rack' ? [at, ...enclosuresOf(at)] : [at]);
  return tableRows(word).filter((part) => around === null || upwards(part).some((one) => around.has(one)) || partitionOf(part) === at);
}

function fillPaper() {
  const table = state.view === 'table' ? tablesOf(state.kind)[0] ?? driveTable : driveTable;
  const rows = partsInView(table.word);
  const columns = columnsShown(table);
  byElementId('paper').replaceChildren(element('h2', {}, document.title), element('p', {}, [collected ?? data.timestamp, document.querySelector('#view')?.textContent ?? 'Overview', state.q].filter(Boolean).join(' · ')),
    element('p', {}, amount(rows.length, table) + (rows.length > mostPrinted ? `, of which the first ${count(mostPrinted)} are printed` : '')),
    element('table', {}, element('thead', {}, element('tr', {}, ...columns.map((column) => element('th', { scope: 'col' }, column.name)))),
      element('tbody', {}, ...rows.slice(0, mostPrinted).map((part) => element('tr', {}, ...columns.map((column) => element('td', {}, shown(column, valueIn(part, column)))))))));
}
