"""The station against requests of another program. What it answers to a master is held by the stories that call it."""

import struct
import unittest

import frames
import station

POLL = '10 02 01 01 85 10 10 10 03 2C B5'
SIGN_ON = '10 02 01 02 A0 12 00 0B 00 70 05 01 34 38 32 39 31 33 00 10 03 37 4E'
VERSION = '10 02 01 03 A0 04 00 0B 00 04 02 01 FF 11 23 4F 4E 2E 2E 00 10 03 49 B6'
LIST_FIRST = {'long': '10 02 01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36 10 03 0C 0D',
              'cw': '10 02 01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36 00 00 10 03 BA AF'}
OF_ANOTHER_PROGRAM = [POLL, SIGN_ON, VERSION, *LIST_FIRST.values(),
                      '10 02 01 10 10 85 10 10 10 03 36 6A', '10 02 01 05 8B 05 10 03 F2 3C',
                      '10 02 01 06 A0 00 10 10 0B 00 0C 05 F9 01 12 34 FF 36 10 03 CA 9D',
                      '10 02 01 08 A0 14 00 0B 00 80 12 34 FF 01 10 10 00 09 10 03 98 5F',
                      '10 02 01 0B A0 1A 00 0B 00 70 07 07 02 00 10 10 01 04 10 03 D8 3B']


def make(**given):
    options = station.Options()
    for name, value in given.items():
        setattr(options, name, value)
    return station.Station(options)


def ask(unit, text):
    return unit.feed(bytes.fromhex(text)).replace(b'\x10\x10', b'\x10')


class Frames(unittest.TestCase):
    def test_frames_of_another_program_are_whole_and_come_out_the_same(self):
        for text in OF_ANOTHER_PROGRAM:
            wire = bytes.fromhex(text)
            bodies = frames.Reader().feed(b'\xff\x00' + wire + b'\x55')
            self.assertEqual(len(bodies), 1, text)
            self.assertEqual(frames.frame(bodies[0]), wire)

    def test_a_changed_bit_is_no_frame_and_a_cut_one_does_not_take_the_next_with_it(self):
        wire = bytes.fromhex(LIST_FIRST['long'])
        for place in range(2, len(wire)):
            changed = wire[:place] + bytes([wire[place] ^ 0x20]) + wire[place + 1:]
            self.assertEqual(frames.Reader().feed(changed), [], place)
        self.assertEqual(len(frames.Reader().feed(wire[:9] + bytes.fromhex(POLL))), 1)


class Answers(unittest.TestCase):
    # Positions count from 1 over the frame with its pad, those of a poll reply without its first byte.
    def test_what_a_master_reads_stands_at_its_positions(self):
        for layout, off in (('long', 1), ('cw', 0)):
            unit = make(layout=layout, version=(0x10, 0x34))
            self.assertEqual(ask(unit, POLL)[1:][off + 4:off + 6], b'\x01\x00')
            self.assertLessEqual(len(ask(unit, LIST_FIRST[layout])), 17)  # nothing before the sign-on
            ask(unit, SIGN_ON)
            self.assertEqual(ask(unit, VERSION)[off + 12:off + 14], b'\x10\x34')

    def test_a_list_is_served_in_records_of_the_signals_it_holds(self):
        for layout, off in (('long', 1), ('cw', 0)):
            unit = make(layout=layout)
            ask(unit, SIGN_ON)
            reply = ask(unit, LIST_FIRST[layout])
            self.assertEqual(reply[off + 3:off + 7], b'\x04\x0b\x00\x06')  # serial and sequence of the request
            for place, signal in enumerate(unit.base.lists[54][:3]):
                record = reply[off + 14 + 13 * place:off + 27 + 13 * place]
                self.assertEqual(struct.unpack('<f', record[1:5])[0], signal.value)
                self.assertEqual(struct.unpack('<H', record[11:])[0], signal.address)

    def test_it_is_silent_to_a_wrong_check_and_another_address(self):
        self.assertEqual(make().feed(bytes.fromhex(POLL[:-2] + 'B6')), b'')
        self.assertEqual(make().feed(frames.frame(b'\x02\x01\x85\x10')), b'')


if __name__ == '__main__':
    unittest.main()
