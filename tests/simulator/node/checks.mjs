// checks.mjs - checks that are counted, and a flight that every client flies alike.
import { isDeepStrictEqual } from 'node:util';
import { until } from './processes.mjs';

let passed = 0;
let failed = 0;

export function check(isGood, title, detail = '') {
    if (isGood) passed++;
    else failed++;
    console.log(`${isGood ? 'ok' : 'FAILED'}  ${title}${isGood || !detail ? '' : ': ' + detail}`);
}

// The sum; the process ends with 0 only if all passed.
export function conclude() {
    console.log(`${passed} passed, ${failed} failed`);
    process.exitCode = failed === 0 && passed > 0 ? 0 : 1;
}

// start: { com1, com2 } as found. steps: what the cockpit does (an action) or the client writes ([radio, slot, value]),
// and what that changes in com1 and com2. Returns [{ title, write, cockpit, expected: { com1, com2 } }].
export function planFlight(start, steps) {
    let radios = start;
    return steps.map(({ title, write, cockpit, com1, com2 }) => {
        radios = { com1: { ...radios.com1, ...com1 }, com2: { ...radios.com2, ...com2 } };
        return { title, write, cockpit, expected: radios };
    });
}

// What the pilot saw after each step.
export async function fly(flight, pilot, simulator) {
    const seen = [];
    for (const step of flight) {
        if (step.cockpit) simulator.act(step.cockpit);
        if (step.write) await pilot.write(...step.write);
        await until(() => isDeepStrictEqual(pilot.radios(), step.expected), step.title, 2000).catch(() => {});
        seen.push({ step: step.title, ...structuredClone(pilot.radios()) });
    }
    return seen;
}

export function judge(flight, name, seen) {
    flight.forEach((step, i) => {
        const { com1, com2 } = seen[i];
        check(isDeepStrictEqual({ com1, com2 }, step.expected), `${name}: ${step.title}`,
            `saw ${JSON.stringify({ com1, com2 })}, not ${JSON.stringify(step.expected)}`);
    });
}
