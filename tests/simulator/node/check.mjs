// check.mjs BIN_FOLDER MODULES_FOLDER - flies one flight through node-simconnect and the same through the worker, each
// with a stand-in simulator of its own, and compares what they saw. Prints the values as JSON, a line for each check,
// and ends with 0 only if all passed. MODULES_FOLDER is where package-lock.json was installed.
import { createRequire } from 'node:module';
import { join, resolve } from 'node:path';
import { isDeepStrictEqual } from 'node:util';
import { flight } from './flight.mjs';
import { NodePilot, WorkerPilot } from './pilots.mjs';
import { StandIn, until } from './processes.mjs';

const [binFolder, modulesFolder] = process.argv.slice(2).map((folder) => resolve(folder));
const library = createRequire(join(modulesFolder, 'package.json'))('node-simconnect');

let passed = 0;
let failed = 0;
function check(isGood, title, detail = '') {
    if (isGood) passed++;
    else failed++;
    console.log(`${isGood ? 'ok' : 'FAILED'}  ${title}${isGood || !detail ? '' : ': ' + detail}`);
}

// What the pilot saw after each step.
async function fly(pilot, simulator) {
    const seen = [];
    for (const step of flight()) {
        if (step.cockpit) simulator.act(step.cockpit);
        if (step.write) await pilot.write(...step.write);
        await until(() => isDeepStrictEqual(pilot.radios(), step.expected), step.title, 2000).catch(() => {});
        seen.push({ step: step.title, ...structuredClone(pilot.radios()) });
    }
    return seen;
}

function judge(name, seen) {
    flight().forEach((step, i) => {
        const { com1, com2 } = seen[i];
        check(isDeepStrictEqual({ com1, com2 }, step.expected), `${name}: ${step.title}`,
            `saw ${JSON.stringify({ com1, com2 })}, not ${JSON.stringify(step.expected)}`);
    });
}

async function flyWithNode(personality, protocol, simulatorName) {
    const simulator = new StandIn(binFolder, personality);
    const pilot = new NodePilot(library);
    await pilot.connect(await simulator.port(), protocol);
    const seen = await fly(pilot, simulator);
    check(pilot.simulator === simulatorName, `${personality}: names itself`, pilot.simulator);
    check(pilot.simRunning === 1, `${personality}: says at once that a flight is running`);
    check(pilot.exceptions.length === 0, `${personality}: refuses nothing`, JSON.stringify(pilot.exceptions));
    await expectException(pilot, 7, personality, () =>
        pilot.handle.addToDataDefinition(9, 'COM NONSENSE:1', 'Number', library.SimConnectDataType.FLOAT64));
    simulator.act('quit 1');
    await until(() => pilot.hasQuit, 'quit').catch(() => {});
    check(pilot.hasQuit, `${personality}: says that it quits`);
    pilot.end();
    simulator.end();
    return { seen, events: simulator.events() };
}

// The exception must name the very packet that caused it.
async function expectException(pilot, code, personality, send) {
    const sendId = send();
    const arrived = () => pilot.exceptions.find((one) => one.sendId === sendId);
    const found = await until(arrived, 'exception').catch(() => null);
    check(found?.exception === code, `${personality}: exception ${code} names its packet`, JSON.stringify(found));
}

async function flyWithWorker() {
    const simulator = new StandIn(binFolder, 'stock');
    const pilot = new WorkerPilot(binFolder, await simulator.port());
    await pilot.connect();
    const seen = await fly(pilot, simulator);
    check(pilot.refused.length === 0, 'worker: every write acknowledged', pilot.refused.join('; '));
    check(simulator.refusals() === 0, 'worker: is refused nothing', simulator.lines.join('; '));
    pilot.end();
    simulator.end();
    return { seen, events: simulator.events() };
}

const [byNode, byNode2024, byWorker] = await Promise.all([
    flyWithNode('stock', 'KittyHawk', 'KittyHawk'),
    flyWithNode('stock_2024', 'SunRise', 'SunRise'),
    flyWithWorker(),
]);
judge('node-simconnect', byNode.seen);
judge('node-simconnect, 2024', byNode2024.seen);
judge('worker', byWorker.seen);
check(isDeepStrictEqual(byNode.seen, byWorker.seen), 'the worker and node-simconnect saw the same');
check(isDeepStrictEqual(byNode.events, byWorker.events), 'the simulator heard the same events from both',
    `${byNode.events.join(', ')} / ${byWorker.events.join(', ')}`);
console.log(JSON.stringify({ 'node-simconnect': byNode.seen, worker: byWorker.seen }));
console.log(`${passed} passed, ${failed} failed`);
process.exitCode = failed === 0 && passed > 0 ? 0 : 1;
