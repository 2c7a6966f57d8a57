"""How time and memory grow with the input: growth.py KORVEX-DAO FOLDER [--only TEXT] [--megabytes N]. See scripts/growth."""

import argparse
import json
import math
import os
import struct
import subprocess
import sys
import time

from documents import document, numbered, result_map, sql, update
from hash_collisions import colliding_names

EXPONENT_LIMIT = 1.3
TIME_LIMIT = 60  # seconds
RUNS = 3  # of each size; the fastest counts
STEP = 4  # between the sizes of a pair
ENOUGH_SECONDS = 0.4  # the larger size of a pair takes this long, unless the input becomes too large
NOISE_SECONDS = 0.01  # less than this cannot be told from nothing
NOISE_BYTES = 2_000_000

# -------------------------------------------------------------------------------------------
# Documents


def nested(count, tag):
    return b"<" + tag + b">x" + (b"<" + tag + b">") * count + (b"</" + tag + b">") * (count + 1)


def maps_of(names):
    return b"".join(b'<result property="%s" column="%s"/>' % (name, name) for name in names)


# -------------------------------------------------------------------------------------------
# Sessions with the server

URI = "file:///growth.xml"


def framed(method, params, request=None):
    message = {"jsonrpc": "2.0", "method": method, "params": params}
    if request is not None:
        message["id"] = request
    content = json.dumps(message, ensure_ascii=False).encode()
    return b"Content-Length: %d\r\n\r\n" % len(content) + content


def session(text, *messages):
    opened = {"textDocument": {"uri": URI, "languageId": "xml", "version": 1, "text": text.decode()}}
    frames = [framed("initialize", {}, 0), framed("textDocument/didOpen", opened)]
    frames += [framed(method, params, request) for request, (method, params) in enumerate(messages, 1)]
    return b"".join(frames) + framed("shutdown", None, 999_999) + framed("exit", None)


def at_end(method):
    """A request at the end of the text."""
    params = {"textDocument": {"uri": URI}, "position": {"line": 10**9, "character": 0}}
    return lambda text: session(text, (method, params))


def symbols(text):
    return session(text, ("textDocument/documentSymbol", {"textDocument": {"uri": URI}}))


def changes(changes_of):
    document_id = {"uri": URI, "version": 2}
    return lambda n: b"".join(
        [framed("initialize", {}, 0), framed("textDocument/didOpen", {"textDocument": {"uri": URI, "text": "<d>\n" + "x" * n + "\n</d>"}}),
         framed("textDocument/didChange", {"textDocument": document_id, "contentChanges": changes_of(n)}),
         framed("shutdown", None, 1), framed("exit", None)])


def edit(line, character, text):
    place = {"line": line, "character": character}
    return {"range": {"start": place, "end": place}, "text": text}


# -------------------------------------------------------------------------------------------
# Packed values

INTEGER = 84  # the encode of a 32-bit integer


def records(count, name, encode, content):
    return b"".join(name.replace(b"#", b"%d" % number) + b"\0" + struct.pack("<B", encode) + content for number in range(count))


# -------------------------------------------------------------------------------------------
# The axes: a name, and from a count to an input. Every document is checked; those in ALL_FORMATS in every format.

