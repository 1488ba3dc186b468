#!/usr/bin/env python3
"""A local SMTP server for the service-mail tests.

Listens on 127.0.0.1, prints "PORT <n>" once it accepts connections, and stores every message
it receives in FOLDER: N.eml (as received) and N.json (sender, recipients, subject, text and
the attachments' names and files N-liite-K), written last so that its presence means the
message is complete. It can refuse a recipient (550), demand a login, or never answer the
message's end. It ends by itself after ten minutes.
"""
import argparse
import asyncio
import json
import os
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
        summary = {
            "from": envelope.mail_from,
            "to": envelope.rcpt_tos,
            "subject": str(message["subject"]),
            "text": body.get_content() if body is not None else None,
            "attachments": [],
        }
        for k, part in enumerate(message.iter_attachments()):
            name = "%s-liite-%d" % (base, k)
            with open(name, "wb") as f:
                f.write(part.get_payload(decode=True) or b"")
            summary["attachments"].append({"filename": part.get_filename(), "file": name})
        with open(base + ".tmp", "w", encoding="utf-8") as f:
            json.dump(summary, f, ensure_ascii=False)
        os.replace(base + ".tmp", base + ".json")
        return "250 Viesti vastaanotettu"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder")
    parser.add_argument("--port", type=int, default=0)
    parser.add_argument("--refuse", action="append", default=[])
    parser.add_argument("--stall", action="store_true")
    parser.add_argument("--login", help="user:password the server demands")
    args = parser.parse_args()
    handler = Handler(args.folder, args.refuse, args.stall)
    options = {"hostname": "localhost", "data_size_limit": 0}
    if args.login:
        user, password = args.login.split(":", 1)

        def authenticate(server, session, envelope, mechanism, data):
            ok = data.login == user.encode() and data.password == password.encode()
            return AuthResult(success=ok, handled=False)

        options.update(auth_required=True, auth_require_tls=False, authenticator=authenticate)

    async def serve():
        loop = asyncio.get_running_loop()
        server = await loop.create_server(lambda: SMTP(handler, **options), host="127.0.0.1", port=args.port)
        print("PORT %d" % server.sockets[0].getsockname()[1], flush=True)
        loop.call_later(600, loop.stop)
        await server.serve_forever()

    try:
        asyncio.run(serve())
    except RuntimeError:
        pass
    return 0


if __name__ == "__main__":
    sys.exit(main())
