"""Names of 48 printable bytes with the same hash in GNU's std::hash, as an attacker would choose them."""

import itertools
import random
import struct

SEED = 0xC70F6907
FACTOR = 0xC6A4A7935BD1E995
WORD = 2**64 - 1
INVERSE = pow(FACTOR, -1, 2**64)
ALPHABET = b"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_$!#*+-./:;=?@[]^`{|}~()"
FITTING = frozenset(ALPHABET)
SEGMENTS, ALTERNATIVES = 3, 64  # 64^3 names of three segments


def mixed(word):
    word = word * FACTOR & WORD
    word ^= word >> 47
    return word * FACTOR & WORD


def unmixed(word):
    word = word * INVERSE & WORD
    word ^= word >> 47
    return word * INVERSE & WORD


def step(state, word):
    return (state ^ mixed(word)) * FACTOR & WORD


def segments(state, target, source):
    """Segments of two words, each of which leads from the state to the target."""
    found = []
    before = target * INVERSE & WORD
    while len(found) < ALTERNATIVES:
        first = bytes(source.choices(ALPHABET, k=8))
        second = struct.pack("<Q", unmixed(before ^ step(state, struct.unpack("<Q", first)[0])))
        if FITTING.issuperset(second):
            found.append(first + second)
    return found


def chain():
    """For each part of a name, the alternatives; all lead to the same hash."""
    source = random.Random(1)
    state = SEED ^ (16 * SEGMENTS * FACTOR & WORD)
    parts = []
    for _ in range(SEGMENTS):
        target = source.getrandbits(64)
        parts.append(segments(state, target, source))
        state = target
    return parts


CHAIN = chain()  # takes some seconds


def colliding_names(count):
    return [b"".join(name) for name in itertools.islice(itertools.product(*CHAIN), count)]
