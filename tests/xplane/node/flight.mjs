// flight.mjs - one flight, flown by every client alike: what the cockpit does and what the client writes, and the
// radios as they must then be seen. Frequencies in kHz, volume 0..1.
import { planFlight } from '../../simulator/node/checks.mjs';

const start = {
    com1: { active: 122800, standby: 121500, volume: 1 },
    com2: { active: 121500, standby: 118000, volume: 1 },
};

// Each step changes what the one before left.
const steps = [
    { title: 'as found' },
    { title: 'standby set', write: [1, 'standby', 121800], com1: { standby: 121800 } },
    { title: 'an 8.33 kHz channel', write: [1, 'standby', 128855], com1: { standby: 128855 } },
    { title: 'swapped', write: [1, 'swap', 0], com1: { active: 128855, standby: 122800 } },
    { title: 'volume', write: [1, 'volume', 0.4], com1: { volume: 0.4 } },
    { title: 'COM2 active, the highest there is', write: [2, 'active', 136990], com2: { active: 136990 } },
    { title: 'COM2 swapped', write: [2, 'swap', 0], com2: { active: 118000, standby: 136990 } },
    { title: 'COM2 volume', write: [2, 'volume', 0.65], com2: { volume: 0.65 } },
    { title: 'the pilot tunes', cockpit: 'tune COM1 active 118.005', com1: { active: 118005 } },
    { title: 'and turns the volume', cockpit: 'volume COM1 72', com1: { volume: 0.72 } },
];

export const flight = planFlight(start, steps);
