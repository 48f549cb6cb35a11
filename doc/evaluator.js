// The device of a definition text within a page: it answers as the engine would, without one. It
// works on the data that deviceData() makes (device_data.h), follows the engine's functions step by
// step, and is held against them by tests.
//
//   const device = new OstrelDevice(data);
//   device.bringUp();                // {changes: [{name: "mode", value: "1080i/50"}, ...]}
//   device.set("mode", "720p/50");   // {changes: [{name: "mode", value: "720p/50"}]}
//   device.set("mode", "sepia");     // {refused: "Set failed because ...", changes: []}
//   device.range("position[1]");     // {spans: [[0, 1279]], texts: []}
//
// Whatever the arguments are, nothing here raises an exception.
//
// Inside, a text is a string with one character for each byte of its UTF-8, so texts have the order
// and the length that they have in the engine. What is undefined, or has no result, is null.
const OstrelDevice = (() => {
  'use strict';

  // ---- Texts ------------------------------------------------------------------------------------

  const isAscii = (text) => /^[\x00-\x7f]*$/.test(text);

  function bytesOfCode(code) {
    const tail = (shift) => 0x80 | ((code >> shift) & 0x3f);
    if (code < 0x80) return [code];
    if (code < 0x800) return [0xc0 | (code >> 6), tail(0)];
    if (code < 0x10000) return [0xe0 | (code >> 12), tail(6), tail(0)];
    return [0xf0 | (code >> 18), tail(12), tail(6), tail(0)];
  }

  // The bytes of an ordinary string. Half a surrogate pair is no character.
  function bytesOf(text) {
    if (isAscii(text)) return text;
    let bytes = '';
    for (const character of text) {
      const code = character.codePointAt(0);
      const isHalf = 0xd800 <= code && code <= 0xdfff;
      bytes += String.fromCharCode(...bytesOfCode(isHalf ? 0xfffd : code));
    }
    return bytes;
  }

  const UTF8_CHARACTER = new RegExp(
      '[\\xc2-\\xdf][\\x80-\\xbf]|\\xe0[\\xa0-\\xbf][\\x80-\\xbf]|' +
          '[\\xe1-\\xec\\xee\\xef][\\x80-\\xbf]{2}|\\xed[\\x80-\\x9f][\\x80-\\xbf]|' +
          '\\xf0[\\x90-\\xbf][\\x80-\\xbf]{2}|[\\xf1-\\xf3][\\x80-\\xbf]{3}|' +
          '\\xf4[\\x80-\\x8f][\\x80-\\xbf]{2}|[\\x80-\\xff]',
      'g',
  );

  // The character of a match; a byte that belongs to none is U+FFFD, as in what the engine sends.
  function characterOf(bytes) {
    if (bytes.length === 1) return '\ufffd';
    let code = bytes.charCodeAt(0) & (0x7f >> bytes.length);
    for (let i = 1; i < bytes.length; ++i) code = (code << 6) | (bytes.charCodeAt(i) & 0x3f);
    return String.fromCodePoint(code);
  }

  const textOf = (bytes) => (isAscii(bytes) ? bytes : bytes.replace(UTF8_CHARACTER, characterOf));

  // As a client gets a text, with what belongs to no character replaced.
  const mended = (bytes) => bytesOf(textOf(bytes));

  const compare = (a, b) => (a < b ? -1 : a > b ? 1 : 0);

  // ---- Numbers ----------------------------------------------------------------------------------

  const NUMBER = /^[ \t\n\v\f\r]*([+-]?)(?:0[xX]([0-9a-fA-F]+)|(0[0-7]*)|([1-9][0-9]*))/;
  const MOST_64_BITS = (1n << 63n) - 1n;
  const SAFE_DIGITS = 13;  // of any base: fewer than 53 bits
  const MOST_DIGITS = 24;  // of any base: more have more than 64 bits

  // The lowest 32 bits of a number of 64 bits, at which it ends.
  function wrapped(isNegative, digits, base) {
    const significant = digits.replace(/^0+/, '');
    if (significant.length <= SAFE_DIGITS) {
      const number = significant === '' ? 0 : parseInt(significant, base);
      return (isNegative ? -number : number) | 0;
    }
    const saturated = isNegative ? 0 : -1;
    if (significant.length > MOST_DIGITS) return saturated;
    const prefix = {8: '0o', 10: '', 16: '0x'}[base];
    const number = BigInt(prefix + significant);
    if (number > MOST_64_BITS) return saturated;
    return Number(BigInt.asIntN(32, isNegative ? -number : number));
  }

  // The number at the start of a text, and how many bytes of it are the number; null without one.
  function numberAtStart(text) {
    const match = NUMBER.exec(text);
    if (match === null) return null;
    const [all, sign, hexadecimal, octal, decimal] = match;
    const isNegative = sign === '-';
    let number;
    if (hexadecimal !== undefined)
      number = wrapped(isNegative, hexadecimal, 16);
    else if (octal !== undefined)
      number = wrapped(isNegative, octal, 8);
    else
      number = wrapped(isNegative, decimal, 10);
    return {number, length: all.length};
  }

  // The number that all of a text is, or null. The empty text is 0.
  function wholeNumber(text) {
    if (text === '') return 0;
    const found = numberAtStart(text);
    return found !== null && found.length === text.length ? found.number : null;
  }

  function leadingNumber(text) {
    const found = numberAtStart(text);
    return found === null ? 0 : found.number;
  }

  // ---- Expressions ------------------------------------------------------------------------------

  // An operand is a number, a text or null.
  function operandOf(text) {
    const number = wholeNumber(text);
    return number === null ? text : number;
  }

  // A value with what it is as an operand.
  const valueOf = (text) => ({text, operand: operandOf(text)});
  const EMPTY_VALUE = valueOf('');

  const isTrue = (operand) => operand !== null && operand !== 0 && operand !== '';
  const toNumber = (operand) => (typeof operand === 'number' ? operand : leadingNumber(operand));
  const toText = (operand) => String(operand);

  const movesEverythingOut = (count) => count < 0 || count > 31;
  const truth = (isSo) => (isSo ? 1 : 0);
  const comparison = (compares) => ({ofNumbers: compares, ofTexts: compares});

  const OPERATORS = new Map(
      Object.entries({
        '||': {ofNumbers: (a, b) => truth(a !== 0 || b !== 0), absorbs: (a) => a !== 0},
        '&&': {ofNumbers: (a, b) => truth(a !== 0 && b !== 0), absorbs: (a) => a === 0},
        '|': {ofNumbers: (a, b) => a | b, absorbs: (a) => a === -1},
        '^': {ofNumbers: (a, b) => a ^ b},
        '&': {ofNumbers: (a, b) => a & b, absorbs: (a) => a === 0},
        '==': comparison((a, b) => truth(a === b)),
        '!=': comparison((a, b) => truth(a !== b)),
        '<': comparison((a, b) => truth(a < b)),
        '>': comparison((a, b) => truth(a > b)),
        '<=': comparison((a, b) => truth(a <= b)),
        '>=': comparison((a, b) => truth(a >= b)),
        '<<': {ofNumbers: (a, b) => (movesEverythingOut(b) ? 0 : a << b)},
        '>>': {ofNumbers: (a, b) => a >> (movesEverythingOut(b) ? 31 : b)},
        '+': {ofNumbers: (a, b) => (a + b) | 0, joins: true},
        '-': {ofNumbers: (a, b) => (a - b) | 0},
        '*': {ofNumbers: (a, b) => Math.imul(a, b)},
        '/': {ofNumbers: (a, b) => (b === 0 ? null : (a / b) | 0)},
        '%': {ofNumbers: (a, b) => (b === 0 ? null : (a % b) | 0)},
        $: {ofTexts: (a, b) => truth(a.includes(b))},
      }),
  );

  function applyToOne(operator, defined) {
    if (defined === null || operator.absorbs === undefined) return null;
    const number = toNumber(defined);
    return operator.absorbs(number) ? number : null;
  }

  function applyOperator(operator, left, right, mostBytes) {
    if (left === null) return applyToOne(operator, right);
    if (right === null) return applyToOne(operator, left);
    const areNumbers = typeof left === 'number' && typeof right === 'number';
    if (areNumbers && operator.ofNumbers !== undefined) return operator.ofNumbers(left, right);
    if (operator.joins) {
      const joined = toText(left) + toText(right);
      return joined.length > mostBytes ? null : joined;
    }
    if (operator.ofTexts !== undefined) return operator.ofTexts(toText(left), toText(right));
    return operator.ofNumbers(toNumber(left), toNumber(right));
  }

  const VARIABLE = 0;
  const CONSTANT = 1;
  const OPERATOR = 2;

  function stepOf(data) {
    const step = (kind, constant, slot, operator) => ({kind, constant, slot, operator});
    if (typeof data === 'number') return step(CONSTANT, data, 0, null);
    if (typeof data === 'string') return step(OPERATOR, null, 0, OPERATORS.get(data));
    const [value] = data;
    const isText = typeof value === 'string';
    return isText ? step(CONSTANT, value, 0, null) : step(VARIABLE, null, value, null);
  }

  // An expression in postfix order.
  class Program {
    constructor(data, mostBytes) {
      this.steps = (Array.isArray(data) ? data : [data]).map(stepOf);
      this.mostBytes = mostBytes;
    }

    // The value in a situation, which is a list of operands by slot.
    evaluate(situation) {
      if (this.steps.length === 1) return this.operand(this.steps[0], situation);
      const stack = [];
      for (const step of this.steps) {
        if (step.kind !== OPERATOR) {
          stack.push(this.operand(step, situation));
          continue;
        }
        const right = stack.pop();
        const left = stack.pop();
        const result = applyOperator(step.operator, left, right, this.mostBytes);
        if (result === null) return null;
        stack.push(result);
      }
      return stack[0];
    }

    operand(step, situation) {
      return step.kind === VARIABLE ? situation[step.slot] : step.constant;
    }

    isTrue(situation) {
      return isTrue(this.evaluate(situation));
    }
  }

  // ---- Bounds -----------------------------------------------------------------------------------

  // Integer spans and texts.
  class Bounds {
    constructor({spans = [], texts = []} = {}) {
      this.orderedSpans = [];
      for (let i = 0; i < spans.length; i += 2) this.orderedSpans.push([spans[i], spans[i + 1]]);
      this.isOrdered = true;
      this.texts = new Set(texts);
      this.correction = texts.length === 0 ? '' : texts[0];
      this.orderedTexts = null;
    }

    addSpan(low, high) {
      this.orderedSpans.push([low, high]);
      this.isOrdered = false;
    }

    addText(text) {
      this.orderedTexts = null;
      if (this.correction === '') this.correction = text;
      this.texts.add(text);
    }

    // Adds what a text means: a number, else the text itself.
    addValue(text) {
      const number = wholeNumber(text);
      if (number === null)
        this.addText(text);
      else
        this.addSpan(number, number);
    }

    // Ascending, with at least one number left out between neighbours.
    get spans() {
      if (!this.isOrdered) {
        this.orderedSpans.sort((a, b) => a[0] - b[0]);
        const joined = [];
        for (const [low, high] of this.orderedSpans) {
          const last = joined[joined.length - 1];
          if (last !== undefined && low - last[1] < 2)
            last[1] = Math.max(last[1], high);
          else
            joined.push([low, high]);
        }
        this.orderedSpans = joined;
        this.isOrdered = true;
      }
      return this.orderedSpans;
    }

    get textsInOrder() {
      if (this.orderedTexts === null) this.orderedTexts = [...this.texts].sort(compare);
      return this.orderedTexts;
    }

    // The nearest number of the spans, of which there is one; between two, the upper one's low end.
    limited(number) {
      const spans = this.spans;
      let first = 0;
      let end = spans.length - 1;
      while (first < end) {
        const middle = (first + end) >> 1;
        if (spans[middle][1] < number)
          first = middle + 1;
        else
          end = middle;
      }
      const span = spans[first];
      return Math.min(Math.max(span[0], number), span[1]);
    }

    // What a value becomes that is not accepted; null for one that is.
    fixOf(value) {
      if (this.orderedSpans.length === 0) return this.fixOfText(value);
      const hasTexts = this.texts.size > 0;
      if (value === '') {
        if (hasTexts) return this.fixOfText(value);
        // Refused, but corrected as 0 would be.
        const limited = this.limited(0);
        return limited === 0 ? '' : String(limited);
      }
      const number = wholeNumber(value);
      return number !== null || !hasTexts ? this.fixOfNumber(number) : this.fixOfText(value);
    }

    fixOfNumber(number) {
      const limited = this.limited(number === null ? 0 : number);
      return limited === number ? null : String(limited);
    }

    fixOfText(value) {
      return this.texts.size === 0 || this.texts.has(value) ? null : this.correction;
    }
  }

  const EVERYTHING = new Bounds();

  // Why a range that is computed has no values.
  const NO_LOWER = -2;
  const LOWER_NO_NUMBER = -3;
  const UPPER_NO_NUMBER = -4;
  const UPSIDE_DOWN = -5;

  // An item of a range that is computed.
  class Item {
    constructor(data, mostBytes) {
      this.isQuoted = data.quoted !== undefined;
      this.lower = new Program(data.low ?? data.value ?? data.quoted, mostBytes);
      this.upper = data.high === undefined ? null : new Program(data.high, mostBytes);
    }

    // Adds what it is in a situation. Returns 0 or why there is nothing.
    addTo(bounds, situation) {
      const lower = this.lower.evaluate(situation);
      if (lower === null) return NO_LOWER;
      if (this.upper === null) {
        if (this.isQuoted)
          bounds.addText(toText(lower));
        else
          bounds.addValue(toText(lower));
        return 0;
      }
      if (typeof lower !== 'number') return LOWER_NO_NUMBER;
      const upper = this.upper.evaluate(situation);
      if (typeof upper !== 'number') return UPPER_NO_NUMBER;
      if (upper < lower) return UPSIDE_DOWN;
      bounds.addSpan(lower, upper);
      return 0;
    }
  }

  // Bounds with a condition; constant, or computed in each situation.
  class Range {
    constructor(data, mostBytes) {
      this.condition = new Program(data.when ?? 1, mostBytes);
      this.items = data.items === undefined ? null : data.items.map((i) => new Item(i, mostBytes));
      this.constant = this.items === null ? new Bounds(data) : null;
    }

    get isComputed() {
      return this.items !== null;
    }

    // Adds what the items are to `bounds`, up to the first that fails. Returns 0 or why.
    compute(bounds, situation) {
      for (const item of this.items) {
        const failed = item.addTo(bounds, situation);
        if (failed !== 0) return failed;
      }
      return 0;
    }
  }

  // The bounds of those ranges that apply in a situation, and whether one of them is computed. A
  // computed range without values accepts everything where `acceptsUnusable`, else it is left out.
  function presentBounds(ranges, situation, acceptsUnusable) {
    const present = {applying: [], hasComputed: false};
    for (const range of ranges) {
      if (!range.condition.isTrue(situation)) continue;
      if (!range.isComputed) {
        present.applying.push(range.constant);
        continue;
      }
      const bounds = new Bounds();
      if (range.compute(bounds, situation) === 0) {
        present.applying.push(bounds);
        present.hasComputed = true;
      } else if (acceptsUnusable) {
        present.applying.push(EVERYTHING);
      }
    }
    return present;
  }

  // What a value becomes that none of the bounds accepts: the first corrects it; null where one
  // accepts it. Where there are none, it is refused and stays.
  function judge(applying, value) {
    if (applying.length === 0) return value;
    const fix = applying[0].fixOf(value);
    if (fix === null) return null;
    for (let i = 1; i < applying.length; ++i) {
      if (applying[i].fixOf(value) === null) return null;
    }
    return fix;
  }

  // ---- Definitions ------------------------------------------------------------------------------

  // What an index and a parameter have in common.
  class Definition {
    constructor(data, sources, mostBytes) {
      const programs = (list) => (list ?? []).map((program) => new Program(program, mostBytes));
      const ranges = (list) => (list ?? []).map((range) => new Range(range, mostBytes));
      this.programs = programs;
      this.rangesOf = ranges;
      this.mostBytes = mostBytes;
      this.name = data.name;
      this.hasClientsName = mended(data.name) === data.name;
      this.sources = (data.names ?? []).map((number) => sources[number]);
      this.available = programs(data.available);
      this.base = new Bounds(data);
      this.ranges = ranges(data.ranges);
      this.changes = new Map(data.changes ?? []);
      this.work = data.work;
    }

    translated(value) {
      return this.changes.get(value) ?? value;
    }

    translatedTwice(value) {
      return this.changes.size === 0 ? value : this.translated(this.translated(value));
    }

    isAvailable(situation) {
      return this.available.every((condition) => condition.isTrue(situation));
    }

    acceptsInBase(value) {
      return value.length <= this.mostBytes && this.base.fixOf(this.translated(value)) === null;
    }

    // The value as the base bounds correct it, then the ranges that apply.
    corrected(value, situation) {
      const translated = this.translatedTwice(value);
      const inBase = this.base.fixOf(translated) ?? translated;
      if (this.ranges.length === 0) return inBase;
      const {applying} = presentBounds(this.ranges, situation, true);
      return judge(applying, inBase) ?? inBase;
    }
  }

  class Index extends Definition {
    constructor(data, sources, mostBytes) {
      super(data, sources, mostBytes);
      this.isVaried = data.varied === true;
      this.dependents = [];  // the parameters that it indexes
      this.allValues = null;
    }

    get valueCount() {
      let count = this.base.texts.size;
      for (const [low, high] of this.base.spans) count += high - low + 1;
      return count;
    }

    // The values of the base bounds, as texts in their order.
    get values() {
      if (this.allValues === null) {
        const values = new Set(this.base.texts);
        for (const [low, high] of this.base.spans) {
          for (let number = low; number <= high; ++number) values.add(String(number));
        }
        this.allValues = [...values].sort(compare);
      }
      return this.allValues;
    }
  }

  const MODE_NEVER = 0;
  const MODE_ROSTRICT = 2;
  const MODE_WRITE_ONLY = 3;

  class Parm extends Definition {
    constructor(data, rank, sources, indices, mostBytes) {
      super(data, sources, mostBytes);
      this.rank = rank;
      this.level = data.level;
      this.mode = data.mode;
      this.indices = (data.indices ?? []).map((number) => indices[number]);
      this.readOnly = this.programs(data.readOnly);
      this.defaults = (data.defaults ?? []).map(({when, value}) => ({
                                                  condition: new Program(when ?? 1, mostBytes),
                                                  value: new Program(value, mostBytes),
                                                }));
      this.fallback = data.fallback ?? '';
      this.documented = this.rangesOf(data.documented);
      this.hasRunTimeRanges = this.ranges.some((range) => range.isComputed);
      this.dependents = [];     // whose own expressions name it
      this.naming = [];         // the indices with dependents whose expressions name it
      this.values = new Map();  // by what is behind the base name in the name of an instance
      this.numberSlots();
    }

    // The slots of the names that are no parameters; those of indices that no expression uses are
    // behind the others.
    numberSlots() {
      this.slots = new Map();
      this.sources.forEach((source, slot) => {
        if (source.name !== null && source.figure === null) this.slots.set(source.name, slot);
      });
      this.slotCount = this.sources.length;
      this.indexSlots = this.indices.map(({name}) => {
        if (!this.slots.has(name)) this.slots.set(name, this.slotCount++);
        return this.slots.get(name);
      });
    }

    get hasDependents() {
      return this.dependents.length > 0 || this.naming.length > 0;
    }

    get instanceCount() {
      // One index without values outweighs all the others.
      if (this.indices.some((index) => index.valueCount === 0)) return 0;
      return this.indices.reduce((count, index) => count * index.valueCount, 1);
    }

    accepts(value) {
      if (this.hasRunTimeRanges) return value.length <= this.mostBytes;
      return this.acceptsInBase(value);
    }

    // Whether a client may not write an instance, which exists.
    isReadOnly(situation) {
      return this.readOnly.some((condition) => condition.isTrue(situation));
    }

    defaultValue(situation) {
      for (const {condition, value} of this.defaults) {
        if (!condition.isTrue(situation)) continue;
        const result = value.evaluate(situation);
        if (result !== null) return toText(result);
      }
      return this.fallback;
    }

    // The bounds that clients are told of; or the number of why there are none.
    range(situation) {
      const applies = (range) => range.condition.isTrue(situation);
      const found = this.documented.find(applies) ?? this.ranges.find(applies);
      if (found === undefined) return this.base;
      if (!found.isComputed) return found.constant;
      const bounds = new Bounds();
      const failed = found.compute(bounds, situation);
      return failed === 0 ? bounds : failed;
    }

    bindIndex(situation, place, value) {
      situation[this.indexSlots[place]] = operandOf(value);
    }

    bindIndices(situation, indices) {
      const pairs = Math.min(indices.length, this.indices.length);
      for (let place = 0; place < pairs; ++place) this.bindIndex(situation, place, indices[place]);
    }

    // What an instance holds; undefined while it was never stored.
    committed(suffix) {
      return this.values.get(suffix);
    }

    stored(suffix) {
      let held = this.values.get(suffix);
      if (held === undefined) {
        held = {value: EMPTY_VALUE, isAnnounced: false};
        this.values.set(suffix, held);
      }
      return held;
    }

    // Calls `visit` with the index values of each instance, in their order.
    forEachInstance(visit) {
      if (this.instanceCount === 0) return;
      const lists = this.indices.map((index) => index.values);
      const places = lists.map(() => 0);
      for (;;) {
        visit(lists.map((values, i) => values[places[i]]));
        let i = lists.length - 1;
        while (i >= 0 && ++places[i] === lists[i].length) places[i--] = 0;
        if (i < 0) return;
      }
    }
  }

  const suffixOf = (indices) => indices.map((value) => '[' + value + ']').join('');
  // Two lists of index values have one suffix where values hold brackets; their keys differ.
  const keyOf = (indices) => indices.map((value) => '\0' + value).join('');

  // A name taken apart: each text from a "[" to the next "]" is an index value.
  function splitName(name) {
    let open = name.indexOf('[');
    const base = open < 0 ? name : name.slice(0, open);
    const indices = [];
    while (open >= 0) {
      const close = name.indexOf(']', open + 1);
      if (close < 0) break;
      indices.push(name.slice(open + 1, close));
      open = name.indexOf('[', close + 1);
    }
    return {base, indices};
  }

  // The index values of the instance `indices` of `evaluated` that `referenced` has as well.
  function sharedIndices(evaluated, indices, referenced) {
    const own = evaluated.indices;
    const others = referenced.indices;
    const areSame = own.length === others.length && own.every((index, i) => index === others[i]);
    if (areSame) return own.length === 0 ? [] : indices;
    const shared = [];
    for (const index of others) {
      const place = own.indexOf(index);
      if (place >= 0 && place < indices.length) shared.push(indices[place]);
    }
    return shared;
  }

  // The index values with which the instance `indices` of `evaluated` reads a parameter.
  function indicesOf(source, evaluated, indices) {
    if (source.isQualified || indices.length === 0) return source.indices;
    return sharedIndices(evaluated, indices, source.parm);
  }

  // ---- Staged values ----------------------------------------------------------------------------

  class Staged {
    constructor() {
      this.byParm = new Map();
      this.entries = [];
    }

    find(parm, key) {
      const entries = this.byParm.get(parm);
      return entries === undefined ? undefined : entries.get(key);
    }

    // The entry of an instance; a new one holds the committed value and is to be written by force.
    stage(parm, indices, isGenerated) {
      let entries = this.byParm.get(parm);
      if (entries === undefined) {
        entries = new Map();
        this.byParm.set(parm, entries);
      }
      const key = keyOf(indices);
      let entry = entries.get(key);
      if (entry === undefined) {
        const suffix = suffixOf(indices);
        const held = parm.committed(suffix);
        const value = held === undefined ? EMPTY_VALUE : held.value;
        entry = {parm, indices, suffix, value, isReset: false, isForced: true, isGenerated};
        entries.set(key, entry);
        this.entries.push(entry);
      }
      return entry;
    }

    value(parm, indices) {
      const entry = this.find(parm, keyOf(indices));
      if (entry !== undefined) return entry.value;
      const held = parm.committed(suffixOf(indices));
      return held === undefined ? EMPTY_VALUE : held.value;
    }

    get inNameOrder() {
      const named = this.entries.map((entry) => ({entry, name: fullName(entry)}));
      return named.sort((a, b) => compare(a.name, b.name)).map(({entry}) => entry);
    }
  }

  const fullName = (entry) => entry.parm.name + entry.suffix;

  // ---- Setting a value --------------------------------------------------------------------------

  const STORED = 0;
  const NOT_STORED = 1;
  const STORED_UNREPORTED = 2;
  const INVALID_VALUE = -2;
  const INVALID_INDEX = -3;

  const isAccepted = (code) => code === STORED || code === STORED_UNREPORTED;
  const refusalOf = (code) => (isAccepted(code) || code === NOT_STORED ? 0 : code);

  // An index in one situation.
  class PresentIndex {
    constructor(index, situation) {
      this.index = index;
      this.situation = situation;
      this.isAvailable = index.isAvailable(situation);
      this.applying = null;
    }

    takes(value) {
      const {index} = this;
      const translated = index.translatedTwice(value);
      if (index.base.fixOf(translated) !== null) return false;
      if (index.ranges.length === 0) return true;
      if (this.applying === null) {
        this.applying = presentBounds(index.ranges, this.situation, true).applying;
      }
      return judge(this.applying, translated) === null;
    }
  }

  // One commit or query: what is staged, and the indices that are the same for all instances.
  class Walk {
    constructor(model, staged) {
      this.model = model;
      this.staged = staged;
      this.shared = new Map();
    }

    gatherFrom(sources, slotCount, indicesOfSource) {
      const situation = new Array(slotCount).fill(null);
      sources.forEach((source, slot) => {
        if (source.parm !== null) {
          const value = this.staged.value(source.parm, indicesOfSource(source));
          situation[slot] = this.model.operandIn(source, value);
        } else if (source.constant !== null) {
          situation[slot] = this.model.operandIn(source, source.constant);
        }
      });
      return situation;
    }

    // The situation of an instance before its index values are bound.
    gather(parm, indices) {
      return this.gatherFrom(
          parm.sources,
          parm.slotCount,
          (source) => indicesOf(source, parm, indices),
      );
    }

    gatherBound(parm, indices) {
      const situation = this.gather(parm, indices);
      parm.bindIndices(situation, indices);
      return situation;
    }

    // The situation of an index by itself.
    gatherIndex(index) {
      return this.gatherFrom(index.sources, index.sources.length, (source) => source.indices);
    }

    // That of an index of one instance, whose own situation has the values of the indices before.
    gatherIndexOf(index, parm, indices, own) {
      const situation = this.gatherFrom(
          index.sources,
          index.sources.length,
          (source) => indicesOf(source, parm, indices),
      );
      index.sources.forEach((source, slot) => {
        if (source.parm !== null || source.figure !== null) return;
        const bound = parm.slots.get(source.name);
        if (bound !== undefined && own[bound] !== null) situation[slot] = own[bound];
      });
      return situation;
    }

    indexAt(parm, indices, place, own) {
      const index = parm.indices[place];
      if (index.isVaried) {
        return new PresentIndex(index, this.gatherIndexOf(index, parm, indices, own));
      }
      let present = this.shared.get(index);
      if (present === undefined) {
        present = new PresentIndex(index, this.gatherIndex(index));
        this.shared.set(index, present);
      }
      return present;
    }

    // Gives an entry a value, and drops each kept index that names its parameter.
    take(entry, value) {
      if (entry.value.text === value.text) return;
      for (const index of entry.parm.naming) this.shared.delete(index);
      entry.value = value;
    }

    takeCommitted(entry) {
      const held = entry.parm.committed(entry.suffix);
      this.take(entry, held === undefined ? EMPTY_VALUE : held.value);
      entry.isForced = true;
    }

    // Binds the index values one by one, so that each index sees those before it.
    bindIndices(parm, indices, situation) {
      const pairs = Math.min(indices.length, parm.indices.length);
      for (let place = 0; place < pairs; ++place) {
        const index = this.indexAt(parm, indices, place, situation);
        if (!index.isAvailable || !index.takes(indices[place])) return false;
        parm.bindIndex(situation, place, indices[place]);
      }
      return indices.length === parm.indices.length;
    }

    // Whether an instance exists, in its situation without index values, which are then bound.
    codeOfInstance(parm, indices, situation) {
      if (parm.mode === MODE_NEVER || !parm.isAvailable(situation)) return NOT_STORED;
      return this.bindIndices(parm, indices, situation) ? STORED : INVALID_INDEX;
    }

    // What a value becomes in a situation with the index values bound; null where it is refused.
    corrected(parm, value, situation) {
      if (parm.hasRunTimeRanges) {
        const {applying, hasComputed} = presentBounds(parm.ranges, situation, false);
        if (hasComputed) {
          const translated = parm.translatedTwice(value);
          return judge(applying, translated) ?? translated;
        }
      }
      const corrected = parm.corrected(value, situation);
      return parm.ranges.length === 0 || parm.accepts(corrected) ? corrected : null;
    }

    // Sets the value of an entry: {code, value}.
    setValue({parm, indices, value, isForced}) {
      const situation = this.gather(parm, indices);
      const code = this.codeOfInstance(parm, indices, situation);
      if (code !== STORED) return {code, value: ''};
      if (!isForced && parm.isReadOnly(situation)) return {code: NOT_STORED, value: ''};
      const corrected = this.corrected(parm, value.text, situation);
      if (corrected === null) return {code: INVALID_VALUE, value: ''};
      const isReported = parm.mode !== MODE_ROSTRICT;
      return {code: isReported ? STORED : STORED_UNREPORTED, value: corrected};
    }

    // Evaluates one entry, which gets what the parameter holds afterwards. Returns a code.
    evaluate(entry, isDryRun) {
      const result = this.setValue(entry);
      if (isAccepted(result.code)) {
        const value = entry.value.text === result.value ? entry.value : valueOf(result.value);
        if (!isDryRun) {
          const held = entry.parm.stored(entry.suffix);
          if (held.value.text !== value.text) held.value = value;
        }
        this.take(entry, value);
      } else {
        this.takeCommitted(entry);
      }
      const isPassedOver = entry.isGenerated && result.code === INVALID_INDEX;
      return isPassedOver ? NOT_STORED : result.code;
    }
  }

  // ---- Plans ------------------------------------------------------------------------------------

  function compareTuples(a, b) {
    const length = Math.min(a.length, b.length);
    for (let i = 0; i < length; ++i) {
      if (a[i] !== b[i]) return compare(a[i], b[i]);
    }
    return a.length - b.length;
  }

  // Brings steps in order, drops repetitions, and makes a list of entries of each level.
  function levelsOf(steps) {
    steps.sort(
        (a, b) => a.level - b.level || a.entry.parm.rank - b.entry.parm.rank ||
            compareTuples(a.entry.indices, b.entry.indices),
    );
    const levels = [];
    let last = null;
    for (const step of steps) {
      if (last === null || last.level !== step.level)
        levels.push([step.entry]);
      else if (last.entry !== step.entry)
        levels[levels.length - 1].push(step.entry);
      last = step;
    }
    return levels;
  }

  // Every parameter that depends on one of `open`.
  function dependentsOf(open) {
    const reached = new Set();
    const readIndices = new Set();
    const reach = (parms) => {
      for (const parm of parms) {
        if (reached.has(parm)) continue;
        reached.add(parm);
        open.push(parm);
      }
    };
    while (open.length > 0) {
      const parm = open.pop();
      reach(parm.dependents);
      for (const index of parm.naming) {
        if (readIndices.has(index)) continue;
        readIndices.add(index);
        reach(index.dependents);
      }
    }
    return reached;
  }

  // The levels of a commit; null where it is too large. What depends on staged values is staged.
  function planCommit(staged, limits) {
    const entries = [...staged.entries];
    const changing = new Set();
    const steps = entries.map((entry) => {
      const {parm} = entry;
      if (parm.hasDependents) changing.add(parm);
      return {level: parm.hasDependents ? parm.level : 0, entry};
    });
    const dependents = dependentsOf([...changing]);
    if (!isWithin(limits, entries, dependents)) return null;
    for (const parm of dependents) {
      parm.forEachInstance((indices) => {
        steps.push({level: parm.level, entry: staged.stage(parm, indices, true)});
      });
    }
    return levelsOf(steps);
  }

  // Whether a commit may evaluate so much. The engine counts what texts cost on top.
  function isWithin(limits, entries, dependents) {
    let instances = 0;
    let work = entries.reduce((units, {parm}) => units + parm.work, 0);
    const indices = new Set();
    for (const parm of dependents) {
      instances += parm.instanceCount;
      work += parm.instanceCount * parm.work;
      for (const index of parm.indices) indices.add(index);
    }
    for (const index of indices) work += index.work;
    return instances <= limits.instances && work <= limits.work;
  }

  // Walks levels of entries. `step` returns 0 or a refusal, which ends its level; the entries
  // behind it go to `passOver`. Returns the first refusal, or 0.
  function walkLevels(levels, step, passOver) {
    let result = 0;
    for (const level of levels) {
      let code = 0;
      for (const entry of level) {
        if (code === 0)
          code = step(entry);
        else
          passOver(entry);
      }
      if (result === 0) result = code;
    }
    return result;
  }

  // The target of a range query and the instances that are evaluated with it: those that it depends
  // on and that are not on a lower level, as nothing is staged.
  function instancesOfQuery(parm, indices) {
    const found = new Map([[parm.rank + keyOf(indices), {parm, indices}]]);
    const start = {parm, indices};
    const named = new Map();  // by the instance that the text names, who reads behind it
    const open = [[parm, start]];
    const reached = new Map([[parm, new Set([start])]]);
    const read = (entry, reader, source) => {
      if (source.parm === null || source.parm.level < parm.level) return;
      if (entry !== parm && source.parm === parm && !source.isQualified) return;
      const read = indicesOf(source, reader.parm, reader.indices);
      const instance = source.parm.rank + keyOf(read);
      if (!found.has(instance)) found.set(instance, {parm: source.parm, indices: read});
      let behind = reader;
      if (source.isQualified) {
        behind = named.get(instance) ?? {parm: source.parm, indices: source.indices};
        named.set(instance, behind);
      }
      if (!reached.has(source.parm)) reached.set(source.parm, new Set());
      const readers = reached.get(source.parm);
      if (readers.has(behind)) return;
      readers.add(behind);
      open.push([source.parm, behind]);
    };
    while (open.length > 0) {
      const [entry, reader] = open.pop();
      for (const source of entry.sources) read(entry, reader, source);
      for (const index of entry.indices) {
        for (const source of index.sources) read(entry, reader, source);
      }
    }
    return [...found.values()];
  }

  // ---- Bringing up ------------------------------------------------------------------------------

  // A set of ranks.
  class RankSet {
    constructor(size) {
      this.bits = new Uint32Array((size + 31) >> 5);
    }
    add(rank) {
      this.bits[rank >> 5] |= 1 << (rank & 31);
    }
    has(rank) {
      return ((this.bits[rank >> 5] >>> (rank & 31)) & 1) === 1;
    }
  }

  // The parameters that `start` depends on, also through others, each once.
  function parmsBehind(start, size) {
    const behind = new RankSet(size);
    const list = [];
    const visited = new RankSet(size);
    visited.add(start.rank);
    const readIndices = new Set();
    const open = [start];
    const read = (entry, source) => {
      const {parm} = source;
      if (parm === null) return;
      // A parameter that is reached through others does not depend on itself.
      if (entry !== start && parm === start && !source.isQualified) return;
      if (!behind.has(parm.rank) && parm.hasClientsName) {
        behind.add(parm.rank);
        list.push(parm);
      }
      if (visited.has(parm.rank)) return;
      visited.add(parm.rank);
      open.push(parm);
    };
    while (open.length > 0) {
      const entry = open.pop();
      for (const source of entry.sources) read(entry, source);
      for (const index of entry.indices) {
        if (entry !== start && readIndices.has(index)) continue;
        if (entry !== start) readIndices.add(index);
        for (const source of index.sources) read(entry, source);
      }
    }
    return {list, set: behind};
  }

  // The recipe that brings a device up, as a client does, who knows names and values as they are
  // sent. First come the parameters that depend on no others, then step by step those whose
  // dependencies are done. Parameters that depend on each other are a ring: they are done in one
  // step, and again until a round changes no value.
  class BringUp {
    constructor(model) {
      this.model = model;
      this.changes = new Map();
      this.restless = new Set();
      const size = model.parms.length;
      this.behind = model.parms.map((parm) => parmsBehind(parm, size));
    }

    run() {
      for (const step of this.steps()) {
        this.resetStep(step);
        for (const parm of step.filter(isVaried)) this.resetAlone(possibleInstances(parm));
        this.settleRings(step);
      }
      this.fillZeros();
    }

    isRing(parm, other) {
      return other === parm || this.behind[other.rank].set.has(parm.rank);
    }

    isInRing(parm) {
      return this.behind[parm.rank].list.some((other) => this.isRing(parm, other));
    }

    // The parameters of each step, in name order.
    steps() {
      const {parms} = this.model;
      const waiting = parms.map(() => 0);  // for how many others
      const followers = parms.map(() => []);
      for (const parm of parms) {
        for (const other of this.behind[parm.rank].list) {
          if (this.isRing(parm, other)) continue;
          ++waiting[parm.rank];
          followers[other.rank].push(parm);
        }
      }
      const steps = [];
      let step = parms.filter((parm) => waiting[parm.rank] === 0);
      while (step.length > 0) {
        steps.push(step);
        const next = [];
        for (const parm of step) {
          for (const follower of followers[parm.rank]) {
            if (--waiting[follower.rank] === 0) next.push(follower);
          }
        }
        step = next.sort((a, b) => a.rank - b.rank);
      }
      return steps;
    }

    // Resets instances. Returns whether the commit succeeded.
    reset(instances) {
      const staged = new Staged();
      for (const {parm, indices} of instances) staged.stage(parm, indices, false).isReset = true;
      return this.commit(staged);
    }

    set({parm, indices}, text) {
      const staged = new Staged();
      const entry = staged.stage(parm, indices, false);
      if (parm.accepts(text)) entry.value = valueOf(text);
      this.commit(staged);
    }

    commit(staged) {
      const {code, changes} = this.model.commit(staged);
      for (const {name, value} of changes) this.changes.set(name, value);
      return code === 0;
    }

    // Resets all instances at once. Where that fails, resets each alone, so that no instance keeps
    // another from its default.
    resetStep(step) {
      const instances = step.flatMap((parm) => this.model.presentInstances(parm));
      if (instances.length > 0 && !this.reset(instances)) this.resetAlone(instances);
    }

    resetAlone(instances) {
      for (const instance of instances) this.reset([instance]);
    }

    settleRings(step) {
      const ring = step.filter((parm) => this.isInRing(parm));
      if (ring.length === 0) return;
      for (let round = 1; round <= this.model.limits.rounds; ++round) {
        if (!this.resetMovesAny(ring)) return;
      }
      for (const parm of ring) this.restless.add(parm);
    }

    // Resets each instance alone, and compares all values after each reset, because one reset may
    // take back what another did.
    resetMovesAny(ring) {
      const instances = ring.flatMap(possibleInstances);
      const values = () => instances.map(({parm, indices}) => this.model.text(parm, indices));
      let isMoved = false;
      let before = values();
      for (const instance of instances) {
        this.reset([instance]);
        const after = values();
        isMoved = isMoved || after.some((value, i) => value !== before[i]);
        before = after;
      }
      return isMoved;
    }

    // Sets 0 where a value is still empty and 0 is all that is allowed: a reset leaves the empty
    // value as it is.
    fillZeros() {
      for (const parm of this.model.parms) {
        if (parm.changes.has('0')) continue;
        const isForeseeable = !isVaried(parm) && !this.isInRing(parm);
        const instances =
            isForeseeable ? this.model.presentInstances(parm) : possibleInstances(parm);
        const empty = instances.filter(({indices}) => this.model.text(parm, indices) === '');
        for (const instance of empty) {
          if (this.model.allowsOnlyZero(instance)) this.set(instance, '0');
        }
      }
    }
  }

  const isVaried = (parm) => parm.indices.some((index) => index.isVaried);

  // The instance that a client means by the name of an instance: index values may hold brackets.
  const instanceNamed = (parm, indices) => ({
    parm,
    indices: splitName(parm.name + suffixOf(indices)).indices,
  });

  function possibleInstances(parm) {
    const instances = [];
    parm.forEachInstance((indices) => instances.push(instanceNamed(parm, indices)));
    return instances;
  }

  // ---- The model --------------------------------------------------------------------------------

  const COMMIT_TOO_LARGE = -4;
  const RANGE_INVALID_NAME = 1;
  const RANGE_REFUSED = -6;

  class Model {
    constructor(data) {
      this.limits = data.limits;
      const mostBytes = this.limits.value;
      this.constants = new Map();
      const constants = (data.constants ?? []).map(([name, text]) => {
        this.constants.set(name, text);
        return valueOf(text);
      });
      this.standards = data.standards ?? [];
      const sources =
          (data.names ??
           []).map((source) => ({
                     name: source.name ?? null,
                     parm: null,
                     isQualified: source.at !== undefined,
                     indices: source.at ?? [],
                     figure: source.figure ?? null,
                     constant: source.constant === undefined ? null : constants[source.constant],
                   }));
      const indices = (data.indices ?? []).map((index) => new Index(index, sources, mostBytes));
      const parmData = data.parms ?? [];
      this.parms = parmData.map((parm, rank) => new Parm(parm, rank, sources, indices, mostBytes));
      (data.names ?? []).forEach((source, i) => {
        if (source.parm !== undefined) sources[i].parm = this.parms[source.parm];
      });
      this.byName = new Map(this.parms.map((parm) => [parm.name, parm]));
      this.link(indices);
    }

    link(indices) {
      for (const parm of this.parms) {
        for (const named of new Set(parm.sources.map((source) => source.parm))) {
          if (named !== null) named.dependents.push(parm);
        }
        for (const index of new Set(parm.indices)) index.dependents.push(parm);
      }
      for (const index of indices) {
        for (const named of new Set(index.sources.map((source) => source.parm))) {
          if (named !== null) named.naming.push(index);
        }
      }
    }

    // What a name means whose value, or the value that selects its standard, is `value`.
    operandIn(source, value) {
      if (source.figure === null) return value.operand;
      const row = this.standards.find(([name]) => value.text.startsWith(name));
      return row === undefined ? null : row[1 + source.figure];
    }

    isTooLong(text) {
      return text.length > this.limits.value;
    }

    // The parameter that a full name begins with, or undefined.
    findNamed(name) {
      const {base, indices} = splitName(name);
      const isTooLong = (text) => this.isTooLong(text);
      return isTooLong(base) || indices.some(isTooLong) ? undefined : this.byName.get(base);
    }

    // The instance of a name, with as many index values as indices; null where there is none.
    findInstance(name) {
      const parm = this.findNamed(name);
      const {indices} = splitName(name);
      const isInstance = parm !== undefined && indices.length === parm.indices.length;
      return isInstance ? {parm, indices} : null;
    }

    text(parm, indices) {
      const held = parm.committed(suffixOf(indices));
      return held === undefined ? '' : held.value.text;
    }

    // Commits what is staged: {code, changes}.
    commit(staged) {
      const walk = new Walk(this, staged);
      for (const entry of staged.inNameOrder) {
        if (!entry.isReset) continue;
        const situation = walk.gatherBound(entry.parm, entry.indices);
        entry.value = valueOf(entry.parm.defaultValue(situation));
      }
      const levels = planCommit(staged, this.limits);
      if (levels === null) return {code: COMMIT_TOO_LARGE, changes: []};
      const reported = new Map();
      const code = walkLevels(
          levels,
          (entry) => this.commitEntry(walk, entry, reported),
          (behind) => walk.takeCommitted(behind),
      );
      const changes = [...reported].sort(([a], [b]) => compare(a, b));
      return {code, changes: changes.map(([name, held]) => ({name, value: held.value.text}))};
    }

    commitEntry(walk, entry, reported) {
      const {parm, suffix} = entry;
      const before = this.text(parm, entry.indices);
      const code = walk.evaluate(entry, false);
      if (code === STORED) {
        const held = parm.committed(suffix);
        const isReported =
            !held.isAnnounced || parm.mode === MODE_WRITE_ONLY || held.value.text !== before;
        if (isReported) {
          held.isAnnounced = true;
          reported.set(fullName(entry), held);
        }
      }
      return refusalOf(code);
    }

    // The bounds of an instance as clients are told, or the number of why there are none.
    range({parm, indices}) {
      const doFit = indices.length === parm.indices.length &&
          indices.every((value, i) => parm.indices[i].acceptsInBase(value));
      if (!doFit) return RANGE_INVALID_NAME;
      const staged = new Staged();
      const walk = new Walk(this, staged);
      const steps = [];
      for (const instance of instancesOfQuery(parm, indices)) {
        if (instance.indices.length !== instance.parm.indices.length) continue;
        const entry = staged.stage(instance.parm, instance.indices, true);
        steps.push({level: instance.parm.level, entry});
      }
      const planned = walkLevels(
          levelsOf(steps),
          (entry) => refusalOf(walk.evaluate(entry, true)),
          () => {},
      );
      const target = staged.stage(parm, indices, true);
      target.isGenerated = false;
      if (refusalOf(walk.evaluate(target, true)) !== 0) return RANGE_REFUSED;
      const range = parm.range(walk.gatherBound(parm, indices));
      return range instanceof Bounds && planned !== 0 ? RANGE_REFUSED : range;
    }

    allowsOnlyZero(instance) {
      const range = this.range(instance);
      if (!(range instanceof Bounds) || range.texts.size > 0) return false;
      const {spans} = range;
      return spans.length === 1 && spans[0][0] === 0 && spans[0][1] === 0;
    }

    // The instances that the indices give now, each index by itself.
    presentInstances(parm) {
      if (parm.instanceCount === 0) return [];
      const walk = new Walk(this, new Staged());
      let tuples = [[]];
      for (const index of parm.indices) {
        const present = new PresentIndex(index, walk.gatherIndex(index));
        const isPresent = present.isAvailable && index.hasClientsName;
        const values = isPresent ? presentValues(index, present) : [];
        tuples = tuples.flatMap((tuple) => values.map((value) => [...tuple, value]));
      }
      return tuples.map((indices) => instanceNamed(parm, indices));
    }

    get hasTooManyInstances() {
      let count = 0;
      for (const parm of this.parms) count += parm.instanceCount;
      return count > this.limits.known;
    }
  }

  // The values that an index takes: its texts, then its numbers.
  function presentValues(index, present) {
    const values = [...index.base.textsInOrder];
    for (const [low, high] of index.base.spans) {
      for (let number = low; number <= high; ++number) values.push(String(number));
    }
    return values.filter((value) => present.takes(value)).map(mended);
  }

  // ---- The device -------------------------------------------------------------------------------

  const COMMIT_CAUSES = new Map([
    [INVALID_VALUE, 'parameter definition is invalid'],
    [INVALID_INDEX, 'parameter index is invalid'],
  ]);

  // The bytes of an argument; null where it is no text that a client could send.
  function bytesOfArgument(argument) {
    if (typeof argument === 'number') return String(argument);
    return typeof argument === 'string' && !argument.includes('\0') ? bytesOf(argument) : null;
  }

  function answeredRange(range) {
    if (range instanceof Bounds) {
      return {
        spans: range.spans.map(([low, high]) => [low, high]),
        texts: range.textsInOrder.map(textOf),
      };
    }
    return {refused: `Get range failed because of invalid bounds (${range})`};
  }

  return class OstrelDevice {
    #model;

    /** The device of `data`, all of whose values are empty. */
    constructor(data) {
      this.#model = new Model(data);
    }

    /**
     * Gives every parameter its default, in the order that works: {changes, restless}, with the
     * names of the parameters that never come to rest. {refused, changes, restless} where the
     * device has too many instances.
     */
    bringUp() {
      const model = this.#model;
      if (model.hasTooManyInstances) {
        const refused = `the device has more than ${model.limits.known} instances`;
        return {refused, changes: [], restless: []};
      }
      const recipe = new BringUp(model);
      recipe.run();
      const changes = [...recipe.changes].sort(([a], [b]) => compare(a, b));
      return {
        changes: changes.map(([name, value]) => ({name: textOf(name), value: textOf(value)})),
        restless: [...recipe.restless].map(({name}) => name).sort(compare).map(textOf),
      };
    }

    /** Sets one value and commits: as commit(). */
    set(name, value) {
      return this.commit([{name, value}]);
    }

    /** As set(), also where the parameter is read-only: as the device itself sets it. */
    setStatus(name, value) {
      return this.commit([{name, value, isStatus: true}]);
    }

    /** Gives one parameter its default and commits: as commit(). */
    reset(name) {
      return this.commit([{name, isReset: true}]);
    }

    /**
     * Writes in one commit. Each write is {name, value}, or {name, isReset: true} for the default;
     * with isStatus also where it is read-only. Returns {changes: [{name, value}, ...]}, ascending
     * by name: the values that have become others or are told for the first time. A write that is
     * refused keeps all from being committed; a commit may be refused in part. Then there is the
     * reason, too: {refused, changes}.
     */
    commit(writes) {
      const staged = new Staged();
      for (const write of Array.isArray(writes) ? writes : []) {
        const refused = this.#stage(staged, write ?? {});
        if (refused !== null) return {refused, changes: []};
      }
      const {code, changes} = this.#model.commit(staged);
      const told = changes.map(({name, value}) => ({name: textOf(name), value: textOf(value)}));
      if (code === 0) return {changes: told};
      const cause = COMMIT_CAUSES.get(code) ?? 'of internal error';
      return {refused: `Commit failed because ${cause}`, changes: told};
    }

    // Stages one write. Returns why it is refused, or null.
    #stage(staged, {name, value, isReset = false, isStatus = false}) {
      const method = (isReset ? 'Reset' : 'Set') + (isStatus ? ' status' : '');
      const instance = bytesOfArgument(name);
      const parm = instance === null ? undefined : this.#model.findNamed(instance);
      if (parm === undefined) return `${method} failed because parameter name is invalid`;
      const text = isReset ? '' : bytesOfArgument(value);
      const isValid = isReset || (text !== null && parm.accepts(text));
      if (!isValid) return `${method} failed because parameter value is invalid`;
      const entry = staged.stage(parm, splitName(instance).indices, false);
      entry.isReset = isReset;
      entry.isForced = isStatus;
      if (!isReset) entry.value = valueOf(text);
      return null;
    }

    // The instance of a name as an argument, or null.
    #find(name) {
      const bytes = bytesOfArgument(name);
      return bytes === null ? null : this.#model.findInstance(bytes);
    }

    /** What a parameter's instance or a constant holds; the empty text for any other name. */
    value(name) {
      const bytes = bytesOfArgument(name);
      if (bytes === null) return '';
      const {base, indices} = splitName(bytes);
      if (bytes === 'sw::this') return '';
      const parm = this.#model.byName.get(base);
      const constant = this.#model.constants.get(bytes) ?? '';
      return textOf(parm === undefined ? constant : this.#model.text(parm, indices));
    }

    // Asks about an instance in its situation; `otherwise` where there is no such instance.
    #ask(name, otherwise, question) {
      const instance = this.#find(name);
      if (instance === null) return otherwise;
      const walk = new Walk(this.#model, new Staged());
      return question(instance, walk);
    }

    /**
     * Whether the instance `name` exists: it is available, and its indices are and take its values.
     */
    exists(name) {
      return this.#ask(name, false, ({parm, indices}, walk) => {
        return walk.codeOfInstance(parm, indices, walk.gather(parm, indices)) === STORED;
      });
    }

    /** Whether a client may write the instance `name`: it exists and is not read-only. */
    writable(name) {
      return this.#ask(name, false, ({parm, indices}, walk) => {
        const situation = walk.gather(parm, indices);
        const exists = walk.codeOfInstance(parm, indices, situation) === STORED;
        return exists && !parm.isReadOnly(situation);
      });
    }

    /**
     * What a reset would give the instance `name`, before it is corrected; empty without a default.
     */
    defaultValue(name) {
      return this.#ask(name, '', ({parm, indices}, walk) => {
        return textOf(parm.defaultValue(walk.gatherBound(parm, indices)));
      });
    }

    /**
     * The values that the instance `name` may take: {spans: [[low, high], ...], texts: [...]}, both
     * ascending and both empty where it may take any value. {refused} where it has no range.
     */
    range(name) {
      const instance = this.#find(name);
      return answeredRange(instance === null ? RANGE_INVALID_NAME : this.#model.range(instance));
    }

    /**
     * The full names of all instances that a parameter may have at one time or another; exists()
     * tells which it has now. Empty where there is no such parameter, or where they are too many.
     */
    instances(parm) {
      const bytes = bytesOfArgument(parm);
      const found = bytes === null ? undefined : this.#model.byName.get(bytes);
      if (found === undefined || found.instanceCount > this.#model.limits.known) return [];
      const names = [];
      found.forEachInstance((indices) => names.push(textOf(found.name + suffixOf(indices))));
      return names;
    }
  };
})();
