// pilots.mjs - two clients with the same controls: one speaks through node-simconnect, which other people wrote, one
// through the worker. radios() is what the client has been told, in the units of flight.mjs.
import { until, Worker } from './processes.mjs';

const slotEvents = {
    active: ['COM_RADIO_SET_HZ', 'COM2_RADIO_SET_HZ'],
    standby: ['COM_STBY_RADIO_SET_HZ', 'COM2_STBY_RADIO_SET_HZ'],
    volume: ['COM1_VOLUME_SET', 'COM2_VOLUME_SET'],
    swap: ['COM1_RADIO_SWAP', 'COM2_RADIO_SWAP'],
};
const eventIds = new Map(Object.entries(slotEvents).flatMap(([slot, names], row) =>
    names.map((name, radio) => [name, 100 + row * 2 + radio])));
const simEventId = 1;
const highestPriority = 1;

export class NodePilot {
    constructor(library) {
        this.library = library;
        this.seen = {};
        this.exceptions = [];
        this.hasQuit = false;
    }
    async connect(port, protocol) {
        const { open, Protocol } = this.library;
        const { recvOpen, handle } = await open('Check', Protocol[protocol], { remote: { host: '127.0.0.1', port } });
        this.simulator = recvOpen.applicationName;
        this.handle = handle;
        handle.on('exception', (exception) => this.exceptions.push(exception));
        handle.on('quit', () => (this.hasQuit = true));
        handle.on('event', (event) => event.clientEventId === simEventId && (this.simRunning = event.data));
        handle.on('simObjectData', (answer) => this.take(answer));
        for (const [name, id] of eventIds) handle.mapClientEventToSimEvent(id, name);
        for (const radio of [1, 2]) this.request(radio);
        handle.subscribeToSystemEvent(simEventId, 'Sim');
        await until(() => this.seen.com1 && this.seen.com2, 'data of both radios');
    }
    // The radio's number is also the id of its definition and its request.
    request(radio) {
        const { SimConnectDataType: type, SimConnectPeriod, SimConnectConstants, DataRequestFlag } = this.library;
        this.handle.addToDataDefinition(radio, `COM ACTIVE FREQUENCY:${radio}`, 'MHz', type.FLOAT64);
        this.handle.addToDataDefinition(radio, `COM STANDBY FREQUENCY:${radio}`, 'MHz', type.FLOAT64);
        this.handle.addToDataDefinition(radio, `COM SPACING MODE:${radio}`, 'Enum', type.INT32);
        this.handle.addToDataDefinition(radio, `COM VOLUME:${radio}`, 'Percent', type.FLOAT64);
        this.handle.requestDataOnSimObject(radio, radio, SimConnectConstants.OBJECT_ID_USER,
            SimConnectPeriod.VISUAL_FRAME, DataRequestFlag.DATA_REQUEST_FLAG_CHANGED);
    }
    take({ requestID, data }) {
        const kilohertz = () => Math.round(data.readFloat64() * 1000);
        const active = kilohertz();
        const standby = kilohertz();
        const spacing = data.readInt32();
        const volume = Math.round(data.readFloat64()) / 100;
        this.seen[`com${requestID}`] = { active, standby, spacing, volume };
    }
    radios() {
        return this.seen;
    }
    async write(com, slot, value) {
        const scale = slot === 'volume' ? 100 : 1000;
        this.send(slotEvents[slot][com - 1], Math.round(value * scale));
    }
    send(name, data) {
        const { SimConnectConstants, EventFlag } = this.library;
        this.handle.transmitClientEvent(SimConnectConstants.OBJECT_ID_USER, eventIds.get(name), data,
            highestPriority, EventFlag.EVENT_FLAG_GROUPID_IS_PRIORITY);
    }
    end() {
        this.handle.close();
    }
}

export class WorkerPilot {
    // link: what native_worker is told beyond the address.
    constructor(binFolder, port, ...link) {
        this.worker = new Worker(binFolder, port, ...link);
        this.refused = [];
    }
    async connect() {
        await until(() => this.worker.telemetry().ok === true, `the worker is ready\n${this.worker.log}`, 10_000);
    }
    radios() {
        const telemetry = this.worker.telemetry();
        const radio = (prefix) => ({
            active: telemetry[prefix + 'active'],
            standby: telemetry[prefix + 'standby'],
            spacing: telemetry[prefix + 'spacing'],
            volume: Math.round(telemetry[prefix + 'volume'] * 100) / 100,
        });
        return { com1: radio('com1_'), com2: radio('com2_') };
    }
    async write(com, slot, value) {
        const telemetry = await this.worker.command(com, slot, value);
        if (telemetry.ack_ok !== true) this.refused.push(telemetry.ack_message);
    }
    end() {
        this.worker.end();
    }
}
