# -*- coding: utf-8 -*-
"""The archives of the sample feed against their descriptions, unpacked as on a receiver."""

import os
import re
import unittest
import xml.etree.cElementTree as ElementTree

from support import BUSYBOX, ServiceFile, contents, described, good, make, read_bouquet, run, unpack

from feed.description import orbital_position

MANDATORY = ("bouquets.tv", "bouquets.radio", "lamedb")
ROOT_LINE = re.compile(r"#SERVICE 1:7:([12]):0:0:0:0:0:0:0:FROM BOUQUET (['\"])(userbouquet\.[^'\"]+)\2 ORDER BY bouquet$")
MARKER = re.compile(r"1:64:([0-9A-F]+):0:0:0:0:0:0:0::(.*)$")
FIVE = re.compile(r'(?:t:([^,]+),([stc]):(.*)|s:([^,]+),"(.*)",(p:.*))$')


class Files(object):
    """The unpacked files of a list."""

    def __init__(self, description):
        self.description = description
        status, self.folder = unpack(description.archive())
        assert status == 0, description.name
        self.content = contents(self.folder)
        self.services = ServiceFile(self.content["lamedb"])

    def root(self, kind):
        """The bouquet files that a root file names."""
        lines = self.content["bouquets." + kind].replace("\r\n", "\n").split("\n")
        assert lines[0] == {"tv": "#NAME Bouquets (TV)", "radio": "#NAME Bouquets (Radio)"}[kind], lines[0]
        assert lines[-1] == "", lines[-1]
        names = []
        for line in lines[1:-1]:
            match = ROOT_LINE.match(line)
            assert match and match.group(1) == {"tv": "1", "radio": "2"}[kind], line
            names.append(match.group(3))
        return names

    def shown(self, name):
        """The title of a bouquet, and what stands in it: texts of markers and names of services."""
        title, found = read_bouquet(self.content[name])
        shown = []
        for reference, _ in found:
            marker = MARKER.match(reference)
            shown.append(marker.group(2) if marker else self.services.name(reference))
        return title, shown


_files = {}


def files(description):
    """The unpacked files, unpacked once."""
    if description.name not in _files:
        _files[description.name] = Files(description)
    return _files[description.name]


