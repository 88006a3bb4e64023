// --- Colours: drives by the values of one of their columns

const mostColours = 8;
const mostValues = 500;
/// Columns that tell one drive from another, or where it is, make no groups.
const tellsOne = new Set(['serial', 'name', 'rack', 'enclosure', 'slot', 'array_site', 'position']);

/// { name, label, groups: [{ text, mark: its class, term }], of: the index of a drive's group }
const colourings = new Map();

function addColourings() {
  if (data.changes) colourings.set('change', () => changeColouring());
  for (const column of driveTable.columns) {
    const fits = column.cells && (column.shown || column.name === 'image') && !tellsOne.has(column.name);
    if (fits && column.cells.values.length <= mostValues) colourings.set(column.name, () => columnColouring(column));
  }
}

function columnColouring(column) {
  const { cells } = column;
  const drives = new Uint32Array(cells.values.length);
  for (let row = 0; row < driveTable.rows - driveTable.old; ++row) ++drives[cells.indexOf(row)];
  const common = [...drives.keys()].filter((i) => cells.values[i] !== null && drives[i] > 0)
    .sort((a, b) => drives[b] - drives[a]).slice(0, mostColours)
    .sort((a, b) => compareTexts(cells.values[a], cells.values[b]));
  const groups = common.map((i, at) => ({
    text: valueText(column, cells.values[i]), mark: `c${at}`, term: termOf(column.name, cells.values[i]),
  }));
  const groupOf = new Uint8Array(cells.values.length).fill(groups.length);
  common.forEach((i, at) => { groupOf[i] = at; });
  groups.push({ text: common.length < mostColours ? 'not told' : 'other values', mark: 'rest' });
  const of = (drive) => groupOf[cells.indexOf(drive - driveTable.first)];
  return { name: column.name, label: labelOf(column), groups, of };
}

/// An image goes by the name of its partition.
function valueText(column, one) {
  const partition = column.name === 'image' ? partitionOfImage.get(one) : undefined;
  return partition === undefined ? shown(column, one) : `${titleOf(partition)} (${one})`;
}

function changeColouring() {
  const marks = [...Object.keys(changeSigns), ''];
  const groups = marks.map((mark) => ({ text: mark || 'as it was', mark: mark || 'same' }));
  return { name: 'change', label: 'change', groups, of: (drive) => marks.indexOf(changeOf(drive)) };
}

let lastColouring = { name: '', label: '', groups: [], of: () => 0 };

function colouring() {
  const usualName = data.changes ? 'change' : colourings.has('firmware') ? 'firmware' : [...colourings.keys()][0];
  const name = colourings.has(state.by) ? state.by : usualName;
  if (colourings.has(name) && lastColouring.name !== name) lastColouring = colourings.get(name)();
  return lastColouring;
}

function colourChoice() {
  const labelled = (name) => name.replace(/_mb$/, '').replaceAll('_', ' ');
  const options = [...colourings.keys()].map((name) => element('option', { value: name }, labelled(name)));
  const made = element('select', { id: 'colour' }, ...options);
  made.value = colouring().name;
  made.addEventListener('change', () => { go({ by: made.value }, true); byElementId('colour').focus(); });
  return element('label', { class: 'colour' }, 'Colour drives by ', made);
}

/// What the colours of these drives mean; each finds its drives, and asked again lets them go.
function legend(drives) {
  const { groups, of } = colouring();
  const counts = groups.map(() => 0);
  for (const drive of drives) ++counts[of(drive)];
  return element('ul', { id: 'legend', 'aria-label': 'Colours' }, ...groups.flatMap((group, i) => {
    if (counts[i] === 0) return [];
    const content = [element('i', { class: group.mark }), group.text, element('span', {}, count(counts[i]))];
    if (!group.term) return [element('li', {}, element('span', { class: 'entry' }, ...content))];
    return [element('li', {}, button(content, (event) => {
      const at = [...event.currentTarget.closest('ul').children].indexOf(event.currentTarget.closest('li'));
      go({ q: withTerm(group.term) }, true);
      byElementId('legend').children[at]?.querySelector('button')?.focus();
    }, { 'aria-pressed': String(hasTerm(group.term)) }))];
  }));
}
