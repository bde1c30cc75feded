'use strict';
// What a file says is only ever put into the document as text: elements are made by `el`, and nothing is parsed as markup.
(() => {

const data = JSON.parse(document.getElementById('data').textContent);
const { file, strings, classes, findings } = data;
const byId = id => document.getElementById(id);

// ---------------------------------------------------------------------------------------------------- language

const language = document.documentElement.lang;
const translations = JSON.parse(byId('translations').textContent); // by the English text

const fill = (text, ...values) => text.replace(/\{\}/g, () => values.shift());
/** A text in the page's language. With values, each takes the place of a `{}`. The texts of all calls are in the page's
 *  translations: they stand in the call itself, in single quotes, and have neither these nor backslashes. */
const t = (text, ...values) => {
  const translated = translations[text] ?? text;
  return values.length > 0 ? fill(translated, ...values) : translated;
};

const counted = new Intl.NumberFormat(language);
const count = number => counted.format(number);
const tenths = new Intl.NumberFormat(language, { minimumFractionDigits: 1, maximumFractionDigits: 1 });
const percent = part => part === 0 ? '0 %' : part < 0.001 ? `< ${tenths.format(0.1)} %` : `${tenths.format(100 * part)} %`;
const POINT = tenths.formatToParts(0.5).find(part => part.type === 'decimal').value;
/** A number of the file, with all of its digits. */
const exactly = number => String(number).replace('.', POINT);
const BETWEEN = POINT === ',' ? '; ' : ', ';

/** The first text for one, the second for any other number; their first `{}` is the number. */
const several = (number, one, many, ...values) => fill(number === 1 ? one : many, count(number), ...values);
const bytes = number => several(number, t('{} byte'), t('{} bytes'));
const items = number => several(number, t('{} item'), t('{} items'));
const objects = number => several(number, t('{} object'), t('{} objects'));

// ---------------------------------------------------------------------------------------------------- elements

/** An element; children are elements, or texts. */
function el(tag, attributes = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value !== null && value !== undefined && value !== false) element.setAttribute(name, value === true ? '' : value);
  }
  element.append(...children.filter(child => child !== null && child !== undefined));
  return element;
}

const shortened = (text, most) => text.length > most ? text.slice(0, most - 1) + '…' : text;

/** A list of which only the rows on the screen are in the document. */
class Rows {
  static MOST = 8e6; // pixels: browsers do not scroll much further

  constructor(box, height, make, titles = null) {
    Object.assign(this, { box, height, make, titles, length: 0, shown: new Map() });
    this.spacer = el('div', { class: 'spacer', role: 'presentation' });
    box.classList.add('rows');
    box.replaceChildren(...(titles ? [titles] : []), this.spacer);
    box.addEventListener('scroll', () => this.draw(), { passive: true });
    new ResizeObserver(() => this.draw()).observe(box);
  }

  show(length) {
    this.length = length;
    for (const row of this.shown.values()) row.remove();
    this.shown.clear();
    this.spacer.style.height = `${Math.min(length * this.height, Rows.MOST)}px`;
    this.draw();
  }

  place() {
    const head = this.titles ? this.titles.offsetHeight : 0;
    const view = Math.max(this.box.clientHeight - head, 0);
    const all = this.length * this.height;
    const scale = all > Rows.MOST ? (all - view) / (Rows.MOST - view) : 1;
    return { head, view, scale, top: this.box.scrollTop * scale };
  }

  draw() {
    const { head, view, top } = this.place();
    const first = Math.max(Math.floor(top / this.height), 0);
    const last = Math.min(Math.ceil((top + view) / this.height), this.length);
    for (const [index, row] of this.shown) {
      if (index < first || index >= last) {
        row.remove();
        this.shown.delete(index);
      }
    }
    for (let index = first; index < last; ++index) {
      let row = this.shown.get(index);
      if (!row) {
        row = this.make(index);
        this.shown.set(index, row);
        this.box.append(row);
      }
      row.style.transform = `translateY(${Math.round(head + index * this.height - top + this.box.scrollTop)}px)`;
    }
  }

  reveal(index) {
    const { view, scale, top } = this.place();
    const at = index * this.height;
    if (at < top) this.box.scrollTop = at / scale;
    if (at + this.height > top + view) this.box.scrollTop = (at + this.height - view) / scale;
    this.draw();
  }
}

// ------------------------------------------------------------------------------------------ classes and fields

const KINDS = new Map([
  [-1, ['int', 'number']], [-2, ['float', 'number']], [-3, ['double', 'number']], [-4, ['string', 'text']],
  [-5, ['blob', 'blob']], [-6, [t('owned'), 'pointer']], [-7, [t('owned list'), 'pointers']],
  [-8, [t('reference'), 'pointer']], [-9, [t('list of references'), 'pointers']], [-10, ['bool', 'bool']],
  [-11, [t('list of int'), 'numbers']], [-12, [t('list of float'), 'numbers']], [-13, [t('list of double'), 'numbers']],
  [-14, [t('list of string'), 'texts']], [-15, [t('external reference'), 'pointer']],
  [-16, [t('list of external references'), 'pointers']], [-17, ['unsigned', 'number']],
  [-18, [t('member'), 'pointer']], [-19, [t('owned map'), 'map']],
]);
const OWNING = new Set([-6, -7, -18, -19]);

classes.forEach((one, index) => {
  one.index = index;
  one.fields = one.fields.map(([name, kind, of], place) => {
    const [kindName, shape] = KINDS.get(kind) || [t('unknown kind'), 'unknown'];
    return { name, kind, kindName, shape, of, from: index, key: `${index}/${place}` };
  });
});
const nameOf = index => index < 0 ? t('(unknown class)') : classes[index].name;

/** The fields of a class's records in their order: those of the parents first. */
function fieldsOf(index) {
  const one = classes[index];
  if (!one) return [];
  if (!one.all) {
    one.all = [];
    for (const parent of one.parents) {
      for (const field of fieldsOf(parent)) one.all.push(field);
    }
    for (const field of one.fields) one.all.push(field);
  }
  return one.all;
}

/** Where in a record of a class each field stands, by the field's key. */
function placesOf(index) {
  const one = classes[index];
  if (!one.places) {
    one.places = new Map();
    fieldsOf(index).forEach((field, place) => { if (!one.places.has(field.key)) one.places.set(field.key, place); });
  }
  return one.places;
}

