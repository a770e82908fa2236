#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""A local HTTPS server for the update tests.

update_server.py FOLDER CERT_FOLDER: makes a one-day self-signed certificate
for 127.0.0.1 in CERT_FOLDER (cert.pem, key.pem), serves FOLDER on a free
port of 127.0.0.1 and prints that port on a line of its own.
"""

import functools
import http.server
import os
import ssl
import subprocess
import sys


def make_certificate(folder):
    cert = os.path.join(folder, "cert.pem")
    key = os.path.join(folder, "key.pem")
    subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "1",
                    "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1",
                    "-keyout", key, "-out", cert],
                   check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return cert, key


class QuietHandler(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *args):
        pass


def main():
    folder, cert_folder = sys.argv[1], sys.argv[2]
    cert, key = make_certificate(cert_folder)
    handler = functools.partial(QuietHandler, directory=folder)
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(cert, key)
    server.socket = context.wrap_socket(server.socket, server_side=True)
    print(server.server_address[1], flush=True)
    server.serve_forever()


if __name__ == "__main__":
    main()
