"""A Hayes modem between the line and a station. It echoes its commands, as modems do."""

import time


class Modem:
    guard = 0.9  # seconds of silence ahead of +++

    def __init__(self, station):
        self.station = station
        self.dialled, self.hang_ups = [], 0
        self._online = self._called = False
        self._line = b''
        self._last = 0.0

    def hang_up(self):
        if self._called:
            self.hang_ups += 1
        self._online = self._called = False
        self._line = b''
        self.station.hang_up()

    def feed(self, data):
        silence, self._last = time.monotonic() - self._last, time.monotonic()
        if self._online:
            if data == b'+++' and silence >= self.guard:
                self._online = False
                return b'\r\nOK\r\n'
            return self.station.feed(data)
        out = data
        self._line += data
        while b'\r' in self._line:
            command, self._line = self._line.split(b'\r', 1)
            out += b'\r\n' + self.command(command.strip().decode('latin1').upper()) + b'\r\n'
        return out

    def command(self, text):
        if not text.startswith('AT'):
            return b'' if text == '' else b'ERROR'
        if 'DT' in text or text.startswith('ATD'):
            self.dialled.append(text.split('D', 1)[1].lstrip('T'))
            self._online = self._called = True
            time.sleep(0.2)
            return b'CONNECT 9600'
        if text.startswith('ATH'):
            self.hang_up()
        return b'OK'
