// The functions of the pack for JavaScript, through the WebAssembly module `undula.wasm`.
//
//   const undula = await loadUndula(bytes);
//   const wavelet = undula.call('daublet', [8]);
//   const coefficients = undula.call('dwt', [samples, 3, wavelet]);
//
// What a call takes and returns:
//   number                  a real scalar
//   {re, im}                a complex scalar
//   string                  a text
//   Float64Array            an array of one column, as are the other arrays of numbers that have a type
//   Matrix                  an array
//   JavaScript's own array  a table: a column whose cells hold values of any kind
//   function                a user's function, of values, which returns one
//   realFunction(f)         the same of one real number, which returns one; much faster
// Arrays are returned as Matrix, or as JavaScript's own where their cells hold more than numbers. What is
// given is copied.

const isCount = (n) => Number.isInteger(n) && n >= 0;
const areNumbers = (values) => ArrayBuffer.isView(values) && typeof values[0] !== 'bigint' && 'length' in values;
const asDoubles = (values) => (values instanceof Float64Array ? values : Float64Array.from(values));

/** An array: the numbers by columns. `im` is null where all imaginary parts are zero. */
export class Matrix {
  constructor(rows, cols, re, im = null) {
    if (!isCount(rows) || !isCount(cols) || re.length !== rows * cols || (im !== null && im.length !== re.length)) {
      throw new RangeError('as many numbers as the array has cells are needed');
    }
    Object.assign(this, { rows, cols, re: asDoubles(re), im: im && asDoubles(im) });
  }
}

/** A failed call: the function, the pack's message, and the 1-based position of the argument at fault, or 0. */
export class UndulaError extends Error {
  constructor(functionName, message, argument, argumentName) {
    const place = argumentName ? `argument ${argument}: ${argumentName}` : `argument ${argument}`;
    super(`${functionName}: ${message}${argument > 0 ? ` (${place})` : ''}`);
    this.name = 'UndulaError';
    Object.assign(this, { function: functionName, reason: message, argument, argumentName });
  }
}

/** Marks a function of a number that returns a number. */
export function realFunction(f) {
  if (typeof f !== 'function') throw new TypeError('a function is wanted');
  return Object.assign((x) => f(x), { isReal: true });
}

const tags = { error: 0, scalar: 2, text: 3, array: 5 };
const outOfMemory = 'out of memory';

/**
 * @param {string | URL | BufferSource} source where undula.wasm lies, or its bytes
 * @returns an object with `call(name, arguments)` and `functions`
 */
export async function loadUndula(source) {
  const session = { functions: [], thrown: null };
  const imports = {
    undula: {
      callFunction: (index, handles, count) => guarded(session, null, () => (
        makeValue(session, session.functions[index](...readArguments(session, handles, count))))),
      callRealFunction: (index, x) => guarded(session, NaN, () => {
        const result = session.functions[index](x);
        if (typeof result !== 'number') throw new TypeError('a function must return a number');
        return result;
      }),
    },
    env: { emscripten_notify_memory_growth() {} },
    wasi_snapshot_preview1: {
      environ_sizes_get(count, size) {
        const memory = new DataView(session.module.memory.buffer);
        memory.setUint32(count, 0, true);
        memory.setUint32(size, 0, true);
        return 0;
      },
      environ_get: () => 0,
      proc_exit(code) { throw new Error(`the module has ended: ${code}`); },
    },
  };
  session.module = (await instantiate(source, imports)).exports;
  session.module._initialize();
  return sessionFunctions(session);
}

async function instantiate(source, imports) {
  if (typeof source !== 'string' && !(source instanceof URL)) {
    return (await WebAssembly.instantiate(source, imports)).instance;
  }
  const response = await fetch(source);
  if (!response.ok) throw new Error(`${source}: ${response.status} ${response.statusText}`);
  // Not compiled while it arrives, which needs a server that knows the type of the file.
  return (await WebAssembly.instantiate(await response.arrayBuffer(), imports)).instance;
}

function sessionFunctions(session) {
  const described = describeFunctions(session.module);
  const indices = new Map(described.map(({ name }, index) => [name, index]));
  return {
    functions: described,
    call(name, values) {
      const index = indices.get(name);
      if (index === undefined) throw new UndulaError(name, 'no such function', 0, '');
      if (!Array.isArray(values)) throw new TypeError(`${name}: the arguments are wanted in an array`);
      return callFunction(session, index, described[index], values);
    },
  };
}

function describeFunctions(module) {
  return Array.from({ length: module.numberOfFunctions() }, (_, index) => ({
    name: textAt(module, module.nameOf(index)),
    arity: module.arityOf(index) < 0 ? null : module.arityOf(index),
    forms: Array.from({ length: module.numberOfForms(index) },
      (__, form) => textAt(module, module.formOf(index, form))),
  }));
}

function callFunction(session, index, description, values) {
  const { module } = session;
  const kept = session.functions.length;
  const result = withHandles(session, description.name, values, (handles) => (
    module.call(index, handles, values.length)));
  session.functions.length = kept;
  rethrow(session);
  try {
    return readResult(session, description, values.length, result);
  } finally {
    module.freeValue(result);
  }
}

function readResult(session, { name, forms }, count, handle) {
  const { module } = session;
  if (handle === 0) throw new UndulaError(name, outOfMemory, 0, '');
  if (module.tagOf(handle) !== tags.error) return readValue(session, handle);
  const argument = module.faultyArgument(handle);
  const names = forms.map((form) => form.split(' ')).find((form) => form.length === count);
  throw new UndulaError(name, readText(module, handle), argument, names?.[argument - 1] ?? '');
}

