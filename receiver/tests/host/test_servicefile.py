"""The service database: reading, merging and writing of both formats."""

import os
import time
import unittest

import support

OWN_4 = """eDVB services /4/
transponders
00c00000:0401:0001
\ts 11778000:27500000:2:4:192:2:0
/
00c00000:0402:0001
\ts 11493000:22000000:0:2:192:2:0:1:2:0:2
/
eeee0000:0001:2114
\tt 562000000:8:5:5:3:2:4:4:2:0:0:0
/
ffff0000:0002:0085
\tc 346000000:6900000:2:3:0:0:0
/
end
services
0001:00c00000:0401:0001:1:0
First
p:Somebody,c:000065,f:40
0002:00c00000:0401:0001:2:17
R\xc3\xa1dio "One", two
p:,C:1833,C:0500
0010:ffff0000:0002:0085:25:0:1f
Third
p:Cable,q:unknown,zz:1,f:1
end
"""

OWN_5 = """eDVB services /5/
t:00c00000:0401:0001,s:11778000:27500000:2:4:192:2:0
t:00c00000:0402:0001,s:11493000:22000000:0:2:192:2:0:1:2:0:2
t:eeee0000:0001:2114,t:562000000:8:5:5:3:2:4:4:2:0:0:0
t:ffff0000:0002:0085,c:346000000:6900000:2:3:0:0:0
s:0001:00c00000:0401:0001:1:0,"First",p:Somebody,c:000065,f:40
s:0002:00c00000:0401:0001:2:17,"R\xc3\xa1dio "One", two",p:,C:1833,C:0500
s:0010:ffff0000:0002:0085:25:0:1f,"Third",p:Cable,q:unknown,zz:1,f:1
"""

NEW = """eDVB services /4/
transponders
00c00000:0401:0001
\ts 11778000:29900000:1:4:192:2:0
/
0282000:0017:013e
\ts 10714000:22000000:0:5:282:2:0
/
end
services
0001:00c00000:0401:0001:1:0
First, renamed
p:Other
0001:00c00000:0401:0001:19:0
First, of another type
p:Other
0003:00C00000:0401:0001:1:0
New
p:
end
Whatever stands here
is ignored
"""


