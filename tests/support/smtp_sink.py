"""A mail server for tests and the demo: writes each mail that it takes into a directory.

usage: smtp_sink.py DIRECTORY

Prints "listening PORT" when it is ready, on 127.0.0.1. The file N.eml of mail N holds the envelope in lines
"X-Mail-From:" and "X-Rcpt-To:" in front of what was received; N.subject, N.text, N.attachment and N.name (of the
attachment) hold what a mail program makes of it, N.defects what it finds wrong. Recipients that begin with "refused"
are refused.
"""

import email
import email.policy
import pathlib
import signal
import socket
import sys
import threading

from aiosmtpd.controller import Controller

directory = pathlib.Path(sys.argv[1])


class Sink:
    def __init__(self):
        self.count = 0

    async def handle_RCPT(self, server, session, envelope, address, options):
        if address.startswith("refused"):
            return "550 no such user"
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        self.count += 1
        self.read(envelope.original_content)
        lines = [f"X-Mail-From: {envelope.mail_from}"]
        lines += [f"X-Rcpt-To: {address}" for address in envelope.rcpt_tos]
        part = directory / f".{self.count}.part"
        part.write_bytes("\r\n".join(lines).encode() + b"\r\n" + envelope.original_content)
        part.rename(directory / f"{self.count}.eml")
        return "250 taken"

    def read(self, content):
        mail = email.message_from_bytes(content, policy=email.policy.SMTP)
        defects = [str(defect) for part in mail.walk() for defect in part.defects]
        defects += [str(defect) for value in mail.values() for defect in value.defects]
        self.write("subject", mail["subject"].encode())
        self.write("text", mail.get_body().get_payload(decode=True))
        for part in mail.iter_attachments():
            self.write("attachment", part.get_payload(decode=True))
            self.write("name", part.get_filename().encode())
        self.write("defects", "\n".join(defects).encode())

    def write(self, ending, content):
        (directory / f"{self.count}.{ending}").write_bytes(content)


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


controller = Controller(Sink(), hostname="127.0.0.1", port=free_port())


def main():
    controller.start()
    print("listening", controller.port, flush=True)
    ended = threading.Event()
    for number in (signal.SIGTERM, signal.SIGINT):
        signal.signal(number, lambda *_: ended.set())
    ended.wait()
    controller.stop()


main()
