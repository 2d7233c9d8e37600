"""Archive files and the audit trail of a station."""

import struct


def clock(day, seconds):
    """Days after 31 December 1976 and the time of day in units of 4 seconds."""
    return struct.pack('<HH', day, seconds // 4)


class ArchiveFile:
    """Records `oldest` to `oldest` + count - 1, one every `step` seconds, the last at noon of `last_day`."""

    def __init__(self, number, name, fields, count, step, oldest, last_day):
        self.number, self.name, self.fields, self.oldest = number, name, fields, oldest
        self.records = []
        end = last_day * 86400 + 12 * 3600
        for i in range(count):
            moment = end - (count - 1 - i) * step
            values = [struct.unpack('<f', struct.pack('<f', 16.0 * (oldest + i) + n * 0.25))[0]
                      for n in range(len(fields))]
            self.records.append({'number': oldest + i, 'day': moment // 86400, 'seconds': moment % 86400 // 4 * 4,
                                 'local': 0x10 + i, 'global': 2 * i + 1, 'values': values})

    def after_last(self):
        return self.oldest + len(self.records)

    def find(self, day):
        for record in self.records:
            if record['day'] >= day:
                return record['number']
        return self.after_last()

    def slice(self, first, count):
        return [r for r in self.records if max(first, self.oldest) <= r['number'] < max(first, self.oldest) + count]

    @staticmethod
    def record(r):
        return (clock(r['day'], r['seconds']) + struct.pack('<HH', r['local'], r['global'])
                + struct.pack('<%df' % len(r['values']), *r['values']))

    def definition(self, index):
        return self.fields[index].encode().ljust(17)[:17] + bytes([0x02, 0x10]) + bytes(8)

    def state(self):
        return {'name': self.name, 'fields': self.fields, 'records': self.records}


FIELDS = ['Volume', 'Energy', 'Static Pressure', 'Temperature', 'Diff Pressure', 'Flow Time', 'Gravity', 'Battery']


def make_files(day):
    return {1: ArchiveFile(1, 'DAILY', FIELDS, 40, 86400, 1, day),
            2: ArchiveFile(2, 'HOURLY', FIELDS[:6], 60, 3600, 260, day),
            3: ArchiveFile(3, 'MINUTE', FIELDS[:3], 23, 60, 11, day)}


def make_audit(day, count):
    events = []
    for n in range(1, count + 1):
        moment = day * 86400 - (count - n) * 1234 // 4 * 4
        events.append({'number': n, 'flags': n % 8, 'name': 'AN%03d.VALUE.LIVE' % n, 'day': moment // 86400,
                       'seconds': moment % 86400 // 4 * 4, 'fraction': (n * 7) % 50,
                       'first': n * 0.5, 'second': 16.0 * n, 'local': n, 'global': 0x1010 + n})
    return events


def audit_record(e):
    return (bytes([e['flags']]) + e['name'].encode() + b'\0' + clock(e['day'], e['seconds']) + bytes([e['fraction']])
            + struct.pack('<ff', e['first'], e['second']) + b'OLD   NEW   ' + struct.pack('<HHH', e['local'],
                                                                                          e['global'], 0))
