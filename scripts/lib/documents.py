"""Definition documents for the scripts that make large ones."""


def document(content):
    return b"<d>" + content + b"</d>"


def sql(text):
    return document(b'<sql id="s">' + text + b"</sql>")


def update(content, attributes=b""):
    return document(b'<update id="u"' + attributes + b">" + content + b"</update>")


def result_map(content):
    return document(b'<map id="m" result="R">' + content + b"</map>")


def numbered(count, pattern):
    """The pattern, with the numbers from 0 in place of each "#"."""
    return b"".join(pattern.replace(b"#", b"%d" % number) for number in range(count))