function ancestorsOf(index) {
  const found = new Set();
  const walk = [index];
  while (walk.length > 0) {
    const next = walk.pop();
    if (next < 0 || found.has(next)) continue;
    found.add(next);
    walk.push(...classes[next].parents);
  }
  return found;
}

// ------------------------------------------------------------------------------------------------------ objects

const uids = Int32Array.from(data.objects.uid);
const classAt = Int32Array.from(data.objects.class);
const sizes = Int32Array.from(data.objects.size);
const offsets = new Float64Array(uids.length);
const numbers = new Float64Array(uids.length);
const values = data.objects.values;
const rowOf = new Map();
for (let row = 0, at = 0, number = 0; row < uids.length; ++row) {
  at += data.objects.gap[row];
  number += data.objects.step[row];
  offsets[row] = at;
  numbers[row] = number;
  at += 24 + sizes[row];
  if (!rowOf.has(uids[row])) rowOf.set(uids[row], row);
}
const whole = file.objects === uids.length; // every object of the file is in the page

const textAt = value => typeof value === 'number' ? strings[value] : strings[value[0]];
const itemsOf = value => Array.isArray(value) ? value : value.v;

/** Calls `visit(uid, field)` for each pointer of an object that is not null. */
function eachPointer(row, visit) {
  const of = classAt[row];
  const held = values[row];
  if (of < 0 || !held) return;
  const one = classes[of];
  one.pointers ??= fieldsOf(of).map((field, place) => ({ field, place }))
    .filter(({ field }) => ['pointer', 'pointers', 'map'].includes(field.shape));
  for (const { field, place } of one.pointers) {
    const value = held[place];
    if (value === null || value === undefined) continue;
    if (field.shape === 'pointer') {
      if (value !== 0) visit(value, field);
    } else {
      for (const list of field.shape === 'map' ? value : [value]) {
        for (const uid of itemsOf(list)) if (uid !== 0) visit(uid, field);
      }
    }
  }
}

/** Who points to each object: the pointers' sources and fields, those of one target side by side. */
const pointers = (() => {
  let made = null;
  const make = () => {
    const starts = new Int32Array(uids.length + 1);
    for (let row = 0; row < uids.length; ++row) {
      eachPointer(row, uid => {
        const target = rowOf.get(uid);
        if (target !== undefined) ++starts[target + 1];
      });
    }
    for (let row = 0; row < uids.length; ++row) starts[row + 1] += starts[row];
    const next = starts.slice();
    const sources = new Int32Array(starts[uids.length]);
    const fields = new Array(sources.length);
    for (let row = 0; row < uids.length; ++row) {
      eachPointer(row, (uid, field) => {
        const target = rowOf.get(uid);
        if (target === undefined) return;
        sources[next[target]] = row;
        fields[next[target]++] = field;
      });
    }
    return { starts, sources, fields };
  };
  return () => made ??= make();
})();

/** The text by which a person knows an object, or none. */
function titleOf(row) {
  const of = classAt[row];
  if (of < 0 || !values[row]) return '';
  const one = classes[of];
  if (one.title === undefined) {
    const fields = fieldsOf(of);
    one.title = fields.findIndex(field => field.shape === 'text' && /^(name|nome|mark|label|title|titulo)$/i.test(field.name));
    if (one.title < 0) one.title = fields.findIndex(field => field.shape === 'text');
  }
  const value = values[row][one.title];
  return value === null || value === undefined ? '' : textAt(value);
}

function linkTo(uid, withTitle = true) {
  if (uid === 0) return el('span', { class: 'muted' }, 'null');
  const row = rowOf.get(uid);
  if (row === undefined) {
    return el('span', { class: whole ? 'broken' : 'muted' }, whole ? t('{} (no such object)', uid) : t('{} (not in this page)', uid));
  }
  const title = withTitle ? shortened(titleOf(row), 60) : '';
  return el('a', { href: `#o${uid}` }, `${nameOf(classAt[row])} ${uid}`, title ? ` “${title}”` : '');
}

// ------------------------------------------------------------------------------------------------------- values

/** A value in a line, for a cell of the table. */
function inLine(value, field) {
  if (value === null || value === undefined) return '';
  switch (field.shape) {
    case 'bool': return value ? 'true' : 'false';
    case 'text': return shortened(textAt(value), 200);
    case 'blob': return bytes(value[0]);
    case 'pointer': return value === 0 ? 'null' : String(value);
    case 'map': return several(itemsOf(value[1]).length, t('{} pair'), t('{} pairs'));
    case 'numbers': return shortened(itemsOf(value).slice(0, 20).map(exactly).join(BETWEEN), 80);
    case 'texts': return shortened(itemsOf(value).slice(0, 20).map(textAt).join(', '), 80);
    case 'pointers': return items(itemsOf(value).length);
    default: return exactly(value);
  }
}

const hexOf = text => text.replace(/../g, '$& ').trim();

function listNode(length, make, kind = '') {
  if (length === 0) return el('span', { class: 'muted' }, t('no items'));
  if (length <= 8) {
    return el('ul', {}, ...Array.from({ length }, (_, index) => el('li', {}, ...make(index).flatMap((part, i) => i ? [' → ', part] : [part]))));
  }
  const box = el('div', { class: kind, tabindex: 0, role: 'list', 'aria-label': items(length),
    style: `height: ${Math.min(length, 9) * 26 + 2}px` });
  const rows = new Rows(box, 26, index => el('div', { class: 'row', role: 'listitem', 'aria-setsize': length, 'aria-posinset': index + 1 },
    el('span', { class: 'muted number' }, count(index + 1)), ...make(index).map(part => el('span', {}, part))));
  rows.show(length);
  return box;
}

function integersNote(value) {
  return value.i ? el('div', { class: 'muted' }, t('with {} before the items', value.i.join(', '))) : null;
}

