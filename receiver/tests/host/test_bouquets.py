"""Bouquets: references, files, root lists, the open channel list."""

import os
import unittest

import support

TV_ROOT = ('#NAME Bouquets (TV)\n'
           '#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.a.tv" ORDER BY bouquet\n'
           '#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.b.tv" ORDER BY bouquet\n')
RADIO_ROOT = ('#NAME Bouquets (Radio)\n'
              '#SERVICE 1:7:2:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.a.radio" ORDER BY bouquet\n')
A = ('#NAME First list\n'
     '#SERVICE 1:64:0:0:0:0:0:0:0:0::Heading\n'
     '#DESCRIPTION Heading\n'
     '#SERVICE 1:0:1:1:401:1:C00000:0:0:0:\n'
     '#SERVICE 1:0:1:2:401:1:C00000:0:0:0:\n'
     '#DESCRIPTION Own name\n'
     '#SERVICE 1:0:19:2B66:3F3:1:C00000:0:0:0:\n'
     '#SERVICE 4097:0:1:0:0:0:0:0:0:0:http%3a//host/stream:A stream\n')
B = '#NAME Second list\n#SERVICE 1:0:1:1:401:1:C00000:0:0:0:\n'
LAMEDB = """eDVB services /4/
transponders
00c00000:0401:0001
\ts 11778000:27500000:2:4:192:2:0
/
end
services
0001:00c00000:0401:0001:1:0
One
p:
0002:00c00000:0401:0001:1:0
Two
p:
end
"""


class Reference(support.HostCase):

    def reference(self, text):
        from enigma import eServiceReference
        return eServiceReference(text)

    def test_text_and_numbers(self):
        one = self.reference("1:0:19:2B66:3F3:1:C00000:0:0:0:")
        self.assertEqual((1, 0, 0x19, 0x2B66, 0x3F3, 1, 0xC00000),
                         (one.type, one.flags) + tuple(one.getData(each) for each in range(5)))
        self.assertEqual("1:0:19:2B66:3F3:1:C00000:0:0:0:", one.toString())
        self.assertTrue(one.valid())

    def test_paths_and_names(self):
        root = '1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "user:bouquet.tv" ORDER BY bouquet'
        for text, path, name in (
                (root, root[20:], ""),
                (root + ":Title", root[20:], "Title"),
                ("1:64:0:0:0:0:0:0:0:0::Heading: a \"b\"", "", 'Heading: a "b"'),
                ("4097:0:1:0:0:0:0:0:0:0:http%3a//host/x:Name", "http%3a//host/x", "Name")):
            reference = self.reference(text)
            self.assertEqual((path, name, text), (reference.getPath(), reference.getName(), reference.toString()))

    def test_compared_by_everything_but_the_name(self):
        one = self.reference("1:0:1:1:401:1:C00000:0:0:0:")
        self.assertEqual(one, self.reference("1:0:1:1:401:1:C00000:0:0:0::Name"))
        self.assertNotEqual(one, self.reference("1:0:1:2:401:1:C00000:0:0:0:"))
        self.assertNotEqual(one, self.reference("1:0:19:1:401:1:C00000:0:0:0:"))
        self.assertEqual(hash(one), hash(self.reference(one.toString())))
        self.assertEqual(one, self.reference(one))

    def test_nothing(self):
        from enigma import eServiceReference
        for nothing in (eServiceReference(), self.reference(""), self.reference("text"), self.reference("1:x:0")):
            self.assertEqual((False, "", True), (nothing.valid(), nothing.toString(), bool(nothing)))
        self.assertRaises(TypeError, eServiceReference, 5)

    def test_service_reference_wraps_one(self):
        from ServiceReference import ServiceReference
        self.box.put("lamedb", LAMEDB)
        from enigma import eDVBDB
        eDVBDB.getInstance().reloadServicelist()
        wrapped = ServiceReference("1:0:1:1:401:1:C00000:0:0:0:")
        self.assertEqual(("One", "1:0:1:1:401:1:C00000:0:0:0:"), (wrapped.getServiceName(), str(wrapped)))
        self.assertEqual("", ServiceReference(None).getServiceName())