class EveryArchive(unittest.TestCase):
    """What holds for each list that can be installed."""

    def test_holds_what_receivers_demand_at_its_top_level(self):
        for description in good():
            names = set(files(description).content)
            self.assertEqual([], [name for name in MANDATORY if name not in names], description.name)
            self.assertEqual([], [name for name in names if "/" in name], description.name)

    def test_unpacks_alike_with_the_tar_of_a_receiver(self):
        for description in good():
            status, folder = unpack(description.archive(), (BUSYBOX, "tar"))
            self.assertEqual(0, status, description.name)
            self.assertEqual(files(description).content, contents(folder), description.name)

    def test_holds_as_many_services_as_described(self):
        for description in good():
            self.assertEqual(int(description.one("services")), len(files(description).services.services),
                             description.name)

    def test_has_as_many_bouquets_as_described(self):
        for description in good():
            mentioned = description.all("mention")
            counts = ["%d %s" % (len([name for name in files(description).root(kind) if name not in mentioned]), kind)
                      for kind in ("tv", "radio")]
            self.assertEqual(description.one("bouquets"), " ".join(counts), description.name)

    def test_root_files_and_user_bouquets_agree(self):
        for description in good():
            unpacked = files(description)
            named = unpacked.root("tv") + unpacked.root("radio")
            there = [name for name in unpacked.content if name.startswith("userbouquet.")]
            self.assertEqual(sorted(named), sorted(there + description.all("mention")), description.name)

    def test_bouquets_are_those_of_the_description_in_its_order(self):
        for description in good():
            unpacked = files(description)
            for kind in ("tv", "radio"):
                expected = [name for name, _, _ in description.bouquets() if name.endswith("." + kind)]
                named = [name for name in unpacked.root(kind) if name not in description.all("mention")]
                if not description.all("each"):
                    self.assertEqual(expected, named, description.name)

    def test_entries_written_by_hand_come_first_and_in_order(self):
        for description in good():
            for name, title, expected in description.bouquets():
                found_title, shown = files(description).shown(name)
                self.assertEqual(title, found_title, name)
                self.assertEqual(expected, shown[:len(expected)], name)

    def test_every_reference_leads_to_a_service_of_the_list(self):
        for description in good():
            unpacked = files(description)
            for name in unpacked.root("tv") + unpacked.root("radio"):
                if name not in description.all("mention"):
                    self.assertTrue(unpacked.shown(name)[1], name)

    def test_kinds_are_kept_apart(self):
        for description in good():
            unpacked = files(description)
            for name in [name for name in unpacked.content if name.startswith("userbouquet.")]:
                types = set(reference.split(":")[2] for reference, _ in read_bouquet(unpacked.content[name])[1]
                            if not MARKER.match(reference))
                allowed = set(["2"]) if name.endswith(".radio") else set(["1", "19", "1F"])
                self.assertTrue(types <= allowed, (name, types))

    def test_texts_are_utf_8_without_control_characters(self):
        for description in good():
            for name, content in files(description).content.items():
                text = content.decode("utf-8")
                self.assertEqual(None, re.search(u"[\x00-\x08\x0b\x0c\x0e-\x1f\x7f-\x9f]", text), name)

    def test_markers_are_numbered_and_described(self):
        for description in good():
            unpacked = files(description)
            for name in [name for name in unpacked.content if name.startswith("userbouquet.")]:
                number = 0
                for reference, described_as in read_bouquet(unpacked.content[name])[1]:
                    marker = MARKER.match(reference)
                    if marker:
                        number += 1
                        self.assertEqual((number, described_as), (int(marker.group(1), 16), marker.group(2)), name)

    def test_only_some_authors_describe_each_service(self):
        for description in good():
            unpacked = files(description)
            wanted = "descriptions" in " ".join(description.all("style"))
            for name in [name for name in unpacked.content if name.startswith("userbouquet.")]:
                for reference, described_as in read_bouquet(unpacked.content[name])[1]:
                    if not MARKER.match(reference):
                        expected = unpacked.services.name(reference) if wanted else None
                        self.assertEqual(expected, described_as, (name, reference))

    def test_format_5_holds_the_same_as_format_4(self):
        with_both = [each for each in good() if "lamedb5" in " ".join(each.all("holds"))]
        self.assertEqual(["falkenauge", "kormoran", "samar"], [each.name for each in with_both])
        for description in with_both:
            lines = files(description).content["lamedb5"].split("\n")
            self.assertEqual(("eDVB services /5/", ""), (lines[0], lines[-1]))
            found = [FIVE.match(line).groups() for line in lines[1:-1] if not line.startswith("#")]
            transponders = dict((key, system + " " + numbers) for key, system, numbers, _, _, _ in found if key)
            services = dict((key, name) for _, _, _, key, name, _ in found if key)
            self.assertEqual(files(description).services.transponders, transponders, description.name)
            self.assertEqual(files(description).services.services, services, description.name)

    def test_satellites_files_name_the_places_and_tune_like_the_service_file(self):
        with_one = [each for each in good() if "satellites.xml" in " ".join(each.all("holds"))]
        self.assertEqual(["kormoran", "lyngbo"], [each.name for each in with_one])
        for description in with_one:
            unpacked = files(description)
            satellites = ElementTree.fromstring(unpacked.content["satellites.xml"]).findall("sat")
            places = sorted(value.split()[0] for value in description.all("use"))
            self.assertEqual(places, sorted(each.get("name").split()[0].encode("utf-8") for each in satellites))
            tuned = set((each.get("position"), transponder.get("frequency"), transponder.get("symbol_rate"))
                        for each in satellites for transponder in each.findall("transponder"))
            stored = [each[2:].split(":") for each in unpacked.services.transponders.values()]
            self.assertEqual([], [each for each in stored if (each[4], each[0], each[1]) not in tuned])


