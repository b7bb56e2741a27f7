# -*- coding: utf-8 -*-
"""What is invented: the same everywhere, each name once, nothing changed by its neighbours."""

import os
import shutil
import unittest

from support import FEED, scratch

from feed.description import BadDescription, orbital_position
from feed.dice import Dice
from feed.files import service_key, transponder_key
from feed.names import Language, Namer
from feed.sky import read_sky

THROWS = [537, 48, 144, 8, 413, 881, 888, 627]
LARGE_THROWS = [798263391, 1571551420, 840236351]

INVENTED = [("0a21:0e080000:0145:0046:1:0", "Östraholm Útvarp", "Østersund & Ås"),
            ("0a25:0e080000:0145:0046:1:0", "Skogstrand", "Østersund & Ås"),
            ("0299:01860000:0014:0155:1:0", "Θαλαστούσα", "Ανεμόπυλη"),
            ("029e:01860000:0014:0155:1:0", "ΤηλεΑστροπύλη", "Θαλασσινό Κύμα")]


def told(place):
    """All that is known about a place's transponders and services."""
    return ([(transponder_key(each), each.tuning, each.attributes) for each in place.transponders],
            [(transponder_key(each.transponder), each.sid, each.kind, each.name, each.provider, each.language, each.fields)
             for each in place.services])


class TheDice(unittest.TestCase):
    """Throws that must never change, or all sample data would."""

    def test_throws_of_two_seeds(self):
        dice = Dice("19.2E")
        self.assertEqual(THROWS, [dice.below(1000) for _ in THROWS])
        dice = Dice("")
        self.assertEqual(LARGE_THROWS, [dice.below(2 ** 31) for _ in LARGE_THROWS])

    def test_ranges_include_both_ends(self):
        dice = Dice("ends")
        self.assertEqual(set([5, 6, 7]), set(dice.between(5, 7) for _ in range(200)))

    def test_chances_come_true_about_as_often_as_they_say(self):
        dice = Dice("chances")
        hits = len([None for _ in range(10000) if dice.percent(35)])
        self.assertTrue(3300 < hits < 3700, hits)


class TheNames(unittest.TestCase):
    """A language so poor that names run out."""

    def test_names_are_numbered_when_they_run_out(self):
        language = Language("poor")
        language.beginnings, language.ends = ["A_"], ["b"]
        language.tv, language.radio = ["{} TV"], ["Radio {}"]
        namer = Namer({"poor": language}, Dice("poor"))
        namer.reserve("Radio A b 2")
        self.assertEqual(["A b TV", "A b TV 2", "A b TV HD", "A b TV 2 HD", "A b TV 3", "Radio A b", "Radio A b 3"],
                         [namer.channel("poor", is_radio, suffix) for is_radio, suffix in (
                             (False, ""), (False, ""), (False, " HD"), (False, " HD"), (False, ""),
                             (True, ""), (True, ""))])


class ThePlaces(unittest.TestCase):
    """What can be received."""

    def setUp(self):
        self.sky = read_sky()

    def test_no_name_is_given_twice_in_a_place(self):
        for place in self.sky.values():
            names = [each.name for each in place.services]
            self.assertEqual(len(names), len(set(names)), place.key)

    def test_no_key_is_given_twice(self):
        transponders = [transponder_key(each) for place in self.sky.values() for each in place.transponders]
        self.assertEqual(len(transponders), len(set(transponders)))
        services = [(transponder_key(each.transponder), each.sid) for place in self.sky.values()
                    for each in place.services]
        self.assertEqual(len(services), len(set(services)))

    def test_numbers_fit_into_their_fields(self):
        for place in self.sky.values():
            for each in place.services:
                self.assertTrue(0 < each.sid < 0x10000 and 0 < each.transponder.tsid < 0x10000, each.name)

    def test_inventions_never_change(self):
        self.assertEqual(INVENTED, [(service_key(each), each.name, each.provider)
                                    for key in ("0.8W", "39.0E") for each in self.sky[key].services[4:6]])

    def test_a_place_depends_on_its_own_description_alone(self):
        copy = os.path.join(scratch(), "sky")
        shutil.copytree(os.path.join(FEED, "sky"), copy)
        for name in os.listdir(copy):
            if name not in ("languages", "13.0e.place"):
                os.unlink(os.path.join(copy, name))
        self.assertEqual(told(self.sky["13.0E"]), told(read_sky(copy)["13.0E"]))

    def test_frequencies_are_ones_that_a_receiver_tunes_to(self):
        ranges = {"terrestrial": ((470, 862),), "cable": ((108, 862),)}
        for place in self.sky.values():
            for each in place.transponders:
                self.assertTrue(any(low <= each.frequency / 1000.0 <= high for low, high in ranges.get(
                    place.key, ((3400, 4200), (10700, 12750)))), (place.key, each.frequency))

    def test_two_transponders_of_a_place_do_not_share_a_frequency(self):
        for place in self.sky.values():
            tuned = [each.tuning.split(":")[0] + each.tuning.split(":")[2] for each in place.transponders]
            self.assertEqual(len(tuned), len(set(tuned)), place.key)

    def test_namespaces_tell_where_a_transponder_is_received(self):
        self.assertEqual(0x00C00000, self.sky["19.2E"].transponders[0].namespace)
        self.assertEqual(0x0E080000, self.sky["0.8W"].transponders[0].namespace)
        self.assertEqual(0xEEEE0000, self.sky["terrestrial"].transponders[0].namespace)
        self.assertEqual(0xFFFF0000, self.sky["cable"].transponders[0].namespace)
        self.assertEqual(0x01680000 | 11785, self.sky["36.0E"].transponders[0].namespace)

    def test_tuning_numbers(self):
        self.assertEqual("s 10744000:22000000:0:4:192:2:0", self.sky["19.2E"].transponders[0].tuning)
        self.assertEqual("s 11494000:22000000:0:2:192:2:0:1:2:0:2", self.sky["19.2E"].transponders[1].tuning)
        self.assertEqual("s 10872000:25000000:0:3:-8:2:0:1:2:0:2", self.sky["0.8W"].transponders[0].tuning)
        self.assertEqual("t 474000000:0:5:5:3:2:4:4:2:0:1:0", self.sky["terrestrial"].transponders[0].tuning)
        self.assertEqual("c 394000:6900000:2:5:0:0:0", self.sky["cable"].transponders[0].tuning)


class Positions(unittest.TestCase):
    """Orbital positions."""

    def test_east_and_west(self):
        self.assertEqual([192, 0, 0, 1800, 1800, 3592, 3300, 1005],
                         [orbital_position(each) for each in
                          ("19.2E", "0.0E", "0.0W", "180.0E", "180.0W", "0.8W", "30.0W", "100.5E")])

    def test_what_is_none(self):
        for text in ("", "E", "19.2", "19.2N", "-1.0E", "180.1E", "abcE", "nanE", "infE"):
            self.assertEqual(None, orbital_position(text), text)


class Descriptions(unittest.TestCase):
    """Folders of descriptions."""

    def test_a_sky_without_languages(self):
        with self.assertRaises(BadDescription) as caught:
            read_sky(scratch())
        self.assertTrue(str(caught.exception).endswith("languages cannot be read: No such file or directory"))


if __name__ == "__main__":
    unittest.main()