class Bouquets(support.HostCase):

    def setUp(self):
        support.HostCase.setUp(self)
        from enigma import eDVBDB
        self.database = eDVBDB.getInstance()
        for name, content in (("bouquets.tv", TV_ROOT), ("bouquets.radio", RADIO_ROOT),
                              ("userbouquet.a.tv", A), ("userbouquet.b.tv", B),
                              ("userbouquet.a.radio", "#NAME Radio list\n")):
            self.box.put(name, content)

    def reload(self):
        del self.box.log[:]
        self.database.reloadBouquets()
        return [(each["kind"], each["file"], each["title"], each["services"])
                for each in self.database.summary()["bouquets"]]

    def line(self, name, kind=1):
        return '#SERVICE 1:7:%d:0:0:0:0:0:0:0:FROM BOUQUET "%s" ORDER BY bouquet\n' % (kind, name)

    def test_titles_and_services_in_the_order_of_the_roots_markers_not_counted(self):
        self.assertEqual([("tv", "userbouquet.a.tv", "First list", 4), ("tv", "userbouquet.b.tv", "Second list", 1),
                          ("radio", "userbouquet.a.radio", "Radio list", 0)], self.reload())
        self.assertEqual((TV_ROOT, RADIO_ROOT), (self.box.get("bouquets.tv"), self.box.get("bouquets.radio")))
        self.assertEqual([], self.box.log)

    def test_an_unreferenced_file_is_put_at_the_front_and_the_root_file_rewritten(self):
        self.box.put("userbouquet.y.tv", "#NAME Y\n")
        self.box.put("userbouquet.x.tv", "#NAME X\n")
        self.box.put("userbouquet.x.radio", "#NAME Radio X\n")
        found = self.reload()
        self.assertEqual(["userbouquet.x.tv", "userbouquet.y.tv", "userbouquet.a.tv", "userbouquet.b.tv",
                          "userbouquet.x.radio", "userbouquet.a.radio"], [each[1] for each in found])
        lines = TV_ROOT.splitlines(True)
        added = [self.line("userbouquet.x.tv"), self.line("userbouquet.y.tv")]
        self.assertEqual("".join(lines[:1] + added + lines[1:]), self.box.get("bouquets.tv"))
        lines = RADIO_ROOT.splitlines(True)
        self.assertEqual("".join(lines[:1] + [self.line("userbouquet.x.radio", 2)] + lines[1:]),
                         self.box.get("bouquets.radio"))
        self.assertEqual(["adding userbouquet.x.tv, which no list refers to",
                          "adding userbouquet.y.tv, which no list refers to",
                          "adding userbouquet.x.radio, which no list refers to"], sorted(self.box.log, key=len))
        once = self.box.get("bouquets.tv")
        self.reload()
        self.assertEqual((once, []), (self.box.get("bouquets.tv"), self.box.log))

    def test_only_files_of_that_name_count(self):
        for name in ("bouquet.x.tv", "userbouquet.x.tv.bak", "userbouquet.x", "xuserbouquet.x.tv", "alternatives.x.tv"):
            self.box.put(name, "#NAME X\n")
        os.mkdir(self.box.config + "userbouquet.folder.tv")
        self.assertEqual(3, len(self.reload()))
        self.box.put("userbouquet.tv", "#NAME no dot\n")
        self.assertEqual("userbouquet.tv", self.reload()[0][1])

    def test_only_double_quotes_count_as_quotes(self):
        self.box.put("bouquets.tv", TV_ROOT.replace('"userbouquet.b.tv"', "'userbouquet.b.tv'"))
        self.assertEqual(["userbouquet.b.tv", "userbouquet.a.tv", "userbouquet.a.radio"],
                         [each[1] for each in self.reload()])
        lines = self.box.get("bouquets.tv").splitlines(True)
        self.assertEqual(self.line("userbouquet.b.tv"), lines[1])
        self.assertIn("'userbouquet.b.tv'", lines[3])

    def test_a_file_that_the_other_root_refers_to_is_referenced(self):
        self.box.put("bouquets.radio", RADIO_ROOT + self.line("userbouquet.c.tv", 2))
        self.box.put("userbouquet.c.tv", "#NAME C\n")
        self.reload()
        self.assertEqual(TV_ROOT, self.box.get("bouquets.tv"))

    def test_a_missing_root_file_is_created(self):
        os.unlink(self.box.config + "bouquets.tv")
        os.unlink(self.box.config + "bouquets.radio")
        self.assertEqual(["userbouquet.a.tv", "userbouquet.b.tv", "userbouquet.a.radio"],
                         [each[1] for each in self.reload()])
        self.assertEqual(TV_ROOT, self.box.get("bouquets.tv"))
        self.assertEqual(RADIO_ROOT, self.box.get("bouquets.radio"))

    def test_an_empty_root_list_gets_a_favourites_bouquet(self):
        for root in (None, "", "#NAME Bouquets (Radio)\n"):
            for name in os.listdir(self.box.config):
                if name.endswith(".radio"):
                    os.unlink(self.box.config + name)
            if root is not None:
                self.box.put("bouquets.radio", root)
            self.assertEqual(("radio", "userbouquet.favourites.radio", "Favourites (Radio)", 0), self.reload()[-1])
            self.assertEqual("#NAME Favourites (Radio)\n", self.box.get("userbouquet.favourites.radio"))
            self.assertEqual("#NAME Bouquets (Radio)\n" + self.line("userbouquet.favourites.radio", 2),
                             self.box.get("bouquets.radio"))

    def test_an_empty_folder_gets_both(self):
        for name in os.listdir(self.box.config):
            os.unlink(self.box.config + name)
        self.reload()
        self.assertEqual(["bouquets.radio", "bouquets.tv", "userbouquet.favourites.radio", "userbouquet.favourites.tv"],
                         sorted(os.listdir(self.box.config)))

    def test_a_favourites_bouquet_of_the_other_root_is_not_overwritten(self):
        for name in os.listdir(self.box.config):
            os.unlink(self.box.config + name)
        self.box.put("bouquets.radio", RADIO_ROOT + self.line("userbouquet.favourites.tv"))
        self.box.put("userbouquet.favourites.tv", "#NAME Mine\n")
        self.reload()
        self.assertEqual("#NAME Mine\n", self.box.get("userbouquet.favourites.tv"))

    def test_a_missing_file_that_a_root_refers_to_leaves_the_root_alone(self):
        os.unlink(self.box.config + "userbouquet.b.tv")
        self.assertEqual([("tv", "userbouquet.a.tv", "First list", 4), ("tv", "userbouquet.b.tv", "", 0)],
                         self.reload()[:2])
        self.assertEqual(TV_ROOT, self.box.get("bouquets.tv"))
        self.assertEqual(["cannot read %suserbouquet.b.tv: No such file or directory" % self.box.config],
                         self.box.log)

    def test_carriage_returns_and_older_keywords_are_understood(self):
        self.box.put("bouquets.tv", TV_ROOT.replace("\n", "\r\n"))
        self.box.put("userbouquet.b.tv", "#NAME B\r\n#SERVICE: 1:0:1:1:401:1:C00000:0:0:0:\r\n#DESCRIPTION: Name\r\n"
                                         "#SERVICE rubbish\r\nrubbish\r\n")
        self.assertEqual(("tv", "userbouquet.b.tv", "B", 1), self.reload()[1])

    def test_a_reference_twice_and_lists_in_a_circle(self):
        self.box.put("bouquets.tv", TV_ROOT + self.line("userbouquet.a.tv"))
        self.box.put("userbouquet.a.tv", A + self.line("userbouquet.b.tv"))
        self.box.put("userbouquet.b.tv", B + self.line("userbouquet.a.tv") + self.line("userbouquet.b.tv"))
        self.assertEqual([("userbouquet.a.tv", 4), ("userbouquet.b.tv", 1), ("userbouquet.a.tv", 4)],
                         [(each[1], each[3]) for each in self.reload()[:3]])

    def test_the_summary_of_a_folder_is_that_of_the_database(self):
        from native.summary import summarise
        self.box.put("lamedb", LAMEDB)
        self.database.reloadServicelist()
        self.reload()
        before = dict((name, self.box.get(name)) for name in os.listdir(self.box.config))
        self.assertEqual(self.database.summary(), summarise(self.box.config))
        self.assertEqual(before, dict((name, self.box.get(name)) for name in os.listdir(self.box.config)))
        self.assertEqual((1, 2), (self.database.summary()["transponders"], self.database.summary()["services"]))

    def test_the_summary_leaves_missing_files_out(self):
        from native.summary import summarise
        os.unlink(self.box.config + "userbouquet.b.tv")
        os.unlink(self.box.config + "bouquets.radio")
        self.assertEqual(["userbouquet.a.tv"], [each["file"] for each in summarise(self.box.config)["bouquets"]])
        self.assertEqual({"transponders": 0, "services": 0, "bouquets": []},
                         summarise(self.box.config + "none"))


