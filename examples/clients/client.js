#!/usr/bin/env node
// A small control panel: what there is, why it is as it is, what a change would do, what happens.
//   NODE_PATH=.../node_modules examples/clients/client.js PATTERN CONTROL NAME=VALUE...
'use strict';
const dbus = require('dbus-next');

const [pattern, control, ...wishes] = process.argv.slice(2);
const NAME = 'org.tavrel.transaction';
const COMMITTED = 0xffffffff; // in place of a transaction: what everybody sees
const NOBODYS = 0xfffffffe; // a transaction that is not open
const WRITABLE = 4, HAS_VALUE = 64; // flags of GetState
const bus = dbus.sessionBus();
let transaction = null;

async function call(destination, path, type, member, signature = '', ...body) {
  const message = new dbus.Message({ destination, path, interface: type, member, signature, body });
  return (await bus.call(message)).body;
}
const first = (...args) => call(NAME, '/transaction', 'org.tavrel.transaction', ...args);
const second = (...args) => call(NAME, '/parameters', 'org.tavrel.parameters1', ...args);

// Tells an error, and what a client does about it. The second interface has a name for each; the
// first has one for all, and only its text tells the cause.
const REMEDIES = {
  'Error.UnknownTransaction:': 'begin anew', 'Error.UnknownParameter:': 'list them',
  'Error.InvalidPattern:': 'mend it', 'Error.TooLarge:': 'ask for less',
  'invalid transaction id': 'begin anew', '': 'tell the user' };
function report(error) {
  const part = Object.keys(REMEDIES).find((key) => `${error.type}: ${error.text}`.includes(key));
  console.log(`error: ${error.text}; ${REMEDIES[part]}`);
}

async function discover() {
  const [rows] = await second('List', 's', pattern);
  for (const [name, access, indices, line, level] of rows)
    console.log(`${name} ${access}, line ${line}, level ${level}, indices: ${indices.join(', ')}`);
}

async function show(id) {
  const [states] = await second('GetState', 'uas', id, [control]);
  for (const [name, flags, value] of states) {
    const can = flags & WRITABLE ? 'writable' : 'not writable';
    console.log(`${name} = ${flags & HAS_VALUE ? value : '(none)'}, ${can}`);
  }
  const [reasons] = await second('Explain', 'us', id, control);
  for (const [question, answer, line, statement, used] of reasons) {
    const because = line ? `, line ${line}: ${statement}` : '';
    const values = Object.entries(used).map(([name, value]) => `; ${name} is ${value}`).join('');
    console.log(`  ${question}: ${answer}${because}${values}`);
  }
}

// Each error once.
async function goWrong() {
  await second('List', 's', '[').catch(report);
  await second('Explain', 'us', COMMITTED, 'nonsense').catch(report);
  await second('Preview', 'u', NOBODYS).catch(report);
  await first('commit', 'u', NOBODYS).catch(report);
  await first('set', 'uss', transaction, 'input_select[1]', 'radio').catch(report);
  await first('set', 'uss', transaction, 'input_name[1]', 'x'.repeat(100000));
  const names = Array(400).fill('input_name[1]');
  await second('GetState', 'uas', transaction, names).catch(report);
  // Nothing of this is to be committed.
  await first('end', 'u', transaction);
  [transaction] = await second('Begin');
}

// What if? Only this transaction sees what is staged in it.
async function tryOut() {
  for (const wish of wishes) {
    const [name, ...value] = wish.split('=');
    await first('set', 'uss', transaction, name, value.join('='));
  }
  const [changes, refused] = await second('Preview', 'u', transaction);
  for (const [name, before, after, causes] of changes)
    console.log(`would change ${name}: ${before} -> ${after}, because of ${causes.join(', ')}`);
  for (const [name, why] of refused) console.log(`would refuse ${name}: ${why}`);
}

async function onService() {
  console.log('service: there');
  const again = transaction !== null;
  // Transactions and watches end with the daemon, so each run of it is begun anew.
  await second('WaitReady'); // until then, values may be empty
  [transaction] = await second('Begin');
  await second('Watch', 'bb', true, true);
  if (again) {
    await show(transaction);
    return bus.disconnect();
  }
  await discover();
  await show(COMMITTED);
  await goWrong();
  await tryOut();
  await show(transaction);
  // A commit cuts values, and passes over others, without an error: the signals tell.
  await first('commit', 'u', transaction);
}

bus.on('message', ({ path, member, body }) => {
  if (member === 'NameOwnerChanged' && body[0] === NAME) {
    if (body[2]) onService().catch(report);
    else console.log('service: none');
  } else if (path === '/parameters' && member === 'Changed') {
    for (const [name, before, after] of body[2])
      console.log(`commit ${body[0]} changed ${name}: ${before} -> ${after}`);
  } else if (path === '/parameters' && member === 'LimitsChanged') {
    console.log(`commit ${body[0]} touched the limits of ${body[1].join(', ')}`);
  }
});

(async () => {
  // The daemon may come after its clients, and it may be restarted.
  const of = ['org.freedesktop.DBus', '/org/freedesktop/DBus', 'org.freedesktop.DBus'];
  await call(...of, 'AddMatch', 's', `member='NameOwnerChanged',arg0='${NAME}'`);
  const [isThere] = await call(...of, 'NameHasOwner', 's', NAME);
  if (isThere) await onService();
  else console.log('service: none');
})().catch(report);
