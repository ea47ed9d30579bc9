// check.mjs BIN_FOLDER MODULES_FOLDER - flies one flight through node-simconnect and the same through the worker, each
// with a stand-in simulator of its own, and compares what they saw. Prints the values as JSON, a line for each check,
// and ends with 0 only if all passed. MODULES_FOLDER is where package-lock.json was installed.
import { createRequire } from 'node:module';
import { join, resolve } from 'node:path';
import { isDeepStrictEqual } from 'node:util';
import { check, conclude, fly, judge } from './checks.mjs';
import { flight } from './flight.mjs';
import { NodePilot, WorkerPilot } from './pilots.mjs';
import { StandIn, until } from './processes.mjs';

const [binFolder, modulesFolder] = process.argv.slice(2).map((folder) => resolve(folder));
const library = createRequire(join(modulesFolder, 'package.json'))('node-simconnect');

function startSimulator(personality) {
    return new StandIn(join(binFolder, 'stand_in_simulator'), ['--personality', personality, '--tcp', '0']);
}

async function flyWithNode(personality, protocol, simulatorName) {
    const simulator = startSimulator(personality);
    const pilot = new NodePilot(library);
    await pilot.connect(await simulator.port(), protocol);
    const seen = await fly(flight, pilot, simulator);
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
    const simulator = startSimulator('stock');
    const pilot = new WorkerPilot(binFolder, await simulator.port());
    await pilot.connect();
    const seen = await fly(flight, pilot, simulator);
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
judge(flight, 'node-simconnect', byNode.seen);
judge(flight, 'node-simconnect, 2024', byNode2024.seen);
judge(flight, 'worker', byWorker.seen);
check(isDeepStrictEqual(byNode.seen, byWorker.seen), 'the worker and node-simconnect saw the same');
check(isDeepStrictEqual(byNode.events, byWorker.events), 'the simulator heard the same events from both',
    `${byNode.events.join(', ')} / ${byWorker.events.join(', ')}`);
console.log(JSON.stringify({ 'node-simconnect': byNode.seen, worker: byWorker.seen }));
conclude();