DOCUMENTS = {
    "definitions": lambda n: document(numbered(n, b'<update id="u#">DELETE FROM t</update>')),
    "definitions on lines": lambda n: document(numbered(n, b'<update id="u#">DELETE FROM t</update>\n')),
    "definitions of one name": lambda n: document(b'<update id="u">x</update>' * n),
    "ids with colliding hashes": lambda n: document(
        b"".join(b'<update id="%s">x</update>' % name for name in colliding_names(n))),
    "blocks with colliding hashes": lambda n: document(
        b"".join(b'<sql id="%s">x</sql>' % name for name in colliding_names(n))),
    "arguments": lambda n: update(b"x", b' arguments="' + numbered(n, b"a#,") + b'z"'),
    "equal arguments": lambda n: update(b"x", b' arguments="' + b"a," * n + b'a"'),
    "equal arguments and a long id": lambda n: document(
        b'<update id="' + b"i" * 2 * n + b'" arguments="' + b"a," * n + b'b">x</update>'),
    "arguments with colliding hashes": lambda n: update(b"x", b' arguments="' + b",".join(colliding_names(n)) + b'"'),
    "malformed arguments": lambda n: update(b"x", b' arguments="' + b"a b," * n + b'z"'),
    "empty arguments": lambda n: update(b"x", b' arguments="' + b"," * n + b'"'),
    "columns": lambda n: result_map(numbered(n, b'<result property="p#" column="c#"/>')),
    "equal columns": lambda n: result_map(b'<result property="p" column="c"/>' * n),
    "columns with colliding hashes": lambda n: result_map(maps_of(colliding_names(n))),
    "columns that miss a property": lambda n: result_map(b"<result/>" * n),
    "packed properties": lambda n: document(
        b'<pack as="p" properties="' + numbered(n, b"p#,") + b'q"/>'),
    "equal packed properties": lambda n: document(b'<pack as="p" properties="' + b"p," * n + b'q"/>'),
    "levels below the limit": lambda n: document((b'<update id="u">' + nested(100, b"where") + b"</update>") * n),
    "open levels": lambda n: b"<d>" * n,
    "open tags": lambda n: b"<" * n,
    "open brackets": lambda n: document(b"[" * n),
    "conditions": lambda n: update(b'<if true="a">b</if>' * n),
    "broken conditions": lambda n: update(b'<if true="a +">b</if>' * n),
    "a long condition": lambda n: update(b'<if true="' + b"a+" * n + b'a">x</if>'),
    "a condition of parentheses": lambda n: update(b'<if true="' + b"(" * n + b"a" + b")" * n + b'">x</if>'),
    "a condition of signs": lambda n: update(b'<if true="' + b"-" * n + b'a">x</if>'),
    "branches of a choose": lambda n: update(b"<choose>" + b'<when true="a">b</when>' * n + b"</choose>"),
    "misplaced branches": lambda n: update(b'<when true="a">b</when>' * n),
    "loops": lambda n: update(b'<foreach item="i" collection="a">b</foreach>' * n, b' arguments="a"'),
    "wheres": lambda n: update(b"<where>AND a</where>" * n),
    "doubled keywords": lambda n: update(b"WHERE <where>a</where> " * n),
    "a text": lambda n: sql(b"x" * n),
    "a text of spaces": lambda n: sql(b" " * n),
    "lines of text": lambda n: sql(b"x\n" * n),
    "texts between comments": lambda n: sql(b"x<!-- -->" * n),
    "character data sections": lambda n: sql(b"<![CDATA[x]]>y" * n),
    "comments": lambda n: document(b"<!-- -->" * n),
    "a long comment": lambda n: document(b"<!--" + b"- " * n + b"-->"),
    "processing instructions": lambda n: document(b"<?a b?>" * n),
    "character references": lambda n: sql(b"&#120;" * n),
    "broken character references": lambda n: sql(b"&#x;" * n),
    "named references": lambda n: sql(b"&amp;" * n),
    "list references": lambda n: sql(b"%{'*',a}" * n),
    "entries of a list reference": lambda n: sql(b"%{'*'," + b"a," * n + b"b}"),
    "unclosed list references": lambda n: sql(b"%{" * n),
    "references to blocks": lambda n: document(b'<sql id="s">y</sql><update id="u">' + b"@s " * n + b"</update>"),
    "values": lambda n: update(numbered(n, b":a# ") + b":a", b' arguments="a"'),
    "quotes": lambda n: update(b"'" * n),
    "SQL comments": lambda n: update(b"/* " * n + b"*/" * n),
    "attributes before the id": lambda n: document(b"<update " + numbered(n, b'a#="" ') + b'id="u">x</update>'),
    "attributes without an id": lambda n: document(b"<update " + numbered(n, b'a#="" ') + b">x</update>"),
    "equal attributes": lambda n: document(b"<update " + b'a="" ' * n + b'id="u">x</update>'),
    "attributes of a text": lambda n: document(b"<sql " + numbered(n, b'parallel#="" ') + b'id="s">x</sql>'),
    "an attribute of quotes": lambda n: document(b"<a " + b'x="' * n),
    "a long id": lambda n: document(b'<sql id="' + b"n" * n + b'">x</sql>'),
    "a long tag": lambda n: document(b"<" + b"n" * n + b"/>"),
    "unknown tags": lambda n: document(numbered(n, b"<u#/>")),
    "near misses of a tag": lambda n: document(b"<selcet/>" * n),
    "near misses of a long tag": lambda n: document(numbered(n, b"<select-with-a-long-name-#/>")),
    "unknown maps": lambda n: document(numbered(n, b'<select id="s#" result=":m#">x</select>')),
    "near misses of maps": lambda n: document(
        numbered(n, b'<map id="m#" result="R"/>') + numbered(n, b'<select id="s#" result=":n#">x</select>')),
    "near misses of blocks": lambda n: document(
        numbered(n, b'<sql id="b#">x</sql>') + numbered(n, b'<update id="u#">@c#</update>')),
    "errors on one line": lambda n: document(b"<const/>" * n),
    "errors on lines": lambda n: document(b"<const/>\n" * n),
    "warnings on one element": lambda n: document(b'<select id="s" ' + numbered(n, b'x#="" ') + b'result="int">x</select>'),
    "silences before one element": lambda n: document(
        b"<!-- korvex: allow unread-attribute -->" * n + b'<update id="u">x</update>'),
    "silences and warnings on one element": lambda n: document(
        b"<!-- korvex: allow unread-attribute -->" * n + b'<update id="u" ' + numbered(n, b'x#="" ') + b">x</update>"),
    "unknown silences": lambda n: document(b"<!-- korvex: allow x -->" * n),
    "silences of definitions": lambda n: document(
        b'<!-- korvex: allow duplicate-name --><update id="u">x</update>' * n),
    "carriage returns": lambda n: document(b"\r" * n + b"<const/>"),
    "zero bytes": lambda n: b"\0" * n,
    "UTF-16": lambda n: ("\ufeff<d>" + "<const/>\n" * n + "</d>").encode("utf-16-le"),
    "Latin-1": lambda n: b'<?xml version="1.0" encoding="ISO-8859-1"?>' + document(b"<const/>\xe4\n" * n),
    "invalid UTF-8": lambda n: document(b"\xff" * n),
    "wide characters before errors": lambda n: document("ä".encode() * n + b"<const/>" * (n // 8)),
    "constants of one name": lambda n: document(b'<const C="1"/>' * n),
    "upgrades of one version": lambda n: document(b'<upgrade toVersion="1">x</upgrade>' * n),
    "upgrades": lambda n: document(numbered(n, b'<upgrade toVersion="#">x</upgrade>')),
}

ALL_FORMATS = ("definitions of one name", "errors on one line", "errors on lines", "equal columns", "attributes without an id")
DUMPED = ("definitions", "conditions", "columns", "a text", "list references", "branches of a choose", "errors on lines",
          "equal packed properties")
SERVED = ("definitions on lines", "definitions of one name", "errors on one line", "attributes without an id", "open brackets",
          "open tags", "open levels", "silences and warnings on one element", "columns", "a text of spaces", "conditions",
          "wide characters before errors")

UNFINISHED = {
    "open elements": lambda n: b"<a>" * n,
    "open elements and an end tag": lambda n: b"<a>" * n + b"</a" + b" " * 3 * n,
    "an open tag with attributes": lambda n: b"<update " + numbered(n, b'a#="" '),
    "an open quote": lambda n: b'<select result="' + b":" * n,
    "maps": lambda n: numbered(n, b'<map id="m#" result="R"/>') + b'<select result=":',
    "end tags": lambda n: b"</a>" * n + b"<",
}

SESSIONS = {
    "edits at the beginning": changes(lambda n: [edit(1, 0, "y")] * n),
    "edits at the end": changes(lambda n: [edit(1, n, "y")] * n),
    "edits of lines": changes(lambda n: [edit(1, 0, "\n")] * n),
    "whole texts": changes(lambda n: [{"text": "x"}] * n),
    "messages": lambda n: session(b"<d/>", *[("textDocument/hover", {"textDocument": {"uri": URI}})] * n),
    "members of a message": lambda n: framed("initialize", {str(number): 0 for number in range(n)}, 0),
    "levels of a message": lambda n: b"Content-Length: %d\r\n\r\n" % n + b"[" * n,
    "malformed headers": lambda n: b"x\r\n" * n,
    "header lines": lambda n: b"a: b\r\n" * n,
    "open documents": lambda n: framed("initialize", {}, 0) + b"".join(
        framed("textDocument/didOpen", {"textDocument": {"uri": f"file:///{i}.xml", "text": "<d/>"}}) for i in range(n)),
}

VALUES = {
    "records": lambda n: records(n, b"p#", INTEGER, struct.pack("<i", 30)),
    "equal records": lambda n: records(n, b"p", INTEGER, struct.pack("<i", 30)),
    "a long property": lambda n: b"p" * n + b"\0" + struct.pack("<B", INTEGER) + struct.pack("<i", 30),
    "a property without end": lambda n: b"p" * n,
    "zero bytes": lambda n: b"\0" * n,
}


def axes():
    """Each axis: the name, the arguments of the command, and from a count to its standard input."""
    for name, make in DOCUMENTS.items():
        yield f"check: {name}", ["check", "-"], make
    for form in ("short", "json", "sarif", "github"):
        for name in ALL_FORMATS:
            yield f"check {form}: {name}", ["check", "--format", form, "-"], DOCUMENTS[name]
    for form in ("tree", "json"):
        for name in DUMPED:
            yield f"dump {form}: {name}", ["dump", "--format", form, "-"], DOCUMENTS[name]
    for form in ("table", "json"):
        for name, make in VALUES.items():
            yield f"unpack {form}: {name}", ["unpack", "--format", form, "-"], make
    for name in SERVED:
        yield f"lsp: {name}", ["lsp"], lambda n, make=DOCUMENTS[name]: session(make(n))
        yield f"lsp symbols: {name}", ["lsp"], lambda n, make=DOCUMENTS[name]: symbols(make(n))
    for name, make in UNFINISHED.items():
        for method in ("completion", "hover"):
            request = at_end("textDocument/" + method)
            yield f"lsp {method}: {name}", ["lsp"], lambda n, make=make, request=request: request(make(n))
    for name, make in SESSIONS.items():
        yield f"lsp: {name}", ["lsp"], make


# -------------------------------------------------------------------------------------------
# Measuring


class Failure(Exception):
    pass


def write(path, make, count):
    """In a separate process, because the peak of a process includes the memory of its parent at the start."""
    writer = os.fork()
    if writer == 0:
        with open(path, "wb") as file:
            file.write(make(count))
        os._exit(0)
    _, status = os.waitpid(writer, 0)
    if status != 0:
        raise Failure("the input cannot be made")
    return os.path.getsize(path)


def run_once(command, path):
    """The processor time in seconds, and the peak memory in bytes."""
    with open(path, "rb") as standard_input:
        process = subprocess.Popen(command, stdin=standard_input, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    begin = time.monotonic()
    while True:
        process_id, status, usage = os.wait4(process.pid, os.WNOHANG)
        if process_id:
            break
        if time.monotonic() - begin > TIME_LIMIT:
            process.kill()
        time.sleep(0.001)
    code = os.waitstatus_to_exitcode(status)
    if code < 0:
        raise Failure(f"a crash, or more than {TIME_LIMIT} seconds" if code == -9 else f"signal {-code}")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024


class Growth:
    def __init__(self, tool, folder, most):
        self.tool = tool
        self.path = os.path.join(folder, "input")
        self.most = most

    def cost(self, arguments, make, count, runs=RUNS):
        """The size of the input, the least time and the least memory."""
        size = write(self.path, make, count)
        costs = [run_once([self.tool, *arguments], self.path) for _ in range(runs)]
        return size, min(cost[0] for cost in costs), min(cost[1] for cost in costs)

    def measure(self, arguments, make):
        """The exponents of time and memory, and the peak memory in multiples of the input."""
        _, least_time, least_memory = self.cost(arguments, make, 1)
        count = 1000
        while True:
            size, seconds, _ = self.cost(arguments, make, count, 1)
            if seconds - least_time >= ENOUGH_SECONDS or size * 2 > self.most:
                break
            count *= 2
        small, large = self.cost(arguments, make, count // STEP), self.cost(arguments, make, count)
        growth = math.log(large[0] / small[0])

        def exponent(index, base, noise):
            return math.log(max(large[index] - base, noise) / max(small[index] - base, noise)) / growth

        return (large[0], large[1], large[2], exponent(1, least_time, NOISE_SECONDS),
                exponent(2, least_memory, NOISE_BYTES), (large[2] - least_memory) / large[0])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("tool")
    parser.add_argument("folder")
    parser.add_argument("--only", default="")
    parser.add_argument("--megabytes", type=float, default=16)
    options = parser.parse_args()
    os.makedirs(options.folder, exist_ok=True)
    growth = Growth(options.tool, options.folder, options.megabytes * 1_000_000)
    chosen = [axis for axis in axes() if options.only in axis[0]]
    print(f"{'axis':<50} {'input MB':>9} {'seconds':>8} {'time':>5} {'memory':>6} {'x input':>8}")
    failures = 0
    for name, arguments, make in chosen:
        try:
            size, seconds, _, of_time, of_memory, factor = growth.measure(arguments, make)
            bad = max(of_time, of_memory) > EXPONENT_LIMIT
            print(f"{name:<50} {size / 1e6:>9.2f} {seconds:>8.2f} {of_time:>5.2f} {of_memory:>6.2f} {factor:>8.1f}"
                  + ("  TOO FAST" if bad else ""), flush=True)
        except Failure as failure:
            bad = True
            print(f"{name:<50} {failure}", flush=True)
        failures += bad
    print(f"{len(chosen)} axes, {failures} that grow too fast")
    sys.exit(1 if failures else 0)


main()
