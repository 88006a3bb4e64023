'use strict';

// The page of one inventory document, or of what differs between two. Values come from a machine's resource
// manager and may hold anything: they are only ever set as text, never parsed as markup.

// --- The document's parts: numbers, counted on through the tables of all kinds

const data = JSON.parse(document.getElementById('data').textContent);

const digitOf = new Uint8Array(128);
[...'0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz-_'].forEach((digit, i) => {
  digitOf[digit.charCodeAt(0)] = i;
});

/// A column of a table: its distinct values, and the index among them of every row.
class Cells {
  constructor([values, digits] = [[null], '']) {
    this.values = values;
    this.digits = digits;
    this.indexes = null;
  }

  indexOf(row) {
    if (this.values.length === 1) return 0;
    if (this.digits === '') return row;
    this.indexes ??= this.decode();
    return this.indexes[row];
  }

  of(row) {
    return this.values[this.indexOf(row)];
  }

  decode() {
    let width = 1;
    for (let most = 64; most < this.values.length; most *= 64) ++width;
    const indexes = new Uint32Array(this.digits.length / width);
    for (let row = 0, at = 0; row < indexes.length; ++row) {
      let index = 0;
      for (let i = 0; i < width; ++i) index = index * 64 + digitOf[this.digits.charCodeAt(at++)];
      indexes[row] = index;
    }
    return indexes;
  }

  /// The values as a search compares them.
  get lower() {
    this.lowered ??= this.values.map((one) => (one === null ? '' : String(one).toLowerCase()));
    return this.lowered;
  }
}

function tableOf(kind, first) {
  const columns = kind.columns.map(([name, type, unit, meaning, source, shown], i) => ({
    name, type, unit, meaning, source, shown: shown === 1, cells: kind.values?.[i] ? new Cells(kind.values[i]) : null,
  }));
  const table = {
    word: kind.word, singular: kind.singular, plural: kind.plural, counted: kind.counted === 1,
    first, rows: kind.rows, old: kind.old, columns, byName: new Map(columns.map((one) => [one.name, one])), ids: [],
  };
  for (const name of ['name', 'list', 'parent', 'id', 'shape', 'listed']) table[name] = new Cells(kind[name]);
  return table;
}

const tables = [];
let partCount = 0;
for (const kind of data.kinds) {
  tables.push(tableOf(kind, partCount));
  partCount += kind.rows;
}

const tableIndex = new Uint8Array(partCount);
tables.forEach((table, i) => tableIndex.fill(i, table.first, table.first + table.rows));

const tableOfPart = (part) => tables[tableIndex[part]];
const wordOf = (part) => tableOfPart(part).word;

function tablesOf(word) {
  return tables.filter((table) => table.word === word);
}

function partsIn(table) {
  return Array.from({ length: table.rows }, (_, row) => table.first + row);
}

function partsOf(...words) {
  return words.flatMap((word) => tablesOf(word).flatMap(partsIn));
}

/// Whether only the older of two documents tells the part.
function isOld(part) {
  const table = tableOfPart(part);
  return part - table.first >= table.rows - table.old;
}

const isCurrent = (part) => !isOld(part);

function cellOf(part, name) {
  const table = tableOfPart(part);
  return table[name].of(part - table.first);
}

const nameOf = (part) => cellOf(part, 'name') ?? '';
const parentOf = (part) => cellOf(part, 'parent');
const timesListed = (part) => cellOf(part, 'listed');

function idOf(part) {
  const table = tableOfPart(part);
  const row = part - table.first;
  return (table.ids[row] ??= textOf(part, table.id.of(row)));
}

/// The document's own text, of a pattern's pieces.
function textOf(part, pattern) {
  return data.patterns[pattern].map((piece) => {
    if (typeof piece === 'string') return piece;
    if (piece === -1) return idOf(parentOf(part));
    if (piece === -2) return idOf(part);
    if (piece === -3) return nameOf(part);
    const table = tableOfPart(part);
    return String(table.columns[piece].cells.of(part - table.first));
  }).join('');
}

/// The properties that the document tells of the part: [{ code, label, text }].
function propertiesOf(part) {
  return data.shapes[cellOf(part, 'shape')].map(([code, label, pattern]) => ({ code, label, text: textOf(part, pattern) }));
}

function property(part, code) {
  const found = data.shapes[cellOf(part, 'shape')].find((one) => one[0] === code);
  return found ? textOf(part, found[2]) : '';
}

const collected = (() => {
  const [seconds, microseconds = ''] = data.timestamp.split('.');
  const time = new Date(/^\d{1,13}$/.test(seconds) ? Number(seconds) * 1000 : NaN);
  if (Number.isNaN(time.getTime()) || !/^\d{1,6}$/.test(microseconds)) return null;
  return `${time.toISOString().slice(0, 19)}.${microseconds.padStart(6, '0')}Z`;
})();

/// The value of a column of the table of parts; null where the document tells none.
function value(part, name) {
  const column = tableOfPart(part).byName.get(name);
  return column ? valueIn(part, column) : null;
}

function valueIn(part, column) {
  if (column.cells) return column.cells.of(part - tableOfPart(part).first);
  switch (column.name) {
    case 'system': return idOf(0) || null;
    case 'collected': return collected;
    case 'kind': return wordOf(part);
    case 'within': return parentOf(part) >= 0 ? idOf(parentOf(part)) || null : null;
    default: return idOf(part) || null;
  }
}

const childStarts = new Uint32Array(partCount + 1);
const childList = (() => {
  const parents = new Int32Array(partCount);
  for (let part = 0; part < partCount; ++part) {
    parents[part] = parentOf(part);
    if (parents[part] >= 0) ++childStarts[parents[part] + 1];
  }
  for (let part = 0; part < partCount; ++part) childStarts[part + 1] += childStarts[part];
  const next = childStarts.slice();
  const list = new Uint32Array(childStarts[partCount]);
  for (let part = 0; part < partCount; ++part) if (parents[part] >= 0) list[next[parents[part]]++] = part;
  return list;
})();

/// The parts directly inside; of these kinds only, where some are named.
function childrenOf(part, ...words) {
  const all = [...childList.subarray(childStarts[part], childStarts[part + 1])];
  return words.length === 0 ? all : all.filter((child) => words.includes(wordOf(child)));
}

function inside(part, ...words) {
  const found = (child) => (words.includes(wordOf(child)) ? [child] : []);
  return childrenOf(part).flatMap((child) => [...found(child), ...inside(child, ...words)]);
}

/// The part and those around it, from the innermost.
function upwards(part) {
  return part < 0 ? [] : [part, ...upwards(parentOf(part))];
}

const systemPart = 0;