/** What there is to see of a value: one or more nodes. */
function valueNodes(value, field) {
  if (value === null || value === undefined) return [el('span', { class: 'muted' }, t('not known'))];
  const cut = (left, all, text) => left < all ? el('div', { class: 'muted' }, fill(text, count(left), count(all))) : null;
  switch (field.shape) {
    case 'text': {
      const text = textAt(value);
      if (text === '') return [el('span', { class: 'muted' }, t('empty'))];
      return [el('span', { class: 'text' }, text), typeof value === 'number' ? null : cut(text.length, value[1], t('the first {} of {} characters'))];
    }
    case 'blob':
      return [bytes(value[0]), value[1] === '' ? null : el('pre', {}, hexOf(value[1]) + (value[1].length / 2 < value[0] ? ' …' : ''))];
    case 'pointer': return [linkTo(value)];
    case 'pointers': {
      const held = itemsOf(value);
      return [integersNote(value), listNode(held.length, index => [linkTo(held[index])])];
    }
    case 'map': {
      const [keys, held] = value.map(itemsOf);
      const length = Math.max(keys.length, held.length);
      const half = (list, index) => index < list.length ? linkTo(list[index]) : el('span', { class: 'broken' }, t('missing'));
      return [listNode(length, index => [half(keys, index), half(held, index)], 'pairs')];
    }
    case 'numbers': case 'texts': {
      const held = itemsOf(value);
      return [integersNote(value), listNode(held.length, index => [field.shape === 'texts' ? textAt(held[index]) : exactly(held[index])]),
        cut(held.length, value.n ?? held.length, t('the first {} of {} items'))];
    }
    default: return [inLine(value, field)];
  }
}

// ------------------------------------------------------------------------------------------------ summary, theme

function showSummary() {
  const { faults, notes } = findings;
  document.title = `${file.name} · ${t('report')}`;
  byId('title').textContent = byId('bar-name').textContent = file.name;
  const verdict = byId('verdict');
  const most = Object.values(findings.kinds).filter(([,, fault]) => fault).sort((a, b) => b[1] - a[1]).slice(0, 5)
    .map(([name, number]) => `${name.toLocaleLowerCase(language)}\u00A0${count(number)}`);
  verdict.textContent = faults > 0 ? several(faults, t('{} fault in this file: {}.'), t('{} faults in this file: {}.'), most.join(', '))
    : notes === 0 ? t('Nothing is wrong with this file.')
      : several(notes, t('Nothing is wrong with this file; there is {} note.'), t('Nothing is wrong with this file; there are {} notes.'));
  verdict.classList.add(faults > 0 ? 'bad' : 'good');
  byId('bar-findings').textContent = faults > 0 ? count(faults) : '';
  const DIGESTS = { none: t('none'), later: t('later layout'), open: t('not read'), right: t('right'), wrong: t('wrong') };
  const used = classes.filter(one => one.objects > 0).length;
  const facts = [
    [t('Size'), count(file.bytes), t('bytes')],
    [t('Objects'), count(file.objects), several(used, t('of {} class'), t('of {} classes'))],
    [t('Records'), count(file.records), file.counted === file.records ? t('as the header counts') : t('the header counts {}', count(file.counted))],
    [t('Version'), String(file.version), t('release {}', file.release)],
    [t('Schema'), count(file.schema), several(classes.length, t('bytes, {} class'), t('bytes, {} classes'))],
    [t('Digest'), DIGESTS[file.digest], t('of heads and order'), file.digest === 'wrong'],
    [t('Scrambled'), file.scrambled === 0 ? t('none') : count(file.scrambled), t('of the records')],
    [t('Findings'), faults === 0 ? t('none') : several(faults, t('{} fault'), t('{} faults')), several(notes, t('{} note'), t('{} notes')), faults > 0],
  ];
  byId('facts').append(...facts.map(([name, value, more, bad]) =>
    el('div', { class: bad ? 'bad' : null }, el('dt', {}, name), el('dd', {}, value, el('small', {}, more)))));
  byId('footer').textContent = t('Made by {}.', data.tool);
}

function setUpTheme() {
  const NAMES = { auto: t('Theme: system'), light: t('Theme: light'), dark: t('Theme: dark') };
  const system = matchMedia('(prefers-color-scheme: dark)');
  let chosen = 'auto';
  try { chosen = localStorage.getItem('zo-theme') || 'auto'; } catch { /* a file's page may have no storage */ }
  if (!(chosen in NAMES)) chosen = 'auto';
  const apply = () => {
    document.documentElement.dataset.theme = chosen === 'auto' ? (system.matches ? 'dark' : 'light') : chosen;
    byId('theme').textContent = NAMES[chosen];
    map.draw();
  };
  system.addEventListener('change', apply);
  byId('theme').addEventListener('click', () => {
    const names = Object.keys(NAMES);
    chosen = names[(names.indexOf(chosen) + 1) % names.length];
    try { localStorage.setItem('zo-theme', chosen); } catch { /* then it holds for this visit */ }
    apply();
  });
  return apply;
}

// ----------------------------------------------------------------------------------------------------- findings

function showFindings() {
  const list = byId('findings-list');
  const all = findings.rows;
  if (all.length === 0) {
    list.append(el('p', { class: 'none' }, t('Nothing was found.')));
    return;
  }
  let shown = all;
  const HEIGHT = 68;
  const rows = new Rows(list, HEIGHT, index => {
    const [fault, kind, offset, number, uid, of, text] = shown[index];
    const places = [
      el('a', { href: `#b${offset}` }, t('byte {}', count(offset))), number > 0 ? ` · ${t('record {}', count(number))}` : '',
    ];
    const who = uid === 0 ? of : rowOf.has(uid) ? linkTo(uid) : `${of} ${uid}`.trim();
    return el('div', { class: `row finding ${fault ? 'fault' : 'note-row'}`, role: 'listitem', 'aria-setsize': shown.length, 'aria-posinset': index + 1 },
      el('span', { class: 'mark' }, fault ? '▲ ' : '○ ', el('span', { class: 'word' }, fault ? t('Fault') : t('Note'))),
      el('span', { class: 'text' }, el('span', {}, findings.kinds[kind][0]), el('span', { class: 'muted', title: text }, text)),
      el('span', { class: 'place' }, el('span', {}, ...places), el('span', {}, who)));
  });
  list.setAttribute('role', 'list');
  list.tabIndex = 0;
  list.setAttribute('aria-labelledby', 'findings-title');
  const show = kind => {
    shown = kind < 0 ? all : all.filter(one => one[1] === kind);
    list.style.height = `${Math.min(shown.length, 6.5) * HEIGHT + 2}px`;
    rows.show(shown.length);
  };
  const kinds = Object.entries(findings.kinds);
  if (kinds.length > 1) {
    byId('findings-choice').hidden = false;
    byId('findings-kind').append(el('option', { value: -1 }, t('all ({})', count(findings.faults + findings.notes))),
      ...kinds.map(([kind, [name, number]]) => el('option', { value: kind }, `${name} (${count(number)})`)));
    byId('findings-kind').addEventListener('change', event => show(Number(event.target.value)));
  }
  if (all.length < findings.faults + findings.notes) {
    list.after(el('p', { class: 'note' }, t('These are {} of {} findings.', count(all.length), count(findings.faults + findings.notes))));
  }
  show(-1);
}