class Database(support.HostCase):

    def setUp(self):
        support.HostCase.setUp(self)
        from enigma import eDVBDB
        self.database = eDVBDB.getInstance()

    def counts(self):
        summary = self.database.summary()
        return summary["transponders"], summary["services"]

    def name(self, text):
        from enigma import eServiceReference
        return self.database.service_name(eServiceReference(text))

    def test_there_is_one(self):
        from enigma import eDVBDB
        self.assertIs(self.database, eDVBDB.getInstance())

    def test_reload_and_save_keep_every_byte(self):
        self.box.put("lamedb", OWN_4)
        self.database.reloadServicelist()
        self.assertEqual((4, 3), self.counts())
        self.database.saveServicelist()
        self.assertEqual(OWN_4, self.box.get("lamedb"))
        self.assertEqual(OWN_5, self.box.get("lamedb5"))
        self.assertEqual(["lamedb", "lamedb5"], sorted(os.listdir(self.box.config)))

    def test_format_5_holds_the_same(self):
        self.box.put("lamedb", OWN_5)
        self.database.reloadServicelist()
        self.database.saveServicelist()
        self.assertEqual(OWN_4, self.box.get("lamedb"))

    def test_comments_and_broken_lines_of_format_5_are_passed_over(self):
        self.box.put("lamedb", "eDVB services /5/\n# a comment\nt:none,s:1:2\nx:1\n\ns:1:2:3:4:1:0,no quotes\n"
                               't:00c00000:0001:0001,192:2\nt:ffff0000:0001:0001,c 192:2\n'
                               's:1:c00000:1:1:1:0,"No fields"\ns:1:c00000:1:1:x:0,"No type",p:\n')
        self.database.reloadServicelist()
        self.database.saveServicelist()
        self.assertEqual("eDVB services /5/\nt:00c00000:0001:0001,s:192:2\nt:ffff0000:0001:0001,c:192:2\n"
                         's:0001:00c00000:0001:0001:1:0,"No fields"\n', self.box.get("lamedb5"))

    def test_a_loaded_file_is_merged_and_its_entries_replace_those_of_the_same_key(self):
        self.box.put("lamedb", OWN_4)
        self.box.put("new", NEW)
        self.database.reloadServicelist()
        self.database.loadServicelist(self.box.config + "new")
        self.assertEqual((5, 5), self.counts())
        self.assertEqual("First, renamed", self.name("1:0:1:1:401:1:C00000:0:0:0:"))
        self.assertEqual("First, of another type", self.name("1:0:13:1:401:1:C00000:0:0:0:"))
        self.assertEqual("New", self.name("1:0:1:3:401:1:C00000:0:0:0:"))
        self.assertEqual("Third", self.name("1:0:19:10:2:85:FFFF0000:0:0:0:"))
        self.database.saveServicelist()
        saved = self.box.get("lamedb")
        self.assertIn("00c00000:0401:0001\n\ts 11778000:29900000:1:4:192:2:0\n/\n", saved)
        self.assertIn("00282000:0017:013e\n\ts 10714000:22000000:0:5:282:2:0\n/\n", saved)
        self.assertIn("0003:00c00000:0401:0001:1:0\nNew\np:\n", saved)
        self.assertEqual(1, saved.count("00c00000:0401:0001\n\ts"))
        self.assertTrue(saved.endswith("\nend\n"))

    def test_nothing_is_saved_before_it_is_asked_for(self):
        self.box.put("lamedb", OWN_4)
        self.box.put("new", NEW)
        self.database.reloadServicelist()
        self.database.loadServicelist(self.box.config + "new")
        self.assertEqual(OWN_4, self.box.get("lamedb"))
        self.assertFalse(os.path.exists(self.box.config + "lamedb5"))

    def test_reload_forgets_services_and_keeps_transponders(self):
        self.box.put("lamedb", OWN_4)
        self.box.put("new", NEW)
        self.database.reloadServicelist()
        self.database.loadServicelist(self.box.config + "new")
        self.database.reloadServicelist()
        self.assertEqual((5, 3), self.counts())
        self.assertEqual("", self.name("1:0:1:3:401:1:C00000:0:0:0:"))
        os.unlink(self.box.config + "lamedb")
        self.database.reloadServicelist()
        self.assertEqual((5, 0), self.counts())

    def test_what_is_no_service_file_is_logged_and_ignored(self):
        self.box.put("lamedb", OWN_4)
        self.database.reloadServicelist()
        del self.box.log[:]
        for content in ("", "text\n", "eDVB services /3/\n", "\0\xff"):
            self.box.put("other", content)
            self.database.loadServicelist(self.box.config + "other")
        self.database.loadServicelist(self.box.config + "missing")
        self.database.loadServicelist(self.box.config)
        self.assertEqual((4, 3), self.counts())
        self.assertEqual(["%sother is not a service file of format 4 or 5" % self.box.config] * 4 +
                         ["cannot read %smissing: No such file or directory" % self.box.config,
                          "cannot read %s: Is a directory" % self.box.config], self.box.log)

    def test_a_path_is_a_byte_string(self):
        self.assertRaises(TypeError, self.database.loadServicelist, u"/lamedb")
        self.assertRaises(TypeError, self.database.loadServicelist, None)

    def load(self, content):
        self.box.put("lamedb", content)
        self.database.reloadServicelist()
        return self.counts()

    def test_broken_entries_of_format_4_are_left_out_alone(self):
        lines = OWN_4.splitlines()
        for broken, expected in (
                (lines[:3] + lines[4:], (3, 3)),        # no tuning numbers
                (lines[:2] + lines[3:], (3, 3)),        # no key
                (lines[:2] + ["zz:1:2"] + lines[3:], (3, 3)),
                (lines[:4] + lines[5:], (4, 3)),        # no "/"
                (lines[:14] + lines[15:], (4, 3)),      # no "end" of the transponders
                (lines[:16] + ["rubbish"] + lines[16:], (4, 3)),
                (lines[:16] + ["x:1:2:3:4:5"] + lines[17:], (4, 2)),
                (lines[:18] + lines[19:], (4, 2)),      # no fields
                (lines[:22], (4, 2)),                   # cut off
                (lines[:23], (4, 2)),
                (lines[:9], (2, 0)),
                (lines[:1], (0, 0))):
            self.database._known.transponders.clear()
            self.assertEqual(expected, self.load("\n".join(broken) + "\n"), broken)

    def test_names_and_fields_may_be_empty_and_carriage_returns_are_no_part_of_them(self):
        content = OWN_4.replace("First\np:Somebody,c:000065,f:40\n", "\n\n")
        self.assertEqual((4, 3), self.load(content))
        self.assertEqual((4, 3), self.load(OWN_4.replace("\n", "\r\n")))
        self.database.saveServicelist()
        self.assertEqual(OWN_4, self.box.get("lamedb"))

    def test_a_service_may_be_called_end(self):
        self.assertEqual((4, 3), self.load(OWN_4.replace("First\n", "end\n")))

    def test_a_file_that_cannot_be_written_stays_as_it_was(self):
        self.box.put("lamedb", OWN_4)
        self.database.reloadServicelist()
        del self.box.log[:]
        os.mkdir(self.box.config + "lamedb.writing")
        self.database.saveServicelist()
        self.assertEqual(OWN_4, self.box.get("lamedb"))
        self.assertEqual(["cannot write %slamedb: Is a directory" % self.box.config], self.box.log)

    def test_the_old_file_is_whole_until_the_new_one_is(self):
        from native import files
        self.box.put("lamedb", OWN_4)
        self.database.reloadServicelist()
        seen = []
        real = files.os.rename
        self.addCleanup(setattr, files.os, "rename", real)

        def rename(source, target):
            seen.append((os.path.basename(source), os.path.basename(target), self.box.get("lamedb") == OWN_4,
                         self.box.get("lamedb.writing") == OWN_4 if target.endswith("lamedb") else None))
            real(source, target)
        files.os.rename = rename
        self.database.saveServicelist()
        self.assertEqual([("lamedb.writing", "lamedb", True, True),
                          ("lamedb5.writing", "lamedb5", True, None)], seen)

    def test_five_thousand_services_load_and_save_in_well_under_a_second(self):
        lines = ["eDVB services /4/", "transponders"]
        for each in range(300):
            lines += ["00c00000:%04x:0001" % each, "\ts 11778000:27500000:2:4:192:2:0", "/"]
        lines += ["end", "services"]
        for each in range(5000):
            lines += ["%04x:00c00000:%04x:0001:1:0" % (each, each % 300), "Service %d" % each, "p:Somebody,f:40"]
        self.box.put("lamedb", "\n".join(lines + ["end", ""]))
        begin = time.time()
        self.database.reloadServicelist()
        self.database.saveServicelist()
        self.assertEqual((300, 5000), self.counts())
        self.assertLess(time.time() - begin, 0.8)


if __name__ == "__main__":
    unittest.main()
