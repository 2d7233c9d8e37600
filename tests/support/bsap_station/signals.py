"""The signals of a station: their records on the line, the lists that they stand in, and what writing does to them."""

import fnmatch
import struct

LOGICAL, ANALOG, LOGICAL_ALARM, ANALOG_ALARM, TEXT = 0, 2, 4, 6, 67

# Errors of one element, and of a whole request.
INVALID_NAME, MANUAL_INHIBIT, INVALID_WRITE = 0x04, 0x06, 0x07
NO_MATCH, VERSION_MISMATCH, INVALID_REQUEST, ELEMENT_ERRORS, NOT_SIGNED_ON = 0x02, 0x10, 0x20, 0x80, 0x05

# Bits of the first field selection byte.
SELECT_UNITS, SELECT_NAME = 0x20, 0x08


class Signal:
    def __init__(self, name, kind, value, units, address, inhibited=False):
        self.name, self.kind, self.value, self.units = name, kind, value, units
        self.address, self.inhibited = address, inhibited

    def logical(self):
        return self.kind in (LOGICAL, LOGICAL_ALARM)

    def record(self, selection):
        out = bytes([self.kind])
        if self.kind == TEXT:
            out += self.value.encode() + b'\0'
        elif self.logical():
            out += bytes([1 if self.value else 0])
        else:
            out += struct.pack('<f', self.value)
        if selection & SELECT_UNITS and self.kind != TEXT:
            out += self.units.encode().ljust(6)[:6]
        out += struct.pack('<H', self.address)
        if selection & SELECT_NAME:
            out += self.name.encode() + b'\0'
        return out

    def state(self):
        return {'name': self.name, 'kind': self.kind, 'value': self.value, 'units': self.units,
                'address': self.address, 'inhibited': self.inhibited}


def single(value):
    """The value as a float of four bytes holds it."""
    return struct.unpack('<f', struct.pack('<f', value))[0]


UNITS = ['SCMH', 'KPA', 'DEGC', 'SCM', 'GJ', '%', 'VOLTS', '']


def analog_value(n):
    """Distinct values. Every fifth has a byte of 10 hex in its float, now and then two of them."""
    if n % 5 == 0:
        return struct.unpack('<f', bytes([0x10 if n % 10 == 0 else 0, 0x10, n & 0x7F, 0x42]))[0]
    return n * 7 + 0.125 * (n % 8) if n % 3 else -(n * 3 + 0.5)


class SignalBase:
    """`analogs` signals in list 54, `logicals` in list 55, a few of every kind in list 7, and the calibrator's."""

    def __init__(self, analogs, logicals):
        self.by_address, self.by_name, self.lists, self.written = {}, {}, {}, []
        self._next = 0x000E
        self.lists[54] = [self._add('AN%03d.VALUE.LIVE' % n, ANALOG_ALARM if n % 9 == 0 else ANALOG,
                                    single(analog_value(n)), UNITS[n % len(UNITS)]) for n in range(1, analogs + 1)]
        self.lists[55] = [self._add('LG%03d.STATE.' % n, LOGICAL_ALARM if n % 7 == 0 else LOGICAL,
                                    (n * n + n // 3) % 3 == 0, 'ON/OFF' if n % 2 else '') for n in range(1, logicals + 1)]
        self.lists[7] = self.lists[54][:3] + self.lists[55][:3] + [
            self._add('SITE.NAME.TEXT', TEXT, 'Weir Lane', ''),
            self._add('HELD.VALUE.MAN', ANALOG, 16.0, 'BAR', inhibited=True),
            self._add('HELD.STATE.MAN', LOGICAL, False, '', inhibited=True)]
        self.transmitters = Transmitters(self)

    def _add(self, name, kind, value, units, inhibited=False):
        self._next += 0x1E1 if self._next % 5 == 0 else 2  # both bytes of an address move, through 10 hex as well
        signal = Signal(name, kind, value, units, self._next, inhibited)
        self.by_address[signal.address] = self.by_name[name] = signal
        return signal

    def write(self, signal, how, kind, value):
        """0, or the error of the element."""
        if signal is None:
            return INVALID_NAME
        right = {0x09: signal.logical(), 0x0A: signal.logical(), 0x0B: not signal.logical() and signal.kind != TEXT,
                 0x0D: signal.kind == TEXT}.get(kind, False)
        error = MANUAL_INHIBIT if signal.inhibited else 0 if right else INVALID_WRITE
        self.written.append({'name': signal.name, 'address': signal.address, 'how': how, 'value': value,
                             'error': error})
        if error == 0:
            signal.value = value
            self.transmitters.written(signal)
        return error

    def search(self, pattern, by_attribute):
        pattern = pattern if '*' in pattern else pattern + '*'

        def fits(name):
            return fnmatch.fnmatchcase(name.split('.')[-1] if by_attribute else name, pattern)
        return [signal for name, signal in sorted(self.by_name.items()) if fits(name)]


class Transmitters:
    """Three transmitters that measure a true pressure or temperature with a gain and an offset of their own."""

    def __init__(self, base):
        self._base = base
        self._state = {}
        self.commands = []
        for tab, live in (('DP', 98.0), ('SP', 51.5), ('TEMP', 20.25)):
            base._add(tab + '.LIVE.', ANALOG, live, 'KPA')
            base._add(tab + '.APPLIED.', ANALOG, 0.0, 'KPA')
            self._state[tab] = {'raw': live, 'gain': 1.0, 'offset': 0.0}
        for status in ('PRESS.CALSTAT.', 'TEMP.CALSTAT.'):
            base._add(status, ANALOG, 3.0, '')
        for command in ('ZERO', 'SPAN', 'REST'):
            for short in ('DP', 'SP', 'TMP'):
                base._add('#CAL.%s%s.' % (short, command), LOGICAL, False, '')

    def written(self, signal):
        if not signal.name.startswith('#CAL.') or not signal.value:
            return
        self.commands.append(signal.name)
        action = signal.name[5:].rstrip('.')
        tab = {'DP': 'DP', 'SP': 'SP', 'TM': 'TEMP'}[action[:2]]
        state, names = self._state[tab], self._base.by_name
        if action.endswith('ZERO'):
            state['offset'] = -state['raw'] * state['gain']
        elif action.endswith('SPAN'):
            state['gain'] = (names[tab + '.APPLIED.'].value - state['offset']) / state['raw']
        else:
            state['gain'], state['offset'] = 1.0, 0.0
        names[tab + '.LIVE.'].value = single(state['raw'] * state['gain'] + state['offset'])
        names['TEMP.CALSTAT.' if tab == 'TEMP' else 'PRESS.CALSTAT.'].value = 0.0
        signal.value = False  # a command falls back by itself