class ParticularArchives(unittest.TestCase):
    """The habits of single authors, and the sizes that were asked for."""

    def named(self, name):
        """The files of the list of that name."""
        return files([each for each in described() if each.name == name][0])

    def test_one_list_is_large(self):
        unpacked = self.named("kormoran")
        self.assertEqual(5000, len(unpacked.services.services))
        self.assertEqual(60, len(unpacked.root("tv") + unpacked.root("radio")))

    def test_its_satellites_bouquets_hold_every_service_once(self):
        unpacked = self.named("kormoran")
        shown = [(name, service) for name in unpacked.root("tv") if "_sat_" in name
                 for service, _ in read_bouquet(unpacked.content[name])[1] if not MARKER.match(service)]
        television = [key for key in unpacked.services.services if key.split(":")[4] != "2"]
        self.assertEqual(len(television), len(shown))
        self.assertEqual(len(television), len(set(service for _, service in shown)))
        self.assertEqual(14, len(set(name for name, _ in shown)))
        for name, service in shown:
            title = read_bouquet(unpacked.content[name])[0]
            self.assertEqual(orbital_position(title.split()[0]), int(service.split(":")[6], 16) >> 16, service)

    def test_its_providers_bouquets_hold_that_providers_services(self):
        unpacked = self.named("kormoran")
        lines = unpacked.content["lamedb"].split("\n")
        providers = dict((lines[index - 2], lines[index][2:].split(",")[0])
                         for index in range(len(lines)) if lines[index].startswith("p:"))
        for name in [name for name in unpacked.root("tv") if "_provider_" in name]:
            title, shown = read_bouquet(unpacked.content[name])
            services = [reference for reference, _ in shown if not MARKER.match(reference)]
            expected = [key for key, provider in providers.items()
                        if provider == title and key.split(":")[4] != "2"]
            self.assertEqual(sorted(expected), sorted(unpacked.services.key(each) for each in services), name)

    def test_the_others_range_from_40_to_1500_services(self):
        counts = sorted(len(files(each).services.services) for each in good())
        self.assertEqual([40, 230, 420, 462, 574, 603, 1500, 5000], counts)

    def test_the_first_one_is_good_and_of_moderate_size(self):
        first = described()[0]
        self.assertEqual("falkenauge", first.name)
        self.assertIn("falkenauge", [each.name for each in good()])
        self.assertEqual((7, 2), (len(files(first).root("tv")), len(files(first).root("radio"))))

    def test_one_uses_the_names_that_the_receiver_uses(self):
        own = [name for name in os.listdir(make("--settings")) if name.startswith("userbouquet.")]
        theirs = [name for name in self.named("pixie").content if name.startswith("userbouquet.")]
        self.assertEqual([], [name for name in theirs if name not in own])
        self.assertEqual(4, len(theirs))

    def test_one_has_root_files_with_cr_lf_and_only_there(self):
        for description in good():
            for name, content in files(description).content.items():
                expected = description.name == "meltemi" and name in ("bouquets.tv", "bouquets.radio")
                self.assertEqual(expected, "\r" in content, (description.name, name))
                if expected:
                    self.assertEqual(content.count("\n"), content.count("\r\n"))

    def test_one_writes_single_quotes(self):
        for description in good():
            content = files(description).content
            for name in ("bouquets.tv", "bouquets.radio"):
                wanted = description.name == "hanami"
                self.assertEqual(wanted, "'" in content[name], (description.name, name))
                self.assertEqual(not wanted and "FROM" in content[name], '"' in content[name], description.name)

    def test_one_has_no_radio_bouquets(self):
        self.assertEqual("#NAME Bouquets (Radio)\n", self.named("kabelbote").content["bouquets.radio"])
        self.assertEqual([], [name for name in self.named("kabelbote").content if name.endswith(".radio")
                              and name != "bouquets.radio"])

    def test_one_names_bouquets_that_it_does_not_hold(self):
        unpacked = self.named("lyngbo")
        self.assertEqual("userbouquet.LastScanned.tv", unpacked.root("tv")[0])
        self.assertEqual("userbouquet.LastScanned.radio", unpacked.root("radio")[0])
        self.assertEqual([], [name for name in unpacked.content if "LastScanned" in name])

    def test_one_was_made_of_the_folder_itself(self):
        for description in good():
            status, names, _ = run(["tar", "-tzf", description.archive()])
            dotted = [name for name in names.splitlines() if name.startswith("./")]
            self.assertEqual(0, status)
            self.assertEqual(names.splitlines() if description.name == "lyngbo" else [], dotted, description.name)

    def test_no_service_is_taken_twice(self):
        for description in good():
            by_hand = dict((name, len(entries)) for name, _, entries in description.bouquets())
            taken = [reference for name in by_hand
                     for reference, _ in read_bouquet(files(description).content[name])[1][by_hand[name]:]]
            self.assertEqual(len(taken), len(set(taken)), description.name)

    def test_many_alphabets_are_there(self):
        names = u"".join(name.decode("utf-8") for each in good() for name in files(each).services.services.values())
        blocks = {"Latin with diacritics": u"[\u00c0-\u017f]", "Greek": u"[\u0370-\u03ff]",
                  "Cyrillic": u"[\u0400-\u04ff]", "Hebrew": u"[\u05d0-\u05ea]", "Arabic": u"[\u0620-\u06ff]",
                  "Devanagari": u"[\u0900-\u097f]", "Tamil": u"[\u0b80-\u0bff]", "Thai": u"[\u0e00-\u0e7f]",
                  "Georgian": u"[\u10a0-\u10ff]", "Armenian": u"[\u0530-\u058f]", "Kana": u"[\u3040-\u30ff]",
                  "Han": u"[\u4e00-\u9fff]", "Hangul": u"[\uac00-\ud7af]"}
        self.assertEqual([], [name for name, block in blocks.items() if not re.search(block, names)])


