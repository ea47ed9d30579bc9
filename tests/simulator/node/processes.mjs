// processes.mjs - a stand-in simulator and the worker as processes of this machine, and waiting for them.
import { spawn } from 'node:child_process';
import { mkdtempSync, readFileSync, renameSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

export const pause = (ms) => new Promise((resolve) => setTimeout(resolve, ms));

export async function until(condition, what, deadlineMs = 5000) {
    for (const end = Date.now() + deadlineMs; Date.now() < end; await pause(10)) {
        const value = condition();
        if (value) return value;
    }
    throw new Error(`not within ${deadlineMs} ms: ${what}`);
}

export class StandIn {
    // program takes actions and reports what its clients do; it says first which port it listens on.
    constructor(program, programArguments) {
        this.lines = [];
        this.process = spawn(program, programArguments, { stdio: ['pipe', 'pipe', 'inherit'] });
        this.process.on('error', (error) => this.lines.push(String(error)));
        let rest = '';
        this.process.stdout.on('data', (data) => {
            const parts = (rest + data).split('\n');
            rest = parts.pop();
            this.lines.push(...parts);
        });
    }
    async port() {
        await until(() => this.lines.length > 0, 'the stand-in starts');
        return Number(/^listening on port (\d+)$/.exec(this.lines[0])[1]);
    }
    act(line) {
        this.process.stdin.write(line + '\n');
    }
    // What clients sent to the radios: ["COM_RADIO_SET_HZ 118005000", ...].
    events() {
        return this.lines.map((line) => / event (.*)$/.exec(line)?.[1]).filter(Boolean);
    }
    refusals() {
        return this.lines.filter((line) => line.includes(' refused ')).length;
    }
    end() {
        this.process.stdin.end();
    }
}

// The worker, and the plugin's side of its two files.
export class Worker {
    constructor(binFolder, port, ...link) {
        this.folder = mkdtempSync(join(tmpdir(), 'corvalis-check-'));
        this.log = '';
        this.commands = 0;
        this.process = spawn(join(binFolder, 'native_worker'), [this.folder, `127.0.0.1:${port}`, ...link],
            { stdio: ['pipe', 'ignore', 'pipe'] });
        this.process.on('error', (error) => (this.log += error));
        this.process.stderr.on('data', (data) => (this.log += data));
    }
    telemetry() {
        try {
            return JSON.parse(readFileSync(join(this.folder, 'telemetry.json'), 'utf8'));
        } catch {
            return {};  // none yet
        }
    }
    // Resolves with the telemetry that acknowledges it.
    async command(com, slot, target) {
        const id = `4242-${++this.commands}`;
        const file = join(this.folder, 'command.json');
        writeFileSync(file + '.new', JSON.stringify({ id, com, slot, target, created: Date.now() / 1000 }));
        renameSync(file + '.new', file);
        return until(() => this.telemetry().ack_id === id && this.telemetry(), `the worker answers ${com} ${slot}`);
    }
    end() {
        this.process.stdin.end();
        this.process.once('exit', () => rmSync(this.folder, { recursive: true, force: true }));
    }
}