// ------------------------------------------------------------------------------------------------ colours, bytes

// The classes with most bytes have colours of their own.
const ranked = classes.filter(one => one.objects > 0).sort((a, b) => b.bytes - a.bytes || a.index - b.index);
ranked.slice(0, 8).forEach((one, rank) => { one.colour = `--class-${rank + 1}`; });
const colourOf = index => (index >= 0 && classes[index].colour) || '--other';

const PARTS = new Map([
  [-1, [t('header'), '--head']], [-2, [t('schema'), '--schema']], [-3, [t('damaged record'), '--fault']],
  [-4, [t('bytes of no record'), '--fault']], [-5, [t('record of an unknown class'), '--fault']], [-6, [t('several classes'), '--other']],
]);
const isDamage = what => what <= -3 && what >= -5;

const map = (() => {
  const canvas = byId('map');
  const { lengths, what } = data.map;
  const starts = new Float64Array(lengths.length + 1);
  lengths.forEach((length, index) => { starts[index + 1] = starts[index] + length; });
  const total = starts[lengths.length];
  const lines = total < 600 ? 2 : total < 20000 ? 4 : 7;
  const GAP = 6, HEIGHT = 18;
  let cursor = -1; // the byte that is pointed out
  canvas.style.height = `${lines * (HEIGHT + GAP)}px`;

  /** The index of the last of ascending starts that is not above the byte. */
  const search = (ascending, length, byte) => {
    let low = 0, high = length;
    while (low < high) {
      const middle = (low + high) >>> 1;
      if (ascending[middle] <= byte) low = middle + 1; else high = middle;
    }
    return low - 1;
  };
  const runAt = byte => search(starts, lengths.length, byte);
  const rowAt = byte => {
    const row = search(offsets, offsets.length, byte);
    return row >= 0 && byte < offsets[row] + 24 + sizes[row] ? row : -1;
  };

  function draw() {
    const ratio = devicePixelRatio || 1;
    const width = canvas.clientWidth;
    if (width === 0 || total === 0) return;
    canvas.width = Math.round(width * ratio);
    canvas.height = Math.round(canvas.clientHeight * ratio);
    const paint = canvas.getContext('2d');
    paint.scale(ratio, ratio);
    const style = getComputedStyle(document.documentElement);
    const colour = name => style.getPropertyValue(name);
    const scale = width * lines / total; // pixels a byte
    const bar = (from, to, thickness, shift) => { // in pixels along all lines
      while (from < to) {
        const line = Math.min(Math.floor(from / width), lines - 1);
        const end = line === lines - 1 ? to : Math.min(to, (line + 1) * width);
        paint.fillRect(from - line * width, line * (HEIGHT + GAP) + shift, end - from, thickness);
        from = end;
      }
    };
    const paintRuns = damage => {
      for (let run = 0; run < lengths.length; ++run) {
        if (isDamage(what[run]) !== damage) continue;
        const from = starts[run] * scale;
        const to = damage ? Math.max(starts[run + 1] * scale, from + 3) : starts[run + 1] * scale;
        paint.fillStyle = colour(what[run] >= 0 ? colourOf(what[run]) : PARTS.get(what[run])[1]);
        bar(from, to, HEIGHT, 0);
        if (damage) bar(from, Math.max(to, from + 5), 3, HEIGHT + 1); // is seen without its colour, too
      }
    };
    paintRuns(false);
    if (uids.length > 0 && 60 * scale > 7) { // where records are wide enough, their borders show
      paint.fillStyle = colour('--paper');
      for (let row = 0; row < uids.length; ++row) bar(offsets[row] * scale - 0.5, offsets[row] * scale + 0.5, HEIGHT, 0);
    }
    paintRuns(true);
    if (cursor >= 0) {
      const row = rowAt(cursor), run = runAt(cursor);
      const [from, to] = row >= 0 ? [offsets[row], offsets[row] + 24 + sizes[row]] : [starts[run], starts[run + 1]];
      paint.fillStyle = colour('--ink');
      bar(from * scale, Math.max(to * scale, from * scale + 2), 2, HEIGHT + 2);
      bar(from * scale, Math.max(to * scale, from * scale + 2), 2, -1);
    }
  }

  function describe(byte) {
    const row = rowAt(byte), run = runAt(byte);
    if (row >= 0) {
      return t('Bytes {} to {}: {}, record {}', count(offsets[row]), count(offsets[row] + 23 + sizes[row]),
        `${nameOf(classAt[row])} ${uids[row]}`, count(numbers[row]));
    }
    const name = what[run] >= 0 ? nameOf(what[run]) : PARTS.get(what[run])[0];
    return t('Bytes {} to {}: {}', count(starts[run]), count(starts[run + 1] - 1), name);
  }

  function point(byte) {
    if (total === 0) return;
    cursor = Math.min(Math.max(byte, 0), total - 1);
    const text = describe(cursor);
    byId('bytes-place').textContent = text;
    canvas.setAttribute('aria-valuenow', cursor);
    canvas.setAttribute('aria-valuetext', text);
    draw();
  }

  const byteAt = event => {
    const box = canvas.getBoundingClientRect();
    const line = Math.min(Math.max(Math.floor((event.clientY - box.top) / (HEIGHT + GAP)), 0), lines - 1);
    return Math.floor((line + (event.clientX - box.left) / box.width) * total / lines);
  };
  const open = () => {
    const row = rowAt(cursor);
    if (row >= 0) location.hash = `o${uids[row]}`;
  };
  const step = forward => {
    const row = rowAt(cursor), run = runAt(Math.max(cursor, 0));
    const [from, to] = row >= 0 ? [offsets[row], offsets[row] + 24 + sizes[row]] : [starts[run], starts[run + 1]];
    if (cursor < 0) return point(0);
    if (forward) {
      if (to < total) point(to);
      return undefined;
    }
    if (from === 0) return undefined;
    const before = rowAt(from - 1);
    return point(before >= 0 ? offsets[before] : starts[runAt(from - 1)]);
  };

  canvas.setAttribute('aria-valuemin', 0);
  canvas.setAttribute('aria-valuemax', Math.max(total - 1, 0));
  canvas.setAttribute('aria-valuenow', 0);
  canvas.addEventListener('pointermove', event => point(byteAt(event)));
  canvas.addEventListener('click', event => { point(byteAt(event)); open(); });
  canvas.addEventListener('keydown', event => {
    const keys = {
      ArrowRight: () => step(true), ArrowDown: () => step(true), ArrowLeft: () => step(false), ArrowUp: () => step(false),
      Home: () => point(0), End: () => point(total - 1), Enter: open,
    };
    if (!(event.key in keys) || event.altKey || event.ctrlKey || event.metaKey) return;
    event.preventDefault();
    keys[event.key]();
  });
  new ResizeObserver(draw).observe(canvas);

  const bytesOf = new Map();
  what.forEach((one, run) => {
    const key = one >= 0 && !classes[one].colour ? 'other' : one;
    bytesOf.set(key, (bytesOf.get(key) || 0) + lengths[run]);
  });
  const legend = [];
  const entry = (name, colour, length) => legend.push(el('li', {},
    el('span', { class: 'swatch', style: `background: var(${colour})` }), name, el('span', { class: 'muted' }, ` ${count(length)}`)));
  for (const part of [-3, -4, -5, -1, -2]) {
    if (bytesOf.has(part)) entry(PARTS.get(part)[0], PARTS.get(part)[1], bytesOf.get(part));
  }
  for (const one of ranked.slice(0, 8)) if (bytesOf.has(one.index)) entry(shortened(one.name, 40), one.colour, bytesOf.get(one.index));
  const rest = (bytesOf.get('other') || 0) + (bytesOf.get(-6) || 0);
  if (rest > 0) entry(t('other classes'), '--other', rest);
  byId('bytes-legend').append(...legend);
  byId('bytes-note').textContent =
    t('{} from the first to the last, in {} lines; {} a line.', bytes(total), lines, bytes(Math.max(1, Math.round(total / lines))));
  return { draw, point };
})();

