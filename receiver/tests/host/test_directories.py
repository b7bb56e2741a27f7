"""Folders and files."""

import os
import unittest

import support


class Directories(support.HostCase):

    def setUp(self):
        support.HostCase.setUp(self)
        from Tools import Directories as directories
        self.directories = directories
        self.resolve = directories.resolveFilename

    def test_the_folders_of_a_receiver(self):
        support.forget_host()
        from Tools import Directories as real
        self.assertEqual("/etc/enigma2/", real.defaultPaths[real.SCOPE_CONFIG][0])
        self.assertEqual("/usr/lib/enigma2/python/Plugins/", real.defaultPaths[real.SCOPE_PLUGINS][0])

    def test_a_star_import_brings_more_than_it_seems(self):
        namespace = {}
        exec "from Tools.Directories import *" in namespace
        import errno
        import re
        self.assertIs(os, namespace["os"])
        self.assertIs(errno, namespace["errno"])
        self.assertIs(re.compile, namespace["compile"])
        self.assertFalse(hasattr(self.directories, "__all__"))
        for name in ("resolveFilename", "fileExists", "pathExists", "SCOPE_CONFIG", "SCOPE_PLUGINS", "SCOPE_SKIN"):
            self.assertIn(name, namespace)

    def test_names_in_a_scope(self):
        d = self.directories
        self.assertEqual(self.box.config, self.resolve(d.SCOPE_CONFIG))
        self.assertEqual(self.box.config + "lamedb", self.resolve(d.SCOPE_CONFIG, "lamedb"))
        self.assertEqual(self.box.root + "/usr/lib/enigma2/python/Plugins/SystemPlugins/QelPanel/pictures/ntptime.png",
                         self.resolve(d.SCOPE_PLUGINS, "SystemPlugins/QelPanel/pictures/ntptime.png"))

    def test_an_existing_folder_ends_in_a_slash(self):
        d = self.directories
        self.assertTrue(self.resolve(d.SCOPE_PLUGINS, "SystemPlugins").endswith("/SystemPlugins/"))
        self.assertTrue(self.resolve(d.SCOPE_PLUGINS, "None").endswith("/None"))

    def test_absolute_names_and_names_below_a_prefix(self):
        d = self.directories
        self.assertEqual("/somewhere/else", self.resolve(d.SCOPE_CONFIG, "/somewhere/else"))
        self.assertEqual("/prefix/x", self.resolve(d.SCOPE_CONFIG, "~/x", path_prefix="/prefix"))

    def test_missing_config_and_plugin_folders_are_created(self):
        d = self.directories
        os.rmdir(self.box.config)
        self.assertEqual(self.box.config, self.resolve(d.SCOPE_CONFIG))
        self.assertTrue(os.path.isdir(self.box.config))
        os.unlink(self.box.root + "/usr/lib/enigma2/python")
        self.assertTrue(os.path.isdir(self.resolve(d.SCOPE_PLUGINS)))

    def test_other_folders_are_not_created(self):
        d = self.directories
        self.assertEqual("/media/hdd/movie/", self.resolve(d.SCOPE_HDD))
        self.assertFalse(os.path.exists("/media/hdd/movie/"))

    def test_file_exists_is_an_access_test(self):
        self.box.put("file", "")
        asked = []

        def access(path, mode):
            asked.append(mode)
            return path == "yes"
        real, os.access = os.access, access
        try:
            answers = [self.directories.fileExists("yes"), self.directories.fileExists("yes", "w"),
                       self.directories.fileExists("no", mode="x")]
        finally:
            os.access = real
        self.assertEqual(([True, True, False], [os.R_OK, os.W_OK, os.F_OK]), (answers, asked))
        self.assertTrue(self.directories.fileExists(self.box.config + "file"))
        self.assertTrue(self.directories.fileExists(self.box.config, "w"))
        self.assertFalse(self.directories.fileExists(self.box.config + "none", "w"))

    def test_path_exists(self):
        self.assertTrue(self.directories.pathExists(self.box.config))
        self.assertFalse(self.directories.pathExists(self.box.config + "none"))


class Satellites(support.HostCase):

    def setUp(self):
        support.HostCase.setUp(self)
        from Components.NimManager import nimmanager
        self.nimmanager = nimmanager

    def test_the_images_own_file(self):
        self.assertEqual([130, 192, 3590], sorted(self.nimmanager.satellites))
        self.assertEqual(2, len(self.nimmanager.getTransponders(192)))

    def test_the_owners_file_is_read_anew(self):
        self.box.put("satellites.xml", '<satellites><sat name="5.0E" position="50"><transponder frequency="1"/></sat>'
                                       '<sat name="none"/><sat name="0.8W" position="-8"/></satellites>')
        self.assertEqual([], self.nimmanager.getTransponders(50))
        self.nimmanager.readTransponders()
        self.assertEqual([{"frequency": "1"}], self.nimmanager.getTransponders(50))
        self.assertEqual([(50, "5.0E", 0), (3592, "0.8W", 0)], self.nimmanager.getSatList())
        self.assertEqual("N/A", self.nimmanager.getSatName(192))
        self.assertEqual(["a satellite without a position in the satellites file"], self.box.log)

    def test_a_broken_file_is_logged(self):
        self.box.put("satellites.xml", "<satellites>")
        self.nimmanager.readTransponders()
        self.assertEqual([], self.nimmanager.getSatList())
        self.assertEqual(1, len(self.box.log))
        self.assertTrue(self.box.log[0].startswith("cannot read %ssatellites.xml: " % self.box.config))


class PluginDescriptors(support.HostCase):

    def test_the_panel_is_offered_in_the_plugin_menu(self):
        from Components import PluginComponent
        from Plugins.Plugin import PluginDescriptor
        PluginComponent.read_all()
        found = PluginComponent.plugins.getPlugins(PluginDescriptor.WHERE_PLUGINMENU)
        self.assertEqual(["Qel panel"], [each.name for each in found])
        self.assertTrue(found[0].path.endswith("/Plugins/SystemPlugins/QelPanel"))
        self.assertEqual([], PluginComponent.plugins.getPlugins([PluginDescriptor.WHERE_MENU]))

    def test_a_descriptor_calls_its_function(self):
        from Plugins.Plugin import PluginDescriptor
        descriptor = PluginDescriptor(name="x", where=[PluginDescriptor.WHERE_MENU], fnc=lambda *a, **k: (a, k))
        self.assertEqual(((1,), {"two": 2}), descriptor(1, two=2))


if __name__ == "__main__":
    unittest.main()
