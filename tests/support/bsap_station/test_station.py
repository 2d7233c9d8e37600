"""The station against requests of another program, and the frames by themselves."""

import struct
import unittest

import frames
import modem
import signals
import station

POLL_1 = '10 02 01 01 85 10 10 10 03 2C B5'
SIGN_ON = '10 02 01 02 A0 12 00 0B 00 70 05 01 34 38 32 39 31 33 00 10 03 37 4E'
SIGN_ON_EMPTY = '10 02 01 02 A0 02 00 0B 00 70 05 01 00 10 03 8E 41'
VERSION = '10 02 01 03 A0 04 00 0B 00 04 02 01 FF 11 23 4F 4E 2E 2E 00 10 03 49 B6'
LIST_FIRST = '10 02 01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36 10 03 0C 0D'
LIST_FIRST_CW = '10 02 01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36 00 00 10 03 BA AF'
LIST_NEXT = '10 02 01 05 A0 00 08 0B 00 0D 01 F0 12 34 FF 36 0F 00 10 03 CC 77'
LIST_NAMES = '10 02 01 06 A0 00 10 10 0B 00 0C 05 F9 01 12 34 FF 36 10 03 CA 9D'
WRITE_FLOAT = '10 02 01 07 A0 12 00 0B 00 80 12 34 FF 01 00 01 0B 00 00 C8 42 10 03 F3 A2'
WRITE_ON = '10 02 01 08 A0 14 00 0B 00 80 12 34 FF 01 10 10 00 09 10 03 98 5F'
READ_300 = '10 02 01 09 A0 00 16 0B 00 00 05 F8 01 12 34 FF 01 2C 01 10 03 E0 50'
INFO = '10 02 01 0A A0 18 00 0B 00 70 07 04 02 00 10 03 7A 51'
READ_272 = '10 02 01 0B A0 1A 00 0B 00 70 07 07 02 00 10 10 01 04 10 03 D8 3B'
BY_DATE = '10 02 01 0C A0 1C 00 0B 00 70 07 06 01 00 4A 43 00 00 10 03 98 A2'
AUDIT = '10 02 01 0D A0 1E 00 0B 00 70 03 05 03 04 00 04 01 00 10 03 BE D5'
OF_ANOTHER_PROGRAM = [POLL_1, '10 02 01 10 10 85 10 10 10 03 36 6A', '10 02 01 05 8B 05 10 03 F2 3C',
                      '10 02 01 10 10 8B 10 10 10 03 2D 7A', SIGN_ON, SIGN_ON_EMPTY, VERSION, LIST_FIRST,
                      LIST_FIRST_CW, LIST_NEXT, LIST_NAMES, WRITE_FLOAT, WRITE_ON, READ_300, INFO, READ_272, BY_DATE,
                      AUDIT]


def make(**given):
    options = station.Options()
    for name, value in given.items():
        setattr(options, name, value)
    return station.Station(options)


class Client:
    """Asks a station and gives answers by their positions, which count from 1 over the frame with its pad."""

    def __init__(self, unit):
        self.unit = unit
        self.serial = self.sequence = 0

    def raw(self, text):
        return self.unit.feed(bytes.fromhex(text))

    def ask(self, work, password=None):
        self.serial, self.sequence = self.serial % 255 + 1, self.sequence + 2
        body = bytes([1, self.serial, 0xA0]) + struct.pack('<H', self.sequence) + b'\x0b\0' + work
        return self.unit.feed(frames.frame(body))

    def sign_on(self):
        self.raw(SIGN_ON)
        return self


def folded(reply):
    return reply.replace(b'\x10\x10', b'\x10')


