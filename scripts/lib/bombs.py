"""Checks documents that are designed to exhaust a parser: bombs.py KORVEX-DAO FOLDER. See scripts/bombs."""

import os
import subprocess
import sys
import time

from documents import document, numbered, result_map, sql, update

TIME_LIMIT = 60  # seconds
MEGABYTE = 1_000_000


BOMBS = {
    "a list reference for 2.8 GB": lambda: sql(b"%{'" + b"*" * 20000 + b"'," + b"aaaaaaa," * 20000 + b"}"),
    "2,000,000 list references": lambda: sql(b"%{'*',a}" * 2_000_000),
    "10,000,000 that are never closed": lambda: sql(b"%{" * 10_000_000),
    "entities of entities": lambda: b'<!DOCTYPE d [<!ENTITY a "aaaa"><!ENTITY b "&a;&a;&a;&a;">]><d>&b;</d>',
    "1,000,000 levels": lambda: b"<d>" * 1_000_000,
    "200,000 attributes": lambda: document(b'<const ' + numbered(200_000, b'a#="" ') + b"/>"),
    "an attribute in 10,000,000 quotes": lambda: document(b"<a " + b'x="' * 10_000_000),
    "500,000 arguments": lambda: update(b"x", b' arguments="' + numbered(500_000, b"a#,") + b'z"'),
    "500,000 columns": lambda: result_map(
        numbered(500_000, b'<result property="p#" column="c"/>')),
    "1,000,000 conditions": lambda: update(b'<if true="a">b</if>' * 1_000_000),
    "a condition of 10 MB": lambda: update(b'<if true="' + b"a+" * 5_000_000 + b'a">x</if>'),
    "a text of 50 MB": lambda: sql(b"x" * 50_000_000),
    "a name of 10 MB": lambda: document(b'<sql id="' + b"n" * 10_000_000 + b'">x</sql>'),
    "a tag of 10 MB": lambda: document(b"<" + b"n" * 10_000_000 + b"/>"),
    "2,000,000 CDATA sections": lambda: sql(b"<![CDATA[x]]>y" * 2_000_000),
    "2,000,000 comments in a text": lambda: sql(b"x<!---->" * 2_000_000),
    "20,000 errors on one line": lambda: document(b"<const/>" * 20_000),
    "100,000 errors on lines of their own": lambda: document(b"<const/>\n" * 100_000),
    "30,000,000 carriage returns": lambda: document(b"\r" * 30_000_000 + b"<const/>"),
    "30,000,000 zero bytes": lambda: b"\0" * 30_000_000,
    "UTF-16 of 9 MB": lambda: ("\ufeff<d>" + "<const/>\n" * 500_000 + "</d>").encode("utf-16-le"),
    "more than 64 MiB": lambda: sql(b"x" * 68 * MEGABYTE),
}


def write(path, make):
    """In a separate process, because the peak of a process includes the memory of its parent at the start."""
    writer = os.fork()
    if writer == 0:
        with open(path, "wb") as file:
            file.write(make())
        os._exit(0)
    _, status = os.waitpid(writer, 0)
    if status != 0:
        sys.exit("bombs: no room for a document")


def checked(tool, path):
    """The exit status (negative for a signal), the seconds, and the peak memory in megabytes."""
    begin = time.monotonic()
    process = subprocess.Popen([tool, "check", path], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    while True:
        process_id, status, usage = os.wait4(process.pid, os.WNOHANG)
        seconds = time.monotonic() - begin
        if process_id:
            return os.waitstatus_to_exitcode(status), seconds, usage.ru_maxrss * 1024 / MEGABYTE
        if seconds > TIME_LIMIT:
            process.kill()
        time.sleep(0.001)


def main():
    tool, folder = sys.argv[1:]
    os.makedirs(folder, exist_ok=True)
    path = os.path.join(folder, "bomb.xml")
    print("| bomb | document | seconds | memory | exit |\n| --- | --- | --- | --- | --- |")
    defused = True
    for name, make in BOMBS.items():
        write(path, make)
        size = os.path.getsize(path) / MEGABYTE
        status, seconds, memory = checked(tool, path)
        defused = defused and status in (0, 1)
        print(f"| {name} | {size:.1f} MB | {seconds:.2f} | {memory:.0f} MB | {status} |", flush=True)
    os.remove(path)
    sys.exit(0 if defused else 1)


main()
