#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""A local HTTPS file server for the update tests.

Usage: https_server.py FOLDER CERT_FILE REQUEST_LOG

Makes a fresh self-signed certificate for 127.0.0.1 (its PEM goes to
CERT_FILE, for the "updateCAFile" key), serves FOLDER on a free port of
127.0.0.1, prints that port on a line of its own and appends the path of
every request to REQUEST_LOG. Paths under /hang/ are never answered, for
timeouts.
"""

import functools
import http.server
import os
import ssl
import subprocess
import sys
import tempfile
import threading


class Handler(http.server.SimpleHTTPRequestHandler):
    request_log = ""

    def do_GET(self):
        with open(self.request_log, "a", encoding="utf-8") as log:
            log.write(self.path + "\n")
        if self.path.startswith("/hang/"):
            threading.Event().wait()
        super().do_GET()

    def log_message(self, format, *args):  # noqa: A002 - quiet
        pass


def make_certificate(cert_file, key_file):
    subprocess.run(
        ["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2",
         "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1",
         "-keyout", key_file, "-out", cert_file],
        check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def main():
    folder, cert_file, request_log = sys.argv[1:4]
    open(request_log, "a", encoding="utf-8").close()
    key_dir = tempfile.mkdtemp()
    key_file = os.path.join(key_dir, "key.pem")
    make_certificate(cert_file, key_file)
    Handler.request_log = request_log
    handler = functools.partial(Handler, directory=folder)
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
    server.daemon_threads = True
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(cert_file, key_file)
    server.socket = context.wrap_socket(server.socket, server_side=True)
    print(server.server_address[1], flush=True)
    server.serve_forever()


if __name__ == "__main__":
    main()
