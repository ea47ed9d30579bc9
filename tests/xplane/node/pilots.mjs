// pilots.mjs - two clients with the same controls: one speaks through a client library that other people wrote, one
// through the worker. radios() is what the client has been told, in the units of flight.mjs.
import { createRequire } from 'node:module';
import { until } from '../../simulator/node/processes.mjs';
import { WorkerPilot as AnyWorkerPilot } from '../../simulator/node/pilots.mjs';

const actuators = 'sim/cockpit2/radios/actuators/';
const names = [1, 2].map((com) => ({
    active: `${actuators}com${com}_frequency_hz_833`,
    standby: `${actuators}com${com}_standby_frequency_hz_833`,
    volume: `${actuators}audio_volume_com${com}`,
}));
const flips = ['sim/radios/com1_standy_flip', 'sim/radios/com2_standy_flip'];
const perSecond = 20;

// The library keeps its socket in its module: each pilot loads a copy of its own.
function loadLibrary(file) {
    const require = createRequire(import.meta.url);
    delete require.cache[require.resolve(file)];
    return require(file);
}

export class NodePilot {
    constructor(libraryFile, port) {
        const XPlaneClient = loadLibrary(libraryFile);
        this.client = new XPlaneClient({ host: '127.0.0.1', port });
    }
    async connect() {
        for (const radio of names) Object.values(radio).forEach((name) => this.ask(name));
        const isTold = () => names.every((radio) => Object.values(radio).every((name) => this.value(name) !== null));
        await until(isTold, 'every value of both radios');
    }
    ask(name, timesPerSecond = perSecond) {
        this.client.requestDataRef(name, timesPerSecond);
    }
    // null before the first answer.
    value(name) {
        return this.client.dataRefs.find((one) => one.dataRef === name)?.value ?? null;
    }
    radios() {
        const radio = ({ active, standby, volume }) => ({
            active: this.value(active),
            standby: this.value(standby),
            volume: Math.round(this.value(volume) * 100) / 100,
        });
        return { com1: radio(names[0]), com2: radio(names[1]) };
    }
    async write(com, slot, value) {
        if (slot === 'swap') this.client.sendCommand(flips[com - 1]);
        else this.client.setDataRef(names[com - 1][slot], value);
    }
    end() {
        this.client.connectionInfo().close();
    }
}

export class WorkerPilot extends AnyWorkerPilot {
    constructor(binFolder, port) {
        super(binFolder, port, 'xplane');
    }
    // X-Plane says nothing of a radio's spacing.
    radios() {
        const withoutSpacing = ({ active, standby, volume }) => ({ active, standby, volume });
        const { com1, com2 } = super.radios();
        return { com1: withoutSpacing(com1), com2: withoutSpacing(com2) };
    }
}
