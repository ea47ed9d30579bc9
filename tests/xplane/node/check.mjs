// check.mjs BIN_FOLDER LIBRARY_FILE - flies one flight through a client library that other people wrote and the same
// through the worker, each with a stand-in X-Plane of its own, and compares what they saw. Prints the values as JSON, a
// line for each check, and ends with 0 only if all passed.
import { createSocket } from 'node:dgram';
import { join, resolve } from 'node:path';
import { isDeepStrictEqual } from 'node:util';
import { check, conclude, fly, judge } from '../../simulator/node/checks.mjs';
import { StandIn, until } from '../../simulator/node/processes.mjs';
import { flight } from './flight.mjs';
import { NodePilot, WorkerPilot } from './pilots.mjs';

const [binFolder, libraryFile] = process.argv.slice(2).map((file) => resolve(file));

// beacon: where it is sent; nowhere unless given.
function startSimulator(personality, ...beacon) {
    const where = beacon.length > 0 ? ['--beacon', ...beacon] : ['--no-beacon'];
    const simulator = new StandIn(join(binFolder, 'stand_in_xplane'),
        ['--personality', personality, '--listen', '127.0.0.1:0', ...where]);
    // What clients wrote: ["write sim/... 118005", "command sim/..."]. One who sees no effect yet may say it again.
    simulator.writes = () => simulator.lines.map((line) => / ((write|command) .*)$/.exec(line)?.[1]).filter(Boolean)
        .filter((text, i, all) => text !== all[i - 1]);
    simulator.complaints = () => simulator.lines.filter((line) => / strange bytes$| what there is not: /.test(line));
    return simulator;
}

async function flyWithNode(personality) {
    const simulator = startSimulator(personality);
    const pilot = new NodePilot(libraryFile, await simulator.port());
    await pilot.connect();
    const seen = await fly(flight, pilot, simulator);
    check(simulator.complaints().length === 0, `${personality}: understands all it is sent`,
        simulator.complaints().join('; '));
    await expectStop(pilot, simulator, personality);
    pilot.end();
    simulator.end();
    return { seen, writes: simulator.writes() };
}

// A value that changes after that is not told any more, while the others are.
async function expectStop(pilot, simulator, personality) {
    const stopped = 'sim/cockpit2/radios/actuators/com1_frequency_hz_833';
    pilot.ask(stopped, 0);
    await until(() => simulator.lines.some((line) => line.includes(`asks 0 times for ${stopped} `)), 'stop');
    const before = pilot.value(stopped);
    simulator.act('tune COM1 active 119.000');
    simulator.act('tune COM1 standby 119.100');
    await until(() => pilot.radios().com1.standby === 119100, 'the other value').catch(() => {});
    check(pilot.radios().com1.standby === 119100, `${personality}: goes on with what it is still asked for`);
    check(before !== 119000 && pilot.value(stopped) === before, `${personality}: stops when asked to`);
}

async function askForWhatThereIsNot() {
    const unknown = 'sim/nonsense';
    const com2 = 'sim/cockpit2/radios/actuators/com2_frequency_hz_833';
    const com1 = 'sim/cockpit2/radios/actuators/com1_frequency_hz_833';
    for (const [personality, expected] of [['lacks_com2', null], ['lacks_com2_says_zero', 0]]) {
        const simulator = startSimulator(personality);
        const pilot = new NodePilot(libraryFile, await simulator.port());
        for (const name of [unknown, com2, com1]) pilot.ask(name);
        await until(() => pilot.value(com1) === 122800, 'COM1').catch(() => {});
        check(pilot.value(com1) === 122800, `${personality}: has COM1`);
        check(pilot.value(com2) === expected && pilot.value(unknown) === expected,
            `${personality}: says ${expected === null ? 'nothing' : 'zero'} of what there is not`);
        pilot.end();
        simulator.end();
    }
}

// Its fields, by the description's own offsets.
async function listenToBeacon() {
    const beacons = [];
    const socket = createSocket('udp4');
    socket.on('message', (bytes) => beacons.push(bytes));
    await new Promise((done) => socket.bind(0, '127.0.0.1', done));
    const simulator = startSimulator('stock_11', `127.0.0.1:${socket.address().port}`);
    const port = await simulator.port();
    await until(() => beacons.length > 1, 'two beacons').catch(() => {});
    const [beacon] = beacons;
    const fields = beacon && {
        head: beacon.toString('latin1', 0, 5), major: beacon.readUInt8(5), minor: beacon.readUInt8(6),
        program: beacon.readInt32LE(7), version: beacon.readInt32LE(11), role: beacon.readUInt32LE(15),
        port: beacon.readUInt16LE(19), computer: beacon.toString('latin1', 21),
    };
    check(isDeepStrictEqual(fields, { head: 'BECN\0', major: 1, minor: 1, program: 1, version: 115501, role: 1, port,
        computer: 'simpc\0' }), 'beacon', JSON.stringify(fields));
    check(beacons.length > 1, 'and again');
    socket.close();
    simulator.end();
}

async function flyWithWorker() {
    const simulator = startSimulator('stock_12');
    const pilot = new WorkerPilot(binFolder, await simulator.port());
    await pilot.connect();
    const seen = await fly(flight, pilot, simulator);
    check(pilot.refused.length === 0, 'worker: every write acknowledged', pilot.refused.join('; '));
    check(simulator.complaints().length === 0, 'worker: sends nothing that is not understood',
        simulator.complaints().join('; '));
    pilot.end();
    simulator.end();
    return { seen, writes: simulator.writes() };
}

const [byNode, byNode11, byWorker] = await Promise.all([
    flyWithNode('stock_12'),
    flyWithNode('stock_11'),
    flyWithWorker(),
    askForWhatThereIsNot(),
    listenToBeacon(),
]);
judge(flight, 'library', byNode.seen);
judge(flight, 'library, version 11', byNode11.seen);
judge(flight, 'worker', byWorker.seen);
check(isDeepStrictEqual(byNode.seen, byWorker.seen), 'the worker and the library saw the same');
check(isDeepStrictEqual(byNode.writes, byWorker.writes), 'X-Plane was told the same by both',
    `${byNode.writes.join(', ')} / ${byWorker.writes.join(', ')}`);
console.log(JSON.stringify({ library: byNode.seen, worker: byWorker.seen }));
conclude();
