// --- Words: the table of parts has them; here they become what people read

/// Texts in the order of `kord list`: the digits in them are numbers.
const orderKey = (one) => String(one).replace(/\d+/g, (digits) => digits.padStart(20, '0'));
const inOrder = (a, b) => (a < b ? -1 : a > b ? 1 : 0);
const compareTexts = (a, b) => inOrder(orderKey(a), orderKey(b));

const numberFormat = new Intl.NumberFormat('en', { maximumFractionDigits: 1 });
const count = (number) => numberFormat.format(number);

function amount(number, table) {
  return `${count(number)} ${number === 1 ? table.singular : table.plural}`;
}

/// What is told beside each other; what is not there is left out.
const facts = (...texts) => texts.filter(Boolean).join(' · ');

const capital = (text) => text.slice(0, 1).toUpperCase() + text.slice(1);

/// 73400 megabytes as "73.4 GB".
function capacity(megabytes) {
  const units = ['MB', 'GB', 'TB', 'PB', 'EB'];
  let amountLeft = Number(megabytes);
  let at = 0;
  while (Math.abs(amountLeft) >= 1000 && at + 1 < units.length) {
    amountLeft /= 1000;
    ++at;
  }
  return `${count(amountLeft)} ${units[at]}`;
}

/// "v0" to "h3": their names are only numbers.
const isCount = (column) => /^[a-z]\d$/.test(column.name);

/// What a column is called: "part number"; what "v0" counts where a name is only a number.
function labelOf(column) {
  if (isCount(column)) return column.meaning;
  return column.name.replace(/_mb$/, '').replaceAll('_', ' ');
}

/// A value in the units that people use; the document's own text is with the properties.
function shown(column, one) {
  if (one === null) return '';
  if (Array.isArray(one)) return one.join(', ');
  if (column.unit === 'MB') return capacity(one);
  if (column.unit !== '' && typeof one === 'number') return `${count(one)} ${column.unit}`;
  return String(one);
}

function shownValue(part, name) {
  const column = tableOfPart(part).byName.get(name);
  return column ? shown(column, valueIn(part, column)) : '';
}

/// "rack 1, enclosure 3, slot 7", as far as the document tells it.
function placeOf(part) {
  return ['rack', 'enclosure', 'slot'].flatMap((name) => {
    const one = value(part, name);
    return one === null ? [] : [`${name} ${one}`];
  }).join(', ');
}

const namedByPeople = new Set(['partition', 'system', 'other']);

function titleOf(part) {
  return (namedByPeople.has(wordOf(part)) ? nameOf(part) || idOf(part) : idOf(part) || nameOf(part)) || '(no name)';
}

/// "Rack 1", "Enclosure 3", "Slot 7", "control card U1.2-P1-C3": in the place that the reader is in already.
function shortTitle(part) {
  const word = { rack: 'rack', storageEnclosure: 'enclosure', drive: 'slot' }[wordOf(part)];
  const number = word ? value(part, word) : null;
  if (number !== null) return `${capital(word)} ${number}`;
  return wordOf(part) === 'partition' ? `Partition ${titleOf(part)}` : titleOf(part);
}

/// What a person who cannot see the drawing hears.
function describe(part) {
  const serial = value(part, 'serial');
  const place = placeOf(part);
  return [`${tableOfPart(part).singular} ${titleOf(part)}`, ...(place ? [place] : []),
    ...(serial === null ? [] : [`serial number ${serial}`]), ...(changeOf(part) ? [changeOf(part)] : [])].join(', ');
}
