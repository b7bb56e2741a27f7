"""Runs every example of docs/formats.md."""

import ast
import os
import re

import loading
from recording_host import CONFIG, FEED_FILE

PAGE = os.path.join(loading.ROOT, "docs", "formats.md")
TMP = "/tmp/settings/"

# An example has one or two literals before the arrow and one behind it.
EXAMPLE = re.compile(r'^(None|"(?:[^"\\]|\\.)*") ?(\[.*\])? -> (.+)$')


def examples():
    """The examples by the name of their block: lists of (before, bouquets, result)."""
    with open(PAGE) as page:
        text = page.read()
    found = {}
    for name, block in re.findall(r"^```([a-z ]+)\n(.*?)^```$", text, re.MULTILINE | re.DOTALL):
        for line in block.splitlines():
            found.setdefault(name, []).append([part and ast.literal_eval(part) for part in EXAMPLE.match(line).groups()])
    return found


EXAMPLES = examples()


class Response(object):
    """A server's answer."""

    def __init__(self, body):
        self.body = body

    def read(self):
        """The whole body."""
        return self.body


class Formats(loading.ModuleCase):

    def test_every_block_of_the_page_is_run(self):
        self.assertEqual(sorted(EXAMPLES), ["address", "catalogue", "name", "root radio", "root tv"])

    def test_addresses(self):
        for line, _, address in EXAMPLES["address"]:
            self.host.write(FEED_FILE, line)
            self.assertEqual(self.module.base_url(), address, line)

    def test_catalogues(self):
        for body, _, entries in EXAMPLES["catalogue"]:
            self.host.write(FEED_FILE, "")
            self.host.urlopen = lambda *arguments: Response(body)
            self.assertEqual(self.module.parse_download_file(), (0, entries), body)

    def test_names(self):
        for line, _, name in EXAMPLES["name"]:
            self.host.reset()
            self.host.write(TMP + "bouquets.tv", line)
            self.host.write(TMP + "bouquets.radio", "")
            for present in ("userbouquet.films.tv", "userbouquet.music.radio", "subbouquet.films.tv"):
                self.host.write(TMP + present, "")
            self.screen().mergeNewFavourites()
            copied = [record[1][0][len(TMP):] for record in self.host.named("shutil.copy2")]
            self.assertEqual(copied, [name] if name else [], line)

    def test_root_files(self):
        for kind in ("tv", "radio"):
            for before, bouquets, after in EXAMPLES["root " + kind]:
                self.host.reset()
                if before is not None:
                    self.host.write(CONFIG + "bouquets." + kind, before)
                for bouquet in bouquets:
                    self.host.write(TMP + bouquet, "")
                self.screen().writeBouquetFiles(kind, [(bouquet, bouquet) for bouquet in bouquets])
                self.assertEqual(self.host.read(CONFIG + "bouquets." + kind), after, before)


if __name__ == "__main__":
    loading.main()