// Makes the values that a call takes, and frees them when it has ended.
function withHandles(session, name, values, use) {
  const { module } = session;
  const handles = [];
  let list = 0;
  try {
    for (const value of values) handles.push(made(makeValue(session, value), name));
    list = made(module.malloc(4 * Math.max(1, handles.length)), name);
    new Uint32Array(module.memory.buffer, list, handles.length).set(handles);
    return use(list);
  } finally {
    module.free(list);
    for (const handle of handles) module.freeValue(handle);
  }
}

function made(handle, name) {
  if (handle === 0) throw new UndulaError(name, outOfMemory, 0, '');
  return handle >>> 0;
}

// What a user's function throws cannot pass through the module.
function guarded(session, otherwise, action) {
  try {
    return action();
  } catch (error) {
    session.thrown = { error };
    session.module.noteThrow();
    return otherwise;
  }
}

function rethrow(session) {
  const { thrown } = session;
  session.thrown = null;
  if (thrown) throw thrown.error;
}

// ---- JavaScript's values to the module's; 0 where there is no memory

function makeValue(session, value) {
  const { module } = session;
  if (typeof value === 'number') return module.makeScalar(value, 0);
  if (typeof value === 'string') return makeText(module, value);
  if (typeof value === 'function') return makeFunction(session, value);
  if (value instanceof Matrix) return makeArray(module, value);
  if (areNumbers(value)) return makeArray(module, new Matrix(value.length, 1, value));
  if (Array.isArray(value)) {
    return withHandles(session, 'table', value, (cells) => module.makeTable(cells, value.length));
  }
  if (typeof value?.re === 'number' && typeof value.im === 'number') {
    return module.makeScalar(value.re, value.im);
  }
  throw new TypeError(`cannot be given to a function of the pack: ${value?.constructor?.name ?? String(value)}`);
}

function makeText(module, text) {
  const bytes = new TextEncoder().encode(text);
  const place = module.malloc(bytes.length + 1);
  if (place === 0) return 0;
  new Uint8Array(module.memory.buffer, place, bytes.length).set(bytes);
  const handle = module.makeText(place, bytes.length);
  module.free(place);
  return handle;
}

function makeArray(module, { rows, cols, re, im }) {
  const handle = module.makeArray(rows, cols, im !== null);
  if (handle === 0) return 0;
  for (let column = 0; column < cols; ++column) {
    const part = [column * rows, (column + 1) * rows];
    columnOf(module, handle, column, false, rows).set(re.subarray(...part));
    if (im !== null) columnOf(module, handle, column, true, rows).set(im.subarray(...part));
  }
  return handle;
}

function makeFunction(session, f) {
  const index = session.functions.push(f) - 1;
  return f.isReal ? session.module.makeRealFunction(index) : session.module.makeFunction(index);
}

// ---- and back

function readValue(session, handle) {
  const { module } = session;
  const tag = module.tagOf(handle);
  if (tag === tags.scalar) return readScalar(module, handle);
  if (tag === tags.text) return readText(module, handle);
  if (tag !== tags.array) throw new TypeError(`a value of kind ${tag} cannot be read`);
  return module.hasNested(handle) ? readTable(session, handle) : readMatrix(module, handle);
}

function readScalar(module, handle) {
  const [re, im] = [module.realOf(handle), module.imaginaryOf(handle)];
  return im === 0 ? re : { re, im };
}

// Of a text, or the message of an error.
function readText(module, handle) {
  const text = made(module.textOf(handle), 'text');
  const bytes = new Uint8Array(module.memory.buffer, module.bytesOf(text) >>> 0, module.lengthOf(text));
  const decoded = new TextDecoder().decode(bytes);
  module.freeText(text);
  return decoded;
}

function readMatrix(module, handle) {
  const [rows, cols] = [module.rowsOf(handle), module.columnsOf(handle)];
  return new Matrix(rows, cols, readNumbers(module, handle, rows, cols, false),
    isComplex(module, handle, rows, cols) ? readNumbers(module, handle, rows, cols, true) : null);
}

const isComplex = (module, handle, rows, cols) => (
  rows > 0 && cols > 0 && module.numbersOf(handle, 0, true) !== 0);

function readNumbers(module, handle, rows, cols, imaginary) {
  const numbers = new Float64Array(rows * cols);
  for (let column = 0; column < cols; ++column) {
    numbers.set(columnOf(module, handle, column, imaginary, rows), column * rows);
  }
  return numbers;
}

// Empty where the array has no such part, which reads as zeros. The view holds until memory grows.
function columnOf(module, handle, column, imaginary, rows) {
  const place = module.numbersOf(handle, column, imaginary) >>> 0;
  return new Float64Array(module.memory.buffer, place, place === 0 ? 0 : rows);
}

function readTable(session, handle) {
  const { module } = session;
  const [rows, cols] = [module.rowsOf(handle), module.columnsOf(handle)];
  return Array.from({ length: rows * cols }, (_, index) => {
    const cell = made(module.cellOf(handle, index % rows, Math.floor(index / rows)), 'table');
    try {
      return readValue(session, cell);
    } finally {
      module.freeValue(cell);
    }
  });
}

function readArguments(session, handles, count) {
  const list = new Uint32Array(session.module.memory.buffer, handles >>> 0, count).slice();
  return Array.from(list, (handle) => readValue(session, handle));
}

function textAt(module, place) {
  const bytes = new Uint8Array(module.memory.buffer, place >>> 0);
  return new TextDecoder().decode(bytes.subarray(0, bytes.indexOf(0)));
}