// ------------------------------------------------------------------------------------------------------ classes

function showClasses() {
  const box = byId('classes-list');
  const most = ranked.length > 0 ? ranked[0].bytes : 1;
  const all = ranked.reduce((sum, one) => sum + one.bytes, 0) || 1;
  const title = (text, number) => el('span', { role: 'columnheader', class: number ? 'number' : null }, text);
  const titles = el('div', { class: 'row class-row titles', role: 'row' }, title(t('Class')), title(t('Objects'), true), title(t('Bytes'), true),
    title(''), title(t('Share'), true), title(t('Bytes each'), true));
  const rows = new Rows(box, 30, index => {
    const one = ranked[index];
    const cell = (text, number) => el('span', { role: 'cell', class: number ? 'number' : null }, text);
    return el('div', { class: 'row class-row', role: 'row', 'aria-rowindex': index + 2 },
      el('span', { role: 'cell' }, el('span', { class: 'swatch', style: `background: var(${colourOf(one.index)})` }),
        el('a', { href: `#c${one.index}` }, one.name)),
      cell(count(one.objects), true), cell(count(one.bytes), true),
      el('span', { role: 'cell', class: 'track' }, el('span', { style: `width: ${100 * one.bytes / most}%; background: var(${colourOf(one.index)})` })),
      cell(percent(one.bytes / all), true), cell(count(Math.round(one.bytes / one.objects)), true));
  }, titles);
  box.setAttribute('role', 'table');
  box.setAttribute('aria-rowcount', ranked.length + 1);
  box.setAttribute('aria-labelledby', 'classes-title');
  box.tabIndex = 0;
  box.style.height = `${Math.min(ranked.length, 16) * 30 + 34}px`;
  rows.show(ranked.length);
  const empty = classes.filter(one => one.objects === 0);
  if (empty.length > 0) {
    const names = empty.slice(0, 60).map(one => one.name).join(', ');
    byId('classes-note').textContent = empty.length <= 60 ? t('Without objects of their own: {}.', names)
      : t('Without objects of their own: {}, and {} more.', names, count(empty.length - 60));
  }
}

function setUpDiagram() {
  const drawing = byId('drawing');
  const button = byId('diagram-size');
  const svg = drawing.querySelector('svg');
  if (!svg) {
    if (!drawing.textContent.trim()) drawing.textContent = t('There is no schema to draw.');
    button.hidden = true;
    return;
  }
  // The lines of the class under the pointer stand out.
  const pick = event => {
    const box = event.target.closest('[data-box]');
    const own = box ? box.dataset.box : null;
    svg.classList.toggle('picked', own !== null);
    for (const line of svg.querySelectorAll('[data-from]')) {
      line.classList.toggle('lit', own !== null && (line.dataset.to === own || line.dataset.from.split(' ').includes(own)));
    }
  };
  svg.addEventListener('pointerover', pick);
  svg.addEventListener('pointerleave', pick);
  const full = Number(svg.getAttribute('width'));
  const update = () => { button.hidden = !drawing.classList.contains('full') && full <= drawing.clientWidth - 24; };
  new ResizeObserver(update).observe(drawing);
  button.addEventListener('click', () => {
    const pressed = drawing.classList.toggle('full');
    button.setAttribute('aria-pressed', pressed);
  });
}

// ------------------------------------------------------------------------------------------------------- search

const lowered = (() => {
  let made = null;
  return () => made ??= strings.map(text => text.toLowerCase());
})();

