"""Frames of the line: DLE STX, the body with every DLE doubled, DLE ETX, and a check over the undoubled body and ETX."""

DLE, STX, ETX = 0x10, 0x02, 0x03


def check(data):
    value = 0xFFFF
    for byte in data:
        value ^= byte
        for _ in range(8):
            value = (value >> 1) ^ 0x8408 if value & 1 else value >> 1
    return value


def frame(body):
    body = bytes(body)
    value = check(body + bytes([ETX]))
    doubled = body.replace(bytes([DLE]), bytes([DLE, DLE]))
    return bytes([DLE, STX]) + doubled + bytes([DLE, ETX, value & 0xFF, value >> 8])


class Reader:
    """Takes bytes as they come and gives the bodies of whole frames. What stands between frames is passed over."""

    def __init__(self):
        self.bad_checks = 0
        self.reset()

    def reset(self):
        self._state = 'idle'
        self._body = bytearray()
        self._tail = bytearray()

    def feed(self, data):
        bodies = []
        for byte in data:
            body = self._take(byte)
            if body is not None:
                bodies.append(body)
        return bodies

    def _take(self, byte):
        if self._state == 'idle':
            self._state = 'dle' if byte == DLE else 'idle'
        elif self._state == 'dle':
            self._body.clear()
            self._state = {STX: 'body', DLE: 'dle'}.get(byte, 'idle')
        elif self._state == 'body':
            if byte == DLE:
                self._state = 'body dle'
            else:
                self._body.append(byte)
        elif self._state == 'body dle':
            if byte == DLE:
                self._body.append(byte)
                self._state = 'body'
            elif byte == STX:  # the frame before was cut
                self._body.clear()
                self._state = 'body'
            elif byte == ETX:
                self._tail.clear()
                self._state = 'tail'
            else:
                self._state = 'idle'
        else:
            self._tail.append(byte)
            if len(self._tail) == 2:
                self._state = 'idle'
                body = bytes(self._body)
                if check(body + bytes([ETX])) == self._tail[0] | self._tail[1] << 8:
                    return body
                self.bad_checks += 1
        return None