class Frames(unittest.TestCase):
    def test_frames_of_another_program_are_whole_and_come_out_the_same(self):
        for text in OF_ANOTHER_PROGRAM:
            wire = bytes.fromhex(text)
            bodies = frames.Reader().feed(b'\xff\x00' + wire + b'\x55')
            self.assertEqual(len(bodies), 1, text)
            self.assertEqual(frames.frame(bodies[0]), wire)

    def test_a_changed_bit_is_no_frame(self):
        wire = bytearray.fromhex(LIST_FIRST)
        for place in range(2, len(wire)):
            changed = bytes(wire[:place]) + bytes([wire[place] ^ 0x20]) + bytes(wire[place + 1:])
            self.assertEqual(frames.Reader().feed(changed), [], place)

    def test_a_frame_that_was_cut_does_not_take_the_next_with_it(self):
        self.assertEqual(len(frames.Reader().feed(bytes.fromhex(LIST_FIRST)[:9] + bytes.fromhex(POLL_1))), 1)


class Answers(unittest.TestCase):
    def test_the_poll_names_address_and_status_at_their_positions(self):
        for layout, first in (('long', 6), ('cw', 5)):
            reply = Client(make(layout=layout)).raw(POLL_1)[1:]  # with its first byte cut off
            self.assertEqual((reply[first - 1], reply[first]), (1, 0))
            self.assertTrue(11 <= len(reply) + 1 <= 17)

    def test_the_version_stands_at_its_positions(self):
        for layout, first in (('long', 14), ('cw', 13)):
            reply = folded(Client(make(layout=layout, version=(0x10, 0x34))).sign_on().raw(VERSION))
            self.assertEqual(reply[first - 1:first + 1], b'\x10\x34')
            self.assertGreaterEqual(len(reply), 18)

    def test_lists_are_served_whole_after_a_sign_on(self):
        for layout, first in (('long', LIST_FIRST), ('cw', LIST_FIRST_CW)):
            client = Client(make(layout=layout))
            off = 1 if layout == 'long' else 0
            self.assertLessEqual(len(client.raw(first)), 17)
            client.sign_on()
            reply, values, addresses = folded(client.raw(first)), [], []
            self.assertEqual(reply[off + 3:off + 7], b'\x04\x0b\x00\x06')  # serial and sequence of the request
            while True:
                self.assertGreater(len(reply), 18)
                more = reply[off + 12:off + 14]
                at = off + 14
                while at < len(reply) - 4:
                    values.append(struct.unpack('<f', reply[at + 1:at + 5])[0])
                    addresses.append(struct.unpack('<H', reply[at + 11:at + 13])[0])
                    at += 13
                self.assertEqual(at, len(reply) - 4)
                if more == b'\0\0':
                    break
                reply = folded(client.ask(b'\x0d\x01\xf0\x12\x34\xff\x36' + more))
            self.assertEqual(values, [s.value for s in client.unit.base.lists[54]])
            self.assertEqual(addresses, [s.address for s in client.unit.base.lists[54]])
            self.assertEqual(len(set(values)), 210)
            self.assertEqual(len(set(addresses)), 210)
            self.assertTrue(any(a & 0xFF == 0x10 for a in addresses))

    def test_names_and_a_wrong_version_and_a_missing_list(self):
        client = Client(make()).sign_on()
        self.assertIn(b'AN001.VALUE.LIVE\0', client.raw(LIST_NAMES))
        for work, error in ((b'\x0c\x01\xf0\x12\x35\xff\x36', signals.VERSION_MISMATCH),
                            (b'\x0c\x01\xf0\x12\x34\xff\x05', signals.NO_MATCH)):
            self.assertEqual(folded(client.ask(work))[10], error)

    def test_writes_change_what_is_read_and_an_inhibited_signal_takes_none(self):
        client = Client(make()).sign_on()
        base = client.unit.base
        one, two = base.lists[54][:2]
        logical = base.lists[55][0]
        held, text = base.by_name['HELD.VALUE.MAN'], base.by_name['SITE.NAME.TEXT']
        value = b'\x0b' + struct.pack('<f', 100.0)

        def address(signal):
            return struct.pack('<H', signal.address)

        client.ask(b'\x80\x12\x34\xff\x01' + address(one) + value)
        client.ask(b'\x80\x12\x34\xff\x01' + address(logical) + b'\x09')
        client.ask(b'\x80\x12\x34\xff\x01' + address(text) + b'\x0dNorth\0')
        client.ask(b'\x84\xff\x01' + two.name.encode() + b'\0' + value)
        self.assertEqual((one.value, two.value, logical.value, text.value), (100.0, 100.0, True, 'North'))
        reply = folded(client.ask(b'\x80\x12\x34\xff\x02' + address(held) + value + address(two) + value))
        self.assertEqual(reply[10:14], bytes([signals.ELEMENT_ERRORS, 2, signals.MANUAL_INHIBIT, 0]))
        self.assertEqual(held.value, 16.0)
        client.ask(b'\x80\x12\x35\xff\x01' + address(one) + b'\x0b\0\0\0\0')
        self.assertEqual(one.value, 100.0)
        reply = folded(client.ask(b'\x00\x05\xf8\x01\x12\x34\xff\x01' + address(one)))
        self.assertEqual(reply[15:20], one.record(0xF8)[:5])

    def test_archives_and_the_trail(self):
        for layout in ('long', 'cw'):
            client = Client(make(layout=layout)).sign_on()
            off = 1 if layout == 'long' else 0
            file = client.unit.files[2]
            info = folded(client.raw(INFO))
            newest, oldest = struct.unpack('<HH', info[off + 20:off + 24])
            self.assertEqual((newest, oldest), (319 + (layout == 'cw'), 260))
            reply = folded(client.raw(READ_272))
            self.assertEqual((reply[off + 16], reply[off + 17]), (1, 4))
            self.assertTrue(reply[off + 20:].startswith(file.record(file.records[12])))
            reply = folded(client.raw(BY_DATE))
            number = struct.unpack('<H', reply[off + 18:off + 20])[0]
            self.assertEqual(number, 1)  # the day is before them all
            reply = folded(client.ask(b'\x70\x07\x06\x01\x00' + struct.pack('<H', 17480) + b'\0\0'))
            number = struct.unpack('<H', reply[off + 18:off + 20])[0]
            self.assertEqual(client.unit.files[1].records[number - 1]['day'], 17480)
            self.assertLessEqual(len(client.raw(AUDIT)), 17)  # of cursors that it did not give
            reply = folded(client.ask(b'\x70\x03\x05\x10\x05\x00\x04\x01\x00'))
            self.assertEqual((reply[off + 16], reply[off + 20]), (30, 4))

    def test_it_is_silent_to_a_wrong_check_and_another_address(self):
        client = Client(make())
        self.assertEqual(client.raw(POLL_1[:-2] + 'B6'), b'')
        self.assertEqual(client.unit.feed(frames.frame(b'\x02\x01\x85\x10')), b'')

    def test_what_is_not_ready_comes_by_the_first_or_the_second_poll(self):
        client = Client(make(not_ready=1.0, second_poll=0.5, seed=3)).sign_on()
        polls = set()
        for _ in range(20):
            reply, count = client.raw(LIST_FIRST), 0
            while len(reply) <= 17:
                reply, count = client.raw(POLL_1), count + 1
            self.assertEqual(reply[4], 4)  # the serial number of the list's request
            polls.add(count)
        self.assertEqual(polls, {1, 2})

    def test_a_sign_on_whose_sequence_bytes_are_left_out(self):
        for sequence in (b'', b'\x12'):
            unit = make()
            unit.feed(frames.frame(b'\x01\x02\xa0' + sequence + b'\x0b\0\x70\x05\x01\0'))
            self.assertTrue(unit.signed_on)


class Calling(unittest.TestCase):
    def test_a_call_and_its_end(self):
        line = modem.Modem(make())
        self.assertIn(b'OK', line.feed(b'at\r'))
        self.assertEqual(line.feed(bytes.fromhex(POLL_1)).count(b'\x10\x02'), 1)  # only its echo
        line.feed(b'\r')
        self.assertIn(b'CONNECT', line.feed(b'atx3dt5551234\r'))
        self.assertEqual(line.dialled, ['5551234'])
        self.assertTrue(line.feed(bytes.fromhex(POLL_1)))
        line._last -= 1
        self.assertIn(b'OK', line.feed(b'+++'))
        line.feed(b'ath\r')
        self.assertEqual(line.hang_ups, 1)


if __name__ == '__main__':
    unittest.main()