class Center(support.HostCase):

    def setUp(self):
        support.HostCase.setUp(self)
        from enigma import eDVBDB, eServiceCenter, eServiceReference
        self.box.put("lamedb", LAMEDB)
        self.box.put("bouquets.tv", TV_ROOT)
        self.box.put("userbouquet.a.tv", A)
        self.box.put("userbouquet.b.tv", B)
        eDVBDB.getInstance().reloadServicelist()
        eDVBDB.getInstance().reloadBouquets()
        self.center = eServiceCenter.getInstance()
        self.reference = eServiceReference

    def test_a_root_lists_its_bouquets(self):
        root = self.reference('1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "bouquets.tv" ORDER BY bouquet')
        self.assertEqual(["First list", "Second list"], self.center.list(root).getContent("N"))

    def test_a_bouquet_lists_its_entries(self):
        root = self.reference('1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.a.tv" ORDER BY bouquet')
        self.assertEqual([("1:64:0:0:0:0:0:0:0:0::Heading", "Heading"), ("1:0:1:1:401:1:C00000:0:0:0:", "One"),
                          ("1:0:1:2:401:1:C00000:0:0:0::Own name", "Own name"),
                          ("1:0:19:2B66:3F3:1:C00000:0:0:0:", ""),
                          ("4097:0:1:0:0:0:0:0:0:0:http%3a//host/stream:A stream", "A stream")],
                         self.center.list(root).getContent("SN"))
        listing = self.center.list(root)
        names = []
        while True:
            each = listing.getNext()
            if not each.valid():
                break
            names.append(each.getName())
        self.assertEqual(["Heading", "", "Own name", "", "A stream"], names)

    def test_what_is_no_list(self):
        self.assertIsNone(self.center.list(self.reference("1:0:1:1:401:1:C00000:0:0:0:")))
        self.assertIsNone(self.center.info(self.reference()))