/** Compares a value with what was asked for; items of lists count one by one. */
function holds(value, field, compare, wanted) {
  if (value === null || value === undefined) return false;
  switch (field.shape) {
    case 'text': return compare(lowered()[typeof value === 'number' ? value : value[0]], wanted);
    case 'texts': return itemsOf(value).some(item => compare(lowered()[typeof item === 'number' ? item : item[0]], wanted));
    case 'bool': return compare(value ? 'true' : 'false', wanted);
    case 'blob': return compare(value[0], wanted);
    case 'map': return value.some(half => itemsOf(half).some(item => compare(item, wanted)));
    case 'numbers': case 'pointers': return itemsOf(value).some(item => compare(item, wanted));
    default: return compare(value, wanted);
  }
}

const ORDERS = {
  '=': order => order === 0, '!=': order => order !== 0, '<': order => order < 0,
  '<=': order => order <= 0, '>': order => order > 0, '>=': order => order >= 0,
};

function conditionOf(word) {
  const parts = /^([^\s=<>!]+)(=|!=|<=|>=|<|>)(.*)$/.exec(word);
  if (!parts) return null;
  const [, name, sign, text] = parts;
  const number = text === '' ? NaN : Number(text.replace(POINT, '.'));
  const compare = (value, wanted) => {
    if (typeof value === 'number') return !Number.isNaN(number) && ORDERS[sign](value - number);
    return ORDERS[sign](value < wanted ? -1 : value > wanted ? 1 : 0);
  };
  const places = new Map();
  return row => {
    const of = classAt[row];
    if (of < 0 || !values[row]) return false;
    if (!places.has(of)) places.set(of, fieldsOf(of).findIndex(field => field.name.toLowerCase() === name));
    const place = places.get(of);
    return place >= 0 && holds(values[row][place], fieldsOf(of)[place], compare, text);
  };
}

function wordOf(word) {
  const inString = Uint8Array.from(lowered(), text => text.includes(word) ? 1 : 0);
  const inClass = classes.map(one => one.name.toLowerCase().includes(word));
  const has = value => inString[typeof value === 'number' ? value : value[0]] === 1;
  return row => {
    const of = classAt[row];
    if (String(uids[row]) === word || (of >= 0 && inClass[of])) return true;
    if (of < 0 || !values[row]) return false;
    classes[of].texts ??= fieldsOf(of).map((field, place) => ({ field, place })).filter(({ field }) => /^texts?$/.test(field.shape));
    return classes[of].texts.some(({ field, place }) => {
      const value = values[row][place];
      if (value === null || value === undefined) return false;
      return field.shape === 'text' ? has(value) : itemsOf(value).some(has);
    });
  };
}

