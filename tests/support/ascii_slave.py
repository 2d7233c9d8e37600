"""A Modbus ASCII slave made of pymodbus, on a pseudo-terminal whose path it prints. Argument: its address.

Float n, from 1, holds n + 0.25, high word first. Frames that pymodbus refuses get no answer.
"""
import os
import struct
import sys
import tty

from pymodbus.datastore import ModbusSequentialDataBlock, ModbusSlaveContext
from pymodbus.factory import ServerDecoder
from pymodbus.framer.ascii_framer import ModbusAsciiFramer

FLOATS = 400

address = int(sys.argv[1])
words = [word for n in range(1, FLOATS + 1) for word in struct.unpack(">HH", struct.pack(">f", n + 0.25))]
memory = ModbusSlaveContext(
    co=ModbusSequentialDataBlock(0, [n % 3 == 0 for n in range(1000)]),
    hr=ModbusSequentialDataBlock(0, words),
    zero_mode=True,
)
framer = ModbusAsciiFramer(ServerDecoder())
far, near = os.openpty()
tty.setraw(near)


def answer(request):
    response = request.execute(memory)
    response.unit_id = request.unit_id
    os.write(far, framer.buildPacket(response))


print(os.ttyname(near), flush=True)
received = b""
while True:
    received += os.read(far, 4096)
    while b"\r\n" in received:
        frame, received = received.split(b"\r\n", 1)
        framer.resetFrame()
        try:
            framer.processIncomingPacket(frame + b"\r\n", answer, [address])
        except ValueError:  # digits that are no pairs
            pass
