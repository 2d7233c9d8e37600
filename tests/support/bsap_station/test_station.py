"""The frames of the station against those of another program. Its answers are tested by the stories that it plays in."""

import unittest

import frames

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


if __name__ == '__main__':
    unittest.main()
