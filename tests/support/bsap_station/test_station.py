"""The frames of the station against those of another program. Its answers are tested by the stories that it plays in."""

import unittest

import frames

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


if __name__ == '__main__':
    unittest.main()
