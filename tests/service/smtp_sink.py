#!/usr/bin/env python3
"""A local SMTP server for the service-mail tests.

Listens on 127.0.0.1, prints "READY <host> <port> <certificate or ->" once it accepts
connections, and stores every message it receives in FOLDER: N.eml (as received), the
attachments as N-liite-K, and N.json (sender, recipients joined by ", ", subject, text, the number of
attachments and the first one's name and file), written last so that its presence means the
message is complete. It can refuse a recipient (550), demand a
login, never answer the message's end, or only name a port where nothing listens (--closed).
With --tls it makes a certificate of its own in FOLDER with openssl and either demands STARTTLS
(starttls) or speaks TLS from the start (implicit), the latter on port 465 of a loopback address
of its own. It ends by itself after ten minutes.
"""
import argparse
import asyncio
import json
import os
import random
import socket
import ssl
import subprocess
import sys
from email import message_from_bytes, policy

from aiosmtpd.smtp import SMTP, AuthResult


class Handler:
    def __init__(self, folder, refuse, stall):
        self.folder = folder
        self.refuse = {a.lower() for a in refuse}
        self.stall = stall
        self.count = 0

    async def handle_RCPT(self, server, session, envelope, address, rcpt_options):
        if address.lower() in self.refuse:
            return "550 5.1.1 Vastaanottaja hylatty"
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        if self.stall:
            await asyncio.sleep(3600)
        self.count += 1
        base = os.path.join(self.folder, str(self.count))
        raw = envelope.original_content or envelope.content
        with open(base + ".eml", "wb") as f:
            f.write(raw)
        message = message_from_bytes(raw, policy=policy.default)
        body = message.get_body(preferencelist=("plain",))
        attachments = list(message.iter_attachments())
        summary = {
            "from": envelope.mail_from,
            "to": ", ".join(envelope.rcpt_tos),
            "subject": str(message["subject"]),
            "text": body.get_content() if body is not None else None,
            "attachments": len(attachments),
        }
        for k, part in enumerate(attachments):
            name = "%s-liite-%d" % (base, k)
            with open(name, "wb") as f:
                f.write(part.get_payload(decode=True) or b"")
            if k == 0:
                summary.update(filename=part.get_filename(), file=name)
        with open(base + ".tmp", "w", encoding="utf-8") as f:
            json.dump(summary, f, ensure_ascii=False)
        os.replace(base + ".tmp", base + ".json")
        return "250 Viesti vastaanotettu"


def certificate(folder, host):
    """A self-signed certificate for localhost and `host`; returns the context and its file."""
    cert, key = os.path.join(folder, "palvelin.pem"), os.path.join(folder, "avain.pem")
    subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                    "-nodes", "-keyout", key, "-out", cert, "-days", "2", "-subj", "/CN=localhost",
                    "-addext", "subjectAltName=DNS:localhost,IP:127.0.0.1,IP:" + host],
                   check=True, capture_output=True)
    context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
    context.load_cert_chain(cert, key)
    return context, cert


def listening_socket(port, tls):
    """A socket bound on loopback: 127.0.0.1, or for implicit TLS port 465 of an address of its own."""
    sock = socket.socket(socket.AF_INET, socket.SOCK_STREAM)
    sock.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    if tls != "implicit":
        sock.bind(("127.0.0.1", port))
        return sock
    for _ in range(20):
        host = "127.%d.%d.%d" % (random.randint(1, 254), random.randint(0, 255), random.randint(1, 254))
        try:
            sock.bind((host, 465))
            return sock
        except OSError as error:
            last = error
    raise SystemExit("port 465 could not be bound: %s" % last)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder")
    parser.add_argument("--port", type=int, default=0)
    parser.add_argument("--refuse", action="append", default=[])
    parser.add_argument("--stall", action="store_true")
    parser.add_argument("--login", help="user:password the server demands")
    parser.add_argument("--tls", choices=["starttls", "implicit"])
    parser.add_argument("--closed", action="store_true")
    parser.add_argument("--untrusted", action="store_true", help="name no certificate for the client to trust")
    args = parser.parse_args()
    sock = listening_socket(args.port, args.tls)
    host, port = sock.getsockname()
    if args.closed:
        sock.close()
        print("READY %s %d -" % (host, port), flush=True)
        return 0
    handler = Handler(args.folder, args.refuse, args.stall)
    options = {"hostname": "localhost", "data_size_limit": 0}
    context, cert = certificate(args.folder, host) if args.tls else (None, "-")
    if args.tls == "starttls":
        options.update(tls_context=context, require_starttls=True)
    if args.login:
        user, password = args.login.split(":", 1)

        def authenticate(server, session, envelope, mechanism, data):
            ok = data.login == user.encode() and data.password == password.encode()
            return AuthResult(success=ok, handled=False)

        # Over implicit TLS the server cannot tell that the connection is encrypted.
        options.update(auth_required=True, auth_require_tls=args.tls == "starttls", authenticator=authenticate)

    async def serve():
        loop = asyncio.get_running_loop()
        implicit = context if args.tls == "implicit" else None
        sock.listen()
        server = await loop.create_server(lambda: SMTP(handler, **options), sock=sock, ssl=implicit)
        print("READY %s %d %s" % (host, port, "-" if args.untrusted else cert), flush=True)
        loop.call_later(600, loop.stop)
        await server.serve_forever()

    try:
        asyncio.run(serve())
    except RuntimeError:
        pass
    return 0


if __name__ == "__main__":
    sys.exit(main())