class BadArchives(unittest.TestCase):
    """The archives that a receiver has to cope with."""

    def bad(self, keyword):
        """The only description with that statement."""
        found = [each for each in described() if each.all(keyword)]
        self.assertEqual(1, len(found), keyword)
        return found[0]

    def test_one_lacks_a_mandatory_file_and_nothing_else(self):
        description = self.bad("lacks")
        status, folder = unpack(description.archive())
        names = set(os.listdir(folder))
        self.assertEqual(0, status)
        self.assertEqual(["bouquets.radio"], [name for name in MANDATORY if name not in names])
        services = ServiceFile(contents(folder)["lamedb"]).services
        self.assertEqual(int(description.one("services")), len(services))

    def test_one_is_a_web_page_that_no_tar_unpacks(self):
        description = self.bad("page")
        with open(description.archive(), "rb") as source:
            self.assertEqual("".join(line + "\n" for line in description.all("page")), source.read())
        for tar in (("tar",), (BUSYBOX, "tar")):
            status, folder = unpack(description.archive(), tar)
            self.assertNotEqual(0, status)
            self.assertEqual([], os.listdir(folder))

    def test_one_is_not_on_the_server(self):
        self.assertFalse(os.path.lexists(self.bad("withdrawn").archive()))

    def test_they_stand_behind_all_good_ones(self):
        names = [each.name for each in described()]
        self.assertEqual([each.name for each in good()], names[:len(good())])
        self.assertEqual(3, len(names) - len(good()))


if __name__ == "__main__":
    unittest.main()
