#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""An independent implementation of the data-file envelope, for interop tests.

  aesgcm_peer.py seal PLAINTEXT_FILE ENVELOPE_FILE
  aesgcm_peer.py open ENVELOPE_FILE PLAINTEXT_FILE   (exit 1 when it does not open)

Envelope: 12-byte nonce, ciphertext, 16-byte tag; key = SHA-256 of the passphrase.
"""
import hashlib
import os
import sys

from cryptography.exceptions import InvalidTag
from cryptography.hazmat.primitives.ciphers.aead import AESGCM

PASSPHRASE = b"Vm8Tq2r-Hl!d@ka-Wx5n@fu-J9c-4817-bR3#Yp"
KEY = hashlib.sha256(PASSPHRASE).digest()


def seal(plaintext: bytes) -> bytes:
    nonce = os.urandom(12)
    return nonce + AESGCM(KEY).encrypt(nonce, plaintext, None)


def open_envelope(envelope: bytes) -> bytes:
    if len(envelope) < 28:
        raise InvalidTag()
    return AESGCM(KEY).decrypt(envelope[:12], envelope[12:], None)


def main() -> int:
    if len(sys.argv) != 4 or sys.argv[1] not in ("seal", "open"):
        print(__doc__, file=sys.stderr)
        return 2
    with open(sys.argv[2], "rb") as source:
        data = source.read()
    try:
        result = seal(data) if sys.argv[1] == "seal" else open_envelope(data)
    except InvalidTag:
        return 1
    with open(sys.argv[3], "wb") as target:
        target.write(result)
    return 0


if __name__ == "__main__":
    sys.exit(main())
