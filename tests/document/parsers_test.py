"""What others make of mended documents: Python's two parsers, xmllint, and the schema.

Called with kord, xmllint, the schema, a folder to work in, and folders of documents as the collector left them.
"""

import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree
import xml.parsers.expat
from pathlib import Path

HEAD = (b'<?xml version="1.0" encoding="UTF-8"?>\n<com.orvik.inventory verion="1.0">\n'
        b'<ResourceSet class="com.orvik.inventory.Hardware" type="Hardware" version="1.0" timestamp="1795268463.5">\n')
TAIL = b'</ResourceSet>\n</com.orvik.inventory>\n'

# Between marks, for what stands around a value must not become one of its references.
TEXTS = [b'', b'\n', b'a & b', b'<b>', b'"quoted" \'so\'', b']]>', b'<![CDATA[x]]>', b'<!-- x -->', b'<?x y?>',
         b'</Value>', b'</Value>\n</Property>\nforged', b'</Value>\n</Property>\n</Resource>\nforged', b'\r\n\t\r',
         bytes(range(0x20)).replace(b'\n', b''), b'\x7f\xc2\x80\xc2\x9f', b'\xff\xfe', b'\xc0\xaf', b'\xe2\x82',
         b'\xed\xa0\x80\xed\xb0\x80', b'\xf4\x90\x80\x80', b'\xef\xbf\xbe\xef\xbf\xbf', b'\xef\xbb\xbf', b'\x0c\x00',
         '\u202e\u200b\u2028\U0001f600\U0010ffff'.encode(), b'x' * 5_000_000, b'\n' * 100_000, b'&' * 100_000,
         b']]>' * 100_000]


def carried(text):
    """A text as XML can carry it."""
    return re.sub('[^\t\n\r -\ufffd\U00010000-\U0010ffff]', '\ufffd', text.decode('utf-8', 'replace'))


def prop(code, label, value):
    return b'<Property name="%s" displayName="%s">\n%s\n<Value type="string">%s</Value>\n</Property>\n' % (
        code, label, code, value)


def resource(name, identifier, content):
    return b'<Resource displayName="%s" uniqueId="%s">\n%s\n%s</Resource>\n' % (name, identifier, identifier, content)


def listOf(name, content):
    return b'<ResourceList displayName="%s">\n%s</ResourceList>\n' % (name, content)


def hostile(text):
    """A document with the text as a name, an identifier, a value and the host descriptions."""
    short = text[:200] # tags are of a size
    hosts = (b'<Property name=U2 displayName="Host Inventory">\nU2\n<Value type="string">%s=1,</Value>\n'
             b'</Property>\n' % text)
    partition = resource(b'[' + short + b']', b'[' + short + b']', prop(b'LE', b'LIC VRMF', text) + hosts)
    content = prop(b'S3', b'Storage Facility MTMS', b'F') + listOf(b'Partitions', partition)
    return HEAD + resource(b'SYSTEM', b'SYSTEM', content) + TAIL


def check(condition, what):
    if not condition:
        sys.exit(f'parsers_test: {what}')


def mend(kord, raw, mended):
    run = subprocess.run([kord, 'xml', '-o', mended, raw], stderr=subprocess.PIPE, text=True)
    check(run.returncode == 0, f'{raw}: status {run.returncode}: {run.stderr}')
    again = subprocess.run([kord, 'xml', mended], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    check(again.stdout == mended.read_bytes(), f'{raw}: mending again changes it')


def parse(mended):
    """Both parsers, and what is in the document."""
    xml.parsers.expat.ParserCreate().Parse(mended.read_bytes(), True)
    return ElementTree.parse(mended).getroot()


def checkHostile(text, root):
    partition = root.find('.//ResourceList/Resource')
    short = carried(b'[' + text[:200] + b']')
    check(partition.get('displayName') == short, f'the name {text[:40]} became {partition.get("displayName")[:80]!r}')
    check(partition.get('uniqueId') == short, f'the identifier {text[:40]} became {partition.get("uniqueId")[:80]!r}')
    check(partition.text == f'\n{short}\n', f'the line {text[:40]} became {partition.text[:80]!r}')
    values = [value.text or '' for value in partition.iter('Value')]
    check(values == [carried(text), carried(text + b'=1,')], f'the value {text[:40]} became {values[0][:80]!r}')


def main():
    kord, xmllint, schema = sys.argv[1:4]
    work = Path(sys.argv[4])
    work.mkdir(parents=True, exist_ok=True)
    for old in work.iterdir():
        old.unlink()
    all_mended = []
    for folder in map(Path, sys.argv[5:]):
        for raw in sorted(folder.glob('*.xml')):
            mended = work / f'{folder.name}-{raw.name}'
            mend(kord, raw, mended)
            parts = sum(1 for _ in parse(mended).iter('Resource'))
            written = raw.read_bytes().count(b'\n<Resource displayName="')
            check(parts == written, f'{raw}: {written} parts became {parts}')
            all_mended.append(mended)
    for number, text in enumerate(TEXTS):
        raw = work / f'hostile-{number}.raw'
        raw.write_bytes(hostile(text))
        mended = raw.with_suffix('.xml')
        mend(kord, raw, mended)
        checkHostile(text, parse(mended))
        all_mended.append(mended)
    for first in range(0, len(all_mended), 500):
        subprocess.run([xmllint, '--huge', '--noout', '--schema', schema, *all_mended[first:first + 500]], check=True,
                       stderr=subprocess.DEVNULL)
    check(len(all_mended) > 300, f'only {len(all_mended)} documents')
    print(f'{len(all_mended)} documents')


main()
