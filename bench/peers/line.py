"""The serial station beside the usual tools: filters beside cat and tr, sending and receiving over a pty beside cat into
and out of the same pty, and how soon the next block follows an answer. Pacing is off, so that the program is measured
and not the rate of the line."""

import json
import os
import pathlib
import statistics
import subprocess
import tempfile
import threading
import time
import tty
import zlib

REPEATS = 5
FORMS = ('general', 'EIA', 'all compressions', 'BRIDGEPORT blocks', 'HEIDENHAIN blocks')


class Pty:
    """A pseudo-terminal whose other side stays open, read by a thread until `count` bytes have come."""

    def __init__(self):
        self.master, self.slave = os.openpty()
        tty.setraw(self.slave)
        self.name = os.ttyname(self.slave)

    def close(self):
        os.close(self.master)
        os.close(self.slave)

    def read(self, count):
        crc, got = 0, 0
        while got < count:
            piece = os.read(self.master, 65536)
            crc, got = zlib.crc32(piece, crc), got + len(piece)
        return crc

    def write(self, data):
        view = memoryview(data)
        while view:
            view = view[os.write(self.master, view[:65536]):]


class Station:
    """hexlane-cli with a home of its own: machine 1 is a plain ASCII line, machine 2 HEIDENHAIN."""

    def __init__(self, cli, home):
        self.cli = str(cli)
        (pathlib.Path(home) / 'ZOLT').mkdir()
        self.env = dict(os.environ, HEXLANE_HOME=str(home), HEXLANE_LINE_PACING='off')
        for machine, protocol in ((1, 'general'), (2, 'heidenhain')):
            self.run('machines', 'set', str(machine), f'protocol={protocol}', 'data_bits=8', 'handshake=hardware',
                     'receive_timeout_s=1')

    def run(self, *words):
        done = subprocess.run([self.cli, *words], env=self.env, capture_output=True, text=True, check=False)
        if done.returncode != 0:
            raise SystemExit(f'hexlane-cli {" ".join(words)}: {done.stderr}')

    def command(self, verb, pty, file, machine=1):
        return [self.cli, verb, '--machine', str(machine), '--port', pty.name, str(file)]


def watched(command, env, act):
    """Milliseconds until `act` has seen everything, its result, and the processor time of the command."""
    begin = time.perf_counter()
    process = subprocess.Popen(command, env=env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    result = act()
    took = 1000 * (time.perf_counter() - begin)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    return took, result, 1000 * (usage.ru_utime + usage.ru_stime)


def measure_sending(table, station, file):
    data = file.read_bytes()
    pty, ours, peers, cpu = Pty(), [], [], []
    for _ in range(REPEATS):
        took, crc, spent = watched(station.command('send', pty, file), station.env, lambda: pty.read(len(data)))
        ours.append(took)
        cpu.append(spent)
        took, peer_crc, _ = watched(['sh', '-c', f'cat {file} > {pty.name}'], None, lambda: pty.read(len(data)))
        peers.append(took)
        if crc != zlib.crc32(data) or peer_crc != crc:
            raise SystemExit('the bytes of a send are not those of the file')
    pty.close()
    table.row(f'send {len(data) / 1e6:.0f} MB over a pty, beside cat into it', ours, peers, 'ms', '1.5', 0)
    table.value('  processor time of the send', cpu, 'ms', '', 0)


def measure_receiving(table, station, file, folder):
    data = file.read_bytes()
    pty, ours, peers = Pty(), [], []
    target = pathlib.Path(folder) / 'received.nc'
    part = pathlib.Path(folder) / 'received.nc.part'  # until all has come

    def feed_until(path):
        def act():
            time.sleep(0.3)  # the reader opens the line in this time, which is taken off below
            writer = threading.Thread(target=pty.write, args=(data,))
            writer.start()
            while not path.exists() or path.stat().st_size < len(data):
                time.sleep(0.002)
            writer.join()
        return act

    for _ in range(REPEATS):
        target.unlink(missing_ok=True)
        took, _, _ = watched(station.command('receive', pty, target), station.env, feed_until(part))
        ours.append(took - 300)
        if target.read_bytes() != data:
            raise SystemExit('the bytes of a receive are not those that were sent')
        target.unlink()
        command = ['sh', '-c', f'head -c {len(data)} < {pty.name} > {target}']
        took, _, _ = watched(command, None, feed_until(target))
        peers.append(took - 300)
    pty.close()
    table.row(f'receive {len(data) / 1e6:.0f} MB over a pty, beside head -c from it', ours, peers, 'ms', '', 0)


def measure_answers(table, station, folder, blocks):
    """From the answer to a block to the first byte of the next."""
    file = pathlib.Path(folder) / 'blocks.nc'
    file.write_bytes(b''.join(b'N%d G1 X%d\r\n' % (row, row % 500) for row in range(blocks)))
    pty, latencies = Pty(), []

    def play():
        tail = b''
        while len(latencies) < blocks - 1:
            while tail[-3:-2] != b'\x17' or tail[-1:] != b'\x02':  # ETB, check, STX of the next block
                tail += os.read(pty.master, 4096)
            asked = time.perf_counter()
            os.write(pty.master, b'\x06')
            tail = os.read(pty.master, 4096)
            latencies.append(1000 * (time.perf_counter() - asked))
        while not tail.endswith(b'\x0c\x03'):
            tail += os.read(pty.master, 4096)
        os.write(pty.master, b'\x06')

    watched(station.command('send', pty, file, 2), station.env, play)
    pty.close()
    print(f'answer to next block over a pty: median {statistics.median(latencies):.3f} ms (at most 0.2), worst '
          f'{max(latencies):.2f} ms of {len(latencies)}', flush=True)


def piped_times(command, file):
    """Milliseconds of a command that reads the file, its start included."""
    times = []
    for _ in range(REPEATS):
        with open(file, 'rb') as source:
            begin = time.perf_counter()
            subprocess.run(command, stdin=source, stdout=subprocess.DEVNULL, check=True)
            times.append(1000 * (time.perf_counter() - begin))
    return times


def measure_filters(bench, file):
    done = subprocess.run([bench, '--benchmark_filter=SendFilter', '--benchmark_format=json'], capture_output=True,
                          check=True)
    size = file.stat().st_size
    for form, figure in zip(FORMS, json.loads(done.stdout)['benchmarks']):
        print(f'filter, {form}: {figure["bytes_per_second"] / 1e6:.0f} MB/s (at least 100)', flush=True)
    for name, command in (('cat', ['cat']), ('tr', ['tr', 'a-z', 'A-Z'])):
        print(f'  beside it {name}: {size / 1e3 / statistics.median(piped_times(command, file)):.0f} MB/s', flush=True)


def measure_line(table, cli, bench, file, blocks):
    with tempfile.TemporaryDirectory(prefix='hexlane-line-') as home:
        station = Station(cli, home)
        measure_filters(bench, file)
        measure_sending(table, station, file)
        measure_receiving(table, station, file, home)
        measure_answers(table, station, home, blocks)
