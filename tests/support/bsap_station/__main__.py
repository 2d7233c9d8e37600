"""A BSAP station on a pseudo-terminal of its own, behind a Hayes modem if asked.

It prints "ready" and the device's path, works until SIGTERM, and writes its state as JSON at SIGUSR1 and at its end.
"""

import argparse
import errno
import json
import os
import pty
import signal
import sys
import time
import tty

import modem
import station


def arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument('--link', help='a symbolic link to make to the device')
    parser.add_argument('--state', help='file for the state')
    parser.add_argument('--modem', action='store_true')
    parser.add_argument('--delay', type=int, default=5, help='ms from a request to its answer')
    parser.add_argument('--trace', help='file for the bytes of the line')
    for name, value in vars(station.Options).items():
        if name.startswith('_') or isinstance(value, tuple):
            continue
        option = '--' + name.replace('_', '-')
        if isinstance(value, bool):
            parser.add_argument(option, action='store_true', default=value)
        else:
            parser.add_argument(option, type=type(value), default=value,
                                choices=('long', 'cw') if name == 'layout' else None)
    parser.add_argument('--version', type=lambda text: tuple(bytes.fromhex(text)), default=station.Options.version)
    return parser.parse_args()


class Program:
    def __init__(self, options):
        self.options = options
        self.station = station.Station(self.fill(options))
        self.modem = modem.Modem(self.station) if options.modem else None
        self.dumps = 0
        self.wanted = self.ended = False
        self.trace = open(options.trace, 'w', buffering=1) if options.trace else None
        self.master, slave = pty.openpty()
        tty.setraw(slave)
        self.path = os.ttyname(slave)
        self.slave = slave
        if options.link:
            if os.path.lexists(options.link):
                os.remove(options.link)
            os.symlink(self.path, options.link)

    @staticmethod
    def fill(given):
        options = station.Options()
        for name in vars(station.Options):
            if hasattr(given, name) and not name.startswith('_'):
                setattr(options, name, getattr(given, name))
        return options

    def note(self, way, data):
        if self.trace and data:
            self.trace.write('%.3f %s %s\n' % (time.monotonic(), way, data.hex(' ')))

    def dump(self):
        if not self.options.state:
            return
        self.dumps += 1
        state = dict(self.station.state(), dumps=self.dumps, dialled=self.modem.dialled if self.modem else [],
                     hangUps=self.modem.hang_ups if self.modem else 0)
        with open(self.options.state + '.new', 'w') as out:
            json.dump(state, out)
        os.replace(self.options.state + '.new', self.options.state)

    def read(self):
        """What came; empty while nobody has the device open."""
        try:
            return os.read(self.master, 4096)
        except BlockingIOError:
            return None
        except OSError as error:
            if error.errno == errno.EIO:
                return b''
            raise

    def run(self):
        signal.signal(signal.SIGUSR1, lambda *_: setattr(self, 'wanted', True))
        for number in (signal.SIGTERM, signal.SIGINT):
            signal.signal(number, lambda *_: setattr(self, 'ended', True))
        os.set_blocking(self.master, False)
        os.close(self.slave)
        print('ready', self.path, flush=True)
        self.dump()
        held = False
        while not self.ended:
            if self.wanted:
                self.wanted = False
                self.dump()
            data = self.read()
            if data:
                held = True
                self.serve(data)
                continue
            if data == b'' and held:  # the other side closed: the line's ready signal falls
                held = False
                (self.modem or self.station).hang_up()
            time.sleep(0.003)
        self.dump()

    def serve(self, data):
        self.note('<', data)
        out = (self.modem or self.station).feed(data)
        if out:
            time.sleep(self.options.delay / 1000)
            self.note('>', out)
            try:
                os.write(self.master, out)
            except OSError:
                pass


if __name__ == '__main__':
    sys.exit(Program(arguments()).run())