class ChannelList(support.SessionCase):

    def setUp(self):
        support.SessionCase.setUp(self)
        from enigma import eDVBDB
        from Screens.InfoBar import InfoBar
        self.assertIsNone(InfoBar.instance)
        for name, content in (("lamedb", LAMEDB), ("bouquets.tv", TV_ROOT), ("userbouquet.a.tv", A),
                              ("userbouquet.b.tv", B)):
            self.box.put(name, content)
        self.database = eDVBDB.getInstance()
        self.reload()
        self.infobar = self.session.open(InfoBar)
        self.assertIs(self.infobar, InfoBar.instance)
        self.channels = InfoBar.instance.servicelist

    def reload(self):
        self.database.reloadServicelist()
        self.database.reloadBouquets()

    def shown(self):
        return [texts[0] for texts, _ in self.channels.servicelist.l.drawn()]

    def rebuild(self):
        root, current = self.channels.getRoot(), self.channels.getCurrentSelection()
        self.channels.setRoot(root)
        self.channels.setCurrentSelection(current)

    def select(self, text):
        from enigma import eServiceReference
        self.channels.setCurrentSelection(eServiceReference(text))

    def current(self):
        return self.channels.getCurrentSelection().toString()

    def test_it_shows_the_first_bouquet(self):
        self.assertEqual(["Heading", "One", "Own name", "<n/a>", "A stream"], self.shown())
        self.assertEqual("First list", self.channels.getTitle())
        self.assertEqual("1:64:0:0:0:0:0:0:0:0::Heading", self.current())

    def test_its_rows_change_only_when_the_root_is_set(self):
        self.box.put("userbouquet.a.tv", B)
        self.reload()
        self.assertEqual(5, len(self.shown()))
        self.rebuild()
        self.assertEqual(["One"], self.shown())
        self.assertEqual("Second list", self.channels.getTitle())

    def test_the_selection_stays_on_the_service_where_that_is_still_there(self):
        self.select("1:0:1:2:401:1:C00000:0:0:0:")
        self.assertEqual("1:0:1:2:401:1:C00000:0:0:0::Own name", self.current())
        self.box.put("userbouquet.a.tv", "#NAME new\n#SERVICE 1:0:1:2:401:1:C00000:0:0:0:\n"
                                         "#SERVICE 1:0:1:1:401:1:C00000:0:0:0:\n")
        self.reload()
        self.rebuild()
        self.assertEqual((["Two", "One"], "1:0:1:2:401:1:C00000:0:0:0:"), (self.shown(), self.current()))
        self.box.put("userbouquet.a.tv", B)
        self.reload()
        self.rebuild()
        self.assertEqual("1:0:1:1:401:1:C00000:0:0:0:", self.current())

    def test_setting_the_root_alone_goes_to_the_first_service(self):
        self.select("1:0:1:2:401:1:C00000:0:0:0:")
        self.channels.setRoot(self.channels.getRoot())
        self.assertEqual("1:64:0:0:0:0:0:0:0:0::Heading", self.current())

    def test_a_bouquet_that_has_gone_is_empty(self):
        self.box.put("bouquets.tv", TV_ROOT.splitlines(True)[2])
        os.unlink(self.box.config + "userbouquet.a.tv")
        self.reload()
        self.rebuild()
        self.assertEqual(([], ""), (self.shown(), self.current()))
        self.assertFalse(self.channels.getCurrentSelection().valid())

    def test_names_follow_the_database(self):
        self.box.put("lamedb", LAMEDB.replace("One", "Another"))
        self.database.reloadServicelist()
        self.assertEqual("Another", self.shown()[1])

    def test_hidden_entries_are_not_shown(self):
        self.box.put("userbouquet.a.tv", "#NAME x\n#SERVICE 1:832:D:0:0:0:0:0:0:0:\n" + B)
        self.reload()
        self.rebuild()
        self.assertEqual(["One"], self.shown())

    def test_only_references_can_be_selected(self):
        self.assertRaises(TypeError, self.channels.setCurrentSelection, None)

    def test_there_is_one_info_bar_and_none_behind_it(self):
        from Screens.InfoBar import InfoBar
        self.assertRaises(AssertionError, InfoBar, self.session)
        self.infobar.close()
        self.settle()
        self.assertIsNone(InfoBar.instance)
        self.assertEqual({}, self.channels.__dict__)


if __name__ == "__main__":
    unittest.main()
