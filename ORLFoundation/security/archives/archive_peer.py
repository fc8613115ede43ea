#!/usr/bin/env python3
"""Reads an archive of a folder by itself and prints what it holds, as JSON.

    archive_peer.py FILE [PASSWORD]

Nothing of the library is used: Python's hashes and scrypt, AES's counter mode by the program
`openssl`, and a decoder of LZFSE below.
"""

import hashlib
import hmac
import json
import struct
import subprocess
import sys


def aes_ctr(key, counter, data):
    run = subprocess.run(["openssl", "enc", "-aes-256-ctr", "-K", key.hex(), "-iv", counter.hex(), "-nosalt"],
                         input=data, stdout=subprocess.PIPE, check=True)
    return run.stdout


# AES-256-GCM over 32 bytes: counter mode by openssl, the hash of the field here.
def field_product(x, y):
    z, v = 0, y
    for i in range(128):
        if x >> (127 - i) & 1:
            z ^= v
        v = v >> 1 ^ (0xE1 << 120 if v & 1 else 0)
    return z


def gcm_open(key, nonce, sealed, tag, more):
    h = int.from_bytes(aes_ctr(key, bytes(16), bytes(16)), "big")
    y = 0
    for part in (more, sealed):
        for at in range(0, len(part), 16):
            y = field_product(y ^ int.from_bytes(part[at:at + 16].ljust(16, b"\0"), "big"), h)
    y = field_product(y ^ (len(more) * 8 << 64 | len(sealed) * 8), h)
    mask = aes_ctr(key, nonce + b"\0\0\0\1", bytes(16))
    if (y ^ int.from_bytes(mask, "big")).to_bytes(16, "big") != tag:
        raise ValueError("wrong password")
    return aes_ctr(key, nonce + b"\0\0\0\2", sealed)


def hkdf(secret, salt, info, count):
    fixed = hmac.new(salt or bytes(32), secret, "sha256").digest()
    out, block, number = b"", b"", 1
    while len(out) < count:
        block = hmac.new(fixed, block + info + bytes([number]), "sha256").digest()
        out, number = out + block, number + 1
    return out[:count]


def unseal(key, cipher, tag, more=b""):
    if hmac.new(key[:32], more + cipher + struct.pack("<Q", len(more)), "sha256").digest() != tag:
        raise ValueError("a tag does not fit")
    return aes_ctr(key[32:64], key[64:80], cipher)


def archive_key(record, password):
    size, = struct.unpack_from("<I", record)
    if size != len(record) or record[4:20] != b"orlf-scrypt-gcm\0":
        raise ValueError("no key record")
    n, r, p = struct.unpack_from("<QII", record, 20)
    key = hashlib.scrypt(password, salt=record[36:52], n=n, r=r, p=p, maxmem=2**28, dklen=32)
    return gcm_open(key, record[52:64], record[64:96], record[96:112], record[:52])


def unsealed(data, password):
    kind, strength, count = data[4:7], data[7], struct.unpack_from("<I", data, 8)[0]
    if kind != b"\1\0\0" or strength != 0:
        raise ValueError("another profile")
    auth, at = data[12:12 + count], 12 + count
    salt, root_tag, root, tag = data[at:at + 32], data[at + 32:at + 64], data[at + 64:at + 112], data[at + 112:at + 144]
    at += 144
    main = hkdf(archive_key(auth, password), salt, b"AEA_AMK" + data[4:8], 32)
    root = unseal(hkdf(main, b"", b"AEA_RHEK", 80), root, root_tag, tag + auth)
    raw, size, segment, per_cluster = struct.unpack_from("<QQII", root)
    if size != len(data) or root[24:26] != b"e\2" or any(root[26:]):
        raise ValueError("other settings")
    out, cluster = b"", 0
    while len(out) < raw:
        key = hkdf(main, b"", b"AEA_CK" + struct.pack("<I", cluster), 32)
        headers, at = data[at:at + 40 * per_cluster], at + 40 * per_cluster
        following, at = data[at:at + 32], at + 32
        tags, at = data[at:at + 32 * per_cluster], at + 32 * per_cluster
        headers = unseal(hkdf(key, b"", b"AEA_CHEK", 80), headers, tag, following + tags)
        for i in range(per_cluster):
            if len(out) == raw:
                break
            original, stored = struct.unpack_from("<II", headers, 40 * i)
            cipher, at = data[at:at + stored], at + stored
            plain = unseal(hkdf(key, b"", b"AEA_SK" + struct.pack("<I", i), 80), cipher, tags[32 * i:32 * i + 32])
            plain = plain if stored == original else lzfse(plain)
            if len(plain) != original or hashlib.sha256(plain).digest() != headers[40 * i + 8:40 * i + 40]:
                raise ValueError("a segment does not have its checksum")
            out += plain
        tag, cluster = following, cluster + 1
    if at != len(data) or len(out) != raw:
        raise ValueError("another length")
    return out