/** The rows of a class and its subclasses, or of all for -1, that hold every word of the query. */
function find(of, query) {
  const words = (query.toLowerCase().match(/[^\s"]*"[^"]*"?|\S+/g) || []).map(word => word.replace(/"/g, '')).filter(Boolean);
  const tests = words.map(word => conditionOf(word) || wordOf(word));
  const among = of < 0 ? null : classes.map((_, index) => ancestorsOf(index).has(of));
  const found = [];
  for (let row = 0; row < uids.length; ++row) {
    if (among && (classAt[row] < 0 || !among[classAt[row]])) continue;
    if (tests.every(test => test(row))) found.push(row);
  }
  const exact = rowOf.get(Number(query.trim()));
  const place = exact === undefined || query.trim() === '' ? -1 : found.indexOf(exact);
  if (place > 0) found.unshift(...found.splice(place, 1));
  return found;
}

// ------------------------------------------------------------------------------------------------------- objects

const browser = (() => {
  const grid = byId('grid');
  const MOST_COLUMNS = 40;
  let chosen = -1, rows = [], cursor = -1, sorted = null, list = null, columns = [];

  const preview = row => {
    const of = classAt[row];
    if (of < 0 || !values[row]) return '';
    const title = titleOf(row);
    const rest = [];
    for (let place = 0; place < fieldsOf(of).length && rest.length < 6; ++place) {
      const field = fieldsOf(of)[place];
      const value = values[row][place];
      if (value === null || value === undefined || (place === classes[of].title && title)) continue;
      const text = inLine(value, field);
      if (text !== '') rest.push(`${field.name} ${field.shape === 'pointer' && value !== 0 ? '→ ' : ''}${shortened(text, 30)}`);
    }
    return [title ? `“${shortened(title, 60)}”` : '', rest.join(BETWEEN)].filter(Boolean).join('  ');
  };
  const swatch = row => el('span', { class: 'swatch', style: `background: var(${colourOf(classAt[row])})` });
  const plainColumns = () => [
    { name: t('Uid'), width: '72px', number: true, key: row => uids[row], make: row => [String(uids[row])] },
    { name: t('Class'), width: 'minmax(90px, 180px)', key: row => nameOf(classAt[row]), make: row => [swatch(row), nameOf(classAt[row])] },
    { name: t('Values'), width: 'minmax(140px, 1fr)', key: row => titleOf(row), make: row => [preview(row)] },
    { name: t('Bytes'), width: '64px', number: true, key: row => sizes[row], make: row => [count(sizes[row])] },
    { name: t('At byte'), width: '96px', number: true, key: row => offsets[row], make: row => [count(offsets[row])] },
  ];
  const widthOf = { number: '104px', bool: '64px', text: '180px', pointer: '190px', texts: '200px', numbers: '180px' };
  const classColumns = of => {
    const valueOf = (row, field) => {
      const place = placesOf(classAt[row]).get(field.key);
      return place === undefined || !values[row] ? null : values[row][place];
    };
    const keyOf = (value, field) => {
      if (value === null || value === undefined) return '';
      if (field.shape === 'pointers' || field.shape === 'numbers' || field.shape === 'texts') return itemsOf(value).length;
      if (field.shape === 'blob') return value[0];
      if (field.shape === 'map') return itemsOf(value[1]).length;
      return field.shape === 'text' ? textAt(value) : value;
    };
    const plain = plainColumns();
    return [plain[0], ...(classes.some(one => one.parents.includes(of)) ? [{ ...plain[1], width: '150px' }] : []),
      ...fieldsOf(of).slice(0, MOST_COLUMNS).map(field => ({
        name: field.name, width: widthOf[field.shape] || '110px', number: field.shape === 'number',
        key: row => keyOf(valueOf(row, field), field),
        make: row => {
          const value = valueOf(row, field);
          if (field.shape !== 'pointer' || value === null || value === undefined) return [inLine(value, field)];
          const link = linkTo(value);
          link.tabIndex = -1; // the keyboard goes by the object beside the table
          return [link];
        },
      })), { ...plain[3], width: '72px' }, plain[4]];
  };

  const makeRow = index => {
    const row = rows[index];
    return el('div', { class: 'row', role: 'row', id: `row-${index}`, 'data-index': index, 'aria-rowindex': index + 2, 'aria-selected': String(index === cursor),
      style: list.layout }, ...columns.map(column => el('span', { role: 'gridcell', class: column.number ? 'number' : null }, ...column.make(row))));
  };

  function sortBy(column) {
    sorted = sorted && sorted.column === column ? { column, down: !sorted.down } : { column, down: false };
    apply();
  }
  function order() {
    if (!sorted) return;
    const keys = new Map(rows.map(row => [row, sorted.column.key(row)]));
    const sign = sorted.down ? -1 : 1;
    rows.sort((a, b) => {
      const x = keys.get(a), y = keys.get(b);
      if (typeof x === 'string' || typeof y === 'string') return sign * String(x).localeCompare(String(y), language) || a - b;
      return sign * (x - y) || a - b;
    });
  }

  /** Makes the table anew for the columns that the chosen class has. */
  function setUp() {
    sorted = null;
    columns = chosen < 0 ? plainColumns() : classColumns(chosen);
    const fixed = columns.every(column => column.width.endsWith('px'));
    const layout = `grid-template-columns: ${columns.map(column => column.width).join(' ')};` + (fixed ? '' : 'width: max(100%, 540px)');
    const titles = el('div', { class: 'row titles', role: 'row', 'aria-rowindex': 1, style: layout },
      ...columns.map(column => {
        const button = el('button', { type: 'button', title: t('Sort by {}', column.name) }, column.name);
        button.addEventListener('click', () => sortBy(column));
        column.title = el('span', { role: 'columnheader', class: column.number ? 'number' : null }, button);
        return column.title;
      }));
    list?.stop();
    list = Object.assign(new Rows(grid, 28, makeRow, titles), { layout });
    const scroll = list;
    list.stop = () => { scroll.draw = () => {}; };
    grid.scrollTo(0, 0);
    grid.setAttribute('aria-colcount', columns.length);
    const fields = chosen < 0 ? 0 : fieldsOf(chosen).length;
    const notes = [];
    if (fields > MOST_COLUMNS) notes.push(t('The table shows {} of {} fields; an object shows them all.', MOST_COLUMNS, count(fields)));
    if (data.undecided.length > 0) {
      notes.push(t('The file does not tell how these fields stand in their records, and they are read in the plainest way: {}.',
        shortened(data.undecided.join(', '), 400)));
    }
    if (!whole) {
      notes.push(t('This page holds the first {} of {} objects; zo ls and zo dump have them all.', count(uids.length), count(file.objects)));
    }
    byId('objects-note').textContent = notes.join(' ');
    byId('objects-note').hidden = notes.length === 0;
  }

  /** Fills the table for the class and the search. */
  function apply() {
    const open = cursor >= 0 ? rows[cursor] : shownRow();
    rows = find(chosen, byId('search').value);
    order();
    cursor = open === undefined ? -1 : rows.indexOf(open);
    for (const column of columns) {
      if (sorted && sorted.column === column) column.title.setAttribute('aria-sort', sorted.down ? 'descending' : 'ascending');
      else column.title.removeAttribute('aria-sort');
    }
    grid.setAttribute('aria-rowcount', rows.length + 1);
    list.show(rows.length);
    grid.scrollTop = 0;
    if (cursor >= 0) list.reveal(cursor);
    mark();
    byId('objects-count').textContent = rows.length === uids.length ? objects(uids.length) : t('{} of {}', count(rows.length), objects(uids.length));
  }

  const shownRow = () => {
    const match = /^#o(-?\d+)$/.exec(location.hash);
    return match ? rowOf.get(Number(match[1])) : undefined;
  };

  function mark() {
    for (const [index, row] of list.shown) row.setAttribute('aria-selected', String(index === cursor));
    if (cursor >= 0) grid.setAttribute('aria-activedescendant', `row-${cursor}`);
    else grid.removeAttribute('aria-activedescendant');
  }

  /** Goes to a line of the table and shows its object beside it. */
  function move(index) {
    if (rows.length === 0) return;
    cursor = Math.min(Math.max(index, 0), rows.length - 1);
    list.reveal(cursor);
    mark();
    history.replaceState(null, '', `#o${uids[rows[cursor]]}`);
    detail(rows[cursor]);
  }

  function choose(of) {
    chosen = of;
    byId('objects-class').value = String(of);
    setUp();
    apply();
  }

  /** Shows an object; true if there is one of that uid. */
  function show(uid) {
    const row = rowOf.get(uid);
    if (row === undefined) return false;
    cursor = rows.indexOf(row);
    if (cursor >= 0) list.reveal(cursor);
    mark();
    detail(row);
    return true;
  }

  grid.addEventListener('click', event => {
    if (event.target.closest('a, button')) return;
    const row = event.target.closest('[data-index]');
    if (!row) return;
    cursor = Number(row.dataset.index);
    mark();
    const hash = `#o${uids[rows[cursor]]}`;
    if (location.hash !== hash) history.pushState(null, '', hash);
    detail(rows[cursor]);
  });
  grid.addEventListener('keydown', event => {
    if (event.target !== grid || event.altKey || event.ctrlKey || event.metaKey) return;
    const page = Math.max(Math.floor(list.place().view / 28) - 1, 1);
    const keys = {
      ArrowDown: () => move(cursor + 1), ArrowUp: () => move(cursor - 1), PageDown: () => move(cursor + page), PageUp: () => move(cursor - page),
      Home: () => move(0), End: () => move(rows.length - 1),
      Enter: () => { if (cursor < 0) move(0); byId('detail-title')?.focus(); },
    };
    if (!(event.key in keys)) return;
    event.preventDefault();
    keys[event.key]();
  });

  let waiting = 0;
  const search = byId('search');
  const searchNow = () => { clearTimeout(waiting); waiting = 0; apply(); };
  search.addEventListener('input', () => { clearTimeout(waiting); waiting = setTimeout(searchNow, 120); });
  search.addEventListener('keydown', event => {
    if (event.key !== 'Enter' && event.key !== 'ArrowDown') return;
    event.preventDefault();
    if (waiting) searchNow();
    grid.focus();
    move(0);
  });
  document.addEventListener('keydown', event => {
    const typing = event.target.tagName === 'INPUT';
    if (event.key === '/' && !typing && !event.ctrlKey && !event.metaKey && !event.altKey) {
      event.preventDefault();
      byId('objects').scrollIntoView();
      search.focus();
      search.select();
    } else if (event.key === 'Escape' && byId('detail').contains(event.target)) {
      grid.focus();
    }
  });

  const listed = classes.map((one, index) => ({ one, index, objects: 0 }));
  for (const { one, index } of listed) {
    if (one.objects > 0) for (const ancestor of ancestorsOf(index)) listed[ancestor].objects += one.objects;
  }
  byId('objects-class').append(el('option', { value: -1 }, t('All classes')), ...listed.filter(({ objects }) => objects > 0)
    .sort((a, b) => a.one.name.localeCompare(b.one.name, language))
    .map(({ one, index, objects }) => el('option', { value: index }, `${shortened(one.name, 60)} (${count(objects)})`)));
  byId('objects-class').addEventListener('change', event => choose(Number(event.target.value)));
  return { choose, show };
})();

// -------------------------------------------------------------------------------------------------- one object

/** The objects that own an object, from the root. */
function ownersOf(row) {
  const { starts, sources, fields } = pointers();
  const trail = [];
  const seen = new Set([row]);
  for (let at = row; ;) {
    let owner = -1;
    for (let one = starts[at]; one < starts[at + 1] && owner < 0; ++one) if (OWNING.has(fields[one].kind)) owner = sources[one];
    if (owner < 0 || seen.has(owner)) return trail.reverse();
    seen.add(owner);
    trail.push(owner);
    at = owner;
  }
}

function detail(row) {
  const of = classAt[row];
  const panel = byId('detail');
  const owners = ownersOf(row);
  const shownOwners = owners.length > 8 ? [...owners.slice(0, 2), null, ...owners.slice(-5)] : owners;
  const trail = shownOwners.flatMap(owner => [owner === null ? `… ${t('{} more', count(owners.length - 7))} …` : linkTo(uids[owner]), ' › ']);
  const title = titleOf(row);
  const parents = of < 0 ? [] : [...ancestorsOf(of)].filter(one => one !== of).map(nameOf);
  const head = [
    el('p', { class: 'trail' }, ...(trail.length > 0 ? trail : [t('Owned by no other object')])),
    el('h3', { id: 'detail-title', tabindex: -1 }, `${nameOf(of)} ${uids[row]}`, title ? ` “${shortened(title, 120)}”` : ''),
    el('p', { class: 'where' }, parents.length > 0 ? `${t('derives from {}', shortened(parents.join(', '), 120))}; ` : '',
      `${t('record {}', count(numbers[row]))}, ${bytes(sizes[row])} `, el('a', { href: `#b${offsets[row]}` }, t('at byte {}', count(offsets[row])))),
  ];
  const body = [];
  if (!values[row]) body.push(el('p', { class: 'broken' }, t('The values of this record could not be read.')));
  else if (fieldsOf(of).length > 0) {
    const line = place => {
      const field = fieldsOf(of)[place];
      const kind = field.of >= 0 ? `${field.kindName}: ${nameOf(field.of)}` : field.kindName;
      const nodes = valueNodes(values[row][place], field).filter(node => node !== null);
      const wide = nodes.some(node => node instanceof Element && node.classList.contains('rows'));
      return el('tr', { class: wide ? 'wide' : null },
        el('th', { scope: 'row' }, field.name, el('small', {}, kind, field.from === of ? '' : ` · ${t('of {}', nameOf(field.from))}`)),
        el('td', {}, ...nodes));
    };
    const table = el('table', { 'aria-label': t('Fields') });
    let next = 0;
    const more = el('button', { type: 'button', class: 'quiet' }, '');
    const extend = () => {
      const end = Math.min(next + 200, fieldsOf(of).length);
      for (; next < end; ++next) table.append(line(next));
      more.textContent = several(fieldsOf(of).length - next, t('{} more field'), t('{} more fields'));
      more.hidden = next === fieldsOf(of).length;
    };
    more.addEventListener('click', extend);
    extend();
    body.push(table, more);
  }
  const { starts, sources, fields } = pointers();
  const from = starts[row], number = starts[row + 1] - from;
  body.push(el('h4', {}, number === 0 ? t('No object points to it') : several(number, t('{} pointer to it'), t('{} pointers to it'))));
  if (number > 0) body.push(listNode(number, index => [el('span', {}, linkTo(uids[sources[from + index]]), ` · ${fields[from + index].name}`)]));
  panel.replaceChildren(...head, ...body);
  panel.scrollTop = 0;
}

// ---------------------------------------------------------------------------------------------------- addresses

/** `#o12` is the object of uid 12, `#c3` the objects of the class of index 3, `#b400` byte 400. */
function route() {
  const match = /^#([ocb])(-?\d+)$/.exec(location.hash);
  if (!match) return;
  const number = Number(match[2]);
  if (match[1] === 'b') {
    map.point(number);
    byId('bytes').scrollIntoView();
    byId('map').focus({ preventScroll: true });
    return;
  }
  if (match[1] === 'c') {
    if (number < 0 || number >= classes.length) return;
    byId('search').value = '';
    browser.choose(number);
    byId('objects').scrollIntoView();
    byId('grid').focus({ preventScroll: true });
    return;
  }
  if (!browser.show(number)) return;
  byId('detail').scrollIntoView({ block: 'nearest' });
  byId('detail-title').focus({ preventScroll: true });
}

showSummary();
const applyTheme = setUpTheme();
showFindings();
showClasses();
setUpDiagram();
browser.choose(-1);
if (uids.length > 0) detail(0);
else byId('detail').append(el('p', { class: 'none', id: 'detail-title' }, t('There is no object.')));
applyTheme();
addEventListener('hashchange', route);
route();

})();
