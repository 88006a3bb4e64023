// --- Search: words that must all occur in a part, and conditions on its columns

const operators = {
  ':': (order, has) => has, '=': (order) => order === 0, '<': (order) => order < 0, '>': (order) => order > 0,
  '<=': (order) => order <= 0, '>=': (order) => order >= 0,
};
const columnNames = new Set(tables.flatMap((table) => table.columns.map((column) => column.name)));
const codes = new Set(data.shapes.flatMap((shape) => shape.map(([code]) => code.toLowerCase())));
/// What every part repeats of the facility, or of the part around it.
const toldByOthers = new Set(['system', 'facility', 'collected', 'kind', 'within']);

/// "drive rack:3 firmware<T0B manufacturer:"two words"" as its terms.
function termsOf(query) {
  return (query.match(/(?:[^\s"]|"[^"]*"?)+/g) ?? []).map((word) => {
    const [, name, operator, rest] = /^(\w+)(:|<=|>=|=|<|>)(.*)$/s.exec(word) ?? [];
    const text = (rest ?? word).replaceAll('"', '').toLowerCase();
    if (name === 'under') return { under: partOfKey(rest.replaceAll('"', '')), text };
    if (name !== undefined && columnNames.has(name.toLowerCase())) return { column: name.toLowerCase(), operator, text };
    if (name !== undefined && codes.has(name.toLowerCase()) && operator === ':') return { code: name.toLowerCase(), text };
    return { text: word.replaceAll('"', '').toLowerCase() };
  }).filter(({ text, column, code }) => text !== '' || column || code);
}

function compare(one, text) {
  const number = Number(text);
  const numbers = typeof one === 'number' && text !== '' && !Number.isNaN(number);
  return numbers ? one - number : compareTexts(String(one).toLowerCase(), text);
}

/// Whether a column's value is what a condition asks for. A number is one, not a text that holds one.
function holds(one, { operator, text }) {
  if (one === null) return false;
  if (Array.isArray(one)) return one.some((item) => holds(item, { operator, text }));
  const has = typeof one === 'number' && text !== '' ? Number(text) === one : String(one).toLowerCase().includes(text);
  return operators[operator](compare(one, text), has);
}

/// For every row of a table whether a condition holds; each of a column's values is looked at once.
function rowsWhere(table, term) {
  const rows = new Uint8Array(table.rows);
  const column = table.byName.get(term.column);
  if (!column) return rows;
  if (!column.cells) {
    for (let row = 0; row < table.rows; ++row) rows[row] = holds(valueIn(table.first + row, column), term) ? 1 : 0;
    return rows;
  }
  return mark(rows, column.cells, column.cells.values.map((one) => holds(one, term)));
}

function mark(rows, cells, good) {
  if (good.includes(true)) for (let row = 0; row < rows.length; ++row) if (good[cells.indexOf(row)]) rows[row] = 1;
  return rows;
}

function rowsWithProperty(table, { code, text }) {
  const has = (one) => one.code.toLowerCase() === code && one.text.toLowerCase().includes(text);
  return Uint8Array.from({ length: table.rows }, (_, row) => (propertiesOf(table.first + row).some(has) ? 1 : 0));
}

/// Shapes with a property that no column tells and that has the text.
function shapesWith(text) {
  const patterns = data.patterns.map((pieces) => pieces.every((piece) => typeof piece === 'string')
    && pieces.join('').toLowerCase().includes(text));
  return data.shapes.map((shape) => shape.some(([code, , pattern]) => code !== 'S3' && patterns[pattern]));
}

/// For every row of a table whether it has the word anywhere. A number has to be the word, and a long one.
function rowsWith(table, { text }, goodShapes) {
  const rows = new Uint8Array(table.rows);
  if (table.rows === 0) return rows;
  if (table.singular.toLowerCase().includes(text) || table.plural.toLowerCase().includes(text)) return rows.fill(1);
  mark(rows, table.name, table.name.lower.map((one) => one.includes(text)));
  for (const column of table.columns) {
    if (!column.cells || toldByOthers.has(column.name)) continue;
    mark(rows, column.cells, column.cells.lower.map((one, i) =>
      (typeof column.cells.values[i] === 'number' ? text.length > 2 && one === text : one.includes(text))));
  }
  mark(rows, table.shape, goodShapes);
  table.lowerIds ??= partsIn(table).map((part) => idOf(part).toLowerCase());
  for (let row = 0; row < table.rows; ++row) if (table.lowerIds[row].includes(text)) rows[row] = 1;
  return rows;
}

/// The drives that a part of the logical configuration stands on.
function rowsUnder(table, { under }) {
  const rows = new Uint8Array(table.rows);
  if (table === driveTable && under >= 0) for (const drive of drivesUnder(under)) rows[drive - table.first] = 1;
  return rows;
}

/// What tells for every row of a table whether the term holds.
function rowsFor(term) {
  if (term.under !== undefined) return (table) => rowsUnder(table, term);
  if (term.column) return (table) => rowsWhere(table, term);
  if (term.code) return (table) => rowsWithProperty(table, term);
  const goodShapes = shapesWith(term.text);
  return (table) => rowsWith(table, term, goodShapes);
}

let lastSearch = { query: '', hits: null, found: [] };

/// What a query finds: a 1 for every part that is a hit, and the hits; null hits where nothing is asked for.
function search(query) {
  if (query === lastSearch.query) return lastSearch;
  const terms = termsOf(query);
  if (terms.length === 0) return (lastSearch = { query, hits: null, found: [] });
  const hits = new Uint8Array(partCount).fill(1);
  for (const term of terms) {
    const rowsOf = rowsFor(term);
    for (const table of tables) {
      const rows = rowsOf(table);
      for (let row = 0; row < table.rows; ++row) hits[table.first + row] &= rows[row];
    }
  }
  const found = [];
  for (let part = 0; part < partCount; ++part) if (hits[part]) found.push(part);
  return (lastSearch = { query, hits, found });
}

/// A condition as it is typed.
function termOf(name, one) {
  const text = String(one);
  return `${name}=${/[\s"]/.test(text) || text === '' ? `"${text}"` : text}`;
}

function hasTerm(term) {
  return (state.q.match(/(?:[^\s"]|"[^"]*"?)+/g) ?? []).includes(term);
}

function withTerm(term) {
  const words = state.q.match(/(?:[^\s"]|"[^"]*"?)+/g) ?? [];
  const name = term.split('=', 1)[0];
  return [...words.filter((word) => !word.startsWith(`${name}=`)), ...(words.includes(term) ? [] : [term])].join(' ');
}