def unwrapped(data):
    block_size, out, at = struct.unpack_from(">Q", data, 4)[0], b"", 12
    while at < len(data):
        raw, stored = struct.unpack_from(">QQ", data, at)
        block = data[at + 16:at + 16 + stored]
        out += block if raw == stored else lzfse(block)
        at += 16 + stored
        if raw > block_size or at < len(data) and raw != block_size:
            raise ValueError("a block of another size")
    return out


# LZFSE: (bits of its own, first value) of each symbol.
L = [(0, v) for v in range(16)] + [(2, 16), (3, 20), (5, 28), (8, 60)]
M = [(0, v) for v in range(16)] + [(3, 16), (5, 24), (8, 56), (11, 312)]
D = []
for symbol in range(64):
    D.append((symbol // 4, D[-1][1] + (1 << D[-1][0]) if D else 0))


class Backward:
    """Bits taken from the top of a number."""

    def __init__(self, data, spare):
        self.left = 8 * len(data) + spare
        self.data = data

    def take(self, count):
        self.left -= count
        if self.left < 0:
            raise ValueError("too few bits")
        first, last = self.left // 8, (self.left + count + 7) // 8
        return int.from_bytes(self.data[first:last], "little") >> self.left % 8 & ((1 << count) - 1)


def states(frequencies, total):
    table = []
    for symbol, f in enumerate(frequencies):
        if f == 0:
            continue
        k = total.bit_length() - f.bit_length()
        long = (2 * total >> k) - f
        for j in range(f):
            table.append((k, symbol, (f + j << k) - total) if j < long else (k - 1, symbol, j - long << k - 1))
    return table


def frequencies_of(data):
    number, values = int.from_bytes(data, "little"), []
    for _ in range(360):
        low = number & 0xF
        if low & 3 in (0, 2):
            width, value = 2, (number & 3) >> 1
        elif low & 7 in (1, 5):
            width, value = 3, 2 + (number >> 2 & 1)
        elif low & 7 == 3:
            width, value = 5, 4 + (number >> 3 & 3)
        elif low == 7:
            width, value = 8, 8 + (number >> 4 & 15)
        else:
            width, value = 14, 24 + (number >> 4 & 1023)
        number >>= width
        values.append(value)
    return values[:20], values[20:40], values[40:104], values[104:]


def coded(data, at, out):
    raw, v0, v1, v2 = struct.unpack_from("<IQQQ", data, at + 4)
    field = lambda word, shift, width: word >> shift & ((1 << width) - 1)
    header = field(v2, 0, 32)
    lf, mf, df, literal_f = frequencies_of(data[at + 32:at + header])
    begin = at + header
    middle = begin + field(v0, 20, 20)
    end = middle + field(v1, 40, 20)
    bits, table = Backward(data[begin:middle], field(v0, 60, 3) - 7), states(literal_f, 1024)
    at_state, literals = [field(v1, 10 * i, 10) for i in range(4)], bytearray()
    for i in range(field(v0, 0, 20)):
        k, symbol, delta = table[at_state[i % 4]]
        at_state[i % 4] = delta + bits.take(k)
        literals.append(symbol)
    bits = Backward(data[middle:end], field(v1, 60, 3) - 7)
    tables = (states(lf, 64), L), (states(mf, 64), M), (states(df, 256), D)
    state, distance, used, before = [field(v2, 32 + 10 * i, 10) for i in range(3)], 0, 0, len(out)
    for _ in range(field(v0, 40, 20)):
        values = []
        for i, (table, ranges) in enumerate(tables):
            k, symbol, delta = table[state[i]]
            extra, base = ranges[symbol]
            state[i] = delta + bits.take(k)
            values.append(base + bits.take(extra))
        distance = values[2] or distance
        out += literals[used:used + values[0]]
        used += values[0]
        copy(out, distance, values[1])
    if len(out) != before + raw or bits.left != 64 or any(state):
        raise ValueError("a block does not end where it should")
    return end


def copy(out, distance, count):
    if not 0 < distance <= len(out):
        raise ValueError("a distance leads too far")
    for _ in range(count):
        out.append(out[-distance])


def bytewise(data, at, out):
    raw, count = struct.unpack_from("<II", data, at + 4)
    at, end, before, distance = at + 12, at + 12 + count, len(out), 0
    while data[at] != 6:
        code = data[at]
        length, run = 0, 0
        if code in (0x0E, 0x16):
            at += 1
        elif code >= 0xE0:
            amount = code & 15 or data[at + 1] + 16
            at += 1 if code & 15 else 2
            run, length = (amount, 0) if code < 0xF0 else (0, amount)
        elif code & 0xE0 == 0xA0:
            pair = data[at + 1] | data[at + 2] << 8
            run, length, distance = code >> 3 & 3, ((code & 7) << 2 | pair & 3) + 3, pair >> 2
            at += 3
        else:
            run, length = code >> 6, (code >> 3 & 7) + 3
            if code & 7 == 7:
                distance, at = data[at + 1] | data[at + 2] << 8, at + 3
            elif code & 7 == 6:
                at += 1
            else:
                distance, at = (code & 7) << 8 | data[at + 1], at + 2
        out += data[at:at + run]
        at += run
        if length:
            copy(out, distance, length)
    if at + 8 != end or any(data[at + 1:end]) or len(out) != before + raw:
        raise ValueError("a block does not end where it should")
    return end


def lzfse(data):
    out, at = bytearray(), 0
    while True:
        magic = data[at:at + 4]
        if magic == b"bvx$":
            if at + 4 != len(data):
                raise ValueError("more follows the end")
            return bytes(out)
        if magic == b"bvx-":
            count, = struct.unpack_from("<I", data, at + 4)
            out += data[at + 8:at + 8 + count]
            at += 8 + count
        elif magic == b"bvxn":
            at = bytewise(data, at, out)
        elif magic == b"bvx2":
            at = coded(data, at, out)
        else:
            raise ValueError("an unknown block")


def entries(data):
    at = 0
    while at < len(data):
        if data[at:at + 4] != b"AA01":
            raise ValueError("no entry")
        end, entry, blobs = at + struct.unpack_from("<H", data, at + 4)[0], {}, []
        at += 6
        while at < end:
            key, kind, at = data[at:at + 3].decode(), chr(data[at + 3]), at + 4
            if kind in "1248":
                entry[key], at = int.from_bytes(data[at:at + int(kind)], "little"), at + int(kind)
            elif kind == "P":
                count, = struct.unpack_from("<H", data, at)
                entry[key], at = data[at + 2:at + 2 + count].decode(), at + 2 + count
            elif kind in "ABC":
                width = 2 << "ABC".index(kind)
                blobs.append((key, int.from_bytes(data[at:at + width], "little")))
                at += width
            else:
                raise ValueError("an unknown field")
        for key, count in blobs:
            entry[key], at = {"size": count, "sha256": hashlib.sha256(data[at:at + count]).hexdigest()}, at + count
        yield entry
    if at != len(data):
        raise ValueError("it ends within an entry")


def main():
    with open(sys.argv[1], "rb") as file:
        data = file.read()
    if data[:4] == b"AEA1":
        data = unsealed(data, sys.argv[2].encode())
    elif data[:4] == b"pbze":
        data = unwrapped(data)
    json.dump(list(entries(data)), sys.stdout)


main()
