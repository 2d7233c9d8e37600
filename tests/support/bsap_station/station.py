"""What a station answers to the body of a frame."""

import random
import struct

import archives
import frames
import signals

POLL, UP_ACK, APPLICATION = 0x85, 0x8B, 0xA0
ACCEPTED, NOTHING_READY = 0x86, 0x87  # to a request whose answer follows, and to a poll
ROOM = 232                            # bytes of a body


class Options:
    layout = 'long'       # 'long': a pad stands ahead of each frame; 'cw': none does
    address = 1
    version = (0x12, 0x34)
    passwords = ('', '482913')
    not_ready = 0.0       # share of the requests that get their answer by a poll
    second_poll = 0.4     # share of those that get it only by the second
    poll_serial = False   # an answer to a poll carries the poll's serial number
    noise = 0.0           # share of the frames that have noise around them
    names_in_singles = False  # a signal that is read by itself brings its name, as in a list with names
    status = 0
    analogs, logicals = 210, 60
    day = 17500           # of the newest record
    events = 30
    seed = 1


class Station:
    def __init__(self, options):
        self.options = options
        self.base = signals.SignalBase(options.analogs, options.logicals)
        self.files = archives.make_files(options.day)
        self.audit = archives.make_audit(options.day, options.events)
        self.reader = frames.Reader()
        self.chance = random.Random(options.seed)
        self.counts = {}
        self.hang_up()

    def hang_up(self):
        self.signed_on = False
        self.pending = None     # the body of an answer that a poll gets
        self.polls_before = 0
        self.reader.reset()

    def count(self, what):
        self.counts[what] = self.counts.get(what, 0) + 1

    def feed(self, data):
        """The bytes that go out for those that came in."""
        out = b''
        for body in self.reader.feed(data):
            if len(body) < 3 or body[0] != self.options.address:
                self.count('for others')
                continue
            answer = self.answer(body)
            if answer is not None:
                out += self.dress(frames.frame(answer))
        return out

    def dress(self, frame):
        pad = bytes([self.chance.choice((0xFF, 0x00))]) if self.options.layout == 'long' else b''
        ahead = behind = b''
        if self.chance.random() < self.options.noise:
            self.count('noise')
            ahead = bytes(self.chance.choice((0xFF, 0x00, 0x7E, 0x03, 0x41)) for _ in range(self.chance.randint(1, 4)))
            behind = bytes(self.chance.choice((0xFF, 0x00, 0x55)) for _ in range(self.chance.randint(1, 3)))
        return ahead + pad + frame + behind

    def local(self, serial, function):
        return bytes([0, serial, function, self.options.address, self.options.status, 0])

    def answer(self, body):
        serial, function = body[1], body[2]
        if function == POLL and len(body) == 4:
            return self.polled(serial)
        if function == UP_ACK:
            self.count('acknowledged')
            return self.local(serial, NOTHING_READY)
        if function != APPLICATION:
            self.count('unknown')
            return None
        request = self.take_apart(body)
        if request is None:
            self.count('malformed')
            return None
        sequence, work = request
        self.count('%02X' % work[0])
        result = bytes([0, serial, 0x0B]) + sequence + bytes([APPLICATION, self.options.status]) + self.work(work)
        if self.chance.random() >= self.options.not_ready:
            self.pending = None
            return result
        self.count('not ready')
        self.pending = result
        self.polls_before = 1 if self.chance.random() < self.options.second_poll else 0
        return self.local(serial, ACCEPTED)

    def polled(self, serial):
        self.count('polls')
        if not self.pending:
            return self.local(serial, NOTHING_READY)
        if self.polls_before:
            self.polls_before -= 1
            self.count('second poll')
            return self.local(serial, NOTHING_READY)
        result, self.pending = self.pending, None
        if self.options.poll_serial:
            result = result[:1] + bytes([serial]) + result[2:]
        return result

    @staticmethod
    def take_apart(body):
        """The two sequence bytes and what is asked. A sign-on leaves out a sequence byte that it cannot write."""
        if len(body) > 7 and body[5:7] == b'\x0b\0':
            return body[3:5], body[7:]
        for have in (1, 0):
            if body[3 + have:8 + have] == b'\x0b\0\x70\x05\x01':
                return (body[3:3 + have] + b'\0\0')[:2], body[5 + have:]
        return None

    # Work of the application: from the error byte on, which is the tenth byte of a short frame.

    def work(self, w):
        if w[:3] == b'\x70\x05\x01':
            return self.sign_on(w[3:])
        if w == b'\x04\x02\x01\xff\x11#ON..\0':
            return bytes([0, 1, 0]) + bytes(self.options.version)
        if not self.signed_on:
            self.count('not signed on')
            return bytes([signals.NOT_SIGNED_ON])
        try:
            if w[0] == 0x70:
                return {2: self.fields, 4: self.info, 6: self.by_date, 7: self.records, 5: self.events}[w[2]](w[3:])
            return {0x00: self.read_addresses, 0x04: self.read_names, 0x08: self.search, 0x0C: self.list,
                    0x0D: self.list, 0x80: self.write_addresses, 0x84: self.write_names}[w[0]](w)
        except (KeyError, IndexError, ValueError, struct.error):
            self.count('invalid')
            return bytes([signals.INVALID_REQUEST])

    def sign_on(self, w):
        password = w.split(b'\0')[0].decode('latin1')
        self.signed_on = password in self.options.passwords
        self.count('sign-on')
        return bytes([0 if self.signed_on else signals.NOT_SIGNED_ON])

    def right_version(self, first, second):
        if (first, second) == tuple(self.options.version):
            return True
        self.count('wrong version')
        return False

    def list(self, w):
        first = w[0] == 0x0C
        if w[1] == 0x05 and w[3] == 0x01:
            selection, rest = w[2], w[4:]
        elif w[1] == 0x01:
            selection, rest = w[2], w[3:]
        else:
            raise ValueError
        if len(rest) != (6 if not first or self.options.layout == 'cw' else 4) or rest[2] != 0xFF:
            raise ValueError
        if not self.right_version(rest[0], rest[1]):
            return bytes([signals.VERSION_MISMATCH])
        members = self.base.lists.get(rest[3])
        start = struct.unpack('<H', rest[4:6])[0] if len(rest) == 6 else 0
        if members is None or start > len(members):
            return bytes([signals.NO_MATCH])
        return self.page(members, start, selection)

    @staticmethod
    def page(members, start, selection):
        out, n = b'', start
        while n < len(members) and len(out) + len(members[n].record(selection)) <= ROOM - 12:
            out += members[n].record(selection)
            n += 1
        more = n if n < len(members) else 0
        return bytes([0, n - start, 0]) + struct.pack('<H', more) + out

    def values(self, found, selection):
        if any(signal is None for signal in found):
            errors = bytes(signals.INVALID_NAME if signal is None else 0 for signal in found)
            return bytes([signals.ELEMENT_ERRORS, len(found)]) + errors
        if not self.options.names_in_singles:
            selection &= ~signals.SELECT_NAME
        return bytes([0, len(found), 0, 0, 0]) + b''.join(signal.record(selection) for signal in found)

    def read_addresses(self, w):
        if w[1] != 0x05 or w[3] != 0x01 or w[6] != 0xFF or len(w) != 8 + 2 * w[7]:
            raise ValueError
        if not self.right_version(w[4], w[5]):
            return bytes([signals.VERSION_MISMATCH])
        return self.values([self.base.by_address.get(a) for a in struct.unpack('<%dH' % w[7], w[8:])], w[2])

    def read_names(self, w):
        names = w[6:].split(b'\0')
        if w[1] != 0x05 or w[3:5] != b'\x01\xff' or names.pop() != b'' or '%02X' % w[5] != '%02d' % len(names):
            raise ValueError
        return self.values([self.base.by_name.get(name.decode('latin1')) for name in names], w[2])

    def search(self, w):
        if w[1:5] != b'\x05\xf9\x01\xff' or w[7:9] != b'\0\0' or w[-1] != 0:
            raise ValueError
        by_attribute = {'long': {0x00: True, 0x80: False}, 'cw': {0x20: True, 0x82: False}}[self.options.layout][w[9]]
        found = self.base.search(w[10:-1].decode('latin1'), by_attribute)
        if not found:
            return bytes([signals.NO_MATCH])
        return self.page(found, struct.unpack('<H', w[5:7])[0], w[2])

    @staticmethod
    def value_part(w):
        """The kind of a value, the value, and how many bytes it took."""
        if w[0] in (0x09, 0x0A):
            return w[0], w[0] == 0x09, 1
        if w[0] == 0x0B:
            return w[0], struct.unpack('<f', w[1:5])[0], 5
        if w[0] == 0x0D:
            end = w.index(0, 1)
            return w[0], w[1:end].decode('latin1'), end + 1
        raise ValueError

    def written(self, errors):
        if any(errors):
            return bytes([signals.ELEMENT_ERRORS, len(errors)]) + bytes(errors)
        return bytes([0])

    def write_addresses(self, w):
        if w[3] != 0xFF:
            raise ValueError
        if not self.right_version(w[1], w[2]):
            return bytes([signals.VERSION_MISMATCH])
        parts, at = [], 5
        for _ in range(w[4]):
            address = struct.unpack('<H', w[at:at + 2])[0]
            kind, value, taken = self.value_part(w[at + 2:])
            parts.append((self.base.by_address.get(address), kind, value))
            at += 2 + taken
        if at != len(w):
            raise ValueError
        return self.written([self.base.write(signal, 'address', kind, value) for signal, kind, value in parts])

    def write_names(self, w):
        end = w.index(0, 3)
        if w[1:3] != b'\xff\x01':
            raise ValueError
        kind, value, taken = self.value_part(w[end + 1:])
        if end + 1 + taken != len(w):
            raise ValueError
        return self.written([self.base.write(self.base.by_name.get(w[3:end].decode('latin1')), 'name', kind, value)])

    # Archives. A short frame has its first byte of work at position 10.

    def file(self, w):
        return self.files.get(w[0]) if w[1] == 0 else None

    INVALID_FILE, INVALID_FIELD = bytes([135, 129]) + bytes(14), bytes([135, 130]) + bytes(14)

    def info(self, w):
        file = self.file(w)
        if file is None:
            return self.INVALID_FILE
        newest = file.after_last() - (0 if self.options.layout == 'cw' else 1)
        return bytes(11) + struct.pack('<HHH', newest, file.oldest, len(file.records))

    def fields(self, w):
        file, index = self.file(w), w[2]
        if file is None:
            return self.INVALID_FILE
        if index >= len(file.fields):
            return self.INVALID_FIELD
        count = min(5, len(file.fields) - index)
        return (bytes(9) + struct.pack('<HB', len(file.fields), count) + file.name.encode().ljust(9)[:9] + bytes(12)
                + b''.join(file.definition(index + i) for i in range(count)))

    def records(self, w):
        return self.record_reply(self.file(w), struct.unpack('<H', w[2:4])[0], w[4])

    def by_date(self, w):
        file = self.file(w)
        return self.record_reply(file, file.find(struct.unpack('<h', w[2:4])[0]) if file else 0, 0)

    def record_reply(self, file, first, wanted):
        if file is None:
            return self.INVALID_FILE
        fit = (ROOM - 20) // (8 + 4 * len(file.fields))
        found = file.slice(first, min(wanted or fit, fit))
        more = found and found[-1]['number'] + 1 < file.after_last()
        number = found[0]['number'] if found else file.after_last()
        return (bytes(7) + bytes([1 if more else 0, len(found)]) + struct.pack('<H', number)
                + b''.join(file.record(r) for r in found))

    CURSORS = (0x10, 0x05)

    def events(self, w):
        a, b, zero, wanted, low, high = w
        if zero != 0 or (a, b) not in ((0, 0), self.CURSORS):
            raise ValueError
        start = max(low + 256 * high, 1)
        found = self.audit[start - 1:start - 1 + min(wanted or 4, 4)]
        field = len(self.audit) if start <= len(self.audit) else 0
        return (bytes(7) + struct.pack('<HBBB', field, *self.CURSORS, len(found))
                + b''.join(archives.audit_record(e) for e in found))

    def state(self):
        return {'layout': self.options.layout, 'counts': dict(self.counts, badChecks=self.reader.bad_checks),
                'lists': {str(n): [s.state() for s in members] for n, members in self.base.lists.items()},
                'signals': [s.state() for s in self.base.by_name.values()],
                'written': self.base.written, 'commands': self.base.transmitters.commands,
                'archives': {str(n): file.state() for n, file in self.files.items()}, 'audit': self.audit}
